#include "support/numerics/student.h"

#include <cmath>
#include <limits>
#include <numbers>

namespace trelm {

double studentTail(double t, int degrees)
{
    if (degrees < 1)
        return 1.0;
    const double angle = std::atan(std::fabs(t) / std::sqrt(static_cast<double>(degrees)));
    const double cosine = std::cos(angle), square = cosine * cosine;
    const bool isOdd = degrees % 2 != 0;
    // Each term is the one before times cos^2 and the next quotient of the two products.
    double term = isOdd ? cosine : 1.0, sum = 0.0;
    for (int k = isOdd ? 3 : 2; k <= degrees; k += 2) {
        sum += term;
        term *= square * (k - 1.0) / k;
    }
    const double inside =
        isOdd ? (angle + std::sin(angle) * sum) * 2.0 / std::numbers::pi : std::sin(angle) * sum;
    return std::fmax(0.0, 1.0 - inside);
}

double studentLimit(double tail, int degrees)
{
    if (degrees < 1)
        return std::numeric_limits<double>::infinity();
    double low = 0.0, high = 1.0;
    while (studentTail(high, degrees) > tail && high < 1e12)
        high *= 2.0;
    for (int halving = 0; halving < 60; ++halving) {
        const double middle = (low + high) / 2.0;
        (studentTail(middle, degrees) > tail ? low : high) = middle;
    }
    return high;
}

} // namespace trelm
