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
    return entry.refuted >= range.to || !isOpen(entry);
}

/// Whether a path, or a shorter one, would be news.
bool Board::isOpen(const Entry& entry) const {
    if (entry.unreachable) return false;
    const bool enough = entry.closed || (range.any && entry.length() <= range.to);
    return !entry.found || !(entry.least() || enough);
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

/// The questions that are open are looked for from now on.
void Board::watch() {
    watched.clear();
    std::vector<const Condition*> conditions;
    for (std::size_t q = 0; q < entries.size(); ++q) {
        if (!isOpen(entries[q])) continue;
        watched.push_back(q);
        conditions.push_back(&entries[q].condition);
    }
    evaluator.emplace(network, conditions);
    givenUp = 0;
}

void Board::offer(const Run& run) {
    if (!evaluator || 2 * givenUp > watched.size()) watch();
    std::vector<std::pair<std::size_t, std::size_t>> met; // a question, and where
    for (std::size_t position = 0;; ++position) {
        evaluator->tell([&](std::size_t condition) {
            const Entry& entry = entries[watched[condition]];
            const bool open = isOpen(entry);
            if (!open) ++givenUp;
            if (open && (!entry.found || position < entry.path.size())) {
                met.emplace_back(watched[condition], position);
            }
            return open;
        });
        if (position == run.size()) break;
        for (const uint m : run[position].moves) {
            evaluator->move(network.moves[m].source, network.moves[m].target);
        }
    }
    evaluator->reset();
    evaluator->renew();
    for (const auto& [question, position] : met) {
        Entry& entry = entries[question];
        entry.path = shortened(network, run, position, entry.condition);
        entry.found = true;
        if (listener != nullptr && listener->found) listener->found(question);
    }
}

void Board::close(std::size_t question) {
    if (range.least || !entries[question].found || entries[question].closed) return;
    entries[question].closed = true;
    if (listener != nullptr && listener->closed) listener->closed(question);
}

std::string Board::exclude(std::span<const std::size_t> questions, Certificate certificate) {
    std::vector<const Condition*> conditions;
    conditions.reserve(questions.size());
    for (const std::size_t q : questions) conditions.push_back(&entries[q].condition);
    std::string fault = trim(network, certificate, conditions);
    if (!fault.empty()) return fault;
    const auto shared = std::make_shared<const Certificate>(std::move(certificate));
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
