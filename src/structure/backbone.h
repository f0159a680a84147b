// Backbone torsion angles.
#pragma once

#include "structure/pdb.h"

#include <string_view>

namespace trelm {

/// The torsion angle r0-r1-r2-r3 in degrees, -180 to 180; 0 where three neighbours stand in a line and there
/// is none. Returns 0, or 1 with phi 0 if the cosine lies outside -1.001 to 1.001 or is no number.
int getDihedralAngle(const Coord3D &r0, const Coord3D &r1, const Coord3D &r2, const Coord3D &r3, float &phi);

/// phi and psi of a residue, degrees; 9999.0 where an atom is missing. Returns 1 for phi plus 2 for psi.
int getPDBPhiPsi(const Conformation &molecule, int resID, std::string_view chainName,
                 std::string_view segName, float &phi, float &psi);

/// Turns the shorter side of the segment so that the residue's torsions become phiNew and psiNew. Returns 1
/// if phi was set plus 2 if psi was set.
int setPDBPhiPsi(const Conformation &molecule, int resID, std::string_view chainName,
                 std::string_view segName, float phiNew, float psiNew);

} // namespace trelm
