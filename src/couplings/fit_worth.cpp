#include "couplings/fit_worth.h"

#include "couplings/design.h"
#include "support/numerics/svd.h"
#include "support/text/text.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace trelm {
namespace {

constexpr std::size_t n = saupeCount;

int unknownsOf(TensorMode tensorMode)
{
    switch (tensorMode) {
    case tensorSvd:
    case tensorNofixed:
        return static_cast<int>(n);
    case tensorDaDr:
        return 3; // the rotation
    default:
        return 0;
    }
}

/// The row of the design matrix of a coupling.
std::array<double, n> designOf(std::span<const Coord3D> coords, const DCalc &calc, float sigma)
{
    const SaupeValues terms =
        termsBetween(middleOf(coords, calc.atomI.span()), middleOf(coords, calc.atomJ.span()));
    const double scale = scaleOf(calc.di, sigma).design;
    std::array<double, n> row;
    std::ranges::transform(terms, row.begin(), [scale](float term) { return scale * double{term}; });
    return row;
}

/// The mean over the models, where there are several.
std::array<double, n> meanDesignOf(const FitInput &input, const DCalc &calc, float sigma)
{
    if (input.models.empty())
        return designOf(input.coords, calc, sigma);
    std::array<double, n> mean = {};
    for (const std::vector<Coord3D> &model : input.models) {
        const std::array<double, n> design = designOf(model, calc, sigma);
        for (std::size_t k = 0; k < n; ++k)
            mean[k] += design[k] / static_cast<double>(input.models.size());
    }
    return mean;
}

/// Singular values, falling, from the sums of products: five by five, however many couplings there are.
std::array<double, n> singularValues(const std::array<double, n * n> &products)
{
    const double largest = *std::ranges::max_element(products);
    std::array<float, n *n> matrix = {}, v = {};
    std::array<float, n> squares = {}, work = {};
    if (largest > 0.0)
        std::ranges::transform(products, matrix.begin(),
                               [=](double value) { return static_cast<float>(value / largest); });
    svdcmpUser(matrix, static_cast<int>(n), static_cast<int>(n), squares, v, work);
    std::ranges::sort(squares, std::greater{});
    std::array<double, n> values;
    std::ranges::transform(squares, values.begin(),
                           [](float square) { return std::sqrt(std::max(0.0, double{square})); });
    return values;
}

} // namespace

FitWorth assessFit(const FitInput &input, TensorMode tensorMode)
{
    constexpr double smallest = 1e-3;      // of the largest: below it stands the rounding of the squares
    constexpr double nearlyParallel = 0.1; // vectors within some five degrees
    FitWorth worth = {.unknowns = unknownsOf(tensorMode)};
    std::array<double, n *n> products = {};
    for (std::size_t row = 0; row < input.columns.use.size(); ++row) {
        const DCalc &calc = input.dTab.calculated()[row];
        if (input.columns.use[row] == 0 || !isOneVector(calc))
            continue;
        ++worth.couplings;
        const std::array<double, n> design = meanDesignOf(input, calc, input.columns.sigma[row]);
        for (std::size_t k = 0; k < products.size(); ++k)
            products[k] += design[k / n] * design[k % n];
    }
    const std::array<double, n> values = singularValues(products);
    worth.isOneDirection = values[1] < nearlyParallel * values[0];
    worth.condition = values[n - 1] > smallest * values[0] ? values[0] / values[n - 1]
                                                           : std::numeric_limits<double>::infinity();
    return worth;
}

std::string worthLine(const FitWorth &worth)
{
    constexpr int fewestSpare = 5;            // degrees of freedom, below which Q and the errors are chance
    constexpr double largestCondition = 30.0; // evenly spread vectors have 2
    const int spare = worth.couplings - worth.unknowns;
    std::string text;
    if (worth.unknowns == 0 || worth.couplings == 0 ||
        (spare >= fewestSpare && worth.condition <= largestCondition))
        return text;
    appendf(text, "trelm: %d couplings for %d unknowns: degrees of freedom %d, condition number %.3g",
            worth.couplings, worth.unknowns, spare, worth.condition);
    if (spare < 0)
        text += ", no tensor can be found (add couplings, or hold Da and Dr with -dadr)";
    else if (worth.isOneDirection)
        text += ", all along one direction (add couplings of another kind of pair)";
    else if (spare < fewestSpare)
        text += ", a small Q proves nothing (add couplings)";
    else
        text += ", parts of the tensor are hardly determined (add couplings of other kinds)";
    return text + "\n";
}

} // namespace trelm
