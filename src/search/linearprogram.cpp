#include "search/linearprogram.h"

#include <algorithm>
#include <utility>

#ifdef TERVOXAL_HAS_CLP
#include <Clp_C_Interface.h>
#endif

namespace tervoxal {

#ifdef TERVOXAL_HAS_CLP

const bool LinearProgram::available = true;

/// The columns are gathered until the first question.
class LinearProgram::Library {
public:
    explicit Library(std::vector<Range> ranges) : model(Clp_newModel()), rows(std::move(ranges)) {
        Clp_setLogLevel(model, 0);
    }
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;
    ~Library() { Clp_deleteModel(model); }

    void load() {
        if (loaded) return;
        loaded = true;
        const auto all = [](const std::vector<Range>& ranges, double Range::*end) {
            std::vector<double> values;
            values.reserve(ranges.size());
            for (const Range& range : ranges) values.push_back(range.*end);
            return values;
        };
        Clp_loadProblem(model, static_cast<int>(columns.size()), static_cast<int>(rows.size()),
                        starts.data(), indices.data(), factors.data(),
                        all(columns, &Range::least).data(), all(columns, &Range::greatest).data(),
                        nullptr, all(rows, &Range::least).data(),
                        all(rows, &Range::greatest).data());
    }

    Clp_Simplex* model;
    std::vector<Range> rows;
    std::vector<Range> columns;
    std::vector<CoinBigIndex> starts = {0};
    std::vector<int> indices;
    std::vector<double> factors;
    bool loaded = false;
};

LinearProgram::LinearProgram(std::vector<Range> rows)
    : library(std::make_unique<Library>(std::move(rows))) {}

void LinearProgram::column(Range range, const std::vector<Entry>& entries) {
    library->columns.push_back(range);
    for (const auto& [row, factor] : entries) {
        library->indices.push_back(row);
        library->factors.push_back(factor);
    }
    library->starts.push_back(static_cast<CoinBigIndex>(library->indices.size()));
}

void LinearProgram::bound(int column, Range range) {
    library->load();
    Clp_columnLower(library->model)[column] = range.least;
    Clp_columnUpper(library->model)[column] = range.greatest;
}

LinearProgram::Verdict LinearProgram::solve(int iterations, const std::function<bool()>& stop) {
    constexpr int share = 1000; // between two looks whether it is stopped
    library->load();
    Clp_Simplex* const model = library->model;
    while (iterations > 0) {
        if (stop && stop()) return Verdict::unknown;
        Clp_setMaximumIterations(model, std::min(share, iterations));
        Clp_dual(model, 0);
        const int taken = std::max(1, Clp_numberIterations(model));
        spent += taken;
        iterations -= taken;
        switch (Clp_status(model)) {
        case 0: return Verdict::feasible;
        case 1: return Verdict::infeasible;
        case 3: break;
        default: return Verdict::unknown;
        }
    }
    return Verdict::unknown;
}

std::optional<std::vector<double>> LinearProgram::ray() const {
    double* const found = Clp_infeasibilityRay(library->model);
    if (found == nullptr) return {};
    std::vector<double> factors(found, found + library->rows.size());
    Clp_freeRay(library->model, found);
    return factors;
}

#else

const bool LinearProgram::available = false;

class LinearProgram::Library {};

LinearProgram::LinearProgram(std::vector<Range> /*rows*/) {}
void LinearProgram::column(Range /*range*/, const std::vector<Entry>& /*entries*/) {}
void LinearProgram::bound(int /*column*/, Range /*range*/) {}
LinearProgram::Verdict LinearProgram::solve(int /*iterations*/,
                                            const std::function<bool()>& /*stop*/) {
    return Verdict::unknown;
}
std::optional<std::vector<double>> LinearProgram::ray() const { return {}; }

#endif

LinearProgram::~LinearProgram() = default;

} // namespace tervoxal
