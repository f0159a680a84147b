// Eigenvalues of symmetric 3 by 3 matrices by cyclic Jacobi rotations.
// Source: Jacobi, J. reine angew. Math. 30 (1846) 51; Golub and Van Loan, Matrix Computations, chapter 8.
#pragma once

#include "ground/messages.h"
#include "support/numerics/vec3.h"

#include <array>

namespace trelm {

/// Eigenvalues dd and eigenvectors (columns of vv), single precision, not sorted. Fails after 50 sweeps.
Status diag3By3(const Matrix3f &aOrig, std::array<float, 3> &dd, Matrix3f &vv);

/// Sorts so that magnitudes rise, ties exchanged too, each exchange negating a column so that the frame keeps
/// its handedness; then transposes the vectors: rows of vOrig.
void eigsrt3By3NegRevTP(std::array<float, 3> &dOrig, Matrix3f &vOrig);

/// Eigenvalues d and eigenvectors (columns of v), double precision, not sorted. Fails after 50
/// sweeps, with a message.
Status jacobimz(const Matrix3d &a, std::array<double, 3> &d, Matrix3d &v, Messages &messages);

} // namespace trelm
