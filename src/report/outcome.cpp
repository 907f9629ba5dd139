#include "report/outcome.h"

#include "text/amounts.h"

namespace tervoxal {

std::string ofLengths(int to) { return " of " + std::string(to > 0 ? "0 to " : "") + steps(to); }

namespace {

std::string ofClaim(const Outcome& outcome) {
    using Kind = Outcome::Kind;
    switch (outcome.kind) {
    case Kind::path: return "does not hold: path" + outcome.detail;
    case Kind::never: return "holds" + outcome.detail;
    case Kind::none: return "holds on all paths" + outcome.detail;
    case Kind::open: break;
    }
    return outcome.detail.starts_with(' ') ? "holds on all paths" + outcome.detail : outcome.detail;
}

} // namespace

std::string Outcome::brief() const {
    if (claim) return ofClaim(*this);
    switch (kind) {
    case Kind::path: return "path" + detail;
    case Kind::never: return "never" + detail;
    case Kind::none: return "none" + detail;
    case Kind::open: break;
    }
    return detail.starts_with(' ') ? "none" + detail : detail;
}

std::string Outcome::full() const {
    if (claim) return ofClaim(*this);
    switch (kind) {
    case Kind::path: return "a path" + detail;
    case Kind::never: return "never, at any length" + detail;
    case Kind::none: return "no path" + detail;
    case Kind::open: break;
    }
    return detail.starts_with(' ') ? "no path" + detail : detail;
}

namespace {

Outcome outcomeOfPaths(const Known& known, const Lengths& lengths) {
    using Kind = Outcome::Kind;
    if (known.unreachable) return {Kind::never, ": proved and checked"};
    if (known.path && known.path->k <= lengths.to) {
        const bool told = lengths.any || known.least();
        return {Kind::path,
                " of " + steps(known.path->k) + (told ? "" : ", not known to be the shortest")};
    }
    if (known.path && known.refuted < lengths.to) {
        return {Kind::open,
                ofLengths(lengths.to) + " is known; there is one of " + steps(known.path->k)};
    }
    if (known.refuted < 0) {
        return {Kind::open, known.open.empty() ? "no length is decided" : known.open};
    }
    const std::string range = ofLengths(known.refuted);
    if (known.refuted < lengths.to) return {Kind::open, range + ", longer ones not looked at"};
    return {Kind::none, range + (known.path ? "; there is one of " + steps(known.path->k) : "")};
}

} // namespace

Outcome outcomeOf(const Known& known, const Lengths& lengths) {
    Outcome outcome = outcomeOfPaths(known, lengths);
    outcome.claim = known.claim;
    return outcome;
}

} // namespace tervoxal
