// Selections: which atoms get a mark.
#include "structure/select.h"

#include "molecules.h"
#include "support/text/match.h"

#include <string>

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
    {"set takes all, whatever the class", {.selectMode = 1, .selectClass = 4}, 1231},
    {"clear marks nobody, and tells how many", {.selectMode = 0}, 1231},
    {"two names, case counts", {.resN = 76, .atomNameList = "CA N ca", .selectMode = 2}, 152},
    {"a star switches the test off", {.res1 = 76, .resN = 76, .resIDMode = 1, .selectMode = 2}, 8},
    {"a range the wrong way round",
     {.res1 = 3, .resN = 2, .atomNameList = "CA", .resIDMode = 1, .selectMode = 2},
     2},
    {"a range beyond the molecule ends",
     {.res1 = 75, .resN = largest, .atomNameList = "CA", .resIDMode = 1, .selectMode = 2},
     2},
    {"heavy atoms by glob", {.resN = 76, .atomNameList = "[CNOS]*", .atomNameMode = 3, .selectMode = 2}, 602},
    {"residue names without a match mode",
     {.resN = 76, .resNameList = "LYS", .atomNameList = "CA", .selectMode = 2},
     76},
    {"residue names with a match mode",
     {.resN = 76, .resNameList = "LYS", .atomNameList = "CA", .resNameMode = 1, .selectMode = 2},
     7},
    {"a chain test takes the road over all atoms",
     {.atomNameList = "CA", .chainNameList = "B", .chainNameMode = 1, .selectMode = 2},
     0},
    {"inverted without a test misses all", {.resN = 76, .selectMode = -1}, 0},
    {"inverted takes what fails", {.resN = 76, .atomNameList = "CA", .selectMode = -1}, 1155},
    {"inverted in a range looks at the range alone",
     {.res1 = 2, .resN = 3, .resIDMode = 1, .selectMode = -1},
     0},
    {"inverted on the road over all atoms takes what lies outside",
     {.res1 = 1, .resN = 75, .chainNameList = "A", .resIDMode = 1, .chainNameMode = 1, .selectMode = -1},
     8},
    {"an empty list matches nobody", {.resN = 76, .atomNameList = "", .selectMode = 2}, 0},
    {"a pattern that cannot be compiled",
     {.resN = 76, .atomNameList = "a** CA", .atomNameMode = 2, .selectMode = 2},
     76},
};

TEST(Select, MarksByTheCriteria)
{
    PDBInfo pdb = readUbiquitin();
    for (const SelectCase &choice : cases) {
        pdbClearSelection(&pdb);
        PDBSelectInfo sInfo = choice.sInfo;
        EXPECT_EQ(pdbSelect(&pdb, &sInfo), choice.marked) << choice.why;
    }
}

TEST(Select, SelectingOnlyAddsMarks)
{
    PDBInfo pdb = readUbiquitin();
    pdbSetSelection(&pdb, 1);
    pdbSelect1(&pdb, 1, 76, "[1-3]H* H*", 0, matchGlob);
    int marked = 0;
    for (const AtomInfo &atom : pdb.atoms())
        marked += atom.selected;
    EXPECT_EQ(marked, 602);
}

TEST(Select, TheTestAsksTheClassInEveryMode)
{
    AtomInfo atom;
    PDBSelectInfo sInfo;
    for (const char *other : {"HOH", "ADE"}) { // a nucleotide is no amino acid
        pdbStrCpy(atom.resName, other);
        for (const int mode : {-1, 0, 1, 2}) {
            sInfo.selectClass = 4;
            sInfo.selectMode = mode;
            EXPECT_EQ(pdbSelectTest(&sInfo, &atom), 0) << other << " " << mode;
        }
    }
    pdbStrCpy(atom.resName, "lys");
    sInfo.selectMode = 1;
    EXPECT_EQ(pdbSelectTest(&sInfo, &atom), 1);
}

TEST(Select, TheRoadIsToldOnRequest)
{
    PDBInfo pdb = readUbiquitin();
    PDBSelectInfo simple = {.resN = 76, .selectMode = 2, .dbgFlag = 1};
    EXPECT_EQ(said([&] { pdbSelect(&pdb, &simple); }).err, "GORVAT Info: Simple Selection.\n");
    PDBSelectInfo complex = {.resNameList = "LYS",
                             .atomNameList = "C?",
                             .chainNameList = "A",
                             .resNameMode = 2,
                             .atomNameMode = 3,
                             .chainNameMode = 1,
                             .selectMode = 2,
                             .dbgFlag = 1};
    EXPECT_EQ(said([&] { pdbSelect(&pdb, &complex); }).err,
              "GORVAT Info: Complex Selection Atom 3 Res 2 Seg 1 Chain 0\n");
}

TEST(Select, FaultyExpressionsAreTold)
{
    PDBSelectInfo sInfo = {
        .resNameList = "(L", .atomNameList = "CA a**", .resNameMode = 1, .atomNameMode = 2};
    EXPECT_EQ(pdbSelectCheck(sInfo), 0); // all atoms are taken, nothing is matched
    sInfo.selectMode = 2;
    EXPECT_EQ(said([&] { EXPECT_EQ(pdbSelectCheck(sInfo), 1); }).err,
              "PDB Warning: the regular expression a** is faulty and selects nothing: nested *?+.\n");
}

} // namespace
} // namespace trelm
