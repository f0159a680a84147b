#include "modes/ensemble.h"

#include "couplings/options.h"
#include "couplings/statistics.h"
#include "couplings/tensor.h"
#include "modes/coupling_output.h"
#include "modes/simulation.h"
#include "report/output.h"
#include "report/run_report.h"
#include "simulation/alignment/alignment.h"
#include "simulation/alignment/options.h"
#include "simulation/charges/field.h"
#include "simulation/domains/domains.h"
#include "simulation/domains/ensemble.h"
#include "structure/write.h"

#include <optional>
#include <span>
#include <string>
#include <vector>

namespace trelm {
namespace {

constexpr int outSetupOnly = 2; ///< outEflag: the run ends once the ensemble is set up

Status checkEnsemble(const AlignmentOptions &options, Messages &messages)
{
    if (options.lcType != lcWall && options.lcType != lcRod)
        return messages.fail("trelm: -stTrelmGrid knows the models -bic and -pf1 only.\n");
    return checkSimulation(options, messages);
}

/// Moves the molecule to its starting position, and writes it if asked for.
Status orientMolecule(const Run &run, const DomainOptions &domains, std::span<Coord3D> coords,
                      Messages &messages)
{
    const PDBInfo &pdbInfo = run.pdbInfo[0];
    if (initOrient({pdbInfo, coords}, domains, run.fit.yzFlag, messages) != Status::ok)
        return messages.fail("matrix: error in initOrient.\n");
    const RunOptions &options = run.options;
    return options.pRotName.empty()
               ? Status::ok
               : writePDB(options.pRotName, {pdbInfo, nullptr, run.structureRemark()}, coords, messages);
}

Status makeEnsemble(const Run &run, const DomainOptions &domains, Ensemble &ensemble, Messages &messages)
{
    const RunOptions &options = run.options;
    if (setupEnsemble(domains, {options.outEName, options.outEAxName, options.inEName}, ensemble, messages) !=
        Status::ok)
        return messages.fail("matrix: setupEnsemble error occured.\n");
    messages.out("REMARK ENSEMBLE MODE.\n");
    messages.out("REMARK STERIC CLASH CHECK %s.\n", domains.clashFlag != 0 ? "ENABLED" : "DISABLED");
    messages.out("REMARK %d states in ensemble.\n", ensemble.count);
    return Status::ok;
}

/// What the states of an ensemble are simulated with.
struct EnsembleInput {
    const Sample &sample;
    const Ensemble &ensemble;
    std::span<const Coord3D> start; ///< where the atoms stand before domain 1 is turned
    std::span<const double> ddots;
};

Status averageEnsemble(const Run &run, const EnsembleInput &input, DTable &dTab, EnsembleResult &result,
                       Messages &messages)
{
    const RunOptions &options = run.options;
    if (!options.oDcEName.empty())
        messages.out("REMARK Simulated DCs will be appended to %s.\n", options.oDcEName.c_str());
    const ShownParameters shown = parametersOf(run, input.sample.geometry);
    const EnsembleSetup setup = {
        .simulation = alignmentSetup(run, input.sample, input.ddots, messages),
        .domains = input.sample.domains,
        .selection = run.selection,
        .start = input.start,
        .states = input.ensemble.used(),
        .charges = input.sample.charges,
        .sInfo = &run.sInfo,
        .remark = run.structureRemark(),
        .outName = options.flexName,
        .takeCouplings =
            [&](const DTable &rows, std::string_view remark) {
                return writeCouplings({options.oDcEName, "a", remark}, rows, shown, messages);
            },
        .yzFlag = run.fit.yzFlag,
        .eulerFlag = run.fit.eulerFlag,
        .verbose = run.report.verbFlag};
    if (run.alignment.elFlag != 0) // once: all states lie in one field
        checkField(run.alignment, messages);
    if (ensembleAlignment(run.pdbInfo[0], dTab, setup, result) != Status::ok)
        return messages.fail("matrix: ensembleAlignment error occured.\n");
    return Status::ok;
}

/// The report of the averages, on the standard error stream and at the head of the coupling table.
Status reportAverage(const ShownParameters &parameters, const EnsembleResult &average,
                     const TensorAnalysis &analysis, DTable &dTab, const std::string &name,
                     Messages &messages)
{
    const auto rows = dTab.calculated();
    for (std::size_t i = 0; i < rows.size(); ++i)
        rows[i].d = average.couplings[i];
    std::string result;
    writeTrelm(parameters, result);
    // The irreducible representation of an average of states is not reported: it stands as zero.
    TensorAnalysis shown = analysis;
    shown.irrSaupe = {};
    shown.gMag = 0.0;
    appendEulerInfo(shown, result, parameters.fit.eulerFlag);
    ComparedCouplings compared;
    if (statDC(dTab, compared, messages) != Status::ok)
        return messages.fail("Matrix: error in statDC.\n");
    appendCompared(compared, result);
    appendSaupeLines(average.saupe, analysis, result);
    messages.text(Messages::Stream::err, result);
    return writeCouplings({name, "w", result}, dTab, parameters, messages);
}

/// Simulates the states, and reports their average.
Status simulateStates(const Run &run, const EnsembleInput &input, Messages &messages)
{
    std::optional<DTable> dTab = copyTable(run.dTab[0], messages);
    EnsembleResult result;
    if (!dTab || averageEnsemble(run, input, *dTab, result, messages) != Status::ok)
        return Status::failed;
    TensorAnalysis average;
    if (analyzeSaupe(result.saupe, run.fit.yzFlag, run.fit.eulerFlag, average, messages) != Status::ok)
        return messages.fail("Matrix: error in analyzeSaupe.\n");
    return run.validCount == 0 ? Status::ok
                               : reportAverage(parametersOf(run, input.sample.geometry), result, average,
                                               *dTab, run.options.aveName, messages);
}

} // namespace

Status simulateEnsemble(const Run &run, Messages &messages)
{
    Sample sample;
    if (checkEnsemble(run.alignment, messages) != Status::ok)
        return Status::failed;
    if (!run.options.potName.empty())
        messages.warn("trelm: -stTrelmGrid reads no potential: -pot is not used.\n");
    if (setUp(run, sample, messages) != Status::ok)
        return Status::failed;
    Ensemble ensemble;
    ensemble.states = Block<EnsembleState>("matrix", maxEnsembleStates);
    if (!ensemble.states)
        return messages.fail("Error allocating grid buffers.\n");
    std::vector<Coord3D> start = copyOfCoordinates(run.pdbInfo[0]);
    std::vector<double> dots;
    if (makeDots(run, dots, messages) != Status::ok ||
        orientMolecule(run, sample.domains, start, messages) != Status::ok ||
        makeEnsemble(run, sample.domains, ensemble, messages) != Status::ok)
        return Status::failed;
    if (sample.domains.outEflag == outSetupOnly)
        return Status::ok;
    return simulateStates(run, {sample, ensemble, start, dots}, messages);
}

} // namespace trelm
