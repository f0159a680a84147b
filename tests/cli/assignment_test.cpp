// Whole runs of the assignment search: ubiquitin's couplings, shuffled and found again.
#include "cli/run_program.h"

#include <gtest/gtest.h>

#include <cmath>
#include <sstream>

namespace {

std::string search(const std::string &options, const std::string &table = "assignment/lysines.tab")
{
    return options + " -bestFit -pdb ubi/1d3z_model1.pdb -outD a.tab -H -pdbRot turned.pdb -inD " + table;
}

const std::string lysineRemarks =
    "REMARK 7 N-HN Unassigned Peaks, Residues 5 to 63.\n"
    "REMARK 7 N-HN Unassigned Peaks and 7 LYS Residues.\n"
    "REMARK Available Types of Unassigned Couplings: N-HN C-N C-HN CA-C CA-HA.\n"
    "REMARK # of coupling types: 5\n"
    "REMARK 7 x 5 Unassigned Coupling Matrix.\n"
    "REMARK Peak 6 11 27 29 33 48 63 exhaustively searched.\n"
    "REMARK No couplings are fixed.\n";

/// How many couplings came back to their residue, of how many that the result has (888: none).
std::pair<int, int> foundAgain(const Ran &ran)
{
    std::map<std::string, double> measured;
    for (const std::vector<std::string> &row : tableRows(fileText(example("bicelle_backbone.tab"))))
        measured[row[0] + row[2] + row[3] + row[5]] = std::stod(row[6]);
    int found = 0, rows = 0;
    for (const std::vector<std::string> &row : tableRows(ran.file("a.tab"))) {
        const auto own = measured.find(row[0] + row[2] + row[3] + row[5]);
        if (row[7] == "888.0000")
            continue;
        ++rows;
        found += own != measured.end() && std::fabs(std::stod(row[7]) - own->second) < 0.001 ? 1 : 0;
    }
    return {found, rows};
}

TEST(AssignmentRun, FindsTheLysinesAgain)
{
    const Ran ran = goodRun(search("-exhaust"));
    EXPECT_EQ(foundAgain(ran), std::pair(30, 30));
    EXPECT_TRUE(ran.out.ends_with(lysineRemarks)) << ran.out;
    EXPECT_EQ(countOf(ran.err, "REMARK Sampled 5040\r\n"), 1) << ran.err;
    EXPECT_NEAR(number(ran.file("a.tab"), "DATA Da_HN"), -9.19, 0.01);
    EXPECT_TRUE(ran.exists("turned.pdb.0"));
}

TEST(AssignmentRun, DecidesAWholeProtein)
{
    const Ran ran = goodRun(search("-exhaust", "assignment/backbone.tab"));
    EXPECT_EQ(foundAgain(ran), std::pair(295, 295));
    EXPECT_EQ(number(ran.file("a.tab"), "DATA N "), 295);
    EXPECT_EQ(countOf(ran.err, "Warning: no C-N coupling for peaks 18 63: they take part without it.\n"), 1);
    EXPECT_EQ(countOf(ran.err, "REMARK Sampled 1.982608e+87\r\n"), 1);
    EXPECT_EQ(countOf(ran.err, "Warning: 63 N-HN Unassigned Peaks and "), 1); // of several kinds
}

TEST(AssignmentRun, OtherSearches)
{
    const Ran classes = goodRun(search("-exhaust -fixAa 3 4"));
    const std::size_t told = classes.err.find("lysines.tab, 31 Couplings");
    EXPECT_EQ(classes.err.substr(told, classes.err.find("REMARK Memory") - told),
              "lysines.tab, 31 Couplings, Residues 5 to 63.\n"
              "Warning: no CA-C coupling for peaks 11: they take part without it.\n"
              "Warning: no CA-HA coupling for peaks 11 27 48 63: they take part without it.\n"
              "REMARK Sampled 6\r\nREMARK Sampled 24\r\nREMARK Sampled 144\r\n");
    EXPECT_TRUE(classes.out.ends_with(lysineRemarks)) << classes.out;
    EXPECT_LT(foundAgain(classes).first, 30); // peaks do not leave their class
    const Ran random = goodRun(search("-rand -map 300"));
    EXPECT_EQ(countOf(random.err, "REMARK Sampled 300 of 300\r\n"), 1);
    EXPECT_EQ(random.file("a.tab"), goodRun(search("-rand -map 300")).file("a.tab"));
    const Ran chosen = goodRun(search("-exhaustSel -nSel 4"));
    EXPECT_EQ(countOf(chosen.out, "REMARK DC Peaks 1 3 4 5 have been selected.\n."), 1);
    EXPECT_EQ(countOf(chosen.err, "REMARK Sampled 840\r\n"), 1);
    const Ran tooMany = goodRun(search("-exhaustSel -nSel 8"));
    EXPECT_EQ(countOf(tooMany.out, "REMARK 8 peaks with 5 5 5 4 4 4 3 RDCs will be selected.\n"), 1);
    EXPECT_EQ(countOf(tooMany.err, "Warning: only subset of 2 to 7 peaks allowed!Warning: no assignment "),
              1);
}

/// Structure and table of two media. Medium B has half the couplings of medium A, and so half the tensor.
std::pair<std::string, std::string> twoMedia(const std::string &coupled)
{
    std::string table =
        "VARS RESID_I RESNAME_I ATOMNAME_I SEGNAME_I RESID_J RESNAME_J ATOMNAME_J SEGNAME_J D DD\n"
        "FORMAT %d %s %s %s %d %s %s %s %f %f\n";
    std::string structure;
    for (const std::string segment : {"A", "B"}) {
        for (const auto &row : tableRows(fileText(coupled)))
            table += row[0] + " " + row[1] + " " + row[2] + " " + segment + " " + row[3] + " " + row[4] +
                     " " + row[5] + " " + segment + " " +
                     std::to_string(std::stod(row[6]) / (segment == "A" ? 1 : 2)) + " 1\n";
        std::istringstream atoms(fileText(example("1d3z_model1.pdb")));
        for (std::string line; std::getline(atoms, line);)
            structure += line.starts_with("ATOM") ? line.replace(72, 4, segment + "   ") + "\n" : "";
    }
    return {structure, table};
}

TEST(AssignmentRun, EachMediumKeepsItsCouplings)
{
    const auto [structure, table] = twoMedia(TRELM_EXAMPLES "/assignment/lysines.tab");
    for (const auto &[fit, tolerance] : {std::pair{"-svd", 0.001}, {"-nofixed", 0.05}}) {
        const Ran ran = goodRun(
            std::string(
                "-bestFit -exhaust -dcID A B -pdb s.pdb -inD t.tab -outD a.tab -H -pdbRot turned.pdb ") +
                fit,
            {.files = {{"s.pdb", structure}, {"t.tab", table}}});
        std::map<std::string, std::vector<double>> calculated;
        for (const auto &row : tableRows(ran.file("a.tab")))
            if (row[9] != "888.0000")
                calculated[row[0] + row[2] + row[4] + row[6]].push_back(std::stod(row[10]));
        EXPECT_EQ(number(ran.file("a.tab"), "DATA N "), 60);
        EXPECT_EQ(calculated.size(), 30U);
        for (const auto &[name, values] : calculated)
            EXPECT_NEAR(values.at(0), 2 * values.at(1), tolerance) << name;
    }
}

TEST(AssignmentRun, TypeWhoseRowsAreAllFixedStaysAsMeasured)
{
    // The pair C 5, HA 6 belongs to peak 6, but is fixed with residue 7, one behind the larger.
    std::string table = "VARS RESID_I RESNAME_I ATOMNAME_I RESID_J RESNAME_J ATOMNAME_J D DD W\nFORMAT %d %s "
                        "%s %d %s %s %f %f %f\n";
    for (const auto &row : tableRows(fileText(TRELM_EXAMPLES "/assignment/lysines.tab")))
        if (row[2] == "H")
            table += row[0] + " LYS H " + row[0] + " LYS N " + row[6] + " 1 1\n";
    const Ran ran =
        goodRun("-bestFit -exhaust -fixRes 7 -inD t.tab -outD a.tab -H -pdb " + example("1d3z_model1.pdb"),
                {.files = {{"t.tab", table + "5 VAL C 6 LYS HA 1.234 1 1\n"}}});
    EXPECT_NE(ran.file("a.tab").find("1.2340"), std::string::npos) << ran.file("a.tab");
}

TEST(AssignmentRun, TellsHowSureItIs)
{
    const std::string sure = goodRun(search("-exhaust -outAss sure.txt")).file("sure.txt");
    EXPECT_EQ(countOf(sure, "REMARK Undecided peaks, gap below 3.84:"), 1) << sure;
    EXPECT_EQ(tableRows(sure).size(), 7U) << sure;
    const auto [structure, table] = twoMedia(TRELM_EXAMPLES "/assignment/lysines.tab");
    const Ran media =
        runProgram("-bestFit -exhaust -dcID A B -pdb s.pdb -inD t.tab -outD a.tab -H -outAss sure.txt",
                   {.files = {{"s.pdb", structure}, {"t.tab", table}}});
    EXPECT_EQ(media.status, 1);
    EXPECT_EQ(countOf(media.err, "trelm: -outAss: that cannot be told for several media"), 1) << media.err;
    EXPECT_FALSE(media.exists("sure.txt"));
}

TEST(AssignmentRun, InterruptedKeepsTheBestSoFar)
{
    // One coupling a peak and medium decides nothing: the searches of all and of seven peaks have no end to
    // wait for.
    const auto [structure, table] = twoMedia(example("bicelle_hn.tab"));
    for (const auto &[kind, rows] :
         {std::pair{"-exhaust", 126U}, {"-exhaustSel -nSel 7", 14U}, {"-rand -map 2000000000", 126U}}) {
        const Ran ran =
            runProgram(std::string(kind) + " -dcID A B -bestFit -pdb s.pdb -inD t.tab -outD a.tab -H",
                       {.files = {{"s.pdb", structure}, {"t.tab", table}}, .interruptedAfter = 2});
        EXPECT_EQ(ran.status, 1) << kind;
        EXPECT_EQ(countOf(ran.err,
                          "trelm: the search was interrupted: the assignment is the best so far, and not "
                          "proved.\n"),
                  1)
            << kind;
        const std::string report = ran.file("a.tab");
        EXPECT_EQ(number(report, "DATA N "), rows) << kind;
        EXPECT_LT(number(report, "DATA RMS"), kind == std::string("-exhaust") ? 1.0 : 12.0) << kind;
    }
}

} // namespace
