#include "boolean/dimacs.h"

#include "boolean/boolform.h"
#include "system/filenames.h"
#include "system/outputfile.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <string_view>
#include <vector>

using namespace tervoxal;

namespace {

/// From the numbers of formulas to those of a file, which are shift nearer to 0 from 1000000 on if
/// they are larger than shift.
class FileNumbers {
public:
    explicit FileNumbers(int shift)
        : shift(shift), kept(std::max(shift, BoolForm::maxVariable - 1)) {}

    int operator()(int nr) const { return nr > kept ? nr - shift : nr; }

private:
    int shift;
    int kept; // the largest number that is
};

/// The four digits of each number below 10000, with zeros in front, the first in the lowest byte.
constexpr auto fourDigits = [] {
    std::array<std::uint32_t, 10000> t{};
    for (std::uint32_t n = 0; n < 10000; ++n) {
        t[n] =
            0x30303030U | n / 1000 | (n / 100 % 10) << 8U | (n / 10 % 10) << 16U | (n % 10) << 24U;
    }
    return t;
}();

/// Writes n, at least 1, in decimal at the place and returns the end. May overwrite ten characters.
/// Eight digits at once, without those in front: a twentieth less time for the whole run than
/// std::to_chars, and a little less than by arithmetic without a table.
char* putNumber(char* at, unsigned n) {
    if constexpr (std::endian::native == std::endian::little) {
        if (n < 100000000) {
            const std::uint64_t digits =
                fourDigits[n / 10000] | std::uint64_t(fourDigits[n % 10000]) << 32U;
            const int zeros = std::countr_zero(digits & 0x0F0F0F0F0F0F0F0FU) & ~7; // in front
            const std::uint64_t rest = digits >> static_cast<unsigned>(zeros);
            std::memcpy(at, &rest, sizeof rest);
            return at + (64 - zeros) / 8;
        }
    }
    return std::to_chars(at, at + 10, n).ptr;
}

/// Formats the lines of a file into one large block and hands full blocks to the file.
class LineWriter {
public:
    LineWriter(const std::string& file, const FileNumbers& numbers)
        : out(file), block(blockSize), numbers(numbers) {}

    void heading(int variables, std::size_t clauses) {
        out.write("p cnf " + std::to_string(variables) + ' ' + std::to_string(clauses) + '\n');
    }
    void line(const Clause& c) {
        char* at = block.data() + used;
        if (c.l1 != 0) at = put(at, c.l1);
        if (c.l2 != 0) at = put(at, c.l2);
        if (c.l3 != 0) at = put(at, c.l3);
        *at++ = '0';
        *at++ = '\n';
        used = static_cast<std::size_t>(at - block.data());
        if (used > blockSize - lineSize) flush();
    }
    void close() {
        flush();
        out.close();
    }

private:
    [[nodiscard]] char* put(char* at, int literal) const {
        *at = '-';
        at = putNumber(at + (literal < 0 ? 1 : 0),
                       static_cast<unsigned>(numbers(std::abs(literal))));
        *at = ' ';
        return at + 1;
    }
    void flush() {
        out.write(std::string_view(block.data(), used));
        used = 0;
    }

    static constexpr std::size_t blockSize = 1U << 18U;
    static constexpr std::size_t lineSize = 64; // no line is longer
    OutputFile out;
    std::vector<char> block;
    std::size_t used = 0;
    FileNumbers numbers;
};

/// Writes clauses of which top is the largest literal and topVariable the largest variable, 1000000
/// included: it may be the only one to keep its number, and then be above the nodes.
template <class Clauses>
void write(const Clauses& cs, const std::string& file, int top, int topVariable,
           const FileNumbers& numbers) {
    LineWriter out(file, numbers);
    out.heading(std::max(numbers(top), numbers(topVariable)), cs.size());
    for (const Clause& c : cs) out.line(c);
    out.close();
}

/// The largest absolute value below the limit of any literal, 0 if there is none.
int largestBelow(const std::set<Clause>& cs, unsigned limit) {
    int r = 0;
    for (const Clause& c : cs) {
        for (const int literal : {c.l1, c.l2, c.l3}) {
            const int n = std::abs(literal);
            if (static_cast<unsigned>(n) < limit) r = std::max(r, n);
        }
    }
    return r;
}

} // namespace

int maxCNFVarNr(const std::set<Clause>& cs) {
    return largestBelow(cs, std::numeric_limits<unsigned>::max());
}

int maxCNFOrgVarNr(const std::set<Clause>& cs) { return largestBelow(cs, BoolForm::maxVariable); }

void showCNF(const std::set<Clause>& cs, std::string name) {
    const FileNumbers numbers(BoolForm::maxVariable - maxCNFOrgVarNr(cs));
    write(cs, name.append(clauseSuffix), maxCNFVarNr(cs),
          largestBelow(cs, BoolForm::maxVariable + 1), numbers);
}

void showCNF(const ClauseRange& cs, std::string name) {
    const FileNumbers numbers(BoolForm::maxVariable - cs.maxVariable());
    write(cs, name.append(clauseSuffix), cs.maxNr(), cs.topVariable(), numbers);
}

void showCNF(const std::set<Clause>& cs) {
    write(cs, "test.cnf", maxCNFVarNr(cs), 0, FileNumbers(0));
}

int createClauseVect(const std::set<Clause>& cs, std::vector<std::vector<int>>& v) {
    const FileNumbers numbers(BoolForm::maxVariable - maxCNFOrgVarNr(cs));
    int largest = 0;
    for (const Clause& c : cs) {
        std::vector<int>& literals = v.emplace_back();
        for (const int literal : {c.l1, c.l2, c.l3}) {
            if (literal == 0) continue;
            const int nr = numbers(std::abs(literal));
            literals.push_back(literal < 0 ? -nr : nr);
            largest = std::max(largest, nr);
        }
    }
    return largest;
}
