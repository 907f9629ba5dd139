#include "programs/invariant.h"

#include "text/fatal.h"
#include "text/lines.h"
#include "text/readable.h"
#include "text/scanner.h"

#include <string_view>
#include <utility>

namespace tervoxal {

namespace {

class InvariantReader {
public:
    InvariantReader(std::istream& in, const std::string& name, std::size_t latches)
        : lines(in), name(name), all(latches) {}

    std::vector<Cube> read() {
        while (lines.next()) take(lines.text);
        if (!ended) error(name + ": cut off before the .e at the end");
        if (cubes.size() != rows) {
            error(name + ": " + std::to_string(cubes.size()) + " rows in place of " +
                  std::to_string(rows));
        }
        return std::move(cubes);
    }

private:
    void take(std::string_view rest) {
        if (ended) refuse("after the end", rest);
        const std::string_view word = takeWord(rest);
        if (word == ".e") {
            ended = true;
        } else if (word == ".i") {
            inputs = number(rest);
        } else if (word == ".p") {
            rows = number(rest);
        } else if (word == ".ilb") {
            takeLatches(rest);
        } else if (word == ".o" || word == ".ob") {
            if (word == ".o" && number(rest) != 1) refuse("not 1", rest);
        } else {
            takeRow(word, rest);
        }
    }

    void takeLatches(std::string_view rest) {
        std::vector<bool> taken(all);
        for (std::string_view word; !(word = takeWord(rest)).empty();) {
            std::size_t latch = all;
            const bool named = word.starts_with("lo");
            if (named) (void)wholeNumber(word.substr(2), latch);
            if (latch >= all || taken[latch]) refuse("no latch, or one twice", word);
            taken[latch] = true;
            latches.push_back(latch);
        }
        if (latches.size() != inputs) refuse("another number of latches than in .i", "");
    }

    void takeRow(std::string_view row, std::string_view rest) {
        if (latches.empty()) { // then a row has no word but its value
            rest = row;
            row = "";
        }
        if (row.size() != latches.size() || trimmed(rest) != "1" ||
            row.find_first_not_of("01-") != std::string_view::npos) {
            refuse("no row of the invariant", row);
        }
        Cube& cube = cubes.emplace_back();
        for (std::size_t i = 0; i < row.size(); ++i) {
            if (row[i] != '-') cube.latches.push_back({latches[i], row[i] == '1'});
        }
    }

    std::size_t number(std::string_view text) const {
        std::size_t n = 0;
        if (wholeNumber(trimmed(text), n) != Found::number) refuse("no number", text);
        return n;
    }

    [[noreturn]] void refuse(const std::string& why, std::string_view text) const {
        error(name + ", line " + std::to_string(lines.number) + ": " + why + ": '" +
              excerpt(trimmed(text)) + "'");
    }

    Lines lines;
    const std::string& name;
    std::size_t all;
    std::size_t inputs = 0;
    std::size_t rows = 0;
    std::vector<std::size_t> latches; // those of .ilb
    std::vector<Cube> cubes;
    bool ended = false;
};

} // namespace

std::vector<Cube> readInvariant(std::istream& in, const std::string& name, std::size_t latches) {
    return InvariantReader(in, name, latches).read();
}

} // namespace tervoxal
