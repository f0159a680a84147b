// How a step ended.
#pragma once

namespace trelm {

/// The value of a function that can fail, once it has said why. The numbers are those with which the program
/// ends. `ended` is no failure: a model ends the run there on purpose, with status 0, and no more is said.
enum class [[nodiscard]] Status : int{ok = 0, failed = 1, noSolution = -1, ended = 2};

} // namespace trelm
