// Coupling tables: the records, their reader, the mapping of rows to atoms, and the choice of rows.
#pragma once

#include "ground/alloc.h"
#include "structure/pdb.h"

#include <array>
#include <span>
#include <string>
#include <string_view>

namespace trelm {

constexpr int maxPairAtoms = 9;       ///< atoms on one side of a coupling
constexpr float noCoupling = 9999.0f; ///< a coupling without a value
constexpr float maxCoupling = 900.0f; ///< couplings above it take no part, Hz
constexpr int noResID = -666666;      ///< a residue number that was not set

/// One coupling.
struct DInfo {
    int id = 0;      ///< row number
    int absFlag = 0; ///< 1 if the table's value is a magnitude only
    int count = 0;   ///< multiplicity, 1 after reading
    int valid = 0;   ///< 1 if it takes part in fits and statistics
    int resIDI = noResID, resIDJ = noResID;
    Name resNameI, resNameJ, atomNameI, atomNameJ, chainNameI, chainNameJ, segNameI, segNameJ;
    float d = noCoupling; ///< the coupling, Hz
    float di = 0.0f;      ///< interaction constant: the coupling of a fully aligned vector, Hz
    float w = 1.0f;       ///< weight
    float s = 1.0f;       ///< scale
    float fc = 1.0f;      ///< force constant
    int diFixedFlag = 0;  ///< 1 if di comes from a fixed distance
    float sigma = 0.0f;   ///< error of the coupling, Hz
    std::array<AtomInfo *, maxPairAtoms> atomI = {}, atomJ = {}; ///< the atoms that the row resolves to
    int atomICount = 0, atomJCount = 0;

    [[nodiscard]] std::span<AtomInfo *const> atomsI() const
    {
        return {atomI.data(), static_cast<std::size_t>(atomICount)};
    }
    [[nodiscard]] std::span<AtomInfo *const> atomsJ() const
    {
        return {atomJ.data(), static_cast<std::size_t>(atomJCount)};
    }
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
    std::array<float, 5> saupe = {}, dSaupe = {}, userSaupe = {}; ///< Szz, Sxx - Syy, Sxy, Sxz, Syz
    std::array<float, 3> eigVal = {};
    int eulerFlag = 1;
    int eulerCount = 0;
    int tensorMode = 1; ///< 1 SVD, 2 6 7 given Saupe vector, 3 8 all free, 4 Da and Dr fixed, 5 all fixed
    int rhFlag = 0;
};

/// A table of couplings: what was measured and what is calculated, row by row, and the tensor.
struct DTable {
    DTensor dTensor;
    Block<DInfo> dObsList, dCalcList;
    int dCount = 0;   ///< rows
    int maxCount = 0; ///< upper bound of atom-pair entries
    int dMinRes = 0, dMaxRes = 0;
    Block<float> work;                      ///< workspace of a fit: 12 * maxCount + 12 floats
    int nullChainName = 1, nullSegName = 1; ///< 1 until a row names a chain or segment

    [[nodiscard]] std::span<DInfo> observed()
    {
        return dObsList.span().first(static_cast<std::size_t>(dCount));
    }
    [[nodiscard]] std::span<const DInfo> observed() const
    {
        return dObsList.span().first(static_cast<std::size_t>(dCount));
    }
    [[nodiscard]] std::span<DInfo> calculated()
    {
        return dCalcList.span().first(static_cast<std::size_t>(dCount));
    }
    [[nodiscard]] std::span<const DInfo> calculated() const
    {
        return dCalcList.span().first(static_cast<std::size_t>(dCount));
    }
};

/// Restores the defaults of a tensor or a table; dTabFree also releases what the table owns. Return 0.
int dTensorNull(DTensor *tInfo);
int dTabNull(DTable *dTab);
int dTabFree(DTable *dTab);

/// Reads a coupling file. An empty name or "None" leaves the table alone. Returns 0, or non-zero after a
/// message: for a table that cannot be read, a number column that holds text or a value that is not finite,
/// a negative DD, no memory, or an unknown nucleus in the last row (the table is complete then).
int readDC(const std::string &inDName, DTable *dTab);

/// Resolves the atoms of the observed rows, with aOff added to their residue numbers. Returns the number
/// mapped.
int mapDCInfo(PDBInfo *pdbInfo, DTable *dTab, int aOff);

/// Sets `valid` by value and by residue window: excludeMode 1 wants both residues inside, 2 at least one, any
/// other the larger of the two. Returns the number of valid rows.
int selectD(std::span<DInfo> dList, int segFirst, int segLast, int excludeMode);

/// Drops rows by atom names, position by position; "All" means any. Never makes a row valid. Returns the
/// valid count.
int selTypDC(std::span<DInfo> dList, std::string_view atomNameI, std::string_view atomNameJ);

/// Fills the calculated rows of the valid observed ones: atoms, names, weights by residue (wList, entry 0 is
/// residue wOff; empty: none), interaction constants. A name that resolves to more than maxPairAtoms atoms is
/// told, and its observed row too becomes invalid. Returns the number of valid rows.
int buildDC(PDBInfo *pdbInfo, DTable *dTab, int aOff, int wOff, std::span<const float> wList,
            int allowFixedDI);

} // namespace trelm
