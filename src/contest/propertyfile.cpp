#include "contest/propertyfile.h"

#include "model/netids.h"
#include "query/expressiontext.h"
#include "replay/property.h"
#include "text/message.h"
#include "text/scanner.h"
#include "xml/xmlfile.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <map>
#include <optional>
#include <string_view>
#include <utility>

namespace tervoxal {

namespace {

using Term = Condition::Term;

enum class Element : unsigned char {
    document,
    set,
    property,
    id,
    formula,
    existsPath,
    allPaths,
    finally,
    globally,
    next,
    until,
    before,
    reach,
    conjunction,
    disjunction,
    negation,
    fireable,
    transition,
    deadlock,
    atMost,
    constant,
    tokens,
    place,
    skipped,
};

/// What may stand in an element.
enum class Content : unsigned char {
    none,
    text,
    set,
    property,
    formula,
    path,
    reach,
    transitions,
    numbers,
    places
};

struct Rule {
    std::string_view name;
    Element element;
    Content in; // where it may stand
    Content holds;
    std::size_t least; // operands
    std::size_t most;
};

constexpr std::size_t any = std::numeric_limits<std::size_t>::max();

constexpr std::array<Rule, 22> rules{{
    {"property-set", Element::set, Content::set, Content::property, 0, any},
    {"property", Element::property, Content::property, Content::none, 0, any},
    {"exists-path", Element::existsPath, Content::formula, Content::path, 1, 1},
    {"all-paths", Element::allPaths, Content::formula, Content::path, 1, 1},
    {"finally", Element::finally, Content::path, Content::formula, 1, 1},
    {"globally", Element::globally, Content::path, Content::formula, 1, 1},
    {"next", Element::next, Content::path, Content::formula, 1, 1},
    {"until", Element::until, Content::path, Content::reach, 2, 2},
    {"before", Element::before, Content::reach, Content::formula, 1, 1},
    {"reach", Element::reach, Content::reach, Content::formula, 1, 1},
    {"conjunction", Element::conjunction, Content::formula, Content::formula, 1, any},
    {"disjunction", Element::disjunction, Content::formula, Content::formula, 1, any},
    {"negation", Element::negation, Content::formula, Content::formula, 1, 1},
    {"is-fireable", Element::fireable, Content::formula, Content::transitions, 1, any},
    {"transition", Element::transition, Content::transitions, Content::text, 0, 0},
    {"deadlock", Element::deadlock, Content::formula, Content::none, 0, 0},
    {"integer-le", Element::atMost, Content::formula, Content::numbers, 2, 2},
    {"integer-constant", Element::constant, Content::numbers, Content::text, 0, 0},
    {"tokens-count", Element::tokens, Content::numbers, Content::places, 0, any},
    {"place", Element::place, Content::places, Content::text, 0, 0},
    {"id", Element::id, Content::none, Content::text, 0, 0},
    {"formula", Element::formula, Content::none, Content::formula, 1, 1},
}};

const Rule* ruleOf(std::string_view name, Element parent, Content holds) {
    for (const Rule& rule : rules) {
        const bool ofProperty = rule.element == Element::id || rule.element == Element::formula;
        const bool fits = ofProperty ? parent == Element::property : rule.in == holds;
        if (fits && rule.name == name) return &rule;
    }
    return nullptr;
}

/// A number of an inequality: a constant, and the tokens of places.
struct Sum {
    std::uint64_t constant = 0;
    std::vector<NetIds::Props> places{};

    [[nodiscard]] std::uint64_t most() const {
        std::uint64_t tokens = constant;
        for (const auto& [first, last] : places) tokens += last - first + 1;
        return tokens;
    }
};

/// Conjunctions or disjunctions of propositions, built up from left to right.
class Junction {
public:
    explicit Junction(Term oper) : oper(oper) {}

