// The steric kernels and the surface, fast forms against plain forms, on ubiquitin and on copies of it.
#include "reference/steric_reference.h"
#include "reference/surface_reference.h"
#include "simulation/obstacle/exposure.h"
#include "simulation/obstacle/steric.h"
#include "simulation/obstacle/surface.h"
#include "simulation/orientations/sphere.h"
#include "structure/pdb.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

namespace {

using namespace trelm;

/// The heavy atoms of ubiquitin, copied on a lattice, about their centre.
struct Assembly {
    std::vector<double> x, y, z, co, radius, dots;
    double size = 0.0;

    explicit Assembly(int copies, int densit = 100)
    {
        PDBInfo pdb;
        if (readPDB(std::string(TRELM_EXAMPLES) + "/ubiquitin/1d3z_model1.pdb", pdb, nullptr,
                    standardMessages()) != Status::ok)
            return;
        constexpr double spacing = 45.0;
        for (int copy = 0; copy < copies; ++copy)
            for (const AtomInfo &atom : pdb.atoms())
                if (atom.atomName.text[0] != 'H') {
                    const Coord3D &at = pdb.coordinates()[pdb.placeOf(atom)];
                    x.push_back(static_cast<double>(at.x) + spacing * (copy % 3));
                    y.push_back(static_cast<double>(at.y) + spacing * (copy / 3 % 3));
                    z.push_back(static_cast<double>(at.z) + spacing * (copy / 9));
                }
        for (std::vector<double> *column : {&x, &y, &z}) {
            double sum = 0.0;
            for (const double value : *column)
                sum += value;
            for (double &value : *column)
                value -= sum / static_cast<double>(column->size());
        }
        for (std::size_t i = 0; i < x.size(); ++i) {
            size = std::max(size, std::hypot(x[i], y[i], z[i]));
            co.insert(co.end(), {x[i], y[i], z[i]});
            radius.push_back(3.2);
        }
        static_cast<void>(do_unsp(densit, dots));
    }

    [[nodiscard]] Coordinates view() const { return {x, y, z}; }
    [[nodiscard]] StericSetup setup(LcType lcType, double gridSpacing) const
    {
        StericSetup made;
        made.lcType = lcType;
        made.stepOutLength = 440.0;
        made.grid.max_obstruction = 20.0;
        made.grid.gridSpacing = gridSpacing;
        made.wvAmount = 0.05;
        made.grid.max_protein_length = size;
        made.digit_psi = 18;
        return made;
    }
};

/// Progress lines go to /dev/null while a benchmark runs: their making is part of the kernel, a terminal is
/// not.
struct QuietProgress {
    QuietProgress() { isQuiet = std::freopen("/dev/null", "w", stderr) != nullptr; }
    bool isQuiet;
};

/// Range: model, copies of ubiquitin, grid step in hundredths of an angstrom.
void steric(benchmark::State &state, bool plain)
{
    static const QuietProgress quiet;
    const Assembly assembly(static_cast<int>(state.range(1)));
    const StericSetup setup =
        assembly.setup(static_cast<LcType>(state.range(0)), 0.01 * static_cast<double>(state.range(2)));
    Saupe saupe = {};
    std::vector<double> allowedCount;
    for (auto step : state) {
        if (plain)
            stericAlignmentPlain(setup, assembly.view(), assembly.dots, saupe, allowedCount);
        else
            static_cast<void>(
                stericAlignment(setup, assembly.view(), assembly.dots, saupe, standardMessages()));
        benchmark::DoNotOptimize(saupe);
    }
}

void stericFast(benchmark::State &state)
{
    steric(state, false);
}
void stericPlain(benchmark::State &state)
{
    steric(state, true);
}
BENCHMARK(stericFast)
    ->ArgNames({"model", "copies", "step"})
    ->Args({lcWall, 1, 20})
    ->Args({lcWall, 1, 2})
    ->Args({lcWall, 33, 20})
    ->Args({lcRod, 1, 20})
    ->Args({lcRod, 1, 2})
    ->Args({lcRod, 33, 20})
    ->Unit(benchmark::kMillisecond);
BENCHMARK(stericPlain)
    ->ArgNames({"model", "copies", "step"})
    ->Args({lcWall, 1, 20})
    ->Args({lcWall, 33, 20})
    ->Args({lcRod, 1, 20})
    ->Unit(benchmark::kMillisecond);

/// Twice the orientations: twice the time.
void stericOrientations(benchmark::State &state)
{
    const Assembly assembly(1, static_cast<int>(state.range(1)));
    const StericSetup setup = assembly.setup(static_cast<LcType>(state.range(0)), 0.2);
    Saupe saupe = {};
    for (auto step : state)
        static_cast<void>(stericAlignment(setup, assembly.view(), assembly.dots, saupe, standardMessages()));
    state.counters["orientations"] = static_cast<double>(assembly.dots.size() / 3 * 18);
}
BENCHMARK(stericOrientations)
    ->ArgNames({"model", "dots"})
    ->Args({lcWall, 1000})
    ->Args({lcWall, 4000})
    ->Args({lcRod, 1000})
    ->Args({lcRod, 4000})
    ->Unit(benchmark::kMillisecond);

void surfaceFast(benchmark::State &state)
{
    const Assembly assembly(static_cast<int>(state.range(0)));
    Surface surface;
    for (auto step : state)
        static_cast<void>(
            nsc_dclm(assembly.co, assembly.radius, 700, surfaceAtomAreas, surface, standardMessages()));
    state.counters["atoms"] = static_cast<double>(assembly.radius.size());
}
BENCHMARK(surfaceFast)->ArgName("copies")->Arg(1)->Arg(33)->Arg(166)->Unit(benchmark::kMillisecond);

/// Exposed or not, which is all that a selection of atoms asks; the areas judge it.
void exposureFast(benchmark::State &state)
{
    const Assembly assembly(static_cast<int>(state.range(0)));
    Surface surface;
    std::vector<bool> isExposed;
    const ExposureLimit limit;
    if (nsc_dclm(assembly.co, assembly.radius, 700, surfaceAtomAreas, surface, standardMessages()) !=
            Status::ok ||
        findExposedBalls(assembly.co, assembly.radius, limit, isExposed, standardMessages()) != Status::ok)
        return state.SkipWithError("the surface failed");
    for (std::size_t i = 0; i < isExposed.size(); ++i) {
        const double bare = assembly.radius[i] - limit.probe;
        if (isExposed[i] != (surface.at_area[i] / (12.5663706 * (bare * bare)) > limit.leastRatio))
            return state.SkipWithError("differs from the areas");
    }
    for (auto step : state)
        static_cast<void>(
            findExposedBalls(assembly.co, assembly.radius, limit, isExposed, standardMessages()));
    state.counters["atoms"] = static_cast<double>(assembly.radius.size());
}
BENCHMARK(exposureFast)->ArgName("copies")->Arg(1)->Arg(33)->Arg(166)->Unit(benchmark::kMillisecond);

void surfacePlain(benchmark::State &state)
{
    const Assembly assembly(1, 700);
    for (auto step : state)
        benchmark::DoNotOptimize(exposedDotsPlain(assembly.co, assembly.radius, assembly.dots));
}
BENCHMARK(surfacePlain)->Unit(benchmark::kMillisecond);

} // namespace
