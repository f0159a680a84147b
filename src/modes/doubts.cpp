#include "modes/doubts.h"

#include "modes/models.h"

#include "compare/options.h"
#include "couplings/fit_worth.h"
#include "couplings/formats/placement.h"
#include "couplings/lost_rows.h"
#include "couplings/name_mapping.h"
#include "couplings/options.h"
#include "couplings/quality.h"
#include "couplings/table_checks.h"
#include "couplings/table_input.h"
#include "simulation/alignment/options.h"
#include "structure/atom_names.h"

#include <algorithm>
#include <cmath>

namespace trelm {
namespace {

/// What the kinds of a best-fit take.
constexpr TableUse fitUses[] = {
    {.mode = "-bestFit", .usesValues = true, .isMeasured = true, .weighsByError = true},
    {.mode = "-jack", .usesValues = true, .isMeasured = true, .weighsByError = true},
    {.mode = "-mcDc", .usesValues = true, .isMeasured = true, .needsErrors = true},
    {.mode = "-mcStruc", .usesValues = true, .isMeasured = true, .weighsByError = true},
    {.mode = "-rand", .hasPeaks = true, .usesValues = true, .isMeasured = true, .weighsByError = true},
    {.mode = "-exhaust", .hasPeaks = true, .usesValues = true, .isMeasured = true, .weighsByError = true},
    {.mode = "-exhaustSel", .hasPeaks = true, .usesValues = true, .isMeasured = true, .weighsByError = true},
};

constexpr TableUse patternUse(const char *mode)
{
    return {.mode = mode, .usesValues = true, .isMeasured = true, .needsErrors = true, .takesOneScale = true};
}

/// A prediction compares with the values of its table, if there are any.
TableUse useOf(const Run &run)
{
    switch (run.mode.trelmMode) {
    case modeBestFit:
        return fitUses[std::clamp(run.mode.spreadMode, spreadSingle, spreadExhaustSel)];
    case modeDaHist:
        return patternUse("-daHist");
    case modeDaMl:
        return patternUse("-daMl");
    case modeDaFlex:
        return patternUse("-daFlex");
    case modeAnDc:
        return {.mode = "-anDc", .usesValues = true};
    case modeConv:
        return {.mode = "-dcNoise", .usesValues = true, .needsErrors = run.conversion.dcNoise != 0};
    default:
        return {.isMeasured = true};
    }
}

/// A tensor has no unit. The largest magnitude in a sample that is still a liquid is some 0.01, the limit of
/// the fits' own search; what stands above it is Hz.
void tellUnits(const DTensor &tensor, Messages &messages)
{
    constexpr float largest = 0.01f;
    constexpr float largestElement = 1.0f; // that an order matrix can have
    const bool isMagnitudeGiven = tensor.tensorMode == tensorDaDr || tensor.tensorMode == tensorFixed;
    if (isMagnitudeGiven && std::max(std::fabs(tensor.da), std::fabs(tensor.dr)) > largest)
        messages.warn(
            "trelm: -da %g -dr %g is no tensor, it has no unit: Hz divided by the constant of the pair"
            " (21585 Hz for N-H)\n",
            double{tensor.da}, double{tensor.dr});
    if (tensor.tensorMode == tensorSaupe && tensor.userSaupe == SaupeValues{})
        messages.warn(
            "trelm: the order matrix of -saupe is 0, and so are all couplings (give its five values)\n");
    const auto isLarge = [](float element) { return std::fabs(element) > largestElement; };
    if (tensor.tensorMode == tensorSaupe && std::ranges::any_of(tensor.userSaupe, isLarge))
        messages.warn(
            "trelm: -saupe has elements above 1, an order matrix has no unit: Hz divided by the constant"
            " of the pair (21585 Hz for N-H)\n");
}

/// Samples are asked for by their number.
void tellSamples(const Run &run, Messages &messages)
{
    const SpreadKind kind = run.mode.spreadMode;
    const bool isSampled =
        kind == spreadJack || kind == spreadMcDc || kind == spreadMcStruc || kind == spreadRand;
    if (isSampled && run.options.mapCount < 1)
        messages.warn("trelm: %s without -map draws no sample (-map 1000)\n", useOf(run).mode);
}

/// Options of a single fit that have nothing to act on.
void tellIdleOptions(const Run &run, Messages &messages)
{
    const RunOptions &options = run.options;
    const bool isSingle = run.mode.spreadMode == spreadSingle;
    if (!isSingle && (!options.outQName.empty() || !options.freeKind.empty() || options.dropsOutliers != 0))
        messages.warn("trelm: -outQ, -free and -dropOut act on a single best-fit alone (without %s)\n",
                      useOf(run).mode);
    else if (isSingle && !options.freeKind.empty() && options.outQName.empty() && options.outJName.empty())
        messages.warn("trelm: -free has no file to stand in (-outQ or -outJ)\n");
}

} // namespace

void tellTable(const Run &run, const std::string &name, const DTable &dTab, Messages &messages)
{
    const TableUse use = useOf(run);
    tellFindings(dTab.columnFindings, use, name, messages);
    tellFindings(checkRows(dTab, use), use, name, messages);
}

void tellResidues(const Run &run, Messages &messages)
{
    const TableUse use = useOf(run);
    const PDBInfo &pdbInfo = run.pdbInfo[0];
    if (use.hasPeaks || pdbInfo.atomCount == 0)
        return;
    tellFindings(checkResidueNames(pdbInfo, run.dTab[0], residueOffset(run.window), run.window.aFirst), use,
                 "", messages);
}

void tellTurnedPairs(const Run &run, Messages &messages)
{
    const int turned = run.fit.allowFixedDI != 0 ? countTurnedPairs(run.dTab[0]) : 0;
    if (turned != 0)
        messages.warn(
            "trelm: %d pairs with N first take the distance of the structure, not the fixed one of the other"
            " order (-names auto)\n",
            turned);
}

void tellLostCouplings(const Run &run, Messages &messages)
{
    const PDBInfo &pdbInfo = run.pdbInfo[0];
    if (pdbInfo.atomCount == 0 || searchesAssignment(run.mode.spreadMode))
        return;
    tellLostRows(pdbInfo, run.dTab[0], residueOffset(run.window), messages);
    const LostRows lost = findLostRows(pdbInfo, run.dTab[0], residueOffset(run.window));
    if (!lost.groups.empty())
        messages.warn("trelm: %s\n", lostRowsText(lost).c_str());
    if (lost.lacksHydrogens)
        messages.warn("trelm: the structure has no hydrogens (-addH builds them)\n");
}

void tellSelection(const Run &run, Messages &messages)
{
    const PDBInfo &pdbInfo = run.pdbInfo[0];
    const PDBSelectInfo &sInfo = run.askedAtoms;
    const struct {
        const char *option;
        const std::string &list;
        MatchMode mode;
        const char *remedy;
    } rows[] = {{"-resName", sInfo.resNameList, sInfo.resNameMode, "-rExact, -rGlob or -rRegex"},
                {"-chain", sInfo.chainNameList, sInfo.chainNameMode, "-cExact, -cGlob or -cRegex"},
                {"-seg", sInfo.segNameList, sInfo.segNameMode, "-sExact, -sGlob or -sRegex"}};
    for (const auto &row : rows)
        if (row.list != "*" && row.mode == matchNone)
            messages.warn("trelm: %s %s acts on nothing without a way to match: %s\n", row.option,
                          row.list.c_str(), row.remedy);
    const bool isFit = run.mode.trelmMode == modeBestFit && run.validCount > 0;
    if (isFit && pdbInfo.chains().size() > 1 && (sInfo.chainNameList != "*" || sInfo.segNameList != "*"))
        messages.warn(
            "trelm: the couplings were found in %s of %zu: a selection acts on written structures and"
            " simulations alone\n",
            chainsOfRows(pdbInfo, run.dTab[0]).c_str(), pdbInfo.chains().size());
}

void tellHydrogens(const Run &run, Messages &messages)
{
    const Mode mode = run.mode.trelmMode;
    const bool predicts = mode == modeStTrelm || mode == modeElTrelm || mode == modeStTrelmGrid;
    if (predicts && run.alignment.Hflag == 0 && hasHydrogens(run.pdbInfo[0]))
        messages.warn("trelm: the hydrogens of %s are left out of the simulation (-H takes them in)\n",
                      run.options.pdbName.c_str());
}

/// Conventions that were asked for, and that the types then speak against.
void tellConventions(const RunOptions &options, const TypeCheck &check, Messages &messages)
{
    const auto isTurned = [](const TypeQuality &type) { return type.factor < 0.0; };
    const auto isScaled = [](const TypeQuality &type) { return type.verdict == TypeVerdict::scaled; };
    if (!options.rdcSign.empty() && check.signsArePhysical && std::ranges::any_of(check.types, isTurned))
        messages.warn("trelm: with -rdcSign physical the types without N are turned: leave it out\n");
    if (!options.rdcScale.empty() && std::ranges::any_of(check.types, isScaled))
        messages.warn("trelm: with -rdcScale nh types have other sizes: were their values normalised?\n");
}

void tellFit(const Run &run, Messages &messages)
{
    const DTable &dTab = run.dTab[0];
    tellUnits(dTab.dTensor, messages);
    tellSamples(run, messages);
    tellIdleOptions(run, messages);
    if (useOf(run).hasPeaks)
        return;
    FitColumns columns;
    takeColumns(dTab, columns);
    const FitInput input = fitInputOf(run, columns);
    if (const std::string line = worthLine(assessFit(input, dTab.dTensor.tensorMode)); !line.empty())
        messages.warn("%s", line.c_str());
    const TypeCheck check = checkTypesOf(input);
    for (const TypeQuality &type : check.types)
        if (isDoubtful(type.verdict))
            messages.warn("trelm: %s: %s\n", type.name.c_str(), verdictText(check, type).c_str());
    tellConventions(run.options, check, messages);
}

} // namespace trelm
