// Writes the networks and formulas that scripts/bench measures. All of it is arithmetic on the
// parameters, so a family with its parameters gives the same bytes everywhere.

#include "model/networkwriter.h"
#include "workflow.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <fstream>
#include <initializer_list>
#include <iostream>
#include <random>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

using namespace tervoxal;

namespace {

using Params = std::vector<long>;

// The largest action number of any family is below 20 times a parameter, or its square where the
// network grows so as well, and has to be an int.
constexpr long maxParam = 100000000;

unsigned int number(long n) { return static_cast<unsigned int>(n); }

void heading(NetworkWriter& net, long automaton, long nrOfLocations) {
    net.automaton("automaton " + std::to_string(automaton));
    for (long l = 0; l < nrOfLocations; ++l) net.location(number(l));
}

void transition(NetworkWriter& net, long source, long target, long action) {
    net.transition(number(source), number(target), number(action));
}

/// The location and its propositions as one line.
void value(NetworkWriter& net, long location, std::initializer_list<long> props) {
    std::vector<unsigned int> numbers;
    for (const long p : props) numbers.push_back(number(p));
    net.value(number(location), numbers);
}

std::string prop(long p) { return std::string("p").append(std::to_string(p)); }

// std::mt19937 gives the same numbers on every machine, the distributions of <random> do not.
long below(std::mt19937& random, long bound) { return static_cast<long>(random()) % bound; }

// Philosopher i takes fork i and then the next one, and puts them back in that order.
std::string philosophers(const Params& params, NetworkWriter& net) {
    const long n = params[0];
    for (long i = 0; i < n; ++i) {
        heading(net, i + 1, 4);
        for (long l = 0; l < 4; ++l) {
            transition(net, l, (l + 1) % 4, 10 * i + l + 1);
        }
        net.valuation();
        value(net, 1, {100 + i});
        value(net, 2, {200 + i, 1});
        net.endAutomaton();
    }
    for (long i = 0; i < n; ++i) {
        const long other = (i + n - 1) % n;
        heading(net, n + i + 1, 2);
        transition(net, 0, 1, 10 * i + 1);
        transition(net, 1, 0, 10 * i + 3);
        transition(net, 0, 1, 10 * other + 2);
        transition(net, 1, 0, 10 * other + 4);
        net.valuation();
        net.endAutomaton();
    }
    return prop(100) + prop(100 + n - 1) + "&";
}

// A producer, n stages and a consumer, each handing on to the next.
std::string pipeline(const Params& params, NetworkWriter& net) {
    const long last = params[0] + 2;
    for (long i = 1; i <= last; ++i) {
        heading(net, i, 2);
        transition(net, 0, 1, i);
        transition(net, 1, 0, i == last ? 1000 : i + 1);
        const long p = i == 1 ? 1 : i == last ? 2 : i + 8;
        net.valuation();
        value(net, 1, {p});
        net.endAutomaton();
    }
    return "p1p2&";
}

// Counters that step alone and wrap around together.
std::string counters(const Params& params, NetworkWriter& net) {
    const long top = params[1] - 1;
    for (long i = 1; i <= params[0]; ++i) {
        heading(net, i, top + 1);
        for (long l = 0; l < top; ++l) {
            transition(net, l, l + 1, i);
        }
        transition(net, top, 0, 0);
        net.valuation();
        value(net, top, {1});
        value(net, 0, {2});
        net.endAutomaton();
    }
    return "p1p-2&";
}

// Two walkers on a torus that always take the same direction.
std::string grid(const Params& params, NetworkWriter& net) {
    const long n = params[0];
    for (long i = 1; i <= 2; ++i) {
        heading(net, i, n * n);
        for (long row = 0; row < n; ++row) {
            for (long column = 0; column < n; ++column) {
                const long here = row * n + column;
                transition(net, here, row * n + (column + 1) % n, 0);
                transition(net, here, (row + 1) % n * n + column, 1);
                transition(net, here, row * n + (column + n - 1) % n, 2);
                transition(net, here, (row + n - 1) % n * n + column, 3);
            }
        }
        net.valuation();
        value(net, n * n - 1, {1});
        net.endAutomaton();
    }
    return "p1";
}

// One variable a position, so the path can be as long as the variables allow.
std::string onebit(const Params&, NetworkWriter& net) {
    heading(net, 1, 2);
    transition(net, 0, 1, 1);
    transition(net, 1, 0, 2);
    net.valuation();
    value(net, 1, {1});
    net.endAutomaton();
    return "p1";
}

// The first half of the formula is a chain that keeps the stack of a reader at two entries, the
// second half piles up all its propositions before their operators.
std::string tokens(const Params& params, NetworkWriter& net) {
    heading(net, 1, 2);
    transition(net, 0, 1, 1);
    transition(net, 1, 0, 2);
    net.valuation();
    value(net, 0, {1});
    value(net, 1, {2, 3});
    net.endAutomaton();
    heading(net, 2, 3);
    transition(net, 0, 1, 1);
    transition(net, 1, 2, 0);
    transition(net, 2, 0, 3);
    net.valuation();
    value(net, 2, {4});
    net.endAutomaton();

    std::mt19937 random(1);
    const auto operand = [&random] {
        const std::string start = below(random, 4) == 0 ? "p-" : "p";
        return start + std::to_string(1 + below(random, 4));
    };
    const auto operation = [&random] { return below(random, 2) == 0 ? '&' : '+'; };

    const long operations = (params[0] - 1) / 2;
    const long piled = operations / 2;
    std::string formula = operand();
    for (long i = 0; i < operations - piled; ++i) {
        formula += operand();
        formula += operation();
    }
    for (long i = 0; i < piled; ++i) {
        formula += operand();
    }
    for (long i = 0; i < piled; ++i) {
        formula += operation();
    }
    return formula;
}

std::string single(const Params& params, NetworkWriter& net) {
    const long locations = params[0];
    std::mt19937 random(1);
    heading(net, 1, locations);
    for (long i = 0; i < params[1]; ++i) {
        transition(net, i % locations, below(random, locations), 1 + i / locations);
    }
    net.valuation();
    value(net, locations - 1, {1});
    net.endAutomaton();
    return "p1";
}

std::string own(const Params& params, NetworkWriter& net) {
    for (long i = 1; i <= params[0]; ++i) {
        heading(net, i, 2);
        transition(net, 0, 1, i);
        transition(net, 1, 0, i);
        net.valuation();
        value(net, 1, {i});
        net.endAutomaton();
    }
    return prop(1) + prop(params[0]) + "&";
}

// Every location carries a tenth of the propositions, and hardly any has a transition, so that
// the valuation is all there is to the size.
std::string valuation(const Params& params, NetworkWriter& net) {
    const long entries = params[0];
    const long props = params[1];
    const long perLocation = std::max(1L, props / 10);
    const long automata = 4;
    const long perAutomaton = automata * perLocation;
    const long locations = std::max(2L, (entries + perAutomaton - 1) / perAutomaton);
    for (long a = 0; a < automata; ++a) {
        heading(net, a + 1, locations);
        transition(net, 0, 1, 1);
        transition(net, 1, 0, 2);
        net.valuation();
        for (long l = 0; l < locations; ++l) {
            const long first = (a * locations + l) * perLocation;
            const long count = std::min(perLocation, entries - first);
            if (count <= 0) {
                break;
            }
            std::vector<unsigned int> carried;
            for (long j = 0; j < count; ++j) carried.push_back(number(1 + (l + 10 * j) % props));
            net.value(number(l), carried);
        }
        net.endAutomaton();
    }
    return "p1p2+";
}

// Disks on three pegs, each an automaton. To move one, all smaller ones have to be on the third
// peg. The tower is on the last peg after 2^N - 1 moves, no two of which are independent.
std::string towers(const Params& params, NetworkWriter& net) {
    std::string formula;
    for (long d = 1; d <= params[0]; ++d) {
        heading(net, d, 3);
        for (long moved = d; moved <= params[0]; ++moved) {
            for (long from = 0; from < 3; ++from) {
                for (long to = 0; to < 3; ++to) {
                    const long third = 3 - from - to;
                    const bool own = moved == d;
                    if (from == to) continue;
                    transition(net, own ? from : third, own ? to : third,
                               10 * moved + 3 * from + to);
                }
            }
        }
        net.valuation();
        value(net, 2, {d});
        net.endAutomaton();
        formula += prop(d) + (d > 1 ? "&" : "");
    }
    return formula;
}

// Trains on a line of track with a siding in its middle. A piece of track, an automaton, is free or
// taken, and a move is one of a train and of two pieces. They start in a row after the left end,
// and end in the opposite order: long ways, and back, on which most can move at once.
std::string shunting(const Params& params, NetworkWriter& net) {
    const long trains = params[0];
    const long line = 2 * trains;
    const long pieces = line + 1; // the last one is the siding
    const auto follows = [&](long from, long to) {
        const long most = std::max(from, to);
        const long least = std::min(from, to);
        return most == line ? least == trains : most == least + 1;
    };
    const auto action = [&](long train, long from, long to) {
        return 4 * (train * pieces + from) + (to == line ? 2 : to > from || from == line ? 1 : 0);
    };
    std::string formula;
    for (long t = 0; t < trains; ++t) {
        heading(net, t + 1, pieces);
        // Locations count from the piece at the start.
        const auto location = [&](long piece) { return (piece + pieces - t) % pieces; };
        for (long from = 0; from < pieces; ++from) {
            for (long to = 0; to < pieces; ++to) {
                if (!follows(from, to)) continue;
                transition(net, location(from), location(to), action(t, from, to));
            }
        }
        net.valuation();
        value(net, location(trains - 1 - t), {t + 1});
        net.endAutomaton();
        formula += prop(t + 1) + (t > 0 ? "&" : "");
    }
    for (long piece = 0; piece < pieces; ++piece) {
        heading(net, trains + piece + 1, 2);
        const long taken = piece < trains ? 0 : 1;
        for (long t = 0; t < trains; ++t) {
            for (long other = 0; other < pieces; ++other) {
                if (!follows(piece, other)) continue;
                transition(net, taken, 1 - taken, action(t, piece, other));
                transition(net, 1 - taken, taken, action(t, other, piece));
            }
        }
        net.valuation();
        net.endAutomaton();
    }
    return formula;
}

// A ring of N places on which K tokens go round, and a guest at each place who takes a token along,
// meets the next guest while that one has a token as well, and puts it back. The question is
// whether M guests on the other side of the ring, every second one, have met theirs and not put
// theirs back. Of K tokens that can be K - 1.
std::string guests(const Params& params, NetworkWriter& net) {
    const long n = params[0];
    for (long i = 0; i < n; ++i) {
        heading(net, 2 * i + 1, 2);
        const long full = i < params[1] ? 0 : 1;
        transition(net, full, 1 - full, 4 * i);
        transition(net, 1 - full, full, 4 * ((i + n - 1) % n));
        transition(net, full, 1 - full, 4 * i + 1);
        transition(net, 1 - full, full, 4 * i + 2);
        net.valuation();
        net.endAutomaton();
        heading(net, 2 * i + 2, 3);
        const long met = 4 * ((i + n - 1) % n) + 3;
        transition(net, 0, 1, 4 * i + 1);
        transition(net, 1, 2, 4 * i + 3);
        transition(net, 2, 0, 4 * i + 2);
        transition(net, 1, 1, met);
        transition(net, 2, 2, met);
        net.valuation();
        value(net, 2, {i + 1});
        net.endAutomaton();
    }
    std::string formula;
    for (long j = 0; j < params[2]; ++j) {
        formula += prop((n / 2 + 2 * j) % n + 1) + (j > 0 ? "&" : "");
    }
    return formula;
}

// Each place is an automaton that holds a token or none, as of a net without units.
std::string workflow(const Params& params, NetworkWriter& net) {
    Workflow flow(params[0], params[1]);
    const auto size = static_cast<std::size_t>(flow.size());
    std::vector<std::vector<long>> taking(size);
    std::vector<std::vector<long>> giving(size);
    for (std::size_t t = 0; t < flow.transitions().size(); ++t) {
        for (const long p : flow.transitions()[t].from) {
            taking[static_cast<std::size_t>(p)].push_back(static_cast<long>(t));
        }
        for (const long p : flow.transitions()[t].to) {
            giving[static_cast<std::size_t>(p)].push_back(static_cast<long>(t));
        }
    }
    for (std::size_t p = 0; p < size; ++p) {
        heading(net, static_cast<long>(p), 2);
        const long full = p == 0 ? 0 : 1;
        for (const long t : taking[p]) transition(net, full, 1 - full, t);
        for (const long t : giving[p]) transition(net, 1 - full, full, t);
        net.valuation();
        value(net, full, {static_cast<long>(p)});
        net.endAutomaton();
    }
    return prop(flow.size() - 1);
}

// Twenty, by turns met and never met; their names tell which.
std::string workflowQuestions(const Params& params) {
    Workflow flow(params[0], params[1]);
    std::string text;
    for (int i = 0; i < 20; ++i) {
        const bool met = i % 2 == 0;
        text += (met ? "path" : "never") + std::to_string(i) + ": ";
        if (i == 1) {
            text += "deadlock\n";
            continue;
        }
        const std::vector<long> places = flow.places(met);
        for (const long p : places) text += (p == places[0] ? "" : " & ") + prop(p);
        text += '\n';
    }
    return text;
}

// A family writes the automata of its network and returns its formula. Some have questions as well.
struct Family {
    std::string_view name;
    std::string_view letters; // one for each parameter
    std::string (*write)(const Params& params, NetworkWriter& net);
    std::string_view about;
    std::string (*questions)(const Params& params) = nullptr;
};

constexpr Family families[] = {
    {"philosophers", "N", philosophers, "N philosophers and N forks"},
    {"pipeline", "N", pipeline, "N stages between a producer and a consumer"},
    {"counters", "NM", counters, "N counters of M values that wrap around together"},
    {"grid", "N", grid, "two walkers on an N by N torus"},
    {"onebit", "", onebit, "one automaton of two locations"},
    {"tokens", "M", tokens, "two processes, a formula of M tokens (one less if M is even)"},
    {"single", "LT", single, "one automaton of L locations and T transitions"},
    {"own", "N", own, "N automata of two locations, each with its own action"},
    {"valuation", "EP", valuation, "a valuation of E entries over P propositions"},
    {"towers", "N", towers, "N disks on three pegs, to be moved to the last one"},
    {"shunting", "T", shunting, "T trains and one siding, to be put in the opposite order"},
    {"guests", "NKM", guests, "a ring of N guests with K tokens, M of whom are to meet"},
    {"workflow", "PS", workflow, "a workflow of P places by seed S, with questions",
     workflowQuestions},
};

std::string shape(const Family& family) {
    std::string text(family.name);
    for (const char letter : family.letters) {
        text += ' ';
        text += letter;
    }
    return text;
}

int usage() {
    std::cerr << "Usage: networks FAMILY PARAM... BASE\n"
                 "Writes the network BASE.in and the formula BASE-formula.in, and for workflow\n"
                 "BASE-questions as well. The families:\n";
    for (const Family& family : families) {
        std::string left = shape(family);
        left.resize(std::max<std::size_t>(left.size(), 16), ' ');
        std::cerr << "  " << left << family.about << '\n';
    }
    return 2;
}

// 0 for a text that is no parameter.
long parameter(std::string_view text) {
    long value = 0;
    const char* const end = text.data() + text.size();
    const auto [rest, status] = std::from_chars(text.data(), end, value);
    const bool valid = status == std::errc() && rest == end && value >= 1 && value <= maxParam;
    return valid ? value : 0;
}

int generate(const Family& family, const Params& params, const std::string& base) {
    std::string heading(family.name);
    for (const long p : params) heading += ' ' + std::to_string(p);
    std::ofstream file(base + ".in");
    NetworkWriter net(file, heading);
    std::ofstream formula(base + "-formula.in");
    formula << family.write(params, net) << '\n';
    net.end();
    file.close();
    formula.close();
    bool written = file && formula;
    if (family.questions != nullptr) {
        std::ofstream questions(base + "-questions");
        questions << family.questions(params);
        questions.close();
        written = written && questions;
    }
    if (!written) {
        std::cerr << "networks: cannot write the files of " << base << '\n';
        return 1;
    }
    return 0;
}

} // namespace

int main(int argc, char** argv) {
    const std::vector<std::string> arguments(argv + std::min(argc, 1), argv + argc);
    if (arguments.empty()) {
        return usage();
    }
    for (const Family& family : families) {
        if (family.name != arguments[0] || arguments.size() != family.letters.size() + 2) {
            continue;
        }
        Params params;
        for (std::size_t i = 0; i < family.letters.size(); ++i) {
            params.push_back(parameter(arguments[i + 1]));
        }
        if (std::find(params.begin(), params.end(), 0) == params.end()) {
            return generate(family, params, arguments.back());
        }
    }
    return usage();
}
