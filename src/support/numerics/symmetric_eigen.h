// Eigenvalues of small symmetric matrices in double precision.
// Source: Golub and Van Loan, Matrix Computations, section 8.5: cyclic Jacobi rotations.
#pragma once

#include "ground/status.h"

#include <span>

namespace trelm {

/// Eigenvalues and eigenvectors (columns of `vectors`) of the n by n matrix a (row-major), not sorted; n is
/// values.size(). `a` is used up. `noSolution` where 50 sweeps leave a residue, as of what is no number.
Status symmetricEigen(std::span<double> a, std::span<double> values, std::span<double> vectors);

} // namespace trelm
