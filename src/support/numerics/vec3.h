// Vectors and matrices of three dimensions in double precision, and degrees.
#pragma once

#include "support/numerics/numbers.h"

#include <array>
#include <cstddef>

namespace trelm {

using Vec3 = std::array<double, 3>;
using Matrix3f = std::array<float, 9>;  ///< row-major
using Matrix3d = std::array<double, 9>; ///< row-major

constexpr double degreesOfRadian = 180.0 / pi;
constexpr double radiansOfDegree = pi / 180.0;

constexpr double dot(const Vec3 &a, const Vec3 &b)
{
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

constexpr Vec3 cross(const Vec3 &a, const Vec3 &b)
{
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

constexpr Vec3 scaled(const Vec3 &v, double factor)
{
    return {factor * v[0], factor * v[1], factor * v[2]};
}

/// Column k, 0 to 2.
constexpr Vec3 column(const Matrix3d &m, std::size_t k)
{
    return {m[k], m[3 + k], m[6 + k]};
}

} // namespace trelm
