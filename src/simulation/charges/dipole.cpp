#include "simulation/charges/dipole.h"

#include "support/numerics/numbers.h"

#include <cmath>
#include <cstdio>

namespace trelm {
namespace {

constexpr double debye = 4.8; ///< one e times angstrom

/// The sum of the charges' places, each times its weight.
template <class Weight>
std::array<float, 3> weightedCentre(const ChargePlaces &places, Weight weight)
{
    std::array<float, 3> centre = {};
    for (std::size_t c = 0; c < places.charges.size(); ++c) {
        const auto atom = static_cast<std::size_t>(places.chargeAtomID[c]);
        const auto share = static_cast<double>(weight(places.charges[c]));
        const double terms[3] = {share * places.x[atom], share * places.y[atom], share * places.z[atom]};
        for (std::size_t i = 0; i < 3; ++i)
            centre[i] = static_cast<float>(static_cast<double>(centre[i]) + terms[i]);
    }
    return centre;
}

/// The direction n, n x (1, 0, s), and (1, 0, s) with s = -nx / nz, in columns. The products with 0 are those
/// of the y of the third column.
Matrix3d dipoleAxes(const std::array<float, 3> &direction)
{
    const auto x = static_cast<double>(direction[0]), y = static_cast<double>(direction[1]),
               z = static_cast<double>(direction[2]);
    const double s = -x / z;
    return {x, y * s - z * 0.0, 1.0, y, z - s * x, 0.0, z, x * 0.0 - y, s};
}

} // namespace

Dipole dipoleMoment(const ChargePlaces &places)
{
    Dipole dipole;
    float &positive = dipole.chargeDipol[0];
    float &negative = dipole.chargeDipol[1];
    for (const float charge : places.charges)
        (charge >= 0.0f ? positive : negative) += charge;
    if (positive > 0.0f)
        dipole.avePos =
            weightedCentre(places, [positive](float q) { return q > 0.0f ? q / positive : 0.0f; });
    if (negative < 0.0f)
        dipole.aveNeg =
            weightedCentre(places, [negative](float q) { return q < 0.0f ? std::fabs(q / negative) : 0.0f; });
    std::array<float, 3> &direction = dipole.direction;
    for (std::size_t i = 0; i < 3; ++i)
        direction[i] = dipole.avePos[i] - dipole.aveNeg[i];
    const float length =
        std::sqrt(direction[0] * direction[0] + direction[1] * direction[1] + direction[2] * direction[2]);
    for (float &element : direction)
        element = length > 0.0f ? element / length : 0.0f;

    dipole.chSum = positive + negative;
    const bool isNegative = std::fabs(positive) <= std::fabs(negative); // the net charge
    dipole.magnitude = isNegative ? length * positive : std::fabs(length * negative);
    dipole.dipoleVec = dipoleAxes(direction);
    return dipole;
}

void reportDipole(const Dipole &dipole, Messages &messages)
{
    const auto [positive, negative] = dipole.chargeDipol;
    const bool isNegative = std::fabs(positive) <= std::fabs(negative);
    const auto &monopolAt = isNegative ? dipole.aveNeg : dipole.avePos;
    const auto &dipolAt = isNegative ? dipole.avePos : dipole.aveNeg;
    const auto &direction = dipole.direction;
    messages.out("REMARK Total positive charge %.3f [e], Total negative charge %.3f [e].\n", number(positive),
                 number(negative));
    messages.out("REMARK Monopol charge at (%.3f,%.3f,%.3f) [A] of %.3f [e].\n", number(monopolAt[0]),
                 number(monopolAt[1]), number(monopolAt[2]), number(dipole.chSum));
    messages.out("REMARK Dipol at (%.3f,%.3f,%.3f) [A] of %.3f [Debye].\n", number(dipolAt[0]),
                 number(dipolAt[1]), number(dipolAt[2]), number(dipole.magnitude) * debye);
    messages.out("REMARK Dipol direction (%.3f,%.3f,%.3f).\n", number(direction[0]), number(direction[1]),
                 number(direction[2]));
}

} // namespace trelm
