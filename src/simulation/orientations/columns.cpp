#include "simulation/orientations/columns.h"

#include <algorithm>
#include <cmath>

namespace trelm {

QuickColumns makeQuickColumns(const Coordinates &atoms)
{
    QuickColumns quick;
    float size = 0.0f;
    const auto column = [&size](std::span<const double> values) {
        std::vector<float> single(values.begin(), values.end());
        for (const float value : single)
            size = std::max(size, std::fabs(value));
        const std::size_t blocks = (values.size() + QuickColumns::blockSize - 1) / QuickColumns::blockSize;
        single.resize(blocks * QuickColumns::blockSize, values.empty() ? 0.0f : single.back());
        return single;
    };
    quick.x = column(atoms.x);
    quick.y = column(atoms.y);
    quick.z = column(atoms.z);
    // Quick and deciding coordinate differ by the roundings of coordinates, direction, products and sums: in
    // all below 14 halves of the last place of a number below 2 * size. This is more than twice that.
    quick.error = 4e-6f * size;
    return quick;
}

} // namespace trelm
