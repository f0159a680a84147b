// Samples of the coupling noise: the decomposition of the unchanged design matrix is kept from sample to
// sample. The plain form decomposes each time.
#include "couplings/fit.h"
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
    std::vector<float> measured;
    RepeatedFit fit;
    RandomStream random;

    explicit Ubiquitin(const char *table)
    {
        const std::string folder = std::string(TRELM_EXAMPLES) + "/ubiquitin/";
        if (readPDB(folder + "1d3z_model1.pdb", pdb, nullptr, standardMessages()) != Status::ok ||
            readDC(folder + table, dTab, standardMessages()) != Status::ok)
            return;
        selectD(dTab.observed(), 1, 76, 3);
        buildDC(&pdb, dTab, {.wOff = 1}, standardMessages());
        for (const DInfo &row : dTab.observed())
            measured.push_back(row.d);
        fitD(&pdb, dTab, 0, standardMessages());
        prepareRepeatedFit(dTab, fit);
    }
    ~Ubiquitin() { dTabFree(&dTab); }
    Ubiquitin(const Ubiquitin &) = delete;
    Ubiquitin &operator=(const Ubiquitin &) = delete;

    /// Plain: the fit as a run without samples makes it.
    void fitNoisy(bool plain)
    {
        for (std::size_t i = 0; i < measured.size(); ++i)
            dTab.dObsList[i].d =
                static_cast<float>(random.gauss() * static_cast<double>(dTab.dObsList[i].sigma) * 0.5) +
                measured[i];
        if (plain) {
            dTab.fitWork.svd = {};
            fitD(&pdb, dTab, 0, standardMessages());
        } else {
            refitD(fit, &pdb, dTab, 0, standardMessages());
        }
    }
};

void noiseSamples(benchmark::State &state, const char *table, bool plain)
{
    Ubiquitin ubiquitin(table);
    for (int i = 0; i < 10; ++i) { // both forms give the same bits
        ubiquitin.random = RandomStream();
        ubiquitin.fitNoisy(false);
        const auto kept = ubiquitin.dTab.dTensor.saupe;
        const float d = ubiquitin.dTab.dCalcList[5].d;
        ubiquitin.random = RandomStream();
        ubiquitin.fitNoisy(true);
        if (kept != ubiquitin.dTab.dTensor.saupe || d != ubiquitin.dTab.dCalcList[5].d)
            return state.SkipWithError("differs from the plain form");
    }
    for (auto step : state) {
        ubiquitin.fitNoisy(plain);
        benchmark::DoNotOptimize(ubiquitin.dTab.dTensor);
    }
    state.SetItemsProcessed(state.iterations());
    state.counters["couplings"] = static_cast<double>(ubiquitin.measured.size());
}
BENCHMARK_CAPTURE(noiseSamples, amides, "bicelle_hn.tab", false);
BENCHMARK_CAPTURE(noiseSamples, amidesPlain, "bicelle_hn.tab", true);
BENCHMARK_CAPTURE(noiseSamples, backbone, "bicelle_backbone.tab", false);
BENCHMARK_CAPTURE(noiseSamples, backbonePlain, "bicelle_backbone.tab", true);

} // namespace
