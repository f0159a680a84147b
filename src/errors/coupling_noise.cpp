#include "errors/coupling_noise.h"

#include "support/numerics/numbers.h"
#include "support/numerics/random.h"
#include "support/text/text.h"

#include <algorithm>
#include <cmath>

namespace trelm {
namespace {

constexpr int mostScales = 200000; ///< trial scales before the search gives up

struct NoiseRun {
    const MappingInput &input;
    const CouplingNoiseOptions &options;
    Messages &messages;
    CouplingNoiseResult &result;
    RepeatedFit repeated;
    RandomStream random = RandomStream();

    [[nodiscard]] std::size_t rows() const { return input.dTab.observed().size(); }
    [[nodiscard]] bool isValid(std::size_t i) const { return input.dTab.dCalcList[i].valid != 0; }
    [[nodiscard]] bool isUsed(std::size_t i) const { return result.fit.columns.use[i] != 0; }
    [[nodiscard]] const DInfo &measured(std::size_t i) const { return input.dTab.dObsList[i]; }
    [[nodiscard]] float calculated(std::size_t i) const { return result.fit.last.calculated[i]; }
};

void scaleErrors(NoiseRun &run)
{
    for (std::size_t i = 0; i < run.rows(); ++i)
        if (run.isValid(i))
            run.result.dSigmaOpt[i] = run.measured(i).sigma * run.result.kSigma;
}

/// Noise of half the error in use, onto what was measured, and a fit. Fails after a message.
Status fitNoisy(NoiseRun &run)
{
    MappingFit &fit = run.result.fit;
    for (std::size_t i = 0; i < run.rows(); ++i)
        if (run.isValid(i))
            fit.columns.d[i] = static_cast<float>(run.random.gauss() * number(run.result.dSigmaOpt[i]) * 0.5 +
                                                  number(run.measured(i).d));
    const MappingInput &input = run.input;
    return refitColumns(run.repeated, {input.coords, input.dTab, fit.columns, input.verbose}, fit.work,
                        fit.last, run.messages);
}

/// Whether all calculated couplings lie within the errors in use; counts those that do not. A row of weight 0
/// is never calculated and is not asked.
bool isWithinErrors(NoiseRun &run)
{
    bool isWithin = true;
    for (std::size_t i = 0; i < run.rows(); ++i) {
        if (!run.isUsed(i))
            continue;
        const double value = number(run.measured(i).d), sigma = number(run.result.dSigmaOpt[i]);
        const double calculated = number(run.calculated(i));
        if (calculated >= value - sigma && calculated <= value + sigma)
            continue;
        ++run.result.countFail[i];
        isWithin = false;
    }
    return isWithin;
}

/// Whether so many fits can pass. Fails after one line that names the option.
Status checkWanted(const CouplingNoiseOptions &options, int nAdjust, Messages &messages)
{
    if (std::max(options.nAdjustMc, 0) > nAdjust)
        return Status::ok;
    if (options.nAdjustMc < 1)
        return messages.fail("trelm: -nAdjustMc %d: the search needs one fit at least.\n", options.nAdjustMc);
    return messages.fail("trelm: -fracAdjustMc %g of -nAdjustMc %d: more fits than there are can not pass.\n",
                         number(options.mcAdjustFrac), options.nAdjustMc);
}

/// A coupling without an error gets no noise, and no scale widens its range: missed by the fit, it is missed
/// by the noisy fits as well. That matters where fits are tested and some have to pass. Fails after
/// a message if there is such a one.
Status checkErrors(NoiseRun &run, int nAdjust)
{
    if (run.options.mapMode == everyFit || nAdjust < 0)
        return Status::ok;
    int missed = 0;
    for (std::size_t i = 0; i < run.rows(); ++i)
        if (run.isUsed(i) && run.measured(i).sigma == 0.0f && run.calculated(i) != run.measured(i).d)
            ++missed;
    if (missed == 0)
        return Status::ok;
    return run.messages.fail(
        "trelm: -mcDc: the fit misses %d coupling%s whose error (DD) is 0: no scale of the errors"
        " lets it pass. See -noautoMc.\n",
        missed, missed == 1 ? "" : "s");
}

/// The next scale to try. Fails after a message if there is none.
Status nextScale(const CouplingNoiseOptions &options, float &kSigma, Messages &messages)
{
    const float last = kSigma;
    kSigma += options.incSigma;
    if (kSigma > last)
        return Status::ok;
    if (!(options.incSigma > 0.0f))
        return messages.fail("\ntrelm: -incAdjustMc %g: the step of the error scale must be positive.\n",
                             number(options.incSigma));
    return messages.fail("\ntrelm: -incAdjustMc %g: too small a step from an error scale of %g.\n",
                         number(options.incSigma), number(last));
}

/// Counts the noisy fits that pass at the scale in use. Fails after a message.
Status countGood(NoiseRun &run, int &good)
{
    good = 0;
    for (int n = 0; n < run.options.nAdjustMc; ++n) {
        if (fitNoisy(run) != Status::ok)
            return Status::failed;
        if (run.options.mapMode == everyFit || isWithinErrors(run))
            ++good;
    }
    return Status::ok;
}

/// Finds the error scale. Fails after a message.
Status searchScale(NoiseRun &run)
{
    const CouplingNoiseOptions &options = run.options;
    Messages &messages = run.messages;
    float &kSigma = run.result.kSigma;
    const int nAdjust = truncated(static_cast<float>(options.nAdjustMc) * options.mcAdjustFrac);
    if (checkWanted(options, nAdjust, messages) != Status::ok || checkErrors(run, nAdjust) != Status::ok)
        return Status::failed;
    messages.out("REMARK Adjusting DC error bars ...\n");
    kSigma = options.kLSigma;
    for (int trial = 1;; ++trial) {
        messages.out("REMARK DC Error Scaling factor %.1f\r", number(kSigma));
        scaleErrors(run);
        int good = 0;
        if (countGood(run, good) != Status::ok)
            return Status::failed;
        if (good > nAdjust)
            break;
        if (trial == mostScales)
            return messages.fail("\ntrelm: no error scale up to %g lets more than %d of %d fits pass.\n",
                                 number(kSigma), nAdjust, options.nAdjustMc);
        if (nextScale(options, kSigma, messages) != Status::ok)
            return Status::failed;
    }
    messages.note("\n");
    messages.out("REMARK DC error bars automatically adjusted by factor of %.1f.\n", number(kSigma));
    return Status::ok;
}

Status setErrors(NoiseRun &run)
{
    run.result.kSigma = run.options.kSigma;
    if (run.options.mcAdjustFlag == 0 || run.input.validCount < static_cast<int>(fewestCouplings))
        run.messages.out("REMARK DC error bars scaled by user supplied factor of %.1f.\n",
                         number(run.result.kSigma));
    else if (searchScale(run) != Status::ok)
        return Status::failed;
    scaleErrors(run);
    std::ranges::fill(run.result.countFail.span(), 0); // those of the search do not count
    return Status::ok;
}

/// The tests of a sample. A missing Euler solution is counted at the row of its own number.
bool isAccepted(NoiseRun &run)
{
    bool isGood = isWithinErrors(run);
    const DTensor &dTensor = run.result.fit.last.tensor;
    for (std::size_t j = 0; j < static_cast<std::size_t>(dTensor.eulerCount); ++j) {
        if (!eulerSolution(dTensor, j).isZero())
            continue;
        if (j < run.rows())
            ++run.result.countFail[j];
        isGood = false;
    }
    return isGood;
}

/// One noisy fit, which is counted if it passes. Fails after a message.
Status sampleOnce(NoiseRun &run, const MappingWatch &watch, int n)
{
    if (fitNoisy(run) != Status::ok)
        return Status::failed;
    if (run.options.mapMode == fitsWithinErrors && !isAccepted(run))
        return Status::ok;
    if (takeSample(run.result.samples, run.input, run.result.fit, n, watch, run.messages) != Status::ok)
        return Status::failed;
    for (std::size_t i = 0; i < run.rows(); ++i) {
        if (!run.isUsed(i))
            continue;
        const float d = run.calculated(i);
        run.result.mean[i] += d;
        run.result.deviation[i] += d * d;
    }
    return Status::ok;
}

/// Mean and deviation of the calculated couplings, from their sums over the samples.
void averageCouplings(CouplingNoiseResult &result)
{
    if (result.samples.averaged == 0)
        return;
    const auto count = static_cast<float>(result.samples.averaged);
    for (std::size_t i = 0; i < result.mean.length(); ++i) {
        result.mean[i] /= count;
        const float variance = result.deviation[i] / count - result.mean[i] * result.mean[i];
        result.deviation[i] = variance > 0.0f ? std::sqrt(variance) : 0.0f;
    }
}

/// The fit that is mapped. Fails after a message.
Status fitMeasured(NoiseRun &run)
{
    MappingFit &fit = run.result.fit;
    if (fitTable(run.input, fit, run.messages) != Status::ok)
        return Status::failed;
    prepareRepeatedFit({run.input.coords, run.input.dTab, fit.columns, run.input.verbose}, fit.last.tensor,
                       run.repeated);
    run.result.samples.orig = eulerSolution(fit.last.tensor, 0);
    int used = 0;
    for (std::size_t i = 0; i < run.rows(); ++i)
        used += run.isValid(i) ? 1 : 0;
    if (used < static_cast<int>(fewestCouplings))
        return run.messages.fail("TRELM Error: Only %d couplings available. Exiting ....\n", used);
    return Status::ok;
}

} // namespace

CouplingNoiseResult::CouplingNoiseResult(std::size_t rows)
    : mean("trelm", rows), deviation("trelm", rows), dSigmaOpt("trelm", rows), countFail("trelm", rows)
{
}

CouplingNoiseResult::operator bool() const
{
    return mean && deviation && dSigmaOpt && countFail && samples.store;
}

Status mapSimDC(const MappingInput &input, const CouplingNoiseOptions &options, const MappingWatch &watch,
                Messages &messages, CouplingNoiseResult &result)
{
    NoiseRun run = {input, options, messages, result, {}};
    watch.start(); // before all else: the search and failures come behind it
    if (fitMeasured(run) != Status::ok || setErrors(run) != Status::ok ||
        sampleAll(
            input.mapCount, [&](int n) { return sampleOnce(run, watch, n); }, messages) != Status::ok)
        return Status::failed;
    averageSamples(result.samples);
    averageCouplings(result);
    return compareWithMean(result.samples, input.fit, messages);
}

} // namespace trelm
