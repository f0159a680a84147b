#include "driver/assign_road.h"
#include "driver/compare_road.h"
#include "driver/inputs.h"
#include "driver/likelihood_road.h"
#include "driver/magnitude_road.h"
#include "driver/mappings.h"
#include "driver/simulate.h"
#include "driver/simulate_ensemble.h"
#include "driver/simulate_noise.h"
#include "errors/fit_statistics.h"
#include "support/text.h"

#include <algorithm>
#include <cstdio>

namespace trelm {
namespace {

/// A mode and what it does with a run.
struct ModeRow {
    int trelmMode;
    const char *flag;
    bool commonInput; ///< the common input phase comes first
    int (*branch)(Run &run);
};

/// A kind of best-fit.
struct SpreadRow {
    int spreadMode;
    const char *flag;
    int (*branch)(Run &run);
};

int bestFitSingle(Run &run)
{
    const RunOptions &options = run.options;
    if (run.trelmInfo[0].validCountD == 0)
        complain("trelm: no coupling is left to fit.\n");
    const int status = simDC(&run.pdbInfo[0], &run.sInfo, &run.dTab[0], &run.trelmInfo[0], options.remark,
                             options.outDName, options.pRotName, run.trelmInfo[0].verbFlag);
    if (status != 0)
        complain("trelm: error in best-fit of data.\n");
    return status;
}

constexpr SpreadRow spreadRows[] = {
    {0, "-single", bestFitSingle},        {1, "-jack", mapJackknife},     {2, "-mcDc", mapCouplingNoise},
    {3, "-mcStruc", mapStructuralNoise},  {4, "-rand", searchAssignment}, {5, "-exhaust", searchAssignment},
    {6, "-exhaustSel", searchAssignment},
};

const SpreadRow &spreadRow(int spreadMode)
{
    const auto *row = std::ranges::find(spreadRows, spreadMode, &SpreadRow::spreadMode);
    return row != std::end(spreadRows) ? *row : spreadRows[0];
}

int bestFit(Run &run)
{
    return spreadRow(run.trelmInfo[0].spreadMode).branch(run);
}

constexpr ModeRow modeRows[] = {
    {1, "-stTrelm", true, simulateSteric},
    {2, "-stTrelmFree", false, simulateFree},
    {3, "-stTrelmGrid", true, simulateEnsemble},
    {4, "-elTrelm", true, simulateElectrostatic},
    {5, "-elTrelmFree", true, setUpCharges},
    {6, "-elTrelmGrid", true, setUpCharges},
    {7, "-bestFit", true, bestFit},
    {8, "-csSim", true, setUpCharges},
    {9, "-daHist", false, estimateByHistogram},
    {10, "-daMl", false, estimateByLikelihood},
    {11, "-daFlex", false, estimateByMotion},
    {12, "-asRan", true, setUpCharges},
    {13, "-anDc", false, combineCouplings},
    {14, "-anA", false, compareTensors},
    {15, "-anPdb", true, analyzeStructure},
    {16, "-struc", true, addStructureNoise},
    {17, "-conv", false, convertTable},
};

} // namespace

int runMode(Run &run)
{
    const TrelmInfo &trelmInfo = run.trelmInfo[0];
    const ModeRow &mode = *std::ranges::find(modeRows, trelmInfo.trelmMode, &ModeRow::trelmMode);
    if (trelmInfo.rotN < 0 || trelmInfo.rotN > 3)
        return complain("trelm: -rotID %d: the four frames have the numbers 0 to 3.\n", trelmInfo.rotN);
    const int status = mode.commonInput ? readInputs(run) : 0;
    return status != 0 ? status : mode.branch(run);
}

} // namespace trelm
