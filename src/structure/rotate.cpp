#include "structure/rotate.h"

#include "support/text/text.h"

#include <cmath>

namespace trelm {

SinCos sinCos(double angle)
{
    return {std::sin(angle), std::cos(angle)};
}

void rotate_coorsystem(double theta, double phi, double psi, Axis &x_axis_tensor, Axis &y_axis_tensor,
                       Axis &z_axis_tensor)
{
    rotate_coorsystem(sinCos(theta), sinCos(phi), sinCos(psi), x_axis_tensor, y_axis_tensor, z_axis_tensor);
}

int rotateDomain(const std::array<double, 3> &angle, PDBInfo *pdbInfo, int resN, int resC)
{
    constexpr double radian = radiansOfDegree;
    Axis x, y, z;
    // The columns of the turn by the negated angles are the rows of the turn itself.
    rotate_coorsystem(-angle[1] * radian, -angle[2] * radian, -angle[0] * radian, x, y, z);
    for (AtomInfo &atom : pdbInfo->atoms()) {
        if (atom.resID > resC)
            break;
        if (atom.resID < resN)
            continue;
        const Axis old = {static_cast<double>(atom.x), static_cast<double>(atom.y),
                          static_cast<double>(atom.z)};
        atom.x = static_cast<float>(old[0] * x[0] + old[1] * x[1] + old[2] * x[2]);
        atom.y = static_cast<float>(old[0] * y[0] + old[1] * y[1] + old[2] * y[2]);
        atom.z = static_cast<float>(old[0] * z[0] + old[1] * z[1] + old[2] * z[2]);
    }
    return 0;
}

int shiftMol2Domain(PDBInfo *pdbInfo, int resN, int resC)
{
    Vec3 mean = {};
    int count = 0;
    for (const AtomInfo &atom : pdbInfo->atoms()) {
        if (atom.resID < resN || atom.resID > resC)
            continue;
        mean[0] += static_cast<double>(atom.x);
        mean[1] += static_cast<double>(atom.y);
        mean[2] += static_cast<double>(atom.z);
        ++count;
    }
    if (count == 0)
        return complain("Error in positionDomain: zero atoms selected.");
    for (AtomInfo &atom : pdbInfo->atoms()) {
        atom.x = static_cast<float>(static_cast<double>(atom.x) - mean[0] / count);
        atom.y = static_cast<float>(static_cast<double>(atom.y) - mean[1] / count);
        atom.z = static_cast<float>(static_cast<double>(atom.z) - mean[2] / count);
    }
    return 0;
}

} // namespace trelm
