// Rotations and translations of points, put together one after the other. Single precision, angles in
// degrees.
#pragma once

#include "structure/pdb.h"

#include <array>
#include <span>

namespace trelm {

using Matrix4 = std::array<float, 16>; ///< row-major, last column the translation

/// A transformation: x' = m00 x + m01 y + m02 z + m03 and so on. A fresh one leaves points where they are;
/// what is appended is done after what was there.
struct Transform {
    Matrix4 m = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};

    void appendTranslation(float tx, float ty, float tz);

    /// Rz(phi) Ry(theta) Rx(psi).
    void appendRotation(float psi, float theta, float phi);

    /// A rotation of `theta` degrees about the line from a to b; nothing if a equals b.
    void appendRotation(const Coord3D &a, const Coord3D &b, float theta);

    /// Transforms points in place.
    void apply(std::span<Coord3D> coords) const;

  private:
    void append(const Matrix4 &a);
};

} // namespace trelm
