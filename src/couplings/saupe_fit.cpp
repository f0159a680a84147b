// The linear engine: a Saupe vector from couplings, couplings from a Saupe vector, and its Euler angles.
#include "couplings/design.h"
#include "couplings/fit.h"

#include "ground/alloc.h"
#include "structure/transform.h"
#include "support/numerics/jacobi.h"
#include "support/numerics/svd.h"
#include "support/text/text.h"

#include <array>
#include <cmath>

namespace trelm {
namespace {

/// The arrays of a fit; they stay from fit to fit.
struct Workspace {
    Block<float> xWork, yWork; ///< design matrix and right-hand side
    int workSize = 0;          ///< entries they hold
};

Workspace workspace;

/// Writes row k of the weighted design matrix and right-hand side.
void designRow(const FitVectors &vectors, std::size_t k)
{
    const RowScale scale = rowScale(vectors, k);
    const SaupeValues terms = geometryTerms(vectors, k);
    for (std::size_t j = 0; j < saupeCount; ++j)
        workspace.xWork[k * saupeCount + j] = scale.design * terms[j];
    workspace.yWork[k] = scale.coupling * vectors.dVal[k];
}

} // namespace

SaupeValues geometryTerms(const FitVectors &vectors, std::size_t k)
{
    const float xIJ = vectors.xJ[k] - vectors.xI[k];
    const float yIJ = vectors.yJ[k] - vectors.yI[k];
    const float zIJ = vectors.zJ[k] - vectors.zI[k];
    const float r = std::sqrt(xIJ * xIJ + yIJ * yIJ + zIJ * zIJ);
    const float rinv = r > 0.0f ? 1.0f / r : 0.0f;
    const float x = xIJ * rinv, y = yIJ * rinv, z = zIJ * rinv;
    return {(3.0f * z * z - 1.0f) / 2.0f, (x * x - y * y) / 2.0f, 2.0f * x * y, 2.0f * x * z, 2.0f * y * z};
}

RowScale rowScale(const FitVectors &vectors, std::size_t k)
{
    const float di = vectors.diVal[k];
    const float a = di != 0.0f ? 1.0f / std::fabs(di) : 0.0f;
    const float spread = a * vectors.dSigma[k];
    const float wgt = spread != 0.0f ? 1.0f / spread : 1.0f;
    return {wgt, wgt * a};
}

void dipolarNull()
{
    workspace = Workspace{};
}

int dipolarInit(int size)
{
    if (workspace.workSize > size)
        return 0;
    dipolarFree();
    if (size < 0)
        return 0;
    const auto entries = static_cast<std::size_t>(size);
    workspace.xWork = Block<float>("dipolar", entries * saupeCount + saupeCount);
    workspace.yWork = Block<float>("dipolar", entries + 1);
    if (!workspace.xWork || !workspace.yWork) {
        workspace = Workspace{};
        return complain("GORVAT Error Allocating Dipolar Workspace.\n");
    }
    workspace.workSize = size;
    return 0;
}

void dipolarFree()
{
    workspace = Workspace{};
    svdPolyFree();
}

int findS(const FitVectors &vectors, SaupeValues &saupe, SaupeValues &dSaupe)
{
    saupe = {};
    dSaupe = {};
    const std::size_t count = vectors.xI.size();
    if (count < fewestCouplings)
        return 1;
    // Asked only when it is too small: a fit of the last size keeps its arrays and its decomposition.
    if (static_cast<std::size_t>(workspace.workSize) < count && dipolarInit(static_cast<int>(count)) != 0)
        return 1;
    for (std::size_t k = 0; k < count; ++k)
        designRow(vectors, k);
    std::array<float, saupeCount *saupeCount> covar = {};
    if (svdLSMat(workspace.xWork.span().first(count * saupeCount), workspace.yWork.span().first(count),
                 static_cast<int>(count), static_cast<int>(saupeCount), saupe, covar, 1) != 0) {
        saupe = {};
        return 1;
    }
    for (std::size_t j = 0; j < saupeCount; ++j)
        dSaupe[j] = std::sqrt(covar[j * saupeCount + j]);
    return 0;
}

void findD(const FitVectors &vectors, const SaupeValues &saupe, const SaupeValues &dSaupe)
{
    for (std::size_t k = 0; k < vectors.xI.size(); ++k) {
        const SaupeValues terms = geometryTerms(vectors, k);
        float sum = 0.0f, variance = 0.0f;
        for (std::size_t j = 0; j < saupeCount; ++j) {
            sum += terms[j] * saupe[j];
            variance += terms[j] * terms[j] * dSaupe[j] * dSaupe[j];
        }
        const float scale = std::fabs(vectors.diVal[k]);
        vectors.dVal[k] = sum * scale;
        vectors.dSigma[k] = std::sqrt(variance) * scale;
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
    if (diag3By3(matrix, values, vectors) != 0)
        return 0;
    eigVal = values; // as the diagonaliser left them; the sorted ones give da and dr
    eigsrt3By3NegRevTP(values, vectors);
    da = (values[2] - (values[1] + values[0]) / 2.0f) / 3.0f;
    dr = (values[0] - values[1]) / 3.0f;
    return rot2euler(vectors, lists);
}

void euler2saupe(SaupeValues &saupe, float psi, float theta, float phi, float da, float dr)
{
    pdb3dReset();
    pdb3dAppendRotation0(psi, theta, phi);
    Matrix4 r = {};
    pdb3dCopyCurrentMatrix(r);
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
