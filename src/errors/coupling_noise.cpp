#include "errors/coupling_noise.h"

#include "couplings/fit.h"
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
    RepeatedFit fit;
    RandomStream random = RandomStream();

    [[nodiscard]] DTable &dTab() const { return input.dTab; }
    [[nodiscard]] std::size_t rows() const { return static_cast<std::size_t>(dTab().dCount); }
    [[nodiscard]] bool isValid(std::size_t i) const { return dTab().dCalcList[i].valid != 0; }
};

/// Keeps what was measured. Returns the number of couplings in use.
int keepMeasured(NoiseRun &run)
{
    int used = 0;
    for (std::size_t i = 0; i < run.rows(); ++i) {
        if (!run.isValid(i))
            continue;
        run.result.dVal[i] = run.dTab().dObsList[i].d;
        run.result.dSigma[i] = run.dTab().dObsList[i].sigma;
        ++used;
    }
    return used;
}

void scaleErrors(NoiseRun &run)
{
    for (std::size_t i = 0; i < run.rows(); ++i)
        if (run.isValid(i))
            run.result.dSigmaOpt[i] = run.result.dSigma[i] * run.result.kSigma;
}

/// Noise of half the error in use, onto what was measured, and a fit. Fails after a message.
Status fitNoisy(NoiseRun &run)
{
    for (std::size_t i = 0; i < run.rows(); ++i)
        if (run.isValid(i))
            run.dTab().dObsList[i].d = static_cast<float>(
                run.random.gauss() * number(run.result.dSigmaOpt[i]) * 0.5 + number(run.result.dVal[i]));
    const MappingInput &input = run.input;
    return refitD(run.fit, &input.pdbInfo, input.dTab, input.verbose, run.messages) ? Status::ok
                                                                                    : Status::failed;
}

/// Whether all calculated couplings lie within the errors in use; counts those that do not. A row of weight 0
/// is never calculated and is not asked.
bool isWithinErrors(NoiseRun &run)
{
    bool isWithin = true;
    for (std::size_t i = 0; i < run.rows(); ++i) {
        if (!takesPart(run.dTab().dCalcList[i]))
            continue;
        const double value = number(run.result.dVal[i]), sigma = number(run.result.dSigmaOpt[i]);
        const double calculated = number(run.dTab().dCalcList[i].d);
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
    if (run.options.mapMode == 0 || nAdjust < 0)
        return Status::ok;
    int missed = 0;
    for (std::size_t i = 0; i < run.rows(); ++i) {
        const DInfo &calculated = run.dTab().dCalcList[i];
        if (takesPart(calculated) && run.result.dSigma[i] == 0.0f && calculated.d != run.result.dVal[i])
            ++missed;
    }
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
        if (run.options.mapMode == 0 || isWithinErrors(run))
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
    messages.err("\n");
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
    const DTensor &dTensor = run.dTab().dTensor;
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
    if (run.options.mapMode != 0 && !isAccepted(run))
        return Status::ok;
    if (takeSample(run.result.samples, run.input, n, watch, run.messages) != Status::ok)
        return Status::failed;
    for (std::size_t i = 0; i < run.rows(); ++i) {
        if (!takesPart(run.dTab().dCalcList[i]))
            continue;
        const float d = run.dTab().dCalcList[i].d;
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

void restoreMeasured(NoiseRun &run)
{
    for (std::size_t i = 0; i < run.rows(); ++i)
        if (run.isValid(i))
            run.dTab().dObsList[i].d = run.result.dVal[i];
}

/// The fit that is mapped. Fails after a message.
Status fitMeasured(NoiseRun &run)
{
    if (fitTable(run.input, run.messages) != Status::ok)
        return Status::failed;
    prepareRepeatedFit(run.dTab(), run.fit);
    run.result.samples.orig = eulerSolution(run.dTab().dTensor, 0);
    const int used = keepMeasured(run);
    if (used < static_cast<int>(fewestCouplings))
        return run.messages.fail("TRELM Error: Only %d couplings available. Exiting ....\n", used);
    return Status::ok;
}

} // namespace

CouplingNoiseResult::CouplingNoiseResult(std::size_t rows)
    : mean("trelm", rows), deviation("trelm", rows), dVal("trelm", rows), dSigma("trelm", rows),
      dSigmaOpt("trelm", rows), countFail("trelm", rows)
{
}

CouplingNoiseResult::operator bool() const
{
    return mean && deviation && dVal && dSigma && dSigmaOpt && countFail && samples.store;
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
    restoreMeasured(run);
    return compareWithMean(result.samples, input.fit, messages);
}

} // namespace trelm
