// The weighted kernels, fast forms against plain forms: ubiquitin with its default charges beside a wall and
// a rod, and a molecule of 300 atoms in a grid.
#include "reference/electrostatic_reference.h"
#include "simulation/alignment/alignment.h"
#include "simulation/alignment/grid3d.h"
#include "simulation/alignment/options.h"
#include "simulation/obstacle/atom_selection.h"
#include "simulation/obstacle/steric.h"
#include "simulation/orientations/sphere.h"
#include "structure/pdb.h"
#include "structure/select.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <random>
#include <string>
#include <vector>

#include <fcntl.h>
#include <unistd.h>

namespace {

using namespace trelm;

/// Sends what the kernels print to /dev/null while it lives: the report of the benchmark shares the stream.
class QuietStreams {
  public:
    QuietStreams() : out(redirected(stdout)), err(redirected(stderr)) {}
    ~QuietStreams()
    {
        restore(stdout, out);
        restore(stderr, err);
    }
    QuietStreams(const QuietStreams &) = delete;
    QuietStreams &operator=(const QuietStreams &) = delete;

  private:
    static int redirected(std::FILE *stream)
    {
        std::fflush(stream);
        const int saved = dup(fileno(stream));
        const int null = open("/dev/null", O_WRONLY | O_CLOEXEC);
        dup2(null, fileno(stream));
        close(null);
        return saved;
    }
    static void restore(std::FILE *stream, int saved)
    {
        std::fflush(stream);
        dup2(saved, fileno(stream));
        close(saved);
    }
    int out, err;
};

/// Ubiquitin as a run with default options simulates it: charges first, then the exposed heavy atoms.
struct ChargedUbiquitin {
    std::vector<double> x, y, z, dots;
    std::vector<int> chargeAtomID;
    std::vector<float> charge;
    ChargeSet charges;
    AlignmentOptions info;
    double size = 0.0;

    explicit ChargedUbiquitin(LcType lcType)
    {
        PDBInfo pdb;
        info.lcType = lcType;
        info.elFlag = 1;
        if (readPDB(std::string(TRELM_EXAMPLES) + "/ubiquitin/1d3z_model1.pdb", pdb, nullptr,
                    standardMessages()) != Status::ok)
            return;
        AtomMask heavy;
        for (const AtomInfo &atom : pdb.atoms())
            heavy.push_back(atom.atomName.text[0] != 'H' ? 1 : 0);
        chargeAtomID.resize(maxCharges + 1);
        charge.resize(maxCharges + 1);
        charges.chargeAtomID = chargeAtomID;
        charges.charges = charge;
        static_cast<void>(chargeSetup("", {pdb, heavy}, info, charges, "", standardMessages()));
        for (std::vector<double> *column : {&x, &y, &z})
            column->resize(static_cast<std::size_t>(pdb.atomCount) + maxCharges);
        SelectedCount selected;
        static_cast<void>(chCoorSelect({pdb, heavy}, info, {x, y, z}, charges, selected, standardMessages()));
        for (std::vector<double> *column : {&x, &y, &z})
            column->resize(selected.places);
        size = static_cast<double>(centreAtoms({x, y, z}));
        static_cast<void>(do_unsp(info.densityNSC, dots));
    }
    [[nodiscard]] Coordinates view() const { return {x, y, z}; }
};

Potential rodTable()
{
    Potential potential;
    potential.values = Block<double>("matrix", maxPotentialLines + 2);
    potential.count = 4000;
    potential.stepsize = 0.1;
    for (int i = 0; i < potential.count; ++i)
        potential.values[static_cast<std::size_t>(i)] = -1.5 * std::exp(-0.015 * i);
    return potential;
}

void weighted(benchmark::State &state, bool plain)
{
    const QuietStreams quiet;
    const ChargedUbiquitin molecule(static_cast<LcType>(state.range(0)));
    AlignmentOptions info = molecule.info;
    info.cutoffPot = 1e-6 * static_cast<double>(state.range(1));
    const AlignmentSetup setup = {info, standardMessages(),
                                  static_cast<double>(refine_bicelle(info).rSingleCell), molecule.dots};
    const SmaSetup sizes = {molecule.size, 0.0};
    Potential potential = rodTable();
    Saupe saupe = {};
    for (auto step : state) {
        if (plain)
            smaPlain(setup, molecule.view(), sizes, molecule.charges, potential, saupe);
        else
            static_cast<void>(sma(setup, molecule.view(), sizes, molecule.charges, potential, saupe));
        benchmark::DoNotOptimize(saupe);
    }
    state.counters["charges"] = molecule.charges.chCount;
    state.counters["atoms"] = static_cast<double>(molecule.x.size());
}

void weightedFast(benchmark::State &state)
{
    weighted(state, false);
}
void weightedPlain(benchmark::State &state)
{
    weighted(state, true);
}

/// The second argument is the cutoff in millionths: angstrom for the wall, kT/e for the rod.
BENCHMARK(weightedFast)
    ->ArgNames({"model", "cutoff"})
    ->Args({lcWall, 6})
    ->Args({lcWall, 400'000'000})
    ->Args({lcRod, 6})
    ->Unit(benchmark::kMillisecond);
BENCHMARK(weightedPlain)
    ->ArgNames({"model", "cutoff"})
    ->Args({lcWall, 6})
    ->Args({lcWall, 400'000'000})
    ->Args({lcRod, 6})
    ->Unit(benchmark::kMillisecond);

/// 300 atoms, a tenth of them charged, in a grid of 64 points a side with a charged cylinder in its middle.
struct GridCase {
    std::vector<double> x, y, z, dots, pot3D;
    std::vector<int> chargeAtomID;
    std::vector<float> charge;
    ChargeSet charges;
    AlignmentOptions info;
    Grid3D grid;

