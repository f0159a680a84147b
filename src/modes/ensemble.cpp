#include "modes/ensemble.h"

#include "couplings/output.h"
#include "couplings/run_report.h"
#include "couplings/tensor.h"
#include "errors/fit_statistics.h"
#include "modes/simulation.h"
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

int checkEnsemble(const TrelmInfo &trelmInfo)
{
    if (trelmInfo.lcType != lcWall && trelmInfo.lcType != lcRod)
        return complain("trelm: -stTrelmGrid knows the models -bic and -pf1 only.\n");
    return checkSimulation(trelmInfo);
}

/// The molecule in its starting position, saved, and written if asked for.
int orientMolecule(Run &run)
{
    PDBInfo *pdbInfo = &run.pdbInfo[0];
    if (initOrient(pdbInfo, run.trelmInfo[0]) != 0)
        return complain("matrix: error in initOrient.\n");
    if (storePDBCoords(pdbInfo) != 0)
        return complain("matrix: error in storePDBCoords.\n");
    const RunOptions &options = run.options;
    return options.pRotName.empty() ? 0 : writePDB(options.pRotName, pdbInfo, nullptr, options.remark);
}

int makeEnsemble(const Run &run, Ensemble &ensemble)
{
    const RunOptions &options = run.options;
    const TrelmInfo &trelmInfo = run.trelmInfo[0];
    const int status =
        setupEnsemble(trelmInfo, {options.outEName, options.outEAxName, options.inEName}, ensemble);
    if (status != 0) {
        complain("matrix: setupEnsemble error occured.\n");
        return status;
    }
    std::printf("REMARK ENSEMBLE MODE.\n");
    std::printf("REMARK STERIC CLASH CHECK %s.\n", trelmInfo.clashFlag != 0 ? "ENABLED" : "DISABLED");
    std::printf("REMARK %d states in ensemble.\n", ensemble.count);
    return 0;
}

int averageEnsemble(Run &run, const Ensemble &ensemble, const ChargeSet &charges,
                    std::span<const double> ddots, Saupe &saupeAve)
{
    const RunOptions &options = run.options;
    if (!options.oDcEName.empty())
        std::printf("REMARK Simulated DCs will be appended to %s.\n", options.oDcEName.c_str());
    const EnsembleSetup setup = {.states = ensemble.used(),
                                 .charges = charges,
                                 .dots = ddots,
                                 .sInfo = &run.sInfo,
                                 .remark = options.remark,
                                 .outName = options.flexName,
                                 .outDcEnsName = options.oDcEName,
                                 .verbose = run.trelmInfo[0].verbFlag};
    if (run.trelmInfo[0].elFlag != 0) // once: all states lie in one field
        checkField(run.trelmInfo[0]);
    const int status = ensembleAlignment(&run.pdbInfo[0], &run.dTab[0], &run.trelmInfo[0], setup, saupeAve);
    if (status != 0)
        complain("matrix: ensembleAlignment error occured.\n");
    return status;
}

/// The report of the averages, on the standard error stream and at the head of the coupling table.
int reportAverage(Run &run, const Saupe &saupe, const TensorAnalysis &average)
{
    TrelmInfo &trelmInfo = run.trelmInfo[0];
    DTable &dTab = run.dTab[0];
    std::string result, block;
    if (writeTrelm(trelmInfo, result) != 0)
        return complain("trelm: error in writeTrelm.\n");
    // The irreducible representation of an average of states is not reported: it stands as zero.
    TensorAnalysis shown = average;
    shown.irrSaupe = {};
    shown.gMag = 0.0;
    writeEulerInfo(shown, block, trelmInfo.eulerFlag);
    result += block;
    if (statDC(dTab, block, standardMessages()) != Status::ok)
        return complain("Matrix: error in statDC.\n");
    result += block;
    appendSaupeLines(saupe, average, result);
    std::fputs(result.c_str(), stderr);
    return writeDCmod(run.options.aveName, "w", &dTab, &trelmInfo, result);
}

} // namespace

int simulateEnsemble(Run &run)
{
    const TrelmInfo &trelmInfo = run.trelmInfo[0];
    ChargeSet charges;
    if (checkEnsemble(trelmInfo) != 0)
        return 1;
    if (!run.options.potName.empty())
        complain("trelm: -stTrelmGrid reads no potential: -pot is not used.\n");
    int status = setUp(run, charges);
    if (status != 0)
        return status;
    Ensemble ensemble;
    ensemble.states = Block<EnsembleState>("matrix", maxEnsembleStates);
    if (!ensemble.states)
        return complain("Error allocating grid buffers.\n");
    std::span<const double> ddots;
    if (makeDots(run, ddots) != 0 || orientMolecule(run) != 0)
        return 1;
    status = makeEnsemble(run, ensemble);
    if (status != 0 || trelmInfo.outEflag == outSetupOnly)
        return status;
    Saupe saupeAve = {};
    status = averageEnsemble(run, ensemble, charges, ddots, saupeAve);
    if (status != 0)
        return status;
    TensorAnalysis average;
    if (analyzeSaupe(saupeAve, trelmInfo.yzFlag, trelmInfo.eulerFlag, average) != 0)
        return complain("Matrix: error in analyzeSaupe.\n");
    return trelmInfo.validCountD == 0 ? 0 : reportAverage(run, saupeAve, average);
}

} // namespace trelm
