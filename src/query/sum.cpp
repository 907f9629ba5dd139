#include "query/sum.h"

#include <algorithm>
#include <map>
#include <memory>
#include <set>
#include <tuple>

namespace tervoxal {

using Term = Condition::Term;
using Token = Condition::Token;
using Part = Condition::Part;

namespace {

auto keyOf(const Part& part) {
    return std::tuple(part.atom.term, part.atom.number, part.atom.location);
}

} // namespace

Token sumOf(std::vector<Part> parts, std::int64_t least) {
    std::ranges::sort(parts, {}, keyOf);
    std::vector<Part> merged;
    for (Part& part : parts) {
        if (!merged.empty() && keyOf(merged.back()) == keyOf(part)) {
            merged.back().weight += part.weight;
        } else {
            merged.push_back(std::move(part));
        }
    }
    std::erase_if(merged, [](const Part& part) { return part.weight == 0; });
    std::int64_t lowest = 0;
    std::int64_t highest = 0;
    for (const Part& part : merged) (part.weight < 0 ? lowest : highest) += part.weight;
    if (least <= lowest) return {Term::truth};
    if (least > highest) return {Term::falsity};
    return {Term::sum, 0, 0, std::make_shared<const std::vector<Part>>(std::move(merged)), least};
}

namespace {

/// Atoms and their negations, as an algebra of one operation.
struct Literal {
    Token atom;
    bool negated = false;
};
struct Literals {
    static Literal constant(bool value) { return {{value ? Term::truth : Term::falsity}}; }
    static Literal atom(const Token& token) { return {token}; }
    static Literal negation(const Literal& a) { return {a.atom, !a.negated}; }
};

/// A sum over literals as a tree of conjunctions and disjunctions. What the parts from `begin` to
/// `end` add up to is what those of the halves add up to, so a bound is met if for one of the
/// values of the left half, that half has at least that value, and the right one at least the rest.
class Tree {
public:
    Tree(PositiveSum<Literal> asked, std::size_t most) : sum(std::move(asked)), most(most) {}

    /// Appends the tokens, or gives false if they are too many.
    bool write(std::vector<Token>& tokens) {
        const Half whole{0, sum.parts.size()};
        if (!findValues(whole)) return false;
        if (sizeOf(whole, sum.least) > most) return false;
        append(tokens, whole, sum.least);
        return true;
    }

private:
    using Half = std::pair<std::size_t, std::size_t>; // of the parts, from one up to before another

    static std::pair<Half, Half> halves(Half half) {
        const std::size_t middle = half.first + (half.second - half.first) / 2;
        return {{half.first, middle}, {middle, half.second}};
    }
    static bool isPart(Half half) { return half.second - half.first == 1; }

    /// What the parts can add up to, of each half; false if that is too much.
    bool findValues(Half half) {
        std::set<std::int64_t> own = {0};
        if (isPart(half)) {
            own.insert(sum.parts[half.first].first);
        } else {
            const auto [left, right] = halves(half);
            if (!findValues(left) || !findValues(right)) return false;
            if (values[left].size() * values[right].size() > most) return false;
            for (const std::int64_t l : values[left]) {
                for (const std::int64_t r : values[right]) own.insert(std::min(l + r, sum.least));
            }
        }
        values[half] = std::move(own);
        return true;
    }

    /// Calls use with the pairs of bounds of the halves of which one has to be met. A bound that
    /// its half meets always is 0.
    template <class Use>
    void forEachPair(Half half, std::int64_t least, Use&& use) {
        const auto [left, right] = halves(half);
        std::int64_t last = -1; // of the right half
        for (const std::int64_t l : values[left]) {
            const auto rest = values[right].lower_bound(least - std::min(l, least));
            if (rest == values[right].end() || *rest == last) continue;
            last = *rest;
            use(l, *rest);
            if (last == 0) return;
        }
    }

    std::size_t sizeOf(Half half, std::int64_t least) {
        if (least == 0) return 0;
        if (isPart(half)) return sum.parts[half.first].second.negated ? 2 : 1;
        const auto [known, isNew] = sizes.try_emplace({half, least}, 0);
        if (!isNew) return known->second;
        const std::pair<Half, Half> split = halves(half);
        std::size_t size = 0;
        forEachPair(half, least, [&](std::int64_t l, std::int64_t r) {
            size += (size > 0 ? 1 : 0) + (l > 0 && r > 0 ? 1 : 0);
            if (size <= most) size += sizeOf(split.first, l);
            if (size <= most) size += sizeOf(split.second, r);
        });
        return sizes[{half, least}] = std::min(size, most + 1);
    }

    void append(std::vector<Token>& tokens, Half half, std::int64_t least) {
        if (isPart(half)) {
            const Literal& literal = sum.parts[half.first].second;
            tokens.push_back(literal.atom);
            if (literal.negated) tokens.push_back({Term::negation});
            return;
        }
        const std::pair<Half, Half> split = halves(half);
        bool isFirst = true;
        forEachPair(half, least, [&](std::int64_t l, std::int64_t r) {
            if (l > 0) append(tokens, split.first, l);
            if (r > 0) append(tokens, split.second, r);
            if (l > 0 && r > 0) tokens.push_back({Term::conjunction});
            if (!isFirst) tokens.push_back({Term::disjunction});
            isFirst = false;
        });
    }

    const PositiveSum<Literal> sum;
    const std::size_t most;
    std::map<Half, std::set<std::int64_t>> values;
    std::map<std::pair<Half, std::int64_t>, std::size_t> sizes;
};

/// What holds exactly where the sum does not.
Token opposite(const Token& sum) {
    std::vector<Part> parts = *sum.parts;
    for (Part& part : parts) part.weight = -part.weight;
    return sumOf(std::move(parts), 1 - sum.least);
}

} // namespace

std::optional<Condition> writtenOut(const Condition& condition, std::size_t most) {
    Condition result;
    Literals literals;
    std::size_t left = most;
    for (std::size_t i = 0; i < condition.tokens.size(); ++i) {
        const Token& token = condition.tokens[i];
        if (token.term != Term::sum) {
            result.tokens.push_back(token);
            continue;
        }
        const bool isNegated =
            i + 1 < condition.tokens.size() && condition.tokens[i + 1].term == Term::negation;
        const Token sum = isNegated ? opposite(token) : token;
        if (isNegated) ++i;
        const std::size_t before = result.tokens.size();
        if (!Tree(positiveSum(sum, literals), left).write(result.tokens)) return {};
        left -= result.tokens.size() - before;
    }
    return result;
}

} // namespace tervoxal
