// The fit of an order matrix to couplings, and couplings from an order matrix.
#pragma once

#include "couplings/dipolar.h"
#include "couplings/euler.h"

#include <array>
#include <span>
#include <vector>

namespace trelm {

/// The vectors of a fit, one entry each: atoms I and J (angstrom), interaction constant, coupling and error
/// (Hz).
struct FitVectors {
    std::span<const float> xI, yI, zI, xJ, yJ, zJ;
    std::span<const float> diVal;
    std::span<float> dVal;
    std::span<float> dSigma;
};

/// Fits or back-calculates by the tensor's `tensorMode`: the calculated couplings go to dCalcList, the tensor
/// to dTensor. `verbose` above 1 tells about the non-linear path. Returns the number of couplings used, or -1
/// if there is no memory for the fit, or, after a message, if its result is no finite number.
int fitD(PDBInfo *pdbInfo, DTable *dTab, int verbose);

/// The two engines: linear least squares, and Levenberg-Marquardt over rotation, Da and Dr.
int fitDSVD(PDBInfo *pdbInfo, DTable *dTab, int verbose);
int fitDCAlign(PDBInfo *pdbPtr, DTable *dTabPtr, int verbFlag);

/// Least-squares Saupe vector and its standard deviations. Returns 0; 1 with zeros if there are fewer than
/// five entries, or without memory. Source: Losonczi et al., J. Magn. Reson. 138 (1999) 334.
int findS(const FitVectors &vectors, std::array<float, 5> &saupe, std::array<float, 5> &dSaupe);

/// Couplings of a Saupe vector into dVal, their standard deviations into dSigma.
void findD(const FitVectors &vectors, const std::array<float, 5> &saupe, const std::array<float, 5> &dSaupe);

/// Euler solutions about x, y, z of a Saupe vector. Returns their number, 0 if it cannot be diagonalised.
int saupe2euler(const std::array<float, 5> &saupe, RotationLists &lists, std::array<float, 3> &eigVal,
                float &da, float &dr);

/// The Euler solutions of a tensor's Saupe vector into its lists, if they are asked for (eulerFlag).
void solveEuler(DTensor &tensor);

/// The Saupe vector of a rotation (degrees) and a magnitude.
void euler2saupe(std::array<float, 5> &saupe, float psi, float theta, float phi, float da, float dr);

/// Linear fits of one table whose measured couplings change and nothing else: what atoms, errors and weights
/// give is kept from the first fit on.
struct RepeatedFit {
    struct Entry {
        std::array<float, 5> terms; ///< coupling of the vector per interaction constant, by Saupe element
        float toFit;                ///< what the measured coupling is multiplied by
        float scale;                ///< size of the interaction constant, Hz
    };
    std::vector<Entry> entries;
    std::vector<int> rows;       ///< row of the table of each entry; rows rise
    std::vector<float> x, y;     ///< weighted design matrix and right-hand side
    std::array<float, 5> dSaupe; ///< of the first fit; couplings do not change it
    int used = 0;                ///< rows that take part
    bool isUsable = false;       ///< the table is one for linear fits
};

/// Takes over from a table that fitD has just fitted.
void prepareRepeatedFit(DTable &dTab, RepeatedFit &fit);

/// As fitD, to the bit.
int refitD(RepeatedFit &fit, PDBInfo *pdbInfo, DTable *dTab, int verbose);

/// Workspaces of the fits.
void dipolarNull();
int dipolarInit(int size);
void dipolarFree();
void fitAlignFree(); ///< the coordinate arrays of the non-linear path

} // namespace trelm
