// The ids of the places and transitions of a Petri net, in the network that it was imported as.
// Most ids are names there as well. The others stand in comments, which a run skips:
//
//     #id place 12 12 place-3       the place of that id has as many tokens as of the
//                                   propositions 12 to 12 hold
//     #id transition 7 fire-3       the transition of that id is action 7

#pragma once

#include "model/names.h"

#include <map>
#include <string>
#include <string_view>

namespace tervoxal {

struct NetIds {
    struct Props {
        uint first;
        uint last;
    };

    std::map<std::string, Props, std::less<>> places;
    std::map<std::string, uint, std::less<>> transitions; // with actions that the network has
};

/// The ids of a network that is read, from its names and from the comments of its file. Where there
/// is no comment, a name of one proposition or action is the id; a proposition with the name
/// "ID>=1" is that of a token or more, and "ID>=2" has to follow with the next number. A comment
/// about a number that the network does not have is skipped. Ends the process with status 1 and one
/// line on standard error where the file cannot be read.
[[nodiscard]] NetIds readNetIds(const NetTimedModel& model, const Names& names,
                                const std::string& network);

/// Whether a name that no other place or transition has tells the id: it is the id, and is written
/// and read as it is, and as nothing else.
[[nodiscard]] bool tellsId(std::string_view name, std::string_view id);
/// The texts of the comments, after their "#".
[[nodiscard]] std::string placeId(std::string_view id, uint first, uint last);
[[nodiscard]] std::string transitionId(std::string_view id, uint action);

} // namespace tervoxal
