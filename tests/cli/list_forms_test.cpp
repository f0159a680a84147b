// Whole runs on coupling lists of other programs: one fit from every form, nothing lost on the way through
// it.
#include "cli/run_program.h"

#include <gtest/gtest.h>

namespace {

const std::string fitOf = "-bestFit -pdb ubi/1d3z_model1.pdb -outD fit.tab -nopdbRot -inD ";

/// What is written from a file, as one of this name.
Files written(const std::string &options, const std::string &name, const Files &files = {})
{
    const Ran ran = goodRun("-conv -outD out " + options, {.files = files});
    return {{name, ran.file("out")}};
}

std::string labels(const std::string &table)
{
    std::string text = "# heavy atom first\n";
    for (const auto &row : tableRows(table))
        text += row[0] + "N-H\t" + row[6] + " " + row[7] + "\n";
    return text;
}

std::string fiveColumns(const std::string &table)
{
    std::string text;
    for (const auto &row : tableRows(table))
        text += row[0] + " N " + row[3] + " HN " + row[6] + "\n";
    return text;
}

} // namespace

TEST(ListForms, OneFitFromEveryForm)
{
    const std::string table = fileText(example("bicelle_hn.tab"));
    const Ran told = goodRun(fitOf + "ubi/bicelle_hn.tab");
    const std::string of = " -inD ubi/bicelle_hn.tab";
    const struct {
        const char *form;
        Files files;
    } cases[] = {
        {"xplor", written("-cns" + of, "x")},
        {"cyana", written("-cyana" + of, "x")},
        {"cyana", written("-dyana" + of, "x")}, // two decimals
        {"rosetta", written("-rosettaList" + of, "x")},
        {"rosetta", {{"x", fiveColumns(table)}}}, // no errors
        {"csv", written("-csv" + of, "x")},
        {"csv", {{"x", labels(table)}}},
    };
    for (const auto &one : cases) {
        const Ran ran = goodRun(fitOf + "x", {.files = one.files});
        const std::string report = ran.file("fit.tab");
        EXPECT_NEAR(number(report, "DATA Da_HN"), -9.398, 0.001) << one.form;
        EXPECT_NEAR(number(report, "DATA Rhombicity"), 0.156, 0.0005) << one.form;
        EXPECT_EQ(number(report, "DATA N "), 63.0) << one.form;
        EXPECT_EQ(number(report, "DATA RMS"), number(told.file("fit.tab"), "DATA RMS")) << one.form;
        const Ran asked = goodRun(fitOf + "x -inF " + one.form, {.files = one.files});
        EXPECT_EQ(asked.file("fit.tab"), report) << one.form;
        const Ran again =
            goodRun(fitOf + "t -names auto", {.files = written("-trelm -inD x", "t", one.files)});
        EXPECT_NEAR(number(again.file("fit.tab"), "DATA Da_HN"), -9.398, 0.001) << one.form;
    }
}

TEST(ListForms, WhatIsWrittenIsReadBack)
{
    const Files source = {{"in", "chain,resid1,resid2,resname1,resname2,atom1,atom2,value,error\n"
                                 "A,5,5,VAL,VAL,H,N,-8.17,0.16\nA,7,6,GLY,VAL,H,C,0.123457,1.5\n"
                                 "A,46,46,ALA,ALA,HB#,CB,5e-07,2\n"}};
    const auto expected = tableRows(written("-trelm -noverb -inD in", "t", source)["t"]);
    ASSERT_EQ(expected.size(), 3u);
    for (const char *form : {"-csv", "-rosettaList", "-cyana", "-cns"}) {
        const auto rows = tableRows(
            written("-trelm -noverb -inD x", "t", written(std::string(form) + " -inD in", "x", source))["t"]);
        ASSERT_EQ(rows.size(), expected.size()) << form;
        for (std::size_t k = 0; k < rows.size(); ++k)
            EXPECT_EQ(std::vector(rows[k].end() - 3, rows[k].end()),
                      std::vector(expected[k].end() - 3, expected[k].end()))
                << form;
        if (std::string(form) == "-csv") {
            EXPECT_EQ(rows, expected);
        }
    }
}

TEST(ListForms, AReportGoesOutWithItsTensor)
{
    const Ran fitted = goodRun(fitOf + "ubi/bicelle_hn.tab");
    const Files list = written("-cyana -inD fit.tab", "x", {{"fit.tab", fitted.file("fit.tab")}});
    EXPECT_EQ(countOf(list.at("x"), "       1      -9.397695   0.1556363           900\n"), 1)
        << list.at("x");
    EXPECT_NEAR(number(goodRun(fitOf + "x", {.files = list}).file("fit.tab"), "DATA Da_HN"), -9.398, 0.001);
    const Ran ran = goodRun("-conv -cyana -outD out -inD in", {.files = {{"in", "A.5H-N 1\nB.5H-N 2\n"}}});
    EXPECT_EQ(countOf(ran.err, "residues of 2 chains are told apart by their numbers alone"), 1) << ran.err;
}

TEST(ListForms, MediaForeignDataAndFaultsAreTold)
{
    const auto restraint = [](const char *axes, const char *rest) {
        std::string text = "assign ";
        for (const char *name : {"OO", "Z", "X", "Y"})
            text.append("(resid ").append(axes).append(" and name ").append(name).append(")");
        return text.append(rest).append("\n");
    };
    const char *amide = "(resid 5 and name N)(resid 5 and name HN) 9.8 1.5";
    const std::string media = restraint("600", amide) + "assign (resid 1)(resid 2) 3 1 1\n" +
                              restraint("601", amide) +
                              restraint("601", "(resid 6 and name N)(resid 6 and name HN) 1 1");
    const struct {
        std::string text, options, told;
        int status;
    } cases[] = {
        {media, "", "trelm: 2 media in x, the first is used (-medium ID): 600 (1), 601 (2)\n", 0},
        {media, "-medium 601", "trelm: x: 1 times something else, left out: distance (line 2)\n", 0},
        {media, "-medium 602", "trelm: x has no medium 602: 600 (1), 601 (2).\n", 1},
        {media + "{ {", "", "trelm: x, line 5: a comment in braces that never ends.\n", 1},
        {restraint("1", "(resid 5 and name N) 1"), "",
         "trelm: x, line 1: a coupling of 5 selections, where six belong.\n", 1},
        {"14N-H 1.2.3\n", "", "trelm: x, line 1: 1.2.3 is no number.\n", 1},
        {"2 N 2 H 1\n2 N 2", "",
         "trelm: x, line 2: a row has five columns: residue, atom, residue, atom, value.\n", 1},
        {"1 2.5 0.1 90\n5 VAL H 5 VAL N 1 1 1 2\n", "",
         "trelm: x, line 2: the orientation 2 was not declared.\n", 1},
    };
    for (const auto &one : cases) {
        const Ran ran =
            runProgram("-conv -trelm -inD x -outD out " + one.options, {.files = {{"x", one.text}}});
        EXPECT_EQ(ran.status, one.status) << one.told;
        EXPECT_EQ(countOf(ran.err, one.told), 1) << one.told << ran.err;
        EXPECT_EQ(ran.exists("out"), one.status == 0) << one.told;
    }
}
