// How a step ended.
#pragma once

namespace trelm {

/// The value of a function that can fail, once it has said why. The numbers are those with which the program
/// ends.
enum class [[nodiscard]] Status : int{ok = 0, failed = 1, noSolution = -1};

} // namespace trelm
