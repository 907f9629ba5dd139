#include "model/netids.h"

#include "system/filenames.h"
#include "text/lines.h"
#include "text/scanner.h"

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <optional>
#include <vector>

namespace tervoxal {

namespace {

constexpr std::string_view placeWord = "id place ";
constexpr std::string_view transitionWord = "id transition ";

/// The things that are the only ones of their names.
std::map<std::string_view, uint> unique(const std::map<uint, std::string>& names) {
    std::map<std::string_view, std::optional<uint>> all;
    for (const auto& [number, name] : names) {
        const auto [entry, isNew] = all.try_emplace(name, number);
        if (!isNew) entry->second.reset();
    }
    std::map<std::string_view, uint> named;
    for (const auto& [name, number] : all) {
        if (number) named.emplace_hint(named.end(), name, *number);
    }
    return named;
}

void addNames(NetIds& ids, const Names& names) {
    const std::map<std::string_view, uint> props = unique(names.props);
    for (const auto& [name, prop] : props) {
        NetIds::Props own{prop, prop};
        const auto withTokens = [&props, &name = name](uint n) {
            return props.find(std::string(name) + ">=" + std::to_string(n));
        };
        if (const auto one = withTokens(1); one != props.end()) {
            own = {one->second, one->second};
            for (auto next = withTokens(2); next != props.end() && next->second == own.last + 1;
                 next = withTokens(own.last - own.first + 2)) {
                own.last = next->second;
            }
        }
        ids.places.emplace(name, own);
    }
    for (const auto& [name, action] : unique(names.actions)) ids.transitions.emplace(name, action);
}

} // namespace

NetIds readNetIds(const NetTimedModel& model, const Names& names, const std::string& network) {
    NetIds ids;
    addNames(ids, names);
    std::vector<uint> carried;
    for (const auto& [location, prop] : model.valuation) carried.push_back(prop);
    std::ranges::sort(carried);
    carried.erase(std::unique(carried.begin(), carried.end()), carried.end());
    const auto has = [&](const NetIds::Props& own) {
        const auto first = std::ranges::lower_bound(carried, own.first);
        const std::ptrdiff_t more = std::ptrdiff_t{own.last} - own.first;
        return more >= 0 && more < carried.end() - first && *first == own.first &&
               first[more] == own.last;
    };
    const std::string file = network + inputSuffix;
    std::ifstream in = openInput(file);
    for (std::string line; std::getline(in, line);) {
        if (!line.starts_with("#id ")) continue;
        const std::string_view text = std::string_view(line).substr(1);
        if (text.starts_with(placeWord)) {
            Scanner fields(text.substr(placeWord.size()));
            NetIds::Props own{};
            if (fields.number(own.first) == Found::number &&
                fields.number(own.last) == Found::number && has(own)) {
                ids.places.insert_or_assign(std::string(fields.rest()), own);
            }
        } else if (text.starts_with(transitionWord)) {
            Scanner fields(text.substr(transitionWord.size()));
            uint action = 0;
            if (fields.number(action) == Found::number && model.actionAutomata.contains(action)) {
                ids.transitions.insert_or_assign(std::string(fields.rest()), action);
            }
        }
    }
    refuseUnread(in, file);
    return ids;
}

bool tellsId(std::string_view name, std::string_view id) {
    return name == id && !name.empty() && std::isalpha(static_cast<unsigned char>(name[0])) != 0 &&
           name.find(">=") == std::string_view::npos;
}

std::string placeId(std::string_view id, uint first, uint last) {
    return std::string(placeWord) + std::to_string(first) + ' ' + std::to_string(last) + ' ' +
           std::string(id);
}

std::string transitionId(std::string_view id, uint action) {
    return std::string(transitionWord) + std::to_string(action) + ' ' + std::string(id);
}

} // namespace tervoxal
