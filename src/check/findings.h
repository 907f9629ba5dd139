// What is found in a file that people write: errors, for which it is refused, and warnings.

#pragma once

#include <cstddef>
#include <map>
#include <ostream>
#include <string>
#include <vector>

/// The findings of one file. Findings are alike if they differ only in numbers and in what stands
/// from the first double quote to the last one. Of those the first ten are kept and the others
/// counted, so no file makes a flood of them.
class Findings {
public:
    void error(long line, const std::string& text) { add(line, Kind::error, text); }
    void warn(long line, const std::string& text) { add(line, Kind::warning, text); }

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
    /// Findings that are alike.
    struct Alike {
        std::size_t count = 0;
        std::size_t last = 0; // of found
    };

    void add(long line, Kind kind, const std::string& text);

    std::vector<Finding> found;
    std::map<std::string, Alike> alike;
    bool errors = false;
};
