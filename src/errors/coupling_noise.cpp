#include "errors/coupling_noise.h"

#include "couplings/fit.h"
#include "couplings/output.h"
#include "support/numerics/numbers.h"
#include "support/numerics/random.h"
#include "support/text/progress.h"
#include "support/text/text.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace trelm {
namespace {

constexpr int mostScales = 200000; ///< trial scales before the search gives up

/// What the mapping remembers of each coupling, row by row.
struct CouplingLists {
    explicit CouplingLists(std::size_t rows)
        : dcSum("trelm", rows), dcSqrSum("trelm", rows), dVal("trelm", rows), dSigma("trelm", rows),
          dSigmaOpt("trelm", rows), countFail("trelm", rows)
    {
    }
    [[nodiscard]] explicit operator bool() const
    {
        return dcSum && dcSqrSum && dVal && dSigma && dSigmaOpt && countFail;
    }
    Block<float> dcSum, dcSqrSum; ///< of the calculated coupling, over the samples
    Block<float> dVal, dSigma;    ///< coupling and error as read
    Block<float> dSigmaOpt;       ///< error in use
    Block<int> countFail;         ///< checks that failed here
};

struct NoiseRun {
    const MappingSetup &setup;
    CouplingLists lists;
    TensorSamples samples;
    SampleOutputs outputs;
    RepeatedFit fit;

    [[nodiscard]] DTable &dTab() const { return *setup.dTab; }
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
        run.lists.dVal[i] = run.dTab().dObsList[i].d;
        run.lists.dSigma[i] = run.dTab().dObsList[i].sigma;
        ++used;
    }
    return used;
}

void scaleErrors(NoiseRun &run, float kSigma)
{
    for (std::size_t i = 0; i < run.rows(); ++i)
        if (run.isValid(i))
            run.lists.dSigmaOpt[i] = run.lists.dSigma[i] * kSigma;
}

/// Noise of half the error in use, onto what was measured, and a fit. Returns 0, or 1 after a message.
int fitNoisy(NoiseRun &run)
{
    for (std::size_t i = 0; i < run.rows(); ++i)
        if (run.isValid(i))
            run.dTab().dObsList[i].d = static_cast<float>(gauss() * number(run.lists.dSigmaOpt[i]) * 0.5 +
                                                          number(run.lists.dVal[i]));
    return refitD(run.fit, run.setup.pdbInfo, run.setup.dTab, run.setup.verbose) < 0 ? 1 : 0;
}

/// Whether all calculated couplings lie within the errors in use; counts those that do not. A row of weight 0
/// is never calculated and is not asked.
bool isWithinErrors(NoiseRun &run)
{
    bool isWithin = true;
    for (std::size_t i = 0; i < run.rows(); ++i) {
        if (!run.isValid(i) || run.dTab().dCalcList[i].w == 0.0f)
            continue;
        const double value = number(run.lists.dVal[i]), sigma = number(run.lists.dSigmaOpt[i]);
        const double calculated = number(run.dTab().dCalcList[i].d);
        if (calculated >= value - sigma && calculated <= value + sigma)
            continue;
        ++run.lists.countFail[i];
        isWithin = false;
    }
    return isWithin;
}

/// Whether so many fits can pass. Returns 0, or 1 after one line that names the option.
int checkWanted(const TrelmInfo &info, int nAdjust)
{
    if (std::max(info.nAdjustMc, 0) > nAdjust)
        return 0;
    if (info.nAdjustMc < 1)
        return complain("trelm: -nAdjustMc %d: the search needs one fit at least.\n", info.nAdjustMc);
    return complain("trelm: -fracAdjustMc %g of -nAdjustMc %d: more fits than there are can not pass.\n",
                    number(info.mcAdjustFrac), info.nAdjustMc);
}

