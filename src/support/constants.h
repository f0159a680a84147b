// Numbers that several folders share.
#pragma once

namespace trelm {

/// pi of all angle conversions. Nine digits on purpose: with more of them last places of result files would
/// move. What is no angle of a file (the turns of a Fourier transform) takes std::numbers::pi.
constexpr double pi = 3.14159265;

} // namespace trelm
