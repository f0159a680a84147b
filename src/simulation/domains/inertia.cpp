#include "simulation/domains/inertia.h"

#include "support/text/text.h"

#include <vector>

namespace trelm {

Matrix3d secondMoments(std::span<const Axis> points)
{
    const auto count = static_cast<double>(points.size());
    Axis mean = {};
    for (const Axis &point : points)
        for (std::size_t k = 0; k < 3; ++k)
            mean[k] += point[k];
    for (double &element : mean)
        element /= count;
    Matrix3d moments = {};
    for (const Axis &point : points)
        for (std::size_t i = 0; i < 3; ++i)
            for (std::size_t j = 0; j < 3; ++j)
                moments[3 * i + j] += (point[i] - mean[i]) * (point[j] - mean[j]);
    for (double &element : moments)
        element /= count;
    return moments;
}

Status calcInertia(const SelectedAtoms &selected, Matrix3d &inertiaTensor, Messages &messages)
{
    std::vector<Axis> points;
    for (std::size_t i = 0; i < selected.mask.size(); ++i)
        if (selected.has(i))
            points.push_back(toAxis(selected.coords[i]));
    if (points.empty())
        return messages.fail("WARNING: Zero atoms for inertia tensor selected.");
    inertiaTensor = secondMoments(points);
    return Status::ok;
}

} // namespace trelm
