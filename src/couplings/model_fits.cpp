#include "couplings/model_fits.h"

#include "couplings/design.h"
#include "couplings/fit.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <optional>

namespace trelm {
namespace {

/// All fits at work.
struct ModelRun {
    const ModelInput &input;
    std::vector<double> sums;            ///< of the calculated couplings, by row
    std::vector<TensorAnalysis> tensors; ///< one for each model
    Saupe sumOfSaupe = {};
    FitColumns columns;
    FitWork work = {};
};

bool hasVariableConstants(const ModelInput &input)
{
    return input.match.allowFixedDI == 0 || std::ranges::any_of(input.dTab.observed(), [](const DInfo &row) {
               return row.valid != 0 && row.diFixedFlag == 0;
           });
}

/// The differences of the couplings in the fit.
struct Differences {
    int count = 0;
    double residual = 0.0, observed = 0.0; ///< sums of squares

    [[nodiscard]] double q() const { return observed > 0.0 ? std::sqrt(residual / observed) : 0.0; }
};

/// `calculated` gives the coupling of a row, Hz.
template <class Calculated>
Differences differencesOf(const ModelRun &run, Calculated calculated)
{
    Differences sums;
    for (std::size_t row = 0; row < run.columns.d.size(); ++row) {
        if (run.columns.use[row] == 0 || !isOneVector(run.input.dTab.calculated()[row]))
            continue;
        const double observed = double{run.columns.d[row]}, residual = observed - calculated(row);
        ++sums.count;
        sums.residual += residual * residual;
        sums.observed += observed * observed;
    }
    return sums;
}

double ratioOf(double dr, double da)
{
    return da != 0.0 ? dr / da : std::numeric_limits<double>::quiet_NaN();
}

Status fitTable(ModelRun &run, std::size_t m, const DTable &dTab, ModelFit &fit, Messages &messages)
{
    FitResult result = startOf(dTab);
    const FitInput input = {run.input.models.coords[m], dTab, run.columns, run.input.verbose};
    if (fitColumns(input, run.work, result, messages) != Status::ok)
        return Status::failed;
    Saupe saupe;
    std::ranges::copy(result.tensor.saupe, saupe.begin());
    TensorAnalysis &tensor = run.tensors[m];
    if (analyzeSaupe(saupe, run.input.yzFlag, 0, tensor, messages) != Status::ok)
        return Status::failed;
    const Differences found =
        differencesOf(run, [&](std::size_t row) { return double{result.calculated[row]}; });
    fit = {.number = run.input.models.numbers[m],
           .count = found.count,
           .da = tensor.da * amideHertz,
           .r = ratioOf(tensor.dr, tensor.da),
           .q = found.q()};
    for (std::size_t k = 0; k < saupeCount; ++k)
        run.sumOfSaupe[k] += saupe[k];
    for (std::size_t row = 0; row < run.sums.size(); ++row)
        run.sums[row] += double{result.calculated[row]};
    return Status::ok;
}

/// Fits a model; constants that go by distances are those of this model.
Status fitModel(ModelRun &run, std::size_t m, ModelFit &fit, Messages &messages)
{
    const ModelInput &input = run.input;
    if (m == 0 || !hasVariableConstants(input))
        return fitTable(run, m, input.dTab, fit, messages);
    std::optional<DTable> table = copyTable(input.dTab, messages);
    if (!table)
        return Status::failed;
    RowMatch match = input.match;
    match.coords = input.models.coords[m];
    buildDC(input.pdbInfo, *table, match, messages);
    return fitTable(run, m, *table, fit, messages);
}

MeanValue meanOf(const std::vector<ModelFit> &models, double ModelFit::*value)
{
    const auto count = static_cast<double>(models.size());
    MeanValue result;
    for (const ModelFit &model : models)
        result.mean += model.*value / count;
    double squares = 0.0;
    for (const ModelFit &model : models)
        squares += (model.*value - result.mean) * (model.*value - result.mean);
    result.deviation = models.size() > 1 ? std::sqrt(squares / (count - 1.0)) : 0.0;
    return result;
}

/// The angle between two axes, which have no direction, degrees.
double angleOf(const Matrix3d &a, const Matrix3d &b, std::size_t axis)
{
    return std::acos(std::min(1.0, std::fabs(dot(column(a, axis), column(b, axis))))) * degreesOfRadian;
}

/// What the models have in common.
Status addMeans(const ModelRun &run, ModelFits &fits, Messages &messages)
{
    const auto count = static_cast<double>(fits.models.size());
    Saupe saupe;
    std::ranges::transform(run.sumOfSaupe, saupe.begin(), [=](double sum) { return sum / count; });
    TensorAnalysis mean;
    if (analyzeSaupe(saupe, run.input.yzFlag, 0, mean, messages) != Status::ok)
        return Status::failed;
    fits.meanDa = mean.da * amideHertz;
    fits.meanR = ratioOf(mean.dr, mean.da);
    for (std::size_t m = 0; m < fits.models.size(); ++m)
        for (std::size_t axis = 0; axis < 3; ++axis)
            fits.models[m].angles[axis] = angleOf(run.tensors[m].eigVec, mean.eigVec, axis);
    fits.best = static_cast<std::size_t>(std::ranges::min_element(fits.models, {}, &ModelFit::q) -
                                         fits.models.begin());
    fits.da = meanOf(fits.models, &ModelFit::da);
    fits.r = meanOf(fits.models, &ModelFit::r);
    fits.q = meanOf(fits.models, &ModelFit::q);
    fits.qOfMeans = differencesOf(run, [&](std::size_t row) { return run.sums[row] / count; }).q();
    return Status::ok;
}

} // namespace

Status fitModels(const ModelInput &input, ModelFits &fits, Messages &messages)
{
    const std::size_t count = input.models.coords.size();
    ModelRun run = {.input = input,
                    .sums = std::vector<double>(input.dTab.observed().size()),
                    .tensors = std::vector<TensorAnalysis>(count),
                    .columns = {}};
    takeColumns(input.dTab, run.columns);
    fits.models.resize(count);
    for (std::size_t m = 0; m < count; ++m)
        if (fitModel(run, m, fits.models[m], messages) != Status::ok)
            return Status::failed;
    return addMeans(run, fits, messages);
}

} // namespace trelm
