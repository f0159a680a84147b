#include "assignment/selection.h"

#include "reference/assignment_reference.h"
#include "reference/random_problem.h"

#include "common/heard.h"

#include <gtest/gtest.h>

namespace trelm {
namespace {

TEST(SelectPeaks, ChoosesAsAllCombinationsWould)
{
    Heard heard;
    ProblemMaker maker(5);
    for (int n = 0; n < 40; ++n) {
        MadeProblem made = maker.make({.peaks = static_cast<std::size_t>(6 + n % 6),
                                       .columns = {2, 2},
                                       .fixed = {0, 0},
                                       .missing = n % 4 * 0.15,
                                       .equalWeights = n % 2 == 0});
        if (n % 3 == 0) // many combinations of the same values: the first of them counts
            for (float &d : made.problem.dcMat)
                d = d == noPeakCoupling ? d : std::round(d / 10.0f);
        for (int nSel = 2; nSel <= std::min(7, static_cast<int>(made.problem.peakCount)); ++nSel) {
            EXPECT_EQ(selectPeaks(made.problem, {.nSel = nSel}, heard.messages),
                      selectPeaksPlain(made.problem, nSel))
                << "problem " << n << " nSel " << nSel;
        }
    }
}

/// Four peaks with 2, 1, 2 and 1 couplings in two columns.
AssignmentProblem fourPeaks()
{
    AssignmentProblem problem;
    problem.peakCount = 4;
    problem.colId = 2;
    problem.dcMat = {4.0f, -6.0f, 2.0f, noPeakCoupling, 12.0f, 3.0f, noPeakCoupling, 5.0f};
    problem.wMat = {1.0f, 0.5f, 1.0f, 0.0f, 1.0f, 1.0f, 0.0f, 2.0f};
    return problem;
}

TEST(SelectPeaks, TellsWhatItDoes)
{
    constexpr std::nullopt_t none = std::nullopt;
    const std::string only2To7 = "Warning: only subset of 2 to 7 peaks allowed!";
    struct {
        const char *why;
        int nSel, dcSelOpt;
        std::string counts, sum, chosen, err; ///< without a sum nothing is told on standard output
        std::optional<std::vector<int>> selected;
    } const cases[] = {
        {"the two with most couplings", 2, 1, " 2 2", "4", " 1 3", "", {{0, 2}}},
        {"the evener of the rest", 3, 1, " 2 2 1", "5", " 1 3 4", "", {{0, 2, 3}}},
        {"the first rows", 2, 0, " 2 2", "4", " 1 2", "", {{0, 1}}},
        {"one", 1, 1, " 2", "2", "", only2To7, none},
        {"more than there are", 5, 1, "", "", "", "Error: -nSel 5, but there are only 4 peaks.\n", none},
        {"more than any search takes", 8, 1, " 2 2 1 1", "6", "", only2To7, none},
        {"as many of the first rows", 8, 0, " 2 2 1 1", "6", " 1 2 3 4", only2To7, none},
        {"none", 0, 1, "", "0", "", only2To7, none},
        {"a negative number", -2, 1, "", "0", "", only2To7, none},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.why);
        const std::string peaks = "REMARK " + std::to_string(c.nSel) + " peaks with";
        std::string expected;
        if (!c.sum.empty())
            expected = "REMARK Maximum of 2 available RDCs per peak.\n" + peaks + c.counts +
                       " RDCs will be selected.\n" + peaks + " " + c.sum +
                       " RDCs in total will be selected.\n"
                       "REMARK Smallest and largest normalized RDC: -3.000 12.000 [Hz].\n";
        if (!c.chosen.empty())
            expected += "REMARK DC Peaks" + c.chosen + " have been selected.\n.";
        Heard heard;
        EXPECT_EQ(selectPeaks(fourPeaks(), {.nSel = c.nSel, .dcSelOpt = c.dcSelOpt}, heard.messages),
                  c.selected);
        EXPECT_EQ(heard.out, expected);
        EXPECT_EQ(heard.err, c.err);
    }
}

TEST(SelectPeaks, TakesNothingThatIsFarFromEven)
{
    AssignmentProblem problem = fourPeaks();
    problem.wMat = {1e5f, 1e5f, 1.0f, 0.0f, 1e5f, 1e5f, 0.0f, 1.0f};
    Heard heard;
    EXPECT_EQ(selectPeaks(problem, {.nSel = 2}, heard.messages), std::nullopt);
    EXPECT_EQ(heard.err, "Error: # of selected peaks != 2.\n");
}

} // namespace
} // namespace trelm
