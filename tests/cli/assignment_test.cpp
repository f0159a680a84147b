// Whole runs of the assignment search: ubiquitin's couplings, shuffled and found again.
#include "cli/run_program.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

std::string search(const std::string &options, const std::string &table = "assignment/lysines.tab")
{
    return options + " -bestFit -pdb ubi/1d3z_model1.pdb -outD a.tab -H -pdbRot turned.pdb -inD " + table;
}

/// How many N-H couplings came back to their residue, of how many.
std::pair<int, int> foundAgain(const Ran &ran)
{
    std::map<std::string, double> measured;
    for (const std::vector<std::string> &row : tableRows(fileText(example("bicelle_hn.tab"))))
        measured[row[0]] = std::stod(row[6]);
    int found = 0, rows = 0;
    for (const std::vector<std::string> &row : tableRows(ran.file("a.tab"))) {
        if (row[2] != "H" || row[5] != "N")
            continue;
        ++rows;
        found += std::fabs(std::stod(row[7]) - measured.at(row[0])) < 0.006 ? 1 : 0;
    }
    return {found, rows};
}

TEST(AssignmentRun, FindsTheLysinesAgain)
{
    const Ran ran = goodRun(search("-exhaust"));
    EXPECT_EQ(foundAgain(ran), std::pair(7, 7));
    EXPECT_TRUE(
        ran.out.ends_with("REMARK 7 N-HN Unassigned Peaks, Residues 1 to 63.\n"
                          "REMARK 7 N-HN Unassigned Peaks and 7 LYS Residues.\n"
                          "REMARK Available Types of Unassigned Couplings: N-HN C-N C-HN CA-C CA-HA.\n"
                          "REMARK # of coupling types: 5\n"
                          "REMARK 7 x 5 Unassigned Coupling Matrix.\n"
                          "REMARK Peak 6 11 27 29 33 48 63 exhaustively searched.\n"
                          "REMARK No couplings are fixed.\n"))
        << ran.out;
    EXPECT_EQ(countOf(ran.err, "REMARK Sampled 5040\r\n"), 1) << ran.err;
    EXPECT_NEAR(number(ran.file("a.tab"), "DATA Da_HN"), -9.19, 0.01);
    EXPECT_TRUE(ran.exists("turned.pdb.0"));
}

TEST(AssignmentRun, DecidesAWholeProtein)
{
    const Ran ran = goodRun(search("-exhaust", "assignment/backbone.tab"));
    EXPECT_EQ(foundAgain(ran), std::pair(63, 63));
    EXPECT_EQ(countOf(ran.err, "REMARK Sampled 1.982608e+87\r\n"), 1);
    EXPECT_EQ(countOf(ran.err, "Warning: 63 N-HN Unassigned Peaks and "), 1); // of several kinds
}

TEST(AssignmentRun, OtherSearches)
{
    const Ran classes = goodRun(search("-exhaust -fixAa 3 4"));
    EXPECT_EQ(countOf(classes.err, "REMARK Sampled 144\r\n"), 1);
    EXPECT_LT(foundAgain(classes).first, 7); // peaks do not leave their class
    const Ran random = goodRun(search("-rand -map 300"));
    EXPECT_EQ(countOf(random.err, "REMARK Sampled 300 of 300\r\n"), 1);
    EXPECT_EQ(random.file("a.tab"), goodRun(search("-rand -map 300")).file("a.tab"));
    const Ran chosen = goodRun(search("-exhaustSel -nSel 4"));
    EXPECT_EQ(countOf(chosen.out, "REMARK DC Peaks 1 3 4 5 have been selected.\n."), 1);
    EXPECT_EQ(countOf(chosen.err, "REMARK Sampled 840\r\n"), 1);
}

TEST(AssignmentRun, InterruptedKeepsTheBestSoFar)
{
    // One coupling a peak decides nothing.
    const Ran ran = runProgram(search("-exhaust", "ubi/bicelle_hn.tab"), {.interruptedAfter = 1});
    EXPECT_EQ(ran.status, 1);
    EXPECT_EQ(countOf(ran.err,
                      "trelm: the search was interrupted: the assignment is the best so far, and not "
                      "proved.\n"),
              1);
    EXPECT_EQ(tableRows(ran.file("a.tab")).size(), 63U);
    EXPECT_LT(number(ran.file("a.tab"), "DATA RMS"), 1.0);
}

} // namespace
