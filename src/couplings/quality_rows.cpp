#include "couplings/quality_rows.h"

#include "couplings/design.h"
#include "support/numerics/symmetric_eigen.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace trelm {
namespace {

/// What the Saupe elements add to the coupling of a row, Hz, summed over its pairs; a group of three pairs is
/// one vector, between the middles of its sides.
Saupe designOfRow(std::span<const Coord3D> coords, const DCalc &calc, double constant)
{
    Saupe design = {};
    const auto addVector = [&](const Place &i, const Place &j) {
        const SaupeValues terms = termsBetween(i, j);
        for (std::size_t k = 0; k < saupeCount; ++k)
            design[k] += constant * double{terms[k]};
    };
    if (isOneVector(calc)) {
        addVector(middleOf(coords, calc.atomI.span()), middleOf(coords, calc.atomJ.span()));
        return design;
    }
    for (const std::uint32_t i : calc.atomI.span())
        for (const std::uint32_t j : calc.atomJ.span())
            addVector(middleOf(coords, {&i, 1}), middleOf(coords, {&j, 1}));
    return design;
}

/// The mean over the models, where there are several.
Saupe meanDesignOfRow(const FitInput &input, const DCalc &calc, double constant)
{
    if (input.models.empty())
        return designOfRow(input.coords, calc, constant);
    Saupe mean = {};
    for (const std::vector<Coord3D> &model : input.models) {
        const Saupe design = designOfRow(model, calc, constant);
        for (std::size_t k = 0; k < saupeCount; ++k)
            mean[k] += design[k] / static_cast<double>(input.models.size());
    }
    return mean;
}

} // namespace

double couplingOf(const Saupe &design, const Saupe &saupe)
{
    double sum = 0.0;
    for (std::size_t k = 0; k < saupeCount; ++k)
        sum += design[k] * saupe[k];
    return sum;
}

std::optional<QualityRow> observedRow(const FitInput &input, std::size_t row, CouplingTypes &types)
{
    const DInfo &obs = input.dTab.observed()[row];
    const DCalc &calc = input.dTab.calculated()[row];
    if (obs.valid == 0 || calc.pairCount() == 0 || calc.di == 0.0f)
        return std::nullopt;
    const float error = input.columns.sigma[row];
    const double constant = std::fabs(double{calc.di});
    return QualityRow{.row = row,
                      .type = types.of(obs),
                      .design = meanDesignOfRow(input, calc, constant),
                      .observed = double{input.columns.d[row]},
                      .error = double{error},
                      .weight = double{scaleOf(calc.di, error).coupling},
                      .constant = constant,
                      .isFitted = input.columns.use[row] != 0 && isOneVector(calc)};
}

std::optional<QualityRow> qualityRow(const FitInput &input, const FitResult &fit, std::size_t row,
                                     CouplingTypes &types)
{
    std::optional<QualityRow> result = observedRow(input, row, types);
    if (!result)
        return result;
    Saupe saupe;
    std::ranges::copy(fit.tensor.saupe, saupe.begin());
    result->calculated = result->isFitted ? double{fit.calculated[row]} : couplingOf(result->design, saupe);
    return result;
}

void NormalSums::add(const QualityRow &row, double times)
{
    const double factor = times * row.weight * row.weight;
    for (std::size_t k = 0; k < products.size(); ++k)
        products[k] += factor * row.design[k / saupeCount] * row.design[k % saupeCount];
    for (std::size_t k = 0; k < saupeCount; ++k)
        sides[k] += factor * row.design[k] * row.observed;
    squares += factor * row.observed * row.observed;
    count += times > 0.0 ? 1 : -1;
}

void NormalSums::add(const NormalSums &other, double factor)
{
    for (std::size_t k = 0; k < products.size(); ++k)
        products[k] += factor * factor * other.products[k];
    for (std::size_t k = 0; k < saupeCount; ++k)
        sides[k] += factor * other.sides[k];
    squares += other.squares;
    count += other.count;
}

void NormalSums::remove(const NormalSums &other)
{
    for (std::size_t k = 0; k < products.size(); ++k)
        products[k] -= other.products[k];
    for (std::size_t k = 0; k < saupeCount; ++k)
        sides[k] -= other.sides[k];
    squares -= other.squares;
    count -= other.count;
}

NormalSolution solveNormal(const NormalSums &sums)
{
    constexpr double smallest = 1e-5; // of the largest singular value: what fits count as 0
    NormalSolution solution = {.condition = std::numeric_limits<double>::infinity()};
    SaupeMatrix matrix = sums.products, vectors = {};
    Saupe values = {};
    if (sums.count < static_cast<int>(saupeCount) || symmetricEigen(matrix, values, vectors) != Status::ok)
        return solution;
    const auto [low, high] = std::ranges::minmax(values);
    if (!(low > smallest * smallest * high))
        return solution;
    solution.isDetermined = true;
    solution.condition = std::sqrt(high / low);
    for (std::size_t k = 0; k < matrix.size(); ++k)
        for (std::size_t v = 0; v < saupeCount; ++v)
            solution.inverse[k] += vectors[k / saupeCount * saupeCount + v] *
                                   vectors[k % saupeCount * saupeCount + v] / values[v];
    double explained = 0.0;
    for (std::size_t k = 0; k < matrix.size(); ++k)
        solution.saupe[k / saupeCount] += solution.inverse[k] * sums.sides[k % saupeCount];
    for (std::size_t k = 0; k < saupeCount; ++k)
        explained += solution.saupe[k] * sums.sides[k];
    solution.chiSquare = std::max(0.0, sums.squares - explained);
    return solution;
}

double leverageOf(const QualityRow &row, const SaupeMatrix &inverse)
{
    double sum = 0.0;
    for (std::size_t k = 0; k < inverse.size(); ++k)
        sum += row.design[k / saupeCount] * inverse[k] * row.design[k % saupeCount];
    return row.weight * row.weight * sum;
}

} // namespace trelm
