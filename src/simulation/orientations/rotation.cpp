#include "simulation/orientations/rotation.h"

#include "support/text/text.h"

#include <algorithm>
#include <cmath>

namespace trelm {

Axis rotate_vector(double theta, double phi, double psi, const Axis &input_vector)
{
    Axis x, y, z, rotated_vector;
    rotate_coorsystem(theta, phi, psi, x, y, z);
    for (std::size_t i = 0; i < 3; ++i)
        rotated_vector[i] = x[i] * input_vector[0] + y[i] * input_vector[1] + z[i] * input_vector[2];
    return rotated_vector;
}

Matrix3f getRotMat(float theta, float phi, float psi)
{
    Axis x, y, z;
    rotate_coorsystem(static_cast<double>(theta), static_cast<double>(phi), static_cast<double>(psi), x, y,
                      z);
    Matrix3f rotMatrix;
    for (std::size_t i = 0; i < 3; ++i)
        for (std::size_t j = 0; j < 3; ++j)
            rotMatrix[3 * i + j] = static_cast<float>((j == 0 ? x : j == 1 ? y : z)[i]);
    return rotMatrix;
}

Vector3f crossProduct(const Vector3f &vec1, const Vector3f &vec2)
{
    const auto element = [&](std::size_t j, std::size_t k) {
        return static_cast<float>(static_cast<double>(vec1[j]) * static_cast<double>(vec2[k]) -
                                  static_cast<double>(vec1[k]) * static_cast<double>(vec2[j]));
    };
    return {element(1, 2), element(2, 0), element(0, 1)};
}

float calcNorm(float x, float y, float z)
{
    const double dx = static_cast<double>(x), dy = static_cast<double>(y), dz = static_cast<double>(z);
    return static_cast<float>(std::sqrt(dx * dx + dy * dy + dz * dz));
}

std::array<double, 3> calcDcos(const Matrix3d &eigVec, const Matrix3d &eigVec_svd)
{
    std::array<double, 3> dcos;
    for (std::size_t i = 0; i < 3; ++i) {
        const std::size_t column = 2 - i;
        double product = 0.0;
        for (std::size_t row = 0; row < 3; ++row)
            product += eigVec[3 * row + column] * eigVec_svd[3 * row + column];
        dcos[i] = std::acos(std::clamp(product, -1.0, 1.0)); // above 1 by rounding only
    }
    return dcos;
}

int getGridPoint(float pRel)
{
    const float size = std::fabs(pRel);
    const float whole = std::floor(size);
    const float rounded = size - whole > 0.5f ? whole + 1.0f : whole;
    return truncated(std::copysign(rounded, pRel));
}

} // namespace trelm
