#include "reference/steric_reference.h"

#include <cmath>
#include <cstdint>

namespace trelm {
namespace {

bool isObstructed(const StericSetup &setup, const StericGrid &grid, const TurnedAtoms &turnedAtoms,
                  std::size_t i)
{
    if (static_cast<int>(i) > grid.at.grid_el)
        return false;
    if (setup.lcType == lcWall)
        return touchesWallPlain(turnedAtoms, grid.wallLimit[i]);
    return touchesRodPlain(turnedAtoms, grid.at.positionDist[i],
                           static_cast<float>(setup.grid.max_obstruction + setup.radius));
}

} // namespace

Turn turnPlain(const double *dot, int step, int digit_psi)
{
    const float inc_psi = static_cast<float>(360.0 / digit_psi);
    const double phi = std::atan2(dot[1], dot[0]);
    const double lat = std::atan2(dot[2], std::sqrt(dot[1] * dot[1] + dot[0] * dot[0]));
    const double theta = 1.570796325 - lat;
    const double psi = static_cast<double>(static_cast<float>(step) * inc_psi) * 3.14159265 / 180.0 + 0.0;
    Turn turn;
    Axis x, y, z;
    rotate_coorsystem(theta, phi, psi, x, y, z);
    turn.saupe = {Szz(z), Sxx(x) - Syy(y), Sxy(x, y), Sxz(x, z), Syz(y, z)};
    rotate_coorsystem(-theta, -psi, -phi, turn.column1, turn.column2, turn.column3);
    return turn;
}

void turnAtomsPlain(const Coordinates &atoms, const Axis &column1, const Axis &column2, bool withSide,
                    TurnedAtoms &turnedAtoms)
{
    const std::size_t count = atoms.count();
    turnedAtoms.xJ.resize(count);
    turnedAtoms.yJ.resize(count);
    const auto along = [&atoms](std::size_t j, const Axis &column) {
        float sum = 0.0f;
        sum = static_cast<float>(static_cast<double>(sum) + atoms.x[j] * column[0]);
        sum = static_cast<float>(static_cast<double>(sum) + atoms.y[j] * column[1]);
        return static_cast<float>(static_cast<double>(sum) + atoms.z[j] * column[2]);
    };
    for (std::size_t j = 0; j < count; ++j) {
        turnedAtoms.xJ[j] = along(j, column1);
        if (withSide)
            turnedAtoms.yJ[j] = along(j, column2);
    }
}

bool touchesWallPlain(const TurnedAtoms &turnedAtoms, float wallLimit)
{
    for (const float x : turnedAtoms.xJ)
        if (x <= wallLimit)
            return true;
    return false;
}

bool touchesRodPlain(const TurnedAtoms &turnedAtoms, float positionDist, float reach)
{
    for (std::size_t j = 0; j < turnedAtoms.xJ.size(); ++j) {
        const float x = turnedAtoms.xJ[j] + positionDist, y = turnedAtoms.yJ[j];
        if (std::sqrt(x * x + y * y) <= reach)
            return true;
    }
    return false;
}

int stericAlignmentPlain(const StericSetup &setup, const Coordinates &atoms, std::span<const double> dots,
                         Saupe &saupe, std::vector<double> &allowedCount)
{
    StericGrid grid;
    if (makeStericGrid(setup, grid, standardMessages()) != Status::ok)
        return 1;
    const auto positions = static_cast<std::size_t>(grid.at.last) + 1;
    std::vector<Saupe> saupe_dis(positions);
    allowedCount.assign(positions, 0.0);
    Saupe saupe_dev = {};
    TurnedAtoms turnedAtoms;
    for (std::size_t dot = 0; dot + 2 < dots.size(); dot += 3) {
        for (int step = 0; step < setup.digit_psi; ++step) {
            const Turn turn = turnPlain(&dots[dot], step, setup.digit_psi);
            turnAtomsPlain(atoms, turn.column1, turn.column2, setup.lcType == lcRod, turnedAtoms);
            for (std::size_t k = 0; k < 5; ++k)
                saupe_dev[k] += turn.saupe[k];
            for (std::size_t i = 0; i < positions; ++i) {
                if (isObstructed(setup, grid, turnedAtoms, i))
                    continue;
                for (std::size_t k = 0; k < 5; ++k)
                    saupe_dis[i][k] += turn.saupe[k];
                allowedCount[i] += 1.0;
            }
        }
    }
    const double t = static_cast<double>(dots.size() / 3) * setup.digit_psi;
    std::int64_t total_bic = 0;
    saupe = {};
    for (std::size_t i = 0; i < positions; ++i) {
        total_bic += static_cast<std::int64_t>(allowedCount[i]);
        for (std::size_t k = 0; k < 5 && allowedCount[i] > 0.0; ++k) {
            const double average = saupe_dis[i][k] / allowedCount[i] - saupe_dev[k] / t;
            const double ring = setup.lcType == lcRod ? static_cast<double>(grid.at.positionDist[i]) /
                                                            setup.grid.max_obstruction
                                                      : 1.0;
            saupe[k] += allowedCount[i] / t * average * ring;
        }
    }
    const double total = setup.lcType == lcRod
                             ? grid.total
                             : static_cast<double>(total_bic / static_cast<std::int64_t>(t)) + grid.end_dist;
    for (double &element : saupe)
        element /= total;
    return 0;
}

} // namespace trelm
