// The bounded search against the full enumeration: the same assignment, and the same score to the bit.
#include "assignment/search.h"

#include "assignment/candidates.h"
#include "assignment/score.h"
#include "reference/assignment_reference.h"
#include "reference/random_problem.h"
#include "support/numerics/linear_assignment.h"

#include "common/heard.h"
#include "couplings/prepared.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <random>
#include <vector>

namespace trelm {
namespace {

/// A kind of problem, and what is done to it afterwards.
struct Recipe {
    RandomProblem kind = {};
    bool hasTwins = false; ///< peak 1 has the couplings of peak 0
    bool hasGaps = false;  ///< vectors of length 0
    TensorWindow window = {};
};

AssignmentProblem make(const Recipe &recipe, std::size_t peaks, unsigned seed)
{
    RandomProblem kind = recipe.kind;
    kind.peaks = peaks;
    AssignmentProblem problem = ProblemMaker(seed).make(kind).problem;
    problem.window = recipe.window;
    if (recipe.hasTwins && peaks > 1)
        for (std::vector<float> *matrix : {&problem.dcMat, &problem.diValMat, &problem.sigMat, &problem.wMat})
            std::copy_n(matrix->data(), problem.colId, matrix->data() + problem.colId);
    if (recipe.hasGaps)
        for (std::size_t cell = seed % 3; cell < problem.xMat.size(); cell += 5)
            problem.xMat[cell] = problem.yMat[cell] = problem.zMat[cell] = 0.0f;
    return problem;
}

AssignmentProblem make(std::size_t peaks, double noise, unsigned seed)
{
    return make({.kind = {.noise = noise}}, peaks, seed);
}

/// The result of the plain form, and its count of candidates as the last line.
void expectSame(const std::optional<AssignmentResult> &best, const PlainAssignment &plain,
                const std::string &err)
{
    ASSERT_TRUE(best.has_value());
    EXPECT_EQ(best->pSumDMin, plain.pSumDMin);
    EXPECT_EQ(best->bestIdList, plain.bestIdList);
    EXPECT_TRUE(err.ends_with("REMARK Sampled " + std::to_string(plain.count) + "\r\n")) << err;
}

const std::vector<std::size_t> two = {2, 2}, three = {2, 2, 2};

const Recipe recipes[] = {
    {},
    {.kind = {.noise = 3.0, .missing = 0.1}},
    {.kind = {.noise = 20.0}},
    {.kind = {.columns = {1}, .fixed = {3}}},
    {.kind = {.columns = {1}}},
    {.kind = {.columns = two, .fixed = {0, 0}, .noise = 1.0, .missing = 0.2}},
    {.kind = {.columns = three, .fixed = {2, 0, 6}, .noise = 2.0, .missing = 0.1}},
    {.kind = {.noise = 2.0, .equalWeights = false}},
    {.kind = {.columns = {4}, .missing = 0.5, .equalWeights = false}},
    {.hasTwins = true},
    {.kind = {.columns = {2}, .noise = 4.0, .equalWeights = false}, .hasTwins = true},
    {.hasGaps = true},
    {.window = {.lowDa = 3.0f, .highDa = 25.0f}},                          // nothing inside
    {.kind = {.noise = 5.0}, .window = {.lowDa = -9.0f, .highDa = -8.0f}}, // hardly anything inside
    {.kind = {.noise = 5.0}, .window = {.lowR = 0.3f, .highR = 0.32f}},
    {.kind = {.noise = 5.0}, .window = {-1.0e9f, 1.0e9f, -1.0f, 1.0f}}, // all inside
    {.kind = {.columns = {1}, .noise = 1.0, .missing = 0.3}}, // now and then fewer than five couplings
    {.kind = {.columns = two, .fixed = {0, 0}}, .window = {.lowDa = 3.0f, .highDa = 25.0f}},
    {.kind = {.noise = 4.0, .missing = 0.2},
     .window = {.lowDa = -HUGE_VALF}},                   // a window that is open to one side
    {.kind = {.columns = {3, 1}, .fixed = {0, 2}}},      // too few couplings in one medium
    {.kind = {.noise = 2.0}, .window = {.lowR = 0.69f}}, // no R is so high
};

TEST(Search, IsTheFullEnumeration)
{
    unsigned seed = 1;
    for (const Recipe &recipe : recipes)
        for (std::size_t peaks = 1; peaks <= 7; ++peaks)
            for (int repeat = 0; repeat < (peaks < 7 ? 3 : 1); ++repeat) {
                SCOPED_TRACE(testing::Message()
                             << "recipe " << &recipe - recipes << ", " << peaks << " peaks, seed " << seed);
                const AssignmentProblem problem = make(recipe, peaks, seed++);
                Heard heard;
                const auto best = visitExh(problem, heard.messages);
                expectSame(best, visitExhPlain(problem), heard.err);
                EXPECT_EQ(heard.err.find("Sampled 0"), std::string::npos);
            }
}

TEST(Search, MeasuredCouplingsOfWhichSomeAreMissing)
{
    Prepared p(TRELM_EXAMPLES "/assignment/lysines.tab");
    const AssignmentOptions options;
    Heard heard;
    const auto made = makeProblem({p.pdb, p.table, {}, options.media}, heard.messages);
    ASSERT_TRUE(made.has_value());
    ASSERT_EQ(std::ranges::count(made->problem.dcMat, noPeakCoupling), 5);
    const auto best = visitExh(made->problem, heard.messages);
    expectSame(best, visitExhPlain(made->problem), heard.err);
}

TEST(Search, EightPeaks)
{
    for (const unsigned seed : {1U, 2U, 3U}) {
        const AssignmentProblem problem = make({.kind = {.noise = 3.0, .equalWeights = seed != 3U}}, 8, seed);
        Heard heard;
        const auto best = visitExh(problem, heard.messages);
        expectSame(best, visitExhPlain(problem), heard.err);
    }
}

TEST(Search, ClassesAreTheirProduct)
{
    const std::vector<std::vector<int>> classes = {{3, 4},       {1, 2, 4}, {7},
                                                   {2, 2, 2, 1}, {0, 3, 4}, {1, 1, 1, 1, 1, 2}};
    unsigned seed = 500;
    for (const std::vector<int> &sizes : classes)
        for (const float lDa : {-25.0f, -HUGE_VALF}) {
            const AssignmentProblem problem =
                make({.kind = {.noise = 6.0}, .window = {.lowDa = lDa}}, 7, seed++);
            Heard heard;
            const auto best = visitAa(problem, sizes, heard.messages);
            expectSame(best, visitAaPlain(problem, sizes), heard.err);
        }
    // Classes of 13 peaks and more have no list that could overflow.
    const AssignmentProblem large = make({.kind = {.noise = 0.3, .isShuffled = false}}, 27, seed);
    Heard heard;
    const auto best = visitAa(large, std::vector<int>{13, 14}, heard.messages);
    ASSERT_TRUE(best.has_value());
    EXPECT_EQ(heard.err.find("-"), std::string::npos);
    for (std::size_t row = 0; row < 27; ++row)
        EXPECT_EQ(best->bestIdList[row] < 13, row < 13);
}

TEST(Search, SubsetsOfResidues)
{
    unsigned seed = 700;
    for (const std::vector<int> &selected :
         {std::vector<int>{0, 3}, {1, 2, 5}, {0, 2, 4, 6}, {0, 1, 2, 3, 4, 5, 6}})
        for (const Recipe &recipe :
             {Recipe{}, recipes[5], Recipe{.kind = {.fixed = {4}}, .hasTwins = true}}) {
            const AssignmentProblem problem = make(recipe, 7, seed++);
            Heard heard;
            const auto best = visitAllExh(problem, selected, heard.messages);
            expectSame(best, visitAllExhPlain(problem, selected), heard.err);
        }
}

TEST(Search, RefusesWhatItCanNotDo)
{
    const AssignmentProblem problem = make(7, 0.5, 1);
    Heard heard;
    EXPECT_FALSE(visitAa(problem, std::vector<int>{3, 3}, heard.messages));
    EXPECT_TRUE(heard.err.ends_with("Error: Error in length of permutation.\n"));
    heard.err.clear();
    const auto tooMany = visitAa(problem, std::vector<int>(7, 1), heard.messages);
    EXPECT_EQ(heard.err, "trelm: -fixAa has 7 classes, the limit is 6: nothing is searched.\n\n");
    EXPECT_EQ(tooMany.value().bestIdList, std::vector<int>(7, -1));
    for (const std::vector<int> &selected : {std::vector<int>{1}, {0, 1, 2, 3, 4, 5, 6, 7}}) {
        heard.err.clear();
        EXPECT_FALSE(visitAllExh(problem, selected, heard.messages));
        EXPECT_EQ(heard.err, "Warning: only subset of 2 to 7 peaks allowed!");
    }
    AssignmentProblem large;
    large.peakCount = 501;
    EXPECT_FALSE(visitExh(large, heard.messages));
    EXPECT_TRUE(heard.err.ends_with("the limit is 500.\n"));
}

TEST(Search, LargeProblemsAreDecided)
{
    // The assignment that the couplings were made with, of 1e14 and 2e18 candidates and more.
    for (const std::size_t peaks : {12, 20, 30}) {
        const AssignmentProblem problem = make(peaks, 0.3, 77);
        Heard heard;
        const AssignmentResult best = visitExh(problem, heard.messages).value();
        ScoreWork work = {.messages = heard.messages};
        EXPECT_EQ(getSvdChi2Exh(problem, best.bestIdList, work), best.pSumDMin);
        EXPECT_LT(best.pSumDMin, 0.09f * 3.0f * static_cast<float>(peaks) * 1.5f);
        const std::string last = "REMARK Sampled " + countText(arrangements(peaks, peaks)) + "\r\n";
        EXPECT_TRUE(heard.err.ends_with(last)) << heard.err;
    }
}

TEST(Candidates, AreNeverWrapped)
{
    EXPECT_EQ(countText(arrangements(20, 20)), "2432902008176640000");
    EXPECT_EQ(countText(arrangements(21, 21)), "5.109094e+19");
    EXPECT_EQ(countText(arrangements(7, 3)), "210");
    EXPECT_EQ(countText(arrangements(500, 500)), "1.220137e+1134");
    CandidateCount sum = arrangements(20, 20);
    for (int i = 0; i < 3; ++i)
        sum += arrangements(20, 20);
    EXPECT_EQ(countText(sum), "9.731608e+18");
}

TEST(LinearAssignment, IsTheBestOfAll)
{
    std::mt19937 engine(9);
    std::uniform_int_distribution<int> price(0, 12);
    for (int repeat = 0; repeat < 200; ++repeat) {
        const int rows = 1 + repeat % 5, columns = rows + repeat % 3;
        std::vector<double> costs;
        for (int i = 0; i < rows * columns; ++i)
            costs.push_back(price(engine) == 0 ? std::numeric_limits<double>::infinity() : price(engine));
        std::vector<int> order(static_cast<std::size_t>(columns));
        std::iota(order.begin(), order.end(), 0);
        double least = std::numeric_limits<double>::infinity();
        do {
            double total = 0.0;
            for (int row = 0; row < rows; ++row)
                total +=
                    costs[static_cast<std::size_t>(row * columns + order[static_cast<std::size_t>(row)])];
            least = std::min(least, total);
        } while (std::ranges::next_permutation(order).found);
        LinearAssignment solution;
        ASSERT_EQ(linearAssignment(costs, rows, columns, solution), std::isfinite(least));
        if (!std::isfinite(least))
            continue;
        EXPECT_EQ(solution.total, least);
        for (std::size_t row = 0; row < static_cast<std::size_t>(rows); ++row)
            for (std::size_t column = 0; column < static_cast<std::size_t>(columns); ++column)
                EXPECT_GE(costs[row * static_cast<std::size_t>(columns) + column] - solution.rowPrice[row] -
                              solution.columnPrice[column],
                          -1e-9);
    }
}

} // namespace
} // namespace trelm
