#include "report/run_report.h"

#include "compare/options.h"
#include "couplings/dipolar.h"
#include "magnitude/options.h"
#include "magnitude/results.h"
#include "simulation/alignment/alignment.h"
#include "simulation/alignment/options.h"
#include "support/numerics/numbers.h"
#include "support/text/text.h"

#include <algorithm>
#include <span>

namespace trelm {
namespace {

/// Appends one or more lines about a run.
using Line = void (*)(const ShownParameters &info, std::string &text);

void lcType(const ShownParameters &info, std::string &text)
{
    if (info.alignment.lcType == lcWall)
        text += "DATA TRELM LC_TYPE             wall\n";
    else if (info.alignment.lcType == lcRod)
        text += "DATA TRELM LC_TYPE              rod\n";
}
void concentration(const ShownParameters &info, std::string &text)
{
    appendf(text, "DATA TRELM LC_CONCENTRATION    %.3f\n", number(info.alignment.concentration));
}
void orientations(const ShownParameters &info, std::string &text)
{
    appendf(text, "DATA TRELM ORIENT_SPHERE       %d\n", info.alignment.densityNSC);
    appendf(text, "DATA TRELM ORIENT_PSI          %d\n", info.alignment.digPsiNSC);
}
void gridSpacing(const ShownParameters &info, std::string &text)
{
    appendf(text, "DATA TRELM GRID_SPACING       % .3f\n", number(info.alignment.gridSpacing));
}
void modelRadius(const ShownParameters &info, std::string &text)
{
    appendf(text, "DATA TRELM MODEL_RADIUS       % .3f\n", number(info.alignment.radiusModel));
}
void lcOrder(const ShownParameters &info, std::string &text)
{
    appendf(text, "DATA TRELM LC_ORDER           % .3f\n", number(info.alignment.lcOrder));
}
void atomRadius(const ShownParameters &info, std::string &text)
{
    appendf(text, "DATA TRELM ATOM_RADIUS        % .3f\n", number(info.alignment.radiusAtom));
}
void selection(const ShownParameters &info, std::string &text)
{
    appendf(text, "DATA TRELM SEL_SIMPLE_FLAG     %d\n", info.alignment.Hflag);
    appendf(text, "DATA TRELM SURF_FLAG           %d\n", info.alignment.surfFlag);
}
void pH(const ShownParameters &info, std::string &text)
{
    appendf(text, "DATA TRELM EL PH              % .3f\n", number(info.alignment.pH));
}
void salt(const ShownParameters &info, std::string &text)
{
    appendf(text, "DATA TRELM EL NACL            % .3f\n", number(info.alignment.concNaCl));
}
void surfaceCharge(const ShownParameters &info, std::string &text)
{
    appendf(text, "DATA TRELM EL SURF_CH         % .3f\n", number(info.alignment.chDensSurf));
}
const char *onOff(int flag)
{
    return flag != 0 ? "on" : "off";
}

/// The electrostatic flags as the parameter block has them, and as the head of a table has them.
void blockFlags(const ShownParameters &info, std::string &text)
{
    appendf(text, "DATA TRELM EL PKA_DEFAULT         %s\n", onOff(info.alignment.pkaFlag));
    appendf(text, "DATA TRELM EL CH_TERM             %s\n", onOff(info.alignment.chTerminiFlag));
    appendf(text, "DATA TRELM EL CUTOFF         % e\n", info.alignment.cutoffPot);
}
void tableFlags(const ShownParameters &info, std::string &text)
{
    appendf(text, "DATA TRELM EL DIPOLE           %s\n", onOff(info.alignment.dipoleFlag));
    appendf(text, "DATA TRELM EL PKA_DEFAULT      %s\n", onOff(info.alignment.pkaFlag));
    appendf(text, "DATA TRELM EL CH_TERM          %s\n", onOff(info.alignment.chTerminiFlag));
    appendf(text, "DATA TRELM EL CUTOFF           %e\n", info.alignment.cutoffPot);
}

void action(const ShownParameters &info, std::string &text)
{
    constexpr const char *names[] = {"add", "sub", "mul", "div", "max"};
    if (info.comparison.opCode >= opAdd && info.comparison.opCode <= opMax)
        appendf(text, "DATA TRELM ACTION    %s\n", names[info.comparison.opCode - opAdd]);
    appendf(text, "DATA TRELM C1     % .3f\n", number(info.comparison.c1));
    appendf(text, "DATA TRELM C2     % .3f\n", number(info.comparison.c2));
}

void histogram(const ShownParameters &info, std::string &text)
{
    const MagnitudeResult found = info.estimate != nullptr ? *info.estimate : MagnitudeResult{};
    appendf(text, "DATA DC MIN_MAX    % .3f % .3f\n", number(found.dcMin), number(found.dcMax));
    appendf(text, "DATA FIT_PAR       % d\n", info.magnitude.modeFit);
    text += info.magnitude.optExtrem == 1 ? "DATA AVE_EXTREM     YES\n" : "DATA AVE_EXTREM     NO\n";
    appendf(text, "DATA SDEVDZZ        %.3f\n", number(info.magnitude.sdevDzz));
    appendf(text, "DATA SDEVDYY        %.3f\n", number(info.magnitude.sdevDyy));
    appendf(text, "DATA nBINS          %d\n", found.nBins);
    appendf(text, "DATA BINWIDTH       %.3f\n", number(found.binWidth));
    text += "\n\nREMARK Solving the linear equation system.\n\n";
    appendf(text, "DATA EQ Da         % .3f\n", number(found.Da2Par));
    appendf(text, "DATA EQ R          % .3f\n", number(found.R2Par));
    text += "\n\nREMARK Nonlinear least-square opimization.\n\n";
    appendf(text, "DATA Dzz_Dyy_Dxx   % .3f % .3f % .3f\n", number(found.Dzz), number(found.Dyy),
            number(found.Dxx));
    appendf(text, "DATA Da            % .3f\n", number(found.DaFit));
    appendf(text, "DATA Da_ERR        % .3f\n", number(found.DaErrFit));
    appendf(text, "DATA R             % .3f\n", number(found.RFit));
    appendf(text, "DATA R_ERR         % .3f\n", number(found.RErrFit));
}

void likelihood(const ShownParameters &info, std::string &text)
{
    const MagnitudeResult found = info.estimate != nullptr ? *info.estimate : MagnitudeResult{};
    appendf(text, "DATA TRELM DA LOW_GRID     % .3f\n", number(info.magnitude.lDaMl));
    appendf(text, "DATA TRELM DA HIGH_GRID    % .3f\n", number(info.magnitude.hDaMl));
    appendf(text, "DATA TRELM DA INCREMENT    % .3f\n", number(info.magnitude.incDaMl));
    appendf(text, "DATA TRELM R  LOW_GRID     % .3f\n", number(info.magnitude.lRMl));
    appendf(text, "DATA TRELM R  HIGH_GRID    % .3f\n", number(info.magnitude.hRMl));
    appendf(text, "DATA TRELM R  INCREMENT    % .3f\n", number(info.magnitude.incRMl));
    text += "\n\nREMARK Solving the linear equation system.\n\n";
    appendf(text, "DATA EQ Da         % .3f\n", number(found.Da2Par));
    appendf(text, "DATA EQ R          % .3f\n", number(found.R2Par));
    text += "\n\nREMARK Maximum Likelihood determination.\n\n";
    appendf(text, "DATA ML Da            % .3f\n", number(found.DaMl));
    appendf(text, "DATA ML Da Err        % .3f\n", number(found.DaErrMl));
    appendf(text, "DATA ML R             % .3f\n", number(found.RMl));
    appendf(text, "DATA ML R Err         % .3f\n", number(found.RErrMl));
}

void conversion(const ShownParameters &info, std::string &text)
{
    text += info.conversion.normDc != 0 ? "DATA DCs are normalized.\n" : "DATA DCs are not normalized.\n";
    if (info.conversion.dcNoise != 0)
        text += "DATA Gaussian noise according to DD has been added.\n";
}

void rim(const ShownParameters &info, std::string &text)
{
    const AlignmentOptions &sample = info.alignment;
    if (sample.includeRim == 0.0f)
        return;
    const SampleGeometry shape =
        info.geometry != nullptr
            ? *info.geometry
            : SampleGeometry{0.0f, sample.molarRatio, sample.lengthModel, sample.orderDiscRim};
    text += "DATA TRELM INCLUDE_RIM      on\n";
    appendf(text, "DATA TRELM MOLAR_RATIO      % .3f\n", number(shape.molarRatio));
    appendf(text, "DATA TRELM MODEL_LENGTH     % .3f\n", number(shape.lengthModel));
    appendf(text, "DATA TRELM S_DISC_RIM       % .3f\n", number(shape.orderDiscRim));
}

constexpr Line blockSteric[] = {lcType,      concentration, orientations, gridSpacing,
                                modelRadius, lcOrder,       atomRadius,   selection};
constexpr Line blockElectrostatic[] = {lcType,      concentration, orientations,  gridSpacing,
                                       modelRadius, lcOrder,       atomRadius,    selection,
                                       pH,          salt,          surfaceCharge, blockFlags};
constexpr Line blockHistogram[] = {histogram};
constexpr Line actionLines[] = {action};

constexpr Line tableSteric[] = {lcType,      concentration, orientations, modelRadius,
                                gridSpacing, atomRadius,    lcOrder,      selection};
constexpr Line tableElectrostatic[] = {lcType,        concentration, orientations, modelRadius, gridSpacing,
                                       atomRadius,    lcOrder,       selection,    salt,        pH,
                                       surfaceCharge, tableFlags};
constexpr Line tableLikelihood[] = {likelihood};
constexpr Line tableConversion[] = {conversion};

/// The name of a mode and the lines that follow it: in the parameter block, and at the head of a table. A
/// null name has no line there.
struct ReportRow {
    Mode trelmMode;
    const char *blockName;
    std::span<const Line> blockLines;
    const char *tableName;
    std::span<const Line> tableLines;
};

constexpr ReportRow reportRows[] = {
    {modeStTrelm, "STERIC", blockSteric, "STERIC", tableSteric},
    {modeStTrelmFree, "STERIC_FREE", blockSteric, "STERIC_FREE", tableSteric},
    {modeStTrelmGrid, "STERIC_GRID", blockSteric, "STERIC_GRID", tableSteric},
    {modeElTrelm, "ELECTROSTATIC", blockElectrostatic, "ELECTROSTATIC", tableElectrostatic},
    {modeElTrelmFree, "ELECTROSTATIC_FREE", blockSteric, "ELECTROSTATIC_FREE", tableSteric},
    {modeElTrelmGrid, "ELECTROSTATIC_GRID", blockSteric, "ELECTROSTATIC_GRID", tableSteric},
    {modeBestFit, "DC", {}, "DC", {}},
    {modeCsSim, "CS", {}, "CS", {}},
    {modeDaHist, "DA_HIST", blockHistogram, nullptr, {}},
    {modeDaMl, nullptr, {}, "DA_ML", tableLikelihood},
    {modeAsRan, nullptr, {}, "HIST", {}},
    {modeAnDc, "DC_CP", actionLines, "DC_CP", actionLines},
    {modeAnA, "SAUPE_CP", actionLines, "SAUPE_CP", actionLines},
    {modeAnPdb, "PDB", {}, nullptr, {}},
    {modeConv, nullptr, {}, "CONV", tableConversion},
};

void appendMode(const char *name, std::span<const Line> lines, const ShownParameters &info, std::string &text)
{
    if (name == nullptr)
        return;
    appendf(text, "\nDATA TRELM_MODE %s\n\n", name);
    for (const Line line : lines)
        line(info, text);
}

void appendAngleRanges(const DTensor &tensor, std::string &text)
{
    appendf(text, "DATA PSI_RANGE   % 8.2f % 8.2f\n", number(tensor.psiMin), number(tensor.psiMax));
    appendf(text, "DATA THETA_RANGE % 8.2f % 8.2f\n", number(tensor.thetaMin), number(tensor.thetaMax));
    appendf(text, "DATA PHI_RANGE   % 8.2f % 8.2f\n", number(tensor.phiMin), number(tensor.phiMax));
}

/// How the tensor of a best-fit was found.
void appendTensorMode(const DTensor &tensor, std::string &text)
{
    switch (tensor.tensorMode) {
    case tensorSvd:
        text += "DATA TENSOR_MODE SVD (Order Matrix Method)\n";
        break;
    case tensorSaupe:
        text += "DATA TENSOR_MODE SAUPE (Fixed Saupe Values)\n";
        break;
    case tensorNofixed:
        text += "DATA TENSOR_MODE NOFIXED (Variable Da and Dr, Variable Rotations)\n\n";
        appendf(text, "DATA DA_RANGE    % .4e % .4e\n", number(tensor.daMin), number(tensor.daMax));
        appendf(text, "DATA DR_RANGE    % .4e % .4e\n", number(tensor.drMin), number(tensor.drMax));
        appendAngleRanges(tensor, text);
        break;
    case tensorDaDr:
        text += "DATA TENSOR_MODE DADR (Fixed Da and Dr, Variable Rotations)\n\n";
        appendAngleRanges(tensor, text);
        break;
    case tensorFixed:
        text += "DATA TENSOR_MODE FIXED (Fixed Da and Dr, Fixed Rotations)\n";
        break;
    default:
        break;
    }
}

} // namespace

void writeTrelm(const ShownParameters &parameters, std::string &result)
{
    const auto *row = std::ranges::find(reportRows, parameters.trelmMode, &ReportRow::trelmMode);
    if (row != std::end(reportRows))
        appendMode(row->blockName, row->blockLines, parameters, result);
    rim(parameters, result);
}

void appendModeBlock(const ShownParameters &parameters, const DTensor &dTensor, std::string &text)
{
    const auto *row = std::ranges::find(reportRows, parameters.trelmMode, &ReportRow::trelmMode);
    if (row != std::end(reportRows))
        appendMode(row->tableName, row->tableLines, parameters, text);
    if (parameters.trelmMode == modeBestFit)
        appendTensorMode(dTensor, text);
    rim(parameters, text);
    text += "\n\n";
}

} // namespace trelm
