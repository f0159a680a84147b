// Non-linear least squares within bounds.
#pragma once

#include <functional>
#include <span>

namespace trelm {

/// The residuals of a problem: `pointCount` values into `res` for the `coefCount` parameters `coefs`. What it
/// returns is not looked at.
using ResidualFunction = std::function<int(int pointCount, int coefCount, float *coefs, float *res)>;

/// Minimises the sum of squared residuals. Bounds that stand the wrong way round are exchanged in the
/// caller's arrays; a start outside its bounds begins at their mean. The last call of the function is made
/// with the answer, which is left in `guess`. With no free parameter (one whose bounds differ) or itMax 0 the
/// function is called once, with `guess` as it came, within its bounds or not.
///
/// Returns 0; 1 if the minimiser refused the problem, after its line on the standard error stream: `guess`
/// then holds the start. Without memory it prints "NLSOPT Error allocating space." on standard output and
/// ends the process with status -1, without the tear-down of other failures. Uses slevmar_bc_dif of the
/// levmar library, or the project's own routine of that name (levmar_own.cpp).
int nlsOpt(const ResidualFunction &resCalc, int pointCount, std::span<float> guess, std::span<float> lower,
           std::span<float> upper, int itMax);

} // namespace trelm
