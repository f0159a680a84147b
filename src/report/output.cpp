#include "report/output.h"

#include "couplings/fit.h"
#include "couplings/statistics.h"
#include "report/modes.h"
#include "report/run_report.h"
#include "structure/write.h"
#include "support/numerics/numbers.h"
#include "support/text/output_file.h"
#include "support/text/text.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace trelm {
namespace {

void appendOrderMatrix(const DTensor &tensor, std::string &text)
{
    const auto &s = tensor.saupe;
    text += "REMARK Order matrix.\n\n";
    appendf(text, "DATA SAUPE_MATRIX     %s       %s      %s      %s      %s\n", "S(zz)", "S(xx-yy)", "S(xy)",
            "S(xz)", "S(yz)");
    appendf(text, "DATA SAUPE        % .4e % .4e % .4e % .4e % .4e\n\n", number(s[0]), number(s[1]),
            number(s[2]), number(s[3]), number(s[4]));
}

/// Column k of the eigenvectors: 0 the z axis, 1 the y axis, 2 the x axis.
std::array<double, 3> axisOf(const TensorAnalysis &analysis, std::size_t k)
{
    return {analysis.eigVec[k], analysis.eigVec[3 + k], analysis.eigVec[6 + k]};
}

constexpr std::size_t zAxis = 0, yAxis = 1, xAxis = 2;

void appendIrreducible(const TensorAnalysis &analysis, std::string &text)
{
    const auto &a = analysis.irrSaupe;
    text += "DATA IRREDUCIBLE_REP    A0          A1R          A1I         A2R         A2I  \n";
    appendf(text, "DATA IRREDUCIBLE    % .4e % .4e % .4e % .4e % .4e\n", a[0], a[1], a[2], a[3], a[4]);
    appendf(text, "DATA IRREDUCIBLE GENERAL_MAGNITUDE  % .4e\n\n", analysis.gMag);
}

/// An axis on a sinusoidal map of the sphere: its own place, or that of the opposite direction.
void appendMapPlace(const std::array<double, 3> &axis, bool inverse, std::string &text)
{
    double lat = halfPi - std::acos(std::clamp(axis[2], -1.0, 1.0));
    double lon = std::atan2(axis[1], axis[0]);
    const double width = std::cos(lat);
    if (inverse) {
        if (lon > 0.0)
            lon -= pi;
        else if (lon < 0.0)
            lon += pi;
        lat = -lat;
    }
    appendf(text, "  % .5f  % .5f", lon * width, lat);
}

void appendMapping(const TensorAnalysis &analysis, std::string &text)
{
    text += "\nREMARK Mapping of coordinates.\n\n";
    text += "DATA MAPPING_COOR   Szz_d(x)  Szz_d(y)  Syy_d(x)  Syy_d(y)  Sxx_d(x)  Sxx_d(y)\n";
    for (const bool inverse : {false, true}) {
        text += inverse ? "DATA MAPPING INV " : "DATA MAPPING     ";
        for (const std::size_t k : {zAxis, yAxis, xAxis})
            appendMapPlace(axisOf(analysis, k), inverse, text);
        text += '\n';
    }
}

void appendAxis(const char *label, const std::array<double, 3> &axis, std::string &text)
{
    appendf(text, "%s % .4e % .4e % .4e\n", label, axis[0], axis[1], axis[2]);
}

/// The four solutions about z, y', z''.
void appendEulerSolutions(const EulerLists &euler, std::string &text)
{
    appendf(text, "\nDATA Q_EULER_SOLUTIONS  %7s  %7s  %7s\n", "ALPHA", "BETA", "GAMMA");
    for (std::size_t i = 0; i < 4; ++i)
        appendf(text, "DATA Q_EULER_ANGLES %2d  %7.2f  %7.2f  %7.2f\n", static_cast<int>(i) + 1,
                euler.alpha[i], euler.beta[i], euler.gamma[i]);
}

void appendEigenvalues(const char *label, const TensorAnalysis &analysis, std::string &text)
{
    appendf(text, "%s   % .4e % .4e % .4e\n", label, analysis.eigVal[2], analysis.eigVal[1],
            analysis.eigVal[0]);
}

void appendEigensystem(const TensorAnalysis &analysis, std::string &text)
{
    text += "\n\nREMARK Eigensystem & Euler angles for clockwise rotation about z, y', z''.\n\n";
    appendEigenvalues("DATA EIGENVALUES (Sxx_d,Syy_d,Szz_d)", analysis, text);
    text += "DATA EIGENVECTORS          (x_coor      y_coor      z_coor)\n";
    appendAxis("DATA EIGENVECTORS X_AXIS", axisOf(analysis, xAxis), text);
    appendAxis("DATA EIGENVECTORS Y_AXIS", axisOf(analysis, yAxis), text);
    appendAxis("DATA EIGENVECTORS Z_AXIS", axisOf(analysis, zAxis), text);
    appendEulerSolutions(analysis.euler, text);
}

/// The tensor that is reported: of a run without couplings that of its Saupe vector, else that of the
/// analysis.
DTensor settledTensor(const TensorAnalysis &analysis, int nD, DTensor tensor)
{
    if (nD <= 0) {
        solveEuler(tensor);
        return tensor;
    }
    for (std::size_t k = 0; k < 3; ++k)
        tensor.eigVal[k] = static_cast<float>(analysis.eigVal[k]);
    tensor.da = static_cast<float>(analysis.da);
    tensor.dr = static_cast<float>(analysis.dr);
    return tensor;
}

/// Everything about the tensor, unless it is zero. Fails after a message.
Status appendTensor(const TrelmInfo &trelmInfo, int nD, const DTensor &tensor, std::string &text,
                    Messages &messages)
{
    if (std::ranges::all_of(tensor.saupe, [](float value) { return value == 0.0f; }))
        return Status::ok;
    appendOrderMatrix(tensor, text);
    if (!std::ranges::all_of(tensor.saupe, [](float value) { return std::isfinite(value); }))
        return Status::ok; // a quotient by zero: there are no axes
    Saupe saupe;
    std::ranges::copy(tensor.saupe, saupe.begin());
    TensorAnalysis analysis;
    if (analyzeSaupe(saupe, trelmInfo.yzFlag, trelmInfo.eulerFlag, analysis, messages) != Status::ok)
        return messages.fail("TRELM: error occured in analyzeSaupe.\n");
    appendIrreducible(analysis, text);
    appendMapping(analysis, text);
    if (trelmInfo.eulerFlag == 0)
        return Status::ok;
    appendEigensystem(analysis, text);
    text += "\n\nREMARK Euler angles (psi/theta/phi) for rotation about x, y, z.\n\n";
    reportEuler(text, settledTensor(analysis, nD, tensor));
    return Status::ok;
}

void appendStatistics(const DcStatistics &stat, QKind qFlag, std::string &text)
{
    appendf(text, "DATA RMS                  %.3f\n", number(stat.rSumD2));
    appendf(text, "DATA Chi2                 %.3f\n", number(stat.pSumD));
    appendf(text, "DATA CORR R               %.3f\n", number(stat.coorR));
    if (qFlag == qOfRms)
        appendf(text, "DATA Q RDC_RMS            %.3f\n", number(stat.qD));
    else if (qFlag == qOfOrderMatrix)
        appendf(text, "DATA Q SAUPE              %.3f\n", number(stat.qIsoD));
    else if (qFlag == standardDeviation)
        appendf(text, "DATA Q STDDEV             %.3f\n", number(stat.stdDevD));
    appendf(text, "DATA REGRESSION OFFSET    %.3f +/- %.3f [Hz]\n", number(stat.offset),
            number(stat.errOffset));
    appendf(text, "DATA REGRESSION SLOPE     %.3f +/- %.3f [Hz]\n", number(stat.slope),
            number(stat.errSlope));
    appendf(text, "DATA REGRESSION BAX SLOPE %.3f +/- %.3f [Hz]\n", number(stat.aveSlope),
            number(stat.errAveSlope));
}

/// The VARS and FORMAT lines: the groups of side I and J, then the columns of values.
void appendTableHead(const DTable &dTab, bool verbose, std::string &text)
{
    std::string vars = "VARS   ";
    std::string format = "FORMAT ";
    for (const char *side : {"_I", "_J"}) {
        vars.append(" RESID").append(side).append(" RESNAME").append(side).append(" ATOMNAME").append(side);
        format += " %4d %4s %4s";
        if (dTab.nullChainName == 0) {
            vars.append(" CHAINNAME").append(side);
            format += " %4s";
        }
        if (dTab.nullSegName == 0) {
            vars.append(" SEGNAME").append(side);
            format += " %4s";
        }
    }
    vars += verbose ? " DI D_OBS D D_DIFF DD W\n" : " D DD W\n";
    format += verbose ? " %9.2f %9.3f %9.3f %9.3f %.2f %.2f\n\n" : " %9.3f %9.3f %.2f\n\n";
    text += vars + format;
}

/// One side of a row, as the table names it.
struct RowSide {
    int resID;
    const Name &resName, &atomName, &chainName, &segName;
};

std::string_view orNone(const Name &name)
{
    return name.empty() ? "None" : name.view();
}

/// Appends " %4s" of a name.
void appendName(std::string &text, std::string_view name)
{
    text += ' ';
    appendRight(text, name, 4);
}

void appendSide(const RowSide &side, const DTable &dTab, std::string &text)
{
    text += ' ';
    appendInt(text, side.resID, 4);
    appendName(text, side.resName.view());
    appendName(text, side.atomName.view());
    if (dTab.nullChainName == 0)
        appendName(text, orNone(side.chainName));
    if (dTab.nullSegName == 0)
        appendName(text, orNone(side.segName));
}

/// Appends " % 9.2f" of a number, or with 4 decimals " % 9.4f".
void appendValue(std::string &text, float value, int decimals)
{
    text += ' ';
    appendFixed(text, value, 9, decimals, SignPlace::blank);
}

void appendRow(const DInfo &o, const DCalc &c, const DTable &dTab, bool verbose, std::string &text)
{
    appendSide({o.resIDI, o.names->resNameI, o.names->atomNameI, o.names->chainNameI, o.names->segNameI},
               dTab, text);
    appendSide({o.resIDJ, o.names->resNameJ, o.names->atomNameJ, o.names->chainNameJ, o.names->segNameJ},
               dTab, text);
    if (verbose) {
        appendValue(text, c.di, 2);
        appendValue(text, o.d, 4);
    }
    appendValue(text, c.d, 4);
    if (verbose)
        appendValue(text, o.d >= missingCoupling || c.d >= missingCoupling ? noCoupling : o.d - c.d, 4);
    text += ' ';
    appendFixed(text, o.sigma, 7, 4, SignPlace::none);
    text += ' ';
    appendFixed(text, o.w, 0, 2, SignPlace::none);
    text += '\n';
}

void appendTable(const DTable &dTab, bool verbose, std::string &text)
{
    text += '\n';
    appendTableHead(dTab, verbose, text);
    for (std::size_t i = 0; i < dTab.dCount; ++i) {
        const DInfo &o = dTab.dObsList[i];
        const DCalc &c = dTab.dCalcList[i];
        if (o.valid != 0 && c.valid != 0)
            appendRow(o, c, dTab, verbose, text);
    }
}

bool isNumber(float value)
{
    return std::isfinite(value);
}

bool rowsAreFinite(const DTable &dTab)
{
    for (std::size_t i = 0; i < dTab.observed().size(); ++i) {
        const DInfo &o = dTab.observed()[i];
        const DCalc &c = dTab.calculated()[i];
        if (o.valid != 0 && c.valid != 0 && !(isNumber(c.d) && isNumber(o.sigma) && isNumber(o.w)))
            return false;
    }
    return true;
}

/// Fails after a message if a number of the result is none. Quotients by 0 of a comparison go out as they
/// are.
Status checkFinite(const DTable &dTab, const TrelmInfo &trelmInfo, Messages &messages)
{
    const bool hasQuotients = trelmInfo.trelmMode == modeAnA || trelmInfo.trelmMode == modeAnDc;
    if (hasQuotients || (std::ranges::all_of(dTab.dTensor.saupe, isNumber) && rowsAreFinite(dTab)))
        return Status::ok;
    return messages.fail(
        "trelm: the result is no finite number: look at the options and at D, DD and W of the table.\n");
}

/// The report and the table. Fails after a message: without the tensor's axes the text ends there.
Status appendExtended(const DTable &dTab, const TrelmInfo &trelmInfo, std::string_view remark,
                      std::string &text, Messages &messages)
{
    DcStatistics stat;
    const Status status = getStatDCmod(dTab, stat, messages);
    if (!(isNumber(stat.rSumD2) && isNumber(stat.pSumD)) && rowsAreFinite(dTab))
        return messages.fail("trelm: the deviations are no finite numbers: look at D, DD and W.\n");
    text += "REMARK Molecular Alignment Simulation.\n\n";
    text += remark;
    text += "REMARK Simulation parameters.\n";
    appendModeBlock(trelmInfo, dTab.dTensor, text);
    if (appendTensor(trelmInfo, stat.nD, dTab.dTensor, text, messages) != Status::ok)
        return Status::failed;
    appendf(text, "\nREMARK Dipolar couplings.\n\nDATA N                    %d\nDATA SEQUENCE \n", stat.nD);
    if (stat.nD == 0)
        return status;
    appendStatistics(stat, trelmInfo.qFlag, text);
    appendTable(dTab, true, text);
    return status;
}

/// The table alone. Its head comes even without a valid row.
void appendShort(const DTable &dTab, std::string &text)
{
    text += "DATA SEQUENCE \n";
    if (dTab.dCount != 0)
        appendTable(dTab, false, text);
}

} // namespace

