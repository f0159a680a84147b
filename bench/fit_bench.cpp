// Repeated fits: the decomposition of an unchanged design matrix is kept. The plain form decomposes each
// time.
#include "couplings/fit.h"
#include "reference/fit_reference.h"

#include <benchmark/benchmark.h>

#include <random>
#include <vector>

namespace {

using namespace trelm;

/// Random pairs with couplings of a known order matrix.
struct Problem {
    explicit Problem(int count)
    {
        std::mt19937 engine(7);
        std::uniform_real_distribution<float> place(-20.0f, 20.0f);
        for (auto *axis : {&xI, &yI, &zI, &xJ, &yJ, &zJ}) {
            axis->resize(static_cast<std::size_t>(count));
            for (float &value : *axis)
                value = place(engine);
        }
        di.assign(static_cast<std::size_t>(count), -21585.0f);
        d.resize(di.size());
        sigma.assign(di.size(), 1.0f);
        findD(vectors(), {-5e-4f, 3e-4f, -2e-4f, 1.5e-4f, 4e-4f});
    }
    FitVectors vectors() { return {xI, yI, zI, xJ, yJ, zJ, di, d, sigma}; }
    std::vector<float> xI, yI, zI, xJ, yJ, zJ, di, d, sigma;
};

void fitReused(benchmark::State &state)
{
    Problem problem(static_cast<int>(state.range(0)));
    SaupeValues plain{}, saupe{};
    FitWork work;
    findSPlain(problem.vectors(), plain);
    for (int round = 0; round < 2; ++round) {
        if (findS(problem.vectors(), saupe, work, standardMessages()) != Status::ok || saupe != plain)
            return state.SkipWithError("differs from the plain form");
    }
    for (auto step : state) {
        static_cast<void>(findS(problem.vectors(), saupe, work, standardMessages()));
        benchmark::DoNotOptimize(saupe);
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(fitReused)->Arg(60)->Arg(400)->Unit(benchmark::kMicrosecond);

void fitPlain(benchmark::State &state)
{
    Problem problem(static_cast<int>(state.range(0)));
    SaupeValues saupe{};
    for (auto step : state) {
        findSPlain(problem.vectors(), saupe);
        benchmark::DoNotOptimize(saupe);
    }
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK(fitPlain)->Arg(60)->Arg(400)->Unit(benchmark::kMicrosecond);

} // namespace
