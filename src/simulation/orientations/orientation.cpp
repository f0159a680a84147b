#include "simulation/orientations/orientation.h"

#include "support/numerics/numbers.h"
#include "support/text/text.h"

#include <cmath>

namespace trelm {
namespace {

double diagonal(const Axis &axis)
{
    return (3.0 * axis[2] * axis[2] - 1.0) * 0.5;
}

double mixed(const Axis &axis1, const Axis &axis2)
{
    return 1.5 * axis1[2] * axis2[2];
}

} // namespace

double Szz(const Axis &tensor_zaxis)
{
    return diagonal(tensor_zaxis);
}
double Sxx(const Axis &tensor_xaxis)
{
    return diagonal(tensor_xaxis);
}
double Syy(const Axis &tensor_yaxis)
{
    return diagonal(tensor_yaxis);
}
double Sxy(const Axis &tensor_xaxis, const Axis &tensor_yaxis)
{
    return mixed(tensor_xaxis, tensor_yaxis);
}
double Sxz(const Axis &tensor_xaxis, const Axis &tensor_zaxis)
{
    return mixed(tensor_xaxis, tensor_zaxis);
}
double Syz(const Axis &tensor_yaxis, const Axis &tensor_zaxis)
{
    return mixed(tensor_yaxis, tensor_zaxis);
}

OrientationSet makeOrientationSet(std::span<const double> dots, int digit_psi)
{
    OrientationSet set{dots, {}};
    const float inc_psi = static_cast<float>(360.0 / digit_psi);
    for (int step = 0; step < digit_psi; ++step)
        set.psi.push_back(sinCos(static_cast<double>(static_cast<float>(step) * inc_psi) * pi / 180.0));
    return set;
}

DotTurn makeDotTurn(const double *dot)
{
    const double phi = std::atan2(dot[1], dot[0]);
    const double lat = std::atan2(dot[2], std::sqrt(dot[1] * dot[1] + dot[0] * dot[0]));
    DotTurn turn{sinCos(halfPi - lat), sinCos(phi), {}};
    Axis x, y, z;
    rotate_coorsystem(turn.theta, turn.phi, SinCos{}, x, y, z);
    turn.saupe = {Szz(z), Sxx(x) - Syy(y), Sxy(x, y), Sxz(x, z), Syz(y, z)};
    return turn;
}

Turn makeTurn(const DotTurn &dot, const SinCos &psi)
{
    Turn turn;
    turn.saupe = dot.saupe;
    rotate_coorsystem(negated(dot.theta), negated(psi), negated(dot.phi), turn.column1, turn.column2,
                      turn.column3);
    return turn;
}

Status divideByWeights(const char *routine, double total, Saupe &saupe, Messages &messages)
{
    if (total == 0.0 || !std::isfinite(total))
        return messages.fail(
            "%s: the sum of the weights at this concentration and grid, %g, can not be divided by.\n",
            routine, total);
    if (total < 0.0)
        messages.err("WARNING: Sum of the weights is negative (%g): alignment tensor wrong!\n", total);
    for (double &element : saupe)
        element /= total;
    return Status::ok;
}

} // namespace trelm
