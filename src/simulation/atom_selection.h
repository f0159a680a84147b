// The atoms and charges that a simulation is given.
#pragma once

#include "ground/trelm.h"
#include "simulation/charges.h"
#include "structure/pdb.h"

#include <span>
#include <vector>

namespace trelm {

/// Coordinates of a simulation, angstrom, counted from 0.
struct CoordinateBuffers {
    std::span<double> x, y, z;
};

/// Keeps `selected` on the exposed atoms only. Hydrogens in the molecule that a selection left out make the
/// marks land on other atoms than those measured: they go by the count of the selected atoms, as the field is
/// used to. Returns 0, or 1 after a message.
int callNSC(PDBInfo *pdbInfo);

/// Moves the exposed atoms of bare coordinates, all of one radius, to the front. `atomSelCount` gets their
/// number. Returns 0, or 1 after a message.
int surfSel(int atomCount, const CoordinateBuffers &atoms, int &atomSelCount);

/// Fills the coordinates of a simulation: the charges first (in an electrostatic run; chargeAtomID then
/// numbers these places, and the atoms that carry the charges are known to the caller's copy alone), then the
/// selected atoms, exposed ones only with surfFlag. The buffers need room for both. Returns 0, or 1 after a
/// message.
int chCoorSelect(PDBInfo *pdbInfo, const TrelmInfo &trelmInfo, const CoordinateBuffers &atoms,
                 ChargeSet &charges, int verb, int &chAtomSelCount);

} // namespace trelm
