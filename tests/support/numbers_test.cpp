#include "support/numerics/numbers.h"

#include <gtest/gtest.h>

#include <array>

using namespace trelm;

namespace {

using Values = std::array<double, 3>;

/// Side by side, as a compiler likes to put them in vectors; not inlined, or it would know the values.
[[gnu::noinline]] Values scaledAndRounded(const Values &values, float scale)
{
    Values rounded = {};
    for (std::size_t k = 0; k < 3; ++k)
        rounded[k] = roundedToFloat(values[k] * (1.0 / static_cast<double>(scale)));
    return rounded;
}

TEST(RoundedToFloat, NeighboursAreRoundedAsWell)
{
    const Values expected = {0.03333333507180214, -0.23333333432674408, 4115.22607421875};
    EXPECT_EQ(scaledAndRounded({0.1, -0.7, 12345.678}, 3.0f), expected);
}

} // namespace
