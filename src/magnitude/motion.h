// How well parts of a molecule follow one rigid powder pattern: random sets of residues, each with the tensor
// of its own histogram, and its likelihood beside that of an even distribution with the same tensor.
#pragma once

#include "magnitude/observed.h"
#include "magnitude/options.h"
#include "support/numerics/random.h"

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

/// What the sets are drawn from. It holds references.
struct MotionSetup {
    const DTable &dTab;                ///< the couplings by row
    int segFirst = 0, segLast = 0;     ///< the window of residues
    const ObservedCouplings &observed; ///< the same couplings together
    const HistogramOptions &histogram;
    const DrawOptions &draw;
};

/// The sets, and the directions of the even distribution that they are held against.
struct MotionSets {
    std::vector<MotionSet> sets;
    std::size_t nDots = 0;
};

/// Draws histRan sets of sCount residues; their scores stand first in `scores`. Fails after a message:
/// settings without sense (more than maxSets sets, a negative sCount), a mean error of 0 or beyond
/// maxMeanError, a window of more than maxWindow residues or without couplings, or too many bins in a set.
/// With a modeFit other than 2 and 3 all sets are 0.
Status drawMotion(const MotionSetup &setup, MotionSets &drawn, Messages &messages);

/// The table of the sets and their ranges. Weighs the scores, bounds them, and leaves them less the minimum
/// of their list.
MotionRanges appendMotion(std::span<MotionSet> sets, std::size_t nDots, std::string &text);

/// The map of the sets over Da and R. Fails after a message if it has more than maxCells cells.
Status appendMap(std::span<const MotionSet> sets, const MotionRanges &ranges, std::string &text,
                 Messages &messages);

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

/// Couplings by residue for random selection.
struct ResidueCouplings {
    std::vector<std::vector<float>> dcMat;  ///< couplings of each residue, Hz
    std::vector<std::vector<float>> sigMat; ///< their errors, Hz
};

/// Draws sCount different residues, or all if there are fewer, from ran3 and appends all their couplings.
/// rAveDD becomes the mean of the copied errors, 0 without any. Returns the number of couplings copied.
int selectDcResidue(RandomStream &random, const ResidueCouplings &residues, int sCount,
                    std::vector<float> &coupList, std::vector<float> &sigmaList, float &rAveDD);

} // namespace trelm
