// Small vector and rotation routines of the simulation, single precision where told.
#pragma once

#include "couplings/euler.h"
#include "structure/rotate.h"
#include "support/numerics/jacobi.h"

#include <array>
#include <cstddef>

namespace trelm {

using Vector3f = std::array<float, 3>;

/// M applied to a vector, with M = Rz(psi) Ry(theta) Rz(phi) in passive form. Radians.
Axis rotate_vector(double theta, double phi, double psi, const Axis &input_vector);

/// M itself, row by row, in single precision.
Matrix3f getRotMat(float theta, float phi, float psi);

/// The product of two matrices, summed in their own precision.
template <class Number>
std::array<Number, 9> matMult(const std::array<Number, 9> &matrix1, const std::array<Number, 9> &matrix2)
{
    std::array<Number, 9> matrixOut = {};
    for (std::size_t i = 0; i < 3; ++i)
        for (std::size_t j = 0; j < 3; ++j)
            for (std::size_t k = 0; k < 3; ++k)
                matrixOut[3 * i + j] += matrix1[3 * i + k] * matrix2[3 * k + j];
    return matrixOut;
}

/// vec1 x vec2, with double intermediates.
Vector3f crossProduct(const Vector3f &vec1, const Vector3f &vec2);

float calcNorm(float x, float y, float z);

/// The angles between the axes (columns) of two frames, radians: third with third, second with second, first
/// with first.
std::array<double, 3> calcDcos(const Matrix3d &eigVec, const Matrix3d &eigVec_svd);

/// The nearest integer, halves toward zero; beyond the range of int its limit, 0 for what is no number.
int getGridPoint(float pRel);

} // namespace trelm
