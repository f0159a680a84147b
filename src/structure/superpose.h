// One set of atoms laid on another by least squares.
// Source: Horn, J. Opt. Soc. Am. A 4 (1987) 629; the problem is that of Kabsch, Acta Cryst. A32 (1976) 922.
#pragma once

#include "structure/pdb.h"
#include "structure/select.h"
#include "support/numerics/vec3.h"

#include <span>

namespace trelm {

/// A turn about the origin behind a shift, and before another: x' = turn (x - from) + to.
struct Superposition {
    Matrix3d turn = {1, 0, 0, 0, 1, 0, 0, 0, 1};
    Vec3 from = {}, to = {}; ///< the middles of both sets, angstrom
    double rmsd = 0.0;       ///< of the atoms in the selection, angstrom
};

/// Lays the selected atoms of `moved` on those of `fixed`: all three are of one molecule, one entry for each
/// atom. A proper rotation, also of atoms in one plane. Atoms that do not determine it (fewer than three, or
/// in one line) give one of the best.
Superposition superpose(std::span<const Coord3D> fixed, std::span<const Coord3D> moved,
                        const AtomMask &selection);

/// Moves atoms in place.
void moveAtoms(const Superposition &superposition, std::span<Coord3D> coords);

} // namespace trelm
