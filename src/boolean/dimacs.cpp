#include "dimacs.h"

#include "boolform.h"
#include "outputfile.h"

#include <algorithm>
#include <charconv>
#include <cstdlib>
#include <string_view>
#include <vector>

int fileNr(int literal, int shift) {
    if (literal > BoolForm::maxVariable) return literal - shift;
    if (literal < -BoolForm::maxVariable) return literal + shift;
    return literal;
}

namespace {

/// Formats numbers and words into one large block and hands full blocks to the file.
class BlockWriter {
public:
    explicit BlockWriter(const std::string& file) : out(file), block(blockSize) {}
    void text(const char* word) {
        while (*word != 0) put(*word++);
    }
    void put(char c) { block[used++] = c; }
    template <class Number>
    void number(Number n) {
        char* const begin = block.data() + used;
        used += static_cast<std::size_t>(std::to_chars(begin, begin + lineSize, n).ptr - begin);
    }
    void endLine() {
        put('\n');
        if (used > blockSize - lineSize) flush();
    }

    void close() {
        flush();
        out.close();
    }

private:
    void flush() {
        out.write(std::string_view(block.data(), used));
        used = 0;
    }

    static constexpr std::size_t blockSize = 1U << 18U;
    static constexpr std::size_t lineSize = 64; // no line is longer
    OutputFile out;
    std::vector<char> block;
    std::size_t used = 0;
};

/// The largest absolute value of any literal and of any variable, 0 where there is none.
struct Largest {
    int literal = 0;
    int variable = 0;
};

template <class Clauses>
Largest largest(const Clauses& cs) {
    Largest r;
    for (const Clause& c : cs) {
        for (const int literal : {c.l1, c.l2, c.l3}) {
            const int n = std::abs(literal);
            r.literal = std::max(r.literal, n);
            r.variable = std::max(r.variable, n < BoolForm::maxVariable ? n : 0);
        }
    }
    return r;
}

template <class Clauses>
void write(const Clauses& cs, const std::string& file, int top, int shift) {
    BlockWriter out(file);
    out.text("p cnf ");
    out.number(fileNr(top, shift));
    out.put(' ');
    out.number(cs.size());
    out.endLine();
    for (const Clause& c : cs) {
        for (const int literal : {c.l1, c.l2, c.l3}) {
            if (literal == 0) continue;
            out.number(fileNr(literal, shift));
            out.put(' ');
        }
        out.put('0');
        out.endLine();
    }
    out.close();
}

template <class Clauses>
void writeRenumbered(const Clauses& cs, const std::string& file) {
    const Largest top = largest(cs);
    write(cs, file, top.literal, BoolForm::maxVariable - top.variable);
}

} // namespace

int maxCNFVarNr(const std::set<Clause>& cs) { return largest(cs).literal; }
int maxCNFVarNr(const std::vector<Clause>& cs) { return largest(cs).literal; }
int maxCNFOrgVarNr(const std::set<Clause>& cs) { return largest(cs).variable; }
int maxCNFOrgVarNr(const std::vector<Clause>& cs) { return largest(cs).variable; }

void showCNF(const std::set<Clause>& cs, std::string name) {
    writeRenumbered(cs, name.append(".cnf"));
}
void showCNF(const std::vector<Clause>& cs, std::string name) {
    writeRenumbered(cs, name.append(".cnf"));
}

void showCNF(const std::set<Clause>& cs) { write(cs, "test.cnf", maxCNFVarNr(cs), 0); }

int createClauseVect(const std::set<Clause>& cs, std::vector<std::vector<int>>& v) {
    const int shift = BoolForm::maxVariable - maxCNFOrgVarNr(cs);
    int largest = 0;
    for (const Clause& c : cs) {
        std::vector<int>& literals = v.emplace_back();
        for (const int literal : {c.l1, c.l2, c.l3}) {
            if (literal == 0) continue;
            literals.push_back(fileNr(literal, shift));
            largest = std::max(largest, std::abs(literals.back()));
        }
    }
    return largest;
}
