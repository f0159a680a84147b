// The tensor's magnitude by likelihood: a grid of Da and R, each point scored by how well the powder pattern
// of its tensor explains the couplings.
#pragma once

#include "ground/alloc.h"
#include "ground/messages.h"
#include "magnitude/likelihood_score.h"
#include "magnitude/observed.h"
#include "magnitude/options.h"

#include <array>
#include <span>
#include <string>

namespace trelm {

constexpr std::size_t maxMlCouplings = 5000; ///< couplings of a search
constexpr int maxMlPoints = 20000;           ///< points of its grid

/// The points of a search, Hz for Da. Low R is visited, high R is not; high Da is visited, low Da is not.
struct MlGrid {
    double lowDab = 0.0, highDab = 0.0, incDa = 0.0;
    double lowR = 0.0, highR = 0.0, incR = 0.0;
};

/// A point of the grid and its score.
struct MlPoint {
    double Dab = 0.0, R = 0.0;
    double score = 0.0;
};

/// Couplings of a search and their mean error, Hz.
struct MlCouplings {
    std::span<const float> coup_mat;
    double delta = 0.0;
};

/// Scores a grid, R rising and Da falling within it, with a progress line a point on the standard error
/// stream; `lCount` becomes the number of points, 0 for a grid that is empty or holds what is no number.
/// `clear`: each point starts from an empty pattern, else from that of the point before. A point without a
/// pattern scores 0. Fails after a message: more points than `list` has, patterns that leave the axis, what
/// startScorer refuses.
Status mlMagTensor(const MlCouplings &couplings, const MlGrid &grid, bool clear, std::span<MlPoint> list,
                   std::size_t &lCount, Messages &messages);

/// Da and R with their errors, Hz for Da.
struct MagnitudeRange {
    double Dab = 0.0, DabErr = 0.0;
    double R = 0.0, RErr = 0.0;
};

/// The couplings of all orientations for a tensor, and for one of the corners of its range; ascending by the
/// corner's.
struct CornerCoupling {
    double corner = 0.0, centre = 0.0;
};
struct CouplingRanges {
    std::array<Block<CornerCoupling>, 4> corners;
};

/// Computes them, once for all couplings of a table. Fails after a message if there is no memory.
Status startRanges(CouplingRanges &ranges, const MagnitudeRange &range, Messages &messages);

/// The middle and the half width of the couplings that the central tensor gives to the orientations at which
/// a corner agrees with coup within coupErr, coup included. All Hz.
void mapMagToDc(const CouplingRanges &ranges, double coup, double coupErr, double &coupAve,
                double &coupAveErr);

/// What a search found beside the scores of its points.
struct MlSearch {
    ExtremesTensor extremes;
    MagnitudeRange best;    ///< 0, but for the errors, where no score is above 0
    std::size_t points = 0; ///< of the grid
};

/// The whole search: settles the grid, scores its points into `list`, and finds that of the highest score
/// above 0. Fails after a message: more couplings than maxMlCouplings, or that span more than the axis, a
/// grid with a step of 0, and what mlMagTensor refuses.
Status getMlDabR(const ObservedCouplings &observed, const LikelihoodOptions &options, std::span<MlPoint> list,
                 MlSearch &found, Messages &messages);

/// Fills the calculated rows of the couplings that take part, and the errors of both columns: with zeros or,
/// with `mlMap`, with the ranges of the couplings for the tensor found. Fails after a message if there is no
/// memory.
Status fillCalculated(DTable &dTab, const MagnitudeRange &best, bool mlMap, Messages &messages);

/// The table of scores, a line for each point.
void appendScores(std::span<const MlPoint> list, std::string &text);

} // namespace trelm
