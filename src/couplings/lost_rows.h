// The rows of a table that a fit will not use although nobody left them out, and why.
#pragma once

#include "couplings/dipolar.h"

#include <string>
#include <vector>

namespace trelm {

enum class LossReason { noAtom, noResidue, noChain, tooManyAtoms, noWeight, noValue, tooLarge };

/// Rows that are lost for one reason, by what is missing.
struct LostGroup {
    LossReason reason;
    std::string missing;     ///< the name of the atom, or of chain and segment
    std::string instead;     ///< what the structure has in its place: one name, all names, or chains
    bool isRenamed = false;  ///< `instead` is the same atom under another name
    int count = 0;           ///< rows
    int first = 0, last = 0; ///< residues, of the rows in their order
};

struct LostRows {
    std::vector<LostGroup> groups;
    int given = 0, used = 0;     ///< rows: all but those that the options left out
    bool lacksHydrogens = false; ///< a lost row names a hydrogen, and the structure has none
};

/// Looks at a table after buildDC; `aOff` is what that added to residue numbers.
LostRows findLostRows(const PDBInfo &pdbInfo, const DTable &dTab, int aOff);

/// A line for each lost row of a table that another program wrote, with its place in the file.
void tellLostRows(const PDBInfo &pdbInfo, const DTable &dTab, int aOff, Messages &messages);

/// The chains and segments that the rows of a table were found in, after buildDC.
std::string chainsOfRows(const PDBInfo &pdbInfo, const DTable &dTab);

/// One sentence: "0 of 63 couplings used: 63 name atom HN, the structure has H (-names auto maps them)".
std::string lostRowsText(const LostRows &lost);

} // namespace trelm
