#include "support/numerics/sort.h"

#include <algorithm>
#include <cmath>
#include <tuple>
#include <utility>
#include <vector>

namespace trelm {

void rSort(std::span<float> values)
{
    // A sort by < alone has no order for a NaN and could run out of the array.
    const auto end = std::partition(values.begin(), values.end(), [](float v) { return !std::isnan(v); });
    std::sort(values.begin(), end);
}

void iSort2(std::span<int> keys, std::span<int> companions)
{
    const std::size_t n = std::min(keys.size(), companions.size());
    std::vector<std::pair<int, int>> rows(n);
    for (std::size_t i = 0; i < n; ++i)
        rows[i] = {keys[i], companions[i]};
    std::ranges::stable_sort(rows, {}, &std::pair<int, int>::first);
    for (std::size_t i = 0; i < n; ++i)
        std::tie(keys[i], companions[i]) = rows[i];
}

} // namespace trelm
