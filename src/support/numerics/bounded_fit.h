// Least squares within bounds, for builds without the levmar library.
#pragma once

#include "support/numerics/minimise.h"

namespace trelm {

/// Minimises the sum of squared residuals, keeping each parameter within its bounds. p holds the start and
/// takes the answer. At most itMax iterations. Residuals are never asked for outside the bounds.
///
/// Parameters, bounds and residuals are single precision and are compared so; the equations are solved in
/// double. Parameters may differ by many orders of magnitude: damping follows the curvature of each.
///
/// Fewer residuals than parameters, bounds the wrong way round, or residuals at the start that are no finite
/// numbers are refused with a message, and p stays as it was.
///
/// Sources: Marquardt, J. Soc. Ind. Appl. Math. 11 (1963) 431; projection: Kanzow, Yamashita and Fukushima,
/// J. Comput. Appl. Math. 172 (2004) 375; damping: Nielsen, report IMM-REP-1999-05, DTU (1999).
void fitWithinBounds(const Residuals &residuals, std::span<float> p, std::span<const float> lower,
                     std::span<const float> upper, int itMax, Messages &messages);

} // namespace trelm
