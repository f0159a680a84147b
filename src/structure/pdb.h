// The molecule in memory: a flat atom array in file order, with lists and hashed look-ups over it.
#pragma once

#include "ground/alloc.h"
#include "ground/messages.h"
#include "support/text/symbol_table.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace trelm {

struct ModelSet;
struct PDBSelectInfo;
struct ResInfo;
struct ChainInfo;
struct SegInfo;

/// A name of up to 16 characters; empty means a blank column.
struct Name {
    static constexpr std::size_t capacity = 16;
    char text[capacity + 1] = {};

    /// The first 16 characters of a text.
    static Name of(std::string_view from)
    {
        Name name;
        from.copy(name.text, capacity);
        return name;
    }
    [[nodiscard]] std::string_view view() const { return text; }
    [[nodiscard]] const char *c_str() const { return text; }
    [[nodiscard]] bool empty() const { return text[0] == '\0'; }
    [[nodiscard]] bool operator==(std::string_view other) const { return view() == other; }
    [[nodiscard]] bool operator==(const Name &other) const { return view() == other.view(); }
};

/// Lengths of the bonds to hydrogens that are built, angstrom. The defaults are the effective distances for
/// which the interaction constants hold.
struct HydrogenBonds {
    double nitrogen = 1.041, carbon = 1.107;
};

struct Coord3D {
    float x = 0.0f, y = 0.0f, z = 0.0f;
};

constexpr float noAngle = 9999.0f; ///< a backbone angle that is not known
constexpr int maxWildAtoms = 16;   ///< the most atoms that a name with wildcards gives

/// One ATOM line, but for the coordinates.
struct AtomInfo {
    int atomID = 0; ///< serial number from the line
    Name atomName, locID, resName, chainID;
    int resID = 0;
    Name icode;
    float occupancy = 0.0f, tempFactor = 0.0f;
    Name segID, element, chargeStr;
    const ResInfo *resInfo = nullptr; ///< back pointers, set by indexPDB
    const ChainInfo *chainInfo = nullptr;
    const SegInfo *segInfo = nullptr;
};

struct ResInfo {
    int resID = 0;
    int atomCount = 0;
    Name resName, chainID, segID;
    Block<const AtomInfo *> atomList; ///< its atoms, in file order

    [[nodiscard]] std::span<const AtomInfo *const> atoms() const
    {
        return atomList.span().first(static_cast<std::size_t>(atomCount));
    }
};

/// A chain and a segment are each told by both names: of two chains in one segment each has a segment record
/// of its own, so that there are as many of the one as of the other.
struct ChainInfo {
    int atomCount = 0;
    int minResID = 0, maxResID = 0;
    Name chainID, segID;
    Block<const AtomInfo *> atomList;
};

struct SegInfo {
    int atomCount = 0;
    int minResID = 0, maxResID = 0;
    Name segID, chainID;
    Block<const AtomInfo *> atomList;
};

struct PDBInfo {
    Block<AtomInfo> atomList;
    Block<ResInfo> resList;
    Block<ChainInfo> chainList;
    Block<SegInfo> segList;
    Block<Coord3D> coordList;                   ///< where the atoms stand in the file, angstrom
    HTabInfo atomTab, resTab, chainTab, segTab; ///< keys to places in the lists
    int atomCount = 0, resCount = 0, chainCount = 0, segCount = 0;
    int minResID = 0, maxResID = 0;
    Name defChainName, defSegName; ///< of the first atom

    [[nodiscard]] std::span<const AtomInfo> atoms() const
    {
        return atomList.span().first(static_cast<std::size_t>(atomCount));
    }
    /// One for each atom.
    [[nodiscard]] std::span<const Coord3D> coordinates() const
    {
        return coordList.span().first(static_cast<std::size_t>(atomCount));
    }
    /// The place of one of its atoms in the list.
    [[nodiscard]] std::size_t placeOf(const AtomInfo &atom) const
    {
        return static_cast<std::size_t>(&atom - atomList.data());
    }
    [[nodiscard]] std::span<const ChainInfo> chains() const
    {
        return chainList.span().first(static_cast<std::size_t>(chainCount));
    }
    [[nodiscard]] std::span<const ResInfo> residues() const
    {
        return resList.span().first(static_cast<std::size_t>(resCount));
    }
};

