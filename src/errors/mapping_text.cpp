#include "errors/mapping_text.h"

#include "support/numerics/numbers.h"
#include "support/text/text.h"

#include <algorithm>
#include <cmath>

namespace trelm {
namespace {

/// A point of a sinusoidal map of the world: an axis and its opposite end.
struct MapPoint {
    double x, y, xOpposite;
};

MapPoint mapPoint(const Matrix3d &eigVec, std::size_t column)
{
    const double x = eigVec[column], y = eigVec[3 + column], z = eigVec[6 + column];
    const double lambda = halfPi - std::acos(std::clamp(z, -1.0, 1.0));
    const double phi = std::atan2(y, x);
    const double opposite = phi > 0.0 ? phi - pi : phi < 0.0 ? phi + pi : 0.0;
    return {std::cos(lambda) * phi, lambda, std::cos(lambda) * opposite};
}

void appendFour(std::string &text, const char *label, const std::array<double, 4> &values)
{
    appendf(text, "DATA STATISTICS MAPPING %s% .4e % .4e % .4e % .4e\n", label, values[0], values[1],
            values[2], values[3]);
}

void appendSaupe(std::string &text, const char *label, const Saupe &saupe)
{
    appendf(text, "DATA STATISTICS MAPPING SAUPE %s% .4e  % .4e  % .4e  % .4e % .4e\n", label, saupe[0],
            saupe[1], saupe[2], saupe[3], saupe[4]);
}

void appendRange(std::string &text, const char *label, const AngleRange &range)
{
    appendf(text, "DATA STATISTICS MAPPING %s% .2f % .2f\n", label, number(range.min), number(range.max));
}

/// Average, deviation, minimum, maximum over the counted samples; zeros without any.
std::array<double, 4> fourOf(const Spread &spread, int count)
{
    if (count == 0)
        return {};
    return {spread.average(count), spread.stdDev(count), spread.min, spread.max};
}

} // namespace

std::string magnitudeLine(const CountedSample &sample)
{
    const TensorAnalysis &analysis = sample.analysis;
    std::string text;
    appendf(text, "%6d  %e  %.3f   %9.3f   %9.3f\n", sample.n, analysis.da * amideHertz,
            analysis.dr / analysis.da, number(sample.rSum), number(sample.pSum));
    return text;
}

std::string axesLines(const CountedSample &sample)
{
    std::string text;
    for (std::size_t k = 0; k < 3; ++k) {
        const MapPoint point = mapPoint(sample.analysis.eigVec, k);
        appendf(text, "  %f       %f%s", point.x, point.y, k < 2 ? "  " : "\n");
    }
    for (std::size_t k = 0; k < 3; ++k) {
        const MapPoint point = mapPoint(sample.analysis.eigVec, k);
        appendf(text, " %f\t%f%s", point.xOpposite, -point.y, k < 2 ? "  " : "\n");
    }
    return text;
}

std::string anglesLine(const TensorSamples &samples, std::size_t i)
{
    const SampleDeviation &deviation = samples.deviations[i];
    std::string text;
    appendf(text, "%5d   %8.3f %8.3f %8.3f       %8.3f       %e\n", static_cast<int>(i),
            deviation.axes[0] * 180.0 / pi, deviation.axes[1] * 180.0 / pi, deviation.axes[2] * 180.0 / pi,
            number(deviation.angle5d), number(deviation.collinearity));
    return text;
}

std::string saupeLine(const TensorSamples &samples, std::size_t i, const char *gap)
{
    const Saupe &saupe = samples.store[i];
    std::string text;
    appendf(text, "%5d%s%e  %e  %e  %e  %e\n", static_cast<int>(i), gap, saupe[0], saupe[1], saupe[2],
            saupe[3], saupe[4]);
    return text;
}

std::string mappingReport(const TensorSamples &samples)
{
    const int count = samples.averaged;
    const double angles = samples.count; // without samples the angles have no average: 0 by 0
    const double angleAve = samples.angle5d.average(angles);
    std::string text = "\nREMARK Mapping Statistics.\n\n";
    appendf(text, "DATA STATISTICS MAPPING NUMBER OF SUCCESFUL STEPS   %d\n", samples.count);
    appendFour(text, "G_MAG (AVERAGE/STD_DEV/MIN/MAX)   ", fourOf(samples.gMag, count));
    appendFour(text, "Da_HN (AVERAGE/STD_DEV/MIN/MAX)   ",
               {samples.daNHAve, samples.daNHStdDev, number(samples.daNHMin), number(samples.daNHMax)});
    appendf(text, "DATA STATISTICS MAPPING ANGLE_5D (AVERAGE/STD_DEV/MIN/MAX) %.4e % .4e % .4e % .4e\n",
            angleAve, samples.angle5d.stdDev(angles), samples.angle5d.min, samples.angle5d.max);
    appendFour(text, "SZZ (AVERAGE/STD_DEV/MIN/MAX)     ", fourOf(samples.szz, count));
    appendSaupe(text, "AVERAGE    ", samples.saupeAve);
    appendSaupe(text, "STD_DEV    ", samples.saupeStdDev);
    appendSaupe(text, "MIN        ", samples.saupeMin);
    appendSaupe(text, "MAX        ", samples.saupeMax);
    appendFour(
        text, "Da (AVERAGE/STD_DEV/MIN/MAX)   ",
        {samples.daNHAve / amideHertz, samples.daNHStdDev / amideHertz, samples.da.min, samples.da.max});
    appendFour(text, "Dr (AVERAGE/STD_DEV/MIN/MAX)   ", fourOf(samples.dr, count));
    appendRange(text, "Phi (MIN/MAX)     ", samples.phi);
    appendRange(text, "Psi (MIN/MAX)     ", samples.psi);
    appendRange(text, "Theta (MIN/MAX)   ", samples.theta);
    return text + "\n\n";
}

} // namespace trelm