/// A coupling without an error gets no noise, and no scale widens its range: missed by the fit, it is missed
/// by the noisy fits as well. That matters where fits are tested and some have to pass. Returns 0, or 1 after
/// a message if there is such a one.
int checkErrors(NoiseRun &run, int nAdjust)
{
    if (run.setup.trelmInfo->mapMode == 0 || nAdjust < 0)
        return 0;
    int missed = 0;
    for (std::size_t i = 0; i < run.rows(); ++i) {
        const DInfo &calculated = run.dTab().dCalcList[i];
        if (run.isValid(i) && calculated.w != 0.0f && run.lists.dSigma[i] == 0.0f &&
            calculated.d != run.lists.dVal[i])
            ++missed;
    }
    if (missed == 0)
        return 0;
    return complain("trelm: -mcDc: the fit misses %d coupling%s whose error (DD) is 0: no scale of the errors"
                    " lets it pass. See -noautoMc.\n",
                    missed, missed == 1 ? "" : "s");
}

/// The next scale to try. Returns 0, or 1 after a message if there is none.
int nextScale(const TrelmInfo &info, float &kSigma)
{
    const float last = kSigma;
    kSigma += info.incSigma;
    if (kSigma > last)
        return 0;
    if (!(info.incSigma > 0.0f))
        return complain("\ntrelm: -incAdjustMc %g: the step of the error scale must be positive.\n",
                        number(info.incSigma));
    return complain("\ntrelm: -incAdjustMc %g: too small a step from an error scale of %g.\n",
                    number(info.incSigma), number(last));
}

/// Counts the noisy fits that pass at the scale in use. Returns 0, or 1 after a message.
int countGood(NoiseRun &run, int &good)
{
    const TrelmInfo &info = *run.setup.trelmInfo;
    good = 0;
    for (int n = 0; n < info.nAdjustMc; ++n) {
        if (fitNoisy(run) != 0)
            return 1;
        if (info.mapMode == 0 || isWithinErrors(run))
            ++good;
    }
    return 0;
}

/// Finds the error scale. Returns 0, or 1 after a message.
int searchScale(NoiseRun &run)
{
    TrelmInfo &info = *run.setup.trelmInfo;
    const int nAdjust = truncated(static_cast<float>(info.nAdjustMc) * info.mcAdjustFrac);
    if (checkWanted(info, nAdjust) != 0 || checkErrors(run, nAdjust) != 0)
        return 1;
    std::printf("REMARK Adjusting DC error bars ...\n");
    info.kSigma = info.kLSigma;
    for (int trial = 1;; ++trial) {
        std::printf("REMARK DC Error Scaling factor %.1f\r", number(info.kSigma));
        scaleErrors(run, info.kSigma);
        int good = 0;
        if (countGood(run, good) != 0)
            return 1;
        if (good > nAdjust)
            break;
        if (trial == mostScales)
            return complain("\ntrelm: no error scale up to %g lets more than %d of %d fits pass.\n",
                            number(info.kSigma), nAdjust, info.nAdjustMc);
        if (nextScale(info, info.kSigma) != 0)
            return 1;
    }
    std::fputs("\n", stderr);
    std::printf("REMARK DC error bars automatically adjusted by factor of %.1f.\n", number(info.kSigma));
    return 0;
}

int setErrors(NoiseRun &run)
{
    const TrelmInfo &info = *run.setup.trelmInfo;
    if (info.mcAdjustFlag == 0 || info.validCountD < static_cast<int>(fewestCouplings))
        std::printf("REMARK DC error bars scaled by user supplied factor of %.1f.\n", number(info.kSigma));
    else if (searchScale(run) != 0)
        return 1;
    scaleErrors(run, info.kSigma);
    for (int &fails : run.lists.countFail.span())
        fails = 0; // those of the search do not count
    return 0;
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
            ++run.lists.countFail[j];
        isGood = false;
    }
    return isGood;
}

int sampleTensors(NoiseRun &run)
{
    const MappingSetup &setup = run.setup;
    Progress progress = startProgress("REMARK Sampled ", setup.mapCount);
    for (int n = 1; n <= setup.mapCount; ++n) {
        showProgress(progress, n);
        if (fitNoisy(run) != 0)
            return failed(progress);
        if (setup.trelmInfo->mapMode != 0 && !isAccepted(run))
            continue;
        if (takeSample(run.samples, setup, n, run.outputs) != 0)
            return failed(progress);
        for (std::size_t i = 0; i < run.rows(); ++i) {
            if (!run.isValid(i) || run.dTab().dCalcList[i].w == 0.0f)
                continue;
            const float d = run.dTab().dCalcList[i].d;
            run.lists.dcSum[i] += d;
            run.lists.dcSqrSum[i] += d * d;
        }
    }
    endProgress(progress);
    return 0;
}

