// Directions of the tensor that have been looked at, and the best assignments there.
#pragma once

#include "assignment/search_space.h"
#include "assignment/tensor_problem.h"
#include "support/numerics/linear_assignment.h"

#include <cstdint>
#include <set>
#include <unordered_map>
#include <vector>

namespace trelm {

/// The best candidate so far, and what is better: shared by all that meets candidates.
struct Standing {
    const SearchSpace &space;
    const TensorProblem &problem;
    ScoreWork &work;
    Candidate &best;
    double limit = 0.0;        ///< of scores in exact arithmetic: above it nothing can be the answer
    double lengthSquare = 0.0; ///< T^2
    double length = 0.0;       ///< T
    std::set<std::vector<int>> scored = {}; ///< candidates within the limit: each is scored once
};

/// Sets limit and T by the best candidate.
void setLimit(Standing &standing);

/// Sets limit and T.
void setLimit(Standing &standing, double limit);

/// Scores a candidate if its sum of squares is within the limit.
void consider(Standing &standing, const TensorFit &fit, std::span<const int> rowOf);

constexpr std::uint32_t noNode = 0xffffffff;
constexpr int noPeak = -1;

/// A direction and the assignment that is best there at the reference length.
struct Corner {
    TensorVector v = {};
    TensorVector sum = {};       ///< A of the assignment
    double score = 0.0;          ///< of the assignment
    std::uint32_t node = noNode; ///< the first of its support values
};

/// The largest A.v + tau / 2 q(v) of all assignments at one tau.
struct SupportNode {
    double tau = 0.0, support = 0.0;
    std::uint32_t next = noNode;
};

/// Assignments that do not have a pair of the best one, as a search for them meets them.
struct Alternatives {
    std::vector<int> best;     ///< row of each peak
    double bestScore = 0.0;    ///< with the weights of the score, in double precision
    std::vector<double> least; ///< by peak and row, the lowest score met with the peak there; infinity: none
    std::vector<double> elsewhere; ///< by peak, the lowest score met with the peak on another row
    std::vector<int> second;       ///< the assignment with the lowest score of all but the best
    double secondScore = infinity;
};

/// Takes an assignment into account.
void noteAlternative(Alternatives &alternatives, double score, std::span<const int> rowOf);

/// All corners of a search. They are found by their place.
struct Corners {
    Standing &standing;
    double reference = 0.0;               ///< tau at which corners are first looked at
    Alternatives *alternatives = nullptr; ///< nothing: the best assignment is looked for, else these
    std::vector<Corner> list = {};
    std::vector<Triangle> shares = {}; ///< q of each corner's assignment; empty without q
    std::vector<float> prices = {};    ///< of each corner, stride apart: what the next one begins with
    std::vector<SupportNode> nodes = {};
    std::vector<float> losses = {}; ///< by node and peak: what the support loses without the best one's pair
    std::unordered_map<std::uint64_t, std::uint32_t> middles = {}; ///< by the places of an edge's ends
    PairCosts costs = {};
    AssignmentWork assignment = {};
    std::vector<double> priceWork = {};
    std::vector<int> risingPeaks = {}, risingRows = {}; ///< one coupling a peak: in the order of their values
};

/// A corner in direction x. Its prices begin with the mean of those of two corners, if they are given.
std::uint32_t addCorner(Corners &corners, const TensorVector &x, std::span<const std::uint32_t> like);

/// The corner between two.
std::uint32_t middleOf(Corners &corners, std::uint32_t i, std::uint32_t j);

/// The support of a corner at tau, or somewhat more: by convexity between nodes no farther apart than
/// `spacing` times the reference. `offPeak`: the support without the best assignment's pair of that peak, or
/// noPeak.
double supportAt(Corners &corners, std::uint32_t corner, double tau, double spacing, int offPeak);

/// The support at the reference; without q that of any tau.
double supportOf(const Corners &corners, std::uint32_t corner);

/// What a corner's assignment has in another direction at the reference.
double valueOf(const Corners &corners, std::uint32_t corner, const TensorVector &v);

} // namespace trelm
