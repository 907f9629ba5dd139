#include "search/board.h"

#include "certificate/weightscheck.h"
#include "search/certificatecheck.h"

#include <algorithm>
#include <utility>

namespace tervoxal {

Board::Board(const FlatNetwork& network, std::vector<Condition> conditions, Range range)
    : network(network), range(range) {
    entries.reserve(conditions.size());
    for (Condition& condition : conditions) entries.push_back({std::move(condition)});
}

bool Board::settled(std::size_t question) const {
    const Entry& entry = entries[question];
    if (entry.unreachable || entry.refuted >= range.to) return true;
    const bool enough = entry.closed || (range.any && entry.length() <= range.to);
    return entry.found && (entry.least() || enough);
}

bool Board::undecided(std::size_t question) const {
    const Entry& entry = entries[question];
    return !entry.found && (proving() ? !entry.unreachable : !settled(question));
}

int Board::limit(std::size_t question) const {
    const Entry& entry = entries[question];
    return entry.found ? std::min(entry.length() - 1, range.to) : range.to;
}

void Board::refute(std::span<const std::size_t> questions, int depth) {
    bool longer = false;
    for (const std::size_t q : questions) {
        longer = longer || entries[q].refuted < depth;
        entries[q].refuted = std::max(entries[q].refuted, depth);
    }
    if (longer && listener != nullptr && listener->refuted) listener->refuted(questions);
}

void Board::offer(std::size_t question, Run run) {
    Entry& entry = entries[question];
    Run path = shortened(network, std::move(run), entry.condition);
    if (entry.found && path.size() >= entry.path.size()) return;
    entry.found = true;
    entry.path = std::move(path);
    if (listener != nullptr && listener->found) listener->found(question);
}

void Board::close(std::size_t question) {
    entries[question].closed = entries[question].found && !range.least;
}

std::string Board::exclude(std::span<const std::size_t> questions, const Certificate& certificate) {
    std::vector<const Condition*> conditions;
    conditions.reserve(questions.size());
    for (const std::size_t q : questions) conditions.push_back(&entries[q].condition);
    std::string fault = certificateFault(network, certificate, conditions);
    if (!fault.empty()) return fault;
    const auto shared = std::make_shared<const Certificate>(certificate);
    for (const std::size_t q : questions) {
        entries[q].unreachable = true;
        entries[q].certificate = shared;
        if (listener != nullptr && listener->unreachable) listener->unreachable(q);
    }
    return fault;
}

std::string Board::learn(const Certificate::Weighed& weighed) {
    std::string fault = weightsFault(network, weighed);
    if (!fault.empty()) return fault;
    for (const Certificate::Set& set : weighed.sets) {
        Fact fact{{}, {weighed.weights, {set}}};
        for (const Certificate::Places& places : set) {
            const auto a = network.automaton(places.automaton);
            if (!a) continue;
            for (const uint l : network.locationsOf(*a)) {
                if (!places.has(network.locations[l].number)) fact.locations.push_back(l);
            }
        }
        learned.push_back(std::move(fact));
    }
    return fault;
}

} // namespace tervoxal
