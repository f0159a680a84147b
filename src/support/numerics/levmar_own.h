// Least squares within bounds, for builds without the levmar library: the one entry point of it that is used.
#pragma once

namespace trelm {

/// Minimises the sum over i of (x[i] - hx[i])^2 for hx of func(p, hx, m, n, adata), keeping each of the m
/// parameters within lb and ub. p holds the start and takes the answer; x can be null for zeros, lb and ub
/// for no bounds. At most itmax iterations. opts, info, work and covar are those of the library's signature
/// and not used. func is never called outside the bounds.
///
/// Parameters, bounds and residuals are single precision and are compared so; the equations are solved in
/// double. Parameters may differ by many orders of magnitude: damping follows the curvature of each.
///
/// Returns the number of iterations; -1 after a line on stderr, with p as it was, for fewer residuals than
/// parameters, bounds the wrong way round, or residuals at the start that are no finite numbers.
///
/// Sources: Marquardt, J. Soc. Ind. Appl. Math. 11 (1963) 431; projection: Kanzow, Yamashita and Fukushima,
/// J. Comput. Appl. Math. 172 (2004) 375; damping: Nielsen, report IMM-REP-1999-05, DTU (1999).
int slevmar_bc_dif(void (*func)(float *p, float *hx, int m, int n, void *adata), float *p, const float *x,
                   int m, int n, const float *lb, const float *ub, int itmax, const float *opts, float *info,
                   float *work, float *covar, void *adata);

} // namespace trelm
