// Symmetric positive definite equations of five unknowns. Matrices are lower triangles, row by row.
#pragma once

#include "couplings/tensor.h"

#include <array>
#include <cstddef>

namespace trelm {

using Triangle = std::array<double, saupeCount *(saupeCount + 1) / 2>;

/// Place of row i, column j <= i.
constexpr std::size_t packed(std::size_t i, std::size_t j)
{
    return i * (i + 1) / 2 + j;
}

/// L with L L^T = the matrix. Returns false if it is not positive definite enough to be more than rounding.
bool factorise(const Triangle &matrix, Triangle &factor);

/// y with L y = v.
Saupe forward(const Triangle &factor, const Saupe &v);

/// x with L^T x = y.
Saupe backward(const Triangle &factor, const Saupe &y);

double dot(const Saupe &a, const Saupe &b);

/// v.M v of a symmetric matrix.
double quadratic(const Triangle &matrix, const Saupe &v);

} // namespace trelm
