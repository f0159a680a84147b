// Several models of one structure file: a tensor for each, and one for all.
#include "cli/run_program.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <sstream>

namespace {

/// A model of ubiquitin: the atoms of the example, (x, y, z) become (-y, x, z) for each quarter turn about z.
std::string model(int number, int quarters)
{
    std::istringstream lines(fileText(example("1d3z_model1.pdb")));
    std::string text = "MODEL     " + std::to_string(number) + "\n";
    for (std::string line; std::getline(lines, line);) {
        if (!line.starts_with("ATOM"))
            continue;
        double x = std::stod(line.substr(30, 8)), y = std::stod(line.substr(38, 8));
        for (int turn = 0; turn < quarters; ++turn) {
            const double old = x;
            x = -y;
            y = old;
        }
        char columns[17];
        std::snprintf(columns, sizeof columns, "%8.3f%8.3f", x, y);
        text += line.replace(30, 16, columns) + "\n";
    }
    return text + "ENDMDL\n";
}

Ran runOf(const std::string &structure, const std::string &options)
{
    return runProgram("-bestFit -pdb in.pdb -inD in.tab -H " + options,
                      {.files = {{"in.pdb", structure}, {"in.tab", fileText(example("bicelle_hn.tab"))}}});
}

TEST(Models, TurnedCopiesGiveTheTensorOfOne)
{
    const std::string turned = model(1, 0) + model(4, 1) + model(7, 3);
    const Ran each = runOf(turned, "-model all -outM models.tab");
    ASSERT_EQ(each.status, 0) << each.err;
    const std::string table = each.file("models.tab");
    for (const char *line : {"DATA MODELS          3\n", "DATA MODEL_MEAN Da_HN    -9.3977     0.0000\n",
                             "     7    63   -9.3977  0.1556  0.0459   0.000   0.000   0.000\n"})
        EXPECT_EQ(countOf(table, line), 1) << table;
    EXPECT_FALSE(each.exists(".0"));
    const Ran stay = runOf(turned, "-model all -noSuper");
    EXPECT_EQ(countOf(stay.out, "  0.000   0.000   0.000\n"), 0) << stay.out;
    const double one = number(runOf(model(1, 0), "-nopdbRot").out, "DATA Da_HN");
    const auto meanDa = [&](const char *options) {
        return number(runOf(turned, std::string("-nopdbRot -model mean ") + options).out, "DATA Da_HN");
    };
    EXPECT_NEAR(meanDa(""), one, 1e-4);
    EXPECT_NEAR(meanDa("-fitAtoms CA -fit1 10 -fitN 20"), one, 1e-4);
    EXPECT_GT(std::fabs(meanDa("-noSuper") - one), 0.1);
}

TEST(Models, WhatCannotBeOneRunIsToldInALine)
{
    std::string renamed = model(2, 1), cut = model(2, 1);
    renamed.replace(renamed.find(" CA "), 4, " CX ");
    cut.erase(cut.rfind("ATOM"));
    const struct {
        std::string structure, options, line;
    } rows[] = {
        {model(1, 0) + renamed, "-model all",
         "model 2 is no copy of model 1: it has CX of MET 1 in the place of CA of MET 1"},
        {model(1, 0) + cut, "-model mean", "model 2 is no copy of model 1: it lacks"},
        {cut + model(3, 1), "-model all", "model 3 is no copy of model 2: it also has"},
        {model(1, 0), "-model mean -fitAtoms P", "trelm: -fitAtoms P: 0 atoms to lay the models"},
        {model(1, 0), "-model mean -nofixed", "trelm: -model mean: only a linear fit"},
        {model(1, 0), "-model all -jack", "trelm: -model all: only a single best-fit takes several models"},
    };
    for (const auto &[structure, options, line] : rows) {
        const Ran ran = runOf(structure, options);
        EXPECT_EQ(ran.status, 1) << line;
        EXPECT_EQ(countOf(ran.err, line), 1) << ran.err;
    }
}

} // namespace