/// A molecule whose atoms stand elsewhere than in the file. The coordinates are their owner's, one for each
/// atom, angstrom.
struct Conformation {
    const PDBInfo &pdbInfo;
    std::span<Coord3D> coords;
};

/// Coordinates of one's own, where the file has them.
std::vector<Coord3D> copyOfCoordinates(const PDBInfo &pdbInfo);

/// What of a structure file is read, and what is added to it.
struct StructureReading {
    int model = 0;                               ///< number of a MODEL record; 0: the first model
    ModelSet *all = nullptr;                     ///< takes all models; null: one is read
    bool useLabels = false;                      ///< label numbers and names of an mmCIF file
    std::optional<HydrogenBonds> hydrogens = {}; ///< bonds to the hydrogens that are built where they lack
};

/// Reads the ATOM lines of a file (standard input if the name is empty) that pass `sInfo`, and indexes them.
/// Of a file of several models one is read; that others are left out is told, unless one was asked for. With
/// `all` of the reading, an empty set, the first is the molecule, and the set takes where the atoms of each
/// model stand (structure/models.h); models that are no copies of the first are a failure.
/// With the hetatmFlag of `sInfo` HETATM lines are atoms too. Null takes all ATOM lines and no HETATM line:
/// the program itself reads with null, so that its options -hetatm and -protein do not touch what is read.
/// A file in the mmCIF format, which begins with "data_", is read as such (structure/read_mmcif.h).
/// Fails after a message; a file without ATOM lines is told of. Numbers of PDB files are read as atoi and
/// atof read them: what is no number is 0; but a coordinate that is not finite is a failure.
Status readPDB(const std::string &pdbName, PDBInfo &pdbInfo, const PDBSelectInfo *sInfo, Messages &messages,
               const StructureReading &reading = {});

/// Adds an atom to the array, before indexPDB. Fails after a message without memory.
Status appendAtom(const AtomInfo &atom, const Coord3D &at, PDBInfo &pdbInfo, Messages &messages);

/// Builds the lists of residues, chains and segments and the look-ups from the atom array. Once for a
/// molecule, by readPDB: a second call would find every atom redundant. Fails after a message.
Status indexPDB(PDBInfo &pdbInfo, Messages &messages);

/// The residue of this number in a chain and segment, or null.
const ResInfo *findRes(const PDBInfo &pdbInfo, int resID, std::string_view chainName,
                       std::string_view segName);

/// The atom of this name, or null. The first of equal ones. An atom with an insertion code is not found by
/// its own chain; but a chain name of two letters (which only a table can hold) is the same key as code and
/// chain: "AB" finds the atom of chain B with code A.
const AtomInfo *findAtom(const PDBInfo &pdbInfo, int resID, std::string_view atomName,
                         std::string_view chainName, std::string_view segName);

/// The places of the atoms of a name with wildcards: # tries the numbers 1 to 3, * the suffixes "", 1, 2, 3
/// twice over, so that an atom can stand in the list more than once. `places` needs room for maxWildAtoms.
/// Returns how many were found.
int findAtomList(const PDBInfo &pdbInfo, int resID, std::string_view atomName, std::string_view chainName,
                 std::string_view segName, std::span<std::size_t> places);

/// 0 for a plain name; 1 or 2 if its last wildcard is # or *. atomFmt gets the expansion format.
int isAtomExpr(std::string_view atomName, std::string &atomFmt);

/// Mean distance between the atoms at the places of two lists, angstrom; 0 if one is empty.
float findAtomListRad(std::span<const Coord3D> coords, std::span<const std::uint32_t> placesI,
                      std::span<const std::uint32_t> placesJ);

/// A text as a name. A longer one than a name can be is cut after a message.
Name pdbStrCpy(std::string_view text, Messages &messages);

/// A name read from a table: "{}", "none" and "(Null)" mean a blank. True if it was blanked.
bool blankName(Name &name);

} // namespace trelm
