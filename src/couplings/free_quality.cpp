#include "couplings/free_quality.h"

#include "support/numerics/random.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <utility>

namespace trelm {
namespace {

/// The fitted rows part by part: by type, or dealt out at random.
std::vector<std::vector<std::size_t>> partsOf(std::span<const QualityRow> rows, const FreeOptions &options)
{
    std::vector<std::vector<std::size_t>> parts;
    std::vector<std::size_t> fitted;
    const auto put = [&parts](std::size_t part, std::size_t row) {
        parts.resize(std::max(parts.size(), part + 1));
        parts[part].push_back(row);
    };
    for (std::size_t k = 0; k < rows.size(); ++k)
        if (rows[k].isFitted && options.kind == LeaveOut::byType)
            put(rows[k].type, k);
        else if (rows[k].isFitted)
            fitted.push_back(k);
    RandomStream random(-std::abs(options.seed));
    for (std::size_t left = fitted.size(); left > 1; --left)
        std::swap(fitted[left - 1], fitted[random.place(left)]);
    for (std::size_t k = 0; k < fitted.size(); ++k)
        put(k % static_cast<std::size_t>(std::max(1, options.parts)), fitted[k]);
    return parts;
}

/// Sums of squares that end as rms and Q.
struct SquareSums {
    double residual = 0.0, observed = 0.0;
    int count = 0;
    void add(const QualityRow &row, double predicted)
    {
        residual += (row.observed - predicted) * (row.observed - predicted);
        observed += row.observed * row.observed;
        ++count;
    }
    [[nodiscard]] double rms() const { return count > 0 ? std::sqrt(residual / count) : 0.0; }
    [[nodiscard]] double q() const { return observed > 0.0 ? std::sqrt(residual / observed) : 0.0; }
};

void leaveOutOneByOne(std::span<const QualityRow> rows, const NormalSolution &solution, FreeQuality &result,
                      SquareSums &all)
{
    for (std::size_t k = 0; k < rows.size(); ++k) {
        const double rest = rows[k].isFitted ? 1.0 - leverageOf(rows[k], solution.inverse) : 0.0;
        if (!(rest > 1e-9))
            continue;
        result.predicted[k] = rows[k].observed - rows[k].residual() / rest;
        all.add(rows[k], result.predicted[k]);
    }
}

/// Predicts one part from the others.
FreePart leaveOutPart(std::span<const QualityRow> rows, std::span<const std::size_t> members, NormalSums rest,
                      FreeQuality &result, SquareSums &all)
{
    FreePart part = {.count = static_cast<int>(members.size())};
    for (const std::size_t row : members)
        rest.add(rows[row], -1.0);
    const NormalSolution solution = solveNormal(rest);
    part.isPredicted = solution.isDetermined;
    if (!part.isPredicted)
        return part;
    SquareSums sums;
    for (const std::size_t row : members) {
        result.predicted[row] = couplingOf(rows[row].design, solution.saupe);
        sums.add(rows[row], result.predicted[row]);
        all.add(rows[row], result.predicted[row]);
    }
    part.rms = sums.rms();
    part.q = sums.q();
    return part;
}

} // namespace

FreeQuality leaveOut(std::span<const QualityRow> rows, const FreeOptions &options)
{
    FreeQuality result = {.kind = options.kind, .seed = options.seed};
    result.predicted.resize(rows.size());
    std::ranges::transform(rows, result.predicted.begin(), &QualityRow::calculated);
    NormalSums whole;
    for (const QualityRow &row : rows)
        if (row.isFitted)
            whole.add(row);
    SquareSums all;
    if (options.kind == LeaveOut::oneByOne) {
        if (const NormalSolution solution = solveNormal(whole); solution.isDetermined)
            leaveOutOneByOne(rows, solution, result, all);
    } else {
        const std::vector<std::vector<std::size_t>> parts = partsOf(rows, options);
        for (std::size_t part = 0; part < parts.size(); ++part)
            if (!parts[part].empty()) {
                result.parts.push_back(leaveOutPart(rows, parts[part], whole, result, all));
                result.parts.back().part = part;
            }
    }
    result.count = all.count;
    result.rms = all.rms();
    result.q = all.q();
    return result;
}

} // namespace trelm
