#include "support/numerics/minimise.h"

#include "ground/alloc.h"
#include "ground/out_of_memory.h"

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

#ifdef TRELM_LEVMAR_SCALING
extern "C" {
#include <levmar.h>
}
#else
#include "support/numerics/bounded_fit.h"
#endif

namespace trelm {

namespace {

/// All parameters, and the places of those that the minimiser moves.
struct FreeProblem {
    const Residuals &residuals;
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

#ifdef TRELM_LEVMAR_SCALING
/// The residuals in the form that the library calls; `data` is the problem.
void freeResiduals(float *free, float *res, int freeCount, int pointCount, void *data)
{
    auto &problem = *static_cast<FreeProblem *>(data);
    problem.take({free, static_cast<std::size_t>(freeCount)});
    problem.residuals.at(problem.all, {res, static_cast<std::size_t>(pointCount)});
}

void fitFree(FreeProblem &problem, std::span<float> p, std::span<float> lower, std::span<float> upper,
             int itMax, Messages &)
{
    std::vector<float> measured(problem.residuals.count, 0.0f); // residuals are to become 0
    slevmar_bc_dif(freeResiduals, p.data(), measured.data(), static_cast<int>(p.size()),
                   static_cast<int>(measured.size()), lower.data(), upper.data(),
#if TRELM_LEVMAR_SCALING
                   nullptr,
#endif
                   itMax, nullptr, nullptr, nullptr, nullptr, &problem);
}
#else
void fitFree(FreeProblem &problem, std::span<float> p, std::span<float> lower, std::span<float> upper,
             int itMax, Messages &messages)
{
    const auto at = [&problem](std::span<const float> place, std::span<float> values) {
        problem.take(place);
        problem.residuals.at(problem.all, values);
    };
    fitWithinBounds({at, problem.residuals.count}, p, lower, upper, itMax, messages);
}
#endif

/// One run of the minimiser over the free parameters: they alone are its unknowns.
void minimise(FreeProblem &problem, std::span<const float> lower, std::span<const float> upper, int itMax,
              Messages &messages)
{
    std::vector<float> p = problem.freeOf(problem.all), lb = problem.freeOf(lower),
                       ub = problem.freeOf(upper);
    fitFree(problem, p, lb, ub, itMax, messages);
    problem.take(p);
}

} // namespace

void nlsOpt(const Residuals &residuals, std::span<float> guess, std::span<float> lower,
            std::span<float> upper, int itMax, Messages &messages)
{
    Block<float> last("nlsOpt", std::max(residuals.count, std::size_t{1}));
    if (!last) {
        messages.out("NLSOPT Error allocating space.\n");
        throw OutOfMemory(-1);
    }
    FreeProblem problem{residuals, {guess.begin(), guess.end()}, {}};
    settleBounds(problem.all, lower, upper);
    for (std::size_t i = 0; i < guess.size(); ++i)
        if (lower[i] != upper[i])
            problem.free.push_back(i);
    if (!problem.free.empty() && itMax != 0) {
        minimise(problem, lower, upper, itMax, messages);
        std::ranges::copy(problem.all, guess.begin());
    }
    // The minimiser's last evaluation need not be that of its answer.
    residuals.at(guess, last.span().first(residuals.count));
}

} // namespace trelm
