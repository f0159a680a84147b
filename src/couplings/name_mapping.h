// Tables whose names, or whose order of the two atoms, are not those of the structure.
#pragma once

#include "couplings/dipolar.h"

#include <string>
#include <vector>

namespace trelm {

/// A name of the table, and the structure's for the same atom.
struct MappedName {
    std::string from, to;
    int rows = 0;
};

struct NameMapping {
    std::vector<MappedName> names;
    int turnedPairs = 0; ///< pairs that have a fixed distance in the other order of their atoms alone
};

/// Gives the valid rows the names of the structure where it has their atoms under others, and to pairs like N
/// and H the fixed distance of H and N. After the choice of rows, before buildDC; `aOff` as there.
NameMapping mapNames(const PDBInfo &pdbInfo, int aOff, DTable &dTab);

/// One sentence: "HN read as H (63 rows), ...".
std::string mappingText(const NameMapping &mapping);

/// The valid pairs that mapNames would turn.
int countTurnedPairs(const DTable &dTab);

} // namespace trelm
