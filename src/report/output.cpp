#include "report/output.h"

#include "couplings/options.h"
#include "report/run_report.h"
#include "support/numerics/numbers.h"
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

void appendMapPlace(const std::array<double, 3> &axis, bool inverse, std::string &text)
{
    const MapPlace place = mapPlace(axis, inverse);
    appendf(text, "  % .5f  % .5f", place.x, place.y);
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

/// The Euler solutions about x, y, z, Da, Dr and what follows from them.
void appendRotations(const DTensor &tensor, std::string &text)
{
    text += "\n\nREMARK Euler angles (psi/theta/phi) for rotation about x, y, z.\n\n";
    appendf(text, "DATA EULER_SOLUTIONS %d\n", tensor.eulerCount);
    const auto count = static_cast<std::size_t>(std::clamp(tensor.eulerCount, 0, 8));
    for (std::size_t i = 0; i < count; ++i)
        appendf(text, "DATA EULER_ANGLES % 7.2f % 7.2f % 7.2f\n", number(tensor.psiList[i]),
                number(tensor.thetaList[i]), number(tensor.phiList[i]));
    const float rhombicity = tensor.da != 0.0f ? tensor.dr / tensor.da : 0.0f;
    appendf(text, "\nDATA Da % e\nDATA Dr % e\n\n\n", number(tensor.da), number(tensor.dr));
    appendf(text, "DATA Aa % e\nDATA Ar % e\n\n\n", number(2.0f * tensor.da), number(2.0f * tensor.dr));
    appendf(text, "DATA Da_HN      % 8.6e\nDATA Rhombicity % 8.6e\n\n", amideHertz * number(tensor.da),
            number(rhombicity));
}

/// Everything about the tensor, unless it is zero. One that is no finite number has no axes.
void appendTensor(const TableAnalysis &analysis, bool hasEuler, std::string &text)
{
    if (analysis.settled.saupe == SaupeValues{})
        return;
    appendOrderMatrix(analysis.settled, text);
    if (!analysis.tensor)
        return;
    appendIrreducible(*analysis.tensor, text);
    appendMapping(*analysis.tensor, text);
    if (!hasEuler)
        return;
    appendEigensystem(*analysis.tensor, text);
    appendRotations(analysis.settled, text);
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
    // A blank is no word for a reader. What was read as a table keeps it; other forms lack the names often.
    appendName(text, dTab.origin.file.empty() ? side.resName.view() : orNone(side.resName));
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

void appendRow(const FittedTable &table, std::size_t i, bool verbose, std::string &text)
{
    const DInfo &o = table.dTab.dObsList[i];
    const RowNames &names = *o.names;
    const float d = table.calculated(i);
    appendSide({o.resIDI, names.resNameI, names.atomNameI, names.chainNameI, names.segNameI}, table.dTab,
               text);
    appendSide({o.resIDJ, names.resNameJ, names.atomNameJ, names.chainNameJ, names.segNameJ}, table.dTab,
               text);
    if (verbose) {
        appendValue(text, table.dTab.dCalcList[i].di, 2);
        appendValue(text, o.d, 4);
    }
    appendValue(text, d, 4);
    if (verbose)
        appendValue(text, o.d >= missingCoupling || d >= missingCoupling ? noCoupling : o.d - d, 4);
    text += ' ';
    appendFixed(text, table.error(i), 7, 4, SignPlace::none);
    text += ' ';
    appendFixed(text, table.weight(i), 0, 2, SignPlace::none);
    text += '\n';
}

void appendTable(const FittedTable &table, bool verbose, std::string &text)
{
    constexpr std::size_t rowLength = 128; // more than most have; a text that grows is there twice
    text.reserve(text.size() + table.dTab.dCount * rowLength);
    text += '\n';
    appendTableHead(table.dTab, verbose, text);
    for (std::size_t i = 0; i < table.dTab.dCount; ++i)
        if (table.isShown(i))
            appendRow(table, i, verbose, text);
}

} // namespace

MapPlace mapPlace(const Vec3 &axis, bool inverse)
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
    return {lon * width, lat};
}

std::string couplingReport(const FittedTable &table, const TableAnalysis &analysis,
                           const ShownParameters &parameters, std::string_view remark)
{
    std::string text = "REMARK Molecular Alignment Simulation.\n\n";
    text += remark;
    text += "REMARK Simulation parameters.\n";
    appendModeBlock(parameters, table.tensor, text);
    appendTensor(analysis, parameters.fit.eulerFlag != 0, text);
    const DcStatistics &stat = analysis.statistics;
    appendf(text, "\nREMARK Dipolar couplings.\n\nDATA N                    %d\nDATA SEQUENCE \n", stat.nD);
    if (stat.nD == 0)
        return text;
    appendStatistics(stat, parameters.report.qFlag, text);
    appendTable(table, true, text);
    return text;
}

std::string couplingTable(const FittedTable &table)
{
    std::string text = "DATA SEQUENCE \n";
    if (table.dTab.dCount != 0)
        appendTable(table, false, text);
    return text;
}

void appendCompared(const ComparedCouplings &found, std::string &text)
{
    const Regression &line = found.line;
    text += "\nDATA STATISTICS DC\n";
    appendf(text, "DATA STATISTICS DC STDDEV_DIFF  %.3f [Hz]\n", number(found.stdDevD));
    appendf(text, "DATA STATISTICS DC CORR R       %.3f\n", number(line.r));
    appendf(text, "DATA STATISTICS DC CORNILESCU Q %.3f\n", number(found.q));
    appendf(text, "DATA STATISTICS DC REGRESSION OFFSET    %.3f +/- %.3f [Hz]\n", number(line.xOnY.a),
            number(line.xOnY.siga));
    appendf(text, "DATA STATISTICS DC REGRESSION SLOPE     %.3f +/- %.3f [Hz]\n", number(line.yOnX.b),
            number(line.yOnX.sigb));
    appendf(text, "DATA STATISTICS DC REGRESSION BAX SLOPE %.3f +/- %.3f [Hz]\n", number(line.aveSlope),
            number(line.errAveSlope));
    text += "\n";
}

void appendSaupeLines(const Saupe &saupe, const TensorAnalysis &analysis, std::string &text)
{
    appendf(text, "\nDATA SAUPE  % .4e % .4e % .4e % .4e % .4e\n\n", saupe[0], saupe[1], saupe[2], saupe[3],
            saupe[4]);
    const double R = analysis.da != 0.0 ? analysis.dr / analysis.da : 0.0;
    appendf(text, "DATA Da(NH) = %.1f    R = Dr/Da = %.3f\n", analysis.da * amideScale, R);
}

void appendEulerInfo(const TensorAnalysis &analysis, std::string &result, int eulerFlag)
{
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
