#include "certificate/writtencertificate.h"

#include "certificate/certificate.h"
#include "query/vocabulary.h"
#include "text/escapes.h"
#include "text/fatal.h"
#include "text/lines.h"
#include "text/readable.h"
#include "text/scanner.h"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <utility>

namespace tervoxal {

namespace {

constexpr std::string_view neverHead = "# never: ";
constexpr std::string_view sumHead = "# sum of weights: ";
constexpr std::string_view sumMiddle = " never increases, ";
constexpr std::string_view sumEnd = " at the start";
constexpr std::string_view inductiveHead = "# inductive relative to these:";
constexpr std::string_view aloneHead = "# not met in any state of these automata alone";
constexpr std::string_view automatonHead = "#     ";
constexpr std::string_view statesHead = "# all states of the network were searched";

class Reader {
public:
    Reader(std::istream& in, const std::string& name, const NetTimedModel& model,
           const Names& names)
        : in(in), name(name), vocabulary(vocabularyOf(model, names)) {}

    WrittenCertificate read() {
        std::string line;
        while (std::getline(in, line)) {
            ++number;
            text = line;
            while (!text.empty() && isBlank(text.back())) text.remove_suffix(1);
            if (text.starts_with('#')) {
                comment();
            } else if (!text.empty()) {
                set();
            }
        }
        refuseUnread(in, name);
        if (result.sums.empty() && result.sets.empty() && !result.alone && !result.never) {
            error(name + ": this is no certificate");
        }
        if (result.alone) {
            std::vector<uint>& all = *result.alone;
            std::ranges::sort(all);
            all.erase(std::unique(all.begin(), all.end()), all.end());
        }
        return std::move(result);
    }

private:
    [[nodiscard]] std::string where() const {
        return name + ':' + std::to_string(number) + ": error: ";
    }
    [[noreturn]] void refuse(const std::string& what) const { error(where() + what); }

    [[nodiscard]] Condition condition(const std::string& expression, const std::string& at) const {
        Expression asked = expressionOf(expression, vocabulary, at);
        if (asked.temporal) error(at + "this is about paths, and a certificate about states");
        return std::move(asked.condition);
    }

    /// Whether the line begins with a head; goes behind it then.
    bool take(std::string_view head) {
        if (!text.starts_with(head)) return false;
        text.remove_prefix(head.size());
        return true;
    }

    void comment() {
        const bool listed = lists && take(automatonHead);
        lists = listed;
        if (listed) {
            automaton(trimmed(text));
        } else if (take(neverHead)) {
            if (result.never) refuse("the question stands there for the second time");
            result.never = condition(std::string(neverHead.size(), ' ').append(text), where());
        } else if (take(sumHead)) {
            sum();
        } else if (take(inductiveHead)) {
            weighed = false;
        } else if (take(aloneHead)) {
            lists = true;
            if (!result.alone) result.alone.emplace();
        } else if (take(observedHead)) {
            refuse("this is about the network with an observer, which only the search has");
        } else if (take(statesHead)) {
            refuse("this tells how many states were searched, which no clauses can show");
        }
    }

    void automaton(std::string_view word) {
        const Vocabulary::Things& automata = vocabulary.automata;
        uint found = 0;
        if (word.starts_with('"') && closingQuote(word, 1) == word.size() - 1) {
            const std::string called = unescaped(word.substr(1, word.size() - 2));
            const auto known = automata.named.find(called);
            if (known == automata.named.end()) {
                refuse("no automaton is called " + inQuotes(called));
            }
            if (known->second.size() > 1) {
                refuse("more than one automaton is called " + inQuotes(called) +
                       ", write the number");
            }
            found = known->second.front();
        } else if (wholeNumber(word, found) != Found::number) {
            refuse("the number of an automaton or its name in double quotes expected, not " +
                   inQuotes(word));
        } else if (!automata.numbers.contains(found)) {
            refuse("no automaton has the number " + std::to_string(found));
        }
        result.alone->push_back(found);
    }

    void set() {
        lists = false;
        const std::size_t colon = text.find(':');
        const std::string_view called = trimmed(text.substr(0, colon));
        if (colon == std::string_view::npos || called.empty()) refuse("NAME: EXPRESSION expected");
        const std::string expression(text.substr(colon + 1));
        WrittenCertificate::Set read{number, std::string(called),
                                     // blanks in place of the name keep the columns
                                     condition(std::string(colon + 1, ' ') + expression, where())};
        (weighed ? result.sums.back().sets : result.sets).push_back(std::move(read));
    }

    void sum() {
        const std::size_t middle = text.rfind(sumMiddle);
        WrittenCertificate::Sum& read = result.sums.emplace_back();
        read.line = number;
        weighed = true;
        if (middle == std::string_view::npos || !text.ends_with(sumEnd)) {
            refuse("a sum of weights has to end with \"never increases, N at the start\"");
        }
        const std::size_t begin = middle + sumMiddle.size();
        read.initially = weight(text.substr(begin, text.size() - sumEnd.size() - begin));
        const std::string_view terms = trimmed(text.substr(0, middle));
        if (terms == "0") return;
        std::uint64_t together = 0;
        for (std::size_t at = 0; at <= terms.size();) {
            const std::size_t end = termEnd(terms, at);
            read.terms.push_back(term(trimmed(terms.substr(at, end - at)), read.terms.size() + 1));
            together += read.terms.back().weight;
            if (together > WrittenCertificate::greatestSum) refuse("the weights are too large");
            at = end + 1;
        }
    }

    /// Where the next + stands between two blanks outside of brackets and quotes, or the end.
    [[nodiscard]] static std::size_t termEnd(std::string_view terms, std::size_t at) {
        int depth = 0;
        for (; at < terms.size(); ++at) {
            const char c = terms[at];
            if (c == '"') at = std::min(closingQuote(terms, at + 1), terms.size() - 1);
            depth += c == '(' ? 1 : c == ')' ? -1 : 0;
            if (depth == 0 && terms.substr(at).starts_with("+ ") && at > 0 &&
                terms[at - 1] == ' ') {
                return at;
            }
        }
        return terms.size();
    }

    [[nodiscard]] WrittenCertificate::Term term(std::string_view term, std::size_t place) const {
        const std::size_t blank = term.find(' ');
        std::uint64_t factor = 1;
        if (blank != std::string_view::npos && term.find_first_not_of("0123456789") == blank) {
            factor = weight(term.substr(0, blank));
            term = trimmed(term.substr(blank));
        }
        return {factor,
                condition(std::string(term), where() + "term " + std::to_string(place) + ": ")};
    }

    [[nodiscard]] std::uint64_t weight(std::string_view digits) const {
        std::uint64_t weight = 0;
        const Found found = wholeNumber(digits, weight);
        if (found == Found::nothing) refuse("a number expected, not " + inQuotes(digits));
        if (found != Found::number || weight > WrittenCertificate::greatestSum) {
            refuse("the weights are too large");
        }
        return weight;
    }

    std::istream& in;
    const std::string& name;
    const Vocabulary vocabulary;
    WrittenCertificate result;
    long number = 0;
    std::string_view text; // of the line, what is left of it
    bool weighed = false;  // whether sets are of the last sum
    bool lists = false;    // whether the last line may be followed by an automaton
};

} // namespace

WrittenCertificate readCertificate(std::istream& in, const std::string& name,
                                   const NetTimedModel& model, const Names& names) {
    return Reader(in, name, model, names).read();
}

} // namespace tervoxal
