// The molecule in memory: a flat atom array in file order, with lists and hashed look-ups over it.
#pragma once

#include "ground/alloc.h"
#include "support/symbol_table.h"

#include <cstring>
#include <span>
#include <string>
#include <string_view>

namespace trelm {

struct PDBSelectInfo;
struct ResInfo;
struct ChainInfo;
struct SegInfo;

/// A name of up to 16 characters; empty means a blank column.
struct Name {
    static constexpr std::size_t capacity = 16;
    char text[capacity + 1] = {};

    [[nodiscard]] std::string_view view() const { return text; }
    [[nodiscard]] const char *c_str() const { return text; }
    [[nodiscard]] bool empty() const { return text[0] == '\0'; }
    [[nodiscard]] bool operator==(std::string_view other) const { return view() == other; }
    [[nodiscard]] bool operator==(const Name &other) const { return view() == other.view(); }
};

struct Coord3D {
    float x = 0.0f, y = 0.0f, z = 0.0f;
};

struct DCoord3D {
    double x = 0.0, y = 0.0, z = 0.0;
};

constexpr float noAngle = 9999.0f;   ///< a backbone angle that is not known
constexpr float noValue = 777777.0f; ///< the `val` of a residue, chain or segment that nobody set
constexpr int maxWildAtoms = 16;     ///< the most atoms that a name with wildcards gives

/// One ATOM line. Coordinates in angstrom; x, y, z are the working copy that rotations change.
struct AtomInfo {
    int atomID = 0;          ///< serial number from the line
    void *auxInfo = nullptr; ///< free mark for whichever part is working on the atom
    Name atomName, locID, resName, chainID;
    int resID = 0;
    Name icode;
    float x = 0.0f, y = 0.0f, z = 0.0f, occupancy = 0.0f, tempFactor = 0.0f;
    float rcShift = 0.0f, secShift = 0.0f, shift = 0.0f, sigma = 0.0f; ///< no mode fills them
    Name segID, element, chargeStr;
    int selected = 0;           ///< mark of a selection
    ResInfo *resInfo = nullptr; ///< back pointers, set by indexPDB
    ChainInfo *chainInfo = nullptr;
    SegInfo *segInfo = nullptr;
    double vdwfc = 1.0;
    double radius = 0.0, charge = 0.0, mass = 0.0;
};

/// A row of the list of known residues.
struct ResTypeInfo {
    const char *resName;
    char resLetter;
    int resCode;
    int resClass; ///< 1 amino acid, 2 nucleotide by plain name, 3 deoxy, 4 ribo, 0 closing row
};

struct ResInfo {
    int resID = 0;
    int atomCount = 0;
    void *auxInfo = nullptr;
    Name resName, chainID, segID;
    ChainInfo *chainInfo = nullptr;
    SegInfo *segInfo = nullptr;
    ResInfo *next = nullptr,
            *prev = nullptr;            ///< numbers resID + 1 and resID - 1 in the same chain and segment
    float phi = noAngle, psi = noAngle; ///< degrees
    float val = noValue;
    const ResTypeInfo *resType = nullptr;
    void *phiPsiSurf = nullptr;
    Block<AtomInfo *> atomList; ///< its atoms, in file order
};

struct ChainInfo {
    int atomCount = 0, resCount = 0;
    int minResID = 0, maxResID = 0;
    void *auxInfo = nullptr;
    float val = noValue;
    Name chainID, segID;
    Block<AtomInfo *> atomList;
    Block<ResInfo *> resList;
    Block<ResInfo *> resArray; ///< entry resID - minResID: the residue, or null for a gap
    SegInfo *segInfo = nullptr;
};

struct SegInfo {
    int atomCount = 0, resCount = 0;
    int minResID = 0, maxResID = 0;
    void *auxInfo = nullptr;
    float val = noValue;
    Name segID, chainID;
    Block<AtomInfo *> atomList;
    Block<ResInfo *> resList;
    Block<ResInfo *> resArray;
    ChainInfo *chainInfo = nullptr;
};

struct PDBInfo {
    int pdbID = 0;
    void *auxInfo = nullptr;
    Block<AtomInfo> atomList;
    Block<ResInfo> resList;
    Block<ChainInfo> chainList;
    Block<SegInfo> segList;
    Block<Coord3D> coordList;                   ///< the saved coordinates, one for each atom
    HTabInfo atomTab, resTab, chainTab, segTab; ///< keys to places in the lists
    int atomCount = 0, resCount = 0, chainCount = 0, segCount = 0;
    int minResID = 0, maxResID = 0;
    Name defChainName, defSegName; ///< of the first atom

    [[nodiscard]] std::span<AtomInfo> atoms()
    {
        return atomList.span().first(static_cast<std::size_t>(atomCount));
    }
    [[nodiscard]] std::span<const AtomInfo> atoms() const
    {
        return atomList.span().first(static_cast<std::size_t>(atomCount));
    }
    [[nodiscard]] std::span<ResInfo> residues()
    {
        return resList.span().first(static_cast<std::size_t>(resCount));
    }
};

/// The known residues, up to a closing row "None".
extern const std::span<const ResTypeInfo> CanonicalResList;

/// Empties a molecule.
int pdbNull(PDBInfo *pdbInfo);

/// Reads the ATOM lines of a file (standard input if the name is empty) that pass `sInfo` (null: all), and
/// indexes them. Returns 0, or 1 after a message on the standard error stream. Numbers are read as atoi and
/// atof read them: what is no number is 0.
int readPDB(const std::string &pdbName, PDBInfo *pdbInfo, const PDBSelectInfo *sInfo);

/// Builds the lists of residues, chains and segments and the look-ups from the atom array. Returns 0 or 1.
int indexPDB(PDBInfo *pdbInfo);

/// The residue of this number in a chain and segment, or null.
ResInfo *findRes(PDBInfo *pdbInfo, int resID, std::string_view chainName, std::string_view segName);

/// The atom of this name, or null. Atoms with an insertion code are never found by key.
AtomInfo *findAtom(PDBInfo *pdbInfo, int resID, std::string_view atomName, std::string_view chainName,
                   std::string_view segName);

/// The atoms of a name with wildcards: # tries the numbers 1 to 3, * the suffixes "", 1, 2, 3 twice over, so
/// that an atom can stand in the list more than once. atomList needs room for maxWildAtoms. Returns how many
/// were found.
int findAtomList(PDBInfo *pdbInfo, int resID, std::string_view atomName, std::string_view chainName,
                 std::string_view segName, std::span<AtomInfo *> atomList);

/// 0 for a plain name; 1 or 2 if its last wildcard is # or *. atomFmt gets the expansion format.
int isAtomExpr(std::string_view atomName, std::string &atomFmt);

/// Mean distance between two atom lists, angstrom; 0 if one is empty.
float findAtomListRad(std::span<AtomInfo *const> atomListI, std::span<AtomInfo *const> atomListJ);

/// Copies a name of at most 16 characters. A longer one is cut after a message. Returns the length of the
/// copy.
std::size_t pdbStrCpy(Name &dest, std::string_view src);

/// Names read from a table: "{}", "none" and "(Null)" mean a blank. Each returns 1 if it blanked the name,
/// else 0.
int fixAtomName(Name &name);
int fixResName(Name &name);
int fixChainName(Name &name);
int fixSegName(Name &name);

/// The warning and verbose flags of the reader: both off, nothing sets them.
int getPDBWarn();
int getPDBVerb();

} // namespace trelm
