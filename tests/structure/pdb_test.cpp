// Reading, indexing, look-ups, writing.
#include "structure/pdb.h"

#include "molecules.h"
#include "structure/select.h"
#include "structure/write.h"

#include <array>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace trelm {
namespace {

TEST(Pdb, ReadsUbiquitinAndEveryIndexAgreesWithItsAtoms)
{
    PDBInfo pdb = readUbiquitin();
    EXPECT_EQ((std::array{pdb.resCount, pdb.chainCount, pdb.segCount, pdb.minResID, pdb.maxResID}),
              (std::array{76, 1, 1, 1, 76}));
    const AtomInfo *sd = findAtom(pdb, 1, "SD", "A", "");
    ASSERT_NE(sd, nullptr);
    EXPECT_EQ(sd->atomID, 7);
    EXPECT_FLOAT_EQ(pdb.coordinates()[pdb.placeOf(*sd)].x, 53.355f);
    EXPECT_FLOAT_EQ(sd->tempFactor, 17.17f);
    EXPECT_EQ(sd->element, "S");
    int atoms = 0;
    for (const ResInfo &residue : pdb.residues()) {
        EXPECT_EQ(findRes(pdb, residue.resID, "A", ""), &residue);
        for (int i = 0; i < residue.atomCount; ++i) {
            const AtomInfo *atom = residue.atomList[static_cast<std::size_t>(i)];
            EXPECT_EQ(atom->resInfo, &residue);
            EXPECT_EQ(findAtom(pdb, residue.resID, atom->atomName.view(), "A", ""), atom);
        }
        atoms += residue.atomCount;
    }
    EXPECT_EQ(atoms, pdb.atomCount);
    EXPECT_EQ(pdb.chainList[0].atomCount, pdb.atomCount);
    EXPECT_EQ(pdb.segList[0].maxResID, 76);
}

TEST(Pdb, WhichLinesAreAtoms)
{
    const std::string hetatm = "HETATM    1  N   LYS A   1      52.9  -90.0  8.5\n";
    const struct {
        const char *why;
        std::string text;
        int atoms, residues, chains;
    } cases[] = {
        {"nothing", "", 0, 0, 0},
        {"other records", "HEADER\nTER\nENDMDL\n\n" + hetatm, 0, 0, 0},
        {"lower case", "atom      1  N   LYS A   1 \n", 1, 1, 1},
        {"a word that has grown", "ATOM123456  N   LYS A   1\n", 0, 0, 0},
        {"no newline at the end", "ATOM      1  N   LYS A   1", 1, 1, 1},
        {"two chains in a segment", atomLine("N", 1, 'A') + atomLine("N", 1, 'B'), 2, 2, 2},
        {"two segments in a chain", atomLine("N", 1, 'A', "X") + atomLine("N", 1, 'A', "Y"), 2, 2, 2},
        {"an insertion code is no residue of its own", atomLine("N", 52) + atomLine("CA", 52, 'A', "", 'A'),
         2, 1, 1},
        {"reading goes on behind END", atomLine("N", 1) + "END\n" + atomLine("N", 2), 2, 2, 1},
    };
    for (const auto &line : cases) {
        const ReadPdb read(line.text);
        EXPECT_EQ(read.status, Status::ok) << line.why;
        EXPECT_EQ((std::array{read.pdb.atomCount, read.pdb.resCount, read.pdb.chainCount, read.pdb.segCount}),
                  (std::array{line.atoms, line.residues, line.chains, line.chains}))
            << line.why;
    }
    PDBSelectInfo sInfo{.atomNameList = "N", .hetatmFlag = 1};
    sInfo.selectMode = selectMatching;
    EXPECT_EQ(ReadPdb(hetatm + atomLine("CA", 1), &sInfo).pdb.atomCount, 1);
}

// Each segment once asked for 72 kilobytes, so that a small file could take all memory.
TEST(Pdb, ManySegmentsTakeLittleMemory)
{
    constexpr int count = 5000;
    std::string text;
    for (int i = 0; i < count; ++i)
        text += atomLine("N", 1, 'A', std::to_string(i).c_str());
    const std::int64_t before = allocBytesUsed();
    const ReadPdb read(text);
    EXPECT_EQ(read.status, Status::ok) << read.messages;
    EXPECT_EQ(read.pdb.segCount, count);
    EXPECT_LT(allocBytesUsed() - before, 3000 * count);
}

TEST(Pdb, EveryColumnIsReadWhereNoBlankPartsThem)
{
    const std::string line =
        "ATOM  12345?HG11LVALXC1234I???1234.5672345.6783456.789123.45234.56??????SEGWFE2+";
    for (std::size_t cut = 4; cut < line.size(); ++cut) { // a line may end anywhere
        const ReadPdb read(line.substr(0, cut));
        EXPECT_EQ(read.status, Status::ok) << cut;
        EXPECT_EQ(read.pdb.atomCount, 1) << cut;
    }
    const ReadPdb read(line);
    const AtomInfo &atom = read.pdb.atomList[0];
    EXPECT_EQ(atom.atomID, 12345);
    EXPECT_EQ(atom.resID, 1234);
    std::string names;
    for (const Name &name : {atom.atomName, atom.locID, atom.resName, atom.chainID, atom.icode, atom.segID,
                             atom.element, atom.chargeStr})
        names.append(name.view()).append(" ");
    EXPECT_EQ(names, "HG11 L VALX C I SEGW FE 2+ ");
    const Coord3D &at = read.pdb.coordinates()[0];
    const std::array<float, 5> numbers = {at.x, at.y, at.z, atom.occupancy, atom.tempFactor};
    EXPECT_EQ(numbers, (std::array<float, 5>{1234.567f, 2345.678f, 3456.789f, 123.45f, 234.56f}));

    // Blanks are dropped wherever they stand.
    const ReadPdb blanks("ATOM      1 C A  LYS A   1 \nATOM      2 H 1  LYS A  -5 \n");
    EXPECT_EQ(blanks.pdb.atomList[0].atomName, "CA");
    EXPECT_EQ(blanks.pdb.atomList[1].atomName, "H1");
    EXPECT_EQ(blanks.pdb.minResID, -5);
    EXPECT_EQ(blanks.pdb.segList[0].minResID, -5);
}

TEST(Pdb, ASecondModelStaysAsExtraAtoms)
{
    ReadPdb read(atomLine("N", 1) + "ENDMDL\n" + atomLine("N", 1));
    EXPECT_EQ(read.pdb.atomCount, 2);
    EXPECT_EQ(read.pdb.resList[0].atomCount, 2);
    EXPECT_EQ(findAtom(read.pdb, 1, "N", "A", ""), &read.pdb.atomList[0]);
    EXPECT_EQ(read.messages, "PDB Warning: Redundant Atom Specification.\n"
                             " ResID: 1 AtomName: N Chain: A Segment: \n");
}

TEST(Pdb, CoordinatesThatAreNoNumbersFail)
{
    const ReadPdb read("ATOM      1  N   LYS A   1         nan   2.000   3.000\n");
    EXPECT_EQ(read.status, Status::failed);
    EXPECT_NE(read.messages.find("atom 1"), std::string::npos);
}

TEST(Pdb, AnInsertionCodeIsFoundByATwoLetterChainAlone)
{
    ReadPdb read(atomLine("N", 52, 'B', "", 'A') + atomLine("CA", 52, 'B'));
    EXPECT_EQ(findAtom(read.pdb, 52, "N", "B", ""), nullptr);
    EXPECT_EQ(findAtom(read.pdb, 52, "N", "AB", ""), &read.pdb.atomList[0]);
    EXPECT_NE(findAtom(read.pdb, 52, "CA", "B", ""), nullptr);
    EXPECT_EQ(read.pdb.resList[0].atomCount, 2);
}

TEST(Pdb, WildcardsFindInTheirOrder)
{
    std::string text;
    for (const char *name : {"HB1", "HB2", "HG11", "HG12", "HG21", "CB"})
        text += atomLine(name, 3);
    ReadPdb read(text);
    const struct {
        const char *name;
        const char *found;
        int kind;
        const char *format;
    } cases[] = {
        {"CB", "CB ", 0, "CB"},
        {"HB#", "HB1 HB2 ", 1, "HB%d"},
        {"HB*", "HB1 HB2 HB1 HB2 ", 2, "HB%s%s"},
        {"HG*", "HG11 HG12 HG21 ", 2, "HG%s%s"},
        {"QX#", "", 1, "QX%d"},
    };
    for (const auto &wild : cases) {
        std::array<std::size_t, maxWildAtoms> list{};
        const int count = findAtomList(read.pdb, 3, wild.name, "A", "", list);
        std::string found, format;
        for (const std::size_t place : std::span(list).first(static_cast<std::size_t>(count)))
            found.append(read.pdb.atomList[place].atomName.view()).append(" ");
        EXPECT_EQ(found, wild.found) << wild.name;
        EXPECT_EQ(isAtomExpr(wild.name, format), wild.kind);
        EXPECT_EQ(format, wild.format);
    }
}

TEST(Pdb, NamesFromTables)
{
    const struct {
        const char *text, *left;
    } cases[] = {{"{}", ""}, {"NONE", ""}, {"(null)", ""}, {"", ""}, {"None1", "None1"}, {"CA", "CA"}};
    for (const auto &[text, left] : cases) {
        Name name = Name::of(text);
        EXPECT_EQ(blankName(name), *text != '\0' && *left == '\0') << text;
        EXPECT_EQ(name, left);
    }
    Heard heard;
    EXPECT_EQ(pdbStrCpy("sixteen-letters-and-more", heard.messages), "sixteen-letters-");
    EXPECT_EQ(heard.err, "PDB Error: string item too long: and-more\n");
}

TEST(Write, WhatIsWrittenIsReadBack)
{
    PDBInfo pdb = readUbiquitin(), again;
    const TempFile file;
    ASSERT_EQ(writePDB(file.name, {pdb, nullptr, "a remark"}, pdb.coordinates(), standardMessages()),
              Status::ok);
    ASSERT_EQ(readPDB(file.name, again, nullptr, standardMessages()), Status::ok);
    ASSERT_EQ(again.atomCount, pdb.atomCount);
    for (std::size_t i = 0; i < 1231; ++i) {
        const AtomInfo &a = pdb.atomList[i], &b = again.atomList[i];
        EXPECT_EQ(a.atomName, b.atomName);
        EXPECT_EQ(a.element, b.element);
        EXPECT_EQ(pdb.coordinates()[i].x, again.coordinates()[i].x);
        EXPECT_EQ(a.resID, b.resID);
    }
}

TEST(Write, NamesOfFourLettersStartAColumnEarlier)
{
    ReadPdb read(atomLine("HG11", 3) + atomLine("CB", 3));
    const TempFile file;
    ASSERT_EQ(writePDB(file.name, {read.pdb}, read.pdb.coordinates(), standardMessages()), Status::ok);
    std::ostringstream text;
    text << std::ifstream(file.name).rdbuf();
    EXPECT_EQ(text.str(),
              "ATOM      7 HG11 LYS A   3       1.000   2.000   3.000  1.00  0.00              \n"
              "ATOM      7  CB  LYS A   3       1.000   2.000   3.000  1.00  0.00              \nEND\n");
}

TEST(Write, ANumberedFileMayBeRefusedButNotBeCut)
{
    namespace fs = std::filesystem;
    const PDBInfo pdb = readUbiquitin();
    const std::array<double, 4> angles = {10, 20, 30, 40};
    enum { whole, refused, cut };
    for (const int fault : {whole, refused, cut}) {
        const TempFile file("");
        const std::string second = file.name + ".1";
        if (fault == cut)
            fs::create_symlink("/dev/full", second);
        else if (fault == refused)
            fs::create_directory(second);
        Heard told;
        EXPECT_EQ(writePDBRot({angles, angles, angles}, 2, {pdb}, file.name, told.messages),
                  fault == cut ? Status::failed : Status::ok);
        EXPECT_EQ(told.err, fault == cut       ? "Error writing " + second + ".\n"
                            : fault == refused ? "PDB Error opening PDB file " + second + "\n"
                                               : "");
        for (const char *end : {".0", ".1", ".2", ".3"}) // the solutions behind it are written all the same
            EXPECT_TRUE(fs::remove(file.name + end)) << end;
    }
}

} // namespace
} // namespace trelm
