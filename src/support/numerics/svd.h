// Least squares by singular value decomposition, single precision.
#pragma once

#include "ground/alloc.h"
#include "ground/status.h"

#include <span>

namespace trelm {

/// Golub-Reinsch decomposition of the m by n matrix a (row-major): a becomes u, with a = u diag(w) v^T.
/// w holds n values (not sorted), v n by n values, rv1 is a work vector of n. At 1000 iterations for one
/// value the loop ends silently. Source: Golub and Reinsch, Numer. Math. 14 (1970) 403.
void svdcmpUser(std::span<float> a, int m, int n, std::span<float> w, std::span<float> v,
                std::span<float> rv1);

/// What svdLSMat keeps from call to call: the arrays of one shape, and the decomposition of the last matrix.
/// A fresh one begins; who solves again for the same matrix hands the same one in.
struct SvdWork {
    int lastLength = 0, lastOrder = 0;
    bool decomposed = false;    ///< u, v and w belong to `matrix`
    Block<float> matrix;        ///< the matrix of the last decomposition, as it came
    Block<float> u, v, w;       ///< with small values of w set to 0
    Block<float> rv1, tmp, rhs; ///< work vectors
};

/// The least-squares solution of x coef = y for a y.size() by coef.size() matrix x (row-major); where it is
/// not determined, that of the smallest norm. Singular values below 1e-5 of the largest count as 0. When x is
/// the same to the bit as in the last call with this work space, its decomposition serves again.
///
/// `failed` without rows or columns, or if there is no memory. A decomposition that does not converge, or
/// values that are no numbers, are no failure: the caller looks at coef.
Status svdLSMat(std::span<const float> x, std::span<const float> y, std::span<float> coef, SvdWork &work);

} // namespace trelm
