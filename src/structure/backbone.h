// Backbone torsion angles, and the atom columns of text tables.
#pragma once

#include "structure/pdb.h"
#include "support/table.h"

#include <string_view>
#include <vector>

namespace trelm {

/// The torsion angle r0-r1-r2-r3 in degrees, -180 to 180. Returns 0, or 1 with phi 0 if the cosine lies
/// outside -1.001 to 1.001. Four points in a line give 180 or 0.
int getDihedralAngle(const Coord3D &r0, const Coord3D &r1, const Coord3D &r2, const Coord3D &r3, float &phi);

/// phi and psi of a residue, degrees; 9999.0 where an atom is missing. Returns 1 for phi plus 2 for psi.
int getPDBPhiPsi(PDBInfo *pdbInfo, int resID, std::string_view chainName, std::string_view segName,
                 float &phi, float &psi);

/// Turns the shorter side of the segment so that the residue's torsions become phiNew and psiNew. Changes
/// `selected` of all atoms. Returns 1 if phi was set plus 2 if psi was set.
int setPDBPhiPsi(PDBInfo *pdbInfo, int resID, std::string_view chainName, std::string_view segName,
                 float phiNew, float psiNew);

/// Angles of all residues with numbers res1 - 1 to resN + 1, into the residues.
void updatePDBAngles(PDBInfo *pdbInfo, int res1, int resN);

/// A stand-by entry with no effect.
void updatePDBShifts(PDBInfo *pdbInfo);

/// Places of the atom columns of a table, negative where absent.
struct AtomTabLocs {
    int resID = -1, resName = -1, atomName = -1, chainName = -1, segName = -1;
};

/// What the atom columns of one row hold.
struct AtomTabVals {
    int resID = 0;
    Name resName, atomName, chainName, segName;
};

/// Finds RESID, RESNAME, ATOMNAME, CHAINNAME, SEGNAME with a suffix such as "_I".
void getAtomTabLocs(const std::vector<tabVar> &varInfo, std::string_view suffix, AtomTabLocs &locs);

/// Reads the atom columns of the row at rPtr; fields without a column stay. Returns a mask of what was found:
/// 1 residue number, 2 atom name, 4 residue name, 8 chain name, 16 segment name.
int getAtomTabVals(const std::vector<tabVar> &varInfo, const float *rPtr, const AtomTabLocs &locs,
                   AtomTabVals &vals);

} // namespace trelm
