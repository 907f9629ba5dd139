#include "query/grammar.h"

#include <array>
#include <cstddef>
#include <string_view>

namespace tervoxal {

namespace {

/// What an expression can be. A meaning goes on in a row without a form.
struct Form {
    Grammar least; // that has it
    std::string_view text;
    std::string_view meaning;
};

constexpr std::array<Form, 24> forms = {
    {{Grammar::ofFormulas, "!a", "not a"},
     {Grammar::ofFormulas, "a & b", "a and b"},
     {Grammar::ofFormulas, "a | b", "a or b"},
     {Grammar::ofFormulas, "a -> b", "a implies b; a -> b -> c is a -> (b -> c)"},
     {Grammar::ofFormulas, "(a)", "brackets"},
     {Grammar::ofFormulas, "true, false", "the constants"},
     {Grammar::ofFormulas, "name", "the proposition that the network names so"},
     {Grammar::ofFormulas, "p12", "proposition 12"},
     {Grammar::ofFormulas, "count(a, b) >= 1",
      "so many of the propositions hold; also <, <=, =, !=, >"},
     {Grammar::ofFormulas, R"(any(a, "b*"))",
      "some of them holds; all(a, b): all of them; here and in"},
     {Grammar::ofFormulas, "", "count, a name in quotes with * or ? is all that match"},
     {Grammar::whole, "", "as well: at(a, l) and enabled(x), likewise"},
     {Grammar::whole, "deadlock", "no action is possible"},
     {Grammar::whole, "deadlock(x)", "no action but this, or several, is possible"},
     {Grammar::whole, "enabled(x)", "the action of that name or number is possible"},
     {Grammar::whole, "at(a, l)", "automaton a is in its location l, by names or numbers"},
     {Grammar::ofPaths, "after(x)", "the last step was action x"},
     {Grammar::ofPaths, "initial", "no step has been taken yet"},
     {Grammar::ofPaths, "EX a, AX a", "a after the next step, of some path, of all paths"},
     {Grammar::ofPaths, "EF a, AF a", "a some time"},
     {Grammar::ofPaths, "EG a, AG a", "a for ever, or until no action is possible"},
     {Grammar::ofPaths, "E[a U b]", "b some time and a up to then; A[a U b] likewise"},
     {Grammar::ofFormulas, R"("a name")", "any name that holds blanks, operators or brackets;"},
     {Grammar::ofFormulas, "", R"(\" and \\ stand for " and \ in it)"}}};

} // namespace

std::string grammarHelp(Grammar grammar) {
    constexpr std::size_t width = 18;
    std::string help;
    for (const Form& form : forms) {
        if (form.least > grammar) continue;
        help += "  ";
        help += form.text;
        help.append(width - form.text.size(), ' ');
        help += form.meaning;
        help += '\n';
    }
    return help + "\n! binds strongest, then &, |, ->.\n";
}

} // namespace tervoxal
