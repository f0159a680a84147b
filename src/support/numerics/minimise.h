// Non-linear least squares within bounds.
#pragma once

#include "ground/messages.h"

#include <cstddef>
#include <functional>
#include <span>

namespace trelm {

/// What is to become small: `count` values at a place.
struct Residuals {
    std::function<void(std::span<const float> place, std::span<float> values)> at;
    std::size_t count = 0;
};

/// Minimises the sum of squared residuals. Bounds that stand the wrong way round are exchanged in the
/// caller's arrays; a start outside its bounds begins at their mean. The last call of the function is made
/// with the answer, which is left in `guess`. With no free parameter (one whose bounds differ) or itMax 0 the
/// function is called once, with `guess` as it came, within its bounds or not.
///
/// If the minimiser refuses the problem, after its message, `guess` holds the start. Without memory it says
/// "NLSOPT Error allocating space." and throws OutOfMemory with status -1. Uses slevmar_bc_dif of the levmar
/// library, or the project's own routine (bounded_fit.cpp).
void nlsOpt(const Residuals &residuals, std::span<float> guess, std::span<float> lower,
            std::span<float> upper, int itMax, Messages &messages);

} // namespace trelm
