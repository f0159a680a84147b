// The rows of a table as the judgement of a fit reads them, and the normal equations of the linear fit.
//
// Row i of the fit is  weight_i * observed_i = weight_i * design_i . S,  S the Saupe vector.
#pragma once

#include "couplings/coupling_type.h"
#include "couplings/fit.h"
#include "couplings/tensor.h"

#include <array>
#include <cstddef>
#include <optional>
#include <span>
#include <vector>

namespace trelm {

using SaupeMatrix = std::array<double, saupeCount * saupeCount>; ///< row-major

/// A coupling with all that its place in the fit depends on.
struct QualityRow {
    std::size_t row = 0;                     ///< of the table
    std::size_t type = 0;                    ///< place among the names of the types
    Saupe design = {};                       ///< Hz: what each Saupe element adds to the coupling
    double observed = 0.0, calculated = 0.0; ///< Hz
    double error = 0.0;                      ///< Hz, as given
    double weight = 0.0;                     ///< 1 / Hz, one over the error as the fit takes it
    double constant = 0.0;                   ///< Hz, magnitude of the interaction constant
    bool isFitted = false;                   ///< false: taken out by its weight, or no coupling of one vector

    [[nodiscard]] double residual() const { return observed - calculated; }
};

/// The coupling of a row from a Saupe vector, Hz.
double couplingOf(const Saupe &design, const Saupe &saupe);

/// A row of the table without its calculated coupling, or nothing for one without a value, without atoms, or
/// outside the choice of rows.
std::optional<QualityRow> observedRow(const FitInput &input, std::size_t row, CouplingTypes &types);

/// The same with its coupling of the fit; rows that take no part get that of the result's Saupe vector.
std::optional<QualityRow> qualityRow(const FitInput &input, const FitResult &fit, std::size_t row,
                                     CouplingTypes &types);

/// The sums of the normal equations. Rows add up, so a part of them can be taken out again.
struct NormalSums {
    int count = 0;
    SaupeMatrix products = {}; ///< sum of weight^2 design design^T
    Saupe sides = {};          ///< sum of weight^2 design observed
    double squares = 0.0;      ///< sum of (weight observed)^2

    /// Adds the row (`times` 1) or takes it out (-1).
    void add(const QualityRow &row, double times = 1.0);
    /// Adds the rows of `other`, with what they measure taken as `factor` times the coupling.
    void add(const NormalSums &other, double factor = 1.0);
    void remove(const NormalSums &other);
};

/// The least-squares solution.
struct NormalSolution {
    bool isDetermined = false; ///< by five couplings in independent directions
    Saupe saupe = {};
    SaupeMatrix inverse = {}; ///< covariance of the Saupe vector for the errors of the rows
    double condition =
        0.0; ///< largest over smallest singular value of the weighted design; infinite if it is 0
    double chiSquare = 0.0; ///< sum of squared weighted residuals, at least 0
};
NormalSolution solveNormal(const NormalSums &sums);

/// weight^2 design^T inverse design: of a fitted row its leverage, 0 to 1.
double leverageOf(const QualityRow &row, const SaupeMatrix &inverse);

} // namespace trelm
