#include "support/numerics/svd.h"

#include "ground/alloc.h"
#include "support/numerics/matrix_view.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <utility>

namespace trelm {

namespace {

/// What one decomposition works on.
struct Work {
    MatrixView u, v;
    float *w;   ///< diagonal of the bidiagonal form, in the end the singular values
    float *rv1; ///< its superdiagonal: rv1[i] stands above w[i]
    float norm; ///< what does not change this number when added to it counts as 0
};

float pythag(float a, float b)
{
    const float larger = std::max(std::fabs(a), std::fabs(b));
    const float smaller = std::min(std::fabs(a), std::fabs(b));
    if (larger == 0.0f)
        return 0.0f;
    const float ratio = smaller / larger;
    return larger * std::sqrt(1.0f + ratio * ratio);
}

/// Householder reflection that clears column i below the diagonal. Returns the diagonal value that is left.
float reflectColumn(MatrixView a, int i)
{
    float scale = 0.0f;
    for (int k = i; k < a.rows; ++k)
        scale += std::fabs(a(k, i));
    if (scale == 0.0f)
        return 0.0f;
    float s = 0.0f;
    for (int k = i; k < a.rows; ++k) {
        a(k, i) /= scale;
        s += a(k, i) * a(k, i);
    }
    const float f = a(i, i);
    const float g = -std::copysign(std::sqrt(s), f);
    const float h = f * g - s;
    a(i, i) = f - g;
    for (int j = i + 1; j < a.columns; ++j) {
        float sum = 0.0f;
        for (int k = i; k < a.rows; ++k)
            sum += a(k, i) * a(k, j);
        const float factor = sum / h;
        for (int k = i; k < a.rows; ++k)
            a(k, j) += factor * a(k, i);
    }
    for (int k = i; k < a.rows; ++k)
        a(k, i) *= scale;
    return scale * g;
}

/// Householder reflection that clears row i right of the superdiagonal. Returns the superdiagonal value that
/// is left; rv1 from i + 1 on is room to work in.
float reflectRow(MatrixView a, int i, float *rv1)
{
    float scale = 0.0f;
    for (int k = i + 1; k < a.columns; ++k)
        scale += std::fabs(a(i, k));
    if (scale == 0.0f)
        return 0.0f;
    float s = 0.0f;
    for (int k = i + 1; k < a.columns; ++k) {
        a(i, k) /= scale;
        s += a(i, k) * a(i, k);
    }
    const float f = a(i, i + 1);
    const float g = -std::copysign(std::sqrt(s), f);
    const float h = f * g - s;
    a(i, i + 1) = f - g;
    for (int k = i + 1; k < a.columns; ++k)
        rv1[k] = a(i, k) / h;
    for (int j = i + 1; j < a.rows; ++j) {
        float sum = 0.0f;
        for (int k = i + 1; k < a.columns; ++k)
            sum += a(j, k) * a(i, k);
        for (int k = i + 1; k < a.columns; ++k)
            a(j, k) += sum * rv1[k];
    }
    for (int k = i + 1; k < a.columns; ++k)
        a(i, k) *= scale;
    return scale * g;
}

void bidiagonalise(Work &work)
{
    const int n = work.u.columns;
    float above = 0.0f;
    work.norm = 0.0f;
    for (int i = 0; i < n; ++i) {
        work.rv1[i] = above;
        work.w[i] = i < work.u.rows ? reflectColumn(work.u, i) : 0.0f;
        above = i < work.u.rows && i < n - 1 ? reflectRow(work.u, i, work.rv1) : 0.0f;
        work.norm = std::max(work.norm, std::fabs(work.w[i]) + std::fabs(work.rv1[i]));
    }
}

/// Multiplies the row reflections into v.
void accumulateRight(const Work &work)
{
    const MatrixView a = work.u, v = work.v;
    const int n = a.columns;
    for (int i = n - 1; i >= 0; --i) {
        if (i < n - 1 && work.rv1[i + 1] != 0.0f) {
            // Two divisions, as the product of the divisors could underflow.
            for (int j = i + 1; j < n; ++j)
                v(j, i) = (a(i, j) / a(i, i + 1)) / work.rv1[i + 1];
            for (int j = i + 1; j < n; ++j) {
                float sum = 0.0f;
                for (int k = i + 1; k < n; ++k)
                    sum += a(i, k) * v(k, j);
                for (int k = i + 1; k < n; ++k)
                    v(k, j) += sum * v(k, i);
            }
        }
        for (int j = i + 1; j < n; ++j)
            v(i, j) = v(j, i) = 0.0f;
        v(i, i) = 1.0f;
    }
}

/// Multiplies the column reflections into u.
void accumulateLeft(const Work &work)
{
    const MatrixView a = work.u;
    for (int i = std::min(a.rows, a.columns) - 1; i >= 0; --i) {
        for (int j = i + 1; j < a.columns; ++j)
            a(i, j) = 0.0f;
        const float inverse = work.w[i] != 0.0f ? 1.0f / work.w[i] : 0.0f;
        for (int j = i + 1; j < a.columns && inverse != 0.0f; ++j) {
            float sum = 0.0f;
            for (int k = i + 1; k < a.rows; ++k)
                sum += a(k, i) * a(k, j);
            const float factor = (sum / a(i, i)) * inverse;
            for (int k = i; k < a.rows; ++k)
                a(k, j) += factor * a(k, i);
        }
        for (int k = i; k < a.rows; ++k)
            a(k, i) *= inverse;
        a(i, i) += 1.0f;
    }
}

void rotateColumns(MatrixView a, int j, int i, float c, float s)
{
    for (int k = 0; k < a.rows; ++k) {
        const float x = a(k, j), z = a(k, i);
        a(k, j) = x * c + z * s;
        a(k, i) = z * c - x * s;
    }
}

/// The diagonal value at l - 1 is 0: rotations take the superdiagonal value at l out of the block l to k.
void cancel(const Work &work, int l, int k)
{
    float c = 0.0f, s = 1.0f;
    for (int i = l; i <= k; ++i) {
        const float f = s * work.rv1[i];
        work.rv1[i] = c * work.rv1[i];
        if (std::fabs(f) + work.norm == work.norm)
            return;
        const float g = work.w[i];
        const float h = pythag(f, g);
        work.w[i] = h;
        c = g / h;
        s = -f / h;
        rotateColumns(work.u, l - 1, i, c, s);
    }
}

/// Where the block that ends at k begins: a superdiagonal value that is 0, or is made so here.
int splitPoint(const Work &work, int k)
{
    for (int l = k; l > 0; --l) {
        if (std::fabs(work.rv1[l]) + work.norm == work.norm)
            return l;
        if (std::fabs(work.w[l - 1]) + work.norm == work.norm) {
            cancel(work, l, k);
            return l;
        }
    }
    return 0;
}

/// One implicit QR sweep over the block l to k, with the shift from its last 2 by 2 minor.
void qrSweep(const Work &work, int l, int k)
{
    float *w = work.w, *rv1 = work.rv1;
    float x = w[l];
    const float y0 = w[k - 1], z0 = w[k], g0 = rv1[k - 1], h0 = rv1[k];
    float f = ((y0 - z0) * (y0 + z0) + (g0 - h0) * (g0 + h0)) / (2.0f * h0 * y0);
    const float root = pythag(f, 1.0f);
    f = ((x - z0) * (x + z0) + h0 * (y0 / (f + std::copysign(root, f)) - h0)) / x;
    float c = 1.0f, s = 1.0f;
    for (int j = l; j < k; ++j) {
        const int i = j + 1;
        float g = c * rv1[i], h = s * rv1[i], y = w[i];
        float z = pythag(f, h);
        rv1[j] = z;
        c = z != 0.0f ? f / z : 1.0f;
        s = z != 0.0f ? h / z : 0.0f;
        f = x * c + g * s;
        g = g * c - x * s;
        h = y * s;
        y *= c;
        rotateColumns(work.v, j, i, c, s);
        z = pythag(f, h);
        w[j] = z;
        if (z != 0.0f) {
            c = f / z;
            s = h / z;
        }
        f = c * g + s * y;
        x = c * y - s * g;
        rotateColumns(work.u, j, i, c, s);
    }
    rv1[l] = 0.0f;
    rv1[k] = f;
    w[k] = x;
}

/// Singular values are positive by convention; the sign goes into v.
void makePositive(const Work &work, int k)
{
    if (!(work.w[k] < 0.0f))
        return;
    work.w[k] = -work.w[k];
    for (int j = 0; j < work.v.rows; ++j)
        work.v(j, k) = -work.v(j, k);
}

/// Room for a shape; u has as many rows as columns at least. Fails if there is no memory.
Status prepare(SvdWork &work, int length, int nCoef)
{
    if (work.lastLength == length && work.lastOrder == nCoef)
        return Status::ok;
    work = SvdWork{};
    const auto n = static_cast<std::size_t>(nCoef);
    const auto rows = static_cast<std::size_t>(std::max(length, nCoef));
    const std::pair<Block<float> *, std::size_t> sizes[] = {
        {&work.matrix, static_cast<std::size_t>(length) * n},
        {&work.u, rows * n},
        {&work.v, n * n},
        {&work.w, n},
        {&work.rv1, n},
        {&work.tmp, n},
        {&work.rhs, static_cast<std::size_t>(length)}};
    for (const auto &[block, size] : sizes) {
        *block = Block<float>("svd", size);
        if (!*block) {
            work = SvdWork{};
            return Status::failed;
        }
    }
    work.lastLength = length;
    work.lastOrder = nCoef;
    return Status::ok;
}

/// Decomposes the matrix and sets singular values below 1e-5 of the largest to 0. Nothing to do when it is
/// the matrix of the last call: noise sampling changes the right-hand side only.
void decompose(SvdWork &work, std::span<const float> x)
{
    const std::size_t bytes = work.matrix.length() * sizeof(float);
    if (work.decomposed && std::memcmp(work.matrix.data(), x.data(), bytes) == 0)
        return;
    std::memcpy(work.matrix.data(), x.data(), bytes);
    const std::span<float> u = work.u.span();
    std::ranges::fill(u, 0.0f);
    std::memcpy(u.data(), x.data(), bytes);
    svdcmpUser(u, std::max(work.lastLength, work.lastOrder), work.lastOrder, work.w.span(), work.v.span(),
               work.rv1.span());
    float wMax = 0.0f;
    for (float value : work.w.span())
        wMax = std::max(wMax, std::fabs(value));
    const float thresh = wMax * 1.0e-5f;
    for (float &value : work.w.span())
        if (value < thresh)
            value = 0.0f;
    work.decomposed = true;
}

/// tmp = u^T rhs. The sums of all columns go side by side, so that they do not wait for each other; a fixed
/// number of columns stays in registers.
template <int columns>
void projectFixed(const float *u, std::span<const float> rhs, float *tmp)
{
    std::array<float, columns> sums = {};
    for (const float value : rhs) {
        for (int j = 0; j < columns; ++j)
            sums[static_cast<std::size_t>(j)] += u[j] * value;
        u += columns;
    }
    std::ranges::copy(sums, tmp);
}

void project(const MatrixView &u, std::span<const float> rhs, float *tmp)
{
    if (u.columns == 5) // a Saupe vector
        return projectFixed<5>(u.data, rhs, tmp);
    std::fill_n(tmp, u.columns, 0.0f);
    for (int i = 0; i < u.rows; ++i)
        for (int j = 0; j < u.columns; ++j)
            tmp[j] += u(i, j) * rhs[static_cast<std::size_t>(i)];
}

void backSubstitute(SvdWork &work, std::span<float> coef)
{
    const int n = work.lastOrder;
    const MatrixView u{work.u.data(), work.lastLength, n}, v{work.v.data(), n, n};
    const float *w = work.w.data();
    float *tmp = work.tmp.data();
    project(u, work.rhs.span(), tmp);
    for (int j = 0; j < n; ++j)
        tmp[j] = w[j] != 0.0f ? tmp[j] / w[j] : 0.0f;
    for (int i = 0; i < n; ++i) {
        float sum = 0.0f;
        for (int j = 0; j < n; ++j)
            sum += v(i, j) * tmp[j];
        coef[static_cast<std::size_t>(i)] = sum;
    }
}

} // namespace

void svdcmpUser(std::span<float> a, int m, int n, std::span<float> w, std::span<float> v,
                std::span<float> rv1)
{
    constexpr int maxSweeps = 1000;
    Work work{{a.data(), m, n}, {v.data(), n, n}, w.data(), rv1.data(), 0.0f};
    bidiagonalise(work);
    accumulateRight(work);
    accumulateLeft(work);
    for (int k = n - 1; k >= 0; --k)
        for (int sweep = 0; sweep < maxSweeps; ++sweep) {
            const int l = splitPoint(work, k);
            if (l == k) {
                makePositive(work, k);
                break;
            }
            qrSweep(work, l, k);
        }
}

Status svdLSMat(std::span<const float> x, std::span<const float> y, std::span<float> coef, SvdWork &work)
{
    if (y.empty() || coef.empty() ||
        prepare(work, static_cast<int>(y.size()), static_cast<int>(coef.size())) != Status::ok)
        return Status::failed;
    std::ranges::copy(y, work.rhs.data());
    decompose(work, x);
    backSubstitute(work, coef);
    return Status::ok;
}

} // namespace trelm
