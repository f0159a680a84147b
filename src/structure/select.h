// Atom selection: criteria in a record, applied by writing an ID into each atom.
#pragma once

#include "structure/pdb.h"

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace trelm {

/// The criteria of a selection. Match modes: 0 no test, 1 exact, 2 regular expression, 3 glob.
struct PDBSelectInfo {
    int res1 = 0, resN = 0; ///< residue range
    std::string resNameList = "*", atomNameList = "*", chainNameList = "*",
                segNameList = "*"; ///< blank-separated
    int resIDMode = 0;             ///< 1 tests res1..resN
    int resNameMode = 0, atomNameMode = 1, chainNameMode = 0, segNameMode = 0;
    int selectID = 1;    ///< value written to marked atoms
    int selectMode = 1;  ///< 0 clear all, 1 set all, 2 select by the criteria, -1 by their failure
    int selectClass = 1; ///< 1 all residues, 4 canonical amino acids only
    int hetatmFlag = 0;  ///< of readPDB
    int dbgFlag = 0;
};

/// Puts res1 and resN in order, and switches off the test of a list that is exactly "*".
void pdbSelectAdjust(PDBSelectInfo &sInfo);

/// One line on the standard error stream for each pattern of the record that is no regular expression and so
/// matches nothing. Returns how many there were.
int pdbSelectCheck(const PDBSelectInfo &sInfo);

/// Applies the record to the molecule. Modes 0 and 1 mark every atom and ask nothing, not even the class,
/// which pdbSelectTest does ask. Modes 2 and -1 only add marks, and on a molecule of one chain look at the
/// residues res1 to resN alone, whatever resIDMode says: mode -1 with a range marks nothing there, and on
/// several chains what lies outside. Returns the number of atoms marked.
int pdbSelect(PDBInfo *pdbInfo, PDBSelectInfo *sInfo);

/// One-shot selection of atoms by name. The range is honoured on a molecule of one chain only. Returns as
/// pdbSelect.
int pdbSelect1(PDBInfo *pdbInfo, int res1, int resN, std::string_view atomNameList, int selectID,
               int matchMode);

/// 1 if the atom is in, 0 if not; a null record takes every atom. The class is asked first, in every mode. In
/// mode -1 an atom is in when one of the tests fails; with no test none is in.
int pdbSelectTest(const PDBSelectInfo *sInfo, const AtomInfo *atomInfo);

/// Write a mark, 0 or a null pointer to every atom. Return the atom count.
int pdbSetSelection(PDBInfo *pdbInfo, int selectID);
int pdbClearSelection(PDBInfo *pdbInfo);
int pdbClearAuxInfo(PDBInfo *pdbInfo);

/// The marks of all atoms, to put them back when a later selection has used them up.
std::vector<int> selectionMarks(const PDBInfo &pdbInfo);
void restoreMarks(PDBInfo *pdbInfo, std::span<const int> marks);

} // namespace trelm
