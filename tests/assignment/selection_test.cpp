#include "assignment/selection.h"

#include "reference/assignment_reference.h"
#include "reference/random_problem.h"

#include <gtest/gtest.h>

namespace trelm {
namespace {

TEST(SelectPeaks, ChoosesAsAllCombinationsWould)
{
    ProblemMaker maker(5);
    for (int n = 0; n < 40; ++n) {
        MadeProblem made = maker.make({.peaks = 6 + n % 6,
                                       .columns = {2, 2},
                                       .fixed = {0, 0},
                                       .missing = n % 4 * 0.15,
                                       .equalWeights = n % 2 == 0});
        if (n % 3 == 0) // many combinations of the same values: the first of them counts
            for (float &d : made.problem.dcMat)
                d = d == noPeakCoupling ? d : std::round(d / 10.0f);
        for (int nSel = 2; nSel <= std::min(7, made.problem.peakCount); ++nSel) {
            std::vector<int> selected;
            testing::internal::CaptureStdout();
            const int status = selectPeaks(made.problem, nSel, 1, selected);
            testing::internal::GetCapturedStdout();
            EXPECT_EQ(status, 0);
            EXPECT_EQ(selected, selectPeaksPlain(made.problem, nSel)) << "problem " << n << " nSel " << nSel;
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
    const std::string head = "REMARK Maximum of 2 available RDCs per peak.\n";
    const std::string range = "REMARK Smallest and largest normalized RDC: -3.000 12.000 [Hz].\n";
    struct {
        const char *why;
        int nSel, dcSelOpt, status;
        std::string out, err;
        std::vector<int> selected;
    } const cases[] = {
        {"the two with most couplings",
         2,
         1,
         0,
         head +
             "REMARK 2 peaks with 2 2 RDCs will be selected.\n"
             "REMARK 2 peaks with 4 RDCs in total will be selected.\n" +
             range + "REMARK DC Peaks 1 3 have been selected.\n.",
         "",
         {0, 2}},
        {"the evener of the rest",
         3,
         1,
         0,
         head +
             "REMARK 3 peaks with 2 2 1 RDCs will be selected.\n"
             "REMARK 3 peaks with 5 RDCs in total will be selected.\n" +
             range + "REMARK DC Peaks 1 3 4 have been selected.\n.",
         "",
         {0, 2, 3}},
        {"the first rows",
         2,
         0,
         0,
         head +
             "REMARK 2 peaks with 2 2 RDCs will be selected.\n"
             "REMARK 2 peaks with 4 RDCs in total will be selected.\n" +
             range + "REMARK DC Peaks 1 2 have been selected.\n.",
         "",
         {0, 1}},
        {"one",
         1,
         1,
         1,
         head +
             "REMARK 1 peaks with 2 RDCs will be selected.\n"
             "REMARK 1 peaks with 2 RDCs in total will be selected.\n" +
             range,
         "Warning: only subset of 2 to 7 peaks allowed!",
         {}},
        {"more than there are", 5, 1, 1, "", "Error: -nSel 5, but there are only 4 peaks.\n", {}},
        {"a negative number",
         -2,
         0,
         1,
         head +
             "REMARK -2 peaks with RDCs will be selected.\n"
             "REMARK -2 peaks with 0 RDCs in total will be selected.\n" +
             range,
         "Error: # of selected peaks != -2.\n",
         {}},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.why);
        std::vector<int> selected = {9};
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
        EXPECT_EQ(selectPeaks(fourPeaks(), c.nSel, c.dcSelOpt, selected), c.status);
        EXPECT_EQ(testing::internal::GetCapturedStdout(), c.out);
        EXPECT_EQ(testing::internal::GetCapturedStderr(), c.err);
        EXPECT_EQ(selected, c.selected);
    }
}

TEST(SelectPeaks, TakesNothingThatIsFarFromEven)
{
    AssignmentProblem problem = fourPeaks();
    problem.wMat = {1e5f, 1e5f, 1.0f, 0.0f, 1e5f, 1e5f, 0.0f, 1.0f};
    std::vector<int> selected;
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    EXPECT_EQ(selectPeaks(problem, 2, 1, selected), 1);
    testing::internal::GetCapturedStdout();
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "Error: # of selected peaks != 2.\n");
}

} // namespace
} // namespace trelm
