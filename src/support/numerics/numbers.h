// Numbers that several folders share, and single precision in the midst of double precision.
#pragma once

namespace trelm {

/// pi of all angle conversions. Nine digits on purpose: with more of them last places of result files would
/// move. What is no angle of a file (the turns of a Fourier transform) takes std::numbers::pi.
constexpr double pi = 3.14159265;
constexpr double halfPi = 1.570796325;

/// A float in double precision, with a short name for formulas and lists of arguments.
constexpr double number(float value)
{
    return static_cast<double>(value);
}

/// The value as a float holds it. Two conversions say the same, but GCC 12 loses both of them where it works
/// on two neighbouring values at once; it keeps them where the float lies in memory.
inline double roundedToFloat(double value)
{
    volatile float single = static_cast<float>(value);
    return static_cast<double>(single);
}

} // namespace trelm
