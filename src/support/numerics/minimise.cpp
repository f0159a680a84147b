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

ResidualFunction globalResCalc = nullptr; ///< the minimiser's callback has no room for it

/// All parameters, and the places of those that the minimiser moves.
struct Parameters {
    std::vector<float> all;
    std::vector<std::size_t> free;
};

Parameters parameters;

void takeFree(std::span<const float> free)
{
    for (std::size_t i = 0; i < free.size(); ++i)
        parameters.all[parameters.free[i]] = free[i];
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

std::vector<float> freeOf(std::span<const float> values)
{
    std::vector<float> picked;
    for (std::size_t i : parameters.free)
        picked.push_back(values[i]);
    return picked;
}

/// One run of the minimiser over the free parameters: they alone are its unknowns. Returns 1 if it refused.
int minimise(int pointCount, std::span<const float> lower, std::span<const float> upper, int itMax)
{
    std::vector<float> p = freeOf(parameters.all), lb = freeOf(lower), ub = freeOf(upper);
    std::vector<float> measured(static_cast<std::size_t>(pointCount), 0.0f); // residuals are to become 0
    const int iterations = slevmar_bc_dif(resCalc_wrap, p.data(), measured.data(), static_cast<int>(p.size()),
                                          pointCount, lb.data(), ub.data(),
#if defined(TRELM_LEVMAR_SCALING) && TRELM_LEVMAR_SCALING
                                          nullptr,
#endif
                                          itMax, nullptr, nullptr, nullptr, nullptr, nullptr);
    takeFree(p);
    return iterations < 0 ? 1 : 0;
}

} // namespace

void resCalc_wrap(float *coefs, float *data, int amount_of_coef, int amount_of_data, void *)
{
    takeFree({coefs, static_cast<std::size_t>(amount_of_coef)});
    globalResCalc(amount_of_data, static_cast<int>(parameters.all.size()), parameters.all.data(), data);
}

int nlsOpt(ResidualFunction resCalc, int pointCount, std::span<float> guess, std::span<float> lower,
           std::span<float> upper, int itMax)
{
    const auto coefCount = static_cast<int>(guess.size());
    Block<float> residuals("nlsOpt", static_cast<std::size_t>(std::max(pointCount, 1)));
    if (!residuals) {
        std::puts("NLSOPT Error allocating space.");
        std::exit(-1);
    }
    parameters.all.assign(guess.begin(), guess.end());
    settleBounds(parameters.all, lower, upper);
    globalResCalc = resCalc;
    parameters.free.clear();
    for (std::size_t i = 0; i < guess.size(); ++i)
        if (lower[i] != upper[i])
            parameters.free.push_back(i);
    if (parameters.free.empty() || itMax == 0) {
        resCalc(pointCount, coefCount, guess.data(), residuals.data());
        return 0;
    }
    const int status = minimise(pointCount, lower, upper, itMax);
    // The minimiser's last evaluation need not be that of its answer.
    std::ranges::copy(parameters.all, guess.begin());
    resCalc(pointCount, coefCount, guess.data(), residuals.data());
    return status;
}

} // namespace trelm
