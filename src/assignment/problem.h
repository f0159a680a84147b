// What an assignment search works on: couplings by peak, internuclear vectors by residue, fixed couplings.
#pragma once

#include "assignment/options.h"
#include "couplings/dipolar.h"
#include "ground/messages.h"
#include "structure/pdb.h"

#include <array>
#include <cstddef>
#include <limits>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace trelm {

constexpr std::size_t maxPeaks = 800;        ///< peaks of a search
constexpr std::size_t couplingTypeCount = 8; ///< coupling types of a medium
/// Score of a medium whose tensor lies outside the window. A search takes nothing that is no better than
/// that.
constexpr float outsideWindow = 1.0e8f;
constexpr int noType = -1; ///< a coupling that is of none of the types
constexpr int noRow = -1;
constexpr double infinity = std::numeric_limits<double>::infinity(); ///< of a score or a bound: none yet

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
    std::size_t peakCount = 0;
    std::size_t colId = 0;
    std::vector<float> dcMat;            ///< by peak: coupling, Hz; noPeakCoupling where there is none
    std::vector<float> diValMat;         ///< by peak: interaction constant, Hz
    std::vector<float> sigMat, wMat;     ///< by peak: error, Hz, and weight; 0 where there is no coupling
    std::vector<float> xMat, yMat, zMat; ///< by residue: vector, angstrom; 0 where there is none
    std::vector<FixedCoupling> fixed;    ///< medium after medium
    std::size_t nLcType = 1;             ///< media
    std::array<std::size_t, maxMedia> nDTypList = {}; ///< fixed couplings of each medium
    std::array<std::size_t, maxMedia> colIdList = {}; ///< columns of each medium
    TensorWindow window;
    bool needsVector = false; ///< no coupling may come to a residue without its vector

    /// Place of a cell in the matrices.
    [[nodiscard]] std::size_t at(std::size_t row, std::size_t column) const { return row * colId + column; }
};

/// Whether the residue of a row has the vector of a column: atoms at two places.
bool hasVector(const AssignmentProblem &problem, std::size_t row, std::size_t column);

/// Whether a peak has a coupling for which a residue row has no vector.
bool lacksVector(const AssignmentProblem &problem, std::size_t peak, std::size_t row);

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

/// A problem, and its way back into the table.
struct TableProblem {
    AssignmentProblem problem;
    PeakTable peaks;
};

/// What a problem is made from. Structure and lists have to outlive it.
struct ProblemInput {
    const PDBInfo &pdbInfo;
    const DTable &dTab;
    std::span<const int> fixResList;       ///< residues whose assignment is fixed
    const std::vector<std::string> &media; ///< names of the media
    TensorWindow window = {};
};

/// Type of a measured coupling by its atom names, in either order, or noType.
int couplingType(const DInfo &obs);

/// The peak that a coupling of this type belongs to. A coupling within the preceding residue belongs to the
/// peak of the following one.
int peakIdOf(const DInfo &obs, int type);

/// Whether a residue number stands among the fixed ones.
bool isFixed(const PeakTable &peaks, int resID);

/// Makes the problem of a table: peaks, residues, matrices and fixed couplings, and says what it has found.
/// Couplings of unknown kind are passed over. A peak without a coupling of some type takes part without it,
/// after a warning; the vector of its residue comes from the structure, and has length 0 where that lacks the
/// atoms. Returns nothing after a message: more than maxMedia media or maxPeaks peaks, couplings of several
/// atoms, a fixed one of unknown kind. Where there is no peak at all the remark that there are 0 of them is
/// the message.
std::optional<TableProblem> makeProblem(const ProblemInput &input, Messages &messages);

} // namespace trelm
