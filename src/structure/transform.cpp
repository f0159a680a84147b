#include "structure/transform.h"

#include "support/numerics/numbers.h"

#include <cmath>

namespace trelm {
namespace {

/// Cosine and sine of an angle in degrees.
struct Turn {
    explicit Turn(float degrees)
        : c(static_cast<float>(std::cos(pi * static_cast<double>(degrees) / 180.0))),
          s(static_cast<float>(std::sin(pi * static_cast<double>(degrees) / 180.0)))
    {
    }
    float c, s;
};

} // namespace

/// m becomes a times m.
void Transform::append(const Matrix4 &a)
{
    Matrix4 product;
    for (std::size_t i = 0; i < 4; ++i) {
        for (std::size_t j = 0; j < 4; ++j) {
            float sum = 0.0f;
            for (std::size_t k = 0; k < 4; ++k)
                sum += a[i * 4 + k] * m[k * 4 + j];
            product[i * 4 + j] = sum;
        }
    }
    m = product;
}

void Transform::appendTranslation(float tx, float ty, float tz)
{
    append({1, 0, 0, tx, 0, 1, 0, ty, 0, 0, 1, tz, 0, 0, 0, 1});
}

void Transform::appendRotation(float psi, float theta, float phi)
{
    const Turn x(psi), y(theta), z(phi);
    append({1, 0, 0, 0, 0, x.c, -x.s, 0, 0, x.s, x.c, 0, 0, 0, 0, 1});
    append({y.c, 0, y.s, 0, 0, 1, 0, 0, -y.s, 0, y.c, 0, 0, 0, 0, 1});
    append({z.c, -z.s, 0, 0, z.s, z.c, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1});
}

void Transform::appendRotation(const Coord3D &a, const Coord3D &b, float theta)
{
    const double dx = static_cast<double>(b.x) - a.x;
    const double dy = static_cast<double>(b.y) - a.y;
    const double dz = static_cast<double>(b.z) - a.z;
    const double length = std::sqrt(dx * dx + dy * dy + dz * dz);
    if (length == 0.0)
        return;
    const double half = pi * static_cast<double>(theta) / 360.0;
    const double c = std::cos(half);
    const double qx = dx / length * std::sin(half);
    const double qy = dy / length * std::sin(half);
    const double qz = dz / length * std::sin(half);
    const auto f = [](double value) { return static_cast<float>(value); };
    appendTranslation(-a.x, -a.y, -a.z);
    append({f(1 - 2 * qy * qy - 2 * qz * qz), f(2 * qx * qy - 2 * c * qz), f(2 * qx * qz + 2 * c * qy), 0,
            f(2 * qx * qy + 2 * c * qz), f(1 - 2 * qx * qx - 2 * qz * qz), f(2 * qy * qz - 2 * c * qx), 0,
            f(2 * qx * qz - 2 * c * qy), f(2 * qy * qz + 2 * c * qx), f(1 - 2 * qx * qx - 2 * qy * qy), 0, //
            0, 0, 0, 1});
    appendTranslation(a.x, a.y, a.z);
}

void Transform::apply(std::span<Coord3D> coords) const
{
    for (Coord3D &r : coords) {
        const Coord3D old = r;
        r.x = m[0] * old.x + m[1] * old.y + m[2] * old.z + m[3];
        r.y = m[4] * old.x + m[5] * old.y + m[6] * old.z + m[7];
        r.z = m[8] * old.x + m[9] * old.y + m[10] * old.z + m[11];
    }
}

} // namespace trelm
