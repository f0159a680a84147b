// Cones of five directions in the space of tensors, and bounds over them.
#pragma once

#include "assignment/tensor_problem.h"

#include <array>
#include <cstddef>

namespace trelm {

using FiveValues = std::array<double, saupeCount>;

/// Directions u = sum of lambda_i v_i with no lambda below 0 and |u| = 1.
struct Cone {
    std::array<TensorVector, saupeCount> corner = {}; ///< v_i, of length 1
    std::array<FiveValues, saupeCount> product = {};  ///< v_i . v_j
};

Cone makeCone(const std::array<const TensorVector *, saupeCount> &corners);

/// The least length of a vector y with y.v_i >= least_i for all i, or somewhat more; 0 where no value is
/// above 0, infinity where rounding leaves none. A convex function of the direction that has no more than
/// these values at the corners has no more than this in the cone: sum lambda_i least_i <= y.u. Whatever
/// rounding does to y, it is lengthened until it obeys, and so a bound. Method: active set on the dual, as
/// Lawson, Hanson, Solving Least Squares Problems (1974), chapter 23.
double shortestVector(const Cone &cone, const FiveValues &least);

/// The longest edge of a cone, as the places of its corners, and the square of its length.
struct ConeEdge {
    std::size_t i, j;
    double square;
};
ConeEdge longestEdge(const Cone &cone);

/// Lengths t; none if low is above high.
struct LengthRange {
    double low = 0.0, high = infinity;
};

/// The lengths at which tensors of a cone can lie in the window; `spread` is the shortest vector to 1 at all
/// corners. By the eigenvalues of the middle one, which change by no more than the norm of the difference
/// (Weyl).
LengthRange lengthsInside(const TensorProblem &problem, const TensorWindow &window, const Cone &cone,
                          double spread);

} // namespace trelm
