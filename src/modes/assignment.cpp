#include "modes/assignment.h"

#include "assignment/assigned_rows.h"
#include "assignment/assignment.h"
#include "assignment/certainty.h"
#include "couplings/options.h"
#include "modes/coupling_output.h"
#include "report/assignment_table.h"
#include "support/text/output_file.h"
#include "support/text/text.h"

#include <algorithm>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace trelm {
namespace {

SearchKind searchKind(const ModeOptions &mode)
{
    switch (mode.spreadMode) {
    case spreadRand:
        return SearchKind::random;
    case spreadExhaustSel:
        return SearchKind::selected;
    default:
        return SearchKind::all;
    }
}

/// A table with its couplings assigned and fitted.
struct AssignedTable {
    DTable dTab;
    bool isProved; ///< to be the best assignment
};

/// Tells of couplings that the assignment puts on residues without their vector: they have those of no
/// direction.
void tellWithoutVector(const TableProblem &made, std::span<const int> bestIdList, Messages &messages)
{
    std::string found;
    for (std::size_t row = 0; row < bestIdList.size(); ++row)
        if (bestIdList[row] >= 0 && lacksVector(made.problem, bestIdList[row], row))
            appendf(found, " %d", made.peaks.resIdList[row]);
    if (!found.empty())
        messages.err(
            "trelm: residues%s got a coupling for which the structure has no vector there (-needVector "
            "forbids it).\n",
            found.c_str());
}

/// Writes how sure the assignment is. Fails after a message.
Status writeCertainty(const Run &run, const TableProblem &made, const AssignmentResult &found,
                      Messages &messages)
{
    if (run.mode.spreadMode != spreadExhaust) {
        messages.err("trelm: -outAss is for -exhaust: no table is written.\n");
        return Status::ok;
    }
    std::vector<int> rowOf(found.bestIdList.size(), -1);
    for (std::size_t row = 0; row < rowOf.size(); ++row)
        if (found.bestIdList[row] >= 0)
            rowOf[found.bestIdList[row]] = static_cast<int>(row);
    if (std::ranges::count(rowOf, -1) > 0)
        return messages.fail("trelm: -outAss: there is no assignment of all peaks.\n");
    const SearchSpace space = wholeSpace(made.problem, run.assignment.classes);
    const std::optional<Certainty> certainty = findCertainty(space, rowOf, messages);
    if (!certainty)
        return messages.fail(
            "trelm: -outAss: that cannot be told for several media, nor where couplings are too few.\n");
    OutFile out;
    if (openOut(out, run.options.outAssName, "w") != Status::ok)
        return messages.fail("TRELM Error opening output file %s\n", run.options.outAssName.c_str());
    writeOut(out, certaintyTable(*certainty, made.peaks.resIdList));
    const Status status = closeOut(out, messages);
    if (status == Status::ok && !certainty->isProved)
        return messages.fail("trelm: the search was interrupted: gaps in %s may be smaller.\n",
                             run.options.outAssName.c_str());
    return status;
}

/// Searches. Returns nothing after a message.
std::optional<AssignedTable> assignTable(const Run &run, Messages &messages)
{
    const ProblemInput input = {.pdbInfo = run.pdbInfo[0],
                                .dTab = run.dTab[0],
                                .fixResList = run.assignment.fixedResidues,
                                .media = run.assignment.media,
                                .window = run.tensorWindow};
    std::optional<TableProblem> made = makeProblem(input, messages);
    if (!made)
        return std::nullopt;
    made->problem.needsVector = run.assignment.needsVector != 0;
    const std::optional<AssignmentResult> found = searchAssignments(
        made->problem,
        {.kind = searchKind(run.mode), .mapCount = run.options.mapCount, .options = run.assignment},
        messages);
    if (!found)
        return std::nullopt;
    tellWithoutVector(*made, found->bestIdList, messages);
    if (!run.options.outAssName.empty() && found->isProved &&
        writeCertainty(run, *made, *found, messages) != Status::ok)
        return std::nullopt;
    std::optional<DTable> dTab = copyTable(run.dTab[0], messages);
    if (!dTab ||
        takeRows(applyAssignment(input, *made, found->bestIdList, messages), *dTab, messages) != Status::ok ||
        fitMedia(run.pdbInfo[0].coordinates(), run.assignment.media, run.report.verbFlag, *dTab, messages) !=
            Status::ok)
        return std::nullopt;
    return AssignedTable{std::move(*dTab), found->isProved};
}

/// Fails after a message.
Status assignAndWrite(const Run &run, Messages &messages)
{
    const std::optional<AssignedTable> assigned = assignTable(run, messages);
    if (!assigned)
        return Status::failed;
    const Status status = writeFit(run, assigned->dTab, "", messages);
    if (status != Status::ok || assigned->isProved)
        return status;
    return messages.fail(
        "trelm: the search was interrupted: the assignment is the best so far, and not proved.\n");
}

} // namespace

Status searchAssignment(const Run &run, Messages &messages)
{
    const Status status = assignAndWrite(run, messages);
    if (status != Status::ok)
        messages.err("Matrix: error in best-fit of data.\n");
    return status;
}

} // namespace trelm
