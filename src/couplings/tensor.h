// What an order matrix says: eigenvalues, axes, Da and Dr, the irreducible representation, Euler angles.
//
// The Saupe vector has five values, always in this order: Szz, Sxx - Syy, Sxy, Sxz, Syz.
// Of the eigenvalues |Azz| >= |Ayy| >= |Axx|:  Da = (Azz - (Axx + Ayy) / 2) / 3,  Dr = (Axx - Ayy) / 3,  R =
// Dr / Da.
#pragma once

#include "couplings/dipolar.h"
#include "couplings/euler.h"

#include <array>

namespace trelm {

using Saupe = std::array<double, saupeCount>;

// Hz: a tensor's Da on the scale of an amide N-H pair, which is the interaction constant of such a pair
// at 1.041 angstrom. Fits, their reports and the assignment search have it rounded; what simulations and
// comparisons print as Da(NH) has all its digits. Neither can replace the other: results are compared by
// their last digit.
constexpr double amideHertz = 21585.2;
constexpr double amideScale = 21585.19634913479;

/// The analysis of a tensor. eigVal holds Azz, Ayy, Axx; column k of eigVec is the axis of eigVal[k].
struct TensorAnalysis {
    Saupe irrSaupe = {}; ///< A0, A1R, A1I, A2R, A2I
    double gMag = 0.0;   ///< general magnitude
    std::array<double, 3> eigVal = {};
    Matrix3d eigVec = {};
    double da = 0.0, dr = 0.0;
    EulerLists euler; ///< zero unless asked for
};

/// The whole analysis of a Saupe vector. yzFlag exchanges the order of the two main axes; Euler angles are
/// solved for if `eulerFlag` is not 0. Fails after a message where the eigenvalues are not found,
/// which only a vector that is no number can bring about.
Status analyzeSaupe(const Saupe &saupe, int yzFlag, int eulerFlag, TensorAnalysis &analysis,
                    Messages &messages);

/// The same for any symmetric matrix, such as an inertia tensor, Euler angles always. irrSaupe and gMag stay
/// 0. Fails as analyzeSaupe.
Status analyzeMatrix3D(const Matrix3d &matrix, int yzFlag, TensorAnalysis &analysis, Messages &messages);

/// Sorts eigenvalues and columns so that magnitudes fall; ties keep their order. yzFlag exchanges the first
/// two.
void sort_eigensystem(int yzFlag, std::array<double, 3> &eigVal, Matrix3d &eigVec);

/// Da and Dr of three eigenvalues in any order.
void pca_tensor(int yzFlag, const std::array<double, 3> &eigVal, double &da, double &dr);

/// The irreducible representation and the general magnitude.
void irreducRepres(const Saupe &saupe, double &genMagnitude, Saupe &irrSaupe);

/// Normalised inner product of two Saupe vectors and the angle between them, degrees: 0 where |dcos| is 1.
void irrCollinarity(const SaupeValues &saupe1, const SaupeValues &saupe2, float &dcos, float &angle);

/// The matrix of a Saupe vector.
Matrix3d saupeMatrix(const Saupe &saupe);

} // namespace trelm
