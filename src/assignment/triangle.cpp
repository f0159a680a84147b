#include "assignment/triangle.h"

#include <cmath>

namespace trelm {
namespace {

/// Below this part of its diagonal a pivot is lost in rounding: nothing is said about the tensor then.
constexpr double pivotLimit = 1e-9;

} // namespace

bool factorise(const Triangle &matrix, Triangle &factor)
{
    for (std::size_t i = 0; i < saupeCount; ++i)
        for (std::size_t j = 0; j <= i; ++j) {
            double sum = matrix[packed(i, j)];
            for (std::size_t k = 0; k < j; ++k)
                sum -= factor[packed(i, k)] * factor[packed(j, k)];
            if (i != j) {
                factor[packed(i, j)] = sum / factor[packed(j, j)];
                continue;
            }
            if (!(sum > pivotLimit * matrix[packed(i, i)]))
                return false;
            factor[packed(i, i)] = std::sqrt(sum);
        }
    return true;
}

Saupe forward(const Triangle &factor, const Saupe &v)
{
    Saupe y;
    for (std::size_t i = 0; i < saupeCount; ++i) {
        double sum = v[i];
        for (std::size_t k = 0; k < i; ++k)
            sum -= factor[packed(i, k)] * y[k];
        y[i] = sum / factor[packed(i, i)];
    }
    return y;
}

Saupe backward(const Triangle &factor, const Saupe &y)
{
    Saupe x;
    for (std::size_t i = saupeCount; i-- > 0;) {
        double sum = y[i];
        for (std::size_t k = i + 1; k < saupeCount; ++k)
            sum -= factor[packed(k, i)] * x[k];
        x[i] = sum / factor[packed(i, i)];
    }
    return x;
}

double dot(const Saupe &a, const Saupe &b)
{
    double sum = 0.0;
    for (std::size_t k = 0; k < saupeCount; ++k)
        sum += a[k] * b[k];
    return sum;
}

double quadratic(const Triangle &matrix, const Saupe &v)
{
    double sum = 0.0;
    for (std::size_t i = 0; i < saupeCount; ++i)
        for (std::size_t j = 0; j <= i; ++j)
            sum += (i == j ? 1.0 : 2.0) * matrix[packed(i, j)] * v[i] * v[j];
    return sum;
}

} // namespace trelm