    void add(const Condition::Token& atom, bool negated = false) {
        condition.tokens.push_back(atom);
        if (negated) condition.tokens.push_back({Term::negation});
        if (++operands > 1) condition.tokens.push_back({oper});
    }
    void add(const Condition& more) {
        condition.tokens.insert(condition.tokens.end(), more.tokens.begin(), more.tokens.end());
        if (++operands > 1) condition.tokens.push_back({oper});
    }
    /// Without an operand it is what the operator leaves as it is.
    [[nodiscard]] Condition result() const {
        if (operands > 0) return condition;
        return {{{oper == Term::conjunction ? Term::truth : Term::falsity}}};
    }

private:
    Term oper;
    Condition condition;
    std::size_t operands = 0;
};

/// That the sum is so much or more; nothing where that is not asked.
std::optional<Condition> atLeast(const Sum& sum, std::uint64_t least) {
    if (least <= sum.constant) return Condition{{{Term::truth}}};
    if (least > sum.most()) return Condition{{{Term::falsity}}};
    const std::uint64_t tokens = least - sum.constant;
    const bool all = least == sum.most();
    if (sum.places.size() == 1) {
        const auto more = static_cast<uint>(tokens - 1);
        return Condition{{{Term::prop, sum.places.front().first + more}}};
    }
    if (tokens > 1 && !all) return {};
    Junction places(all ? Term::conjunction : Term::disjunction);
    for (const auto& [first, last] : sum.places) places.add({Term::prop, all ? last : first});
    return places.result();
}

/// Left <= right; nothing where that is not asked.
std::optional<Condition> atMost(const Sum& left, const Sum& right) {
    if (left.places.empty()) return atLeast(right, left.constant);
    if (right.places.empty()) {
        std::optional<Condition> more = atLeast(left, right.constant + 1);
        if (more) more = negated(*more);
        return more;
    }
    if (left.places.size() > 1 || right.places.size() > 1) return {};
    Junction all(Term::conjunction);
    for (std::uint64_t n = 1; n <= left.most(); ++n) {
        Junction either(Term::disjunction);
        either.add({Term::prop, static_cast<uint>(left.places.front().first + n - 1)}, true);
        if (n <= right.most()) {
            either.add({Term::prop, static_cast<uint>(right.places.front().first + n - 1)});
        }
        all.add(either.result());
    }
    return all.result();
}

/// Follows the file element by element.
class Reader {
public:
    Reader(const NetTimedModel& model, const Names& names, const std::string& network,
           const std::string& file)
        : model(model), ids(readNetIds(model, names, network)), expressions(model, names),
          xml(file, {[this](const char* name, const char** /*attributes*/) { begin(name); },
                     [this] { end(); }, [this](std::string_view more) { characters(more); }}) {}

    std::vector<Question> read();

private:
    struct Frame {
        Element element;
        Content holds;
        std::size_t least;
        std::size_t most;
        std::string name;
        bool negative; // under an odd number of negations
        std::size_t operands = 0;
    };

    void begin(std::string_view name);
    void end();
    void characters(std::string_view more) {
        if (open.back().holds == Content::text) text += more;
    }
    /// The operand of a conjunction or a disjunction has ended.
    void join();
    void endProperty();
    void endTemporal(const Frame& frame);
    void endTransition();
    void endNumber(const Frame& frame);
    void add(const Condition& condition, bool negative);
    void unask(const std::string& what) {
        if (unasked.empty())
            unasked = "open: " + what + " of line " + std::to_string(xml.line()) + " is not asked";
    }

    const NetTimedModel& model;
    const NetIds ids;
    const ExpressionText expressions;
    XmlFile xml;

    std::vector<Frame> open{{Element::document, Content::set, 0, any, "", false}};
    std::string text; // of the innermost element, if it keeps its text
    std::vector<Question> questions;
    std::map<std::string, unsigned long> known; // the lines of the ids

