#include "support/numerics/symmetric_eigen.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace trelm {
namespace {

/// A rotation in the plane of two coordinates.
struct PlaneTurn {
    double cosine, sine;
};

/// The turn that makes the element (p, q) zero; of the two the smaller one.
PlaneTurn clearingTurn(double app, double aqq, double apq)
{
    const double ratio = (aqq - app) / (2.0 * apq);
    const double tangent = (ratio >= 0.0 ? 1.0 : -1.0) / (std::fabs(ratio) + std::sqrt(1.0 + ratio * ratio));
    const double cosine = 1.0 / std::sqrt(1.0 + tangent * tangent);
    return {cosine, tangent * cosine};
}

void turnPair(double &first, double &second, PlaneTurn turn)
{
    const double old = first;
    first = turn.cosine * old - turn.sine * second;
    second = turn.sine * old + turn.cosine * second;
}

void clearElement(std::span<double> a, std::span<double> vectors, std::size_t n, std::size_t p, std::size_t q)
{
    const PlaneTurn turn = clearingTurn(a[p * n + p], a[q * n + q], a[p * n + q]);
    for (std::size_t k = 0; k < n; ++k)
        turnPair(a[k * n + p], a[k * n + q], turn);
    for (std::size_t k = 0; k < n; ++k)
        turnPair(a[p * n + k], a[q * n + k], turn);
    for (std::size_t k = 0; k < n; ++k)
        turnPair(vectors[k * n + p], vectors[k * n + q], turn);
}

} // namespace

Status symmetricEigen(std::span<double> a, std::span<double> values, std::span<double> vectors)
{
    constexpr int maxSweep = 50; // five by five take 5 to 8
    const std::size_t n = values.size();
    std::ranges::fill(vectors, 0.0);
    for (std::size_t k = 0; k < n; ++k)
        vectors[k * n + k] = 1.0;
    double rest = 1.0;
    for (int sweep = 0; sweep < maxSweep && rest != 0.0; ++sweep) {
        rest = 0.0;
        for (std::size_t p = 0; p < n; ++p)
            for (std::size_t q = p + 1; q < n; ++q) {
                const double size = std::fabs(a[p * n + p]) + std::fabs(a[q * n + q]);
                if (size + std::fabs(a[p * n + q]) == size) { // below the last place of the diagonal
                    a[p * n + q] = a[q * n + p] = 0.0;
                    continue;
                }
                rest += std::fabs(a[p * n + q]);
                clearElement(a, vectors, n, p, q);
            }
    }
    for (std::size_t k = 0; k < n; ++k)
        values[k] = a[k * n + k];
    return rest == 0.0 ? Status::ok : Status::noSolution;
}

} // namespace trelm
