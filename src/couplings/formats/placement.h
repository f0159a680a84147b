// The atoms that another program's names mean in a structure.
#pragma once

#include "couplings/dipolar.h"

namespace trelm {

/// Gives the valid rows of a table that another program wrote the names of the structure: chain and segment;
/// H for HN and the other way round, and hydrogens that are counted otherwise; groups of atoms (Q and M
/// names, the wildcards % * # +) as a name with a wildcard of this program that gives those very atoms. A row
/// that several chains fit, whose two hydrogens of a carbon are not told apart (HBx), or whose atoms no name
/// gives becomes invalid and is told with its place in the file. What the structure does not have stays as it
/// is: findLostRows tells. Numbers of chains (1 for A) are those of the structure's chains. After the choice
/// of rows, before buildDC; `aOff` as there. Fails after a message if the table cannot be fitted.
Status placeRows(const PDBInfo &pdbInfo, int aOff, DTable &dTab, Messages &messages);

} // namespace trelm
