// The search over the tensor against the full enumeration: the same assignment, and the same score to the
// bit.
#include "assignment/tensor_search.h"

#include "assignment/certainty.h"
#include "assignment/first_guess.h"
#include "reference/assignment_reference.h"
#include "reference/random_problem.h"

#include "common/heard.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>

namespace trelm {
namespace {

/// A kind of problem, and what makes it hard.
struct HardProblem {
    const char *what;
    RandomProblem kind = {};
    TensorWindow window = {};
    bool hasTwins = false; ///< peak 1 has the couplings of peak 0, residue 2 the vectors of residue 3
};

const HardProblem hardProblems[] = {
    {"clean", {.noise = 0.0}},
    {"noisy", {.noise = 6.0}},
    {"very noisy", {.noise = 20.0}},
    {"one coupling", {.columns = {1}, .noise = 1.0}},
    {"two couplings", {.columns = {2}, .noise = 3.0}},
    {"fixed", {.columns = {1}, .fixed = {4}, .noise = 1.0}},
    {"a tenth missing", {.noise = 3.0, .missing = 0.1}},
    {"a third missing", {.columns = {4}, .noise = 1.0, .missing = 0.3}},
    {"unequal weights", {.noise = 2.0, .equalWeights = false}},
    {"unequal weights, some missing", {.columns = {4}, .noise = 2.0, .missing = 0.2, .equalWeights = false}},
    {"twins", {.columns = {2}, .noise = 2.0}, {}, true},
    {"twins, some missing", {.noise = 2.0, .missing = 0.1}, {}, true},
    {"narrow Da", {.noise = 5.0}, {.lowDa = -9.0F, .highDa = -8.0F}},
    {"narrow R", {.noise = 5.0, .missing = 0.1}, {.lowR = 0.3F, .highR = 0.32F}},
    {"the other sign", {.noise = 9.0}, {.lowDa = 3.0F, .highDa = 25.0F}},
    {"open window", {.noise = 5.0, .missing = 0.1}, {-1.0e9F, 1.0e9F, -1.0F, 1.0F}},
};

void makeTwins(AssignmentProblem &problem)
{
    for (auto *matrix : {&problem.dcMat, &problem.diValMat, &problem.sigMat, &problem.wMat})
        std::copy_n(matrix->data(), problem.colId, matrix->data() + problem.colId);
    for (auto *matrix : {&problem.xMat, &problem.yMat, &problem.zMat})
        std::copy_n(matrix->data() + problem.at(3, 0), problem.colId, matrix->data() + problem.at(2, 0));
}

/// The worst of some candidates: so that the search has to find the best one, and does not only prove it.
Candidate poorStart(const SearchSpace &space, ScoreWork &work)
{
    std::vector<int> rows(space.peaks.size());
    std::iota(rows.begin(), rows.end(), 0);
    Candidate poor;
    for (int k = 0; k < 40; ++k, std::ranges::next_permutation(rows)) {
        Candidate one;
        if (takeBetter(space, rows, work, one) && (poor.rowOf.empty() || poor.score < one.score))
            poor = one;
    }
    return poor;
}

TEST(TensorSearch, IsTheFullEnumeration)
{
    int searched = 0;
    unsigned seed = 1;
    for (const HardProblem &hard : hardProblems)
        for (std::size_t peaks = 4; peaks <= (hard.window.lowDa == -25.0F ? 7 : 5); ++peaks) {
            SCOPED_TRACE(testing::Message() << hard.what << ", " << peaks << " peaks, seed " << seed);
            RandomProblem kind = hard.kind;
            kind.peaks = peaks;
            AssignmentProblem problem = ProblemMaker(seed).make(kind).problem;
            problem.window = hard.window;
            if (hard.hasTwins)
                makeTwins(problem);
            std::vector<int> all(peaks);
            std::iota(all.begin(), all.end(), 0);
            const SearchSpace space = makeSearchSpace(problem, all, std::vector<RowSpan>(peaks, {0, peaks}));
            const std::optional<TensorProblem> tensors = makeTensorProblem(space);
            Heard heard;
            ScoreWork work = {.messages = heard.messages};
            Candidate best = poorStart(space, work);
            if (!tensors)
                continue;
            Standing standing = {space, *tensors, work, best};
            setLimit(standing);
            if (!canSearchTensors(standing))
                guessByTensors(standing);
            if (!canSearchTensors(standing))
                continue;
            ++searched;
            double settled = 0.0;
            EXPECT_TRUE(searchTensors(standing, [&](double part) { settled = part; }));
            EXPECT_NEAR(settled, 1.0, 1e-9);
            const PlainAssignment plain = visitExhPlain(problem);
            std::vector<int> peakOn(peaks);
            for (std::size_t peak = 0; peak < peaks; ++peak)
                peakOn[static_cast<std::size_t>(best.rowOf[peak])] = static_cast<int>(peak);
            EXPECT_EQ(best.score, plain.pSumDMin);
            EXPECT_EQ(peakOn, plain.bestIdList);
        }
    EXPECT_GT(searched, 30);
}

TEST(Certainty, IsTheFullEnumeration)
{
    Heard heard;
    ScoreWork work = {.messages = heard.messages};
    int told = 0;
    const RandomProblem kinds[] = {
        {.noise = 2.0}, {.columns = {2}, .noise = 1.0}, {.noise = 1.0, .missing = 0.1}};
    for (unsigned seed = 300; seed < 318; ++seed) {
        RandomProblem kind = kinds[seed % 3];
        kind.peaks = seed % 8 == 0 ? 8 : 6;
        AssignmentProblem problem = ProblemMaker(seed).make(kind).problem;
        problem.window = {-1.0e9F, 1.0e9F, -1.0F, 1.0F};
        const PlainAssignment plain = visitExhPlain(problem);
        std::vector<int> rowOf(kind.peaks), peakOn(kind.peaks);
        for (std::size_t row = 0; row < kind.peaks; ++row)
            rowOf[static_cast<std::size_t>(plain.bestIdList[row])] = static_cast<int>(row);
        const SearchSpace space = wholeSpace(problem, {});
        const std::optional<Certainty> certainty = findCertainty(space, rowOf, heard.messages);
        if (!certainty)
            continue;
        ++told;
        std::vector<double> elsewhere(kind.peaks, certaintyReach);
        double second = infinity;
        std::iota(peakOn.begin(), peakOn.end(), 0);
        do {
            const double gap = static_cast<double>(getSvdChi2Exh(problem, peakOn, work) - plain.pSumDMin);
            for (std::size_t row = 0; row < kind.peaks; ++row)
                if (peakOn[row] != plain.bestIdList[row])
                    elsewhere[static_cast<std::size_t>(peakOn[row])] =
                        std::min(elsewhere[static_cast<std::size_t>(peakOn[row])], gap);
            if (peakOn != plain.bestIdList)
                second = std::min(second, gap);
        } while (std::ranges::next_permutation(peakOn).found);
        for (std::size_t peak = 0; peak < kind.peaks; ++peak)
            EXPECT_NEAR(certainty->peaks[peak].gap, elsewhere[peak], 1e-3) << seed << " " << peak;
        EXPECT_NEAR(std::min(certaintyReach, certainty->secondScore - certainty->score),
                    std::min(certaintyReach, second), 1e-3)
            << seed;
    }
    EXPECT_EQ(told, 18);
}

} // namespace
} // namespace trelm
