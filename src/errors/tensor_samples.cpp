#include "errors/tensor_samples.h"

#include "couplings/fit.h"
#include "couplings/output.h"
#include "couplings/statistics.h"
#include "simulation/orientations/rotation.h"
#include "structure/write.h"
#include "support/numerics/numbers.h"
#include "support/text/text.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <vector>

namespace trelm {
namespace {

constexpr float noTensor = 999.9f;

Saupe saupeOf(const DTensor &dTensor)
{
    Saupe saupe;
    std::ranges::copy(dTensor.saupe, saupe.begin());
    return saupe;
}

/// The files that a mapping writes, those of the turned structures included.
std::vector<std::string> namesOf(const MappingSetup &setup)
{
    const MappingFiles &files = setup.files;
    std::vector<std::string> names = {files.outDaName, files.outMapName, files.outAngName,
                                      files.outAName,  files.outDName,   files.outDFailName};
    constexpr int frames = 4;
    for (int k = 0; k < frames; ++k) {
        names.push_back(files.pdbRotName + '.' + std::to_string(k));
        if (k == setup.trelmInfo->rotN)
            names.push_back(files.pdbRotName);
    }
    return names;
}

/// Each file is written from its start: two under one name would take each other's rows.
int checkNames(const MappingSetup &setup)
{
    const std::vector<std::string> names = namesOf(setup);
    for (auto first = names.begin(); first != names.end(); ++first)
        for (auto second = first + 1; second != names.end(); ++second)
            if (isSameFile(*first, *second))
                return complain("trelm: %s is another file of this run: give each a name of its own.\n",
                                second->c_str());
    return 0;
}

int openOne(OutFile &out, const std::string &name, const char *message, const char *dot)
{
    return openOut(out, name, "w") == 0 ? 0 : complain("%s%s%s\n", message, name.c_str(), dot);
}

/// A deviation from sums; rounding can leave less than nothing of it.
double deviation(double sqrSum, double average, double count)
{
    const double variance = sqrSum / count - average * average;
    return variance < 0.0 ? 0.0 : std::sqrt(variance);
}

/// Chooses the fit's Euler solution whose angles widen the ranges. The distance to the reference is summed up
/// over the solutions and never starts anew, so the first solution that is not all zero wins, not the nearest
/// one. The reported ranges are defined by this choice.
void chooseSolution(TensorSamples &samples, const DTensor &dTensor)
{
    const EulerSolution &orig = samples.orig;
    float test = 0.0f;
    double diff = 999.9;
    for (std::size_t j = 0; j < static_cast<std::size_t>(dTensor.eulerCount); ++j) {
        const EulerSolution solution = eulerSolution(dTensor, j);
        test += std::fabs(solution.phi - orig.phi);
        test += std::fabs(solution.psi - orig.psi);
        test += std::fabs(solution.theta - orig.theta);
        if (solution.isZero())
            continue;
        if (j == 0 || number(test) < diff) {
            diff = number(test);
            samples.chosen = j;
        }
    }
}

/// Whether the chosen solution is near enough to the reference to widen the ranges of the angles.
bool isComparable(const TensorSamples &samples, const EulerSolution &solution)
{
    const EulerSolution &orig = samples.orig;
    return !solution.isZero() && std::fabs(solution.phi - orig.phi) < 90.0f &&
           std::fabs(solution.psi - orig.psi) < 90.0f && std::fabs(solution.theta - orig.theta) < 90.0f;
}

void widenRanges(TensorSamples &samples, const TensorAnalysis &analysis, float daNH,
                 const EulerSolution &solution)
{
    const bool isFirst = samples.count == 1;
    samples.gMag.widen(analysis.gMag, isFirst);
    samples.da.widen(analysis.da, isFirst);
    samples.dr.widen(analysis.dr, isFirst);
    samples.daNHMin = isFirst ? daNH : std::min(samples.daNHMin, daNH);
    samples.daNHMax = isFirst ? daNH : std::max(samples.daNHMax, daNH);
    if (!isFirst && !isComparable(samples, solution))
        return;
    samples.phi.widen(solution.phi, isFirst);
    samples.psi.widen(solution.psi, isFirst);
    samples.theta.widen(solution.theta, isFirst);
}

/// Adds the sample to all sums and ranges.
void countSample(TensorSamples &samples, const Saupe &saupe, const TensorAnalysis &analysis,
                 const DTensor &dTensor)
{
    if (samples.count <= maxSamples)
        samples.store[static_cast<std::size_t>(samples.count) - 1] = saupe;
    for (std::size_t k = 0; k < saupe.size(); ++k)
        samples.saupe[k].add(saupe[k]);
    const double szz = std::fabs(analysis.eigVal[0]);
    samples.szz.add(szz);
    samples.szz.widen(szz, samples.count == 1);
    samples.gMag.add(analysis.gMag);
    samples.dr.add(analysis.dr);
    const auto daNH = static_cast<float>(analysis.da * amideHertz);
    samples.daNHSum += daNH;
    samples.daNHSqrSum += daNH * daNH;
    chooseSolution(samples, dTensor);
    widenRanges(samples, analysis, daNH, eulerSolution(dTensor, samples.chosen));
}

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

void writeAxes(const Matrix3d &eigVec, std::string &text, OutFile &out)
{
    text.clear();
    for (std::size_t k = 0; k < 3; ++k) {
        const MapPoint point = mapPoint(eigVec, k);
        appendf(text, "  %f       %f%s", point.x, point.y, k < 2 ? "  " : "\n");
    }
    for (std::size_t k = 0; k < 3; ++k) {
        const MapPoint point = mapPoint(eigVec, k);
        appendf(text, " %f\t%f%s", point.xOpposite, -point.y, k < 2 ? "  " : "\n");
    }
    writeOut(out, text);
}

void writeMagnitude(const DTable &dTab, const TensorAnalysis &analysis, int n, std::string &text,
                    OutFile &out)
{
    float rSum = 0.0f, pSum = 0.0f;
    int nD = 0;
    getStatDC(dTab.observed(), dTab.calculated(), rSum, pSum, nD);
    text.clear();
    appendf(text, "%6d  %e  %.3f   %9.3f   %9.3f\n", n - 1, analysis.da * amideHertz,
            analysis.dr / analysis.da, number(rSum), number(pSum)); // no number without a tensor
    writeOut(out, text);
}

/// Of the samples those of smallest and largest magnitude.
struct MagnitudeRange {
    double gMagMax = 0.0, gMagMin = 999.9;
};

void noteMagnitude(TensorSamples &samples, const Saupe &saupe, double gMag, MagnitudeRange &range)
{
    if (std::fabs(gMag) > range.gMagMax) {
        samples.saupeMax = saupe;
        range.gMagMax = std::fabs(gMag);
    }
    if (std::fabs(gMag) < range.gMagMin) {
        samples.saupeMin = saupe;
        range.gMagMin = std::fabs(gMag);
    }
}

/// The angle in the space of Saupe vectors. With more than one sample its minimum stays at 0.
void noteAngle(TensorSamples &samples, double angle)
{
    samples.angle5d.add(angle);
    if (angle > samples.angle5d.max)
        samples.angle5d.max = angle;
    if (samples.count == 1)
        samples.angle5d.min = samples.angle5d.max = angle;
}

/// One stored sample against the mean tensor.
int compareSample(TensorSamples &samples, int i, const TensorAnalysis &mean, const MappingSetup &setup,
                  MagnitudeRange &range, std::string &text, OutFile &out)
{
    const Saupe &saupe = samples.store[static_cast<std::size_t>(i)];
    TensorAnalysis analysis;
    if (analyzeSaupe(saupe, setup.trelmInfo->yzFlag, setup.trelmInfo->eulerFlag, analysis) != 0)
        return complain("trelm: error in analyzeSaupe.\n");
    noteMagnitude(samples, saupe, analysis.gMag, range);
    const std::array<double, 3> dcos = calcDcos(analysis.eigVec, mean.eigVec);
    SaupeValues average, sample;
    const auto toFloat = [](double value) { return static_cast<float>(value); };
    std::ranges::transform(samples.saupeAve, average.begin(), toFloat);
    std::ranges::transform(saupe, sample.begin(), toFloat);
    float dcos5d = 0.0f, angle = 0.0f;
    irrCollinarity(average, sample, dcos5d, angle);
    noteAngle(samples, number(angle));
    text.clear();
    appendf(text, "%5d   %8.3f %8.3f %8.3f       %8.3f       %e\n", i, dcos[0] * 180.0 / pi,
            dcos[1] * 180.0 / pi, dcos[2] * 180.0 / pi, number(angle), number(dcos5d));
    writeOut(out, text);
    return 0;
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

double Spread::stdDev(double count) const
{
    return deviation(sqrSum, average(count), count);
}

EulerSolution eulerSolution(const DTensor &dTensor, std::size_t j)
{
    return {dTensor.phiList[j], dTensor.psiList[j], dTensor.thetaList[j]};
}

int openOutputs(const MappingSetup &setup, const MappingWords &words, SampleOutputs &outputs)
{
    if (checkNames(setup) != 0)
        return 1;
    const MappingFiles &files = setup.files;
    constexpr const char *noMap = "TRELM Error opening log file for error space mapping ";
    constexpr const char *noSaupe = "TRELM Error opening log file for Saupe distribution ";
    if (openOne(outputs.map, files.outMapName, noMap, "") != 0 ||
        openOne(outputs.da, files.outDaName, noDaWords, words.dot) != 0 ||
        openOne(outputs.angles, files.outAngName, words.noAngles, words.dot) != 0 ||
        openOne(outputs.saupe, files.outAName, noSaupe, ".") != 0)
        return 1;
    return 0;
}

int closeOutputs(SampleOutputs &outputs)
{
    int status = 0;
    for (OutFile *out : {&outputs.map, &outputs.da, &outputs.angles, &outputs.saupe})
        status |= closeOut(*out);
    return status;
}

int makeSamples(TensorSamples &samples)
{
    samples.store = Block<Saupe>("trelm", maxSamples);
    return samples.store ? 0 : complain("Error allocating coord buffers.\n");
}

int takeSample(TensorSamples &samples, const MappingSetup &setup, int n, SampleOutputs &outputs)
{
    const DTensor &dTensor = setup.dTab->dTensor;
    const Saupe saupe = saupeOf(dTensor);
    TensorAnalysis analysis;
    ++samples.count;
    if (analyzeSaupe(saupe, setup.trelmInfo->yzFlag, setup.trelmInfo->eulerFlag, analysis) != 0)
        return complain("Matrix: error in analyzeSaupe.\n");
    countSample(samples, saupe, analysis, dTensor);
    writeMagnitude(*setup.dTab, analysis, n, outputs.text, outputs.da);
    writeAxes(analysis.eigVec, outputs.text, outputs.map);
    return 0;
}

void averageSamples(TensorSamples &samples)
{
    samples.averaged = samples.count;
    if (samples.count == 0)
        return;
    const double count = samples.count;
    for (std::size_t k = 0; k < samples.saupe.size(); ++k) {
        samples.saupeAve[k] = samples.saupe[k].average(count);
        samples.saupeStdDev[k] = samples.saupe[k].stdDev(count);
    }
    samples.daNHAve = number(samples.daNHSum) / count;
    samples.daNHStdDev = deviation(number(samples.daNHSqrSum), samples.daNHAve, count);
}

int comparePass(TensorSamples &samples, const MappingSetup &setup, const MappingWords &words,
                SampleOutputs &outputs)
{
    writeOut(outputs.angles, "# SVD_ID  ANGLE_X  ANGLE_Y  ANGLE_Z       ANGLE_5D        COLL_5D\n\n");
    writeOut(outputs.saupe, "VARS     ID   S_ZZ     S_XXYY     S_XY     S_XZ     S_YZ\n"
                            "FORMAT  %5d  %e       %e       %e     %e     %e\n\n");
    samples.count = std::min(samples.count, maxSamples);
    if (samples.count == 0)
        return 0;
    TensorAnalysis mean;
    if (analyzeSaupe(samples.saupeAve, setup.trelmInfo->yzFlag, setup.trelmInfo->eulerFlag, mean) != 0)
        return complain("trelm: error in analyzeSaupe.\n");
    samples.euler = mean.euler;
    MagnitudeRange range;
    std::string &text = outputs.text;
    for (int i = 0; i < samples.count; ++i) {
        const Saupe &saupe = samples.store[static_cast<std::size_t>(i)];
        text.clear();
        appendf(text, "%5d%s%e  %e  %e  %e  %e\n", i, words.saupeGap, saupe[0], saupe[1], saupe[2], saupe[3],
                saupe[4]);
        writeOut(outputs.saupe, text);
        if (compareSample(samples, i, mean, setup, range, text, outputs.angles) != 0)
            return 1;
    }
    return 0;
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

int writeMeanFrame(const TensorSamples &samples, const MappingSetup &setup, const char *words)
{
    const int status =
        writePDBRot(samples.euler.gamma, samples.euler.beta, samples.euler.alpha, setup.trelmInfo->rotN,
                    setup.pdbInfo, setup.sInfo, setup.files.pdbRotName, setup.files.remark);
    if (status != 0)
        std::fputs(words, stderr);
    return status;
}

int reportMeanTensor(const TensorSamples &samples, const MappingSetup &setup)
{
    DTensor &dTensor = setup.dTab->dTensor;
    dTensor.tensorMode = tensorGiven;
    std::ranges::transform(samples.saupeAve, dTensor.userSaupe.begin(),
                           [](double element) { return static_cast<float>(element); });
    if (fitD(setup.pdbInfo, setup.dTab, setup.verbose) < 0)
        return 1;
    if (writeDCmod(setup.files.outDName, "w", setup.dTab, setup.trelmInfo, mappingReport(samples)) != 0)
        return 1;
    if (samples.count != 0)
        return writeMeanFrame(samples, setup, "trelm: error in writePDBRot.\n");
    std::fprintf(stderr, "WARNING %d SVD runs of %d succesful.\n", 0, setup.mapCount);
    return 0;
}

bool isWithoutTensor(const DTable &dTab)
{
    return !(dTab.dTensor.saupe[0] < noTensor);
}

} // namespace trelm
