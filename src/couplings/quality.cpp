#include "couplings/quality.h"

#include "couplings/fit_worth.h"
#include "support/numerics/statistics.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace trelm {
namespace {

/// Sums of one set of rows.
struct AgreementSums {
    double residual = 0.0, observed = 0.0; ///< of squares
    double ofVectors =
        0.0; ///< of squared residuals over constants: residuals on the scale of the order matrix
    std::vector<float> x, y;
    int count = 0;
};

double rootOfMean(double sum, int count)
{
    return count > 0 ? std::sqrt(sum / count) : 0.0;
}

Agreement agreementOf(std::span<const QualityRow> rows, bool ofFitted, const TensorAnalysis &analysis)
{
    AgreementSums sums;
    for (const QualityRow &row : rows) {
        if (row.isFitted != ofFitted)
            continue;
        const double residual = row.residual();
        sums.residual += residual * residual;
        sums.observed += row.observed * row.observed;
        sums.ofVectors += residual * residual / (row.constant * row.constant);
        sums.x.push_back(static_cast<float>(row.calculated));
        sums.y.push_back(static_cast<float>(row.observed));
        ++sums.count;
    }
    Agreement result = {.count = sums.count, .rms = rootOfMean(sums.residual, sums.count)};
    result.q = sums.observed > 0.0 ? std::sqrt(sums.residual / sums.observed) : 0.0;
    // Da^2 (4 + 3 R^2) / 5 without the division by Da
    const double size = std::sqrt((4.0 * analysis.da * analysis.da + 3.0 * analysis.dr * analysis.dr) / 5.0);
    result.qBySize = size > 0.0 ? rootOfMean(sums.ofVectors, sums.count) / size : 0.0;
    result.rFactor = result.q / std::numbers::sqrt2;
    result.rFactorBySize = result.qBySize / std::numbers::sqrt2;
    const LineFit line = fit(sums.x, sums.y);
    result.correlation = double{pearsn(sums.x, sums.y)};
    result.slope = double{line.b};
    result.offset = double{line.a};
    return result;
}

/// How far the couplings determine the tensor.
void addWorth(const FitInput &input, TensorMode tensorMode, FitQuality &quality)
{
    const FitWorth worth = assessFit(input, tensorMode);
    quality.unknowns = worth.unknowns;
    quality.degreesOfFreedom = worth.couplings - worth.unknowns;
    quality.condition = worth.condition;
    quality.hasErrors = std::ranges::any_of(quality.rows, [&](const QualityRow &row) {
        return row.isFitted && input.columns.sigma[row.row] > 0.0f;
    });
    for (const QualityRow &row : quality.rows)
        if (row.isFitted)
            quality.chiSquare += row.residual() * row.residual() * row.weight * row.weight;
    if (quality.degreesOfFreedom > 0)
        quality.unitWeight = std::sqrt(quality.chiSquare / quality.degreesOfFreedom);
    quality.errorScale = quality.hasErrors ? std::max(1.0, quality.unitWeight) : quality.unitWeight;
}

/// What the covariance of a free tensor gives.
void addErrors(const NormalSolution &solution, FitQuality &quality)
{
    if (!solution.isDetermined || quality.analysis.da == 0.0)
        return;
    const TensorErrors errors = propagateErrors(quality.analysis, solution.inverse);
    if (quality.hasErrors)
        quality.errors = errors;
    if (quality.hasErrors || quality.degreesOfFreedom > 0)
        quality.scaledErrors = scaledErrors(errors, quality.errorScale);
}

void addLeverages(FitQuality &quality)
{
    double sum = 0.0;
    for (const RowResidual &residual : quality.residuals) {
        sum += residual.leverage;
        quality.largestLeverage = std::max(quality.largestLeverage, residual.leverage);
    }
    quality.meanLeverage = quality.fitted.count > 0 ? sum / quality.fitted.count : 0.0;
}

/// All that needs a tensor that was free in the fit.
void addLinearParts(const QualityOptions &options, FitQuality &quality)
{
    NormalSums sums;
    for (const QualityRow &row : quality.rows)
        if (row.isFitted)
            sums.add(row);
    const NormalSolution solution = solveNormal(sums);
    addErrors(solution, quality);
    quality.residuals = residualsOf(quality.rows, solution);
    addLeverages(quality);
    quality.outliers = findOutliers(quality.rows, options.yzFlag);
    quality.free.push_back(leaveOut(quality.rows, {.kind = LeaveOut::oneByOne}));
    if (quality.byType.types.size() > 1)
        quality.free.push_back(leaveOut(quality.rows, {.kind = LeaveOut::byType}));
    if (options.free && options.free->kind == LeaveOut::inParts)
        quality.free.push_back(leaveOut(quality.rows, *options.free));
}

} // namespace

TypeCheck checkTypesOf(const FitInput &input)
{
    CouplingTypes types;
    TypeSums sums;
    for (std::size_t row = 0; row < input.columns.d.size(); ++row)
        if (input.columns.use[row] != 0)
            types.of(input.dTab.observed()[row]);
    if (types.names().size() < 2) // most tables: nothing to compare
        return {};
    for (std::size_t row = 0; row < input.columns.d.size(); ++row)
        if (const auto known = observedRow(input, row, types))
            sums.add(*known);
    return checkTypes(sums, types.names());
}

Status assessQuality(const FitInput &input, const FitResult &fit, const QualityOptions &options,
                     FitQuality &quality, Messages &messages)
{
    quality = FitQuality{};
    std::ranges::copy(fit.tensor.saupe, quality.saupe.begin());
    if (analyzeSaupe(quality.saupe, options.yzFlag, 1, quality.analysis, messages) != Status::ok)
        return Status::failed;
    CouplingTypes types;
    TypeSums sums;
    for (std::size_t row = 0; row < fit.calculated.size(); ++row)
        if (const auto known = qualityRow(input, fit, row, types)) {
            quality.rows.push_back(*known);
            sums.add(*known);
        }
    quality.byType = checkTypes(sums, types.names());
    addTypeStatistics(quality.rows, quality.byType);
    quality.fitted = agreementOf(quality.rows, true, quality.analysis);
    quality.notFitted = agreementOf(quality.rows, false, quality.analysis);
    addWorth(input, fit.tensor.tensorMode, quality);
    if (fit.tensor.tensorMode == tensorSvd)
        addLinearParts(options, quality);
    else
        quality.residuals = residualsOf(quality.rows, NormalSolution{});
    return Status::ok;
}

} // namespace trelm
