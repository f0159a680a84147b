// Euler angles: about z, y', z'' in double precision for reports, about x, y, z in single precision for fits.
#pragma once

#include "support/numerics/jacobi.h"

#include <array>

namespace trelm {

/// The four Euler solutions of a tensor, degrees: rotation about z, y', z''.
struct EulerLists {
    std::array<double, 4> alpha = {}, beta = {}, gamma = {};
};

/// Up to eight solutions for a rotation matrix, degrees: rotation about x, y, z.
struct RotationLists {
    std::array<float, 8> psi = {}, theta = {}, phi = {};
};

/// The four right-handed frames of a tensor: (y, z), (-y, z), (y, -z), (-y, -z), x = y cross z each time.
/// eigVec has the axes z, y, x as columns 0, 1, 2; its x is not used.
struct FrameLists {
    std::array<std::array<double, 3>, 4> x = {}, y = {}, z = {};
};
void make_eigVecList(const Matrix3d &eigVec, FrameLists &frames);

/// The Euler angles of the four frames.
void eigVec2euler(const Matrix3d &eigVec, EulerLists &lists);

/// Alpha, beta, gamma (degrees) of the rotation about z, y', z'' with the matrix m (row-major):
/// M33 = cos b, M31 = sin b cos a, M32 = sin b sin a, M13 = -sin b cos g, M23 = sin b sin g.
/// get_euler normalises the columns first.
void inv_euler(const Matrix3d &m, std::array<double, 3> &w);
void get_euler(const Matrix3d &m, std::array<double, 3> &w);

/// The solutions of r (row-major) that eulerTest passes, sorted by psi^2 + theta^2 + phi^2. Returns how many:
/// at least 1, because rot2euler1 serves where none passes. Within 0.3 degrees of theta = +-90, where psi and
/// phi turn about one axis, there is one solution for each theta by convention and without a test: phi is 0,
/// psi the acos of r[2], below 0 where theta is not above 0. It need not give r back: of (-30, 90, 0) it
/// makes (30, 90, 0).
int rot2euler(const Matrix3f &r, RotationLists &lists);
int rot2euler1(const Matrix3f &r, float &psi, float &theta, float &phi);

/// 1 if the angles (radians) reproduce r within 0.0005.
int eulerTest(const Matrix3f &r, float psi, float theta, float phi);

} // namespace trelm
