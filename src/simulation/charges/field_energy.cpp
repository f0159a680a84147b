#include "simulation/charges/field_energy.h"

#include <algorithm>
#include <cmath>

namespace trelm {
namespace {

/// Above this reduced potential gamma e^(-kappa D) a charge is computed by itself, below it by the series.
constexpr double seriesLimit = 0.25;

constexpr std::size_t rodBlock = 4; ///< charges beside a rod that are summed at once

/// A charge of a block: its distances from the surface and its entries in the table, position by position.
struct RodTrack {
    double q;
    const double *r;
    const int *entry;
};

/// sum_k m_k z^(2k+1) / (2k+1), the series of atanh with moments.
double seriesSum(const std::array<double, seriesTerms> &moments, double z)
{
    const double square = z * z;
    double sum = 0.0;
    for (std::size_t k = seriesTerms; k-- > 0;)
        sum = sum * square + moments[k] / (2.0 * static_cast<double>(k) + 1.0);
    return sum * z;
}

// Beside a rod charges go in blocks, in two passes without a branch: the first has the roots and works in
// vectors, the second reads the table, with one load and one store of the sum for a block.

/// For each position the charge's distance from the surface, and the table's step that it lies in. The clones
/// differ in the length of the vectors alone: no operation is fused or reordered, all give the same bits.
[[gnu::target_clones("avx512f", "avx2", "default")]] void
findEntries(const RodCharge &charge, const RodEnergy &energy, std::span<const double> distances,
            double *__restrict r, int *__restrict entry)
{
    const double x = charge.x, ySquare = charge.ySquare, radiusModel = energy.radiusModel;
    const double perStep = 1.0 / energy.stepsize;
    const auto lastStep = static_cast<double>(energy.steps.size() - 1);
    for (std::size_t i = 0; i < distances.size(); ++i) {
        const double along = x + distances[i];
        const double distance = std::sqrt(along * along + ySquare) - radiusModel;
        r[i] = distance > 0.0 ? distance : 0.0;
        const double steps = r[i] * perStep;
        entry[i] = static_cast<int>(steps < lastStep ? steps : lastStep);
    }
}

void addPotentials(const RodStep *steps, const std::array<RodTrack, rodBlock> &tracks, std::span<double> sum)
{
    for (std::size_t i = 0; i < sum.size(); ++i) {
        double total = sum[i];
        for (const RodTrack &track : tracks) {
            const RodStep &step = steps[track.entry[i]];
            total += track.q * (step.at0 + step.slope * track.r[i]);
        }
        sum[i] = total;
    }
}

} // namespace

void turnCharges(WallEnergy &energy, const PlacedCharges &placed, const Axis &normal)
{
    energy.turned.clear();
    for (std::size_t c = 0; c < placed.count(); ++c) {
        const auto place = static_cast<std::size_t>(placed.charges->chargeAtomID[c]);
        energy.turned.push_back({static_cast<double>(turned(placed.atoms, place, normal)),
                                 static_cast<double>(placed.charges->charges[c])});
    }
    std::ranges::sort(energy.turned);
    energy.nearest = energy.turned.empty() ? 0.0 : energy.turned.front()[0];
    energy.near.clear();
    for (const auto &[x, q] : energy.turned)
        energy.near.push_back({std::exp(-energy.field.kappa * (x - energy.nearest) / 10.0), q});

    // Moments of the charges from each one on: q b, q b^3, ... with b the decay.
    energy.moments.assign(energy.near.size() + 1, {});
    for (std::size_t c = energy.near.size(); c-- > 0;) {
        const auto [decay, q] = energy.near[c];
        double power = q * decay;
        for (std::size_t k = 0; k < seriesTerms; ++k) {
            energy.moments[c][k] = energy.moments[c + 1][k] + power;
            power *= decay * decay;
        }
    }
}

double energyAt(const WallEnergy &energy, float distance)
{
    if (energy.near.empty())
        return 0.0; // even in a field that is no number
    // y = 4 atanh(z) with z = gamma e^(-kappa D / 10): the exponential falls apart into one for the position
    // and one for each charge, and a sum of atanh into moments of the charges where z is small.
    const double height = static_cast<double>(distance) + energy.nearest - energy.radiusModel;
    const double z = static_cast<double>(energy.field.gamma) * std::exp(-energy.field.kappa * height / 10.0);
    double sum = 0.0;
    std::size_t c = 0;
    for (; c < energy.near.size() && std::fabs(z) * energy.near[c][0] > seriesLimit; ++c) {
        const double own = z * energy.near[c][0];
        sum += energy.near[c][1] * 0.5 * std::log((1.0 + own) / (1.0 - own));
    }
    return 4.0 * (sum + seriesSum(energy.moments[c], z));
}

RodEnergy makeRodEnergy(const Potential &potential, double radiusModel, std::span<const float> distances)
{
    RodEnergy energy;
    energy.radiusModel = radiusModel;
    energy.distances.assign(distances.begin(), distances.end());
    const auto entries = hasStep(potential) ? static_cast<std::size_t>(potential.count) : 0;
    if (entries > 0)
        energy.stepsize = potential.stepsize;
    for (std::size_t n = 0; n + 1 < entries; ++n) {
        const double value = potential.values[n];
        const double slope = (potential.values[n + 1] - value) / potential.stepsize;
        energy.steps.push_back({value - slope * (static_cast<double>(n) * potential.stepsize), slope});
    }
    energy.steps.push_back({});
    return energy;
}

void turnCharges(RodEnergy &energy, const PlacedCharges &placed, const Turn &turn)
{
    energy.charges.clear();
    for (std::size_t c = 0; c < placed.count(); ++c) {
        const auto place = static_cast<std::size_t>(placed.charges->chargeAtomID[c]);
        const auto y = static_cast<double>(turned(placed.atoms, place, turn.column2));
        energy.charges.push_back({static_cast<double>(turned(placed.atoms, place, turn.column1)), y * y,
                                  static_cast<double>(placed.charges->charges[c])});
    }
    while (energy.charges.size() % rodBlock != 0) // whole blocks, by charges of 0 at the place of the last
        energy.charges.push_back({energy.charges.back().x, energy.charges.back().ySquare, 0.0});
}

std::span<const double> energiesAt(RodEnergy &energy, std::size_t first, std::size_t beyond)
{
    const std::size_t count = beyond - first;
    const auto distances = std::span<const double>(energy.distances).subspan(first, count);
    const int last = static_cast<int>(energy.steps.size()) - 1;
    energy.r.resize(rodBlock * energy.distances.size());
    energy.entry.resize(rodBlock * energy.distances.size());
    energy.energy.assign(count, 0.0);
    std::array<RodTrack, rodBlock> tracks;
    for (std::size_t c = 0; c < energy.charges.size(); c += rodBlock) {
        for (std::size_t k = 0; k < rodBlock; ++k) {
            double *const r = &energy.r[k * count];
            int *const entry = &energy.entry[k * count];
            findEntries(energy.charges[c + k], energy, distances, r, entry);
            tracks[k] = {energy.charges[c + k].q, r, entry};
            // The distance of a charge is largest at one of the two ends.
            energy.isBeyond = energy.isBeyond || entry[0] == last || entry[count - 1] == last;
        }
        addPotentials(energy.steps.data(), tracks, energy.energy);
    }
    return energy.energy;
}

} // namespace trelm
