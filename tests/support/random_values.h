// Input of the numerical tests.
#pragma once

#include "support/numerics/random.h"

#include <vector>

namespace trelm {

/// Values in -1 to 1; a seed below 0 gives the same ones each time.
inline std::vector<float> randomValues(std::size_t count, int seed)
{
    std::vector<float> values(count);
    for (float &value : values)
        value = 2.0f * ran1(&seed) - 1.0f;
    return values;
}

} // namespace trelm
