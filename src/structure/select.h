// Atom selection: criteria in a record, and the atoms that they choose as a value.
#pragma once

#include "ground/messages.h"
#include "structure/pdb.h"
#include "support/text/match.h"

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace trelm {

/// A selection: for each atom of a molecule, in file order, 1 if it is in and 0 if not.
using AtomMask = std::vector<unsigned char>;

/// Some atoms of a molecule.
struct SelectedAtoms {
    const PDBInfo &pdbInfo;
    const AtomMask &mask;
    std::span<const Coord3D> coords = pdbInfo.coordinates(); ///< where they stand

    [[nodiscard]] bool has(std::size_t place) const { return mask[place] != 0; }
};

/// Which atoms a selection is about.
enum SelectMode : int {
    selectFailing = -1, ///< those that fail the criteria
    selectNone = 0,
    selectAll = 1,
    selectMatching = 2, ///< those that meet the criteria
};

/// The residues that a selection is about.
enum SelectClass : int { classAll = 1, classCanonical = 4 };

/// The criteria of a selection.
struct PDBSelectInfo {
    int res1 = 0, resN = 0; ///< residue range
    std::string resNameList = "*", atomNameList = "*", chainNameList = "*",
                segNameList = "*"; ///< blank-separated
    int resIDMode = 0;             ///< 1 tests res1..resN
    MatchMode resNameMode = matchNone, atomNameMode = matchExact, chainNameMode = matchNone,
              segNameMode = matchNone;
    int selectID = 1; ///< 0 takes the chosen atoms out, any other number adds them
    SelectMode selectMode = selectAll;
    SelectClass selectClass = classAll;
    int hetatmFlag = 0; ///< of readPDB
    int dbgFlag = 0;
};

/// Puts res1 and resN in order, and switches off the test of a list that is exactly "*".
void pdbSelectAdjust(PDBSelectInfo &sInfo);

/// Warns of each pattern of the record that is no regular expression and so matches nothing.
void pdbSelectCheck(const PDBSelectInfo &sInfo, Messages &messages);

/// Applies a record in order (pdbSelectAdjust) to a selection of the molecule's atoms. Modes 0 and 1 empty or
/// set it and ask nothing, not even the class, which pdbSelectTest does ask. Modes 2 and -1 change it for the
/// chosen atoms alone, and on a molecule of one chain look at the residues res1 to resN alone, whatever
/// resIDMode says: mode -1 with a range chooses nothing there, and on several chains what lies outside.
void pdbSelect(const PDBInfo &pdbInfo, const PDBSelectInfo &sInfo, AtomMask &selection, Messages &messages);

/// Whether an atom is in; a null record takes every atom. The class is asked first, in every mode. In mode -1
/// an atom is in when one of the tests fails; with no test none is in.
bool pdbSelectTest(const PDBSelectInfo *sInfo, const AtomInfo &atom);

/// The same for all atoms of a list, with the patterns compiled once.
AtomMask pdbSelectTestAll(const PDBSelectInfo *sInfo, std::span<const AtomInfo> atoms);

} // namespace trelm
