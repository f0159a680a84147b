#include "couplings/dipolar.h"
#include "couplings/interaction.h"
#include "couplings/window.h"

#include "common/heard.h"
#include "common/said.h"
#include "common/temp_file.h"
#include "couplings/prepared.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <climits>
#include <cmath>

namespace trelm {
namespace {

using ::testing::HasSubstr;

const std::string head = "VARS RESID_I ATOMNAME_I RESID_J ATOMNAME_J D DD\nFORMAT %d %s %d %s %f %f\n";

/// Reads a table from its text; `err` gets what was said.
int readText(const std::string &text, DTable &table, std::string &err)
{
    int status = 0;
    err =
        said([&] { status = static_cast<int>(readDC(TempFile(text).name, table, standardMessages())); }).err;
    return status;
}

TEST(FindVariableDI, TakesTheDistanceThatThePairAndTheOptionSay)
{
    struct {
        const char *why;
        int resI;
        const char *atomI;
        int resJ;
        const char *atomJ;
        int allowFixed;
        float rIJ; ///< expected distance; the one handed in is 2.0
        int fixedFlag;
    } constexpr rows[] = {
        {"proton first", 7, "H", 7, "N", 1, 1.041f, 1},
        {"nitrogen first, old name", 7, "N", 7, "HN", 1, 1.041f, 1},
        {"nitrogen first, new name", 7, "N", 7, "H", 1, 2.0f, 0},
        {"option off", 7, "H", 7, "N", 0, 2.0f, 0},
        {"other residue", 7, "H", 8, "N", 1, 2.0f, 0},
        {"second alpha proton", 7, "CA", 7, "HA2", 1, 1.107f, 1},
        {"third one has no value", 7, "CA", 7, "HA3", 1, 2.0f, 0},
        {"across the peptide bond", 5, "H", 4, "C", 1, 2.085f, 1},
        {"carbonyl first", 4, "C", 5, "HN", 1, 2.085f, 1},
        {"the wrong way round", 4, "HN", 5, "C", 1, 2.0f, 0},
        {"peptide bond", 5, "N", 4, "C", 1, 1.329f, 1},
        {"numbers at the limits do not wrap", INT_MIN, "C", INT_MAX, "N", 1, 2.0f, 0},
    };
    const auto ratio = [](char letter) {
        return letter == 'H' ? 2.675198e8 : letter == 'N' ? -2.7116e7 : 6.7283e7;
    };
    for (const auto &row : rows) {
        const Interaction found = findVariableDI(2.0f, {row.resI, row.atomI}, {row.resJ, row.atomJ},
                                                 row.allowFixed, standardMessages());
        EXPECT_TRUE(found.isKnown);
        const double r = row.rIJ;
        const double expected = ratio(row.atomI[0]) * ratio(row.atomJ[0]) * 3.356809e-12 / (r * r * r);
        EXPECT_NEAR(found.di, expected, 1.0e-6 * std::fabs(expected)) << row.why;
        EXPECT_EQ(found.isFixed, row.fixedFlag != 0) << row.why;
    }
}

TEST(FindVariableDI, TellsOfAnAtomItDoesNotKnow)
{
    struct {
        const char *atom;
        bool isKnown;
    } constexpr rows[] = {{"1HB", true}, {"2D", true}, {"ZN", false},
                          {"ca", false}, {"", false},  {"1", false}};
    for (const auto &row : rows) {
        Heard heard;
        const Interaction found = findVariableDI(1.0f, {1, row.atom}, {1, "C"}, 1, heard.messages);
        EXPECT_EQ(found.isKnown, row.isKnown) << row.atom;
        EXPECT_EQ(heard.err.empty(), row.isKnown) << row.atom;
        EXPECT_TRUE(std::isfinite(found.di));
    }
}

TEST(ReadDC, LeavesTheTableAloneWithoutAFile)
{
    DTable table;
    table.dMinRes = 3;
    EXPECT_EQ(readDC("", table, standardMessages()), Status::ok);
    EXPECT_EQ(readDC("nOnE", table, standardMessages()), Status::ok);
    EXPECT_EQ(table.dCount, 0);
    EXPECT_EQ(table.dMinRes, 3);
}

TEST(ReadDC, FillsRowsFromColumnsAndDefaults)
{
    DTable table;
    std::string err;
    const std::string text =
        "VARS RESID_I ATOMNAME_I RESID_J ATOMNAME_J CHAINNAME_J D DI INDEX\n"
        "FORMAT %d %s %d %s %s %f %f %d\nNULLVALUE -999\n"
        "5 H 5 N none 1.5 7.0 12\n 6 HB# 9 N {} -999 7.0 13\n 7 HB* 7 HG* A 900.0 7.0 14\n";
    ASSERT_EQ(readText(text, table, err), 0) << err;
    ASSERT_EQ(table.dCount, 3);
    const auto rows = table.observed();
    EXPECT_NEAR(rows[0].di, -21585.196f, 0.01f); // the column does not count for a pair of fixed distance
    EXPECT_EQ(rows[0].diFixedFlag, 1);
    EXPECT_EQ(rows[1].di, 7.0f);
    EXPECT_EQ(rows[1].d, noCoupling);
    EXPECT_EQ(rows[1].id, 13);
    EXPECT_EQ(rows[1].sigma, 1.0f);
    EXPECT_EQ(rows[1].w, 1.0f);
    EXPECT_TRUE(rows[0].names->chainNameJ.empty());
    EXPECT_EQ(table.nullChainName, 0); // for the sake of the last row
    EXPECT_EQ(table.nullSegName, 1);
    EXPECT_EQ(table.dMinRes, 5);
    EXPECT_EQ(table.dMaxRes, 9);
    EXPECT_EQ(table.maxCount, 1 + 9 + 81);
    EXPECT_EQ(selectD(rows, -100, 100, bothInside), 2); // the row without a value is never valid, 900.0 is
    EXPECT_EQ(rows[1].valid, 0);
}

TEST(ReadDC, RefusesWhatIsNoTableOfNumbers)
{
    struct {
        const char *why;
        std::string text;
        const char *message;
    } const rows[] = {
        {"no number", head + "5 H 5 N 1 1\n6 H 6 N nan 1\n", "D is no finite number in row 2 of"},
        {"infinite", head + "5 H 5 N 1e60 1\n", "D is no finite number in row 1 of"},
        {"infinite error", head + "5 H 5 N 1 inf\n", "DD is no finite number in row 1 of"},
        {"negative error", head + "5 H 5 N 1 1\n5 H 5 N 1 -0.5\n", "DD is negative (-0.5) in row 2 of"},
        {"text column", "VARS RESID_I D\nFORMAT %d %s\n5 1.5\n", "column D of"},
        {"no rows", head, "RdTable Error: no entries in"},
        {"last atom unknown", head + "5 H 5 N 1 1\n5 H 5 ZN 1 1\n",
         "Dipolar Interaction - Unknown atom ZN.\n"},
    };
    for (const auto &row : rows) {
        DTable table;
        std::string err;
        EXPECT_NE(readText(row.text, table, err), 0) << row.why;
        EXPECT_THAT(err, HasSubstr(row.message)) << row.why;
    }
    DTable table;
    std::string err; // an unknown atom in any other row is told, and the run goes on
    EXPECT_EQ(readText(head + "5 H 5 ZN 1 1\n5 H 5 N 1 1\n", table, err), 0);
    EXPECT_EQ(err, "Dipolar Interaction - Unknown atom ZN.\n");
}

TEST(SelectD, KeepsRowsByTheWindow)
{
    struct {
        WindowKind mode;
        std::array<int, 5> valid;
    } constexpr rows[] = {
        {bothInside, {1, 0, 0, 0, 0}}, {oneInside, {1, 1, 1, 0, 0}}, {largerInside, {1, 1, 0, 0, 0}}};
    for (const auto &row : rows) {
        std::array<DInfo, 5> list;
        constexpr int residues[5][2] = {{5, 6}, {6, 4}, {10, 9}, {4, 11}, {5, 6}};
        for (std::size_t i = 0; i < 5; ++i) {
            list[i].resIDI = residues[i][0];
            list[i].resIDJ = residues[i][1];
            list[i].d = i == 4 ? 900.1f : 900.0f;
        }
        EXPECT_EQ(selectD(list, 5, 9, row.mode), std::ranges::count(row.valid, 1));
        for (std::size_t i = 0; i < 5; ++i)
            EXPECT_EQ(list[i].valid, row.valid[i]) << "mode " << row.mode << " row " << i;
    }
}

TEST(SelTypDC, ComparesNamesByPositionAndNeverRevives)
{
    struct {
        const char *atomI, *atomJ;
        int count;
    } constexpr rows[] = {{"All", "All", 1}, {"All", "N", 1}, {"N", "H", 0}, {"all", "N", 0}, {"H", "N", 1}};
    for (const auto &row : rows) {
        const RowNames names = {.atomNameI = Name::of("H"), .atomNameJ = Name::of("N")};
        std::array<DInfo, 2> list;
        for (DInfo &d : list)
            d.names = &names;
        list[0].valid = 1;
        EXPECT_EQ(selTypDC(list, row.atomI, row.atomJ), row.count) << row.atomI << ' ' << row.atomJ;
        EXPECT_EQ(list[1].valid, 0);
    }
}

/// A table with these rows on a structure.
struct Built : Prepared {
    explicit Built(const std::string &rows) : Prepared(TempFile(head + rows).name) {}
    Built(const std::string &rows, const std::string &atoms)
        : Prepared(TempFile(head + rows).name, 0, nullptr, TempFile(atoms).name)
    {
    }
};

TEST(BuildDC, TakesTheDistanceOfTheStructureWhereNoneIsFixed)
{
    Built b("5 N 5 H 1 1\n5 H 5 N 1 1\n");
    EXPECT_EQ(buildDC(b.pdb, b.table, {}, standardMessages()), 2);
    const DCalc &row = b.table.calculated()[0];
    const Coord3D &i = b.pdb.coordinates()[row.atomI[0]], &j = b.pdb.coordinates()[row.atomJ[0]];
    const double r = std::hypot(i.x - j.x, i.y - j.y, i.z - j.z);
    const double ratio = std::pow(1.041 / r, 3.0);
    EXPECT_NEAR(row.di, -21585.196 * ratio, 0.05);
    EXPECT_NEAR(r, 0.98, 0.01);
    EXPECT_EQ(b.table.observed()[0].di, b.table.calculated()[0].di);
    EXPECT_NEAR(b.table.calculated()[1].di, -21585.196, 0.01);
    EXPECT_EQ(b.table.observed()[1].diFixedFlag, 1);
    EXPECT_EQ(buildDC(b.pdb, b.table, {.allowFixedDI = 0}, standardMessages()), 2);
    EXPECT_NEAR(b.table.calculated()[1].di, -21585.196 * ratio, 0.05);
    EXPECT_EQ(b.table.observed()[1].diFixedFlag, 0);
}

TEST(BuildDC, AppliesOffsetAndWeightsByResidue)
{
    Built b("15 H 15 N 1 2\n16 H 16 N 1 2\n17 H 16 C 1 2\n900 H 900 N 1 2\n");
    const std::array<float, 2> weights = {0.0f, -4.0f}; // residues 16 and 17 of the table
    EXPECT_EQ(buildDC(b.pdb, b.table, {.aOff = -10, .wOff = 16, .wList = weights}, standardMessages()), 2);
    const auto rows = b.table.calculated();
    EXPECT_EQ(rows[0].w, 1.0f);
    EXPECT_EQ(rows[0].resIDI, 5);
    EXPECT_EQ(rows[1].valid, 0);
    EXPECT_EQ(rows[1].w, 0.0f);
    EXPECT_EQ(rows[1].sigma, 9999.0f);
    EXPECT_EQ(rows[2].w, 2.0f);
    EXPECT_EQ(rows[2].sigma, 0.5f);
    EXPECT_EQ(rows[3].valid, 0);
    EXPECT_EQ(b.table.observed()[3].valid, 1);
}

TEST(BuildDC, KeepsResidueNumbersInRange)
{
    Built b("99999999999 C 1 N 1 1\n-99999999999 C 2147483647 N 1 1\n");
    EXPECT_EQ(buildDC(b.pdb, b.table, {.aOff = INT_MAX}, standardMessages()), 0);
    EXPECT_EQ(buildDC(b.pdb, b.table, {.aOff = INT_MIN}, standardMessages()), 0);
}

TEST(BuildDC, TellsOnceAndDropsARowWithMoreAtomsThanItHolds)
{
    std::string atoms;
    for (const char *name :
         {"N   ", "HD  ", "HD1 ", "HD2 ", "HD3 ", "HE1 ", "HE2 ", "HD11", "HD12", "HD13"}) {
        const char place = static_cast<char>('0' + atoms.size() / 55);
        atoms += std::string("ATOM     99 ") + name + " LEU A   1       1.00" + place + "   2.000   3.000\n";
    }
    const Said told = said([&] {
        Built b("1 HD* 1 N 1 1\n1 HE* 1 N 1 1\n", atoms);
        EXPECT_EQ(b.valid, 1);
        EXPECT_EQ(buildDC(b.pdb, b.table, {}, standardMessages()), 1);
        EXPECT_EQ(b.table.calculated()[0].valid, 0);
        EXPECT_EQ(b.table.calculated()[1].atomI.count, 4U);
    });
    EXPECT_EQ(told.err, "DC Error: HD* of residue 1 resolves to 10 atoms, the limit is 9.\n");
}

} // namespace
} // namespace trelm
