// The field of a charged flat surface in salt.
//
// Source: Gouy, J. Phys. (Paris) 9 (1910) 457; Chapman, Philos. Mag. 25 (1913) 475.
#pragma once

#include "ground/messages.h"

namespace trelm {

struct FieldOptions;

struct FieldConstants {
    float rho = 0.0f;            ///< ion pairs per cubic nanometre
    double kappa = 0.0, u = 0.0; ///< inverse Debye length, 1/nm; reduced surface charge
    float y0 = 0.0f;             ///< potential at the surface, kT/e
    float gamma = 0.0f;          ///< tanh(y0 / 4)
};

FieldConstants fieldConstants(const FieldOptions &options);

/// The potential, kT/e, at a distance from the surface, angstrom.
double surfacePotential(const FieldConstants &field, double distance);

/// Density, Debye length and surface potential as REMARK lines.
void reportField(const FieldConstants &field, Messages &messages);

/// Warns of salt, temperature, surface charge, scale and cutoff that make no sense: the run goes on with the
/// numbers, or no numbers, that they give.
void checkField(const FieldOptions &options, Messages &messages);

} // namespace trelm
