// The end of a process from within.
#pragma once

namespace trelm {

/// The fatal exit of the numerical code: three lines on the standard error stream, then the process ends with
/// status 1, without the tear-down and the memory balance of other failures.
[[noreturn]] void mzerror(const char *text);

} // namespace trelm
