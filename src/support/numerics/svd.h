// Least squares by singular value decomposition, single precision.
#pragma once

#include <span>

namespace trelm {

/// Golub-Reinsch decomposition of the m by n matrix a (row-major): a becomes u, with a = u diag(w) v^T.
/// w holds n values (not sorted), v n by n values, rv1 is a work vector of n. At 1000 iterations for one
/// value the loop ends silently. Source: Golub and Reinsch, Numer. Math. 14 (1970) 403.
void svdcmpUser(std::span<float> a, int m, int n, std::span<float> w, std::span<float> v,
                std::span<float> rv1);

/// Solves x coef = y for a `length` by `nCoef` matrix x (row-major). Singular values below 1e-5 of the
/// largest count as 0. `covar` (nCoef by nCoef, or empty) gets the covariance of unit errors. With initFlag 0
/// the last decomposition serves again, whatever x is, and `covar` is left alone; it also serves again when x
/// is the same to the bit as in the last call. Arrays stay from call to call.
///
/// One coefficient is no least-squares solution: coef is sum(x y) / sum(y y), 0 if that has no value, and its
/// covariance 1.
///
/// Returns 0, or 1 if length or nCoef is below 1 (one coefficient: never) or there is no memory. A
/// decomposition that does not converge, or values that are no numbers, give 0 too: the caller looks at coef.
int svdLSMat(std::span<const float> x, std::span<const float> y, int length, int nCoef, std::span<float> coef,
             std::span<float> covar, int initFlag);

/// Frees the arrays that svdLSMat keeps.
void svdPolyFree();

} // namespace trelm
