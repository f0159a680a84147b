#include "couplings/covariance.h"

#include "support/numerics/vec3.h"

#include <algorithm>
#include <cmath>

namespace trelm {
namespace {

using Gradient = Saupe; ///< derivative of a quantity by the Saupe elements

/// a^T M_j b for each element j, M_j the derivative of the order matrix by it.
Gradient bilinear(const Vec3 &a, const Vec3 &b)
{
    Gradient gradient;
    for (std::size_t j = 0; j < saupeCount; ++j) {
        Saupe unit = {};
        unit[j] = 1.0;
        const Matrix3d m = saupeMatrix(unit);
        gradient[j] = 0.0;
        for (std::size_t k = 0; k < m.size(); ++k)
            gradient[j] += a[k / 3] * m[k] * b[k % 3];
    }
    return gradient;
}

/// first * a + second * b.
Gradient combined(double first, const Gradient &a, double second, const Gradient &b)
{
    Gradient sum;
    for (std::size_t j = 0; j < saupeCount; ++j)
        sum[j] = first * a[j] + second * b[j];
    return sum;
}

double sharedVariance(const Gradient &a, const SaupeMatrix &covariance, const Gradient &b)
{
    double sum = 0.0;
    for (std::size_t k = 0; k < covariance.size(); ++k)
        sum += a[k / saupeCount] * covariance[k] * b[k % saupeCount];
    return sum;
}

double deviation(const Gradient &gradient, const SaupeMatrix &covariance)
{
    return std::sqrt(std::max(0.0, sharedVariance(gradient, covariance, gradient)));
}

/// The axes of the analysis as z, y, x; its columns have that order.
std::array<Vec3, 3> axesOf(const TensorAnalysis &analysis)
{
    return {column(analysis.eigVec, 0), column(analysis.eigVec, 1), column(analysis.eigVec, 2)};
}

/// The first of the Euler solutions after a small turn of the axes: radians about the axes x, y, z.
Vec3 turnedEuler(const TensorAnalysis &analysis, const Vec3 &turn)
{
    const auto [z, y, x] = axesOf(analysis);
    Matrix3d turned = {};
    for (std::size_t k = 0; k < 3; ++k) {
        turned[3 * k] = z[k] + turn[1] * x[k] - turn[0] * y[k];
        turned[3 * k + 1] = y[k] + turn[0] * z[k] - turn[2] * x[k];
        turned[3 * k + 2] = x[k] + turn[2] * y[k] - turn[1] * z[k];
    }
    EulerLists lists;
    eigVec2euler(turned, lists);
    return {lists.alpha[0], lists.beta[0], lists.gamma[0]};
}

/// The shorter way from one angle to another, degrees.
double angleStep(double from, double to)
{
    return std::remainder(to - from, 360.0);
}

/// Errors of the Euler angles: their derivatives by the three turns, from differences, and the gradients of
/// these turns.
void addEulerErrors(const TensorAnalysis &analysis, const std::array<Gradient, 3> &turns,
                    const SaupeMatrix &covariance, TensorErrors &errors)
{
    constexpr double step = 1e-5; // radian: half of the digits of the angles
    std::array<Gradient, 3> angles = {};
    for (std::size_t k = 0; k < 3; ++k) {
        Vec3 turn = {};
        turn[k] = step;
        const Vec3 ahead = turnedEuler(analysis, turn);
        turn[k] = -step;
        const Vec3 back = turnedEuler(analysis, turn);
        for (std::size_t angle = 0; angle < 3; ++angle)
            angles[angle] =
                combined(1.0, angles[angle], angleStep(back[angle], ahead[angle]) / (2.0 * step), turns[k]);
    }
    errors.alpha = deviation(angles[0], covariance);
    errors.beta = deviation(angles[1], covariance);
    errors.gamma = deviation(angles[2], covariance);
}

} // namespace

TensorErrors propagateErrors(const TensorAnalysis &analysis, const SaupeMatrix &covariance)
{
    TensorErrors errors;
    for (std::size_t k = 0; k < saupeCount; ++k)
        errors.saupe[k] = std::sqrt(std::max(0.0, covariance[k * saupeCount + k]));
    const auto [z, y, x] = axesOf(analysis);
    const auto &[valueZ, valueY, valueX] = analysis.eigVal;
    const Gradient da = combined(0.5, bilinear(z, z), 0.0, {});
    const Gradient dr = combined(1.0 / 3.0, bilinear(x, x), -1.0 / 3.0, bilinear(y, y));
    errors.da = deviation(da, covariance);
    errors.dr = deviation(dr, covariance);
    errors.rhombicity = deviation(
        combined(1.0 / analysis.da, dr, -analysis.dr / (analysis.da * analysis.da), da), covariance);
    // The turns about x, y and z that the change of the matrix makes.
    const std::array<Gradient, 3> turns = {combined(1.0 / (valueY - valueZ), bilinear(y, z), 0.0, {}),
                                           combined(1.0 / (valueZ - valueX), bilinear(z, x), 0.0, {}),
                                           combined(1.0 / (valueX - valueY), bilinear(x, y), 0.0, {})};
    errors.tiltZY = degreesOfRadian * deviation(turns[0], covariance);
    errors.tiltZX = degreesOfRadian * deviation(turns[1], covariance);
    errors.tiltYX = degreesOfRadian * deviation(turns[2], covariance);
    errors.axes = {std::hypot(errors.tiltZY, errors.tiltZX), std::hypot(errors.tiltZY, errors.tiltYX),
                   std::hypot(errors.tiltZX, errors.tiltYX)};
    addEulerErrors(analysis, turns, covariance, errors);
    return errors;
}

TensorErrors scaledErrors(const TensorErrors &errors, double factor)
{
    TensorErrors result = errors;
    for (double *value : {&result.da, &result.dr, &result.rhombicity, &result.tiltZY, &result.tiltZX,
                          &result.tiltYX, &result.alpha, &result.beta, &result.gamma})
        *value *= factor;
    for (double &value : result.saupe)
        value *= factor;
    for (double &value : result.axes)
        value *= factor;
    return result;
}

} // namespace trelm
