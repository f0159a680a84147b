// Samples of the coupling noise: the decomposition of the unchanged design matrix is kept from sample to
// sample. The plain form decomposes each time. And the cone angles of the structural noise: most draws are
// seen to be none before they are worked out.
#include "couplings/fit.h"
#include "couplings/window.h"
#include "errors/cone_noise.h"
#include "reference/cone_reference.h"
#include "structure/pdb.h"
#include "support/numerics/random.h"

#include <benchmark/benchmark.h>

#include <string>
#include <vector>

namespace {

using namespace trelm;

/// Ubiquitin and its couplings, ready to be fitted.
struct Ubiquitin {
    PDBInfo pdb;
    DTable dTab;
    FitColumns columns;
    FitWork work;
    FitResult fit;
    RepeatedFit repeated;
    RandomStream random;

    explicit Ubiquitin(const char *table)
    {
        const std::string folder = std::string(TRELM_EXAMPLES) + "/ubiquitin/";
        if (readPDB(folder + "1d3z_model1.pdb", pdb, nullptr, standardMessages()) != Status::ok ||
            readDC(folder + table, dTab, standardMessages()) != Status::ok)
            return;
        selectD(dTab.observed(), 1, 76, largerInside);
        buildDC(pdb, dTab, {.wOff = 1}, standardMessages());
        takeColumns(dTab, columns);
        fit = startOf(dTab);
        static_cast<void>(fitColumns(input(), work, fit, standardMessages()));
        prepareRepeatedFit(input(), fit.tensor, repeated);
    }
    Ubiquitin(const Ubiquitin &) = delete;
    Ubiquitin &operator=(const Ubiquitin &) = delete;

    [[nodiscard]] FitInput input() const { return {pdb.coordinates(), dTab, columns}; }

    /// Plain: the fit as a run without samples makes it.
    void fitNoisy(bool plain)
    {
        for (std::size_t i = 0; i < columns.d.size(); ++i)
            columns.d[i] = static_cast<float>(random.gauss() * static_cast<double>(columns.sigma[i]) * 0.5) +
                           dTab.dObsList[i].d;
        if (plain) {
            work.svd = {};
            static_cast<void>(fitColumns(input(), work, fit, standardMessages()));
        } else {
            static_cast<void>(refitColumns(repeated, input(), work, fit, standardMessages()));
        }
    }
};

void noiseSamples(benchmark::State &state, const char *table, bool plain)
{
    Ubiquitin ubiquitin(table);
    for (int i = 0; i < 10; ++i) { // both forms give the same bits
        ubiquitin.random = RandomStream();
        ubiquitin.fitNoisy(false);
        const FitResult kept = ubiquitin.fit;
        ubiquitin.random = RandomStream();
        ubiquitin.fitNoisy(true);
        if (kept.tensor.saupe != ubiquitin.fit.tensor.saupe || kept.calculated != ubiquitin.fit.calculated)
            return state.SkipWithError("differs from the plain form");
    }
    for (auto step : state) {
        ubiquitin.fitNoisy(plain);
        benchmark::DoNotOptimize(ubiquitin.fit);
    }
    state.SetItemsProcessed(state.iterations());
    state.counters["couplings"] = static_cast<double>(ubiquitin.columns.d.size());
}
BENCHMARK_CAPTURE(noiseSamples, amides, "bicelle_hn.tab", false);
BENCHMARK_CAPTURE(noiseSamples, amidesPlain, "bicelle_hn.tab", true);
BENCHMARK_CAPTURE(noiseSamples, backbone, "bicelle_backbone.tab", false);
BENCHMARK_CAPTURE(noiseSamples, backbonePlain, "bicelle_backbone.tab", true);

/// The argument is the width of the cone, degrees.
void coneAngles(benchmark::State &state, double (*draw)(RandomStream &, const ConeSetup &))
{
    const ConeSetup cone = {static_cast<double>(state.range(0)), 360, 0, 1.0};
    RandomStream random, judge;
    for (int i = 0; i < 1000; ++i)
        if (draw(random, cone) != drawAnglePlain(judge, cone))
            return state.SkipWithError("differs from the plain form");
    for (auto step : state)
        benchmark::DoNotOptimize(draw(random, cone));
    state.SetItemsProcessed(state.iterations());
}
BENCHMARK_CAPTURE(coneAngles, fast, drawAngle)->Arg(2)->Arg(10);
BENCHMARK_CAPTURE(coneAngles, plain, drawAnglePlain)->Arg(2)->Arg(10);

} // namespace
