#include "errors/structural_noise.h"

#include "couplings/options.h"
#include "couplings/statistics.h"
#include "support/numerics/numbers.h"

#include <algorithm>
#include <optional>
#include <span>
#include <utility>
#include <vector>

namespace trelm {
namespace {

constexpr float widestCone = 90.0f; ///< degrees: the search ends there

struct StructuralRun {
    const MappingInput &input;
    const StructuralNoiseOptions &options;
    const ResidueOffset &offset;
    Messages &messages;
    StructuralNoiseResult &result;
    DTensor tInfo = {};                   ///< the tensor before the fits
    float rSumOrig = 0.0f;                ///< misfit of the measured couplings, Hz
    RandomStream random = RandomStream(); ///< the draws do not follow the seed of the run
    DTable rows = {};                     ///< of a copy of the structure
    std::vector<int> dCalcValid = {};
    std::vector<Coord3D> coords = {};    ///< of a copy of the structure
    std::vector<std::size_t> atoms = {}; ///< places of the atoms of the couplings

    [[nodiscard]] MappingFit &fit() const { return result.fit; }
    /// The same mapping, of the copy.
    [[nodiscard]] MappingInput noisy() const
    {
        return {input.pdbInfo, coords, rows, input.fit, input.validCount, input.mapCount, input.verbose};
    }
};

/// Makes the coordinates and the rows of the copies, in which the calculated couplings stand for the
/// measured ones. Fails after a message.
Status keepState(StructuralRun &run)
{
    std::optional<DTable> copy = copyTable(run.input.dTab, run.messages);
    if (!copy)
        return Status::failed;
    run.rows = std::move(*copy);
    run.coords = copyOfCoordinates(run.input.pdbInfo);
    for (std::size_t i = 0; i < run.rows.observed().size(); ++i) {
        const DCalc &calc = run.input.dTab.dCalcList[i];
        run.dCalcValid.push_back(calc.valid);
        for (const SideAtoms *side : {&calc.atomI, &calc.atomJ})
            run.atoms.insert(run.atoms.end(), side->span().begin(), side->span().end());
        run.rows.dObsList[i].d = run.fit().last.calculated[i];
        run.rows.dObsList[i].valid = calc.valid;
    }
    return Status::ok;
}

/// Structure and calculated rows as they were. Internuclear vectors move the atoms of the couplings alone.
void restoreStructure(StructuralRun &run)
{
    const std::span<const Coord3D> asRead = run.input.pdbInfo.coordinates();
    if (run.options.noiseMode == noiseOnAngles)
        std::ranges::copy(asRead, run.coords.begin());
    else
        for (const std::size_t atom : run.atoms)
            run.coords[atom] = asRead[atom];
    // With them `valid` comes back, which a row loses in a copy where its atoms were not found again.
    std::ranges::copy(run.input.dTab.calculated(), run.rows.calculated().begin());
}

/// Noise of the width in use.
void addNoise(StructuralRun &run)
{
    ConeOptions inUse = run.options;
    inUse.coneWidth = run.result.coneWidth;
    const ConeSetup cone = coneOf(inUse);
    const NoiseTarget target = {{run.input.pdbInfo, run.coords}, run.rows};
    if (run.options.noiseMode == noiseOnVectors)
        addPdbNoise(target, cone, offsetOf(run.offset), run.dCalcValid, run.random);
    else
        addPhiPsiNoise(run.random, target, cone, run.offset, run.input.fit.allowFixedDI, run.messages);
}

/// A fit to a fresh copy of the structure with noise of the width in use. Fails after a message.
Status fitNoisy(StructuralRun &run, bool withNoise)
{
    const float rh = run.fit().last.tensor.rh; // goes on from fit to fit
    run.fit().last.tensor = run.tInfo;
    run.fit().last.tensor.rh = rh;
    restoreStructure(run);
    if (withNoise)
        addNoise(run);
    takeColumns(run.rows, run.fit().columns);
    return fitAgain(run.noisy(), run.fit(), run.messages);
}

/// The mean misfit of fits with the width in use; stays as it was without one. Fails after a message.
Status meanMisfit(StructuralRun &run, double &rSumAve)
{
    double rSumDsum = 0.0;
    int count = 0;
    for (int n = 0; n < run.options.nConeAdjust; ++n) {
        if (fitNoisy(run, true) != Status::ok)
            return Status::failed;
        if (isWithoutTensor(run.fit().last))
            continue;
        rSumDsum += number(getStatDC(run.rows, run.fit().columns, run.fit().last.calculated).rSumD);
        ++count;
    }
    if (count != 0)
        rSumAve = rSumDsum / count;
    return Status::ok;
}

/// Warns of settings with which the search finds nothing.
void warnOfStart(const ConeSearchOptions &options, Messages &messages)
{
    const double first = number(options.nConeStart);
    if (options.nConeAdjust < 1)
        messages.warn("Warning: -nCone %d: without fits the search of the cone finds no misfit.\n",
                      options.nConeAdjust);
    if (first < 0.0)
        messages.warn("Warning: -lCone %g: a cone below 0 degrees moves no atom.\n", first);
    if (first >= 180.0)
        messages.warn("Warning: -lCone %g: an angle to an axis is below 180 degrees.\n", first);
}

/// Whether steps from this width ever end the search. Fails after a message.
Status checkStep(double width, double step, Messages &messages)
{
    if (!(step > 0.0))
        return messages.fail("trelm: -incCone %g: the step of the cone must be positive.\n", step);
    // A step that is lost in the rounding leads nowhere.
    const double last = number(widestCone);
    if (!(width + step > width && last + step > last))
        return messages.fail("trelm: -incCone %g: too small a step from a cone of %g degrees.\n", step,
                             width);
    return Status::ok;
}

/// Finds the widest noise that does not misfit more than the measured couplings do. Fails after a message.
Status adjustCone(StructuralRun &run)
{
    const double step = number(run.options.nConeInc), target = number(run.rSumOrig);
    double &width = run.result.coneWidth;
    warnOfStart(run.options, run.messages);
    run.messages.out("REMARK Adjusting amount of structural noise ...\n");
    width = number(run.options.nConeStart);
    double rSumAve = 0.0, rSumAveOld = 0.0;
    while (width < number(widestCone)) {
        rSumAveOld = rSumAve;
        if (meanMisfit(run, rSumAve) != Status::ok ||
            (!(rSumAve > target) && checkStep(width, step, run.messages) != Status::ok))
            return Status::failed;
        width += step;
        if (rSumAve > target)
            break;
    }
    width -= rSumAve > target ? 2.0 * step : step;
    run.messages.out("REMARK Amount of structural noise automatically determined.\n");
    run.messages.out("REMARK Width of Gaussian cone %.2f degree and %.3f Hz DC Rms.\n", width, rSumAveOld);
    return Status::ok;
}

/// Fails after a message.
Status setCone(StructuralRun &run)
{
    StructuralNoiseResult &result = run.result;
    const int known = std::min(run.input.validCount, result.couplings);
    if (run.options.nConeFlag == 0 || known < static_cast<int>(fewestCouplings)) {
        warnOfWidth(run.options, run.messages);
        result.coneWidth = run.options.coneWidth;
        run.messages.out("REMARK Amount of structural noise by user specified.\n");
        run.messages.out("REMARK Width of Gaussian cone %.2f degree.\n", result.coneWidth);
    } else if (adjustCone(run) != Status::ok) {
        return Status::failed;
    }
    if (known < static_cast<int>(fewestCouplings))
        return run.messages.fail("TRELM Error: Only %d couplings available. Exiting ....\n",
                                 result.couplings);
    result.coneWidth = std::max(result.coneWidth, 0.0);
    result.mapCount = result.coneWidth > 0.0 ? run.input.mapCount : 1; // without noise one sample says all
    return Status::ok;
}

Status sampleStructures(StructuralRun &run, const MappingWatch &watch)
{
    StructuralNoiseResult &result = run.result;
    watch.start();
    const Status sampled = sampleAll(
        result.mapCount,
        [&](int n) {
            if (fitNoisy(run, result.coneWidth > 0.0) != Status::ok)
                return Status::failed;
            return isWithoutTensor(run.fit().last)
                       ? Status::ok
                       : takeSample(result.samples, run.noisy(), run.fit(), n, watch, run.messages);
        },
        run.messages);
    if (sampled == Status::ok)
        run.messages.out("REMARK %d SVD runs of %d succesful.\n", result.samples.count, result.mapCount);
    return sampled;
}

/// The fit that is mapped.
Status fitMeasured(StructuralRun &run)
{
    run.tInfo = run.input.dTab.dTensor;
    if (fitTable(run.input, run.fit(), run.messages) != Status::ok)
        return Status::failed;
    run.result.samples.orig = eulerSolution(run.fit().last.tensor, 0);
    const Misfit misfit = getStatDC(run.input.dTab, run.fit().columns, run.fit().last.calculated);
    run.rSumOrig = misfit.rSumD;
    run.result.couplings = misfit.nD;
    return Status::ok;
}

} // namespace

Status noiseStrucSimDC(const MappingInput &input, const StructuralNoiseOptions &options,
                       const ResidueOffset &offset, const MappingWatch &watch, Messages &messages,
                       StructuralNoiseResult &result)
{
    StructuralRun run = {input, options, offset, messages, result};
    if (fitMeasured(run) != Status::ok)
        return Status::failed;
    if (result.couplings == 0) {
        messages.warn("trelm: no coupling is left to fit.\n");
        return Status::ok;
    }
    if (keepState(run) != Status::ok)
        return Status::failed;
    messages.out("REMARK Experimental DC and structure have %.3f Hz DC Rms.\n", number(run.rSumOrig));
    if (setCone(run) != Status::ok || sampleStructures(run, watch) != Status::ok)
        return Status::failed;
    averageSamples(result.samples);
    takeColumns(input.dTab, result.fit.columns);
    return compareWithMean(result.samples, input.fit, messages);
}

} // namespace trelm
