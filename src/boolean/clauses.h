// The clauses of formulas (Tseitin encoding), before they are renumbered for a file.
//
// A literal is a formula number: that of a variable or a composed node, or the negative of one for
// its negation. 0 stands for no literal. boolform.h tells the number space.
//
// A formula that is no constant has a unit clause that asserts it, three clauses for each reached
// conjunction and four for each equivalence. Operands have smaller absolute values than their node,
// so the last literal of a node's clauses is the node: no two nodes share a clause.

#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <vector>

class BoolForm;

/// A clause of at most three literals in normal form: ascending absolute values, a repeated literal
/// removed, 0 for no literal. Literals are formula numbers of variables and composed nodes.
struct Clause {
    int l1;
    int l2;
    int l3;

    /// Takes the literals in any order; 0 stands for none.
    Clause(int x, int y, int z);
};

/// Lexicographic over l1, l2, l3 as signed numbers: the order of the clauses in the file.
inline bool operator<(const Clause& a, const Clause& b) {
    if (a.l1 != b.l1) return a.l1 < b.l1;
    if (a.l2 != b.l2) return a.l2 < b.l2;
    return a.l3 < b.l3;
}

inline bool operator==(const Clause& a, const Clause& b) {
    return a.l1 == b.l1 && a.l2 == b.l2 && a.l3 == b.l3;
}

namespace tervoxal {

/// The clauses of a formula in their order, made as they are walked: for (const Clause& c : range).
/// A constant has none if it is true, and the empty clause if it is false.
///
/// Each walk makes the clauses anew, in time linear in the number of nodes that are not above the
/// formula, but for the sorting of clauses of three literals that share the first. The store may
/// not be emptied meanwhile. A sorted vector of all clauses took a tenth more time for the whole
/// run, and nearly twice as much memory.
class ClauseRange {
public:
    explicit ClauseRange(const BoolForm& f);

    /// The number of clauses.
    [[nodiscard]] std::size_t size() const { return count; }
    /// The largest absolute value of any literal, 0 if there is none.
    [[nodiscard]] int maxNr() const { return largest; }
    /// The largest variable below 1000000 that occurs, 0 if there is none.
    [[nodiscard]] int maxVariable() const { return largestVariable; }
    /// The largest variable that occurs, 1000000 included, 0 if there is none.
    [[nodiscard]] int topVariable() const { return variables; }

    class Walk;
    [[nodiscard]] Walk begin() const;
    [[nodiscard]] static std::default_sentinel_t end() { return std::default_sentinel; }

private:
    template <class Use>
    void forEachNode(Use&& use) const;
    [[nodiscard]] std::vector<Clause> all() const;

    int nr;                    // of the formula
    std::vector<bool> reached; // the nodes, from the first of the store on
    std::size_t nodes = 0;     // reached
    std::size_t count = 0;
    int largest = 0;
    int largestVariable = 0; // below 1000000
    int variables = 0;       // the largest, 1000000 included
    bool plain = true;       // whether con or equ can have made all nodes
};

/// A place in a range of clauses, which must outlive it: an input iterator that is moved, not
/// copied.
///
/// The clauses come in three sections. For each section the nodes are linked into lists by the
/// first literal of their clauses. So a clause waits as four bytes, and is made from its node when
/// it is its turn. All clauses are made and sorted at once if few nodes are reached among many, or
/// if one has operands that con and equ do not give.
class ClauseRange::Walk {
public:
    using value_type = Clause;
    using difference_type = std::ptrdiff_t;

    explicit Walk(const ClauseRange& range);
    Walk(const Walk&) = delete;
    Walk& operator=(const Walk&) = delete;
    Walk(Walk&&) = default;
    Walk& operator=(Walk&&) = default;
    ~Walk() = default;

    const Clause& operator*() const { return *next; }
    Walk& operator++() {
        if (++next == readyEnd) makeReady();
        return *this;
    }
    void operator++(int) { ++*this; }
    friend bool operator==(const Walk& walk, std::default_sentinel_t /*end*/) {
        return walk.next == walk.readyEnd;
    }

private:
    /// Three literals with a negative first one, at most two, three with a positive first one.
    enum class Section { negative, binary, positive };

    void makeReady();
    void makeBinary(std::uint32_t link, int literal);
    void makeTernary(std::uint32_t link, int literal);
    void startSection(Section started);
    std::uint32_t& listAt(int at) {
        return lists[static_cast<std::size_t>(std::ptrdiff_t(places) + at)];
    }

    const ClauseRange* range;
    std::vector<Clause> ready;
    const Clause* next = nullptr;
    const Clause* readyEnd = nullptr;
    Section section = Section::positive;
    int places;                       // the variables, then the nodes, from 1 on
    int place = 1;                    // of the next list, with the sign of its literal
    int lastPlace = 0;                // of the section
    std::vector<std::uint32_t> lists; // the first link of each, 0 for none
    std::vector<std::uint32_t> links; // of entry i, which is link i + 1, the next link
};

} // namespace tervoxal
