// Selections: which atoms get a mark.
#include "structure/select.h"

#include "common/heard.h"
#include "molecules.h"
#include "support/text/match.h"

#include <algorithm>

namespace trelm {
namespace {

constexpr int largest = 2147483647;

/// What a case changes in a record with range 0 to 76 and a chain list "B".
const struct SelectCase {
    const char *why;
    PDBSelectInfo sInfo;
    int marked;
} cases[] = {
    // 1231 atoms, 602 of them heavy, 7 lysines.
    {"the defaults take all", {}, 1231},
    {"set takes all, whatever the class", {.selectMode = selectAll, .selectClass = classCanonical}, 1231},
    {"clear takes nobody", {.selectMode = selectNone}, 0},
    {"two names, case counts", {.resN = 76, .atomNameList = "CA N ca", .selectMode = selectMatching}, 152},
    {"a star switches the test off",
     {.res1 = 76, .resN = 76, .resIDMode = 1, .selectMode = selectMatching},
     8},
    {"a range the wrong way round",
     {.res1 = 3, .resN = 2, .atomNameList = "CA", .resIDMode = 1, .selectMode = selectMatching},
     2},
    {"a range beyond the molecule ends",
     {.res1 = 75, .resN = largest, .atomNameList = "CA", .resIDMode = 1, .selectMode = selectMatching},
     2},
    {"heavy atoms by glob",
     {.resN = 76, .atomNameList = "[CNOS]*", .atomNameMode = matchGlob, .selectMode = selectMatching},
     602},
    {"residue names without a match mode",
     {.resN = 76, .resNameList = "LYS", .atomNameList = "CA", .selectMode = selectMatching},
     76},
    {"residue names with a match mode",
     {.resN = 76,
      .resNameList = "LYS",
      .atomNameList = "CA",
      .resNameMode = matchExact,
      .selectMode = selectMatching},
     7},
    {"a chain test takes the road over all atoms",
     {.atomNameList = "CA", .chainNameList = "B", .chainNameMode = matchExact, .selectMode = selectMatching},
     0},
    {"inverted without a test misses all", {.resN = 76, .selectMode = selectFailing}, 0},
    {"inverted takes what fails", {.resN = 76, .atomNameList = "CA", .selectMode = selectFailing}, 1155},
    {"inverted in a range looks at the range alone",
     {.res1 = 2, .resN = 3, .resIDMode = 1, .selectMode = selectFailing},
     0},
    {"inverted on the road over all atoms takes what lies outside",
     {.res1 = 1,
      .resN = 75,
      .chainNameList = "A",
      .resIDMode = 1,
      .chainNameMode = matchExact,
      .selectMode = selectFailing},
     8},
    {"an empty list matches nobody", {.resN = 76, .atomNameList = "", .selectMode = selectMatching}, 0},
    {"a pattern that cannot be compiled",
     {.resN = 76, .atomNameList = "a** CA", .atomNameMode = matchRegex, .selectMode = selectMatching},
     76},
};

TEST(Select, ChoosesByTheCriteria)
{
    const PDBInfo pdb = readUbiquitin();
    for (const SelectCase &choice : cases) {
        PDBSelectInfo sInfo = choice.sInfo;
        pdbSelectAdjust(sInfo);
        AtomMask selection;
        pdbSelect(pdb, sInfo, selection, standardMessages());
        EXPECT_EQ(std::ranges::count(selection, 1), choice.marked) << choice.why;
    }
}

TEST(Select, WhatIsNotChosenStays)
{
    const PDBInfo pdb = readUbiquitin();
    AtomMask selection(1231, 1);
    PDBSelectInfo hydrogens = {
        .res1 = 1, .resN = 76, .atomNameList = "[1-3]H* H*", .atomNameMode = matchGlob, .selectID = 0};
    hydrogens.selectMode = selectMatching;
    pdbSelect(pdb, hydrogens, selection, standardMessages());
    EXPECT_EQ(std::ranges::count(selection, 1), 602);
}

TEST(Select, TheTestAsksTheClassInEveryMode)
{
    AtomInfo atom;
    PDBSelectInfo sInfo;
    for (const char *other : {"HOH", "ADE"}) { // a nucleotide is no amino acid
        atom.resName = Name::of(other);
        for (const SelectMode mode : {selectFailing, selectNone, selectAll, selectMatching}) {
            sInfo.selectClass = classCanonical;
            sInfo.selectMode = mode;
            EXPECT_FALSE(pdbSelectTest(&sInfo, atom)) << other << " " << mode;
        }
    }
    atom.resName = Name::of("lys");
    sInfo.selectMode = selectAll;
    EXPECT_TRUE(pdbSelectTest(&sInfo, atom));
}

TEST(Select, TheRoadIsToldOnRequest)
{
    const PDBInfo pdb = readUbiquitin();
    const struct {
        PDBSelectInfo sInfo;
        const char *line;
    } rows[] = {
        {{.resN = 76, .selectMode = selectMatching, .dbgFlag = 1}, "GORVAT Info: Simple Selection.\n"},
        {{.resNameMode = matchRegex,
          .atomNameMode = matchGlob,
          .chainNameMode = matchExact,
          .selectMode = selectMatching,
          .dbgFlag = 1},
         "GORVAT Info: Complex Selection Atom 3 Res 2 Seg 1 Chain 0\n"}};
    for (const auto &row : rows) {
        Heard heard;
        AtomMask selection;
        pdbSelect(pdb, row.sInfo, selection, heard.messages);
        EXPECT_EQ(heard.err, row.line);
    }
}

TEST(Select, FaultyExpressionsAreTold)
{
    PDBSelectInfo sInfo = {
        .resNameList = "(L", .atomNameList = "CA a**", .resNameMode = matchExact, .atomNameMode = matchRegex};
    Heard heard;
    pdbSelectCheck(sInfo, heard.messages); // all atoms are taken, nothing is matched
    EXPECT_EQ(heard.err, "");
    sInfo.selectMode = selectMatching;
    pdbSelectCheck(sInfo, heard.messages);
    EXPECT_EQ(heard.err,
              "PDB Warning: the regular expression a** is faulty and selects nothing: nested *?+.\n");
}

} // namespace
} // namespace trelm
