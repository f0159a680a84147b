// The errors of a fitted tensor from the covariance of its Saupe vector.
// Source: linear propagation of errors (Bevington and Robinson, Data Reduction and Error Analysis for the
// Physical Sciences, chapter 3); perturbation of eigenvalues and eigenvectors to first order. It fails where
// two eigenvalues come close: near R = 0 (x and y) and R = 2/3 (y and z) the errors of the axes and of R grow
// without a bound, and so do those of alpha and gamma where beta is near 0 or 180 degrees.
#pragma once

#include "couplings/quality_rows.h"
#include "couplings/tensor.h"

#include <array>

namespace trelm {

/// One standard deviation each. Da and Dr without unit, as the Saupe vector; R = Dr / Da.
struct TensorErrors {
    Saupe saupe = {};
    double da = 0.0, dr = 0.0, rhombicity = 0.0;
    double tiltZY = 0.0, tiltZX = 0.0, tiltYX = 0.0; ///< degrees, of one axis towards the other
    std::array<double, 3> axes = {};                 ///< degrees, of the axes z, y, x in any direction
    double alpha = 0.0, beta = 0.0, gamma = 0.0;     ///< degrees, of each solution about z, y', z''
};

/// The errors of the tensor of this analysis, whose Saupe vector has this covariance.
TensorErrors propagateErrors(const TensorAnalysis &analysis, const SaupeMatrix &covariance);

/// All of them times a factor.
TensorErrors scaledErrors(const TensorErrors &errors, double factor);

} // namespace trelm
