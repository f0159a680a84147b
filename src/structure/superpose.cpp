#include "structure/superpose.h"

#include "support/numerics/symmetric_eigen.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

namespace trelm {
namespace {

Vec3 placeOf(const Coord3D &at)
{
    return {double{at.x}, double{at.y}, double{at.z}};
}

Vec3 minus(const Vec3 &a, const Vec3 &b)
{
    return {a[0] - b[0], a[1] - b[1], a[2] - b[2]};
}

Vec3 turned(const Matrix3d &m, const Vec3 &v)
{
    return {m[0] * v[0] + m[1] * v[1] + m[2] * v[2], m[3] * v[0] + m[4] * v[1] + m[5] * v[2],
            m[6] * v[0] + m[7] * v[1] + m[8] * v[2]};
}

Vec3 middleOf(std::span<const Coord3D> coords, const AtomMask &selection)
{
    Vec3 sum = {};
    double count = 0.0;
    for (std::size_t k = 0; k < coords.size(); ++k) {
        if (selection[k] == 0)
            continue;
        const Vec3 at = placeOf(coords[k]);
        sum = {sum[0] + at[0], sum[1] + at[1], sum[2] + at[2]};
        count += 1.0;
    }
    return count > 0.0 ? scaled(sum, 1.0 / count) : sum;
}

/// Sums of products of coordinates, moved by row and fixed by column, from the middles.
Matrix3d productsOf(std::span<const Coord3D> fixed, std::span<const Coord3D> moved, const AtomMask &selection,
                    const Superposition &middles)
{
    Matrix3d sums = {};
    for (std::size_t k = 0; k < fixed.size(); ++k) {
        if (selection[k] == 0)
            continue;
        const Vec3 m = minus(placeOf(moved[k]), middles.from), f = minus(placeOf(fixed[k]), middles.to);
        for (std::size_t i = 0; i < sums.size(); ++i)
            sums[i] += m[i / 3] * f[i % 3];
    }
    return sums;
}

/// The unit quaternion of the best turn: the eigenvector of the largest eigenvalue of Horn's matrix.
std::array<double, 4> bestQuaternion(const Matrix3d &s)
{
    const double xx = s[0], xy = s[1], xz = s[2], yx = s[3], yy = s[4], yz = s[5], zx = s[6], zy = s[7],
                 zz = s[8];
    std::array<double, 16> matrix = {xx + yy + zz, yz - zy,      zx - xz,       xy - yx, //
                                     yz - zy,      xx - yy - zz, xy + yx,       zx + xz, //
                                     zx - xz,      xy + yx,      -xx + yy - zz, yz + zy, //
                                     xy - yx,      zx + xz,      yz + zy,       -xx - yy + zz};
    std::array<double, 4> values = {};
    std::array<double, 16> vectors = {};
    if (symmetricEigen(matrix, values, vectors) != Status::ok)
        return {1.0, 0.0, 0.0, 0.0};
    const auto best = static_cast<std::size_t>(std::ranges::max_element(values) - values.begin());
    return {vectors[best], vectors[4 + best], vectors[8 + best], vectors[12 + best]};
}

Matrix3d matrixOf(const std::array<double, 4> &quaternion)
{
    const auto [w, x, y, z] = quaternion;
    return {w * w + x * x - y * y - z * z, 2 * (x * y - w * z),           2 * (x * z + w * y),
            2 * (x * y + w * z),           w * w - x * x + y * y - z * z, 2 * (y * z - w * x),
            2 * (x * z - w * y),           2 * (y * z + w * x),           w * w - x * x - y * y + z * z};
}

Vec3 movedPlace(const Superposition &superposition, const Coord3D &at)
{
    const Vec3 place = turned(superposition.turn, minus(placeOf(at), superposition.from));
    return {place[0] + superposition.to[0], place[1] + superposition.to[1], place[2] + superposition.to[2]};
}

} // namespace

Superposition superpose(std::span<const Coord3D> fixed, std::span<const Coord3D> moved,
                        const AtomMask &selection)
{
    Superposition result = {.from = middleOf(moved, selection), .to = middleOf(fixed, selection)};
    result.turn = matrixOf(bestQuaternion(productsOf(fixed, moved, selection, result)));
    double squares = 0.0, count = 0.0;
    for (std::size_t k = 0; k < fixed.size(); ++k) {
        if (selection[k] == 0)
            continue;
        const Vec3 difference = minus(movedPlace(result, moved[k]), placeOf(fixed[k]));
        squares += dot(difference, difference);
        count += 1.0;
    }
    result.rmsd = count > 0.0 ? std::sqrt(squares / count) : 0.0;
    return result;
}

void moveAtoms(const Superposition &superposition, std::span<Coord3D> coords)
{
    for (Coord3D &at : coords) {
        const Vec3 place = movedPlace(superposition, at);
        at = {static_cast<float>(place[0]), static_cast<float>(place[1]), static_cast<float>(place[2])};
    }
}

} // namespace trelm
