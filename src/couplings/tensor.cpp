#include "couplings/tensor.h"

#include "support/numerics/numbers.h"
#include "support/text/text.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace trelm {
namespace {

// Of the spherical harmonics of rank 2.
constexpr double magnitudeNorm = 1.67551608;            ///< 8 pi / 15
constexpr double axialFactor = 1.585330918136652;       ///< root of 4 pi / 5
constexpr double transverseFactor = 1.2944172742975892; ///< root of 8 pi / 15

/// Diagonalises and sorts. Fails after a message.
Status solveEigensystem(const Matrix3d &matrix, int yzFlag, TensorAnalysis &analysis, Messages &messages)
{
    if (jacobimz(matrix, analysis.eigVal, analysis.eigVec, messages) != Status::ok)
        return Status::failed;
    sort_eigensystem(yzFlag, analysis.eigVal, analysis.eigVec);
    pca_tensor(yzFlag, analysis.eigVal, analysis.da, analysis.dr);
    return Status::ok;
}

void exchange(std::size_t i, std::size_t j, std::array<double, 3> &eigVal, Matrix3d &eigVec)
{
    std::swap(eigVal[i], eigVal[j]);
    for (std::size_t row = 0; row < 3; ++row)
        std::swap(eigVec[row * 3 + i], eigVec[row * 3 + j]);
}

/// The six elements of a symmetric matrix, single precision.
struct Symmetric {
    explicit Symmetric(const SaupeValues &s)
        : xx(-0.5f * (s[0] - s[1])), yy(-0.5f * (s[0] + s[1])), zz(s[0]), xy(s[2]), xz(s[3]), yz(s[4])
    {
    }
    float xx, yy, zz, xy, xz, yz;
};

float inner(const Symmetric &a, const Symmetric &b)
{
    return a.xx * b.xx + a.yy * b.yy + a.zz * b.zz + 2.0f * a.xy * b.xy + 2.0f * a.xz * b.xz +
           2.0f * a.yz * b.yz;
}

} // namespace

Matrix3d saupeMatrix(const Saupe &saupe)
{
    const double sxx = -0.5 * (saupe[0] - saupe[1]);
    const double syy = -0.5 * (saupe[0] + saupe[1]);
    return {sxx, saupe[2], saupe[3], saupe[2], syy, saupe[4], saupe[3], saupe[4], saupe[0]};
}

Status analyzeSaupe(const Saupe &saupe, int yzFlag, int eulerFlag, TensorAnalysis &analysis,
                    Messages &messages)
{
    analysis = TensorAnalysis{};
    if (solveEigensystem(saupeMatrix(saupe), yzFlag, analysis, messages) != Status::ok)
        return Status::failed;
    if (eulerFlag != 0)
        eigVec2euler(analysis.eigVec, analysis.euler);
    irreducRepres(saupe, analysis.gMag, analysis.irrSaupe);
    return Status::ok;
}

Status analyzeMatrix3D(const Matrix3d &matrix, int yzFlag, TensorAnalysis &analysis, Messages &messages)
{
    analysis = TensorAnalysis{};
    if (solveEigensystem(matrix, yzFlag, analysis, messages) != Status::ok)
        return Status::failed;
    eigVec2euler(analysis.eigVec, analysis.euler);
    return Status::ok;
}

void sort_eigensystem(int yzFlag, std::array<double, 3> &eigVal, Matrix3d &eigVec)
{
    for (const auto &[i, j] : {std::pair<std::size_t, std::size_t>{0, 1}, {0, 2}, {1, 2}})
        if (std::abs(eigVal[j]) > std::abs(eigVal[i]))
            exchange(i, j, eigVal, eigVec);
    if (yzFlag != 0)
        exchange(0, 1, eigVal, eigVec);
}

void pca_tensor(int yzFlag, const std::array<double, 3> &eigVal, double &da, double &dr)
{
    double big = eigVal[0], mid = eigVal[1], small = eigVal[2];
    if (std::abs(mid) > std::abs(big))
        std::swap(big, mid);
    if (std::abs(small) > std::abs(big))
        std::swap(big, small);
    if (std::abs(small) > std::abs(mid))
        std::swap(mid, small);
    if (yzFlag != 0)
        std::swap(big, mid);
    da = (big - (mid + small) / 2.0) / 3.0;
    dr = (small - mid) / 3.0;
}

void irreducRepres(const Saupe &saupe, double &genMagnitude, Saupe &irrSaupe)
{
    const Matrix3d m = saupeMatrix(saupe);
    const double sxx = m[0], syy = m[4], szz = m[8], sxy = m[1], sxz = m[2], syz = m[5];
    genMagnitude =
        std::sqrt((sxx * sxx + syy * syy + szz * szz + 2.0 * sxy * sxy + 2.0 * sxz * sxz + 2.0 * syz * syz) *
                  magnitudeNorm);
    irrSaupe = {axialFactor * szz, -transverseFactor * sxz, transverseFactor * syz,
                transverseFactor * (sxx + szz / 2.0), -transverseFactor * sxy};
}

void irrCollinarity(const SaupeValues &saupe1, const SaupeValues &saupe2, float &dcos, float &angle)
{
    const Symmetric a(saupe1), b(saupe2);
    // Rounded once, so that a vector and itself are collinear to the bit.
    const auto norms = static_cast<float>(std::sqrt(double{inner(a, a)}) * std::sqrt(double{inner(b, b)}));
    dcos = norms != 0.0f ? inner(a, b) / norms : 0.0f;
    angle = 0.0f;
    if (dcos > -1.0f && dcos < 1.0f)
        angle = static_cast<float>(
            90.0 - std::atan2(static_cast<double>(dcos), std::sqrt(1.0 - static_cast<double>(dcos) * dcos)) *
                       degreesOfRadian);
}

} // namespace trelm
