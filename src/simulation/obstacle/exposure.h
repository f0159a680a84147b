// Which spheres the solvent reaches: the surface of surface.h where only "enough of it" is asked.
#pragma once

#include "ground/messages.h"

#include <span>
#include <vector>

namespace trelm {

/// When a sphere counts as exposed.
struct ExposureLimit {
    int densit = 700;        ///< at least so many dots on each sphere
    double probe = 1.4;      ///< what the radii hold beside those of the bare atoms, angstrom
    double leastRatio = 0.5; ///< the exposed area over that of the bare atom is above it
};

/// For each sphere whether its exposed area, as nsc_dclm counts it, is enough. A sphere is left as soon as
/// the dots that were looked at settle it. `co`: three values for each sphere, `radius`: one. Fails after a
/// message if there are no spheres, and if the set of dots cannot be made.
Status findExposedBalls(std::span<const double> co, std::span<const double> radius,
                        const ExposureLimit &limit, std::vector<bool> &isExposed, Messages &messages);

} // namespace trelm
