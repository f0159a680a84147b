// All assignments that come near the best ones at the corners of a cone.
#pragma once

#include "assignment/cone.h"
#include "assignment/corners.h"

#include <array>
#include <cstddef>
#include <vector>

namespace trelm {

/// What pairs cost above the best assignment, at each corner of a cone.
struct ReducedCosts {
    std::array<std::vector<double>, saupeCount>
        at; ///< by peak and row, stride apart; none below 0 but by rounding
};

/// Costs of one corner less the dual prices of rows and columns.
void reduceCosts(const PairCosts &costs, const TensorProblem &problem, std::span<const double> prices,
                 std::vector<double> &reduced);

/// Considers each assignment that at some corner is no more than `margin` above the best one: the others are
/// so at each, and so in the cone. rowOf: the best at the first corner. Returns false if that takes more than
/// `mostSteps` steps.
bool considerNear(Standing &standing, const ReducedCosts &reduced, std::span<const int> rowOf, double margin,
                  std::size_t mostSteps);

} // namespace trelm
