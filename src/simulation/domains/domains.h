// Molecules of two domains: putting the domains in place, and the test whether they run into each other.
// Residues are told by their numbers alone, as in rotateDomain.
#pragma once

#include "ground/messages.h"
#include "simulation/domains/options.h"
#include "structure/pdb.h"
#include "support/numerics/jacobi.h"

#include <cstddef>
#include <span>
#include <vector>

namespace trelm {

/// Moves the mean of the residues of angle definition 1, hydrogens left out, to the origin, turns the
/// molecule onto the axes of their second moments (initOrientFlag; yzFlag exchanges two of them), puts domain
/// 2 in place (angleDomFlag), and moves the CA of resDom1Origin to the origin. Fails after a
/// message; residues without axes fail also where nothing is turned onto them.
Status initOrient(const Conformation &molecule, const DomainOptions &options, int yzFlag, Messages &messages);

/// Turns domain 2 by angleDom about the CA of its origin residue, then moves the CA of that of domain 1 to
/// the origin. Warns of a range without atoms. Fails after a message if a residue has no CA.
Status positionDomain(const Conformation &molecule, const DomainOptions &options, Messages &messages);

/// Places, in the atom list, of the exposed backbone atoms (C, CA, N) of residues resN to resC, and of those
/// of all others. Each group is measured without the other. Fails after a message if either group has no
/// atoms.
Status selectSurfDom(const Conformation &molecule, int resN, int resC, std::vector<std::size_t> &indI,
                     std::vector<std::size_t> &indJ, Messages &messages);

/// Whether an atom of one list is nearer to one of the other than clashDist, after a line about the first
/// such pair.
bool chkClashDom(const Conformation &molecule, float clashDist, std::span<const std::size_t> indI,
                 std::span<const std::size_t> indJ, Messages &messages);

/// The second moments, square angstrom, of residues resN to resC about their mean, hydrogens left out, all
/// atoms of one weight. Fails after a message if there are no such atoms.
Status calcInertiaSel(const Conformation &molecule, int resN, int resC, Matrix3d &inertiaTensor,
                      Messages &messages);

} // namespace trelm
