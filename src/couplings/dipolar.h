// Coupling tables: the records, their reader, the mapping of rows to atoms, and the choice of rows.
#pragma once

#include "couplings/fit_work.h"
#include "couplings/formats/archive.h"
#include "couplings/row_names.h"
#include "couplings/table_finding.h"
#include "ground/alloc.h"
#include "ground/messages.h"
#include "structure/pdb.h"
#include "support/text/text_input.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace trelm {

enum WindowKind : int;

constexpr int maxPairAtoms = 9; ///< atoms on one side of a coupling

// What a coupling is taken for by its size, Hz. Nothing measured comes near these numbers, and tables have
// long used different ones for "no value": each place keeps the limit that its tables were written for. A
// table may so hold a coupling that is fitted and yet missing from the report, between 888 and 900.
constexpr float noCoupling = 9999.0f;     ///< an empty cell, or a row that was not calculated
constexpr float missingCoupling = 999.0f; ///< from here on: not in differences and in statDC
constexpr float maxCoupling = 900.0f;     ///< above it: no part in fits and quick statistics
constexpr float reportLimit = 888.0f;     ///< from here on: not in the statistics of the report
constexpr float noPeakCoupling = 888.0f;  ///< exactly this: an assignment left the place empty
constexpr int noResID = -666666;          ///< a residue number that was not set

/// A row as the table has it: what was measured.
struct DInfo {
    const RowNames *names = &noNames; ///< kept by the table
    int id = 0;                       ///< row number
    int resIDI = noResID, resIDJ = noResID;
    int valid = 0;        ///< 1 if it takes part in fits and statistics
    float d = noCoupling; ///< the coupling, Hz
    float di = 0.0f;      ///< interaction constant: the coupling of a fully aligned vector, Hz
    float w = 1.0f; ///< weight in statistics and searches; fits go by sigma and only leave out a weight of 0
    float sigma = 0.0f;  ///< error of the coupling, Hz
    int diFixedFlag = 0; ///< 1 if di comes from a fixed distance
};

/// The atoms of one side of a coupling, as places in the molecule.
struct SideAtoms {
    std::array<std::uint32_t, maxPairAtoms> places = {};
    std::uint32_t count = 0;

    [[nodiscard]] std::span<const std::uint32_t> span() const { return {places.data(), count}; }
    std::uint32_t operator[](std::size_t i) const { return places[i]; }
};

/// A row as it is calculated: what stands for it in the structure.
struct DCalc {
    SideAtoms atomI, atomJ;                 ///< the atoms it resolves to
    int resIDI = noResID, resIDJ = noResID; ///< in the numbering of the structure
    int valid = 0;                          ///< as in DInfo
    float d = noCoupling, di = 0.0f;        ///< Hz
    float w = 1.0f, sigma = 0.0f;           ///< those of the measured row, with the weight of the residue

    /// Pairs of atoms.
    [[nodiscard]] std::size_t pairCount() const { return std::size_t{atomI.count} * atomJ.count; }
};

constexpr std::size_t saupeCount = 5; ///< elements of a Saupe vector: Szz, Sxx - Syy, Sxy, Sxz, Syz
using SaupeValues = std::array<float, saupeCount>; ///< in single precision, as fits have it

/// How the tensor of a fit is found.
enum TensorMode : int {
    tensorSvd = 1,     ///< least squares over the Saupe vector
    tensorSaupe = 2,   ///< no fit: the couplings of userSaupe
    tensorNofixed = 3, ///< Da, Dr and rotation free
    tensorDaDr = 4,    ///< Da and Dr fixed, rotation free
    tensorFixed = 5,   ///< all fixed
    tensorGiven = 6,   ///< as tensorSaupe, for a vector that the program itself has found
};

/// The alignment tensor with its bounds and Euler solutions. Angles in degrees, da and dr without unit.
struct DTensor {
    float da = 0.001f, daMin = -0.01f, daMax = 0.01f;
    float dr = 0.0001f, drMin = -0.01f, drMax = 0.01f;
    float rh = 0.5f, rhMin = 0.0f, rhMax = 0.6666667f;
    std::array<float, 8> psiList = {};
    float psi = 45.0f, psiMin = -360.0f, psiMax = 360.0f;
    std::array<float, 8> thetaList = {};
    float theta = 45.0f, thetaMin = -360.0f, thetaMax = 360.0f;
    std::array<float, 8> phiList = {};
    float phi = 45.0f, phiMin = -360.0f, phiMax = 360.0f;
    SaupeValues saupe = {}, userSaupe = {};
    std::array<float, 3> eigVal = {}; ///< after a fit not sorted, after a report Azz, Ayy, Axx
    int eulerFlag = 1;
    int eulerCount = 0;
    TensorMode tensorMode = tensorSvd;
    int rhFlag = 0;
};

