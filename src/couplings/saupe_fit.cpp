// The linear engine: a Saupe vector from couplings, couplings from a Saupe vector, and its Euler angles.
#include "couplings/design.h"
#include "couplings/fit.h"

#include "ground/alloc.h"
#include "structure/transform.h"
#include "support/numerics/jacobi.h"
#include "support/numerics/svd.h"

#include <array>
#include <cmath>

namespace trelm {
namespace {

/// Room for the entries of a fit. Asked for only when it is too small: a fit of the last size keeps its
/// arrays and its decomposition.
Status makeRoomFor(FitWork &work, std::size_t entries, Messages &messages)
{
    if (work.y.length() > entries)
        return Status::ok;
    work.svd = SvdWork{};
    work.x.release();
    work.y.release();
    work.x = Block<float>("dipolar", entries * saupeCount + saupeCount);
    work.y = Block<float>("dipolar", entries + 1);
    if (work.x && work.y)
        return Status::ok;
    work.x.release();
    work.y.release();
    return messages.fail("GORVAT Error Allocating Dipolar Workspace.\n");
}

/// Writes row k of the weighted design matrix and right-hand side.
void designRow(const FitVectors &vectors, std::size_t k, FitWork &work)
{
    const RowScale scale = rowScale(vectors, k);
    const SaupeValues terms = geometryTerms(vectors, k);
    for (std::size_t j = 0; j < saupeCount; ++j)
        work.x[k * saupeCount + j] = scale.design * terms[j];
    work.y[k] = scale.coupling * vectors.dVal[k];
}

} // namespace

SaupeValues termsBetween(const Place &from, const Place &to)
{
    const float xIJ = to[0] - from[0];
    const float yIJ = to[1] - from[1];
    const float zIJ = to[2] - from[2];
    const float r = std::sqrt(xIJ * xIJ + yIJ * yIJ + zIJ * zIJ);
    const float rinv = r > 0.0f ? 1.0f / r : 0.0f;
    const float x = xIJ * rinv, y = yIJ * rinv, z = zIJ * rinv;
    return {(3.0f * z * z - 1.0f) / 2.0f, (x * x - y * y) / 2.0f, 2.0f * x * y, 2.0f * x * z, 2.0f * y * z};
}

SaupeValues geometryTerms(const FitVectors &vectors, std::size_t k)
{
    return termsBetween({vectors.xI[k], vectors.yI[k], vectors.zI[k]},
                        {vectors.xJ[k], vectors.yJ[k], vectors.zJ[k]});
}

RowScale scaleOf(float di, float sigma)
{
    const float a = di != 0.0f ? 1.0f / std::fabs(di) : 0.0f;
    const float spread = a * sigma;
    const float wgt = spread != 0.0f ? 1.0f / spread : 1.0f;
    return {wgt, wgt * a};
}

RowScale rowScale(const FitVectors &vectors, std::size_t k)
{
    return scaleOf(vectors.diVal[k], vectors.dSigma[k]);
}

Place middleOf(std::span<const Coord3D> coords, std::span<const std::uint32_t> atoms)
{
    Place sum = {};
    const auto count = static_cast<float>(atoms.size());
    for (const std::uint32_t place : atoms) {
        const Coord3D &atom = coords[place];
        sum = {sum[0] + atom.x / count, sum[1] + atom.y / count, sum[2] + atom.z / count};
    }
    return sum;
}

Status findS(const FitVectors &vectors, SaupeValues &saupe, FitWork &work, Messages &messages)
{
    saupe = {};
    const std::size_t count = vectors.xI.size();
    if (count < fewestCouplings)
        return Status::noSolution;
    if (makeRoomFor(work, count, messages) != Status::ok)
        return Status::failed;
    for (std::size_t k = 0; k < count; ++k)
        designRow(vectors, k, work);
    return svdLSMat(work.x.span().first(count * saupeCount), work.y.span().first(count), saupe, work.svd);
}

void findD(const FitVectors &vectors, const SaupeValues &saupe)
{
    for (std::size_t k = 0; k < vectors.xI.size(); ++k) {
        const SaupeValues terms = geometryTerms(vectors, k);
        float sum = 0.0f;
        for (std::size_t j = 0; j < saupeCount; ++j)
            sum += terms[j] * saupe[j];
        vectors.dVal[k] = sum * std::fabs(vectors.diVal[k]);
    }
}

int saupe2euler(const SaupeValues &saupe, RotationLists &lists, std::array<float, 3> &eigVal, float &da,
                float &dr)
{
    lists = RotationLists{};
    eigVal = {};
    da = dr = 0.0f;
    const float xx = -0.5f * (saupe[0] - saupe[1]), yy = -0.5f * (saupe[0] + saupe[1]);
    const Matrix3f matrix = {xx, saupe[2], saupe[3], saupe[2], yy, saupe[4], saupe[3], saupe[4], saupe[0]};
    std::array<float, 3> values = {};
    Matrix3f vectors = {};
    if (diag3By3(matrix, values, vectors) != Status::ok)
        return 0;
    eigVal = values; // as the diagonaliser left them; the sorted ones give da and dr
    eigsrt3By3NegRevTP(values, vectors);
    da = (values[2] - (values[1] + values[0]) / 2.0f) / 3.0f;
    dr = (values[0] - values[1]) / 3.0f;
    return rot2euler(vectors, lists);
}

void euler2saupe(SaupeValues &saupe, float psi, float theta, float phi, float da, float dr)
{
    Transform turn;
    turn.appendRotation(psi, theta, phi);
    const Matrix4 &r = turn.m;
    const float diagonal[3] = {(-2.0f * da + 3.0f * dr) / 2.0f, (-2.0f * da - 3.0f * dr) / 2.0f, 2.0f * da};
    const auto element = [&](std::size_t row, std::size_t column) {
        float sum = 0.0f;
        for (std::size_t k = 0; k < 3; ++k)
            sum += r[4 * k + row] * diagonal[k] * r[4 * k + column];
        return sum;
    };
    saupe = {element(2, 2), element(0, 0) - element(1, 1), element(0, 1), element(0, 2), element(1, 2)};
}

} // namespace trelm
