// Whole runs of the assignment search: ubiquitin's couplings, shuffled and found again.
#include "cli/run_program.h"

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <map>

namespace {

std::string assignmentExample(const char *name)
{
    return (std::filesystem::path(example("")) / ".." / "assignment" / name).string();
}

std::vector<std::string> search(std::vector<std::string> more, const char *table = "lysines.tab")
{
    std::vector<std::string> args = {"-bestFit",
                                     "-pdb",
                                     example("1d3z_model1.pdb"),
                                     "-inD",
                                     assignmentExample(table),
                                     "-outD",
                                     "a.tab",
                                     "-H",
                                     "-pdbRot",
                                     "turned.pdb"};
    args.insert(args.end(), more.begin(), more.end());
    return args;
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
    const Ran ran = runProgram(search({"-exhaust"}));
    ASSERT_EQ(ran.status, 0) << ran.err;
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
    EXPECT_NEAR(numbersAfter(ran.file("a.tab"), "DATA Da_HN").at(0), -9.19, 0.01);
    EXPECT_TRUE(ran.exists("turned.pdb.0"));
}

TEST(AssignmentRun, DecidesAWholeProtein)
{
    const Ran ran = runProgram(search({"-exhaust"}, "backbone.tab"));
    ASSERT_EQ(ran.status, 0) << ran.err;
    EXPECT_EQ(foundAgain(ran), std::pair(63, 63));
    EXPECT_EQ(countOf(ran.err, "REMARK Sampled 1.982608e+87\r\n"), 1);
    EXPECT_EQ(countOf(ran.err, "Warning: 63 N-HN Unassigned Peaks and "), 1); // of several kinds
}

TEST(AssignmentRun, OtherSearches)
{
    const Ran classes = runProgram(search({"-exhaust", "-fixAa", "3", "4"}));
    EXPECT_EQ(classes.status, 0);
    EXPECT_EQ(countOf(classes.err, "REMARK Sampled 144\r\n"), 1);
    EXPECT_LT(foundAgain(classes).first, 7); // peaks do not leave their class

    const Ran sizes = runProgram(search({"-exhaust", "-fixAa", "3", "5"}));
    EXPECT_EQ(sizes.status, 1);
    EXPECT_EQ(countOf(sizes.err, "Error: Error in length of permutation.\n"), 1);

    const Ran random = runProgram(search({"-rand", "-map", "300"}));
    EXPECT_EQ(random.status, 0);
    EXPECT_EQ(countOf(random.err, "REMARK Sampled 300 of 300\r\n"), 1);
    EXPECT_EQ(random.file("a.tab"), runProgram(search({"-rand", "-map", "300"})).file("a.tab"));

    const Ran none = runProgram(search({"-rand", "-map", "0"}));
    EXPECT_EQ(none.status, 0);
    EXPECT_EQ(
        countOf(none.err, "Warning: no assignment was found for Da [-25.000,-3.000] R [0.000 0.700]!\n"), 1);

    const Ran chosen = runProgram(search({"-exhaustSel", "-nSel", "4"}));
    EXPECT_EQ(chosen.status, 0);
    EXPECT_EQ(countOf(chosen.out, "REMARK DC Peaks 1 3 4 5 have been selected.\n."), 1);
    EXPECT_EQ(countOf(chosen.err, "REMARK Sampled 840\r\n"), 1);
    const Ran single = runProgram(search({"-exhaustSel", "-nSel", "1"}));
    EXPECT_EQ(single.status, 0);
    EXPECT_EQ(countOf(single.err, "Warning: only subset of 2 to 7 peaks allowed!"), 1);

    const Ran outside = runProgram(search({"-exhaust", "-lDa", "200", "-hDa", "300"}));
    EXPECT_EQ(outside.status, 0);
    EXPECT_EQ(
        countOf(outside.err, "Warning: no assignment was found for Da [200.000,300.000] R [0.000 0.700]!\n"),
        1);
    const Ran empty = runProgram(search({"-exhaust", "-d1", "900", "-dN", "901"}));
    EXPECT_EQ(empty.status, 1);
    EXPECT_EQ(countOf(empty.err, "Matrix: error in best-fit of data.\n"), 1);
}

TEST(AssignmentRun, InterruptedKeepsTheBestSoFar)
{
    // One coupling a peak decides nothing.
    std::vector<std::string> args = {"--preserve-status", "-s", "INT", "1", TRELM_PROGRAM};
    const std::vector<std::string> run = {
        "-bestFit", "-exhaust", "-pdb", example("1d3z_model1.pdb"), "-inD", example("bicelle_hn.tab"),
        "-outD",    "a.tab",    "-H"};
    args.insert(args.end(), run.begin(), run.end());
    const Ran ran = runProgram(args, {.program = "/usr/bin/timeout"});
    EXPECT_EQ(ran.status, 1);
    EXPECT_EQ(countOf(ran.err,
                      "trelm: the search was interrupted: the assignment is the best so far, and not "
                      "proved.\n"),
              1);
    EXPECT_EQ(tableRows(ran.file("a.tab")).size(), 63U);
    EXPECT_LT(numbersAfter(ran.file("a.tab"), "DATA RMS").at(0), 1.0);
}

} // namespace
