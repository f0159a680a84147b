#include "support/numerics/minimise.h"

#include "ground/alloc.h"

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <utility>
#include <vector>

#ifdef TRELM_LEVMAR_SCALING
extern "C" {
#include <levmar.h>
}
#else
#include "support/numerics/levmar_own.h"
#endif

namespace trelm {

namespace {

/// What the minimiser's callback works on: all parameters, and the places of those that it moves.
struct FreeProblem {
    const ResidualFunction &resCalc;
    std::vector<float> all;
    std::vector<std::size_t> free;

    void take(std::span<const float> values)
    {
        for (std::size_t i = 0; i < values.size(); ++i)
            all[free[i]] = values[i];
    }
    [[nodiscard]] std::vector<float> freeOf(std::span<const float> values) const
    {
        std::vector<float> picked;
        for (const std::size_t i : free)
            picked.push_back(values[i]);
        return picked;
    }
};

/// The residual function in the form that slevmar_bc_dif calls; `data` is the problem.
void residuals(float *free, float *res, int freeCount, int pointCount, void *data)
{
    auto &problem = *static_cast<FreeProblem *>(data);
    problem.take({free, static_cast<std::size_t>(freeCount)});
    problem.resCalc(pointCount, static_cast<int>(problem.all.size()), problem.all.data(), res);
}

/// Bounds the right way round, in the caller's arrays; a start outside of them moves to their mean.
void settleBounds(std::span<float> values, std::span<float> lower, std::span<float> upper)
{
    for (std::size_t i = 0; i < values.size(); ++i) {
        if (lower[i] > upper[i])
            std::swap(lower[i], upper[i]);
        if (!(values[i] >= lower[i] && values[i] <= upper[i]))
            values[i] = static_cast<float>(0.5 * (double{lower[i]} + upper[i]));
    }
}

/// One run of the minimiser over the free parameters: they alone are its unknowns. Returns 1 if it refused.
int minimise(FreeProblem &problem, int pointCount, std::span<const float> lower, std::span<const float> upper,
             int itMax)
{
    std::vector<float> p = problem.freeOf(problem.all), lb = problem.freeOf(lower),
                       ub = problem.freeOf(upper);
    std::vector<float> measured(static_cast<std::size_t>(pointCount), 0.0f); // residuals are to become 0
    const int iterations = slevmar_bc_dif(residuals, p.data(), measured.data(), static_cast<int>(p.size()),
                                          pointCount, lb.data(), ub.data(),
#if defined(TRELM_LEVMAR_SCALING) && TRELM_LEVMAR_SCALING
                                          nullptr,
#endif
                                          itMax, nullptr, nullptr, nullptr, nullptr, &problem);
    problem.take(p);
    return iterations < 0 ? 1 : 0;
}

} // namespace

int nlsOpt(const ResidualFunction &resCalc, int pointCount, std::span<float> guess, std::span<float> lower,
           std::span<float> upper, int itMax)
{
    const auto coefCount = static_cast<int>(guess.size());
    Block<float> last("nlsOpt", static_cast<std::size_t>(std::max(pointCount, 1)));
    if (!last) {
        std::puts("NLSOPT Error allocating space.");
        std::exit(-1);
    }
    FreeProblem problem{resCalc, {guess.begin(), guess.end()}, {}};
    settleBounds(problem.all, lower, upper);
    for (std::size_t i = 0; i < guess.size(); ++i)
        if (lower[i] != upper[i])
            problem.free.push_back(i);
    if (problem.free.empty() || itMax == 0) {
        resCalc(pointCount, coefCount, guess.data(), last.data());
        return 0;
    }
    const int status = minimise(problem, pointCount, lower, upper, itMax);
    // The minimiser's last evaluation need not be that of its answer.
    std::ranges::copy(problem.all, guess.begin());
    resCalc(pointCount, coefCount, guess.data(), last.data());
    return status;
}

} // namespace trelm
