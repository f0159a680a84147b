// Reading, indexing, look-ups.
#include "structure/pdb.h"
#include "structure/write.h"

#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <unistd.h>

namespace trelm {
namespace {

const std::string ubiquitin = TRELM_EXAMPLES "/ubiquitin/1d3z_model1.pdb";

/// A file that goes away with this record.
struct TempFile {
    explicit TempFile(const std::string &text)
        : name(std::filesystem::temp_directory_path() /
               ("trelm_pdb_" + std::to_string(::getpid()) + "_" + std::to_string(++count)))
    {
        std::ofstream(name) << text;
    }
    ~TempFile() { std::filesystem::remove(name); }
    std::filesystem::path name;
    static inline int count = 0;
};

std::string atomLine(const char *name, int resID, char chain = 'A', const char *seg = "", char icode = ' ')
{
    char line[100];
    std::snprintf(line, sizeof line, "ATOM  %5d %-4s LYS %c%4d%c   %8.3f%8.3f%8.3f  1.00  0.00      %-4s\n",
                  7, name, chain, resID, icode, 1.0, 2.0, 3.0, seg);
    return line;
}

/// Reads a text. The messages of the reader go to `said`.
int readLines(const std::string &text, PDBInfo &pdbInfo, std::string *said = nullptr)
{
    const TempFile file(text);
    testing::internal::CaptureStderr();
    const int status = readPDB(file.name, &pdbInfo, nullptr);
    const std::string messages = testing::internal::GetCapturedStderr();
    if (said != nullptr)
        *said = messages;
    return status;
}

TEST(Pdb, ReadsUbiquitin)
{
    PDBInfo pdb;
    ASSERT_EQ(readPDB(ubiquitin, &pdb, nullptr), 0);
    EXPECT_EQ(pdb.atomCount, 1231);
    EXPECT_EQ(pdb.resCount, 76);
    EXPECT_EQ(pdb.chainCount, 1);
    EXPECT_EQ(pdb.segCount, 1);
    EXPECT_EQ(pdb.minResID, 1);
    EXPECT_EQ(pdb.maxResID, 76);
    const AtomInfo *sd = findAtom(&pdb, 1, "SD", "A", "");
    ASSERT_NE(sd, nullptr);
    EXPECT_EQ(sd->atomID, 7);
    EXPECT_FLOAT_EQ(sd->x, 53.355f);
    EXPECT_FLOAT_EQ(sd->tempFactor, 17.17f);
    EXPECT_EQ(sd->element.view(), "S");
    EXPECT_EQ(sd->resInfo->resType->resLetter, 'M');
}

TEST(Pdb, EveryIndexAgreesWithTheAtoms)
{
    PDBInfo pdb;
    ASSERT_EQ(readPDB(ubiquitin, &pdb, nullptr), 0);
    int atoms = 0;
    for (ResInfo &residue : pdb.residues()) {
        EXPECT_EQ(findRes(&pdb, residue.resID, "A", ""), &residue);
        EXPECT_EQ(residue.chainInfo->resArray[static_cast<std::size_t>(residue.resID - 1)], &residue);
        EXPECT_EQ(residue.prev, residue.resID > 1 ? findRes(&pdb, residue.resID - 1, "A", "") : nullptr);
        EXPECT_EQ(residue.next, residue.resID < 76 ? findRes(&pdb, residue.resID + 1, "A", "") : nullptr);
        for (int i = 0; i < residue.atomCount; ++i) {
            const AtomInfo *atom = residue.atomList[static_cast<std::size_t>(i)];
            EXPECT_EQ(atom->resInfo, &residue);
            EXPECT_EQ(findAtom(&pdb, residue.resID, atom->atomName.view(), "A", ""), atom);
        }
        atoms += residue.atomCount;
    }
    EXPECT_EQ(atoms, pdb.atomCount);
    EXPECT_EQ(pdb.chainList[0].atomCount, pdb.atomCount);
    EXPECT_EQ(pdb.segList[0].resCount, pdb.resCount);
}

struct LineCase {
    const char *why;
    std::string text;
    int atoms, residues;
};

TEST(Pdb, WhichLinesAreAtoms)
{
    const std::vector<LineCase> cases = {
        {"nothing", "", 0, 0},
        {"other records", "HEADER\nTER\nENDMDL\n\nHETATM    1  N   LYS A   1      52.9  -90.0  8.5\n", 0, 0},
        {"lower case", "atom      1  N   LYS A   1 \n", 1, 1},
        {"a word that has grown", "ATOM123456  N   LYS A   1\n", 0, 0},
        {"no newline at the end", "ATOM      1  N   LYS A   1", 1, 1},
        {"two chains in a segment", atomLine("N", 1, 'A') + atomLine("N", 1, 'B'), 2, 2},
        {"two segments in a chain", atomLine("N", 1, 'A', "X") + atomLine("N", 1, 'A', "Y"), 2, 2},
        {"an insertion code is no residue of its own", atomLine("N", 52) + atomLine("CA", 52, 'A', "", 'A'),
         2, 1},
        {"reading goes on behind END", atomLine("N", 1) + "END\n" + atomLine("N", 2), 2, 2},
    };
    for (const LineCase &line : cases) {
        PDBInfo pdb;
        EXPECT_EQ(readLines(line.text, pdb), 0) << line.why;
        EXPECT_EQ(pdb.atomCount, line.atoms) << line.why;
        EXPECT_EQ(pdb.resCount, line.residues) << line.why;
        EXPECT_EQ(pdb.chainCount, pdb.segCount) << line.why;
    }
}

TEST(Pdb, ColumnsDropBlanksWhereverTheyStand)
{
    PDBInfo pdb;
    ASSERT_EQ(readLines("ATOM      1 C A  LYS A   1 \nATOM      2 H 1  LYS A  -5 \n", pdb), 0);
    EXPECT_EQ(pdb.atomList[0].atomName.view(), "CA");
    EXPECT_EQ(pdb.atomList[1].atomName.view(), "H1");
    EXPECT_EQ(pdb.minResID, -5);
    EXPECT_EQ(pdb.chainList[0].resArray.length(), 7u);
    EXPECT_EQ(pdb.atomList[0].x, 0.0f);
}

TEST(Pdb, EveryColumnIsReadWhereNoBlankPartsThem)
{
    const std::string line =
        "ATOM  12345?HG11LVALXC1234I???1234.5672345.6783456.789123.45234.56??????SEGWFE2+";
    for (std::size_t cut = 4; cut < line.size(); ++cut) { // a line may end anywhere
        PDBInfo pdb;
        ASSERT_EQ(readLines(line.substr(0, cut), pdb), 0) << cut;
        ASSERT_EQ(pdb.atomCount, 1) << cut;
    }
    PDBInfo pdb;
    ASSERT_EQ(readLines(line, pdb), 0);
    const AtomInfo &atom = pdb.atomList[0];
    EXPECT_EQ(atom.atomID, 12345);
    EXPECT_EQ(atom.resID, 1234);
    std::string names;
    for (const Name &name : {atom.atomName, atom.locID, atom.resName, atom.chainID, atom.icode, atom.segID,
                             atom.element, atom.chargeStr})
        names.append(name.view()).append(" ");
    EXPECT_EQ(names, "HG11 L VALX C I SEGW FE 2+ ");
    const std::array<float, 5> numbers = {atom.x, atom.y, atom.z, atom.occupancy, atom.tempFactor};
    EXPECT_EQ(numbers, (std::array<float, 5>{1234.567f, 2345.678f, 3456.789f, 123.45f, 234.56f}));
}

TEST(Pdb, ASecondModelStaysAsExtraAtoms)
{
    PDBInfo pdb;
    std::string said;
    ASSERT_EQ(readLines(atomLine("N", 1) + "ENDMDL\n" + atomLine("N", 1), pdb, &said), 0);
    EXPECT_EQ(pdb.atomCount, 2);
    EXPECT_EQ(pdb.resList[0].atomCount, 2);
    EXPECT_EQ(findAtom(&pdb, 1, "N", "A", ""), &pdb.atomList[0]);
    EXPECT_EQ(said, "PDB Warning: Redundant Atom Specification.\n"
                    " ResID: 1 AtomName: N Chain: A Segment: \n");
}

TEST(Pdb, CoordinatesThatAreNoNumbersFail)
{
    PDBInfo pdb;
    std::string said;
    EXPECT_EQ(readLines("ATOM      1  N   LYS A   1         nan   2.000   3.000\n", pdb, &said), 1);
    EXPECT_NE(said.find("atom 1"), std::string::npos);
}

TEST(Pdb, LookUpsNeverFindAnInsertionCode)
{
    PDBInfo pdb;
    ASSERT_EQ(readLines(atomLine("N", 52, 'A', "", 'A') + atomLine("CA", 52), pdb), 0);
    EXPECT_EQ(findAtom(&pdb, 52, "N", "A", ""), nullptr);
    EXPECT_NE(findAtom(&pdb, 52, "CA", "A", ""), nullptr);
    EXPECT_EQ(pdb.resList[0].atomCount, 2);
}

struct WildCase {
    const char *name;
    std::vector<std::string> found;
    int kind;
    const char *format;
};

TEST(Pdb, WildcardsFindInTheirOrder)
{
    PDBInfo pdb;
    std::string text;
    for (const char *name : {"HB1", "HB2", "HG11", "HG12", "HG21", "CB"})
        text += atomLine(name, 3);
    ASSERT_EQ(readLines(text, pdb), 0);
    const std::vector<WildCase> cases = {
        {"CB", {"CB"}, 0, "CB"},
        {"HB#", {"HB1", "HB2"}, 1, "HB%d"},
        {"HB*", {"HB1", "HB2", "HB1", "HB2"}, 2, "HB%s%s"},
        {"HG*", {"HG11", "HG12", "HG21"}, 2, "HG%s%s"},
        {"QX#", {}, 1, "QX%d"},
    };
    for (const WildCase &wild : cases) {
        std::array<AtomInfo *, maxWildAtoms> list{};
        const int count = findAtomList(&pdb, 3, wild.name, "A", "", list);
        ASSERT_EQ(static_cast<std::size_t>(count), wild.found.size()) << wild.name;
        for (std::size_t i = 0; i < wild.found.size(); ++i)
            EXPECT_EQ(list[i]->atomName.view(), wild.found[i]) << wild.name;
        std::string format;
        EXPECT_EQ(isAtomExpr(wild.name, format), wild.kind);
        EXPECT_EQ(format, wild.format);
    }
}

TEST(Pdb, NamesFromTables)
{
    for (const auto &[text, left] : std::vector<std::pair<const char *, const char *>>{
             {"{}", ""}, {"NONE", ""}, {"(null)", ""}, {"", ""}, {"None1", "None1"}, {"CA", "CA"}}) {
        Name name;
        pdbStrCpy(name, text);
        fixChainName(name);
        EXPECT_EQ(name.view(), left);
    }
}

TEST(Write, WhatIsWrittenIsReadBack)
{
    PDBInfo pdb;
    ASSERT_EQ(readPDB(ubiquitin, &pdb, nullptr), 0);
    const TempFile file("");
    ASSERT_EQ(writePDB(file.name, &pdb, nullptr, "a remark"), 0);
    PDBInfo again;
    ASSERT_EQ(readPDB(file.name, &again, nullptr), 0);
    ASSERT_EQ(again.atomCount, pdb.atomCount);
    for (std::size_t i = 0; i < 1231; ++i) {
        const AtomInfo &a = pdb.atomList[i], &b = again.atomList[i];
        EXPECT_EQ(a.atomName, b.atomName);
        EXPECT_EQ(a.element, b.element);
        EXPECT_EQ(a.x, b.x);
        EXPECT_EQ(a.resID, b.resID);
    }
}

TEST(Write, NamesOfFourLettersStartAColumnEarlier)
{
    PDBInfo pdb;
    ASSERT_EQ(readLines(atomLine("HG11", 3) + atomLine("CB", 3), pdb), 0);
    const TempFile file("");
    ASSERT_EQ(writePDB(file.name, &pdb, nullptr, nullptr), 0);
    std::ifstream in(file.name);
    std::string first, second, third;
    std::getline(in, first);
    std::getline(in, second);
    std::getline(in, third);
    EXPECT_EQ(first, "ATOM      7 HG11 LYS A   3       1.000   2.000   3.000  1.00  0.00              ");
    EXPECT_EQ(second, "ATOM      7  CB  LYS A   3       1.000   2.000   3.000  1.00  0.00              ");
    EXPECT_EQ(third, "END");
}

TEST(Write, RotatedFilesLeaveTheMoleculeAsItWas)
{
    PDBInfo pdb;
    ASSERT_EQ(readPDB(ubiquitin, &pdb, nullptr), 0);
    const std::array<double, 4> a = {10, 20, 30, 40}, b = {50, 60, 70, 80}, c = {15, 25, 35, 45};
    const float before = pdb.atomList[100].x;
    const TempFile file("");
    EXPECT_EQ(writePDBRot(a, b, c, 7, &pdb, nullptr, file.name, nullptr), 0);
    EXPECT_EQ(pdb.atomList[100].x, before);
    for (const char *end : {".0", ".1", ".2", ".3"})
        EXPECT_TRUE(std::filesystem::remove(file.name.string() + end)) << end;
}

TEST(Write, ANumberedFileMayBeRefusedButNotBeCut)
{
    namespace fs = std::filesystem;
    PDBInfo pdb;
    ASSERT_EQ(readPDB(ubiquitin, &pdb, nullptr), 0);
    const std::array<double, 4> angles = {10, 20, 30, 40};
    const float before = pdb.atomList[100].x;
    for (const bool cut : {false, true}) {
        const TempFile file("");
        const std::string name = file.name, second = name + ".1";
        if (cut)
            fs::create_symlink("/dev/full", second);
        else
            fs::create_directory(second);
        testing::internal::CaptureStderr();
        EXPECT_EQ(writePDBRot(angles, angles, angles, 7, &pdb, nullptr, name, nullptr), cut ? 1 : 0);
        EXPECT_EQ(testing::internal::GetCapturedStderr(),
                  cut ? "Error writing " + second + ".\n" : "PDB Error opening PDB file " + second + "\n");
        EXPECT_EQ(pdb.atomList[100].x, before);
        for (const char *end : {".0", ".1", ".2", ".3"}) // the solutions behind it are written all the same
            EXPECT_TRUE(fs::remove(name + end)) << end;
    }
}

} // namespace
} // namespace trelm
