// The steric simulation of a bare list of atoms, without columns, names or charges.
#pragma once

#include "couplings/tensor.h"
#include "simulation/alignment/options.h"
#include "simulation/obstacle/atom_selection.h"

#include <string>

namespace trelm {

constexpr int maxFreeAtoms = 4999; ///< a file that reaches this number is refused

/// Reads white-space separated records: ATOM, serial, atom name, residue name, residue number, x, y, z
/// (angstrom). Words before the first ATOM and between the records are skipped; END or the end of the file
/// ends the list. An empty name reads nothing. The buffers need room for maxFreeAtoms. Returns 0, or 1 after
/// a message.
int readPDBfree(const std::string &inName, int &atomCount, const CoordinateBuffers &atoms);

/// Simulates the alignment of such a file. `saupe`: with its own sign. Returns 0, or non-zero after a
/// message.
int ssiaFree(const AlignmentOptions &options, const std::string &pdbFreeName, Saupe &saupe);

} // namespace trelm
