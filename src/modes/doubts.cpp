#include "modes/doubts.h"

#include "couplings/fit_worth.h"
#include "couplings/table_checks.h"
#include "report/modes.h"

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
TableUse useOf(const TrelmInfo &info)
{
    switch (info.trelmMode) {
    case modeBestFit:
        return fitUses[std::clamp(info.spreadMode, spreadSingle, spreadExhaustSel)];
    case modeDaHist:
        return patternUse("-daHist");
    case modeDaMl:
        return patternUse("-daMl");
    case modeDaFlex:
        return patternUse("-daFlex");
    case modeAnDc:
        return {.mode = "-anDc", .usesValues = true};
    case modeConv:
        return {.mode = "-dcNoise", .usesValues = true, .needsErrors = info.dcNoise != 0};
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
    const int kind = run.trelmInfo[0].spreadMode;
    const bool isSampled =
        kind == spreadJack || kind == spreadMcDc || kind == spreadMcStruc || kind == spreadRand;
    if (isSampled && run.options.mapCount < 1)
        messages.warn("trelm: %s without -map draws no sample (-map 1000)\n", useOf(run.trelmInfo[0]).mode);
}

} // namespace

void tellTable(const Run &run, const std::string &name, const DTable &dTab, Messages &messages)
{
    const TableUse use = useOf(run.trelmInfo[0]);
    tellFindings(dTab.columnFindings, use, name, messages);
    tellFindings(checkRows(dTab, use), use, name, messages);
}

void tellResidues(const Run &run, Messages &messages)
{
    const TableUse use = useOf(run.trelmInfo[0]);
    const PDBInfo &pdbInfo = run.pdbInfo[0];
    if (use.hasPeaks || pdbInfo.atomCount == 0)
        return;
    const DcInfo &window = run.dcInfo[0];
    const int offset = shiftedRes(window.aFirst, -std::int64_t{window.segFirst});
    tellFindings(checkResidueNames(pdbInfo, run.dTab[0], offset, window.aFirst), use, "", messages);
}

void tellFit(const Run &run, Messages &messages)
{
    const DTable &dTab = run.dTab[0];
    tellUnits(dTab.dTensor, messages);
    tellSamples(run, messages);
    if (useOf(run.trelmInfo[0]).hasPeaks)
        return;
    FitColumns columns;
    takeColumns(dTab, columns);
    if (const std::string line =
            worthLine(assessFit({run.pdbInfo[0].coordinates(), dTab, columns}, dTab.dTensor.tensorMode));
        !line.empty())
        messages.warn("%s", line.c_str());
}

} // namespace trelm
