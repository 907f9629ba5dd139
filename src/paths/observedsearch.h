// The search for a path that shows a formula, by the engines, on the network with an observer. What
// it finds is told of the network itself: without silent steps, with the loop of the path.

#pragma once

#include "model/flatnetwork.h"
#include "observer/observednetwork.h"
#include "replay/path.h"
#include "report/outcome.h"
#include "search/board.h"
#include "search/portfolio.h"

#include <functional>
#include <memory>

namespace tervoxal {

class ObservedSearch {
public:
    /// The range is that of the network. It must outlive this.
    ObservedSearch(const NetTimedModel& model, std::shared_ptr<const ObservedNetwork> observed,
                   Board::Range range);

    /// Searches until it is stopped, and goes on where it was: whether there is more to do.
    /// `news` is called where something more is known.
    bool run(const std::function<bool()>& stop, const std::function<bool()>& proving,
             const std::function<void()>& news);

    /// Adds what is known. Lengths are refuted up to one that is certain: with operators of which
    /// one of several parts may be shown, and with loops, the least path may be longer than that.
    void tell(Known& known) const;

    /// What is being done, for who waits.
    [[nodiscard]] std::string status() const { return portfolio.status(); }

private:
    [[nodiscard]] Path path() const;

    const NetTimedModel& model;
    const std::shared_ptr<const ObservedNetwork> observed;
    const Board::Range range; // of the network
    const FlatNetwork network;
    Board board;
    Portfolio portfolio;
};

} // namespace tervoxal
