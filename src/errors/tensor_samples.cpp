#include "errors/tensor_samples.h"

#include "couplings/options.h"
#include "couplings/statistics.h"
#include "simulation/orientations/rotation.h"
#include "support/numerics/numbers.h"
#include "support/text/progress.h"

#include <algorithm>
#include <cmath>

namespace trelm {
namespace {

constexpr float noTensor = 999.9f;

Saupe saupeOf(const DTensor &dTensor)
{
    Saupe saupe;
    std::ranges::copy(dTensor.saupe, saupe.begin());
    return saupe;
}

SaupeValues toFloats(const Saupe &saupe)
{
    SaupeValues values;
    std::ranges::transform(saupe, values.begin(), [](double element) { return static_cast<float>(element); });
    return values;
}

/// A deviation from sums; rounding can leave less than nothing of it.
double deviation(double sqrSum, double average, double count)
{
    const double variance = sqrSum / count - average * average;
    return variance < 0.0 ? 0.0 : std::sqrt(variance);
}

/// Chooses the fit's Euler solution whose angles widen the ranges. The distance to the reference is summed up
/// over the solutions and never starts anew, so the first solution that is not all zero wins, not the nearest
/// one. The reported ranges are defined by this choice.
void chooseSolution(TensorSamples &samples, const DTensor &dTensor)
{
    const EulerSolution &orig = samples.orig;
    float test = 0.0f;
    double diff = 999.9;
    for (std::size_t j = 0; j < static_cast<std::size_t>(dTensor.eulerCount); ++j) {
        const EulerSolution solution = eulerSolution(dTensor, j);
        test += std::fabs(solution.phi - orig.phi);
        test += std::fabs(solution.psi - orig.psi);
        test += std::fabs(solution.theta - orig.theta);
        if (solution.isZero())
            continue;
        if (j == 0 || number(test) < diff) {
            diff = number(test);
            samples.chosen = j;
        }
    }
}

/// Whether the chosen solution is near enough to the reference to widen the ranges of the angles.
bool isComparable(const TensorSamples &samples, const EulerSolution &solution)
{
    const EulerSolution &orig = samples.orig;
    return !solution.isZero() && std::fabs(solution.phi - orig.phi) < 90.0f &&
           std::fabs(solution.psi - orig.psi) < 90.0f && std::fabs(solution.theta - orig.theta) < 90.0f;
}

void widenRanges(TensorSamples &samples, const TensorAnalysis &analysis, float daNH,
                 const EulerSolution &solution)
{
    const bool isFirst = samples.count == 1;
    samples.gMag.widen(analysis.gMag, isFirst);
    samples.da.widen(analysis.da, isFirst);
    samples.dr.widen(analysis.dr, isFirst);
    samples.rhombicity.widen(analysis.da != 0.0 ? analysis.dr / analysis.da : 0.0, isFirst);
    samples.daNHMin = isFirst ? daNH : std::min(samples.daNHMin, daNH);
    samples.daNHMax = isFirst ? daNH : std::max(samples.daNHMax, daNH);
    if (!isFirst && !isComparable(samples, solution))
        return;
    samples.phi.widen(solution.phi, isFirst);
    samples.psi.widen(solution.psi, isFirst);
    samples.theta.widen(solution.theta, isFirst);
}

/// Adds the sample to all sums and ranges.
void countSample(TensorSamples &samples, const Saupe &saupe, const TensorAnalysis &analysis,
                 const DTensor &dTensor)
{
    if (samples.count <= maxSamples)
        samples.store[static_cast<std::size_t>(samples.count) - 1] = saupe;
    for (std::size_t k = 0; k < saupe.size(); ++k)
        samples.saupe[k].add(saupe[k]);
    const double szz = std::fabs(analysis.eigVal[0]);
    samples.szz.add(szz);
    samples.szz.widen(szz, samples.count == 1);
    samples.gMag.add(analysis.gMag);
    samples.dr.add(analysis.dr);
    samples.rhombicity.add(analysis.da != 0.0 ? analysis.dr / analysis.da : 0.0);
    const auto daNH = static_cast<float>(analysis.da * amideHertz);
    samples.daNHSum += daNH;
    samples.daNHSqrSum += daNH * daNH;
    chooseSolution(samples, dTensor);
    widenRanges(samples, analysis, daNH, eulerSolution(dTensor, samples.chosen));
}

/// Of the samples those of smallest and largest magnitude.
struct MagnitudeRange {
    double gMagMax = 0.0, gMagMin = 999.9;
};

void noteMagnitude(TensorSamples &samples, const Saupe &saupe, double gMag, MagnitudeRange &range)
{
    if (std::fabs(gMag) > range.gMagMax) {
        samples.saupeMax = saupe;
        range.gMagMax = std::fabs(gMag);
    }
    if (std::fabs(gMag) < range.gMagMin) {
        samples.saupeMin = saupe;
        range.gMagMin = std::fabs(gMag);
    }
}

/// The angle in the space of Saupe vectors. With more than one sample its minimum stays at 0.
void noteAngle(TensorSamples &samples, double angle)
{
    samples.angle5d.add(angle);
    if (angle > samples.angle5d.max)
        samples.angle5d.max = angle;
    if (samples.count == 1)
        samples.angle5d.min = samples.angle5d.max = angle;
}

/// One stored sample against the mean tensor. Fails after a message.
Status compareSample(TensorSamples &samples, const Saupe &saupe, const TensorAnalysis &mean,
                     const FitOptions &fit, MagnitudeRange &range, Messages &messages)
{
    TensorAnalysis analysis;
    if (analyzeSaupe(saupe, fit.yzFlag, fit.eulerFlag, analysis, messages) != Status::ok)
        return messages.fail("trelm: error in analyzeSaupe.\n");
    noteMagnitude(samples, saupe, analysis.gMag, range);
    SampleDeviation away = {.axes = calcDcos(analysis.eigVec, mean.eigVec)};
    irrCollinarity(toFloats(samples.saupeAve), toFloats(saupe), away.collinearity, away.angle5d);
    noteAngle(samples, number(away.angle5d));
    samples.deviations.push_back(away);
    return Status::ok;
}

} // namespace

double Spread::stdDev(double count) const
{
    return deviation(sqrSum, average(count), count);
}

EulerSolution eulerSolution(const DTensor &dTensor, std::size_t j)
{
    return {dTensor.phiList[j], dTensor.psiList[j], dTensor.thetaList[j]};
}

Status fitTable(const MappingInput &input, MappingFit &fit, Messages &messages)
{
    takeColumns(input.dTab, fit.columns);
    fit.last = startOf(input.dTab);
    return fitAgain(input, fit, messages);
}

Status fitAgain(const MappingInput &input, MappingFit &fit, Messages &messages)
{
    return fitColumns({input.coords, input.dTab, fit.columns, input.verbose}, fit.work, fit.last, messages);
}

Status sampleAll(int mapCount, const std::function<Status(int n)> &step, Messages &messages)
{
    Progress progress(messages, "REMARK Sampled ", mapCount);
    for (int n = 1; n <= mapCount; ++n) {
        progress.show(n);
        if (step(n) != Status::ok) {
            progress.pause();
            return Status::failed;
        }
    }
    progress.end();
    return Status::ok;
}

Status takeSample(TensorSamples &samples, const MappingInput &input, const MappingFit &fit, int n,
                  const MappingWatch &watch, Messages &messages)
{
    const DTensor &dTensor = fit.last.tensor;
    const Saupe saupe = saupeOf(dTensor);
    CountedSample sample = {.n = n - 1, .analysis = {}};
    ++samples.count;
    if (analyzeSaupe(saupe, input.fit.yzFlag, input.fit.eulerFlag, sample.analysis, messages) != Status::ok)
        return messages.fail("Matrix: error in analyzeSaupe.\n");
    countSample(samples, saupe, sample.analysis, dTensor);
    const Misfit misfit = getStatDC(input.dTab, fit.columns, fit.last.calculated);
    sample.rSum = misfit.rSumD;
    sample.pSum = misfit.pSumD;
    watch.sample(sample);
    return Status::ok;
}

void averageSamples(TensorSamples &samples)
{
    samples.averaged = samples.count;
    if (samples.count == 0)
        return;
    const double count = samples.count;
    for (std::size_t k = 0; k < samples.saupe.size(); ++k) {
        samples.saupeAve[k] = samples.saupe[k].average(count);
        samples.saupeStdDev[k] = samples.saupe[k].stdDev(count);
    }
    samples.daNHAve = number(samples.daNHSum) / count;
    samples.daNHStdDev = deviation(number(samples.daNHSqrSum), samples.daNHAve, count);
}

Status compareWithMean(TensorSamples &samples, const FitOptions &fit, Messages &messages)
{
    samples.count = std::min(samples.count, maxSamples);
    if (samples.count == 0)
        return Status::ok;
    TensorAnalysis mean;
    if (analyzeSaupe(samples.saupeAve, fit.yzFlag, fit.eulerFlag, mean, messages) != Status::ok)
        return messages.fail("trelm: error in analyzeSaupe.\n");
    samples.euler = mean.euler;
    MagnitudeRange range;
    samples.deviations.reserve(static_cast<std::size_t>(samples.count));
    for (const Saupe &saupe : samples.store.span().first(static_cast<std::size_t>(samples.count)))
        if (compareSample(samples, saupe, mean, fit, range, messages) != Status::ok)
            return Status::failed;
    return Status::ok;
}

Status fitMean(const TensorSamples &samples, const MappingInput &input, MappingFit &fit, Messages &messages)
{
    fit.last.tensor.tensorMode = tensorGiven;
    fit.last.tensor.userSaupe = toFloats(samples.saupeAve);
    return fitAgain(input, fit, messages);
}

std::array<AxisCone, 3> conesOf(const TensorSamples &samples)
{
    std::array<AxisCone, 3> cones;
    const auto count = static_cast<double>(samples.deviations.size());
    for (std::size_t axis = 0; axis < cones.size() && count > 0.0; ++axis) {
        AxisCone &cone = cones[axis];
        for (const SampleDeviation &deviation : samples.deviations) {
            const double angle = deviation.axes[axis] * degreesOfRadian;
            cone.mean += angle / count;
            cone.rootMeanSquare += angle * angle / count;
            cone.largest = std::max(cone.largest, angle);
        }
        cone.rootMeanSquare = std::sqrt(cone.rootMeanSquare);
    }
    return cones;
}

bool isWithoutTensor(const FitResult &fit)
{
    return !(fit.tensor.saupe[0] < noTensor);
}

} // namespace trelm
