// Input of the numerical tests.
#pragma once

#include "support/numerics/random.h"

#include <vector>

namespace trelm {

/// Values in -1 to 1, the same for a seed below 0.
inline std::vector<float> randomValues(std::size_t count, int seed)
{
    std::vector<float> values(count);
    RandomStream random(seed);
    for (float &value : values)
        value = 2.0f * random.ran1() - 1.0f;
    return values;
}

} // namespace trelm
