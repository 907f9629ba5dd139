// What is found in a file: errors, for which a run refuses it, and warnings.

#pragma once

#include <cstddef>
#include <map>
#include <ostream>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace tervoxal {

/// The findings of one file. They are alike if they differ only in their numbers and between their
/// first double quote and the last one. Ten that are alike are kept and the others counted, so no
/// file makes a flood of them.
class Diagnostics {
public:
    Diagnostics() = default;
    /// Leaves out the notes of these kinds.
    explicit Diagnostics(std::set<std::string> without) : without(std::move(without)) {}

    void error(long line, const std::string& text) { add(line, Kind::error, text); }
    void warn(long line, const std::string& text) { add(line, Kind::warning, text); }

    /// A warning that is a matter of opinion. Its kind stands after the text, in brackets.
    void note(const std::string& kind, long line, const std::string& text) {
        if (!without.contains(kind)) warn(line, text + " [" + kind + ']');
    }

    [[nodiscard]] bool empty() const { return found.empty(); }
    [[nodiscard]] bool refused() const { return errors; }
    /// Writes `FILE:LINE: error: TEXT` or `FILE:LINE: warning: TEXT` for each, by line; those of
    /// one line in the order in which they were found.
    void show(std::ostream& out, const std::string& file) const;

private:
    enum class Kind { error, warning };
    struct Finding {
        long line;
        Kind kind;
        std::string text;
    };
    /// Diagnostics that are alike.
    struct Alike {
        std::size_t count = 0;
        std::size_t last = 0; // of found
    };

    void add(long line, Kind kind, const std::string& text);

    std::set<std::string> without;
    std::vector<Finding> found;
    std::map<std::string, Alike> alike;
    bool errors = false;
};

} // namespace tervoxal
