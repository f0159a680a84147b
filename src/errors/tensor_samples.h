// What all mappings of a fit's error share: the tensors of repeated fits, and what they have in common.
#pragma once

#include "couplings/dipolar.h"
#include "couplings/fit.h"
#include "couplings/tensor.h"
#include "ground/alloc.h"
#include "ground/messages.h"

#include <array>
#include <functional>
#include <span>
#include <vector>

namespace trelm {

struct FitOptions;

constexpr int maxSamples = 11000; ///< tensors that are kept; the averages cover later ones too

/// Sum, sum of squares and range of a quantity.
struct Spread {
    double sum = 0.0, sqrSum = 0.0, min = 0.0, max = 0.0;
    void add(double value)
    {
        sum += value;
        sqrSum += value * value;
    }
    void widen(double value, bool isFirst)
    {
        min = isFirst || value < min ? value : min;
        max = isFirst || value > max ? value : max;
    }
    [[nodiscard]] double average(double count) const { return sum / count; }
    [[nodiscard]] double stdDev(double count) const;
};

/// Range of an angle, degrees, in the precision of the fits.
struct AngleRange {
    float min = 0.0f, max = 0.0f;
    void widen(float value, bool isFirst)
    {
        min = isFirst || value < min ? value : min;
        max = isFirst || value > max ? value : max;
    }
};

/// One Euler solution, degrees.
struct EulerSolution {
    float phi = 0.0f, psi = 0.0f, theta = 0.0f;
    [[nodiscard]] bool isZero() const { return phi == 0.0f && psi == 0.0f && theta == 0.0f; }
};
EulerSolution eulerSolution(const DTensor &dTensor, std::size_t j);

/// How far a sample is from the mean tensor.
struct SampleDeviation {
    std::array<double, 3> axes = {}; ///< angles between the axes x, y, z of both, radians
    float angle5d = 0.0f;            ///< between the Saupe vectors, degrees
    float collinearity = 0.0f;       ///< the cosine of it
};

/// The tensors of the counted fits. Da and Dr without unit, daNH on the scale of an amide pair, Hz. Asks for
/// the memory of the samples; without it `store` is empty.
struct TensorSamples {
    Block<Saupe> store{"trelm", maxSamples}; ///< the first of them
    int count = 0;
    EulerSolution orig;     ///< of the fit that is mapped
    std::size_t chosen = 0; ///< Euler solution of the last sample that was compared with it
    Spread szz, gMag, da, dr, rhombicity, angle5d;
    float daNHSum = 0.0f, daNHSqrSum = 0.0f, daNHMin = 0.0f, daNHMax = 0.0f;
    std::array<Spread, saupeCount> saupe;
    AngleRange phi, psi, theta;

    Saupe saupeAve = {}, saupeStdDev = {}; ///< settled by averageSamples
    double daNHAve = 0.0, daNHStdDev = 0.0;
    int averaged = 0; ///< samples behind the averages

    std::vector<SampleDeviation> deviations; ///< of the stored samples, by compareWithMean
    Saupe saupeMin = {}, saupeMax = {};      ///< samples of smallest and largest magnitude
    EulerLists euler;                        ///< of the mean tensor
};

/// The fits of a mapping, one after the other. None of them starts anew: non-linear ones go on from the last.
struct MappingFit {
    FitColumns columns; ///< of the fit to come
    FitWork work;
    FitResult last;
};

/// How far the axis of the samples lies from that of the mean tensor, degrees.
struct AxisCone {
    double mean = 0.0, rootMeanSquare = 0.0, largest = 0.0;
};

/// The cones of the axes x, y, z over the stored samples; zeros without any.
std::array<AxisCone, 3> conesOf(const TensorSamples &samples);

/// What a mapping works on.
struct MappingInput {
    const PDBInfo &pdbInfo;
    std::span<const Coord3D> coords; ///< where the atoms stand in the fits
    const DTable &dTab;
    const FitOptions &fit;
    int validCount = 0; ///< couplings that a choice of rows has left
    int mapCount = 0;   ///< samples to draw
    int verbose = 0;    ///< of the fits
};

/// A sample that was counted.
struct CountedSample {
    int n = 0; ///< number of the try, from 0; tries that were dropped leave gaps
    TensorAnalysis analysis;
    float rSum = 0.0f, pSum = 0.0f; ///< misfit, Hz, and sum of squared differences over errors
};

/// What is heard of a mapping while it runs.
struct MappingWatch {
    std::function<void()> start; ///< before the first sample; of coupling noise, before the first fit
    std::function<void(const CountedSample &sample)> sample;
};

/// The first fit, to the table as it is. Fails after a message.
Status fitTable(const MappingInput &input, MappingFit &fit, Messages &messages);

/// A fit to the columns as they are. Fails after a message.
Status fitAgain(const MappingInput &input, MappingFit &fit, Messages &messages);

/// Runs `step` for each sample, from 1, with progress lines, until one fails.
Status sampleAll(int mapCount, const std::function<Status(int n)> &step, Messages &messages);

/// Counts the tensor of the last fit, and tells of it. `n`: number of the try, from 1. Fails after a message.
Status takeSample(TensorSamples &samples, const MappingInput &input, const MappingFit &fit, int n,
                  const MappingWatch &watch, Messages &messages);

/// Averages and deviations of what was counted.
void averageSamples(TensorSamples &samples);

/// Holds the stored samples against the mean tensor. samples.count is maxSamples at most from then on. Fails
/// after a message.
Status compareWithMean(TensorSamples &samples, const FitOptions &fit, Messages &messages);

/// Calculates the couplings of the mean tensor, which with tensorMode tensorGiven is the last one then. Fails
/// after a message.
Status fitMean(const TensorSamples &samples, const MappingInput &input, MappingFit &fit, Messages &messages);

/// Whether the first element of the fitted Saupe vector is 999.9 or more, which is no order: such a sample is
/// dropped. A fit of fewer than five couplings leaves zeros, and those count.
bool isWithoutTensor(const FitResult &fit);

} // namespace trelm
