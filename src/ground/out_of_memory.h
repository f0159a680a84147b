// The end of a run that found no memory where no caller knows a way to go on.
#pragma once

#include "ground/messages.h"

#include <new>

namespace trelm {

/// Thrown after its message. The process ends with `status`, without tear-down and memory balance.
struct OutOfMemory : std::bad_alloc {
    explicit OutOfMemory(int endStatus) : status(endStatus) {}
    int status;
};

/// The three lines of the numerical code, and the end with status 1.
[[noreturn]] inline void endWithoutMemory(const char *what, Messages &messages)
{
    messages.err("Numerical Recipes run-time error...\n%s\n...now exiting to system...\n", what);
    throw OutOfMemory(1);
}

} // namespace trelm
