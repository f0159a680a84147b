// The current transformation: one 4 by 4 matrix for the whole program, to which rotations and translations
// are appended. Each user resets it first, and what another one appended is lost. A point transforms as x' =
// m00 x + m01 y + m02 z + m03 and so on. Angles are in degrees.
#pragma once

#include "structure/pdb.h"

#include <array>
#include <span>

namespace trelm {

using Matrix4 = std::array<float, 16>; ///< row-major, last column the translation

void pdb3dReset();
void pdb3dCopyCurrentMatrix(Matrix4 &m);
void pdb3dAppendTranslation(float tx, float ty, float tz);

/// Appends Rz(phi) Ry(theta) Rx(psi).
void pdb3dAppendRotation0(float psi, float theta, float phi);

/// Appends a rotation of `theta` degrees about the line from a to b; nothing if a equals b.
void pdb3dAppendRotation2(float xa, float ya, float za, float xb, float yb, float zb, float theta);

/// Transforms points in place.
void pdb3dCoordTransform(std::span<Coord3D> coords);

void m4x4SetIdentity(Matrix4 &m);
void m4x4Transpose(Matrix4 &dest, const Matrix4 &src);
void m4x4Mult(const Matrix4 &a, Matrix4 &b); ///< b becomes a times b

} // namespace trelm
