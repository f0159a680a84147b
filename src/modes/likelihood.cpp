#include "modes/likelihood.h"

#include "magnitude/likelihood.h"
#include "modes/magnitude.h"
#include "support/text/output_file.h"

#include <span>

namespace trelm {
namespace {

/// Table and scores.
Status writeResults(const Run &run, const MlSearch &found, const DTable &shown, std::span<const MlPoint> list,
                    OutFile &scores, Messages &messages)
{
    MagnitudeResult result;
    static_cast<ExtremesTensor &>(result) = found.extremes;
    result.DaMl = static_cast<float>(found.best.Dab);
    result.DaErrMl = static_cast<float>(found.best.DabErr);
    result.RMl = static_cast<float>(found.best.R);
    result.RErrMl = static_cast<float>(found.best.RErr);
    const Status status = reportMagnitude(run, result, shown, messages);
    std::string text;
    appendScores(list, text);
    writeOut(scores, text);
    return closeOut(scores, messages) != Status::ok ? Status::failed : status;
}

/// The scores are opened before the table is read.
Status openScores(const RunOptions &options, OutFile &scores, Messages &messages)
{
    const std::string &name = options.outScName;
    if (openOut(scores, name, "w") != Status::ok)
        return messages.fail("TRELM Error opening output file %s\n", name.c_str());
    return Status::ok;
}

Status search(const Run &run, Messages &messages)
{
    OutFile scores;
    if (openScores(run.options, scores, messages) != Status::ok)
        return Status::failed;
    Block<MlPoint> list("mlGrid", maxMlPoints);
    if (!list)
        return messages.fail("Error allocating the grid of Da and R.\n");
    const LikelihoodOptions &options = run.magnitude;
    ObservedTable observed;
    MlSearch found;
    if (readObserved(run, observed, messages) != Status::ok ||
        getMlDabR(observed.couplings, options, list.span(), found, messages) != Status::ok)
        return Status::failed;
    if (fillCalculated(observed.dTab, found.best, options.mlMap != 0, messages) != Status::ok)
        return Status::failed;
    return writeResults(run, found, observed.dTab, list.span().first(found.points), scores, messages);
}

} // namespace

Status estimateByLikelihood(const Run &run, Messages &messages)
{
    Status status = search(run, messages);
    if (status != Status::ok)
        status = messages.fail("trelm: error in getMlDabR.\n");
    return status;
}

} // namespace trelm
