// The steric simulation of a bare list of atoms, without columns, names or charges.
#pragma once

#include "couplings/dipolar.h"
#include "ground/trelm.h"
#include "simulation/obstacle/atom_selection.h"

#include <string>

namespace trelm {

constexpr int maxFreeAtoms = 4999; ///< a file that reaches this number is refused

/// Reads white-space separated records: ATOM, serial, atom name, residue name, residue number, x, y, z
/// (angstrom). Words before the first ATOM and between the records are skipped; END or the end of the file
/// ends the list. An empty name reads nothing. The buffers need room for maxFreeAtoms. Returns 0, or 1 after
/// a message.
int readPDBfree(const std::string &inName, int &atomCount, const CoordinateBuffers &atoms);

/// Simulates the alignment of such a file and writes the tensor, with the couplings of the table if it has
/// any, to outAName. Returns 0, or non-zero after a message.
int ssiaFree(TrelmInfo *trelmInfo, const std::string &pdbFreeName, const std::string &outAName, DTable *dTab);

} // namespace trelm
