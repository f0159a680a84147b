#include "assignment/assignment.h"

#include "assignment/interrupt.h"
#include "assignment/score.h"
#include "assignment/selection.h"
#include "ground/alloc.h"
#include "support/numerics/random.h"
#include "support/text/progress.h"

#include <algorithm>
#include <vector>

namespace trelm {
namespace {

/// A random permutation. A deviate can round to 1.0, which is no place in the list.
void drawPermutation(RandomStream &random, std::vector<int> &rowIdList)
{
    std::vector<bool> drawn(rowIdList.size(), false);
    for (std::size_t k = 0; k < rowIdList.size();) {
        const auto row = static_cast<std::size_t>(random.ran3() * static_cast<float>(rowIdList.size()));
        if (row >= rowIdList.size() || drawn[row])
            continue;
        drawn[row] = true;
        rowIdList[k++] = static_cast<int>(row);
    }
}

AssignmentResult searchRandomly(const AssignmentProblem &problem, int mapCount, Messages &messages)
{
    AssignmentResult best = unassigned(problem);
    RandomStream random; // the draws do not follow the seed of the run
    ScoreWork work = {.messages = messages};
    std::vector<int> rowIdList(problem.peakCount);
    Progress progress(messages, "REMARK Sampled ", mapCount);
    for (int n = 1; n <= mapCount && !InterruptGuard::isInterrupted(); ++n) {
        progress.show(n);
        drawPermutation(random, rowIdList);
        const float score = getSvdChi2Exh(problem, rowIdList, work);
        if (best.pSumDMin > score) {
            best.pSumDMin = score;
            best.bestIdList = rowIdList;
        }
    }
    progress.end();
    best.isProved = !InterruptGuard::isInterrupted();
    return best;
}

std::optional<AssignmentResult> searchAll(const AssignmentProblem &problem, const std::vector<int> &classes,
                                          Messages &messages)
{
    if (classes.size() < 2)
        return visitExh(problem, messages);
    std::optional<AssignmentResult> found = visitAa(problem, classes, messages);
    if (!found)
        messages.err("Matrix: error in analyzeSaupe.\n");
    return found;
}

/// A selection that cannot be made leaves all residues without a peak; the run goes on.
AssignmentResult searchSelected(const AssignmentProblem &problem, const AssignmentOptions &options,
                                Messages &messages)
{
    const std::optional<std::vector<int>> selected = selectPeaks(problem, options, messages);
    return selected ? visitAllExh(problem, *selected, messages).value_or(unassigned(problem))
                    : unassigned(problem);
}

std::optional<AssignmentResult> search(const AssignmentProblem &problem, const SearchRequest &request,
                                       Messages &messages)
{
    switch (request.kind) {
    case SearchKind::random:
        return searchRandomly(problem, request.mapCount, messages);
    case SearchKind::selected:
        return searchSelected(problem, request.options, messages);
    default:
        return searchAll(problem, request.options.classes, messages);
    }
}

} // namespace

std::optional<AssignmentResult> searchAssignments(const AssignmentProblem &problem,
                                                  const SearchRequest &request, Messages &messages)
{
    const InterruptGuard guard;
    std::optional<AssignmentResult> best = search(problem, request, messages);
    if (!best)
        return std::nullopt;
    // An assignment whose fit found no memory has the score of one without a tensor: the best of the others
    // need not be the best.
    if (allocHasFailed()) {
        messages.err("trelm: a fit of the search found no memory: no assignment is written.\n");
        return std::nullopt;
    }
    const TensorWindow &window = problem.window;
    if (std::ranges::none_of(best->bestIdList, [](int row) { return row >= 0; }))
        messages.err("Warning: no assignment was found for Da [%.3f,%.3f] R [%.3f %.3f]!\n",
                     static_cast<double>(window.lowDa), static_cast<double>(window.highDa),
                     static_cast<double>(window.lowR), static_cast<double>(window.highR));
    return best;
}

} // namespace trelm