    // Of the latest property:
    std::string id;
    bool hasFormula = false;
    std::vector<TemporalToken> tokens;
    std::string unasked;
    Junction transitions{Term::disjunction};
    std::vector<Sum> sums;
};

std::vector<Question> Reader::read() {
    xml.read();
    if (questions.empty()) xml.refuse("there is no property");
    xml.endIfRefused();
    return std::move(questions);
}

void Reader::begin(std::string_view name) {
    const Frame& parent = open.back();
    const std::string_view local = localName(name);
    const Rule* const rule = ruleOf(local, parent.element, parent.holds);
    if (parent.element == Element::document && rule == nullptr) {
        return xml.refuse("the document is " + shown(local) + " and not \"property-set\"");
    }
    ++open.back().operands;
    if (rule == nullptr) {
        const bool free = parent.holds == Content::none || parent.element == Element::set;
        if (parent.element != Element::skipped && !free) unask(shown(local));
        open.push_back({Element::skipped, Content::none, 0, any, "", false});
        return;
    }
    const bool negative = parent.negative != (rule->element == Element::negation);
    switch (rule->element) {
    case Element::property:
        id.clear();
        hasFormula = false;
        tokens.clear();
        unasked.clear();
        break;
    case Element::formula:
        if (std::exchange(hasFormula, true)) xml.refuse("the property has two formulas");
        break;
    case Element::fireable: transitions = Junction(Term::disjunction); break;
    case Element::atMost: sums.clear(); break;
    case Element::constant:
    case Element::tokens: sums.emplace_back(); break;
    default: break;
    }
    text.clear();
    open.push_back(
        {rule->element, rule->holds, rule->least, rule->most, std::string(local), negative});
}

void Reader::end() {
    const Frame frame = std::move(open.back());
    open.pop_back();
    if (unasked.empty() && (frame.operands < frame.least || frame.operands > frame.most)) {
        return xml.refuse(shown(frame.name) + " has " + std::to_string(frame.operands) +
                          " operands");
    }
    switch (frame.element) {
    case Element::id: id = normalised(text); break;
    case Element::property: return endProperty();
    case Element::finally:
    case Element::globally:
    case Element::next:
    case Element::until: return endTemporal(frame);
    case Element::before:
    case Element::reach:
        if (open.back().operands != (frame.element == Element::before ? 1U : 2U)) {
            xml.refuse("an until has before, then reach");
        }
        return;
    case Element::transition: return endTransition();
    case Element::fireable: add(transitions.result(), frame.negative); break;
    case Element::deadlock: add({{{Term::deadlock}}}, frame.negative); break;
    case Element::constant:
    case Element::place: return endNumber(frame);
    case Element::atMost:
        if (sums.size() == 2) {
            if (const auto condition = atMost(sums[0], sums[1])) {
                add(*condition, frame.negative);
            } else {
                unask("a sum of tokens");
            }
        }
        break;
    default: break;
    }
    join();
}

void Reader::join() {
    const Frame& parent = open.back();
    const bool junction =
        parent.element == Element::conjunction || parent.element == Element::disjunction;
    if (!junction || parent.operands < 2) return;
    const bool conjunction = (parent.element == Element::conjunction) != parent.negative;
    tokens.push_back({.condition = {conjunction ? Term::conjunction : Term::disjunction}});
}

void Reader::add(const Condition& condition, bool negative) {
    for (const Condition::Token& token : (negative ? negated(condition) : condition).tokens) {
        tokens.push_back({.condition = token});
    }
}

void Reader::endTemporal(const Frame& frame) {
    using Kind = TemporalToken::Kind;
    const bool negative = frame.negative;
    Kind kind = Kind::next;
    if (frame.element == Element::until) kind = negative ? Kind::release : Kind::until;
    if (frame.element == Element::finally) kind = negative ? Kind::globally : Kind::finally;
    if (frame.element == Element::globally) kind = negative ? Kind::finally : Kind::globally;
    const bool universal = (open.back().element == Element::allPaths) != negative;
    tokens.push_back({.kind = kind, .universal = universal});
}

void Reader::endTransition() {
    const std::string name = normalised(text);
    const auto found = ids.transitions.find(name);
    if (found == ids.transitions.end()) {
        return xml.refuse("no transition has the id " + shown(name));
    }
    transitions.add({Term::enabled, found->second});
}

void Reader::endNumber(const Frame& frame) {
    const std::string word = normalised(text);
    if (frame.element == Element::place) {
        const auto found = ids.places.find(word);
        if (found == ids.places.end()) return xml.refuse("no place has the id " + shown(word));
        sums.back().places.push_back(found->second);
        return;
    }
    uint number = 0;
    if (wholeNumber(word, number) != Found::number) {
        return xml.refuse("a constant is no number from 0 to 4294967295: " + shown(word));
    }
    sums.back().constant = number;
}

/// The condition of which the formula says that some reachable state meets it (universal: that all
/// do); null if it says something else.
const Condition* reachable(const TemporalFormula& formula, bool universal) {
    using Kind = TemporalFormula::Term;
    const TemporalFormula::Node& root = formula.nodes.back();
    if (root.term != (universal ? Kind::release : Kind::until) || root.universal != universal) {
        return nullptr;
    }
    const TemporalFormula::Node& left = formula.nodes[root.left];
    const TemporalFormula::Node& right = formula.nodes[root.right];
    const bool all = left.term == Kind::condition && left.condition.tokens.size() == 1 &&
                     left.condition.tokens[0].term == (universal ? Term::falsity : Term::truth);
    return all && right.term == Kind::condition ? &right.condition : nullptr;
}

void Reader::endProperty() {
    if (id.empty()) return xml.refuse("the property has no id");
    if (!hasFormula) return xml.refuse("property " + shown(id) + " has no formula");
    const auto [first, isNew] = known.try_emplace(id, xml.line());
    if (!isNew) {
        return xml.refuse("id " + shown(id) + " is that of the property that ends in line " +
                          std::to_string(first->second) + " as well");
    }
    Question question{id, id, {{{Term::falsity}}}};
    question.unasked = unasked;
    if (unasked.empty()) {
        TemporalFormula formula = temporalFormula(tokens);
        const bool claim = isClaim(formula);
        if (const Condition* const some = reachable(formula, false)) {
            question.condition = *some;
        } else if (const Condition* const all = reachable(formula, true)) {
            question.condition = negated(*all);
            question.claim = true;
        } else if (formula.nodes.back().term == TemporalFormula::Term::condition) {
            const bool now = Property(model, formula.nodes.back().condition).holds();
            question.condition = {{{now ? Term::truth : Term::falsity}}};
        } else {
            if (!claim) {
                tokens.insert(tokens.begin(), {.condition = {Term::initial}});
                tokens.push_back({.condition = {Term::conjunction}});
                formula = temporalFormula(tokens);
            }
            question.text = expressions.of(formula, formula.nodes.size() - 1);
            question.temporal = std::move(formula);
        }
        if (!question.temporal) question.text = expressions.of(question.condition);
    }
    questions.push_back(std::move(question));
}

} // namespace

std::vector<Question> readProperties(const NetTimedModel& model, const Names& names,
                                     const std::string& network, const std::string& file) {
    return Reader(model, names, network, file).read();
}

} // namespace tervoxal
