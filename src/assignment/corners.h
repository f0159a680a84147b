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

/// Scores a candidate if its sum of squares is within the limit.
void consider(Standing &standing, const TensorFit &fit, std::span<const int> rowOf);

constexpr std::uint32_t noNode = 0xffffffff;

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

/// All corners of a search. They are found by their place.
struct Corners {
    Standing &standing;
    double reference = 0.0; ///< tau at which corners are first looked at
    std::vector<Corner> list = {};
    std::vector<Triangle> shares = {}; ///< q of each corner's assignment; empty without q
    std::vector<float> prices = {};    ///< of each corner, stride apart: what the next one begins with
    std::vector<SupportNode> nodes = {};
    std::unordered_map<std::uint64_t, std::uint32_t> middles = {}; ///< by the places of an edge's ends
    PairCosts costs = {};
    AssignmentWork assignment = {};
    std::vector<double> priceWork = {};
};

/// A corner in direction x. Its prices begin with the mean of those of two corners, if they are given.
std::uint32_t addCorner(Corners &corners, const TensorVector &x, std::span<const std::uint32_t> like);

/// The corner between two.
std::uint32_t middleOf(Corners &corners, std::uint32_t i, std::uint32_t j);

/// The support of a corner at tau, or somewhat more: by convexity between nodes no farther apart than
/// `spacing` times the reference.
double supportAt(Corners &corners, std::uint32_t corner, double tau, double spacing);

/// The support at the reference; without q that of any tau.
double supportOf(const Corners &corners, std::uint32_t corner);

/// What a corner's assignment has in another direction at the reference.
double valueOf(const Corners &corners, std::uint32_t corner, const TensorVector &v);

} // namespace trelm
