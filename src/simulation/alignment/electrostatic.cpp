#include "simulation/alignment/electrostatic.h"

#include "ground/out_of_memory.h"
#include "simulation/alignment/options.h"
#include "simulation/charges/field_energy.h"
#include "simulation/obstacle/position_grid.h"
#include "simulation/obstacle/rod.h"
#include "simulation/obstacle/steric.h"
#include "simulation/obstacle/wall.h"
#include "support/numerics/numbers.h"
#include "support/text/text.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <vector>

namespace trelm {
namespace {

constexpr const char *tag = "sma";
constexpr double mostSteps = 1e8; ///< from one rod to the next

GridSetup gridSetup(const AlignmentOptions &options, const SmaSetup &sizes)
{
    return {.gridSpacing = number(options.gridSpacing),
            .max_obstruction = number(options.radiusModel),
            .max_protein_length = sizes.max_protein_length,
            .min_protein_length = sizes.min_protein_length};
}

void scalePotential(const FieldOptions &options, Potential &potential, Messages &messages)
{
    messages.out("trelmInfo->elInfo.kPot: %.1f \n", number(options.kPot));
    for (int i = 0; i < potential.count; ++i) {
        double &value = potential.values[static_cast<std::size_t>(i)];
        value = number(static_cast<float>(value) / options.kPot);
    }
}

void reportGrid(const AlignmentSetup &setup, const SmaSetup &sizes, const PositionGrid &grid)
{
    Messages &messages = setup.messages;
    messages.out("REMARK Minimum molecule dimension %.3f [A].\n", sizes.min_protein_length);
    messages.out("REMARK Maximum molecule dimension %.3f [A].\n", sizes.max_protein_length);
    if (setup.options.kAtt != 0.0f)
        messages.out("REMARK trelmInfo->elInfo.kAtt = %.3f [A].\n", number(setup.options.kAtt));
    messages.out("@@@ offset_grid = %.3f [A]  t_pts = %d.\n",
                 sizes.min_protein_length + number(setup.options.radiusModel), grid.grid_el);
    messages.out("@@@ REMARK grid_el[0] = %.3f [A].\n", number(grid.positionDist[0]));
    messages.out("@@@ REMARK grid_el[%d] = %.3f [A].\n", grid.grid_el, grid.lastDist());
}

/// What wall and rod share.
struct Charged {
    const AlignmentSetup &setup;
    PlacedCharges placed;
    FieldConstants field;
    OrientationSet set;
};

Status simulateWall(const Charged &charged, PositionGrid &grid, Saupe &saupe)
{
    Messages &messages = charged.setup.messages;
    const AlignmentOptions &info = charged.setup.options;
    const double spacing = number(info.gridSpacing), cell = charged.setup.rSingleCell;
    const double limit = std::min(cell, info.cutoffPot);
    if (!extendPositions(grid, spacing, [limit](double last, double) { return last <= limit; }))
        warnShortGrid(grid, messages);
    if (info.chFlag != 0)
        reportField(charged.field, messages);

    NearestKernel kernel = makeNearestKernel(charged.placed.atoms);
    WallEnergy energy;
    energy.field = charged.field;
    energy.radiusModel = number(info.radiusModel);
    const float reach = info.radiusModel + info.radiusAtom;
    const auto positions = grid.positions();
    const auto touchable = grid.touchable();
    double total = 0.0;
    forEachTurnShown(charged.set, charged.setup.messages, [&](const Turn &turn) {
        const float nearest = nearestToWall(kernel, turn.column1);
        const auto free = std::ranges::partition_point(
            touchable, [&](float distance) { return nearest + distance <= reach; });
        turnCharges(energy, charged.placed, turn.column1);
        double weight = 0.0;
        for (const float distance : positions.subspan(static_cast<std::size_t>(free - touchable.begin())))
            weight += std::exp(-energyAt(energy, distance));
        addWeighted(saupe, turn.saupe, weight);
        total += weight;
    });
    if (cell - info.cutoffPot > 0.0)
        total += (cell - info.cutoffPot) * charged.set.count() / spacing;
    return divideByWeights(tag, total, saupe, messages);
}

/// Sums over the orientations at each position of a rod.
struct RodSums {
    std::vector<Saupe> saupe_dis;
    std::vector<double> total, totalNew;
    std::vector<int> pCount;

