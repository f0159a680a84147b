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

// A line of a sample is written thousands of times, so these two stand for %e and %f.
void appendReal(std::string &text, double value)
{
    appendScientific(text, value, 6, SignPlace::none);
}

void appendPlace(std::string &text, double value)
{
    appendFixed(text, value, 0, 6, SignPlace::none);
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
    appendInt(text, sample.n, 6);
    appendReal(text += "  ", analysis.da * amideHertz);
    appendFixed(text += "  ", analysis.dr / analysis.da, 0, 3, SignPlace::none);
    appendFixed(text += "   ", number(sample.rSum), 9, 3, SignPlace::none);
    appendFixed(text += "   ", number(sample.pSum), 9, 3, SignPlace::none);
    return text += '\n';
}

std::string axesLines(const CountedSample &sample)
{
    std::string text, opposite;
    for (std::size_t k = 0; k < 3; ++k) {
        const MapPoint point = mapPoint(sample.analysis.eigVec, k);
        const char *const end = k < 2 ? "  " : "\n";
        appendPlace(text += "  ", point.x);
        appendPlace(text += "       ", point.y);
        text += end;
        appendPlace(opposite += ' ', point.xOpposite);
        appendPlace(opposite += '\t', -point.y);
        opposite += end;
    }
    return text += opposite;
}

std::string anglesLine(const TensorSamples &samples, std::size_t i)
{
    const SampleDeviation &deviation = samples.deviations[i];
    std::string text;
    appendInt(text, static_cast<int>(i), 5);
    text += "  ";
    for (const double angle : deviation.axes)
        appendFixed(text += ' ', angle * 180.0 / pi, 8, 3, SignPlace::none);
    appendFixed(text += "       ", number(deviation.angle5d), 8, 3, SignPlace::none);
    appendReal(text += "       ", number(deviation.collinearity));
    return text += '\n';
}

std::string saupeLine(const TensorSamples &samples, std::size_t i, const char *gap)
{
    std::string text;
    appendInt(text, static_cast<int>(i), 5);
    for (const double element : samples.store[i]) {
        appendReal(text += gap, element);
        gap = "  ";
    }
    return text += '\n';
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
