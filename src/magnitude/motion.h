// How well parts of a molecule follow one rigid powder pattern: random sets of residues, each with the tensor
// of its own histogram, and its likelihood beside that of an even distribution with the same tensor.
#pragma once

#include "magnitude/observed.h"

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace trelm {

constexpr int maxSets = 1000000;           ///< sets of residues in a run
constexpr int maxWindow = 20000;           ///< residues of the window
constexpr std::int64_t maxCells = 1000000; ///< cells of the map

/// One set of residues.
struct MotionSet {
    float Dab = 0.0f, R = 0.0f; ///< its tensor, Da never above 0, Hz
    int nDSel = 0;              ///< its couplings
    /// The score of its couplings over that of an even distribution: a quotient of two sums of logarithms,
    /// not of likelihoods. Then the mean of first and third, and the ratio by the number of couplings.
    std::array<double, 3> scores = {};
};

/// What the sets span.
struct MotionRanges {
    float maxDab = 0.0f, minDab = 0.0f, maxR = 0.0f, minR = 0.0f; ///< over all sets
    std::array<double, 3> maxScore = {}, minScore = {};           ///< over sets with R below 0.6667
};

/// Draws histRan sets of sCount residues and writes the table (outScName), the map over Da and R (outColName)
/// and the report of the run, which has no couplings. An empty name is standard output. Returns 0, or 1 after
/// a message: an output that cannot be opened or written to its end, or that is another file of the run, no
/// couplings, settings without sense (more than maxSets sets, a negative sCount), a mean error of 0 or beyond
/// maxMeanError, a window of more than maxWindow residues, too many bins in a set, or a map of more than
/// maxCells. Without a set, and with a modeFit other than 2 and 3, all that is written is 0.
int motionHist(const MagnitudeJob &job, const std::string &outScName, const std::string &outColName);

/// The couplings of an even distribution, Hz: one for each dot of x, y, z on the unit sphere.
void simulateIsotropic(std::span<const double> dots, float Dab, float R, std::vector<float> &dc);

/// The second and third score of each set from the first: the third is what the set would have with as many
/// couplings as the largest, the second the mean of both. A set without couplings gets 0.
void weighScores(std::span<MotionSet> sets);

/// Finds the ranges and brings the scores into 0 to 1: above 1 becomes 1, and what is not above 0 becomes
/// the smallest score in 0 to 1 of its list, over sets with R below 0.6667 (0 if there is none).
MotionRanges boundScores(std::span<MotionSet> sets);

/// The map: cells of 0.2 Hz by 0.02 around whole steps from the first Da and R, so that no rounding adds up.
struct MapAxes {
    double firstDab = 0.0, firstR = 0.0;
    std::int64_t countDab = 0, countR = 0;
    [[nodiscard]] double dabAt(std::int64_t i) const;
    [[nodiscard]] double rAt(std::int64_t k) const;
};

/// The colours, 0 to 15, of each cell, R fastest: by the largest of each score, less its minimum, of the sets
/// within half a step of the cell's middle. A cell with sets has at least 1 as its first colour.
std::vector<std::array<int, 3>> mapColours(std::span<const MotionSet> sets, const MapAxes &axes);

} // namespace trelm
