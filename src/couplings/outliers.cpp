#include "couplings/outliers.h"

#include "support/numerics/student.h"
#include "support/numerics/symmetric_eigen.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace trelm {
namespace {

constexpr int unknowns = static_cast<int>(saupeCount);

/// The middle value; of an even number the mean of both.
double medianOf(std::vector<double> values)
{
    if (values.empty())
        return 0.0;
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::ranges::nth_element(values, middle);
    if (values.size() % 2 != 0)
        return *middle;
    return (*middle + *std::max_element(values.begin(), middle)) / 2.0;
}

/// The fit that is searched: which rows it still has.
struct Search {
    std::span<const QualityRow> rows;
    std::vector<char> isKept;
    NormalSums sums;
    NormalSolution solution;

    [[nodiscard]] int degrees() const { return sums.count - unknowns; }
    void drop(std::size_t place)
    {
        isKept[place] = 0;
        sums.add(rows[place], -1.0);
        solution = solveNormal(sums);
    }
};

/// The rows as the fit of the search has them.
std::vector<QualityRow> currentRows(const Search &search)
{
    std::vector<QualityRow> rows(search.rows.begin(), search.rows.end());
    for (std::size_t k = 0; k < rows.size(); ++k) {
        rows[k].isFitted = search.isKept[k] != 0;
        rows[k].calculated = couplingOf(rows[k].design, search.solution.saupe);
    }
    return rows;
}

/// A row that may be taken out.
struct Suspect {
    std::size_t row = 0;
    RowResidual residual;
    double limit = std::numeric_limits<double>::infinity();
    bool wasHidden = false;
    [[nodiscard]] bool passes() const { return std::fabs(residual.studentised) > limit; }
};

/// The row of the largest studentised residual.
Suspect worstOf(const Search &search, std::span<const RowResidual> residuals)
{
    Suspect worst;
    for (std::size_t k = 0; k < residuals.size(); ++k)
        if (search.isKept[k] != 0 &&
            std::fabs(residuals[k].studentised) >= std::fabs(worst.residual.studentised))
            worst = {.row = k, .residual = residuals[k]};
    worst.limit = outlierLimit(search.sums.count, search.degrees() - 1);
    return worst;
}

/// Rows that only the robust measure shows: the worst of them, against the fit without all of them.
Suspect hiddenOutlier(const Search &search, std::span<const RowResidual> residuals)
{
    const double limit = outlierLimit(search.sums.count, search.degrees() - 1);
    std::vector<std::size_t> suspects;
    for (std::size_t k = 0; k < residuals.size(); ++k)
        if (search.isKept[k] != 0 && std::fabs(residuals[k].robust) > limit)
            suspects.push_back(k);
    constexpr std::size_t fewest = 2; // one would have shown itself
    if (suspects.size() < fewest || suspects.size() > static_cast<std::size_t>(search.sums.count) / 4)
        return {};
    Search without = search;
    for (const std::size_t row : suspects)
        without.drop(row);
    if (!without.solution.isDetermined || without.degrees() < 1)
        return {};
    Suspect worst;
    constexpr double rounding = 1e-12; // of the squares, which a fit of exact couplings leaves
    const double chiSquare = std::max(without.solution.chiSquare, rounding * without.sums.squares);
    const double scale = std::sqrt(chiSquare / without.degrees());
    for (const std::size_t row : suspects) {
        const double leverage = leverageOf(search.rows[row], without.solution.inverse);
        const double left =
            search.rows[row].observed - couplingOf(search.rows[row].design, without.solution.saupe);
        const double t = left * search.rows[row].weight / (scale * std::sqrt(1.0 + leverage));
        if (std::fabs(t) > std::fabs(worst.residual.studentised))
            worst = {.row = row,
                     .residual = {.leverage = residuals[row].leverage, .studentised = t, .leftOut = left},
                     .wasHidden = true};
    }
    worst.limit = outlierLimit(search.sums.count, without.degrees());
    return worst;
}

double ratioOfRoots(std::span<const QualityRow> rows)
{
    double residual = 0.0, observed = 0.0;
    for (const QualityRow &row : rows)
        if (row.isFitted) {
            residual += row.residual() * row.residual();
            observed += row.observed * row.observed;
        }
    return observed > 0.0 ? std::sqrt(residual / observed) : 0.0;
}

/// Da and Dr of a Saupe vector.
void tensorOf(const Saupe &saupe, int yzFlag, Outlier &outlier)
{
    Matrix3d matrix = saupeMatrix(saupe), vectors = {};
    std::array<double, 3> values = {};
    if (symmetricEigen(matrix, values, vectors) == Status::ok)
        pca_tensor(yzFlag, values, outlier.da, outlier.dr);
}

} // namespace

