#include "outcome.h"

#include "amounts.h"

std::string ofLengths(int from, int to) {
    return " of " + (from < to ? std::to_string(from) + " to " : "") + steps(to);
}

std::string Outcome::brief() const {
    switch (kind) {
    case Kind::path: return "path" + detail;
    case Kind::never: return "never" + detail;
    case Kind::none: return "none" + detail;
    case Kind::open: break;
    }
    return detail.starts_with(' ') ? "none" + detail : detail;
}

std::string Outcome::full() const {
    switch (kind) {
    case Kind::path: return "a path" + detail;
    case Kind::never: return "never, at any length" + detail;
    case Kind::none: return "no path" + detail;
    case Kind::open: break;
    }
    return detail.starts_with(' ') ? "no path" + detail : detail;
}

Outcome outcomeOf(const Search& search, const Finding& finding, const Search::Range& range) {
    using Kind = Outcome::Kind;
    if (finding.certificate) return {Kind::never, ": proved and checked"};
    if (finding.never) return {Kind::never, ": no path has more than " + steps(search.longest())};
    if (finding.found && finding.length() <= range.to) {
        const bool told = finding.least() || range.any;
        return {Kind::path,
                " of " + steps(finding.length()) + (told ? "" : ", not known to be the shortest")};
    }
    if (finding.refuted < range.from) return {Kind::open, "no length is decided"};
    const std::string lengths = ofLengths(range.from, finding.refuted);
    if (finding.refuted < range.to) return {Kind::open, lengths + ", longer ones not looked at"};
    return {Kind::none,
            lengths + (finding.found ? "; there is one of " + steps(finding.length()) : "")};
}