/// A table of couplings: what was measured and what is calculated, row by row, and the tensor.
struct DTable {
    DTensor dTensor;
    Block<DInfo> dObsList;
    Block<DCalc> dCalcList;
    std::size_t dCount = 0;           ///< rows
    std::size_t maxCount = 0;         ///< upper bound of atom-pair entries
    std::shared_ptr<NameStore> names; ///< of the rows; copies of a table share it
    /// The residues of the rows. They are searched for from 1000000 down and from 0 up: without a row between
    /// these limits they stay there.
    int dMinRes = 0, dMaxRes = 0;
    std::vector<TableFinding> columnFindings; ///< of the file; a copy has none
    TableOrigin origin;                       ///< of rows that another program wrote; a copy has none
    FitWork fitWork;                          ///< what the fits of this table keep
    int nullChainName = 1, nullSegName = 1;   ///< 1 until a row names a chain or segment

    [[nodiscard]] std::span<DInfo> observed() { return dObsList.span().first(dCount); }
    [[nodiscard]] std::span<const DInfo> observed() const { return dObsList.span().first(dCount); }
    [[nodiscard]] std::span<DCalc> calculated() { return dCalcList.span().first(dCount); }
    [[nodiscard]] std::span<const DCalc> calculated() const { return dCalcList.span().first(dCount); }
};

/// Whether a calculated row takes part in fits.
inline bool takesPart(const DCalc &calc)
{
    return calc.valid != 0 && calc.w != 0.0f;
}

/// A copy of a table. Nothing after a message without memory.
std::optional<DTable> copyTable(const DTable &dTab, Messages &messages);

/// Reads a coupling file. An empty name or "None" leaves the table alone. Fails after a message: for a table
/// that cannot be read, a number column that holds text or a value that is not finite, a negative DD, no
/// memory, or an unknown nucleus in the last row (the table is complete then). An unknown nucleus in any
/// other row is told, and the row read.
Status readDC(const std::string &inDName, DTable &dTab, Messages &messages);

/// Whether a name names no file: it is empty or "None".
bool namesNoTable(const std::string &inDName);

/// The same as readDC from a text that is read already; `inDName` is what messages name.
Status parseDC(const std::string &inDName, TextInput &input, DTable &dTab, Messages &messages);

/// An empty table with room for rows, which the caller fills, and what follows from them: the range of their
/// residues, fixed distances, the room that fits need. The second again after a change of names. They fail
/// after a message without memory; an unknown nucleus is told.
Status startRows(DTable &dTab, std::size_t rows, Messages &messages);
Status settleRows(DTable &dTab, Messages &messages);

/// A residue number from outside plus an offset; a sum beyond int becomes its limit.
int shiftedRes(int resID, std::int64_t offset);

/// How the atoms of a side are looked up. The names are those of the table, or of the structure where the
/// table has no chains or segments.
struct SideQuery {
    int resID;
    const Name &atomName, &chainName, &segName;
};
struct RowQueries {
    SideQuery i, j;
};
RowQueries queriesOf(const PDBInfo &pdbInfo, const DTable &dTab, const DInfo &obs, int aOff);

/// Sets `valid` by value and by residue window. Returns the number of valid rows.
int selectD(std::span<DInfo> dList, int segFirst, int segLast, WindowKind excludeMode);

/// Drops rows by atom names, position by position; "All" means any. Never makes a row valid. Returns the
/// valid count.
int selTypDC(std::span<DInfo> dList, std::string_view atomNameI, std::string_view atomNameJ);

/// Gives a row of this table its names. The table has rows.
void setNames(const DTable &dTab, const RowNames &names, DInfo &obs);

/// Adds rows of single pairs to the end of a table, in their starting state. Fails after a message.
Status addRows(DTable &dTab, std::size_t count, Messages &messages);

/// Fills one calculated row, which starts as DCalc{}: atoms, names and values of the observed one, all but
/// the weight of its residue and the constant. `valid` is 0 where the structure lacks the atoms.
void buildRow(const PDBInfo &pdbInfo, const DTable &dTab, int aOff, DInfo &obs, DCalc &calc,
              Messages &messages);

/// How rows are brought onto a structure.
struct RowMatch {
    int aOff = 0;                         ///< what has to be added to a residue number
    int wOff = 0;                         ///< residue of the first weight
    std::span<const float> wList = {};    ///< weights by residue; empty: none
    int allowFixedDI = 1;                 ///< interaction constants of known distances
    std::span<const Coord3D> coords = {}; ///< where the atoms stand; empty: as read
};

/// Fills the calculated rows of the valid observed ones: atoms, names, weights by residue, interaction
/// constants. A residue's weight multiplies `w` by its root and divides the calculated row's sigma, which no
/// fit reads; 0 takes the row out. A name that resolves to more than maxPairAtoms atoms is told, and its
/// observed row too becomes invalid; an unknown nucleus is told again. Returns the number of valid rows.
int buildDC(const PDBInfo &pdbInfo, DTable &dTab, const RowMatch &match, Messages &messages);

} // namespace trelm
