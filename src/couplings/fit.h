// The fit of an order matrix to couplings, and couplings from an order matrix.
#pragma once

#include "couplings/dipolar.h"
#include "couplings/euler.h"
#include "couplings/fit_work.h"
#include "ground/messages.h"

#include <array>
#include <cstddef>
#include <optional>
#include <span>
#include <vector>

namespace trelm {

constexpr std::size_t fewestCouplings = saupeCount; ///< that a least-squares fit needs

/// The vectors of a fit, one entry each: atoms I and J (angstrom), interaction constant, coupling and error
/// (Hz).
struct FitVectors {
    std::span<const float> xI, yI, zI, xJ, yJ, zJ;
    std::span<const float> diVal;
    std::span<float> dVal;
    std::span<const float> dSigma;
};

/// What a fit goes by, one value for each row of a table: what was measured, or what stands for it.
struct FitColumns {
    std::vector<float> d, sigma;    ///< coupling and its error, Hz
    std::vector<unsigned char> use; ///< 1 if the row takes part
};

/// The columns of a table as it is.
void takeColumns(const DTable &dTab, FitColumns &columns);

/// A fit: the tensor that it starts from and finds, and the couplings of that.
struct FitResult {
    DTensor tensor;
    std::vector<float> calculated; ///< by row of the table, Hz; rows that take no part keep theirs
    int used = 0;                  ///< couplings that were fitted
};

/// A table with what was calculated for it: what statistics and reports go by. An argument, and no more, for
/// it holds references.
struct FittedTable {
    const DTable &dTab;
    const DTensor &tensor;
    /// By row, in place of the calculated couplings, the errors and the weights of the table; empty: those.
    std::span<const float> d = {}, sigma = {}, w = {};

    /// A table that holds what was calculated for it. NOLINTNEXTLINE(google-explicit-constructor)
    FittedTable(const DTable &table) : dTab(table), tensor(table.dTensor) {}
    FittedTable(const DTable &table, const FitResult &fit)
        : dTab(table), tensor(fit.tensor), d(fit.calculated)
    {
    }
    [[nodiscard]] float calculated(std::size_t i) const { return d.empty() ? dTab.dCalcList[i].d : d[i]; }
    [[nodiscard]] float error(std::size_t i) const
    {
        return sigma.empty() ? dTab.dObsList[i].sigma : sigma[i];
    }
    [[nodiscard]] float weight(std::size_t i) const { return w.empty() ? dTab.dObsList[i].w : w[i]; }
    /// Whether a row is shown.
    [[nodiscard]] bool isShown(std::size_t i) const
    {
        return dTab.dObsList[i].valid != 0 && dTab.dCalcList[i].valid != 0;
    }
};

/// The tensor and the calculated couplings of a table, to start a fit from.
FitResult startOf(const DTable &dTab);

/// Puts what a fit has found into its table: the tensor and the calculated couplings.
void takeFit(const FitResult &fit, DTable &dTab);

/// What is fitted. The rows of the table tell atoms and constants, the columns tell the rest.
struct FitInput {
    std::span<const Coord3D> coords; ///< where the atoms stand
    const DTable &dTab;
    const FitColumns &columns;
    int verbose = 0; ///< above 1 the non-linear path is told
    /// Empty, or the models of a structure over which the geometry of each coupling is averaged; the tensor
    /// is then a free one of the linear engine, and `coords` are those of the first.
    std::span<const std::vector<Coord3D>> models = {};
};

/// Fits or back-calculates by the `tensorMode` of the result's tensor. Fails after a message: no memory, or a
/// result that is no finite number.
///
/// There are two engines: linear least squares (or no fit at all, for a given Saupe vector), and
/// Levenberg-Marquardt over rotation, Da and Dr. The second starts from the tensor as it is, so repeated fits
/// go on from the last answer, and without a coupling that answer stays. Its Saupe vector is that of the
/// first Euler solution, and shares what rot2euler says about theta = +-90.
Status fitColumns(const FitInput &input, FitWork &work, FitResult &result, Messages &messages);

/// One tensor of all models of the input, which stand in one frame: the coupling of the mean of the geometry
/// functions over the models. To the bit the fit of a single model if that is the only one.
Status fitMeanModel(const FitInput &input, FitWork &work, FitResult &result, Messages &messages);

/// The non-linear engine.
Status fitDCAlign(const FitInput &input, FitWork &work, FitResult &result, Messages &messages);

/// Fits a table as it is: the tensor and the calculated rows take the result. Returns the number of couplings
/// used, or nothing after a message.
std::optional<int> fitD(std::span<const Coord3D> coords, DTable &dTab, int verbose, Messages &messages);

/// Least-squares Saupe vector. `noSolution` with zeros for fewer than five entries, `failed` with zeros and
/// after a message without memory. Source: Losonczi et al., J. Magn. Reson. 138 (1999) 334.
Status findS(const FitVectors &vectors, SaupeValues &saupe, FitWork &work, Messages &messages);

/// Couplings of a Saupe vector, Hz, into dVal.
void findD(const FitVectors &vectors, const SaupeValues &saupe);

/// Euler solutions about x, y, z of a Saupe vector, with its Da and Dr; eigVal is not sorted. Returns their
/// number, 0 if it cannot be diagonalised.
int saupe2euler(const SaupeValues &saupe, RotationLists &lists, std::array<float, 3> &eigVal, float &da,
                float &dr);

/// Sets the Euler solutions of a tensor, its eigenvalues, Da and Dr to those of its Saupe vector.
void solveEuler(DTensor &tensor);

/// The Saupe vector of a rotation (degrees) and a magnitude.
void euler2saupe(SaupeValues &saupe, float psi, float theta, float phi, float da, float dr);

/// Linear fits of one table whose measured couplings change and nothing else: what atoms, errors and weights
/// give is kept from the first fit on.
struct RepeatedFit {
    struct Entry {
        SaupeValues terms; ///< coupling of the vector per interaction constant, by Saupe element
        float toFit;       ///< what the measured coupling is multiplied by
        float scale;       ///< size of the interaction constant, Hz
    };
    std::vector<Entry> entries;
    std::vector<int> rows;   ///< row of the table of each entry; rows rise
    std::vector<float> x, y; ///< weighted design matrix and right-hand side
    int used = 0;            ///< rows that take part
    bool isUsable = false;   ///< the fits are linear ones
    SvdWork svd;
};

/// Prepares fits with this kind of tensor. Without memory `fit` is left as one that is not usable.
void prepareRepeatedFit(const FitInput &input, const DTensor &tensor, RepeatedFit &fit);

/// As fitColumns, to the bit.
Status refitColumns(RepeatedFit &fit, const FitInput &input, FitWork &work, FitResult &result,
                    Messages &messages);

} // namespace trelm
