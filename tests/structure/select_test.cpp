// Selections: which atoms get a mark.
#include "structure/select.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace trelm {
namespace {

const std::string ubiquitin = TRELM_EXAMPLES "/ubiquitin/1d3z_model1.pdb";

/// What a case changes in the defaults.
struct SelectCase {
    const char *why;
    int selectMode, resIDMode, res1, resN;
    const char *atoms;
    int atomMode;
    const char *residues;
    int residueMode, chainMode;
    int marked;
};

constexpr int largest = 2147483647;

// Ubiquitin: 1231 atoms, 602 of them heavy, 7 lysines, residues 1 to 76.
constexpr SelectCase cases[] = {
    {"the defaults take all", 1, 0, 0, 0, "*", 1, "*", 0, 0, 1231},
    {"clear marks nobody, and tells how many", 0, 0, 0, 0, "*", 1, "*", 0, 0, 1231},
    {"two names, case counts", 2, 0, 0, 76, "CA N ca", 1, "*", 0, 0, 152},
    {"a star switches the test off", 2, 1, 76, 76, "*", 1, "*", 0, 0, 8},
    {"a range the wrong way round", 2, 1, 3, 2, "CA", 1, "*", 0, 0, 2},
    {"a range beyond the molecule ends", 2, 1, 75, largest, "CA", 1, "*", 0, 0, 2},
    {"heavy atoms by glob", 2, 0, 0, 76, "[CNOS]*", 3, "*", 0, 0, 602},
    {"residue names without a match mode", 2, 0, 0, 76, "CA", 1, "LYS", 0, 0, 76},
    {"residue names with a match mode", 2, 0, 0, 76, "CA", 1, "LYS", 1, 0, 7},
    {"a chain test takes the road over all atoms", 2, 0, 0, 0, "CA", 1, "*", 0, 1, 0},
    {"inverted without a test misses all", -1, 0, 0, 76, "*", 1, "*", 0, 0, 0},
    {"inverted takes what fails", -1, 0, 0, 76, "CA", 1, "*", 0, 0, 1155},
    {"an empty list matches nobody", 2, 0, 0, 76, "", 1, "*", 0, 0, 0},
    {"a pattern that cannot be compiled", 2, 0, 0, 76, "a**", 2, "*", 0, 0, 0},
};

TEST(Select, MarksByTheCriteria)
{
    PDBInfo pdb;
    ASSERT_EQ(readPDB(ubiquitin, &pdb, nullptr), 0);
    for (const SelectCase &choice : cases) {
        pdbClearSelection(&pdb);
        PDBSelectInfo sInfo;
        sInfo.selectMode = choice.selectMode;
        sInfo.resIDMode = choice.resIDMode;
        sInfo.res1 = choice.res1;
        sInfo.resN = choice.resN;
        sInfo.atomNameList = choice.atoms;
        sInfo.atomNameMode = choice.atomMode;
        sInfo.resNameList = choice.residues;
        sInfo.resNameMode = choice.residueMode;
        sInfo.chainNameList = "B";
        sInfo.chainNameMode = choice.chainMode;
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
    for (const char *other : {"HOH", "ADE"}) { // in no list of residues, and in it as a nucleotide
        pdbStrCpy(atom.resName, other);
        for (const int mode : {-1, 0, 1, 2}) {
            PDBSelectInfo sInfo;
            sInfo.selectClass = 4;
            sInfo.selectMode = mode;
            EXPECT_EQ(pdbSelectTest(&sInfo, &atom), 0) << other << " " << mode;
        }
    }
    pdbStrCpy(atom.resName, "lys");
    PDBSelectInfo sInfo;
    sInfo.selectClass = 4;
    EXPECT_EQ(pdbSelectTest(&sInfo, &atom), 1);
}

} // namespace
} // namespace trelm