    explicit RodSums(std::size_t positions)
        : saupe_dis(positions), total(positions), totalNew(positions), pCount(positions)
    {
    }
};

/// Extends the grid as far as the potential reaches, and tells how far that is.
void extendRodGrid(const Charged &charged, double beta, PositionGrid &grid)
{
    Messages &messages = charged.setup.messages;
    const AlignmentOptions &info = charged.setup.options;
    const double radius = number(info.radiusModel), cutoff = info.cutoffPot;
    const auto isBelow = [&](double distance) {
        return std::fabs(surfacePotential(charged.field, distance - radius)) < cutoff;
    };
    if (isBelow(grid.lastDist()))
        messages.err("Warning: Potential drops within clash region to below %e!\n"
                     "         ---> Magnitude of alignment tensor wrong!\n",
                     cutoff);
    bool isFound = false;
    const auto reachesOn = [&](double last, double next) {
        isFound = last <= beta && isBelow(next);
        return last <= beta && !isFound;
    };
    if (!extendPositions(grid, number(info.gridSpacing), reachesOn))
        warnShortGrid(grid, messages);
    messages.note("REMARK Value of potential at cutoff: %e\n",
                  surfacePotential(charged.field, grid.lastDist() - radius));
    messages.note("REMARK # of translational points for EL: %d\n", grid.last);
    messages.note("REMARK Maximum distance: %e\n", grid.lastDist());
    if (!isFound)
        messages.err("Warning: Potentials between neighbouring cells overlapping, cutoff %e!\n"
                     "         ---> Magnitude of alignment tensor wrong!\n",
                     cutoff);
}

void reportRod(const Charged &charged, double end_dist, double beta, const PositionGrid &grid)
{
    Messages &messages = charged.setup.messages;
    const AlignmentOptions &info = charged.setup.options;
    messages.out("@@ trelmInfo->elInfo.cutoffPot: %e\n", info.cutoffPot);
    messages.out("@@ trelmInfo->radiusModel: %f\n", number(info.radiusModel));
    messages.out("@@ trelmInfo->concentration: %f\n", number(info.concentration));
    messages.out("@@ density: %f\n", rodDensity);
    messages.out("@@ end_dist: %f\n", end_dist);
    messages.out("@@ beta: %f\n", beta);
    messages.out("@@ no_pt_ph: %d\n", grid.grid_el);
    messages.out("@@ lengthGrid: %d\n", grid.last);
    messages.out("digPsi = %d    dots = %d   inc_psi = %.1f\n", info.digPsiNSC,
                 static_cast<int>(charged.set.dots.size() / 3), 360.0 / info.digPsiNSC);
}

void sumBesideRod(const Charged &charged, const PositionGrid &grid, RodEnergy &energy, RodSums &sums)
{
    const AlignmentOptions &info = charged.setup.options;
    RodKernel kernel = makeRodKernel(charged.placed.atoms, grid.touchable(), number(info.radiusModel),
                                     number(info.radiusAtom));
    std::vector<Interval> blocked;
    const auto addPositions = [&](const Turn &turn, int from, int to) {
        const auto first = static_cast<std::size_t>(from), beyond = static_cast<std::size_t>(to);
        if (first >= beyond)
            return;
        const std::span<const double> energies = energiesAt(energy, first, beyond);
        for (std::size_t i = first; i < beyond; ++i) {
            const double weight = std::exp(-energies[i - first]);
            addWeighted(sums.saupe_dis[i], turn.saupe, weight);
            sums.total[i] += weight;
            sums.totalNew[i] += weight - 1.0;
            ++sums.pCount[i];
        }
    };
    forEachTurnShown(charged.set, charged.setup.messages, [&](const Turn &turn) {
        turnCharges(energy, charged.placed, turn);
        blockedByRod(kernel, turn.column1, turn.column2, blocked);
        int free = 0;
        for (const Interval &interval : blocked) {
            addPositions(turn, free, interval.first);
            free = interval.last + 1;
        }
        addPositions(turn, free, grid.last + 1);
    });
}

/// Distances in bins of at least 5 angstrom, each from `first` up to the next one's first.
std::vector<std::size_t> binStarts(std::span<const float> distances)
{
    constexpr float width = 5.0f;
    std::vector<std::size_t> starts = {0};
    for (std::size_t i = 1; i < distances.size(); ++i)
        if (distances[i] - distances[starts.back()] >= width)
            starts.push_back(i);
    return starts;
}

/// What each range of distances adds to the weights and to the order.
void reportBins(std::span<const float> distances, const RodSums &sums, double radius, float total_ph,
                const Saupe &saupe, Messages &messages)
{
    const std::vector<std::size_t> starts = binStarts(distances);
    struct Bin {
        double from, to, share;
        Saupe sum;
    };
    std::vector<Bin> bins;
    for (std::size_t b = 0; b < starts.size(); ++b) {
        const std::size_t beyond = b + 1 < starts.size() ? starts[b + 1] : distances.size();
        Bin bin{
            number(distances[starts[b]]), number(distances[std::min(beyond, distances.size() - 1)]), 0.0, {}};
        for (std::size_t i = starts[b]; i < beyond; ++i) {
            const double ring = number(distances[i]) / radius;
            bin.share += sums.total[i] * ring / number(total_ph);
            addWeighted(bin.sum, sums.saupe_dis[i], ring);
        }
        bins.push_back(bin);
    }
    for (const Bin &bin : bins)
        messages.out("%6.1f %6.1f  %e\n", bin.from, bin.to, bin.share);
    double whole = 0.0;
    Saupe irreducible;
    irreducRepres(saupe, whole, irreducible);
    for (const Bin &bin : bins) {
        double magnitude = 0.0;
        irreducRepres(bin.sum, magnitude, irreducible);
        messages.out("%6.1f %6.1f  %e  %e\n", bin.from, bin.to, whole > 0.0 ? magnitude / whole : 0.0,
                     magnitude);
    }
}

/// The weights of the grid with the growth of the rings; prints how they spread over the distances.
float reportWeights(const PositionGrid &grid, const RodSums &sums, double radius, const Saupe &saupe,
                    Messages &messages)
{
    const std::span<const float> distances = grid.positions();
    float total_ph = 0.0f;
    double test = 0.0, p = 0.0;
    for (std::size_t i = 0; i < distances.size(); ++i) {
        total_ph = static_cast<float>(number(total_ph) + sums.total[i] * number(distances[i]) / radius);
        if (sums.pCount[i] == 0)
            continue;
        test += sums.total[i] / sums.pCount[i];
        p += sums.totalNew[i] / sums.pCount[i];
    }
    // A negative p has no logarithm either: a field that attracts, and no mistake.
    if (!std::isfinite(p))
        messages.warn(
            "trelm: the mean potential beside the rod, %g, is no finite number (look at -pot, -kPot,"
            " -kDipo and the charges)\n",
            p);
    messages.out("total_ph: %e    test: %e    p: %e  ln(p): %e\n", number(total_ph), test, p,
                 p < 0.0 ? std::nan("") : std::log(p));
    messages.out("grid_el[0] = %.1f   grid_el[lengthGrid %d] = %.1f   d = %.1f\n", number(distances.front()),
                 grid.last, grid.lastDist(), grid.lastDist() - number(distances.front()));
    reportBins(distances, sums, radius, total_ph, saupe, messages);
    return total_ph;
}

/// Once a run: charges that feel nothing.
void tellBeyond(bool isBeyond, Potential &potential, Messages &messages)
{
    if (!isBeyond || potential.isTold)
        return;
    potential.isTold = true;
    messages.err("%s",
                 potential.count == 0
                     ? "REMARK Without a potential table charges beside a rod feel no potential.\n"
                     : "REMARK Charges beyond the distances of the potential table feel no potential.\n");
}

Status simulateRod(const Charged &charged, PositionGrid &grid, Potential &potential, Saupe &saupe)
{
    Messages &messages = charged.setup.messages;
    const AlignmentOptions &info = charged.setup.options;
    const double radius = number(info.radiusModel), spacing = number(info.gridSpacing);
    reportField(charged.field, messages);
    const double end_dist = radius / std::sqrt(number(info.concentration) / rodDensity) - radius;
    const double beta = end_dist + radius;
    const double start = std::min(0.0, number(grid.positionDist[0])); // below 0 with a radius below 0
    if (!((beta - start) / spacing <= mostSteps))
        return messages.fail("trelm: -wv %g, -dGrid %g: more than %g steps to the next rod.\n",
                             number(info.concentration), spacing, mostSteps);
    extendRodGrid(charged, beta, grid);
    reportRod(charged, end_dist, beta, grid);

    const std::span<const float> distances = grid.positions();
    RodSums sums(distances.size());
    RodEnergy energy = makeRodEnergy(potential, radius, distances);
    sumBesideRod(charged, grid, energy, sums);
    tellBeyond(energy.isBeyond, potential, messages);
    for (std::size_t i = 0; i < distances.size(); ++i)
        addWeighted(saupe, sums.saupe_dis[i], number(distances[i]) / radius);
    float total_ph = reportWeights(grid, sums, radius, saupe, messages);
    double v = grid.lastDist() + spacing; // the free rest, up to the next rod, rounded as the rest is
    while (v <= beta) {
        total_ph = static_cast<float>(number(total_ph) + v / radius * charged.set.count());
        v += spacing;
    }
    return divideByWeights(tag, number(total_ph), saupe, messages);
}

} // namespace

void reportSetBias(const OrientationSet &set, const char *prefix, Messages &messages)
{
    Saupe saupe_dev = {};
    forEachTurn(set, [&](const Turn &turn) { addWeighted(saupe_dev, turn.saupe, 1.0); });
    for (std::size_t k = 0; k < saupe_dev.size(); ++k) {
        saupe_dev[k] /= set.count();
        messages.out("%so_pts: %d    saupe_dev[%zu]: %e\n", prefix, set.count(), k, saupe_dev[k]);
    }
    double gMag = 0.0;
    Saupe irreducible;
    irreducRepres(saupe_dev, gMag, irreducible);
    messages.out("%sdeviation from uniform distribution:  %e   %e\n", prefix, gMag, 50.0 * gMag);
}

Status sma(const AlignmentSetup &setup, const Coordinates &atoms, const SmaSetup &sizes,
           const ChargeSet &charges, Potential &potential, Saupe &saupe)
{
    saupe = {};
    const AlignmentOptions &options = setup.options;
    Messages &messages = setup.messages;
    const Charged charged{
        setup, {atoms, &charges}, fieldConstants(options), makeOrientationSet(setup.dots, options.digPsiNSC)};
    reportSetBias(charged.set, "", messages);
    scalePotential(options, potential, messages);
    PositionGrid grid;
    if (!layPositions(tag, gridSetup(options, sizes), grid, messages))
        endWithoutMemory("allocation failure for grid_el", messages);
    reportGrid(setup, sizes, grid);
    return options.lcType == lcWall ? simulateWall(charged, grid, saupe)
                                    : simulateRod(charged, grid, potential, saupe);
}

} // namespace trelm
