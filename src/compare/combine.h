// The five actions on two values, of couplings and of order matrices alike.
#pragma once

#include "compare/options.h"

namespace trelm {

/// What opCode makes of two scaled values: sum, difference, product, quotient; for opMax the second if
/// `isSecond`, which the caller judges on unscaled values, else the first. 0 for any other opCode.
inline double combined(OpCode opCode, double a, double b, bool isSecond)
{
    switch (opCode) {
    case opAdd:
        return a + b;
    case opSub:
        return a - b;
    case opMul:
        return a * b;
    case opDiv:
        return a / b;
    case opMax:
        return isSecond ? b : a;
    default:
        return 0.0;
    }
}

} // namespace trelm
