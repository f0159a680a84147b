// The likelihood search and the ranges of its couplings against their plain forms, on ubiquitin's measured
// N-H couplings and on a large synthetic set.
#include "couplings/dipolar.h"
#include "magnitude/likelihood.h"
#include "reference/likelihood_reference.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdio>
#include <vector>

namespace {

using namespace trelm;

/// Couplings with their larger extreme positive, and their error.
struct Couplings {
    std::vector<float> values;
    double delta = 0.16;

    [[nodiscard]] MlCouplings view() const { return {values, delta}; }
};

/// Those of ubiquitin.
Couplings measured()
{
    Couplings couplings;
    DTable dTab;
    if (readDC(TRELM_EXAMPLES "/ubiquitin/bicelle_hn.tab", dTab, standardMessages()) != Status::ok)
        return couplings;
    for (const DInfo &row : dTab.observed())
        couplings.values.push_back(-row.d);
    return couplings;
}

/// Synthetic ones of evenly spread orientations, as many as a search takes.
Couplings synthetic()
{
    Couplings couplings = {.values = {}, .delta = 0.5};
    for (int i = 0; i < static_cast<int>(maxMlCouplings); ++i) {
        const double theta = std::acos((i + 0.5) / double{maxMlCouplings}), phi = 2.4 * i;
        couplings.values.push_back(static_cast<float>(-dip_coup(theta, phi, 10.3, 0.22)));
    }
    return couplings;
}

/// Every tenth R of the default grid.
constexpr MlGrid grid = {
    .lowDab = -25.0, .highDab = -3.0, .incDa = 0.1, .lowR = 0.0, .highR = 0.7, .incR = 0.1};

bool isSame(const std::vector<MlPoint> &a, const std::vector<MlPoint> &b, std::size_t count)
{
    if (count == 0 || a.size() < count || b.size() < count)
        return false;
    for (std::size_t i = 0; i < count; ++i)
        if (!(std::fabs(a[i].score - b[i].score) <= 1e-5 * std::fabs(b[i].score)))
            return false;
    return true;
}

/// Progress lines go to /dev/null while a benchmark runs.
bool quietProgress()
{
    return std::freopen("/dev/null", "w", stderr) != nullptr;
}

template <Couplings make()>
void likelihoodGrid(benchmark::State &state)
{
    static const bool quiet = quietProgress();
    const Couplings couplings = make();
    std::vector<MlPoint> list(maxMlPoints);
    std::size_t count = 0;
    if (!quiet || mlMagTensor(couplings.view(), grid, false, list, count, standardMessages()) != Status::ok ||
        !isSame(list, mlMagTensorPlain(couplings.view(), grid, false), count))
        return state.SkipWithError("differs from the plain form");
    for (auto step : state)
        benchmark::DoNotOptimize(mlMagTensor(couplings.view(), grid, false, list, count, standardMessages()));
    state.counters["points"] = static_cast<double>(count);
}
BENCHMARK(likelihoodGrid<measured>)->Unit(benchmark::kMillisecond);
BENCHMARK(likelihoodGrid<synthetic>)->Unit(benchmark::kMillisecond);

template <Couplings make()>
void likelihoodGridPlain(benchmark::State &state)
{
    const Couplings couplings = make();
    for (auto step : state)
        benchmark::DoNotOptimize(mlMagTensorPlain(couplings.view(), grid, false));
}
BENCHMARK(likelihoodGridPlain<measured>)->Unit(benchmark::kMillisecond);
BENCHMARK(likelihoodGridPlain<synthetic>)->Unit(benchmark::kMillisecond);

constexpr MagnitudeRange range = {.Dab = -9.9, .DabErr = 1.3, .R = 0.13, .RErr = 0.13};

/// Middles and half widths, one behind the other.
using Ranges = std::vector<double>;

Ranges mapAll(const Couplings &couplings)
{
    Ranges result(2 * couplings.values.size());
    CouplingRanges ranges;
    if (startRanges(ranges, range, standardMessages()) != Status::ok)
        return {};
    for (std::size_t i = 0; i < couplings.values.size(); ++i)
        mapMagToDc(ranges, couplings.values[i], couplings.delta, result[2 * i], result[2 * i + 1]);
    return result;
}

Ranges mapAllPlain(const Couplings &couplings)
{
    Ranges result(2 * couplings.values.size());
    for (std::size_t i = 0; i < couplings.values.size(); ++i)
        mapMagToDcPlain(range, couplings.values[i], couplings.delta, result[2 * i], result[2 * i + 1]);
    return result;
}

void likelihoodMap(benchmark::State &state)
{
    const Couplings couplings = measured();
    if (couplings.values.empty() || mapAll(couplings) != mapAllPlain(couplings))
        return state.SkipWithError("no couplings, or other ranges than the plain form's");
    for (auto step : state)
        benchmark::DoNotOptimize(mapAll(couplings));
}
BENCHMARK(likelihoodMap)->Unit(benchmark::kMillisecond);

void likelihoodMapPlain(benchmark::State &state)
{
    const Couplings couplings = measured();
    for (auto step : state)
        benchmark::DoNotOptimize(mapAllPlain(couplings));
}
BENCHMARK(likelihoodMapPlain)->Unit(benchmark::kMillisecond);

} // namespace
