#include "report/outcome.h"

#include "text/amounts.h"

namespace tervoxal {

std::string ofLengths(int to) { return " of " + std::string(to > 0 ? "0 to " : "") + steps(to); }

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

Outcome outcomeOf(const Known& known, const Lengths& lengths) {
    using Kind = Outcome::Kind;
    if (known.unreachable) return {Kind::never, ": proved and checked"};
    if (known.path && known.path->k <= lengths.to) {
        const bool told = lengths.any || known.refuted + 1 >= known.path->k;
        return {Kind::path,
                " of " + steps(known.path->k) + (told ? "" : ", not known to be the shortest")};
    }
    if (known.path && known.refuted < lengths.to) {
        return {Kind::open,
                ofLengths(lengths.to) + " is known; there is one of " + steps(known.path->k)};
    }
    if (known.refuted < 0) return {Kind::open, "no length is decided"};
    const std::string range = ofLengths(known.refuted);
    if (known.refuted < lengths.to) return {Kind::open, range + ", longer ones not looked at"};
    return {Kind::none, range + (known.path ? "; there is one of " + steps(known.path->k) : "")};
}

} // namespace tervoxal
