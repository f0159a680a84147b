// Turning and shifting residues of the molecule, in double precision.
#pragma once

#include "structure/pdb.h"
#include "support/numerics/vec3.h"

#include <array>
#include <span>

namespace trelm {

using Axis = Vec3;

/// A place in double precision.
constexpr Axis toAxis(const Coord3D &at)
{
    return {static_cast<double>(at.x), static_cast<double>(at.y), static_cast<double>(at.z)};
}

/// Sine and cosine of one angle.
struct SinCos {
    double sine = 0.0, cosine = 1.0;
};

SinCos sinCos(double angle);

/// Those of the angle with the other sign.
constexpr SinCos negated(const SinCos &angle)
{
    return {-angle.sine, angle.cosine};
}

/// The columns of M = Rz(psi) Ry(theta) Rz(phi) in passive form: each output is M applied to e1, e2, e3.
/// Radians.
void rotate_coorsystem(double theta, double phi, double psi, Axis &x_axis_tensor, Axis &y_axis_tensor,
                       Axis &z_axis_tensor);

/// The same with the trigonometry already done, for loops over many turns.
inline void rotate_coorsystem(const SinCos &theta, const SinCos &phi, const SinCos &psi, Axis &x_axis_tensor,
                              Axis &y_axis_tensor, Axis &z_axis_tensor)
{
    x_axis_tensor = {phi.cosine * theta.cosine * psi.cosine - phi.sine * psi.sine,
                     -phi.cosine * theta.cosine * psi.sine - phi.sine * psi.cosine, phi.cosine * theta.sine};
    y_axis_tensor = {phi.sine * theta.cosine * psi.cosine + phi.cosine * psi.sine,
                     -phi.sine * theta.cosine * psi.sine + phi.cosine * psi.cosine, phi.sine * theta.sine};
    z_axis_tensor = {-theta.sine * psi.cosine, theta.sine * psi.sine, theta.cosine};
}

/// Turns the atoms of residues resN to resC by x' = M x with theta = angle[1], phi = angle[0], psi =
/// angle[2], the angles in degrees. With the negated Euler angles gamma, beta, alpha of a tensor this is the
/// turn into its frame. Stops at the first residue number above resC.
void rotateDomain(const std::array<double, 3> &angle, const Conformation &molecule, int resN, int resC);

/// The same for all residues.
void rotateMolecule(const std::array<double, 3> &angle, const Conformation &molecule);

/// Moves all places so that `point` comes to the origin.
void shiftToOrigin(std::span<Coord3D> coords, const Axis &point);

/// Moves the mean of the atoms of residues resN to resC to the origin; all atoms move. Fails after a
/// message if there are no such atoms.
Status shiftMol2Domain(const Conformation &molecule, int resN, int resC, Messages &messages);

} // namespace trelm
