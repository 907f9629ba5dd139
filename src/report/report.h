// A path as people and programs read it: as text, as JSON, as a waveform, as a picture. Each report
// starts at position 0, writes as it goes and stops early if the stream fails. None of them judges
// the path: replay has to come first. All are UTF-8, whatever bytes the names have.

#pragma once

#include "model/names.h"
#include "query/condition.h"
#include "replay/walk.h"
#include "system/command.h"

#include <ostream>
#include <string>
#include <vector>

namespace tervoxal {

/// What is shown of a path.
struct Report {
    const Walk& start; // at position 0
    const Condition& condition;
    const Names& names;
    std::string network; // what the command was called with, for the headings
    std::string formula; // empty: nothing is asked, and the start's condition holds nowhere
    bool all = false;    // show also automata that neither the path nor the formula touches
};

/// The automata that move on the path or that the condition speaks of, ascending; all where there
/// is none of these, or all are asked for.
[[nodiscard]] std::vector<uint> shownAutomata(const Report& report);
/// How a path goes on that shows a formula about paths: ", goes on at state 3", ", ends: no action
/// is possible", or nothing.
[[nodiscard]] std::string whereItGoes(const Path& path);

/// Writes a report of one format.
using Show = void (*)(std::ostream& out, const Report& report);

/// One block for each step, with the states before the first and after the last. These leave out
/// what shownAutomata leaves out, and a line at the head tells how many.
void showText(std::ostream& out, const Report& report);
/// One JSON object (RFC 8259), a line for each automaton and each position.
void showJson(std::ostream& out, const Report& report);
/// A value change dump (IEEE 1364) with strings as GTKWave has them. Time is the position.
void showVcd(std::ostream& out, const Report& report);
/// The network as a picture with the path on it, in DOT. Automata that take part in no step and
/// that the condition does not speak of are left out, and counted, unless all are asked for.
void showDot(std::ostream& out, const Report& report);

/// A page for a browser (page.h).
void showPage(std::ostream& out, const Report& report);

/// What --format asks for: text, json, vcd, dot or html.
struct Format {
    std::string name;
    Show show;
};
/// That of a command line, text without the option. Another name is a misuse.
[[nodiscard]] Format askedFormat(const CommandLine& line);

} // namespace tervoxal