    explicit GridCase(bool isRough)
    {
        std::mt19937 engine(1);
        std::normal_distribution<double> normal(0.0, 7.0);
        for (int i = 0; i < 300; ++i) {
            x.push_back(normal(engine));
            y.push_back(normal(engine));
            z.push_back(normal(engine));
        }
        for (int c = 0; c < 30; ++c) {
            chargeAtomID.push_back(c);
            charge.push_back(c % 2 == 0 ? 1.0f : -1.0f);
        }
        charges.chargeAtomID = chargeAtomID;
        charges.charges = charge;
        charges.chCount = 30;
        info.lcType = lcGrid;
        info.grid3DnX = info.grid3DnY = info.grid3DnZ = info.zN = 64;
        info.z1 = 1;
        info.grid3DdeltaX = info.grid3DdeltaY = info.grid3DdeltaZ = 1.5f;
        grid = makeGrid3D(info);
        std::uniform_real_distribution<double> wiggle(0.0, isRough ? 6.0 : 0.0);
        for (int i = 0; i < 64; ++i)
            for (int j = 0; j < 64; ++j)
                for (int k = 0; k < 64; ++k) {
                    const double distance = 1.5 * std::hypot(i - 32, j - 32) + wiggle(engine);
                    pot3D.push_back(distance < 15.0 ? 10.0 : -1.5 * std::exp(-(distance - 15.0) / 7.0));
                }
        static_cast<void>(do_unsp(100, dots));
    }
    [[nodiscard]] Coordinates view() const { return {x, y, z}; }
};

/// The kernel over `dots` dots of the set (0: all). Rough: rows along z that clash in part.
void gridFast(benchmark::State &state)
{
    GridCase made(state.range(0) != 0);
    const auto dots = static_cast<std::size_t>(state.range(1));
    const std::span<const double> used = dots == 0 ? made.dots : std::span(made.dots).first(3 * dots);
    double total = 0.0;
    for (auto step : state) {
        const GridRows rows = makeGridRows(made.grid, made.pot3D);
        GridPlaces places;
        RowSearch search;
        total = 0.0;
        forEachTurn(makeOrientationSet(used, 18), [&](const Turn &turn) {
            placeAtoms(made.grid, made.view(), {turn.column1, turn.column2, turn.column3}, places);
            total += weighPositions(made.grid, rows, places, made.charges, search);
        });
    }
    state.counters["weight"] = total;
}
void gridPlain(benchmark::State &state)
{
    GridCase made(state.range(0) != 0);
    const auto used = std::span<const double>(made.dots).first(3 * static_cast<std::size_t>(state.range(1)));
    double total = 0.0;
    Saupe sum = {};
    for (auto step : state)
        sma3DPlain(made.grid, made.view(), used, 18, made.charges, made.pot3D, sum, total);
    state.counters["weight"] = total;
}
BENCHMARK(gridFast)
    ->ArgNames({"rough", "dots"})
    ->Args({0, 1})
    ->Args({1, 1})
    ->Args({0, 0})
    ->Unit(benchmark::kMillisecond);
BENCHMARK(gridPlain)->ArgNames({"rough", "dots"})->Args({0, 1})->Args({1, 1})->Unit(benchmark::kMillisecond);

} // namespace
