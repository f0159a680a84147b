#include "errors/structural_noise.h"

#include "couplings/fit.h"
#include "couplings/statistics.h"
#include "structure/write.h"
#include "support/numerics/numbers.h"
#include "support/text/progress.h"
#include "support/text/text.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <span>
#include <vector>

namespace trelm {
namespace {

constexpr float widestCone = 90.0f; ///< degrees: the search ends there

/// An atom of a coupling, and where it was.
struct SavedAtom {
    AtomInfo *atom;
    Coord3D place;
};

struct NoiseRun {
    MappingSetup setup;
    const ResidueOffset &offset;
    DTensor tInfo;                           ///< the tensor before the fits
    float rSumOrig = 0.0f;                   ///< misfit of the measured couplings, Hz
    int nD = 0;                              ///< couplings behind it
    int idum = -1;                           ///< the draws do not follow the seed of the run
    std::vector<DInfo> observed, calculated; ///< the rows before the sampling
    std::vector<int> dCalcValid;
    std::vector<SavedAtom> atoms;
    TensorSamples samples;
    SampleOutputs outputs;

    [[nodiscard]] DTable &dTab() const { return *setup.dTab; }
    [[nodiscard]] TrelmInfo &info() const { return *setup.trelmInfo; }
};

void saveAtoms(NoiseRun &run, std::span<AtomInfo *const> atoms)
{
    for (AtomInfo *atom : atoms)
        run.atoms.push_back({atom, {atom->x, atom->y, atom->z}});
}

/// Keeps rows and atoms; from here on the calculated couplings stand for the measured ones.
void keepState(NoiseRun &run)
{
    run.observed.assign(run.dTab().observed().begin(), run.dTab().observed().end());
    run.calculated.assign(run.dTab().calculated().begin(), run.dTab().calculated().end());
    for (const DInfo &row : run.calculated) {
        run.dCalcValid.push_back(row.valid);
        saveAtoms(run, row.atomsI());
        saveAtoms(run, row.atomsJ());
    }
    for (std::size_t i = 0; i < run.observed.size(); ++i) {
        run.dTab().dObsList[i].d = run.calculated[i].d;
        run.dTab().dObsList[i].valid = run.calculated[i].valid;
    }
}

/// Structure and calculated rows as they were. Internuclear vectors move the atoms of the couplings alone.
int restoreStructure(NoiseRun &run)
{
    if (run.info().noiseMode == 0 && restorePDBCoords(run.setup.pdbInfo) != 0)
        return complain("trelm: error in storePDBCoords.\n");
    for (const SavedAtom &saved : run.atoms) {
        saved.atom->x = saved.place.x;
        saved.atom->y = saved.place.y;
        saved.atom->z = saved.place.z;
    }
    // With them `valid` comes back, which a row loses in a copy where its atoms were not found again.
    std::ranges::copy(run.calculated, run.dTab().dCalcList.data());
    return 0;
}

void addNoise(NoiseRun &run)
{
    const ConeSetup cone = coneOf(run.info());
    if (run.info().noiseMode != 0)
        addPdbNoise(run.setup.pdbInfo, run.setup.dTab, cone, offsetOf(run.offset), run.dCalcValid, &run.idum);
    else
        addPhiPsiNoise(&run.idum, run.setup.pdbInfo, run.setup.dTab, cone, run.offset,
                       run.info().allowFixedDI);
}

/// A fit to a fresh copy of the structure with noise of the width in use. Returns 0, or 1 after a message.
int fitNoisy(NoiseRun &run, bool withNoise)
{
    dTensorCopy(run.dTab().dTensor, run.tInfo);
    if (restoreStructure(run) != 0)
        return 1;
    if (withNoise)
        addNoise(run);
    return fitD(run.setup.pdbInfo, run.setup.dTab, run.setup.verbose) < 0 ? 1 : 0;
}

/// The mean misfit of fits with the width in use; stays as it was without one. Returns 0, or 1 after a
/// message.
int meanMisfit(NoiseRun &run, double &rSumAve)
{
    double rSumDsum = 0.0;
    int count = 0;
    for (int n = 0; n < run.info().nConeAdjust; ++n) {
        if (fitNoisy(run, true) != 0)
            return 1;
        if (isWithoutTensor(run.dTab()))
            continue;
        float rSum = 0.0f, pSum = 0.0f;
        int nD = 0;
        getStatDC(run.dTab().observed(), run.dTab().calculated(), rSum, pSum, nD);
        rSumDsum += number(rSum);
        ++count;
    }
    if (count != 0)
        rSumAve = rSumDsum / count;
    return 0;
}

/// Warns of settings with which the search finds nothing.
void warnOfStart(const TrelmInfo &info)
{
    const double first = number(info.nConeStart);
    if (info.nConeAdjust < 1)
        complain("Warning: -nCone %d: without fits the search of the cone finds no misfit.\n",
                 info.nConeAdjust);
    if (first < 0.0)
        complain("Warning: -lCone %g: a cone below 0 degrees moves no atom.\n", first);
    if (first >= 180.0)
        complain("Warning: -lCone %g: an angle to an axis is below 180 degrees.\n", first);
}

/// Whether steps from this width ever end the search. Returns 0, or 1 after a message.
int checkStep(double width, double step)
{
    if (!(step > 0.0))
        return complain("trelm: -incCone %g: the step of the cone must be positive.\n", step);
    // A step that is lost in the rounding leads nowhere.
    const double last = number(widestCone);
    if (!(width + step > width && last + step > last))
        return complain("trelm: -incCone %g: too small a step from a cone of %g degrees.\n", step, width);
    return 0;
}

/// Finds the widest noise that does not misfit more than the measured couplings do. Returns 0, or 1 after a
/// message.
int adjustCone(NoiseRun &run)
{
    TrelmInfo &info = run.info();
    const double step = number(info.nConeInc), target = number(run.rSumOrig);
    std::printf("REMARK Adjusting amount of structural noise ...\n");
    info.coneWidth = number(info.nConeStart);
    double rSumAve = 0.0, rSumAveOld = 0.0;
    while (info.coneWidth < number(widestCone)) {
        rSumAveOld = rSumAve;
        if (meanMisfit(run, rSumAve) != 0 || (!(rSumAve > target) && checkStep(info.coneWidth, step) != 0))
            return 1;
        info.coneWidth += step;
        if (rSumAve > target)
            break;
    }
    info.coneWidth -= rSumAve > target ? 2.0 * step : step;
    std::printf("REMARK Amount of structural noise automatically determined.\n");
    std::printf("REMARK Width of Gaussian cone %.2f degree and %.3f Hz DC Rms.\n", info.coneWidth,
                rSumAveOld);
    return 0;
}

int setCone(NoiseRun &run)
{
    TrelmInfo &info = run.info();
    const int known = std::min(info.validCountD, run.nD);
    if (info.nConeFlag == 0 || known < static_cast<int>(fewestCouplings)) {
        warnOfWidth(info);
        std::printf("REMARK Amount of structural noise by user specified.\n");
        std::printf("REMARK Width of Gaussian cone %.2f degree.\n", info.coneWidth);
    } else {
        warnOfStart(info);
        if (adjustCone(run) != 0)
            return 1;
    }
    if (known < static_cast<int>(fewestCouplings))
        return complain("TRELM Error: Only %d couplings available. Exiting ....\n", run.nD);
    if (info.coneWidth <= 0.0) {
        run.setup.mapCount = 1; // without noise one sample says all
        info.coneWidth = 0.0;
    }
    return 0;
}

int sampleStructures(NoiseRun &run)
{
    writeOut(run.outputs.da, daHead);
    Progress progress = startProgress("REMARK Sampled ", run.setup.mapCount);
    for (int n = 1; n <= run.setup.mapCount; ++n) {
        showProgress(progress, n);
        if (fitNoisy(run, run.info().coneWidth > 0.0) != 0)
            return failed(progress);
        if (!isWithoutTensor(run.dTab()) && takeSample(run.samples, run.setup, n, run.outputs) != 0)
            return failed(progress);
    }
    endProgress(progress);
    std::printf("REMARK %d SVD runs of %d succesful.\n", run.samples.count, run.setup.mapCount);
    return 0;
}

int restoreState(NoiseRun &run)
{
    std::ranges::copy(run.observed, run.dTab().dObsList.data());
    return restoreStructure(run);
}

/// The fit that is mapped.
int fitMeasured(NoiseRun &run)
{
    dTensorCopy(run.tInfo, run.dTab().dTensor);
    if (fitD(run.setup.pdbInfo, run.setup.dTab, run.setup.verbose) < 0)
        return 1;
    run.samples.orig = eulerSolution(run.dTab().dTensor, 0);
    float pSumOrig = 0.0f;
    getStatDC(run.dTab().observed(), run.dTab().calculated(), run.rSumOrig, pSumOrig, run.nD);
    return 0;
}

/// The mapping, once there are couplings to map.
int mapNoise(NoiseRun &run)
{
    if (storePDBCoords(run.setup.pdbInfo) != 0)
        return complain("trelm: error in storePDBCoords.\n");
    keepState(run);
    std::printf("REMARK Experimental DC and structure have %.3f Hz DC Rms.\n", number(run.rSumOrig));
    if (setCone(run) != 0 || sampleStructures(run) != 0)
        return 1;
    averageSamples(run.samples);
    if (restoreState(run) != 0 || comparePass(run.samples, run.setup, mappingWords, run.outputs) != 0)
        return 1;
    const int status = reportMeanTensor(run.samples, run.setup);
    const int closed = closeOutputs(run.outputs);
    return status != 0 ? status : closed;
}

} // namespace

int noiseStrucSimDC(const MappingSetup &setup, const ResidueOffset &offset)
{
    if (checkPositions(*setup.trelmInfo) != 0)
        return 1;
    NoiseRun run = {.setup = setup,
                    .offset = offset,
                    .tInfo = {},
                    .observed = {},
                    .calculated = {},
                    .dCalcValid = {},
                    .atoms = {},
                    .samples = {},
                    .outputs = {}};
    if (makeSamples(run.samples) != 0 || openOutputs(setup, mappingWords, run.outputs) != 0 ||
        fitMeasured(run) != 0)
        return 1;
    if (run.nD == 0) {
        complain("trelm: no coupling is left to fit.\n");
        return closeOutputs(run.outputs); // without content: nothing of an earlier run stays
    }
    return mapNoise(run);
}

} // namespace trelm