Status writeDCmod(const TableOutput &output, const DTable &dTab, const TrelmInfo &trelmInfo,
                  std::string_view remark, Messages &messages)
{
    if (checkFinite(dTab, trelmInfo, messages) != Status::ok)
        return Status::failed;
    std::string text;
    Status status = Status::ok;
    if (trelmInfo.verbFlag != 0)
        status = appendExtended(dTab, trelmInfo, remark, text, messages);
    else
        appendShort(dTab, text);
    if (status != Status::ok && text.empty())
        return status;
    OutFile out;
    if (openOut(out, output.name, output.access) != Status::ok)
        messages.err("DC Error opening output file %s\n", output.name.c_str());
    writeOut(out, text);
    return closeOut(out, messages) != Status::ok ? Status::failed : status;
}

Status writeFit(const FittedRun &run, Messages &messages)
{
    Saupe saupe;
    std::ranges::copy(run.dTab->dTensor.saupe, saupe.begin());
    TensorAnalysis analysis;
    if (analyzeSaupe(saupe, run.trelmInfo->yzFlag, run.trelmInfo->eulerFlag, analysis, messages) !=
        Status::ok)
        return messages.fail("trelm: error in analyzeSaupe.\n");
    const Status written = writeDCmod({run.outDName}, *run.dTab, *run.trelmInfo, "", messages);
    if (written != Status::ok)
        return written;
    const EulerLists &euler = analysis.euler;
    const Status turned = writePDBRot({euler.gamma, euler.beta, euler.alpha}, run.trelmInfo->rotN,
                                      {*run.pdbInfo, run.sInfo, run.remark}, run.pdbRotName, messages);
    return turned == Status::ok ? written : messages.fail("trelm: error in writePDBRot.\n");
}

