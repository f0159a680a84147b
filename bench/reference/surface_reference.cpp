#include "reference/surface_reference.h"

namespace trelm {
namespace {

/// The circle in which a neighbour's sphere meets that of the atom.
struct Plane {
    double v[3];
    double limit;
};

std::vector<Plane> planesOf(std::size_t i, std::span<const double> co, std::span<const double> radius)
{
    std::vector<Plane> planes;
    for (std::size_t j = 0; j < radius.size(); ++j) {
        const double v[3] = {co[3 * j] - co[3 * i], co[3 * j + 1] - co[3 * i + 1],
                             co[3 * j + 2] - co[3 * i + 2]};
        const double squared = v[0] * v[0] + v[1] * v[1] + v[2] * v[2];
        const double reach = radius[i] + radius[j];
        if (j != i && squared <= reach * reach)
            planes.push_back({{v[0], v[1], v[2]},
                              (squared + radius[i] * radius[i] - radius[j] * radius[j]) / (2.0 * radius[i])});
    }
    return planes;
}

} // namespace

std::vector<int> exposedDotsPlain(std::span<const double> co, std::span<const double> radius,
                                  std::span<const double> dots)
{
    std::vector<int> exposed(radius.size(), 0);
    for (std::size_t i = 0; i < radius.size(); ++i) {
        const std::vector<Plane> planes = planesOf(i, co, radius);
        for (std::size_t u = 0; u + 2 < dots.size(); u += 3) {
            bool isCovered = false;
            for (const Plane &p : planes)
                isCovered =
                    isCovered || dots[u] * p.v[0] + dots[u + 1] * p.v[1] + dots[u + 2] * p.v[2] > p.limit;
            exposed[i] += isCovered ? 0 : 1;
        }
    }
    return exposed;
}

} // namespace trelm
