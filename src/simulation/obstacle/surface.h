// The solvent-exposed surface: which atoms a particle can touch.
//
// Source of the method: Shrake, Rupley, J. Mol. Biol. 79 (1973) 351: dots on the sphere of each atom, and
// those count that no neighbour covers.
#pragma once

#include "ground/messages.h"
#include <span>
#include <vector>

namespace trelm {

/// What nsc_dclm is asked for beside the total area.
constexpr int surfaceDotList = 1;
constexpr int surfaceVolume = 2;
constexpr int surfaceAtomAreas = 4;

/// Areas in square angstrom, volume in cubic angstrom.
struct Surface {
    double value_of_area = 0.0;
    double value_of_vol = 0.0;
    std::vector<double> at_area; ///< one for each atom, in their order
    std::vector<double> lidots;  ///< exposed dots, three values each
};

/// The area of so many of a sphere's dots.
double areaOfDots(double radius, int count, int total);

/// The exposed surface of spheres. `co`: three values for each atom, `radius`: one. `densit`: at least so
/// many dots on each sphere (see sphere.h; the generator's set is replaced if it is another). `mode`: the sum
/// of what is asked for. Fails after a warning if there are no atoms.
Status nsc_dclm(std::span<const double> co, std::span<const double> radius, int densit, int mode,
                Surface &surface, Messages &messages);

} // namespace trelm
