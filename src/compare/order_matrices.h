// Two order matrices side by side: combined, the angles between their frames, and the rotation from one
// frame to the other as a hinge, in Euler angles, and as closure, twist and bend.
#pragma once

#include "couplings/tensor.h"
#include "ground/trelm.h"
#include "simulation/orientations/rotation.h"

#include <string>

namespace trelm {

/// Combines two Saupe vectors element by element: opCode 1 c1 a + c2 b, 2 the difference, 3 the product, 4
/// the quotient; 5 takes all of the one with the larger general magnitude, scaled; any other gives 0. Returns
/// 0.
int addSaupe(int opCode, float c1, float c2, const Saupe &userSaupe1, const Saupe &userSaupe2, Saupe &saupe);

/// Compares two tensors and writes the report as a coupling output without couplings; the combined tensor
/// goes into `dTab`. An axis with three equal components was not given: the twist axis is z then, and the
/// hinge axis that of solution rotN, 0 to 3. A hinge axis that is given is told of on standard output, and is
/// taken at the length it has. An axis without direction (the hinge between equal frames) is printed as no
/// number, and so are closure, twist and bend about it; those between equal frames are 0. Returns 0, or 1
/// after a message: values that are no finite numbers, an output that cannot be written to its end, or rotN
/// out of range where the hinge axis is taken from it.
int compareSaupe(TrelmInfo *trelmInfo, const Saupe &userSaupe1, const Saupe &userSaupe2,
                 const std::string &outName, DTable *dTab, const Vector3f &hingeAxis,
                 const Vector3f &twistAxis);

} // namespace trelm
