// Single precision in the midst of double precision.
#pragma once

namespace trelm {

/// The value as a float holds it. Two conversions say the same, but GCC 12 loses both of them where it works
/// on two neighbouring values at once; it keeps them where the float lies in memory.
inline double roundedToFloat(double value)
{
    volatile float single = static_cast<float>(value);
    return static_cast<double>(single);
}

} // namespace trelm
