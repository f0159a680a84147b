#include "errors/jackknife.h"

#include "couplings/fit.h"
#include "errors/fit_statistics.h"
#include "support/text/progress.h"
#include "support/text/text.h"

#include <algorithm>
#include <cstdio>

namespace trelm {
namespace {

/// What a user who means a number of couplings should hear.
void tellFraction(const TrelmInfo &info)
{
    if (info.mapFixCount == 0 && info.mapFrac > 1.0f)
        complain("Warning: -dFrac %g: above 1 each fit takes all couplings; -nDfixed takes a number.\n",
                 static_cast<double>(info.mapFrac));
}

struct JackknifeRun {
    const MappingSetup &setup;
    Block<int> selectTab; ///< whether each calculated row takes part
    TensorSamples samples;
    SampleOutputs outputs;
    int nDSel = 0; ///< couplings of the last sample

    void restoreRows() const
    {
        for (std::size_t i = 0; i < selectTab.length(); ++i)
            setup.dTab->dCalcList[i].valid = selectTab[i];
    }
};

int fitAll(JackknifeRun &run)
{
    if (fitD(run.setup.pdbInfo, run.setup.dTab, run.setup.verbose) < 0)
        return 1;
    run.samples.orig = eulerSolution(run.setup.dTab->dTensor, 0);
    std::ranges::transform(run.setup.dTab->calculated(), run.selectTab.data(), &DInfo::valid);
    return 0;
}

int samplePart(JackknifeRun &run, int n, int *idum)
{
    const MappingSetup &setup = run.setup;
    run.restoreRows();
    run.nDSel = selectDcFrac(idum, setup.dTab, setup.trelmInfo->mapFrac, setup.trelmInfo->mapFixCount);
    if (fitD(setup.pdbInfo, setup.dTab, setup.verbose) < 0)
        return 1;
    return isWithoutTensor(*setup.dTab) ? 0 : takeSample(run.samples, setup, n, run.outputs);
}

int sampleParts(JackknifeRun &run)
{
    int idum = -1; // the draws do not follow the seed of the run
    Progress progress = startProgress("REMARK Sampled ", run.setup.mapCount);
    for (int n = 1; n <= run.setup.mapCount; ++n) {
        showProgress(progress, n);
        if (samplePart(run, n, &idum) != 0)
            return failed(progress);
    }
    endProgress(progress);
    if (run.setup.mapCount > 0 && run.nDSel < static_cast<int>(fewestCouplings))
        complain("trelm: -dFrac %g picks %d couplings: a tensor has five unknowns.\n",
                 static_cast<double>(run.setup.trelmInfo->mapFrac), run.nDSel);
    std::printf("REMARK %d DC of %d picked.\n", run.nDSel, run.setup.dTab->dCount);
    std::printf("REMARK %d SVD runs of %d succesful.\n", run.samples.count, run.setup.mapCount);
    return 0;
}

} // namespace

int aeraSimDC(const MappingSetup &setup)
{
    if (setup.dTab == nullptr || setup.dTab->dCount == 0)
        return 0;
    tellFraction(*setup.trelmInfo);
    JackknifeRun run = {setup, Block<int>("trelm", static_cast<std::size_t>(setup.dTab->dCount)), {}, {}};
    if (!run.selectTab)
        return complain("Error allocating coord buffers.\n");
    if (makeSamples(run.samples) != 0 || openOutputs(setup, mappingWords, run.outputs) != 0 ||
        fitAll(run) != 0)
        return 1;
    writeOut(run.outputs.da, daHead);
    if (sampleParts(run) != 0)
        return 1;
    averageSamples(run.samples);
    run.restoreRows();
    if (comparePass(run.samples, setup, mappingWords, run.outputs) != 0)
        return 1;
    const int status = reportMeanTensor(run.samples, setup);
    const int closed = closeOutputs(run.outputs);
    return status != 0 ? status : closed;
}

} // namespace trelm