double outlierLimit(int rows, int degrees)
{
    return studentLimit(outlierChance / std::max(1, rows), degrees);
}

std::vector<RowResidual> residualsOf(std::span<const QualityRow> rows, const NormalSolution &solution)
{
    std::vector<RowResidual> residuals(rows.size());
    std::vector<double> weighted;
    double squares = 0.0;
    for (const QualityRow &row : rows)
        if (row.isFitted) {
            weighted.push_back(row.residual() * row.weight);
            squares += weighted.back() * weighted.back();
        }
    const int count = static_cast<int>(weighted.size());
    const double middle = medianOf(weighted);
    std::ranges::for_each(weighted, [middle](double &value) { value = std::fabs(value - middle); });
    const double robustScale = 1.4826 * medianOf(weighted);
    for (std::size_t k = 0; k < rows.size(); ++k) {
        const QualityRow &row = rows[k];
        RowResidual &result = residuals[k];
        result.leftOut = row.residual();
        if (!row.isFitted)
            continue;
        const double error = row.residual() * row.weight;
        result.robust = robustScale > 0.0 ? (error - middle) / robustScale : 0.0;
        if (!solution.isDetermined)
            continue;
        result.leverage = leverageOf(row, solution.inverse);
        const double rest = 1.0 - result.leverage; // the share of its error that the row keeps
        if (!(rest > 1e-9))
            continue;
        result.leftOut = row.residual() / rest;
        const double without = squares - error * error / rest; // the sum of squares of the fit without it
        if (count > unknowns + 1 && without > 0.0)
            result.studentised = error / std::sqrt(without / (count - unknowns - 1) * rest);
    }
    return residuals;
}

std::vector<Outlier> findOutliers(std::span<const QualityRow> rows, int yzFlag)
{
    constexpr int largestList = 100; // beyond it the fit is wrong, not the couplings
    Search search = {.rows = rows, .isKept = std::vector<char>(rows.size()), .sums = {}, .solution = {}};
    for (std::size_t k = 0; k < rows.size(); ++k)
        if (rows[k].isFitted) {
            search.isKept[k] = 1;
            search.sums.add(rows[k]);
        }
    search.solution = solveNormal(search.sums);
    const int most = std::min(search.sums.count / 3, largestList);
    std::vector<Outlier> found;
    std::vector<RowResidual> ofAll;
    while (static_cast<int>(found.size()) < most && search.solution.isDetermined && search.degrees() > 1) {
        const std::vector<RowResidual> residuals = residualsOf(currentRows(search), search.solution);
        if (ofAll.empty())
            ofAll = residuals;
        Suspect worst = worstOf(search, residuals);
        if (!worst.passes())
            worst = hiddenOutlier(search, residuals);
        if (!worst.passes())
            break;
        search.drop(worst.row);
        Outlier &outlier = found.emplace_back();
        outlier = {.row = worst.row,
                   .studentised = worst.residual.studentised,
                   .leverage = worst.residual.leverage,
                   .leftOut = worst.residual.leftOut,
                   .limit = worst.limit,
                   .robust = ofAll[worst.row].robust,
                   .wasHidden = worst.wasHidden,
                   .q = ratioOfRoots(currentRows(search))};
        tensorOf(search.solution.saupe, yzFlag, outlier);
    }
    return found;
}

} // namespace trelm
