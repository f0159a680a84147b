#include "structure/transform.h"

#include "support/numerics/numbers.h"

#include <cmath>

namespace trelm {
namespace {

constexpr Matrix4 identity = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};

Matrix4 currentMatrix = identity;

void append(const Matrix4 &m)
{
    m4x4Mult(m, currentMatrix);
}

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

void m4x4SetIdentity(Matrix4 &m)
{
    m = identity;
}

void m4x4Transpose(Matrix4 &dest, const Matrix4 &src)
{
    Matrix4 turned;
    for (std::size_t i = 0; i < 4; ++i)
        for (std::size_t j = 0; j < 4; ++j)
            turned[i * 4 + j] = src[j * 4 + i];
    dest = turned;
}

void m4x4Mult(const Matrix4 &a, Matrix4 &b)
{
    Matrix4 product;
    for (std::size_t i = 0; i < 4; ++i) {
        for (std::size_t j = 0; j < 4; ++j) {
            float sum = 0.0f;
            for (std::size_t k = 0; k < 4; ++k)
                sum += a[i * 4 + k] * b[k * 4 + j];
            product[i * 4 + j] = sum;
        }
    }
    b = product;
}

void pdb3dReset()
{
    m4x4SetIdentity(currentMatrix);
}

void pdb3dCopyCurrentMatrix(Matrix4 &m)
{
    m = currentMatrix;
}

void pdb3dAppendTranslation(float tx, float ty, float tz)
{
    append({1, 0, 0, tx, 0, 1, 0, ty, 0, 0, 1, tz, 0, 0, 0, 1});
}

void pdb3dAppendRotation0(float psi, float theta, float phi)
{
    const Turn x(psi), y(theta), z(phi);
    append({1, 0, 0, 0, 0, x.c, -x.s, 0, 0, x.s, x.c, 0, 0, 0, 0, 1});
    append({y.c, 0, y.s, 0, 0, 1, 0, 0, -y.s, 0, y.c, 0, 0, 0, 0, 1});
    append({z.c, -z.s, 0, 0, z.s, z.c, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1});
}

void pdb3dAppendRotation2(float xa, float ya, float za, float xb, float yb, float zb, float theta)
{
    const double dx = static_cast<double>(xb) - xa;
    const double dy = static_cast<double>(yb) - ya;
    const double dz = static_cast<double>(zb) - za;
    const double length = std::sqrt(dx * dx + dy * dy + dz * dz);
    if (length == 0.0)
        return;
    const double half = pi * static_cast<double>(theta) / 360.0;
    const double c = std::cos(half);
    const double qx = dx / length * std::sin(half);
    const double qy = dy / length * std::sin(half);
    const double qz = dz / length * std::sin(half);
    const auto f = [](double value) { return static_cast<float>(value); };
    pdb3dAppendTranslation(-xa, -ya, -za);
    append({f(1 - 2 * qy * qy - 2 * qz * qz), f(2 * qx * qy - 2 * c * qz), f(2 * qx * qz + 2 * c * qy), 0,
            f(2 * qx * qy + 2 * c * qz), f(1 - 2 * qx * qx - 2 * qz * qz), f(2 * qy * qz - 2 * c * qx), 0,
            f(2 * qx * qz - 2 * c * qy), f(2 * qy * qz + 2 * c * qx), f(1 - 2 * qx * qx - 2 * qy * qy), 0, //
            0, 0, 0, 1});
    pdb3dAppendTranslation(xa, ya, za);
}

void pdb3dCoordTransform(std::span<Coord3D> coords)
{
    const Matrix4 &m = currentMatrix;
    for (Coord3D &r : coords) {
        const Coord3D old = r;
        r.x = m[0] * old.x + m[1] * old.y + m[2] * old.z + m[3];
        r.y = m[4] * old.x + m[5] * old.y + m[6] * old.z + m[7];
        r.z = m[8] * old.x + m[9] * old.y + m[10] * old.z + m[11];
    }
}

} // namespace trelm
