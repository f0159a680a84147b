#include "assignment/problem.h"

#include "assignment/assigned_rows.h"
#include "common/heard.h"
#include "common/temp_file.h"
#include "couplings/prepared.h"

#include <sstream>

namespace trelm {
namespace {

/// The lysines of ubiquitin have the numbers 6, 11, 27, 29, 33, 48, 63.
const std::string lysines = "6 H 6 N\n11 H 11 N\n27 N 27 H\n29 H 29 N\n33 H 33 N\n48 H 48 N\n63 H 63 N\n";

/// Ubiquitin, or two of them as segments A and B.
std::string structureText(bool withSegments)
{
    std::string text;
    for (const char *segment : {"A   ", "B   "}) {
        std::ifstream in(TRELM_EXAMPLES "/ubiquitin/1d3z_model1.pdb");
        for (std::string line; std::getline(in, line);) {
            line.resize(80, ' ');
            text += (withSegments ? line.replace(72, 4, segment) : line) + '\n';
        }
        if (!withSegments)
            break;
    }
    return text;
}

/// A coupling table in the words of these tests. A line: residue and atom of both sides, and a segment if the
/// table has them. The coupling of line i, from 1, is i Hz, its error i / 10, its weight i + 1.
std::string tableText(const std::string &lines)
{
    std::ostringstream text;
    text << "VARS RESID_I RESNAME_I ATOMNAME_I RESID_J RESNAME_J ATOMNAME_J SEGNAME_I SEGNAME_J D DD W\n"
            "FORMAT %d %s %s %d %s %s %s %s %f %f %f\n";
    std::istringstream in(lines);
    int i = 1;
    for (std::string line; std::getline(in, line); ++i) {
        std::istringstream words(line);
        std::string resI, atomI, resJ, atomJ, segment;
        words >> resI >> atomI >> resJ >> atomJ >> segment;
        segment = segment.empty() ? " None" : ' ' + segment.substr(1);
        text << resI << " LYS " << atomI << ' ' << resJ << " LYS " << atomJ << segment << segment << ' ' << i
             << ' ' << i / 10.0 << ' ' << i + 1 << '\n';
    }
    return text.str();
}

/// A table that a search starts from.
struct Table : Prepared {
    explicit Table(const std::string &lines, int aOff = 0)
        : Prepared(TempFile(tableText(lines)).name, aOff, nullptr,
                   TempFile(structureText(lines.find('@') != std::string::npos)).name)
    {
    }
};

const std::vector<std::string> noMedia = {""};
std::optional<TableProblem> make(Table &table, Heard &heard)
{
    return makeProblem({table.pdb, table.table, {}, noMedia}, heard.messages);
}

TEST(CouplingType, GoesByAtomNamesInEitherOrder)
{
    struct {
        const char *atomI, *atomJ;
        int type, peakId; ///< of residues 10 and 11
    } const cases[] = {
        {"N", "HN", 0, 10}, {"H", "N", 0, 10},   {"C", "N", 1, 11},   {"HN", "C", 2, 11},
        {"C", "H", 2, 11},  {"CA", "C", 3, 11},  {"HA", "CA", 4, 11}, {"CA", "CB", 5, 11},
        {"HA", "C", 6, 11}, {"CA", "HN", 7, 11}, {"H", "CA", 7, 11},  {"HA", "HN", -1, 0},
        {"n", "HN", -1, 0}, {"N", "HN1", -1, 0},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(std::string(c.atomI) + " " + c.atomJ);
        DInfo obs;
        obs.resIDI = 10;
        obs.resIDJ = 11;
        const RowNames names = {.atomNameI = Name::of(c.atomI), .atomNameJ = Name::of(c.atomJ)};
        obs.names = &names;
        EXPECT_EQ(couplingType(obs), c.type);
        if (c.type != noType) {
            EXPECT_EQ(peakIdOf(obs, c.type), c.peakId);
        }
    }
}

TEST(MakeProblem, PutsEachCouplingInItsPlace)
{
    // Residue 26 holds the CA-C coupling of peak 27; residue 30 belongs to no peak.
    Table table(lysines + "26 CA 26 C\n30 CA 30 C\n47 C 48 N\n29 C 30 N\n");
    Heard heard;
    const auto made = make(table, heard);
    ASSERT_TRUE(made.has_value()) << heard.err;
    EXPECT_EQ(heard.err,
              "Warning: no C-N coupling for peaks 6 11 27 29 33 63: they take part without it.\n"
              "Warning: no CA-C coupling for peaks 6 11 29 33 48 63: they take part without it.\n");
    const AssignmentProblem &problem = made->problem;
    const auto row = [&](std::size_t column) {
        std::vector<float> d;
        for (std::size_t k = 0; k < problem.peakCount; ++k)
            d.push_back(problem.dcMat[problem.at(k, column)]);
        return d;
    };
    const float none = noPeakCoupling;
    EXPECT_EQ(row(0), (std::vector<float>{1, 2, 3, 4, 5, 6, 7}));
    EXPECT_EQ(row(1), (std::vector<float>{none, none, none, none, none, 10, none}));
    EXPECT_EQ(row(2), (std::vector<float>{none, none, 8, none, none, none, none}));
    const std::size_t cell = problem.at(2, 2), empty = problem.at(3, 2);
    EXPECT_FLOAT_EQ(problem.sigMat[cell], 0.8f);
    EXPECT_FLOAT_EQ(problem.wMat[cell], 9.0f);
    EXPECT_NE(problem.diValMat[cell], 0.0f);
    EXPECT_EQ(problem.diValMat[empty], 0.0f);
    EXPECT_EQ(problem.wMat[empty], 0.0f);
    // Row 2 is given as N to H, row 0 as H to N: the vectors run from I to J.
    const auto at = [&](int resID, const char *name) {
        return table.pdb.coordinates()[table.pdb.placeOf(*findAtom(table.pdb, resID, name, "A", ""))];
    };
    Coord3D n = at(27, "N"), h = at(27, "H");
    EXPECT_EQ(problem.zMat[problem.at(2, 0)], h.z - n.z);
    n = at(6, "N");
    h = at(6, "H");
    EXPECT_EQ(problem.xMat[problem.at(0, 0)], n.x - h.x);
}

TEST(MakeProblem, TakesMissingVectorsFromTheStructure)
{
    // Numbers one below those of the structure: the pairs of peaks 26 and 10 are those of residues 26 and 10
    // there, the second a glycine, which has no HA.
    Table table("26 H 26 N\n28 H 28 N\n10 H 10 N\n27 HA 27 CA\n", 1);
    Heard heard;
    const ProblemInput input = {table.pdb, table.table, {}, noMedia};
    const auto made = makeProblem(input, heard.messages);
    ASSERT_TRUE(made.has_value()) << heard.err;
    const AssignmentProblem &problem = made->problem;
    const auto placeOf = [&](const char *name) {
        return table.pdb.placeOf(*findAtom(table.pdb, 26, name, "A", ""));
    };
    const Coord3D &ca = table.pdb.coordinates()[placeOf("CA")], &ha = table.pdb.coordinates()[placeOf("HA")];
    EXPECT_EQ(problem.xMat[problem.at(0, 1)], ca.x - ha.x);
    EXPECT_EQ(problem.yMat[problem.at(0, 1)], ca.y - ha.y);
    EXPECT_EQ(problem.zMat[problem.at(0, 1)], ca.z - ha.z);
    EXPECT_EQ(problem.zMat[problem.at(2, 1)], 0.0f);

    // The CA-HA coupling of peak 28 on each of the others.
    for (const std::vector<int> &best : {std::vector<int>{1, 0, 2}, {0, 2, 1}}) {
        const bool hasAtoms = best[0] == 1;
        const AssignedRows rows = applyAssignment(input, *made, best, standardMessages());
        ASSERT_EQ(rows.observed.size(), 5U);
        ASSERT_EQ(rows.calculated.size(), 5U);
        EXPECT_EQ(rows.observed[3].d, noPeakCoupling);
        const DInfo &obs = rows.observed[4];
        const DCalc &calc = rows.calculated[4];
        EXPECT_EQ(obs.id, 5);
        EXPECT_EQ(obs.resIDI, hasAtoms ? 25 : 9);
        EXPECT_EQ(obs.resIDJ, obs.resIDI);
        EXPECT_EQ(obs.names->resNameI, hasAtoms ? "VAL" : "GLY");
        EXPECT_EQ(obs.names->atomNameI, "HA");
        EXPECT_EQ((std::array{obs.d, obs.sigma, obs.w}), (std::array{4.0f, 0.4f, 5.0f}));
        EXPECT_EQ((std::array{obs.valid, calc.valid}), (std::array{1, 1}));
        EXPECT_EQ(calc.di, table.table.dCalcList[3].di);
        EXPECT_EQ(takesPart(calc), hasAtoms);
        EXPECT_TRUE(!hasAtoms || calc.atomI[0] == placeOf("HA"));
    }
    const std::vector<int> none = {-1, -1, -1}, same = {0, 1, 2};
    for (const std::vector<int> &best : {none, same})
        EXPECT_EQ(applyAssignment(input, *made, best, standardMessages()).observed.size(), 4U);
    ASSERT_EQ(takeRows(applyAssignment(input, *made, std::vector<int>{1, 0, 2}, standardMessages()),
                       table.table, standardMessages()),
              Status::ok);
    EXPECT_EQ((std::array{table.table.dCount, table.table.maxCount}), (std::array<std::size_t, 2>{5, 5}));
}

TEST(MakeProblem, KeepsFixedCouplingsByMedium)
{
    const int fixed[] = {6, 11};
    Table table("27 H 27 N\n29 H 29 N\n6 H 6 N\n11 H 11 N\n");
    Heard heard;
    auto made = makeProblem({table.pdb, table.table, fixed, noMedia}, heard.messages);
    ASSERT_TRUE(made.has_value()) << heard.err;
    EXPECT_NE(heard.out.find("REMARK No couplings for residue. 6 11 are fixed.\n"
                             "REMARK 2 couplings fixed in total.\n"),
              std::string::npos)
        << heard.out;
    EXPECT_EQ(heard.err, "Warning: 2 N-HN Unassigned Peaks and 5 LYS Residues!\n");
    ASSERT_EQ(made->problem.fixed.size(), 2U);
    EXPECT_EQ(made->problem.fixed[1].d, 4.0f);

    Table media("27 H 27 N @A\n27 H 27 N @B\n26 CA 26 C @B\n6 H 6 N @B\n11 H 11 N @A\n6 H 6 N @A\n");
    const std::vector<std::string> names = {"A", "B"};
    made = makeProblem({media.pdb, media.table, fixed, names}, heard.messages);
    ASSERT_TRUE(made.has_value()) << heard.err;
    for (const char *line : {"REMARK Available Types of Unassigned Couplings of SegId A: N-HN.\n"
                             "REMARK Available Types of Unassigned Couplings of SegId B: N-HN CA-C.\n",
                             "REMARK # of coupling types for each SegID:  (A 1) (B 2).\n",
                             "REMARK 1 x 3 Unassigned Coupling Matrix.\n",
                             "REMARK Couplings of type A for residue 11 6 are fixed.\n"
                             "REMARK Couplings of type B for residue 6 are fixed.\n"
                             "REMARK 3 couplings fixed in total.\n"})
        EXPECT_NE(heard.out.find(line), std::string::npos) << line << heard.out;
    EXPECT_EQ(made->problem.nDTypList, (std::array<std::size_t, 3>{2, 1, 0}));
    EXPECT_EQ(made->problem.colIdList, (std::array<std::size_t, 3>{1, 2, 0}));
    EXPECT_EQ(made->problem.dcMat, (std::vector<float>{1, 2, 3}));
    EXPECT_EQ(made->problem.fixed[2].d, 4.0f);
}

TEST(MakeProblem, RefusesWhatItCannotSearch)
{
    const int fixed[] = {6, 27};
    const char *const noRow = "Error in Number of Unassigned N-HN couplings.";
    const char *const notAll = "Error in Number of assigned couplings.";
    struct {
        const char *why;
        std::string lines;
        const char *err;
        bool isMade = false;
        std::span<const int> fixResList = {};
        std::vector<std::string> media = noMedia;
    } const cases[] = {
        {"no peak", "26 CA 26 C\n", ""},
        {"all peaks fixed", "6 H 6 N\n27 H 27 N\n", "", false, fixed},
        {"of no medium", "6 H 6 N @A\n11 H 11 N @B\n", noRow, false, {}, {"A"}},
        {"a coupling is missing, and all there are belong to peaks", lysines + "26 CA 26 C\n",
         "Warning: no CA-C coupling for peaks 6 11 29 33 48 63: they take part without it.\n", true},
        {"a coupling is missing in one medium",
         "6 H 6 N @A\n11 H 11 N @A\n6 H 6 N @B\n",
         "Warning: no N-HN coupling of SegId B for peaks 11: they take part without it.\n",
         true,
         {},
         {"A", "B"}},
        {"a fixed coupling of unknown kind", "11 H 11 N\n6 HA 6 H\n", notAll, false, fixed},
        {"an open coupling of unknown kind", "27 H 27 N\n11 HA 11 H\n", "", true, std::span(fixed).first(1)},
        {"fixed by its peak, not by its residue", "11 H 11 N\n26 CA 26 C\n6 H 6 N\n", notAll, false, fixed},
        {"the same peak twice", lysines + "33 H 33 N\n",
         "Warning: N-HN coupling for PeakID 33 stands in the table again, the last one counts.\n", true},
        {"a fixed residue without couplings", "27 H 27 N\n", "", true, std::span(fixed).first(1)},
    };
    for (const auto &c : cases) {
        SCOPED_TRACE(c.why);
        Table table(c.lines);
        Heard heard;
        const ProblemInput input = {table.pdb, table.table, c.fixResList, c.media};
        EXPECT_EQ(makeProblem(input, heard.messages).has_value(), c.isMade);
        const std::size_t behind = heard.err.find("Residues!\n"); // the warning of a test's few peaks
        EXPECT_EQ(behind == std::string::npos ? heard.err : heard.err.substr(behind + 10), c.err);
    }
}

TEST(MakeProblem, TestsItsLimits)
{
    struct {
        int peakCount;
        std::uint32_t atoms;
        bool isMade;
        const char *err;
    } const cases[] = {
        {800, 1, true, "Warning: 800 N-HN Unassigned Peaks and 7 LYS Residues!\n"},
        {801, 1, false, "Error: 801 N-HN Unassigned Peaks, the limit is 800.\n"},
        {2, 2, false,
         "Warning: 2 N-HN Unassigned Peaks and 7 LYS Residues!\nError: Degenerate Atoms not implemented "
         "yet.\n"},
    };
    for (const auto &c : cases) {
        std::string lines;
        for (int i = 1000; i < 1000 + c.peakCount; ++i)
            lines += std::to_string(i) + " H " + std::to_string(i) + " N\n";
        Table table(lines);
        for (DCalc &calc : table.table.calculated()) { // atoms that the structure does not have
            calc.valid = 1;
            calc.atomI.count = c.atoms;
            calc.atomJ.count = 1;
        }
        Heard heard;
        EXPECT_EQ(make(table, heard).has_value(), c.isMade);
        EXPECT_EQ(heard.err, c.err);
    }
}

} // namespace
} // namespace trelm
