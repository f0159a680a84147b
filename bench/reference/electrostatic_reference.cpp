#include "reference/electrostatic_reference.h"

#include "reference/steric_reference.h"
#include "simulation/alignment/options.h"
#include "simulation/obstacle/steric.h"
#include "simulation/orientations/rotation.h"
#include "support/numerics/numbers.h"

#include <algorithm>
#include <cmath>
#include <vector>

namespace trelm {
namespace {

std::size_t placeOf(const ChargeSet &charges, int c)
{
    return static_cast<std::size_t>(charges.chargeAtomID[static_cast<std::size_t>(c)]);
}

double wallEnergyPlain(const AlignmentOptions &info, const FieldConstants &field,
                       const TurnedAtoms &turnedAtoms, const ChargeSet &charges, float distance)
{
    double energy = 0.0;
    for (int c = 0; c < charges.chCount; ++c)
        energy += surfacePotential(field, number(distance) + number(turnedAtoms.xJ[placeOf(charges, c)]) -
                                              number(info.radiusModel)) *
                  number(charges.charges[static_cast<std::size_t>(c)]);
    return energy;
}

double rodEnergyPlain(const AlignmentOptions &info, const Potential &potential,
                      const TurnedAtoms &turnedAtoms, const ChargeSet &charges, float distance)
{
    double energy = 0.0;
    for (int c = 0; c < charges.chCount; ++c) {
        const double x = number(turnedAtoms.xJ[placeOf(charges, c)]) + number(distance);
        const double y = number(turnedAtoms.yJ[placeOf(charges, c)]);
        const double r = std::max(0.0, std::sqrt(y * y + x * x) - number(info.radiusModel));
        const double steps = r / potential.stepsize;
        if (steps >= potential.count - 1)
            continue;
        const auto n = static_cast<std::size_t>(steps);
        const double here = potential.values[n], next = potential.values[n + 1];
        const double value =
            here + (next - here) / potential.stepsize * (r - static_cast<double>(n) * potential.stepsize);
        energy += value * number(charges.charges[static_cast<std::size_t>(c)]);
    }
    return energy;
}

/// The positions, as far as the field of the obstacle or its cell reach.
std::vector<float> positionsPlain(const AlignmentSetup &setup, const SmaSetup &sizes,
                                  const FieldConstants &field, int &t_pts)
{
    const AlignmentOptions &info = setup.options;
    const double spacing = number(info.gridSpacing), radius = number(info.radiusModel);
    t_pts = static_cast<int>((sizes.max_protein_length - sizes.min_protein_length) / spacing);
    std::vector<float> grid_el;
    for (int i = 0; i <= t_pts; ++i)
        grid_el.push_back(static_cast<float>(i * spacing + (sizes.min_protein_length + radius)));
    const double from = number(grid_el.back());
    const double cutoff = info.cutoffPot;
    const double beta = radius / std::sqrt(number(info.concentration) / 1.46);
    for (int j = 1;; ++j) {
        const double last = number(grid_el.back()), p = from + j * spacing;
        const bool ends = info.lcType == lcWall
                              ? last > std::min(setup.rSingleCell, cutoff)
                              : last > beta || std::fabs(surfacePotential(field, p - radius)) < cutoff;
        if (ends)
            return grid_el;
        grid_el.push_back(static_cast<float>(p));
    }
}

/// What all orientations at one position come to.
struct PositionWeight {
    Saupe sum = {};
    double total = 0.0;
};

double freeRestPlain(const AlignmentSetup &setup, float last, int orientations)
{
    const AlignmentOptions &info = setup.options;
    const double spacing = number(info.gridSpacing), radius = number(info.radiusModel);
    double rest = 0.0;
    if (info.lcType == lcWall)
        return std::max(0.0, (setup.rSingleCell - info.cutoffPot) * orientations / spacing);
    const double beta = radius / std::sqrt(number(info.concentration) / 1.46);
    for (double v = number(last) + spacing; v <= beta; v += spacing)
        rest += v / radius * orientations;
    return rest;
}

/// The potential at the atom's point; 0 off the grid. A number behind the end of a row is one of the next
/// row.
double gridPotentialPlain(const Grid3D &grid, std::span<const double> pot3D,
                          const std::array<double, 3> &position, bool &isOff)
{
    std::array<int, 3> point = {};
    for (std::size_t axis = 0; axis < 3; ++axis) {
        const auto steps = static_cast<float>(position[axis] / number(grid.spacing[axis]));
        isOff = isOff || (axis < 2 && std::fabs(steps) > static_cast<float>(grid.half[axis]));
        point[axis] = getGridPoint(steps) + grid.half[axis] + 1;
    }
    if (point[2] > grid.zN)
        point[2] -= grid.planes();
    else if (point[2] < grid.z1)
        point[2] += grid.planes();
    const int place = ((point[0] - 1) * grid.count[1] + (point[1] - 1)) * grid.count[2] + point[2] - 1;
    const bool isValue = !isOff && place >= 0 && place < static_cast<int>(pot3D.size());
    return isValue ? pot3D[static_cast<std::size_t>(place)] : 0.0;
}

/// The weight of one position of the molecule's centre.
double gridWeightPlain(const Grid3D &grid, const std::array<std::vector<float>, 3> &turnedAtoms,
                       const std::array<double, 3> &p, const ChargeSet &charges,
                       std::span<const double> pot3D, std::vector<double> &pot3DAtom)
{
    for (std::size_t j = 0; j < pot3DAtom.size(); ++j) {
        bool isOff = false;
        pot3DAtom[j] = gridPotentialPlain(grid, pot3D,
                                          {p[0] + number(turnedAtoms[0][j]), p[1] + number(turnedAtoms[1][j]),
                                           p[2] + number(turnedAtoms[2][j])},
                                          isOff);
        if (std::fabs(pot3DAtom[j]) >= number(grid.maxPot))
            return 0.0;
    }
    double energy = 0.0;
    for (int c = 0; c < charges.chCount; ++c)
        energy += pot3DAtom[placeOf(charges, c)] * number(charges.charges[static_cast<std::size_t>(c)]);
    return std::exp(-energy);
}

} // namespace

void smaPlain(const AlignmentSetup &setup, const Coordinates &atoms, const SmaSetup &sizes,
              const ChargeSet &charges, const Potential &potential, Saupe &saupe)
{
    const AlignmentOptions &info = setup.options;
    const std::span<const double> dots = setup.dots;
    const FieldConstants field = fieldConstants(info);
    const bool isWall = info.lcType == lcWall;
    int t_pts = 0;
    const std::vector<float> grid_el = positionsPlain(setup, sizes, field, t_pts);
    std::vector<PositionWeight> weights(grid_el.size());
    TurnedAtoms turnedAtoms;
    const float reach = info.radiusModel + info.radiusAtom;
    for (std::size_t dot = 0; dot + 2 < dots.size(); dot += 3)
        for (int step = 0; step < info.digPsiNSC; ++step) {
            const Turn turn = turnPlain(&dots[dot], step, info.digPsiNSC);
            turnAtomsPlain(atoms, turn.column1, turn.column2, !isWall, turnedAtoms);
            for (std::size_t i = 0; i < grid_el.size(); ++i) {
                const auto touches = [&](std::size_t j) {
                    const float x = turnedAtoms.xJ[j] + grid_el[i];
                    return isWall ? x <= reach
                                  : std::sqrt(x * x + turnedAtoms.yJ[j] * turnedAtoms.yJ[j]) <= reach;
                };
                bool isFree = true;
                for (std::size_t j = 0; isFree && j < atoms.count() && static_cast<int>(i) <= t_pts; ++j)
                    isFree = !touches(j);
                if (!isFree)
                    continue;
                const double weight =
                    std::exp(-(isWall ? wallEnergyPlain(info, field, turnedAtoms, charges, grid_el[i])
                                      : rodEnergyPlain(info, potential, turnedAtoms, charges, grid_el[i])));
                for (std::size_t k = 0; k < saupe.size(); ++k)
                    weights[i].sum[k] += turn.saupe[k] * weight;
                weights[i].total += weight;
            }
        }
    const int orientations = static_cast<int>(dots.size() / 3) * info.digPsiNSC;
    double total = freeRestPlain(setup, grid_el.back(), orientations);
    saupe = {};
    for (std::size_t i = 0; i < grid_el.size(); ++i) {
        const double ring = isWall ? 1.0 : number(grid_el[i]) / number(info.radiusModel);
        total += weights[i].total * ring;
        for (std::size_t k = 0; k < saupe.size(); ++k)
            saupe[k] += weights[i].sum[k] * ring;
    }
    for (double &element : saupe)
        element /= isWall ? total : number(static_cast<float>(total));
}

void sma3DPlain(const Grid3D &grid, const Coordinates &atoms, std::span<const double> dots, int digit_psi,
                const ChargeSet &charges, std::span<const double> pot3D, Saupe &sum, double &total)
{
    std::array<std::vector<float>, 3> turnedAtoms;
    std::vector<double> pot3DAtom(atoms.count());
    TurnedAtoms pair;
    sum = {};
    total = 0.0;
    for (std::size_t dot = 0; dot + 2 < dots.size(); dot += 3)
        for (int step = 0; step < digit_psi; ++step) {
            const Turn turn = turnPlain(&dots[dot], step, digit_psi);
            turnAtomsPlain(atoms, turn.column1, turn.column2, true, pair);
            turnedAtoms[0] = pair.xJ;
            turnedAtoms[1] = pair.yJ;
            turnAtomsPlain(atoms, turn.column3, turn.column3, false, pair);
            turnedAtoms[2] = pair.xJ;
            for (int kkk = 0; kkk < grid.planes(); ++kkk)
                for (int jjj = 0; jjj < grid.count[1]; ++jjj)
                    for (int iii = 0; iii < grid.count[0]; ++iii) {
                        const std::array<double, 3> p = {iii * number(grid.spacing[0]) + grid.start[0],
                                                         jjj * number(grid.spacing[1]) + grid.start[1],
                                                         kkk * number(grid.spacing[2]) + grid.start[2]};
                        const double weight =
                            gridWeightPlain(grid, turnedAtoms, p, charges, pot3D, pot3DAtom);
                        for (std::size_t k = 0; k < sum.size(); ++k)
                            sum[k] += turn.saupe[k] * weight;
                        total += weight;
                    }
        }
}

} // namespace trelm