/// Mean and deviation of a calculated coupling over the samples; zeros without any.
void putBack(NoiseRun &run, std::size_t i)
{
    float average = 0.0f, deviation = 0.0f;
    if (run.samples.averaged != 0) {
        const auto count = static_cast<float>(run.samples.averaged);
        average = run.lists.dcSum[i] / count;
        const float variance = run.lists.dcSqrSum[i] / count - average * average;
        deviation = variance > 0.0f ? std::sqrt(variance) : 0.0f;
    }
    run.dTab().dObsList[i].d = run.lists.dVal[i];
    run.dTab().dObsList[i].sigma = deviation;
    if (run.dTab().dCalcList[i].w != 0.0f) // others are never calculated
        run.dTab().dCalcList[i].d = average;
}

/// The table as measured, with the mean Saupe vector and what it says of the couplings. Angles, Da and Dr of
/// the tensor stay those of the last noisy fit.
void restoreTable(NoiseRun &run)
{
    DTensor &tensor = run.dTab().dTensor;
    for (std::size_t k = 0; k < run.samples.saupeAve.size(); ++k)
        tensor.saupe[k] = static_cast<float>(run.samples.saupeAve[k]);
    for (std::size_t i = 0; i < run.rows(); ++i)
        if (run.isValid(i))
            putBack(run, i);
}

int writeFails(NoiseRun &run)
{
    for (std::size_t i = 0; i < run.rows(); ++i)
        if (run.isValid(i))
            run.dTab().dObsList[i].w = static_cast<float>(run.lists.countFail[i]);
    std::string text = "\nREMARK Failure Statistics.\n";
    appendf(text, "DATA STATISTICS MAPPING NUMBER OF SUCCESFUL STEPS   %d\n\n\n", run.samples.count);
    return writeDCmod(run.setup.files.outDFailName, "w", run.setup.dTab, run.setup.trelmInfo, text);
}

int report(NoiseRun &run)
{
    const MappingSetup &setup = run.setup;
    int status =
        writeDCmod(setup.files.outDName, "w", setup.dTab, setup.trelmInfo, mappingReport(run.samples));
    status |= writeFails(run);
    if (run.samples.count != 0)
        status |= writeMeanFrame(run.samples, setup, "matrix: error in writePDBRot.\n");
    return status;
}

/// The fit that is mapped. Returns 0, or 1 after a message.
int fitMeasured(NoiseRun &run)
{
    if (fitD(run.setup.pdbInfo, run.setup.dTab, run.setup.verbose) < 0)
        return 1;
    prepareRepeatedFit(run.dTab(), run.fit);
    run.samples.orig = eulerSolution(run.dTab().dTensor, 0);
    const int used = keepMeasured(run);
    if (used < static_cast<int>(fewestCouplings))
        return complain("TRELM Error: Only %d couplings available. Exiting ....\n", used);
    return 0;
}

} // namespace

int mapSimDC(const MappingSetup &setup)
{
    if (setup.dTab == nullptr || setup.dTab->dCount == 0 || !setup.dTab->dObsList || !setup.dTab->dCalcList)
        return 0;
    NoiseRun run = {setup, CouplingLists(static_cast<std::size_t>(setup.dTab->dCount)), {}, {}, {}};
    if (!run.lists)
        return complain("Error allocating coord buffers.\n");
    if (makeSamples(run.samples) != 0 || openOutputs(setup, noiseWords, run.outputs) != 0)
        return 1;
    writeOut(run.outputs.da, daHead); // before all else: the search and failures come behind it
    if (fitMeasured(run) != 0 || setErrors(run) != 0 || sampleTensors(run) != 0)
        return 1;
    averageSamples(run.samples);
    restoreTable(run);
    if (comparePass(run.samples, setup, noiseWords, run.outputs) != 0)
        return 1;
    const int status = report(run);
    const int closed = closeOutputs(run.outputs);
    return status != 0 ? status : closed;
}

} // namespace trelm
