#include "modes/ensemble.h"

#include "couplings/statistics.h"
#include "couplings/tensor.h"
#include "modes/simulation.h"
#include "report/output.h"
#include "report/run_report.h"
#include "simulation/alignment/alignment.h"
#include "simulation/charges/field.h"
#include "simulation/domains/domains.h"
#include "simulation/domains/ensemble.h"
#include "structure/write.h"
#include "support/text/text.h"

#include <cstdio>
#include <string>

namespace trelm {
namespace {

constexpr int outSetupOnly = 2; ///< outEflag: the run ends once the ensemble is set up

int checkEnsemble(const AlignmentOptions &options)
{
    if (options.lcType != lcWall && options.lcType != lcRod)
        return complain("trelm: -stTrelmGrid knows the models -bic and -pf1 only.\n");
    return static_cast<int>(checkSimulation(options, standardMessages()));
}

/// The molecule in its starting position, saved, and written if asked for.
int orientMolecule(Run &run, const DomainOptions &domains)
{
    PDBInfo *pdbInfo = &run.pdbInfo[0];
    if (initOrient(pdbInfo, domains, run.trelmInfo[0].yzFlag, standardMessages()) != Status::ok)
        return complain("matrix: error in initOrient.\n");
    if (storePDBCoords(pdbInfo) != 0)
        return complain("matrix: error in storePDBCoords.\n");
    const RunOptions &options = run.options;
    return options.pRotName.empty() ? 0 : writePDB(options.pRotName, pdbInfo, nullptr, options.remark);
}

int makeEnsemble(const Run &run, const DomainOptions &domains, Ensemble &ensemble)
{
    const RunOptions &options = run.options;
    if (setupEnsemble(domains, {options.outEName, options.outEAxName, options.inEName}, ensemble,
                      standardMessages()) != Status::ok)
        return complain("matrix: setupEnsemble error occured.\n");
    std::printf("REMARK ENSEMBLE MODE.\n");
    std::printf("REMARK STERIC CLASH CHECK %s.\n", domains.clashFlag != 0 ? "ENABLED" : "DISABLED");
    std::printf("REMARK %d states in ensemble.\n", ensemble.count);
    return 0;
}

int averageEnsemble(Run &run, const Sample &sample, const Ensemble &ensemble, std::span<const double> ddots,
                    EnsembleResult &result)
{
    const TrelmInfo &trelmInfo = run.trelmInfo[0];
    const RunOptions &options = run.options;
    if (!options.oDcEName.empty())
        std::printf("REMARK Simulated DCs will be appended to %s.\n", options.oDcEName.c_str());
    const TrelmInfo shown = shownParameters(trelmInfo, sample.geometry);
    const EnsembleSetup setup = {
        .simulation = alignmentSetup(run, sample, ddots),
        .domains = sample.domains,
        .selection = run.selection,
        .states = ensemble.used(),
        .charges = sample.charges,
        .sInfo = &run.sInfo,
        .remark = options.remark,
        .outName = options.flexName,
        .takeCouplings =
            [&](DTable &dTab, std::string_view remark) {
                return writeDCmod({options.oDcEName, "a"}, dTab, shown, remark, standardMessages());
            },
        .yzFlag = trelmInfo.yzFlag,
        .eulerFlag = trelmInfo.eulerFlag,
        .verbose = trelmInfo.verbFlag};
    if (trelmInfo.elFlag != 0) // once: all states lie in one field
        checkField(trelmInfo, standardMessages());
    if (ensembleAlignment(&run.pdbInfo[0], &run.dTab[0], setup, result) != Status::ok)
        return complain("matrix: ensembleAlignment error occured.\n");
    return 0;
}

/// The report of the averages, on the standard error stream and at the head of the coupling table.
int reportAverage(Run &run, const SampleGeometry &geometry, const EnsembleResult &average,
                  const TensorAnalysis &analysis)
{
    const TrelmInfo trelmInfo = shownParameters(run.trelmInfo[0], geometry);
    DTable &dTab = run.dTab[0];
    const auto rows = dTab.calculated();
    for (std::size_t i = 0; i < rows.size(); ++i)
        rows[i].d = average.couplings[i];
    std::string result, block;
    writeTrelm(trelmInfo, result);
    // The irreducible representation of an average of states is not reported: it stands as zero.
    TensorAnalysis shown = analysis;
    shown.irrSaupe = {};
    shown.gMag = 0.0;
    writeEulerInfo(shown, block, trelmInfo.eulerFlag);
    result += block;
    if (statDC(dTab, block, standardMessages()) != Status::ok)
        return complain("Matrix: error in statDC.\n");
    result += block;
    appendSaupeLines(average.saupe, analysis, result);
    std::fputs(result.c_str(), stderr);
    return static_cast<int>(writeDCmod({run.options.aveName}, dTab, trelmInfo, result, standardMessages()));
}

} // namespace

Status simulateEnsemble(Run &run, Messages &messages)
{
    const TrelmInfo &trelmInfo = run.trelmInfo[0];
    Sample sample;
    if (checkEnsemble(trelmInfo) != 0)
        return Status::failed;
    if (!run.options.potName.empty())
        messages.err("trelm: -stTrelmGrid reads no potential: -pot is not used.\n");
    int status = setUp(run, sample);
    if (status != 0)
        return static_cast<Status>(status);
    Ensemble ensemble;
    ensemble.states = Block<EnsembleState>("matrix", maxEnsembleStates);
    if (!ensemble.states)
        return messages.fail("Error allocating grid buffers.\n");
    std::span<const double> ddots;
    if (makeDots(run, ddots) != 0 || orientMolecule(run, sample.domains) != 0)
        return Status::failed;
    status = makeEnsemble(run, sample.domains, ensemble);
    if (status != 0 || sample.domains.outEflag == outSetupOnly)
        return static_cast<Status>(status);
    EnsembleResult result;
    status = averageEnsemble(run, sample, ensemble, ddots, result);
    if (status != 0)
        return static_cast<Status>(status);
    TensorAnalysis average;
    if (analyzeSaupe(result.saupe, trelmInfo.yzFlag, trelmInfo.eulerFlag, average, messages) != Status::ok)
        return messages.fail("Matrix: error in analyzeSaupe.\n");
    return static_cast<Status>(
        trelmInfo.validCountD == 0 ? 0 : reportAverage(run, sample.geometry, result, average));
}

} // namespace trelm
