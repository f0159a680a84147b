#include "assignment/cone.h"

#include "assignment/triangle.h"
#include "support/numerics/numbers.h"

#include <algorithm>
#include <cmath>

namespace trelm {
namespace {

using CornerFlags = std::array<bool, saupeCount>;

constexpr int mostExchanges = 12; ///< of corners, before what has been found is lengthened
constexpr double leastPivot = 1e-18;

/// x with K x = g for the corners that are on, 0 for the others. K = L E L^T, without a root.
FiveValues solveOn(const Cone &cone, const FiveValues &g, const CornerFlags &on)
{
    std::array<FiveValues, saupeCount> lower = {};
    FiveValues inverse = {}, x = {};
    for (std::size_t i = 0; i < saupeCount; ++i) {
        for (std::size_t j = 0; j <= i; ++j) {
            double sum = on[i] && on[j] ? cone.product[i][j] : (i == j ? 1.0 : 0.0);
            for (std::size_t k = 0; k < j; ++k)
                sum -= lower[i][k] * lower[j][k] * inverse[k];
            lower[i][j] = sum; // the factor times its pivot
        }
        inverse[i] = 1.0 / std::max(lower[i][i], leastPivot);
        x[i] = on[i] ? g[i] : 0.0;
        for (std::size_t k = 0; k < i; ++k)
            x[i] -= lower[i][k] * inverse[k] * x[k];
    }
    for (std::size_t i = saupeCount; i-- > 0;) {
        x[i] *= inverse[i];
        for (std::size_t k = 0; k < i; ++k)
            x[k] -= lower[i][k] * x[i];
    }
    return x;
}

/// Takes the corner that pulls the wrong way out, or one that is not reached in. Returns whether there was
/// one.
bool exchange(const Cone &cone, const FiveValues &g, const FiveValues &x, CornerFlags &on)
{
    const auto worst = std::ranges::min_element(x) - x.begin();
    if (x[worst] < 0.0) {
        on[worst] = false;
        return true;
    }
    std::size_t missed = saupeCount;
    double most = 1e-13 * std::fabs(g[0]);
    for (std::size_t i = 0; i < saupeCount; ++i) {
        double short_ = on[i] ? 0.0 : g[i];
        for (std::size_t k = 0; !on[i] && k < saupeCount; ++k)
            short_ -= cone.product[i][k] * x[k];
        if (short_ > most) {
            most = short_;
            missed = i;
        }
    }
    if (missed < saupeCount)
        on[missed] = true;
    return missed < saupeCount;
}

/// The eigenvalues of a symmetric matrix without trace, rising. Source: Smith, Commun. ACM 4 (1961) 168.
std::array<double, 3> eigenvaluesOf(const Matrix3d &m)
{
    constexpr double thirdTurn = 2.0943951023931957;
    const double square =
        m[0] * m[0] + m[4] * m[4] + m[8] * m[8] + 2.0 * (m[1] * m[1] + m[2] * m[2] + m[5] * m[5]);
    const double size = std::sqrt(square / 6.0);
    if (size == 0.0)
        return {};
    const double determinant = m[0] * (m[4] * m[8] - m[5] * m[5]) - m[1] * (m[1] * m[8] - m[5] * m[2]) +
                               m[2] * (m[1] * m[5] - m[4] * m[2]);
    const double angle = std::acos(std::clamp(determinant / (2.0 * size * size * size), -1.0, 1.0)) / 3.0;
    const double high = 2.0 * size * std::cos(angle), low = 2.0 * size * std::cos(angle + thirdTurn);
    return {low, -high - low, high};
}

/// A window with what the tensor of a fit in single precision can be off by.
struct WideWindow {
    double lowDa, highDa, lowR, highR;
};

WideWindow widen(const TensorWindow &window)
{
    constexpr double part = 1e-3;
    const double low = number(window.lowDa) / amideHertz, high = number(window.highDa) / amideHertz;
    const double slack = part * std::max(std::fabs(low), std::fabs(high));
    const double slackR = part;
    return {low - slack, high + slack, number(window.lowR) - slackR, number(window.highR) + slackR};
}

/// The lengths of tensors with a negative Azz, whose eigenvalues are within `reach` of these.
LengthRange negativeLengths(const WideWindow &window, const std::array<double, 3> &eigenvalues, double reach)
{
    constexpr LengthRange none = {1.0, 0.0};
    const double largest = -eigenvalues[0] + reach, smallest = std::max(0.0, -eigenvalues[0] - reach);
    if (window.lowDa >= 0.0 || largest < eigenvalues[2] - reach)
        return none;
    const double split = eigenvalues[2] - eigenvalues[1];
    if (split + 2.0 * reach < 1.5 * window.lowR * smallest ||
        split - 2.0 * reach > 1.5 * window.highR * largest)
        return none;
    // Da is half of Azz.
    const double least = std::max(0.0, -window.highDa), most = -window.lowDa;
    return {2.0 * least / largest, smallest > 0.0 ? 2.0 * most / smallest : infinity};
}

} // namespace

Cone makeCone(const std::array<const TensorVector *, saupeCount> &corners)
{
    Cone cone;
    for (std::size_t i = 0; i < saupeCount; ++i) {
        cone.corner[i] = *corners[i];
        for (std::size_t j = 0; j <= i; ++j)
            cone.product[i][j] = cone.product[j][i] = dot(cone.corner[i], cone.corner[j]);
    }
    return cone;
}

double shortestVector(const Cone &cone, const FiveValues &least)
{
    if (std::ranges::max(least) <= 0.0)
        return 0.0;
    CornerFlags on = {true, true, true, true, true};
    FiveValues x = solveOn(cone, least, on);
    for (int round = 0; round < mostExchanges && exchange(cone, least, x, on); ++round)
        x = solveOn(cone, least, on);
    TensorVector y = {};
    for (std::size_t i = 0; i < saupeCount; ++i)
        for (std::size_t k = 0; k < saupeCount; ++k)
            y[k] += std::max(0.0, x[i]) * cone.corner[i][k];
    double scale = 1.0;
    for (std::size_t i = 0; i < saupeCount; ++i) {
        const double reached = dot(y, cone.corner[i]);
        if (reached >= least[i])
            continue;
        if (!(reached > 0.0))
            return infinity;
        scale = std::max(scale, least[i] / reached);
    }
    return std::sqrt(dot(y, y)) * scale * (1.0 + 1e-14);
}

ConeEdge longestEdge(const Cone &cone)
{
    ConeEdge longest = {0, 1, -1.0};
    for (std::size_t i = 0; i < saupeCount; ++i)
        for (std::size_t j = i + 1; j < saupeCount; ++j)
            if (const double square = 2.0 - 2.0 * cone.product[i][j]; square > longest.square)
                longest = {i, j, square};
    return longest;
}

LengthRange lengthsInside(const TensorProblem &problem, const TensorWindow &window, const Cone &cone,
                          double spread)
{
    Saupe middle = {};
    std::array<Saupe, saupeCount> corners;
    for (std::size_t i = 0; i < saupeCount; ++i) {
        corners[i] = saupeOf(problem, cone.corner[i]);
        for (std::size_t k = 0; k < saupeCount; ++k)
            middle[k] += corners[i][k] / static_cast<double>(saupeCount);
    }
    double square = 0.0;
    for (Saupe &corner : corners) {
        for (std::size_t k = 0; k < saupeCount; ++k)
            corner[k] -= middle[k];
        // The square of the matrix's norm.
        square = std::max(square,
                          1.5 * corner[0] * corner[0] + 0.5 * corner[1] * corner[1] +
                              2.0 * (corner[2] * corner[2] + corner[3] * corner[3] + corner[4] * corner[4]));
    }
    const double reach = std::sqrt(square) * (1.0 + 1e-9);
    const std::array<double, 3> e = eigenvaluesOf(saupeMatrix(middle));
    const WideWindow wide = widen(window);
    const LengthRange negative = negativeLengths(wide, e, reach);
    const LengthRange positive =
        negativeLengths({-wide.highDa, -wide.lowDa, wide.lowR, wide.highR}, {-e[2], -e[1], -e[0]}, reach);
    // These hold for points of the corners' plane, from which a direction of length 1 is up to `spread` away.
    if (negative.low > negative.high)
        return {positive.low / spread, positive.high};
    if (positive.low > positive.high)
        return {negative.low / spread, negative.high};
    return {std::min(negative.low, positive.low) / spread, std::max(negative.high, positive.high)};
}

} // namespace trelm
