// Selections: which atoms get a mark.
#include "structure/select.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace trelm {
namespace {

const std::string ubiquitin = TRELM_EXAMPLES "/ubiquitin/1d3z_model1.pdb";

struct SelectCase {
    const char *why;
    void (*change)(PDBSelectInfo &s);
    int marked;
};

// Ubiquitin: 1231 atoms, 602 of them heavy, 76 residues, 7 lysines, residues 1 to 76.
constexpr SelectCase cases[] = {
    {"the defaults take all", [](PDBSelectInfo &) {}, 1231},
    {"clear marks nobody, and tells how many", [](PDBSelectInfo &s) { s.selectMode = 0; }, 1231},
    {"two names, case counts",
     [](PDBSelectInfo &s) {
         s.selectMode = 2;
         s.resN = 76;
         s.atomNameList = "CA N ca";
     },
     152},
    {"a star switches the test off",
     [](PDBSelectInfo &s) {
         s.selectMode = 2;
         s.resIDMode = 1;
         s.res1 = 76;
         s.resN = 76;
     },
     8},
    {"a range the wrong way round",
     [](PDBSelectInfo &s) {
         s.selectMode = 2;
         s.resIDMode = 1;
         s.res1 = 3;
         s.resN = 2;
         s.atomNameList = "CA";
     },
     2},
    {"a range beyond the molecule ends",
     [](PDBSelectInfo &s) {
         s.selectMode = 2;
         s.resIDMode = 1;
         s.res1 = 75;
         s.resN = 2147483647;
         s.atomNameList = "CA";
     },
     2},
    {"heavy atoms by glob",
     [](PDBSelectInfo &s) {
         s.selectMode = 2;
         s.resN = 76;
         s.atomNameMode = 3;
         s.atomNameList = "[CNOS]*";
     },
     602},
    {"residue names only with a match mode",
     [](PDBSelectInfo &s) {
         s.selectMode = 2;
         s.resN = 76;
         s.resNameList = "LYS";
         s.atomNameList = "CA";
     },
     76},
    {"residue names with a match mode",
     [](PDBSelectInfo &s) {
         s.selectMode = 2;
         s.resN = 76;
         s.resNameList = "LYS";
         s.resNameMode = 1;
         s.atomNameList = "CA";
     },
     7},
    {"a chain test takes the road over all atoms",
     [](PDBSelectInfo &s) {
         s.selectMode = 2;
         s.chainNameList = "B";
         s.chainNameMode = 1;
     },
     0},
    {"inverted without a test misses all",
     [](PDBSelectInfo &s) {
         s.selectMode = -1;
         s.resN = 76;
     },
     0},
    {"inverted takes what fails",
     [](PDBSelectInfo &s) {
         s.selectMode = -1;
         s.resN = 76;
         s.atomNameList = "CA";
     },
     1155},
    {"an empty list matches nobody",
     [](PDBSelectInfo &s) {
         s.selectMode = 2;
         s.resN = 76;
         s.atomNameList = "";
     },
     0},
    {"a pattern that cannot be compiled selects nothing",
     [](PDBSelectInfo &s) {
         s.selectMode = 2;
         s.resN = 76;
         s.atomNameMode = 2;
         s.atomNameList = "a**";
     },
     0},
};

TEST(Select, MarksByTheCriteria)
{
    PDBInfo pdb;
    ASSERT_EQ(readPDB(ubiquitin, &pdb, nullptr), 0);
    for (const SelectCase &choice : cases) {
        pdbClearSelection(&pdb);
        PDBSelectInfo sInfo;
        choice.change(sInfo);
        EXPECT_EQ(pdbSelect(&pdb, &sInfo), choice.marked) << choice.why;
    }
}

TEST(Select, SelectingOnlyAddsMarks)
{
    PDBInfo pdb;
    ASSERT_EQ(readPDB(ubiquitin, &pdb, nullptr), 0);
    pdbSetSelection(&pdb, 1);
    pdbSelect1(&pdb, 1, 76, "[1-3]H* H*", 0, 3);
    int marked = 0;
    for (const AtomInfo &atom : pdb.atoms())
        marked += atom.selected;
    EXPECT_EQ(marked, 602);
}

TEST(Select, TheClassIsAskedInEveryMode)
{
    AtomInfo atom;
    pdbStrCpy(atom.resName, "HOH");
    for (const int mode : {-1, 0, 1, 2}) {
        PDBSelectInfo sInfo;
        sInfo.selectClass = 4;
        sInfo.selectMode = mode;
        EXPECT_EQ(pdbSelectTest(&sInfo, &atom), 0) << mode;
    }
    pdbStrCpy(atom.resName, "lys");
    PDBSelectInfo sInfo;
    sInfo.selectClass = 4;
    EXPECT_EQ(pdbSelectTest(&sInfo, &atom), 1);
}

} // namespace
} // namespace trelm
