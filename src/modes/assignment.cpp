#include "modes/assignment.h"

#include "assignment/assigned_rows.h"
#include "assignment/assignment.h"
#include "modes/coupling_output.h"

#include <optional>
#include <utility>

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

/// Searches. Returns nothing after a message.
std::optional<AssignedTable> assignTable(const Run &run, Messages &messages)
{
    const ProblemInput input = {.pdbInfo = run.pdbInfo[0],
                                .dTab = run.dTab[0],
                                .fixResList = run.assignment.fixedResidues,
                                .media = run.assignment.media,
                                .window = run.tensorWindow};
    const std::optional<TableProblem> made = makeProblem(input, messages);
    if (!made)
        return std::nullopt;
    const std::optional<AssignmentResult> found = searchAssignments(
        made->problem,
        {.kind = searchKind(run.mode), .mapCount = run.options.mapCount, .options = run.assignment},
        messages);
    if (!found)
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
