// The saved copy of the coordinates, and PDB files.
#pragma once

#include "structure/pdb.h"

#include <span>
#include <string>

namespace trelm {

struct PDBSelectInfo;

/// Atoms to the saved copy, and back. There is one copy: a second store overwrites it. Return 0, always;
/// nothing happens without a copy to hold them.
int storePDBCoords(PDBInfo *pdbInfo);
int restorePDBCoords(PDBInfo *pdbInfo);

/// Writes the atoms that pass `sInfo` (null: all) as ATOM lines, then END. An empty name is standard output;
/// `remark` may be null. Returns 0, or 1 after a message if the file cannot be opened or not be written to
/// its end.
int writePDB(const std::string &pdbName, PDBInfo *pdbInfo, const PDBSelectInfo *sInfo, const char *remark);

/// Writes the molecule turned into each of the four frames, centred, to `outName`.0 to `outName`.3, and the
/// one of number `rotID` to `outName` too. An empty name gives the files .0 to .3 alone, and so does any
/// other number than 0 to 3, which is told of where there is a name. The angles are those of the frames,
/// degrees, in the order gamma, beta, alpha. The molecule itself stays as it was, and the saved copy of its
/// coordinates is overwritten with them. Returns the first failure's result, or 0; a numbered file that
/// cannot be opened is told and passed over.
int writePDBRot(std::span<const double, 4> angleList1, std::span<const double, 4> angleList2,
                std::span<const double, 4> angleList3, int rotID, PDBInfo *pdbInfo,
                const PDBSelectInfo *sInfo, const std::string &outName, const char *remark);

} // namespace trelm
