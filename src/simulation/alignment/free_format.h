// The steric simulation of a bare list of atoms, without columns, names or charges.
#pragma once

#include "couplings/tensor.h"
#include "ground/messages.h"
#include "simulation/obstacle/atom_selection.h"

#include <string>

namespace trelm {

struct AlignmentOptions;

constexpr int maxFreeAtoms = 4999; ///< a file that reaches this number is refused

/// Reads white-space separated records: ATOM, serial, atom name, residue name, residue number, x, y, z
/// (angstrom). Words before the first ATOM and between the records are skipped; END or the end of the file
/// ends the list. An empty name reads nothing. The buffers need room for maxFreeAtoms. Fails after a
/// message.
Status readPDBfree(const std::string &inName, int &atomCount, const CoordinateBuffers &atoms,
                   Messages &messages);

/// Simulates the alignment of such a file. `saupe`: with its own sign. Fails after a message.
Status ssiaFree(const AlignmentOptions &options, const std::string &pdbFreeName, Saupe &saupe,
                Messages &messages);

} // namespace trelm
