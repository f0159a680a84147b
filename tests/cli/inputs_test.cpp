// Structures and tables that are not quite what a run wants, and what its options make of them.
#include "cli/run_program.h"

#include <gtest/gtest.h>

#include <sstream>

namespace {

/// The ATOM lines of ubiquitin for which `keep` holds, each changed by `change`.
template <class Keep>
std::string atoms(Keep keep)
{
    std::istringstream lines(fileText(example("1d3z_model1.pdb")));
    std::string text;
    for (std::string line; std::getline(lines, line);)
        if (line.starts_with("ATOM") && keep(line))
            text += line + "\n";
    return text;
}

bool isHeavy(const std::string &line)
{
    return line[13] != 'H' && line[12] != 'H';
}

const std::string table = fileText(example("bicelle_hn.tab"));

Ran fitOf(const std::string &structure, const std::string &options, const std::string &couplings = table)
{
    return goodRun("-bestFit -pdb in.pdb -inD in.tab -pdbRot t.pdb -H " + options,
                   {.files = {{"in.pdb", structure}, {"in.tab", couplings}}});
}

/// The places of the atoms of a name, by residue.
std::map<int, std::array<double, 3>> placesOf(const std::string &structure, const std::string &name)
{
    std::istringstream lines(structure);
    std::map<int, std::array<double, 3>> places;
    for (std::string line, word; std::getline(lines, line);)
        if (line.starts_with("ATOM") && std::istringstream(line.substr(12, 4)) >> word && word == name)
            places[std::stoi(line.substr(22, 4))] = {
                std::stod(line.substr(30, 8)), std::stod(line.substr(38, 8)), std::stod(line.substr(46, 8))};
    return places;
}

TEST(BuiltHydrogens, StandWhereTheMeasuredStructureHasThem)
{
    const Ran ran =
        goodRun("-struc -pdb in.pdb -pdbRot built.pdb -addH -H", {.files = {{"in.pdb", atoms(isHeavy)}}});
    const std::string built = ran.file("built.pdb"), measured = fileText(example("1d3z_model1.pdb"));
    EXPECT_EQ(
        countOf(built, "REMARK Hydrogens of the backbone built where they lacked, N-H 1.041 and C-H 1.107"),
        1);
    const struct {
        const char *name;
        std::size_t count;
    } kinds[] = {{"H", 72}, {"HA", 70}, {"HA2", 6}, {"HA3", 6}};
    for (const auto &[name, count] : kinds) {
        const auto places = placesOf(built, name), expected = placesOf(measured, name);
        EXPECT_EQ(places.size(), count) << name;
        for (const auto &[residue, place] : places) {
            ASSERT_TRUE(expected.contains(residue)) << name << residue;
            for (std::size_t i = 0; i < 3; ++i)
                EXPECT_NEAR(place[i], expected.at(residue)[i], 0.2) << name << residue;
        }
    }
}

TEST(BuiltHydrogens, GiveTheTensorOfTheMeasuredOnes)
{
    EXPECT_NEAR(number(fitOf(atoms(isHeavy), "-addH").out, "DATA Da_HN"), -9.40, 0.15);
    EXPECT_EQ(
        countOf(fitOf(atoms(isHeavy), "").err, "trelm: the structure has no hydrogens (-addH builds them)\n"),
        1);
    // What is there is left alone.
    const Ran kept = fitOf(atoms([](const std::string &) { return true; }), "-addH");
    EXPECT_EQ(countOf(kept.err, "trelm: 0 hydrogens built"), 1);
}

TEST(Names, AreMappedToThoseOfTheStructure)
{
    const std::string whole = atoms([](const std::string &) { return true; });
    std::string renamed = table, exchanged = fileText(example("bicelle_hn_nfirst.tab"));
    for (std::size_t at = 0; (at = renamed.find("      H ", at)) != std::string::npos; ++at)
        renamed.replace(at, 8, "     HN ");
    const Ran lost = fitOf(whole, "", renamed);
    EXPECT_EQ(
        countOf(
            lost.err,
            "trelm: 0 of 63 couplings used: 63 name atom HN, the structure has H (-names auto maps them)\n"),
        1);
    const Ran turned = fitOf(whole, "", exchanged);
    EXPECT_EQ(countOf(turned.err, "trelm: 63 pairs with N first take the distance of the structure"), 1);
    for (const std::string &couplings : {renamed, exchanged}) {
        const Ran mapped = fitOf(whole, "-names auto -strict", couplings);
        EXPECT_EQ(number(mapped.out, "DATA Da_HN"), number(fitOf(whole, "").out, "DATA Da_HN"));
    }
}

TEST(Models, TheFirstIsReadUnlessAnotherIsAskedFor)
{
    const std::string heavy = atoms(isHeavy), whole = atoms([](const std::string &) { return true; });
    const std::string models = "MODEL        1\n" + whole + "ENDMDL\nMODEL        7\n" + heavy + "ENDMDL\n";
    const std::string told = "trelm: 2 models in in.pdb, the first is used (-model N, all, mean)\n";
    EXPECT_EQ(complaints(fitOf(models, "").err), told);
    EXPECT_EQ(fitOf(models, "").out, fitOf(whole, "").out);
    const Ran seventh = fitOf(models, "-model 7");
    EXPECT_EQ(countOf(seventh.err, "in.pdb, 602 Atoms"), 1);
    EXPECT_EQ(countOf(seventh.err, told), 0);
    for (const auto &[model, line] : {std::pair{"3", "PDB Error: in.pdb has no model 3.\n"},
                                      std::pair{"x", "trelm: -model x: a model has a number above 0.\n"}}) {
        const Ran bad =
            runProgram("-bestFit -pdb in.pdb -model " + std::string(model), {.files = {{"in.pdb", models}}});
        EXPECT_EQ(bad.status, 1);
        EXPECT_EQ(countOf(bad.err, line), 1) << bad.err;
    }
}

TEST(CommandLine, StrictAndQuietRuns)
{
    const std::string fit =
        "-bestFit -pdb ubi/1d3z_model1.pdb -inD ubi/bicelle_hn.tab -outD fit.tab -pdbRot t.pdb ";
    const Ran strict = runProgram(fit + "-strict -outd x");
    EXPECT_EQ(strict.status, 1);
    EXPECT_EQ(complaints(strict.err), "-outd: did you mean -outD? (it is not used)\n"
                                      "trelm: -strict: 1 warning, and so no result.\n");
    EXPECT_FALSE(strict.exists("fit.tab") || strict.exists("t.pdb.0"));
    const Ran quiet =
        goodRun("-pdb ubi/1d3z_model1.pdb -inD ubi/bicelle_hn.tab -outD o.tab -pdbRot t.pdb -quiet");
    EXPECT_EQ(
        quiet.err,
        "trelm: the hydrogens of ubi/1d3z_model1.pdb are left out of the simulation (-H takes them in)\n");
    EXPECT_EQ(goodRun(fit + "-strict -quiet").err, "");
}

TEST(CommandLine, WhatEverybodyTriesFirst)
{
    EXPECT_EQ(goodRun("-v").out, goodRun("--version").out);
    EXPECT_EQ(goodRun("-h").out, goodRun("--help").out);
    EXPECT_EQ("\n\n" + goodRun("-h").out,
              runProgram("-help").err.substr(runProgram("-help").err.find("\n\ntrelm:"),
                                             goodRun("-h").out.size() + 2));
    EXPECT_EQ(countOf(goodRun("-help daMl").out, "\n -clearMl "), 1);
    const Ran typed = runProgram("-bestfit -xyzzy");
    EXPECT_EQ(countOf(typed.err, "-bestfit: did you mean -bestFit? (steric prediction was run)\n"
                                 "-xyzzy: there is no such option (it is not used)\n"),
              1);
}

} // namespace
