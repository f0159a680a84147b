// Turning and shifting residues of the molecule, in double precision.
#pragma once

#include "structure/pdb.h"

#include <array>

namespace trelm {

using Axis = std::array<double, 3>;

/// The columns of M = Rz(psi) Ry(theta) Rz(phi) in passive form: each output is M applied to e1, e2, e3.
/// Radians.
void rotate_coorsystem(double theta, double phi, double psi, Axis &x_axis_tensor, Axis &y_axis_tensor,
                       Axis &z_axis_tensor);

/// Turns the atoms of residues resN to resC by x' = M x with theta = angle[1], phi = angle[0], psi =
/// angle[2], the angles in degrees. With the negated Euler angles gamma, beta, alpha of a tensor this is the
/// turn into its frame. Stops at the first residue number above resC. Returns 0.
int rotateDomain(const std::array<double, 3> &angle, PDBInfo *pdbInfo, int resN, int resC);

/// Moves the mean of the atoms of residues resN to resC to the origin; all atoms move. Returns 0, or 1 after
/// a message if there are no such atoms.
int shiftMol2Domain(PDBInfo *pdbInfo, int resN, int resC);

} // namespace trelm
