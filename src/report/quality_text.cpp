#include "report/quality_text.h"

#include "support/text/text.h"

#include <algorithm>
#include <cmath>
#include <initializer_list>

namespace trelm {
namespace {

/// A number with a blank before it, or "none" for what has no value.
void appendNumber(std::string &text, int decimals, double value)
{
    if (std::isfinite(value))
        appendf(text, " %.*f", decimals, value);
    else
        text += " none";
}

/// A number in a column of its own width.
void appendColumns(std::string &text, std::initializer_list<double> values, int decimals)
{
    for (const double value : values) {
        if (std::isfinite(value))
            appendf(text, " %9.*f", decimals, value);
        else
            text += "      none";
    }
}

/// Names of types are one word in a table.
std::string oneWord(std::string name)
{
    std::ranges::replace(name, ' ', '_');
    return name;
}

double ratio(double a, double b)
{
    return b != 0.0 ? a / b : std::nan("");
}

void appendOverview(const FitQuality &quality, std::string &text)
{
    appendf(text, "DATA COUPLINGS            %d\n", quality.fitted.count);
    appendf(text, "DATA UNKNOWNS             %d\n", quality.unknowns);
    appendf(text, "DATA DEGREES_OF_FREEDOM   %d\n", quality.degreesOfFreedom);
    text += "DATA CONDITION_NUMBER    ";
    appendNumber(text, 3, quality.unknowns > 0 ? quality.condition : std::nan(""));
    text += "\nDATA CHI2                ";
    appendNumber(text, 3, quality.hasErrors ? quality.chiSquare : std::nan(""));
    text += "\nDATA UNIT_WEIGHT         ";
    appendNumber(text, 4,
                 quality.hasErrors && quality.degreesOfFreedom > 0 ? quality.unitWeight : std::nan(""));
    text += "\nDATA ERROR_SCALE         ";
    appendNumber(text, 4, quality.hasErrors ? quality.errorScale : std::nan(""));
    text += '\n';
}

/// One quantity of the tensor with both of its errors.
struct TensorLine {
    const char *name;
    int decimals; ///< -4: 4 of a mantissa
    double value, factor;
    double (*error)(const TensorErrors &errors);
};

void appendTensorLine(const TensorLine &line, const FitQuality &quality, std::string &text)
{
    const auto errorOf = [&](const std::optional<TensorErrors> &errors) {
        return errors ? line.error(*errors) * line.factor : std::nan("");
    };
    appendf(text, "DATA TENSOR %-8s", line.name);
    for (const double value : {line.value, errorOf(quality.errors), errorOf(quality.scaledErrors)})
        if (line.decimals < 0 && std::isfinite(value))
            appendf(text, " % .*e", -line.decimals, value);
        else
            appendColumns(text, {value}, std::abs(line.decimals));
    text += '\n';
}

/// Values, errors for the errors of the couplings as given, and errors times ERROR_SCALE.
void appendTensor(const FitQuality &quality, std::string &text)
{
    const TensorAnalysis &tensor = quality.analysis;
    const Saupe &saupe = quality.saupe;
    const double none = std::nan("");
    text += "\nREMARK Tensor, with its standard deviations by the errors as given, and times ERROR_SCALE.\n"
            "REMARK Da and Dr in Hz, of N-H; axes and Euler angles about z, y', z'' in degrees.\n\n"
            "DATA TENSOR_VARS NAME VALUE SD SD_SCALED\n";
    const TensorLine lines[] = {
        {"S(zz)", -4, saupe[0], 1.0, [](const TensorErrors &e) { return e.saupe[0]; }},
        {"S(xx-yy)", -4, saupe[1], 1.0, [](const TensorErrors &e) { return e.saupe[1]; }},
        {"S(xy)", -4, saupe[2], 1.0, [](const TensorErrors &e) { return e.saupe[2]; }},
        {"S(xz)", -4, saupe[3], 1.0, [](const TensorErrors &e) { return e.saupe[3]; }},
        {"S(yz)", -4, saupe[4], 1.0, [](const TensorErrors &e) { return e.saupe[4]; }},
        {"Da_HN", 4, tensor.da * amideHertz, amideHertz, [](const TensorErrors &e) { return e.da; }},
        {"Dr_HN", 4, tensor.dr * amideHertz, amideHertz, [](const TensorErrors &e) { return e.dr; }},
        {"R", 4, ratio(tensor.dr, tensor.da), 1.0, [](const TensorErrors &e) { return e.rhombicity; }},
        {"Z_AXIS", 3, none, 1.0, [](const TensorErrors &e) { return e.axes[0]; }},
        {"Y_AXIS", 3, none, 1.0, [](const TensorErrors &e) { return e.axes[1]; }},
        {"X_AXIS", 3, none, 1.0, [](const TensorErrors &e) { return e.axes[2]; }},
        {"TILT_ZY", 3, none, 1.0, [](const TensorErrors &e) { return e.tiltZY; }},
        {"TILT_ZX", 3, none, 1.0, [](const TensorErrors &e) { return e.tiltZX; }},
        {"TILT_YX", 3, none, 1.0, [](const TensorErrors &e) { return e.tiltYX; }},
        {"ALPHA", 2, tensor.euler.alpha[0], 1.0, [](const TensorErrors &e) { return e.alpha; }},
        {"BETA", 2, tensor.euler.beta[0], 1.0, [](const TensorErrors &e) { return e.beta; }},
        {"GAMMA", 2, tensor.euler.gamma[0], 1.0, [](const TensorErrors &e) { return e.gamma; }},
    };
    for (const TensorLine &line : lines)
        appendTensorLine(line, quality, text);
}

void appendAgreement(const Agreement &agreement, std::string &text)
{
    text += "\nREMARK Q: rms of observed minus calculated over that of observed; BY_SIZE: over the root of\n"
            "REMARK Da^2 (4 + 3 R^2) / 5, all on the scale of N-H; R_FACTOR: Q over the root of 2.\n\n";
    appendf(text, "DATA RMS                  %.4f\n", agreement.rms);
    appendf(text, "DATA Q                    %.4f\n", agreement.q);
    appendf(text, "DATA Q_BY_SIZE            %.4f\n", agreement.qBySize);
    appendf(text, "DATA R_FACTOR             %.4f\n", agreement.rFactor);
    appendf(text, "DATA R_FACTOR_BY_SIZE     %.4f\n", agreement.rFactorBySize);
    appendf(text, "DATA CORR_R               %.4f\n", agreement.correlation);
    appendf(text, "DATA SLOPE                %.4f\n", agreement.slope);
    appendf(text, "DATA OFFSET               %.4f\n", agreement.offset);
}

const char *wordOf(LeaveOut kind)
{
    switch (kind) {
    case LeaveOut::oneByOne:
        return "ONE_BY_ONE";
    case LeaveOut::byType:
        return "BY_TYPE";
    case LeaveOut::inParts:
        return "IN_PARTS";
    }
    return "";
}

void appendFree(const FitQuality &quality, LeaveOut shown, std::string &text)
{
    if (quality.free.empty())
        return;
    text += "\nREMARK Couplings that take no part in the fit that predicts them.\n\n";
    for (const FreeQuality &free : quality.free) {
        if (free.kind == shown && free.count > 0)
            appendf(text, "DATA Q_FREE               %.4f\n", free.q);
        appendf(text, "DATA LEFT_OUT %-11s %5d %9.4f %9.4f", wordOf(free.kind), free.count, free.rms, free.q);
        if (free.kind == LeaveOut::inParts)
            appendf(text, " seed %d", free.seed);
        text += '\n';
        for (const FreePart &part : free.parts) {
            const std::string name = free.kind == LeaveOut::byType
                                         ? oneWord(quality.byType.types[part.part].name)
                                         : std::to_string(part.part + 1);
            appendf(text, "DATA LEFT_OUT_PART %-6s %5d", name.c_str(), part.count);
            const double none = std::nan("");
            appendColumns(text, {part.isPredicted ? part.rms : none, part.isPredicted ? part.q : none}, 4);
            text += '\n';
        }
    }
}

void appendTypes(const FitQuality &quality, std::string &text)
{
    text += "\nREMARK Types: in the fit of all, and predicted by the others (REST).\n\n"
            "DATA TYPE_VARS NAME N RMS Q SLOPE OFFSET Q_REST SLOPE_REST SD_SLOPE_REST VERDICT\n";
    for (const TypeQuality &type : quality.byType.types) {
        const double none = std::nan("");
        appendf(text, "DATA TYPE %-8s %5d", oneWord(type.name).c_str(), type.count);
        appendColumns(text, {type.rms, type.q, type.slope, type.offset}, 4);
        if (type.isPredicted)
            appendColumns(text, {type.leftOutQ, type.leftOutSlope, type.leftOutSlopeError}, 4);
        else
            appendColumns(text, {none, none, none}, 4);
        text += "  " + verdictText(quality.byType, type) + "\n";
    }
}

void appendOutlier(const DTable &dTab, const FitQuality &quality, const Outlier &outlier, const char *label,
                   std::string &text)
{
    const QualityRow &row = quality.rows[outlier.row];
    const DInfo &obs = dTab.observed()[row.row];
    appendf(text, "DATA %s %4d %4s %4d %4s %-6s", label, obs.resIDI, obs.names->atomNameI.c_str(), obs.resIDJ,
            obs.names->atomNameJ.c_str(), oneWord(quality.byType.types[row.type].name).c_str());
    appendf(text, " %8.3f %8.3f %8.2f %6.2f %8.2f %6.3f %9.4f", row.observed, outlier.leftOut,
            outlier.studentised, outlier.limit, outlier.robust, outlier.leverage, outlier.da * amideHertz);
    appendNumber(text, 4, ratio(outlier.dr, outlier.da));
    appendf(text, " %7.4f %s\n", outlier.q, outlier.wasHidden ? "robust" : "student");
}

void appendOutliers(const DTable &dTab, const FitQuality &quality, std::string &text)
{
    text += "\nREMARK Outliers, the worst first: observed minus predicted without it (LEFT_OUT), its "
            "studentised\n"
            "REMARK residual T and the limit that T passes; Da, R and Q of the fit without it and those "
            "above.\n\n";
    appendf(text, "DATA LEVERAGE             mean %.4f largest %.4f\n", quality.meanLeverage,
            quality.largestLeverage);
    appendf(text, "DATA OUTLIERS             %zu\n", quality.outliers.size());
    if (!quality.outliers.empty() || !quality.dropped.empty())
        text += "DATA OUTLIER_VARS RESID_I ATOMNAME_I RESID_J ATOMNAME_J TYPE D_OBS LEFT_OUT T LIMIT ROBUST "
                "LEVERAGE"
                " DA_HN R Q FOUND_BY\n";
    for (const Outlier &outlier : quality.dropped)
        appendOutlier(dTab, quality, outlier, "DROPPED", text);
    for (const Outlier &outlier : quality.outliers)
        appendOutlier(dTab, quality, outlier, "OUTLIER", text);
}

void appendNotFitted(const Agreement &agreement, std::string &text)
{
    if (agreement.count == 0)
        return;
    text +=
        "\nREMARK Couplings that were left out of the fit: of weight 0, dropped, or of several vectors.\n\n";
    appendf(text, "DATA NOT_FITTED           %d\n", agreement.count);
    appendf(text, "DATA NOT_FITTED RMS       %.4f\n", agreement.rms);
    appendf(text, "DATA NOT_FITTED Q         %.4f\n", agreement.q);
}

void appendSideOf(int resID, const Name &resName, const Name &atomName, std::string &text)
{
    appendf(text, " %4d %4s %4s", resID, resName.c_str(), atomName.c_str());
}

/// The couplings, one line each.
void appendRows(const DTable &dTab, const FitQuality &quality, std::string &text)
{
    text +=
        "\nREMARK FITTED 0: left out of the fit. T: studentised residual; ROBUST: by the median; D_FREE: "
        "without"
        " it.\n\n"
        "VARS    RESID_I RESNAME_I ATOMNAME_I RESID_J RESNAME_J ATOMNAME_J TYPE D_OBS D D_DIFF DD D_FREE T"
        " ROBUST LEVERAGE FITTED\n"
        "FORMAT  %4d %4s %4s %4d %4s %4s %8s %9.4f %9.4f %9.4f %8.4f %9.4f %8.3f %8.3f %7.4f %d\n\n";
    for (std::size_t k = 0; k < quality.rows.size(); ++k) {
        const QualityRow &row = quality.rows[k];
        const RowResidual &residual = quality.residuals[k];
        const DInfo &obs = dTab.observed()[row.row];
        appendSideOf(obs.resIDI, obs.names->resNameI, obs.names->atomNameI, text);
        appendSideOf(obs.resIDJ, obs.names->resNameJ, obs.names->atomNameJ, text);
        appendf(text, " %8s % 9.4f % 9.4f % 9.4f %8.4f % 9.4f % 8.3f % 8.3f %7.4f %d\n",
                oneWord(quality.byType.types[row.type].name).c_str(), row.observed, row.calculated,
                row.residual(), row.error, row.observed - residual.leftOut, residual.studentised,
                residual.robust, residual.leverage, row.isFitted ? 1 : 0);
    }
}

} // namespace

std::string qualityText(const DTable &dTab, const FitQuality &quality, LeaveOut shownFree)
{
    std::string text = "REMARK What a fit of dipolar couplings is worth. Hz.\n\n";
    appendOverview(quality, text);
    appendTensor(quality, text);
    appendAgreement(quality.fitted, text);
    appendFree(quality, shownFree, text);
    appendTypes(quality, text);
    appendOutliers(dTab, quality, text);
    appendNotFitted(quality.notFitted, text);
    appendRows(dTab, quality, text);
    return text;
}

std::string rowText(const DInfo &row)
{
    std::string text;
    appendf(text, "%s %d %s - %s %d %s", row.names->resNameI.c_str(), row.resIDI,
            row.names->atomNameI.c_str(), row.names->resNameJ.c_str(), row.resIDJ,
            row.names->atomNameJ.c_str());
    return text;
}

std::string droppedRemark(const DTable &dTab, const FitQuality &quality)
{
    std::string text;
    for (const Outlier &outlier : quality.dropped) {
        const QualityRow &row = quality.rows[outlier.row];
        appendf(text, "REMARK Outlier left out of the fit: %s, %.3f Hz, %.3f Hz off.\n",
                rowText(dTab.observed()[row.row]).c_str(), row.observed, outlier.leftOut);
    }
    return text.empty() ? text : text + "\n";
}

} // namespace trelm
