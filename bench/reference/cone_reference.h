// Plain form of the cone's random angle: every draw worked out.
#pragma once

#include "errors/cone_noise.h"

namespace trelm {

/// As drawAngle of a Gaussian cone.
double drawAnglePlain(RandomStream &random, const ConeSetup &cone);

} // namespace trelm
