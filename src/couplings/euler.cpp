#include "couplings/euler.h"

#include "support/numerics/vec3.h"

#include <algorithm>
#include <cmath>
#include <span>
#include <utility>

namespace trelm {
namespace {

constexpr float piSingle = 3.14159265f;
constexpr float degreesSingle = 57.29577957855229f;

/// acos of the value in degrees, or 360 less it where the turn goes the other way. Unit vectors are unit only
/// to a rounding, so the value is held within -1 and 1.
double turnAngle(double cosine, bool isBack)
{
    const double angle = std::acos(std::clamp(cosine, -1.0, 1.0)) * degreesOfRadian;
    return isBack ? 360.0 - angle : angle;
}

/// One triple of angles, radians.
struct Candidate {
    float psi, theta, phi;
};

/// The solutions that belong to one value of theta.
void collect(const Matrix3f &r, float theta, std::array<Candidate, 8> &found, std::size_t &count)
{
    const float c = std::cos(theta);
    if (std::abs(c) <= 0.005f) { // the convention of the header
        const float psi = std::acos(std::clamp(r[2], -1.0f, 1.0f));
        found[count++] = {theta > 0.0f ? psi : -psi, theta, 0.0f};
        return;
    }
    const float psiA = std::asin(r[7] / c), phiA = std::asin(r[3] / c);
    const float psiB = piSingle - psiA, phiB = piSingle - phiA;
    for (const auto &[psi, phi] : {std::pair{psiA, phiA}, {psiB, phiA}, {psiA, phiB}, {psiB, phiB}})
        if (eulerTest(r, psi, theta, phi) != 0)
            found[count++] = {psi, theta, phi};
}

float size2(const Candidate &a)
{
    return a.psi * a.psi + a.theta * a.theta + a.phi * a.phi;
}

/// The exchange sort whose order of equal sizes is part of the result.
void sortBySize(std::span<Candidate> list)
{
    for (std::size_t i = 0; i < list.size(); ++i)
        for (std::size_t j = i + 1; j < list.size(); ++j)
            if (size2(list[i]) > size2(list[j]))
                std::swap(list[i], list[j]);
}

} // namespace

void make_eigVecList(const Matrix3d &eigVec, FrameLists &frames)
{
    constexpr double signs[4][2] = {{1.0, 1.0}, {-1.0, 1.0}, {1.0, -1.0}, {-1.0, -1.0}}; // of y and z
    for (std::size_t i = 0; i < 4; ++i) {
        frames.y[i] = scaled(column(eigVec, 1), signs[i][0]);
        frames.z[i] = scaled(column(eigVec, 0), signs[i][1]);
        frames.x[i] = cross(frames.y[i], frames.z[i]);
    }
}

void eigVec2euler(const Matrix3d &eigVec, EulerLists &lists)
{
    FrameLists frames;
    make_eigVecList(eigVec, frames);
    for (std::size_t i = 0; i < 4; ++i) {
        const Vec3 &x = frames.x[i], &y = frames.y[i], &z = frames.z[i];
        std::array<double, 3> w;
        get_euler({x[0], y[0], z[0], x[1], y[1], z[1], x[2], y[2], z[2]}, w);
        lists.alpha[i] = w[0];
        lists.beta[i] = w[1];
        lists.gamma[i] = w[2];
    }
}

void get_euler(const Matrix3d &m, std::array<double, 3> &w)
{
    Matrix3d unit = m;
    for (std::size_t k = 0; k < 3; ++k) {
        const Vec3 v = column(m, k);
        const double length = std::sqrt(dot(v, v));
        for (std::size_t i = 0; length > 0.0 && i < 3; ++i)
            unit[i * 3 + k] = v[i] / length;
    }
    inv_euler(unit, w);
}

void inv_euler(const Matrix3d &m, std::array<double, 3> &w)
{
    const double b = std::acos(std::clamp(m[8], -1.0, 1.0));
    const double s = std::sin(b);
    if (std::abs(s) <= 1e-10) {
        const double u = m[8] < 0.0 ? -1.0 : 1.0;
        w = {turnAngle(u * m[0], u * m[1] < 0.0), b * degreesOfRadian, 0.0};
        return;
    }
    w = {turnAngle(m[6] / s, m[7] / s < 0.0), b * degreesOfRadian, turnAngle(-m[2] / s, m[5] / s < 0.0)};
}

int eulerTest(const Matrix3f &r, float psi, float theta, float phi)
{
    const float cosPsi = std::cos(psi), sinPsi = std::sin(psi);
    const float cosTheta = std::cos(theta), sinTheta = std::sin(theta);
    const float cosPhi = std::cos(phi), sinPhi = std::sin(phi);
    const std::pair<float, float> pairs[] = {
        {r[0], cosTheta * cosPhi},
        {r[1], sinPsi * sinTheta * cosPhi - cosPsi * sinPhi},
        {r[2], cosPsi * sinTheta * cosPhi + sinPsi * sinPhi},
        {r[4], sinPsi * sinTheta * sinPhi + cosPsi * cosPhi},
        {r[5], cosPsi * sinTheta * sinPhi - sinPsi * cosPhi},
        {r[8], cosPsi * cosTheta},
    };
    // Written so that a solution that is no number fails.
    return std::ranges::all_of(pairs,
                               [](const auto &pair) { return std::abs(pair.first - pair.second) <= 0.0005f; })
               ? 1
               : 0;
}

int rot2euler(const Matrix3f &r, RotationLists &lists)
{
    lists = RotationLists{};
    const float theta1 = -std::asin(r[6]);
    std::array<Candidate, 8> found{};
    std::size_t count = 0;
    collect(r, theta1, found, count);
    collect(r, piSingle - theta1, found, count);
    if (count == 0)
        return rot2euler1(r, lists.psi[0], lists.theta[0], lists.phi[0]);
    sortBySize(std::span(found).first(count));
    for (std::size_t i = 0; i < count; ++i) {
        lists.psi[i] = found[i].psi * degreesSingle;
        lists.theta[i] = found[i].theta * degreesSingle;
        lists.phi[i] = found[i].phi * degreesSingle;
    }
    return static_cast<int>(count);
}

int rot2euler1(const Matrix3f &r, float &psi, float &theta, float &phi)
{
    // r[6] can pass 1 by a rounding. The signs below are not those of eulerTest, on purpose.
    const float angle = -std::asin(std::clamp(r[6], -1.0f, 1.0f));
    const float c = std::cos(angle);
    theta = angle * degreesSingle;
    if (std::abs(c) < 0.005f) {
        psi = 0.0f;
        phi = -std::atan2(r[1], r[4]) * degreesSingle;
    } else {
        psi = std::atan2(-r[7] / c, r[8] / c) * degreesSingle;
        phi = -std::atan2(-r[3] / c, r[0] / c) * degreesSingle;
    }
    return 1;
}

} // namespace trelm
