// Sorts, ascending.
#pragma once

#include <span>

namespace trelm {

/// Values that are no numbers go to the end.
void rSort(std::span<float> values);

/// Sorts `keys` and moves `companions` with them; equal keys keep their order.
void iSort2(std::span<int> keys, std::span<int> companions);

} // namespace trelm