void appendSaupeLines(const Saupe &saupe, const TensorAnalysis &analysis, std::string &text)
{
    appendf(text, "\nDATA SAUPE  % .4e % .4e % .4e % .4e % .4e\n\n", saupe[0], saupe[1], saupe[2], saupe[3],
            saupe[4]);
    const double R = analysis.da != 0.0 ? analysis.dr / analysis.da : 0.0;
    appendf(text, "DATA Da(NH) = %.1f    R = Dr/Da = %.3f\n", analysis.da * amideScale, R);
}

void writeEulerInfo(const TensorAnalysis &analysis, std::string &result, int eulerFlag)
{
    result.clear();
    if (eulerFlag == 0)
        return;
    const auto &a = analysis.irrSaupe;
    result += "\n\nDATA IRREDUCIBLE REPRESENTATION (A0,A1R,A1I,A2R,A2I)";
    appendf(result, "   % .4e % .4e % .4e % .4e % .4e\n", a[0], a[1], a[2], a[3], a[4]);
    appendf(result, "DATA IRREDUCIBLE GENERAL_MAGNITUDE  % .4e\n", analysis.gMag);
    result += "\nREMARK Eigensystem & Euler angles for clockwise rotation about z, y', z''.\n\n";
    appendEigenvalues("DATA EIGENVALUES (Axx,Ayy,Azz)", analysis, result);
    result += "DATA EIGENVECTORS\n";
    appendAxis("DATA EIGENVECTORS XAXIS", axisOf(analysis, xAxis), result);
    appendAxis("DATA EIGENVECTORS YAXIS", axisOf(analysis, yAxis), result);
    appendAxis("DATA EIGENVECTORS ZAXIS", axisOf(analysis, zAxis), result);
    appendEulerSolutions(analysis.euler, result);
}

} // namespace trelm
