// What an assignment search works on: couplings by peak, internuclear vectors by residue, fixed couplings.
#pragma once

#include "couplings/dipolar.h"
#include "ground/trelm.h"
#include "structure/pdb.h"

#include <array>
#include <cstddef>
#include <map>
#include <span>
#include <string>
#include <vector>

namespace trelm {

constexpr int maxPeaks = 800;        ///< peaks of a search
constexpr int couplingTypeCount = 8; ///< coupling types of a medium
/// Score of a medium whose tensor lies outside the window. A search takes nothing that is no better than
/// that.
constexpr float outsideWindow = 1.0e8f;
constexpr int noType = -1; ///< a coupling that is of none of the types
constexpr int noRow = -1;

/// A coupling that stays with its residue whatever the assignment.
struct FixedCoupling {
    float x = 0.0f, y = 0.0f, z = 0.0f; ///< from atom I to atom J, angstrom
    float d = 0.0f;                     ///< coupling, Hz
    float di = 0.0f;                    ///< interaction constant, Hz
    float sigma = 0.0f;                 ///< error, Hz
    float w = 0.0f;                     ///< weight in the score
};

/// The matrices and lists of a search. A matrix has peakCount rows of colId columns, row after row; the
/// columns of the media stand side by side. An assignment puts peak rows on residue rows.
struct AssignmentProblem {
    int peakCount = 0;
    int colId = 0;
    std::vector<float> dcMat;            ///< by peak: coupling, Hz; noPeakCoupling where there is none
    std::vector<float> diValMat;         ///< by peak: interaction constant, Hz
    std::vector<float> sigMat, wMat;     ///< by peak: error, Hz, and weight; 0 where there is no coupling
    std::vector<float> xMat, yMat, zMat; ///< by residue: vector, angstrom; 0 where there is none
    std::vector<FixedCoupling> fixed;    ///< medium after medium
    int nLcType = 1;                     ///< media
    std::array<int, maxMedia> nDTypList = {}; ///< fixed couplings of each medium
    std::array<int, maxMedia> colIdList = {}; ///< columns of each medium
    float lDa = -25.0f, hDa = -3.0f;          ///< the window: Da on the scale of an amide pair, Hz
    float lR = 0.0f, hR = 0.7f;               ///< and R; all limits lie outside of it

    /// Place of a cell in the matrices.
    [[nodiscard]] std::size_t at(int row, int column) const
    {
        return static_cast<std::size_t>(row) * static_cast<std::size_t>(colId) +
               static_cast<std::size_t>(column);
    }
};

/// Where a problem comes from in the coupling table: what brings an assignment back into it.
struct PeakTable {
    std::span<const int> fixResList; ///< residues whose assignment is fixed
    std::vector<std::string> media;  ///< names of the media
    std::vector<int> resIdList;      ///< residue of each matrix row
    std::map<int, int> rowResList;   ///< row of each of these residues
    std::array<std::array<int, couplingTypeCount>, maxMedia> dcIndex =
        {}; ///< column of medium and type, or noType
    /// The table's first row of medium and type, or noRow: other residues' rows of that type are made like
    /// it.
    std::array<std::array<int, couplingTypeCount>, maxMedia> firstRow = {};
    std::vector<bool> hasRow; ///< by cell of the matrices: the residue has a row of the type
};

/// Type of a measured coupling by its atom names, in either order, or noType.
int couplingType(const DInfo &obs);

/// The peak that a coupling of this type belongs to. A coupling within the preceding residue belongs to the
/// peak of the following one.
int peakIdOf(const DInfo &obs, int type);

/// Whether a residue number stands among the fixed ones.
bool isFixed(const PeakTable &peaks, int resID);

/// Makes the problem of a table: peaks, residues, matrices and fixed couplings. peaks.fixResList and
/// peaks.media are given, the rest of it and the problem are made here, but for the window. What is found is
/// told on standard output. Couplings of unknown kind are passed over. A peak without a coupling of some type
/// takes part without it, which is told; the vector of its residue comes from the structure, and has length 0
/// where that lacks the atoms. Returns 0, or 1 after a message: more than maxPeaks peaks, couplings of
/// several atoms, a fixed one of unknown kind. Where there is no peak at all the remark that there are 0 of
/// them is all that is told, and 1 returned.
int makeProblem(PDBInfo &pdbInfo, const DTable &dTab, PeakTable &peaks, AssignmentProblem &problem);

} // namespace trelm
