// Linear equations and the fit of a model that is not linear in its parameters, single precision.
// Sources: Marquardt, J. Soc. Ind. Appl. Math. 11 (1963) 431; Bevington and Robinson, Data Reduction and
// Error Analysis for the Physical Sciences, chapter 8; elimination: Golub and Van Loan, Matrix Computations,
// chapter 3. Matrices are row-major.
#pragma once

#include "ground/messages.h"

#include <span>
#include <vector>

namespace trelm {

/// Gauss-Jordan elimination with full pivoting: the n by n matrix a becomes its inverse, the n by m matrix b
/// (m can be 0) the solutions. Fails after a message if a is singular or holds a value that is no finite
/// number; a and b are then of no use.
Status gaussj(std::span<float> a, int n, std::span<float> b, int m, Messages &messages);

/// Spreads the covariance of the mfit fitted parameters, in the upper left corner of the ma by ma matrix,
/// to the rows and columns of all parameters. Fixed ones (ia 0) get zeros.
void covsrt(std::span<float> covar, int ma, std::span<const int> ia, int mfit);

/// A model: y and its derivatives by the parameters (dyda) at x.
using ModelFunction = void (*)(float x, std::span<const float> a, float &y, std::span<float> dyda);

/// Data and model of a fit.
struct ModelFit {
    std::span<const float> x, y, sig; ///< as many values each, sig > 0
    std::span<const int> ia;          ///< for each parameter: non-zero if it is fitted
    ModelFunction funcs = nullptr;
};

/// What mrqmin keeps from step to step. A fresh one begins a fit.
struct MarquardtState {
    float alamda = -1.0f;              ///< damping; below 0: begin; 0: the last call, for covar
    float chisq = 0.0f;                ///< chi-square of the best parameters so far
    std::vector<float> covar;          ///< ma by ma, of use after the last call
    std::vector<float> alpha, beta;    ///< curvature (mfit by mfit) and gradient at the best parameters
    std::vector<float> atry;           ///< parameters on trial
    std::vector<float> trialA, trialB; ///< curvature and gradient there
};

/// Curvature matrix (mfit by mfit) and gradient (mfit values) of chi-square at a. Returns chi-square.
float mrqcof(const ModelFit &model, std::span<const float> a, std::span<float> alpha, std::span<float> beta);

/// One step of the method of Levenberg and Marquardt; a takes the better parameters. Fails after a message
/// if the equations have no solution.
Status mrqmin(const ModelFit &model, std::span<float> a, MarquardtState &state, Messages &messages);

/// Fits the parameters a from the starting values guesa; `error` takes their standard deviations. Fails
/// after a message if sig is not above 0 or the equations have no solution: a then holds the best parameters
/// so far, and the errors are 0.
Status nonlinearfit(const ModelFit &model, std::span<float> a, std::span<const float> guesa,
                    std::span<float> error, Messages &messages);

} // namespace trelm
