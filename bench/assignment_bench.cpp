// The assignment search against the full enumeration, and on problems that no enumeration would end.
#include "assignment/search.h"
#include "reference/assignment_reference.h"
#include "reference/random_problem.h"

#include <benchmark/benchmark.h>

#include <string_view>

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
