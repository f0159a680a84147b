#include "modes/assignment.h"
#include "modes/best_fit.h"
#include "modes/comparison.h"
#include "modes/doubts.h"
#include "modes/ensemble.h"
#include "modes/files.h"
#include "modes/inputs.h"
#include "modes/json_output.h"
#include "modes/likelihood.h"
#include "modes/magnitude.h"
#include "modes/mappings.h"
#include "modes/simulation.h"
#include "modes/structural_noise.h"
#include "modes/structure_analysis.h"

#include <algorithm>

namespace trelm {
namespace {

/// A mode and what it does with a run.
struct ModeRow {
    Mode trelmMode;
    bool commonInput; ///< the common input phase comes first
    Status (*work)(const Run &run, Messages &messages);
};

/// A kind of best-fit.
struct SpreadRow {
    SpreadKind spreadMode;
    Status (*work)(const Run &run, Messages &messages);
};

constexpr SpreadRow spreadRows[] = {
    {spreadSingle, bestFitSingle},        {spreadJack, mapJackknife},     {spreadMcDc, mapCouplingNoise},
    {spreadMcStruc, mapStructuralNoise},  {spreadRand, searchAssignment}, {spreadExhaust, searchAssignment},
    {spreadExhaustSel, searchAssignment},
};

const SpreadRow &spreadRow(SpreadKind spreadMode)
{
    const auto *row = std::ranges::find(spreadRows, spreadMode, &SpreadRow::spreadMode);
    return row != std::end(spreadRows) ? *row : spreadRows[0];
}

Status bestFit(const Run &run, Messages &messages)
{
    tellFit(run, messages);
    return spreadRow(run.mode.spreadMode).work(run, messages);
}

constexpr ModeRow modeRows[] = {
    {modeStTrelm, true, simulateSteric},
    {modeStTrelmFree, false, simulateFree},
    {modeStTrelmGrid, true, simulateEnsemble},
    {modeElTrelm, true, simulateElectrostatic},
    {modeElTrelmFree, true, setUpCharges},
    {modeElTrelmGrid, true, setUpCharges},
    {modeBestFit, true, bestFit},
    {modeCsSim, true, setUpCharges},
    {modeDaHist, false, estimateByHistogram},
    {modeDaMl, false, estimateByLikelihood},
    {modeDaFlex, false, estimateByMotion},
    {modeAsRan, true, setUpCharges},
    {modeAnDc, false, combineCouplings},
    {modeAnA, false, compareTensors},
    {modeAnPdb, true, reportStructure},
    {modeStruc, true, addStructureNoise},
    {modeConv, false, convertTable},
};

/// An input that a mode can do nothing without.
struct NeedRow {
    Mode trelmMode;
    const char *option;
    std::string RunOptions::*name;
    const char *lack;
};

constexpr const char *noStructure = "without a structure there are no atoms";
constexpr const char *noTable = "without a table there are no couplings";

constexpr NeedRow needRows[] = {
    {modeBestFit, "-pdb", &RunOptions::pdbName, "without a structure no coupling can be fitted"},
    {modeBestFit, "-inD", &RunOptions::inDName, noTable},
    {modeStTrelm, "-pdb", &RunOptions::pdbName, noStructure},
    {modeElTrelm, "-pdb", &RunOptions::pdbName, noStructure},
    {modeStTrelmGrid, "-pdb", &RunOptions::pdbName, noStructure},
    {modeStTrelmFree, "-pdbF", &RunOptions::pdbFName, "without coordinates there are no atoms"},
    {modeAnPdb, "-pdb", &RunOptions::pdbName, noStructure},
    {modeDaHist, "-inD", &RunOptions::inDName, noTable},
    {modeDaMl, "-inD", &RunOptions::inDName, noTable},
    {modeDaFlex, "-inD", &RunOptions::inDName, noTable},
    {modeConv, "-inD", &RunOptions::inDName, noTable},
    {modeAnDc, "-inD1", &RunOptions::inD1Name, noTable},
    {modeAnDc, "-inD2", &RunOptions::inD2Name, noTable},
};

void warnOfMissingInputs(const Run &run, Messages &messages)
{
    for (const NeedRow &row : needRows)
        if (row.trelmMode == run.mode.trelmMode && (run.options.*row.name).empty())
            messages.warn("trelm: %s is missing: %s.\n", row.option, row.lack);
}

} // namespace

Status runMode(Run &run, Messages &messages)
{
    warnOfMissingInputs(run, messages);
    if (!run.options.outJName.empty() && !writesJson(run.mode))
        messages.warn("trelm: -outJ acts on a best-fit and its error analyses alone\n");
    const ModeRow &mode = *std::ranges::find(modeRows, run.mode.trelmMode, &ModeRow::trelmMode);
    if (const Status status = checkFiles(filesOfRun(run), messages); status != Status::ok)
        return status;
    const Status status = mode.commonInput ? readInputs(run, messages) : Status::ok;
    if (status != Status::ok)
        return status;
    return messages.mayWrite() ? mode.work(run, messages) : failedByWarnings(messages);
}

Status failedByWarnings(Messages &messages)
{
    return messages.fail("trelm: -strict: %d warning%s, and so no result.\n", messages.warningCount(),
                         messages.warningCount() == 1 ? "" : "s");
}

} // namespace trelm
