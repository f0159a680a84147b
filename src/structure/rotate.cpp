#include "structure/rotate.h"

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

void rotateDomain(const std::array<double, 3> &angle, const Conformation &molecule, int resN, int resC)
{
    constexpr double radian = radiansOfDegree;
    Axis x, y, z;
    // The columns of the turn by the negated angles are the rows of the turn itself.
    rotate_coorsystem(-angle[1] * radian, -angle[2] * radian, -angle[0] * radian, x, y, z);
    for (std::size_t i = 0; i < molecule.coords.size(); ++i) {
        const int resID = molecule.pdbInfo.atomList[i].resID;
        if (resID > resC)
            break;
        if (resID < resN)
            continue;
        const Axis old = toAxis(molecule.coords[i]);
        molecule.coords[i] = {static_cast<float>(old[0] * x[0] + old[1] * x[1] + old[2] * x[2]),
                              static_cast<float>(old[0] * y[0] + old[1] * y[1] + old[2] * y[2]),
                              static_cast<float>(old[0] * z[0] + old[1] * z[1] + old[2] * z[2])};
    }
}

void rotateMolecule(const std::array<double, 3> &angle, const Conformation &molecule)
{
    rotateDomain(angle, molecule, molecule.pdbInfo.minResID, molecule.pdbInfo.maxResID);
}

void shiftToOrigin(std::span<Coord3D> coords, const Axis &point)
{
    for (Coord3D &at : coords)
        at = {static_cast<float>(static_cast<double>(at.x) - point[0]),
              static_cast<float>(static_cast<double>(at.y) - point[1]),
              static_cast<float>(static_cast<double>(at.z) - point[2])};
}

Status shiftMol2Domain(const Conformation &molecule, int resN, int resC, Messages &messages)
{
    Axis mean = {};
    int count = 0;
    for (std::size_t i = 0; i < molecule.coords.size(); ++i) {
        const int resID = molecule.pdbInfo.atomList[i].resID;
        if (resID < resN || resID > resC)
            continue;
        const Axis at = toAxis(molecule.coords[i]);
        for (std::size_t k = 0; k < mean.size(); ++k)
            mean[k] += at[k];
        ++count;
    }
    if (count == 0)
        return messages.fail("Error in positionDomain: zero atoms selected.");
    for (double &element : mean)
        element /= count;
    shiftToOrigin(molecule.coords, mean);
    return Status::ok;
}

} // namespace trelm
