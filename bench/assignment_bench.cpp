// The assignment search against the full enumeration, and on problems that no enumeration would end.
#include "assignment/certainty.h"
#include "assignment/search.h"
#include "couplings/fit.h"
#include "couplings/window.h"
#include "reference/assignment_reference.h"
#include "reference/random_problem.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <numeric>
#include <random>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace {

using namespace trelm;

/// Range: peaks, couplings a peak, noise in tenths of a hertz.
MadeProblem makeProblem(const benchmark::State &state)
{
    return ProblemMaker(11).make({.peaks = static_cast<std::size_t>(state.range(0)),
                                  .columns = {static_cast<std::size_t>(state.range(1))},
                                  .noise = 0.1 * static_cast<double>(state.range(2)),
                                  .otherConstant = -21585.2f});
}

void assignmentSearch(benchmark::State &state)
{
    Messages quiet([](Messages::Stream, std::string_view) {});
    const MadeProblem made = makeProblem(state);
    AssignmentResult best;
    for (auto step : state)
        best = visitExh(made.problem, quiet).value();
    int right = 0;
    for (std::size_t row = 0; row < made.truth.size(); ++row)
        right += best.bestIdList[row] == made.truth[row] ? 1 : 0;
    state.counters["right"] = right;
}
BENCHMARK(assignmentSearch)
    ->ArgNames({"peaks", "couplings", "noise"})
    ->Args({8, 3, 10})
    ->Args({12, 3, 10})
    ->Args({20, 3, 10})
    ->Args({40, 3, 10})
    ->Args({63, 3, 10})
    ->Args({63, 4, 15})
    ->Args({30, 3, 20})
    ->Args({15, 1, 10})
    ->Unit(benchmark::kMillisecond);

/// Ubiquitin's residues with their vectors of N-H, H-C, N-C and CA-C, which point alike in helices and
/// strands: harder than random ones. Couplings on the scale of N-H, of one tensor and with noise.
AssignmentProblem realProblem(const benchmark::State &state)
{
    Messages quiet([](Messages::Stream, std::string_view) {});
    PDBInfo pdb;
    DTable table;
    if (readPDB(TRELM_EXAMPLES "/ubiquitin/1d3z_model1.pdb", pdb, nullptr, quiet) != Status::ok ||
        readDC(TRELM_EXAMPLES "/assignment/backbone.tab", table, quiet) != Status::ok)
        return {};
    selectD(table.observed(), -1000, 2000, largerInside);
    buildDC(pdb, table, {}, quiet);
    const std::vector<std::string> media = {""};
    const AssignmentProblem all = makeProblem({pdb, table, {}, media}, quiet).value().problem;
    constexpr std::size_t columns[] = {0, 2, 1, 3}; // N-H, H-C, N-C, CA-C
    AssignmentProblem part;
    part.peakCount = static_cast<std::size_t>(state.range(0));
    part.colId = part.colIdList[0] = static_cast<std::size_t>(state.range(1));
    std::mt19937 engine(1);
    std::normal_distribution<double> noise(0.0, 0.1 * static_cast<double>(state.range(2)));
    std::vector<std::size_t> rows(all.peakCount);
    std::iota(rows.begin(), rows.end(), std::size_t{0});
    std::shuffle(rows.begin(), rows.end(), engine);
    for (std::size_t row = 0; row < part.peakCount; ++row)
        for (std::size_t c = 0; c < part.colId; ++c) {
            const std::size_t cell = all.at(rows[row], columns[c]);
            part.xMat.push_back(all.xMat[cell]);
            part.yMat.push_back(all.yMat[cell]);
            part.zMat.push_back(all.zMat[cell]);
        }
    part.diValMat.assign(part.xMat.size(), -21585.2F);
    part.sigMat.assign(part.xMat.size(), 1.0F);
    part.wMat = part.sigMat;
    part.dcMat = part.xMat;
    const std::vector<float> origin(part.xMat.size());
    findD({origin, origin, origin, part.xMat, part.yMat, part.zMat, part.diValMat, part.dcMat, part.sigMat},
          {-5.65e-4F, 0.69e-4F, 0.28e-4F, -1.39e-4F, 5.65e-4F});
    for (float &d : part.dcMat)
        d += static_cast<float>(noise(engine));
    return part;
}

void assignmentReal(benchmark::State &state)
{
    Messages quiet([](Messages::Stream, std::string_view) {});
    const AssignmentProblem problem = realProblem(state);
    AssignmentResult best;
    for (auto step : state)
        best = visitExh(problem, quiet).value();
    int right = 0;
    for (std::size_t row = 0; row < best.bestIdList.size(); ++row)
        right += std::cmp_equal(best.bestIdList[row], row) ? 1 : 0;
    state.counters["right"] = right;
}
BENCHMARK(assignmentReal)
    ->ArgNames({"peaks", "couplings", "noise"})
    ->ArgsProduct({{20, 40, 63}, {1, 2, 3, 4}, {10, 40}})
    ->Unit(benchmark::kMillisecond);

/// How sure each peak is, without the search before.
void assignmentCertainty(benchmark::State &state)
{
    Messages quiet([](Messages::Stream, std::string_view) {});
    const AssignmentProblem problem = realProblem(state);
    const AssignmentResult best = visitExh(problem, quiet).value();
    std::vector<int> rowOf(best.bestIdList.size());
    for (std::size_t row = 0; row < rowOf.size(); ++row)
        rowOf[static_cast<std::size_t>(best.bestIdList[row])] = static_cast<int>(row);
    const SearchSpace space = wholeSpace(problem, {});
    int undecided = 0, wrong = 0;
    for (auto step : state) {
        undecided = wrong = 0;
        const Certainty found = findCertainty(space, rowOf, quiet).value();
        for (const PeakCertainty &peak : found.peaks) {
            undecided += peak.gap < undecidedGap ? 1 : 0;
            wrong += peak.gap >= undecidedGap && peak.peak != peak.row ? 1 : 0;
        }
    }
    state.counters["undecided"] = undecided;
    state.counters["decidedWrong"] = wrong;
}
BENCHMARK(assignmentCertainty)
    ->ArgNames({"peaks", "couplings", "noise"})
    ->Args({63, 4, 10})
    ->Args({63, 3, 10})
    ->Args({63, 3, 5})
    ->Unit(benchmark::kMillisecond);

void assignmentPlain(benchmark::State &state)
{
    const MadeProblem made = makeProblem(state);
    PlainAssignment best;
    for (auto step : state)
        best = visitExhPlain(made.problem);
    state.counters["candidates"] = static_cast<double>(best.count);
}
BENCHMARK(assignmentPlain)
    ->ArgNames({"peaks", "couplings", "noise"})
    ->Args({8, 3, 10})
    ->Unit(benchmark::kMillisecond);

} // namespace
