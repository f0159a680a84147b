#include "reference/cone_reference.h"

#include "support/numerics/numbers.h"

#include <cmath>

namespace trelm {

double drawAnglePlain(RandomStream &random, const ConeSetup &cone)
{
    double gamma = 0.0, u = 0.0;
    do {
        gamma = random.gauss() * cone.coneWidth * pi / 180.0;
        u = static_cast<double>(random.ran1());
    } while (std::sin(std::fabs(gamma)) <= u);
    return gamma;
}

} // namespace trelm
