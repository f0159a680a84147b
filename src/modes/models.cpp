#include "modes/models.h"

#include "couplings/model_fits.h"
#include "couplings/options.h"
#include "couplings/table_input.h"
#include "modes/coupling_output.h"
#include "report/model_table.h"
#include "structure/superpose.h"
#include "support/text/output_file.h"
#include "support/text/text.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace trelm {
namespace {

/// What of a run is about the report of one fit.
bool asksForReport(const RunOptions &options)
{
    return !options.outDName.empty() || !options.pRotName.empty() || !options.outQName.empty() ||
           !options.outJName.empty() || options.dropsOutliers != 0;
}

/// The residues of the couplings in use; all without any. What lies outside, such as a loose end, says little
/// of the frame that the couplings share.
std::pair<int, int> residuesToLayBy(const Run &run)
{
    int first = std::numeric_limits<int>::max(), last = std::numeric_limits<int>::min();
    for (const DCalc &row : run.dTab[0].calculated())
        if (row.valid != 0) {
            first = std::min({first, row.resIDI, row.resIDJ});
            last = std::max({last, row.resIDI, row.resIDJ});
        }
    if (first > last)
        return {run.pdbInfo[0].minResID, run.pdbInfo[0].maxResID};
    return {first, last};
}

/// How models are laid on the first.
struct LayChoice {
    AtomMask atoms;
    int first, last; ///< residues
};

LayChoice atomsToLayBy(const Run &run)
{
    const RunOptions &options = run.options;
    const auto [first, last] = residuesToLayBy(run);
    PDBSelectInfo chosen;
    chosen.atomNameList = options.fitAtoms;
    chosen.selectMode = selectMatching;
    chosen.resIDMode = 1;
    chosen.res1 = options.fitFirst != unsetResID ? options.fitFirst : first;
    chosen.resN = options.fitLast != unsetResID ? options.fitLast : last;
    pdbSelectAdjust(chosen);
    return {pdbSelectTestAll(&chosen, run.pdbInfo[0].atoms()), chosen.res1, chosen.resN};
}

} // namespace

bool averagesModels(const RunOptions &options)
{
    return options.model == "mean";
}

bool wantsAllModels(const RunOptions &options)
{
    return options.model == "all" || averagesModels(options);
}

RowMatch rowMatchOf(const Run &run)
{
    return {.aOff = residueOffset(run.window),
            .wOff = run.window.segFirst,
            .wList = run.options.wList.span(),
            .allowFixedDI = run.fit.allowFixedDI};
}

FitInput fitInputOf(const Run &run, const FitColumns &columns)
{
    FitInput input = {run.pdbInfo[0].coordinates(), run.dTab[0], columns, run.report.verbFlag};
    if (averagesModels(run.options))
        input.models = run.models.coords;
    return input;
}

Status checkModels(const Run &run, Messages &messages)
{
    const RunOptions &options = run.options;
    const bool isEach = options.model == "all";
    if (!options.outMName.empty() && !isEach)
        messages.warn("trelm: -outM is the table of -model all: it is not written\n");
    if (!wantsAllModels(options))
        return Status::ok;
    if (run.mode.trelmMode != modeBestFit || run.mode.spreadMode != spreadSingle)
        return messages.fail(
            "trelm: -model %s: only a single best-fit takes several models (-model N reads one).\n",
            options.model.c_str());
    if (!isEach && run.tensor.tensorMode != tensorSvd)
        return messages.fail(
            "trelm: -model mean: only a linear fit of a free tensor averages models (-svd).\n");
    if (isEach && asksForReport(options))
        messages.warn("trelm: -model all writes its table alone (-outM): -outD, -pdbRot, -outQ, -outJ and "
                      "-dropOut are of one fit (-model N or mean)\n");
    return Status::ok;
}

Status layModels(Run &run, Messages &messages)
{
    const std::size_t count = run.models.coords.size();
    if (count == 0)
        return Status::ok;
    if (run.options.keepsFrames != 0) {
        appendf(run.modelRemark, "REMARK %zu models, where the file has them.\n", count);
        return Status::ok;
    }
    const LayChoice by = atomsToLayBy(run);
    constexpr std::ptrdiff_t fewest = 3;
    const std::ptrdiff_t chosen = std::ranges::count(by.atoms, 1);
    if (chosen < fewest)
        return messages.fail(
            "trelm: -fitAtoms %s: %td atoms to lay the models on each other by, at least 3 are needed "
            "(-noSuper leaves the models where they are).\n",
            run.options.fitAtoms.c_str(), chosen);
    double farthest = 0.0;
    for (std::size_t m = 1; m < count; ++m) {
        const Superposition laid = superpose(run.models.coords[0], run.models.coords[m], by.atoms);
        moveAtoms(laid, run.models.coords[m]);
        farthest = std::max(farthest, laid.rmsd);
    }
    appendf(run.modelRemark,
            "REMARK %zu models, laid on model %d by %td atoms (%s of residues %d to %d), rmsd up to %.3f "
            "angstrom.\n",
            count, run.models.numbers[0], chosen, run.options.fitAtoms.c_str(), by.first, by.last, farthest);
    return Status::ok;
}

Status fitEachModel(const Run &run, Messages &messages)
{
    ModelFits fits;
    const RowMatch match = rowMatchOf(run);
    if (fitModels({run.pdbInfo[0], run.dTab[0], run.models, match, run.fit.yzFlag, run.report.verbFlag}, fits,
                  messages) != Status::ok)
        return messages.fail("trelm: error in best-fit of data.\n");
    const std::string &name = run.options.outMName;
    OutFile out;
    if (openOut(out, name, "w") != Status::ok)
        return messages.fail("trelm: -outM: %s cannot be opened.\n", name.c_str());
    writeOut(out, modelTable(fits, run.modelRemark));
    return closeOut(out, messages);
}

} // namespace trelm
