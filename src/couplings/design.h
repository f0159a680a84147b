// The rows of the linear fit: how a coupling depends on the Saupe vector, and with which weight it is fitted.
#pragma once

#include "couplings/fit.h"

#include <cstddef>

namespace trelm {

/// The coefficients of the Saupe vector in the coupling of entry k, per interaction constant. Two atoms at
/// one place have (-1/2, 0, 0, 0, 0).
SaupeValues geometryTerms(const FitVectors &vectors, std::size_t k);

/// What entry k is scaled by: its weight, which makes the errors of all rows equal on the scale of the order
/// matrix, and the weight over the interaction constant, for the coupling.
struct RowScale {
    float design = 1.0f, coupling = 0.0f;
};
RowScale rowScale(const FitVectors &vectors, std::size_t k);

} // namespace trelm
