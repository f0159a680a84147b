// The names that one hydrogen has in different programs and archives.
#pragma once

#include "structure/pdb.h"

#include <string_view>

namespace trelm {

/// The atom of a residue that `name` means where the residue has none of this very name; null if there is
/// none. H and HN are one; so are 1HB and HB1, and HT1 and H1. Of two hydrogens at one carbon old names count
/// 1 and 2, those of today 2 and 3: 1 is 3, where the residue has 2 and 3 and no 1, and the other way round.
const AtomInfo *findRenamed(const PDBInfo &pdbInfo, const ResInfo &residue, std::string_view name);

/// The full name of a methyl group whose number archives leave out: MG of THR and ILE is MG2, MD of ILE MD1.
/// Any other name stays.
std::string_view fullMethylName(std::string_view resName, std::string_view name);

/// Whether a name is that of a hydrogen: H behind any digits.
bool isHydrogenName(std::string_view name);

bool hasHydrogens(const PDBInfo &pdbInfo);

} // namespace trelm
