// Second moments of the molecule: their axes are those of its shape.
#pragma once

#include "ground/messages.h"
#include "structure/rotate.h"
#include "structure/select.h"
#include "support/numerics/jacobi.h"

#include <span>

namespace trelm {

/// The second moments of points about their mean, divided by their number; square angstrom, row-major. There
/// must be one at least. Not the moment of inertia: the longest axis has the largest eigenvalue.
Matrix3d secondMoments(std::span<const Axis> points);

/// Those of some atoms of a molecule, all of one weight. Fails after a message if there is none.
Status calcInertia(const SelectedAtoms &selected, Matrix3d &inertiaTensor, Messages &messages);

} // namespace trelm
