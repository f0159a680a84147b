// The weighted kernels against their plain forms, and what a weighted simulation must obey.
#include "simulation/alignment/electrostatic.h"

#include "common/said.h"
#include "reference/electrostatic_reference.h"
#include "simulation/alignment/alignment.h"
#include "simulation/alignment/grid3d.h"
#include "simulation/alignment/options.h"
#include "simulation/charges/potential.h"
#include "simulation/molecules.h"
#include "simulation/obstacle/steric.h"

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

namespace trelm {
namespace {

/// Atoms about their centre, charges on the first of them, and the orientations.
struct Molecule {
    std::vector<double> x, y, z, dots;
    Charges placed;
    double size = 0.0;

    Molecule(unsigned seed, int atoms, int charges, double radius, int densit = 20)
    {
        std::mt19937 engine(seed);
        std::normal_distribution<double> normal(0.0, 0.4 * radius);
        for (int i = 0; i < atoms; ++i) {
            x.push_back(1.6 * normal(engine));
            y.push_back(normal(engine));
            z.push_back(0.8 * normal(engine));
            size = std::max(size, std::hypot(x.back(), y.back(), z.back()));
        }
        for (int c = 0; c < charges; ++c) {
            placed.atoms.push_back(c);
            placed.values.push_back(c % 3 == 0 ? -1.0f : 0.55f);
        }
        dots = dotsOf(densit);
    }
    [[nodiscard]] Coordinates view() const { return {x, y, z}; }
    ChargeSet charges() { return placed.set(); }
    [[nodiscard]] AlignmentSetup setup(const AlignmentOptions &options) const
    {
        return {options, standardMessages(), 120.0, dots};
    }
    [[nodiscard]] SmaSetup sizes() const { return {size, 0.0}; }
};

AlignmentOptions infoFor(LcType lcType, double cutoffPot)
{
    AlignmentOptions info;
    info.lcType = lcType;
    info.elFlag = 1;
    info.cutoffPot = cutoffPot;
    info.gridSpacing = 0.5f;
    info.digPsiNSC = 6;
    return info;
}

/// A falling potential of either sign.
Potential makeTable(int count, double first)
{
    Potential potential;
    potential.values = Block<double>("matrix", maxPotentialLines + 2);
    potential.count = count;
    potential.stepsize = 0.7;
    for (int i = 0; i < count; ++i)
        potential.values[static_cast<std::size_t>(i)] = first * std::exp(-0.1 * i);
    return potential;
}

/// sma and what it says.
Said smaSays(const AlignmentOptions &info, Molecule &molecule, Potential &potential, Saupe &saupe,
             Status expected = Status::ok)
{
    return said([&] {
        EXPECT_EQ(sma(molecule.setup(info), molecule.view(), molecule.sizes(), molecule.charges(), potential,
                      saupe),
                  expected);
    });
}

void expectSame(const Saupe &fast, const Saupe &plain, double tolerance)
{
    double largest = 0.0;
    for (const double element : plain)
        largest = std::max(largest, std::fabs(element));
    EXPECT_GT(largest, 0.0);
    for (std::size_t k = 0; k < plain.size(); ++k)
        EXPECT_NEAR(fast[k], plain[k], tolerance * largest) << "element " << k;
}

TEST(Weighted, FastIsPlain)
{
    struct Case {
        LcType lcType;
        double cutoffPot;
        float radiusAtom, chDensSurf, concNaCl;
        int charges;
    };
    // Surfaces of both signs from weak to strong, the field from one position to the whole cell, thin and
    // thick atoms.
    const Case cases[] = {
        {lcWall, 6e-6, 0.0f, -0.47f, 0.2f, 24}, {lcWall, 60.0, 0.0f, -0.47f, 0.2f, 24},
        {lcWall, 400.0, 1.5f, 0.47f, 0.02f, 9}, {lcWall, 400.0, 0.3f, -9.0f, 0.01f, 30},
        {lcRod, 6e-6, 0.0f, -0.47f, 0.2f, 24},  {lcRod, 1e-3, 1.5f, 0.47f, 0.02f, 24},
        {lcRod, 0.1, 0.4f, -0.2f, 0.1f, 7},     {lcWall, 6e-6, 0.0f, -0.47f, 0.2f, 0},
    };
    unsigned seed = 1;
    for (const Case &c : cases) {
        SCOPED_TRACE(testing::Message() << "model " << c.lcType << ", cutoff " << c.cutoffPot);
        Molecule molecule(seed++, 120, c.charges, 18.0);
        AlignmentOptions info = infoFor(c.lcType, c.cutoffPot);
        info.radiusAtom = c.radiusAtom;
        info.chDensSurf = c.chDensSurf;
        info.concNaCl = c.concNaCl;
        Potential potential = makeTable(40, -0.8);
        Saupe fast = {}, plain = {};
        smaSays(info, molecule, potential, fast);
        smaPlain(molecule.setup(info), molecule.view(), molecule.sizes(), molecule.charges(), potential,
                 plain);
        // The weights of a rod are summed in single precision: a rounding there is 6e-8.
        expectSame(fast, plain, c.lcType == lcWall ? 1e-9 : 3e-7);
    }
}

TEST(Weighted, SignsOfChargesAndSurfaceCancel)
{
    for (const LcType lcType : {lcWall, lcRod}) {
        Molecule molecule(11, 60, 12, 15.0);
        AlignmentOptions info = infoFor(lcType, 40.0);
        Potential potential = makeTable(60, -0.6), opposite = makeTable(60, 0.6);
        Saupe one = {}, other = {};
        smaSays(info, molecule, potential, one);
        info.chDensSurf = -info.chDensSurf;
        for (float &q : molecule.placed.values)
            q = -q;
        smaSays(info, molecule, opposite, other);
        expectSame(one, other, 1e-6); // y0 and gamma of the two signs are rounded to float
        smaSays(info, molecule, potential, other);
        if (lcType == lcRod) { // charges of the other sign in the same field: another result
            EXPECT_GT(std::fabs(one[0] - other[0]), 1e-3 * std::fabs(one[0]));
        }
    }
}

TEST(Weighted, ChargesBeyondTheTableFeelNothingAndAreTold)
{
    Molecule molecule(3, 60, 10, 15.0);
    const AlignmentOptions info = infoFor(lcRod, 1e-4);
    Potential full = makeTable(400, -0.5), none = makeTable(2, 0.0);
    Saupe saupe = {}, withoutTable = {};
    EXPECT_EQ(smaSays(info, molecule, full, saupe).err.find("beyond"), std::string::npos);
    const std::string err = smaSays(info, molecule, none, withoutTable).err;
    const auto first =
        err.find("REMARK Charges beyond the distances of the potential table feel no potential.\n");
    EXPECT_NE(first, std::string::npos);
    EXPECT_EQ(err.find("REMARK Charges beyond", first + 1), std::string::npos);
    Molecule neutral(3, 60, 0, 15.0);
    Saupe uncharged = {};
    smaSays(info, neutral, none, uncharged);
    expectSame(withoutTable, uncharged, 1e-12);
}

TEST(Weighted, TableIsDividedByItsScaleEachTime)
{
    Molecule molecule(3, 20, 2, 10.0);
    AlignmentOptions info = infoFor(lcRod, 1e-2);
    info.kPot = 3.0f;
    Potential potential = makeTable(100, 1.0);
    Saupe saupe = {};
    smaSays(info, molecule, potential, saupe);
    smaSays(info, molecule, potential, saupe);
    EXPECT_EQ(potential.values[0], static_cast<double>(1.0f / 3.0f / 3.0f)); // in single precision
}

TEST(Weighted, FieldThatIsNoNumberMattersToChargesAlone)
{
    AlignmentOptions info = infoFor(lcWall, 6e-6);
    info.temperaturePot = -1.0f;
    for (const int charges : {0, 2}) {
        Molecule molecule(3, 20, charges, 10.0);
        Potential none;
        Saupe saupe = {};
        smaSays(info, molecule, none, saupe, charges > 0 ? Status::failed : Status::ok);
    }
}

// ---- grids ----

AlignmentOptions gridInfo(int nX, int nY, int nZ, int z1, int zN, float spacing)
{
    AlignmentOptions info = infoFor(lcGrid, 6e-6);
    info.grid3DnX = nX;
    info.grid3DnY = nY;
    info.grid3DnZ = nZ;
    info.grid3DdeltaX = info.grid3DdeltaY = info.grid3DdeltaZ = spacing;
    info.z1 = z1;
    info.zN = zN;
    info.digPsiNSC = 3;
    return info;
}

/// A charged thing in the middle of the grid that does not reach its edge, with a bulge along z.
std::vector<double> obstacle(const Grid3D &grid, double radius)
{
    std::vector<double> values;
    for (int x = 0; x < grid.count[0]; ++x)
        for (int y = 0; y < grid.count[1]; ++y)
            for (int z = 0; z < grid.count[2]; ++z) {
                const auto from = [&](int point, std::size_t axis) {
                    return (point - grid.half[axis]) * static_cast<double>(grid.spacing[axis]);
                };
                const double distance = std::hypot(from(x, 0), from(y, 1), 0.3 * from(z, 2));
                values.push_back(distance < radius ? 20.0 : -2.0 * std::exp(-(distance - radius) / 4.0));
            }
    return values;
}

double fastTotal(const Grid3D &grid, Molecule &molecule, int digit_psi, std::span<const double> pot3D,
                 Saupe &sum)
{
    const GridRows rows = makeGridRows(grid, pot3D);
    GridPlaces places;
    RowSearch search;
    double total = 0.0;
    sum = {};
    forEachTurn(makeOrientationSet(molecule.dots, digit_psi), [&](const Turn &turn) {
        placeAtoms(grid, molecule.view(), {turn.column1, turn.column2, turn.column3}, places);
        const double weight = weighPositions(grid, rows, places, molecule.charges(), search);
        for (std::size_t k = 0; k < sum.size(); ++k)
            sum[k] += turn.saupe[k] * weight;
        total += weight;
    });
    return total;
}

TEST(Grid, FastIsPlain)
{
    struct Case {
        int nX, nY, nZ, z1, zN;
        float spacing, maxPot;
        double obstacle, size;
    };
    const Case cases[] = {
        {21, 20, 16, 1, 16, 1.0f, 5.0f, 4.0, 6.0},  // all planes in use, an atom leaves the grid now and then
        {16, 21, 19, 4, 11, 1.3f, 5.0f, 3.0, 5.0},  // some planes in use
        {12, 12, 9, 3, 5, 1.0f, 5.0f, 2.0, 9.0},    // atoms more than a period away
        {14, 14, 14, 1, 14, 1.5f, 0.5f, 3.0, 5.0},  // a low threshold: mixed rows
        {15, 15, 15, 1, 15, 1.5f, 0.0f, 0.0, 2.0},  // no potential allowed: an atom must not leave the grid
        {15, 15, 15, 2, 14, 1.0f, -1.0f, 3.0, 3.0}, // nothing is free
        {10, 12, 9, 0, 0, 1.2f, 0.8f, 2.0, 5.0},    // planes before the first: the values of other rows
        {11, 10, 4, 3, 7, 1.2f, 5.0f, 2.0, 4.0},    // planes behind the last
        {12, 12, 9, 2, 8, -1.0f, 5.0f, 2.0, 4.0},   // the grid in a mirror
    };
    unsigned seed = 40;
    for (const Case &c : cases) {
        SCOPED_TRACE(testing::Message() << c.nX << " by " << c.nY << " by " << c.nZ);
        Molecule molecule(seed++, 25, 8, c.size, 6);
        AlignmentOptions info = gridInfo(c.nX, c.nY, c.nZ, c.z1, c.zN, c.spacing);
        info.maxPot = c.maxPot;
        const Grid3D grid = makeGrid3D(info);
        std::vector<double> pot3D = obstacle(grid, c.obstacle);
        Saupe fast = {}, plain = {};
        double total = 0.0;
        sma3DPlain(grid, molecule.view(), molecule.dots, 3, molecule.charges(), pot3D, plain, total);
        EXPECT_NEAR(fastTotal(grid, molecule, 3, pot3D, fast), total, 1e-12 * total);
        for (std::size_t k = 0; k < plain.size(); ++k)
            EXPECT_NEAR(fast[k], plain[k], 1e-12 * total);
        if (c.maxPot > 0.0f) {
            EXPECT_GT(total, 0.0);
        }
    }
}

TEST(Grid, NothingInItGivesNoAlignment)
{
    Molecule molecule(5, 20, 4, 4.0);
    AlignmentOptions info = gridInfo(16, 16, 16, 1, 16, 3.0f); // wider than a cell: no free rest
    std::vector<double> pot3D(16 * 16 * 16, 0.0);
    Saupe saupe = {};
    const auto simulate = [&] {
        said([&] {
            EXPECT_EQ(sma3D(molecule.setup(info), molecule.view(), molecule.charges(), pot3D, saupe),
                      Status::ok);
        });
        return std::ranges::max(saupe, {}, [](double element) { return std::fabs(element); });
    };
    EXPECT_LT(std::fabs(simulate()), 1e-6); // the set's own bias
    pot3D = obstacle(makeGrid3D(info), 9.0);
    EXPECT_GT(std::fabs(simulate()), 1e-3);
}

// ---- files ----

std::string tableOf(int lines)
{
    std::string text;
    for (int i = 0; i < lines; ++i)
        text += std::to_string(0.1 * i) + " -1.0\n";
    return text;
}

TEST(PotentialFile, TableInNanometres)
{
    const TempFile file("0.5 -2.0 more\n 0.7\t-1.5e0x\n0.9-1.0\n0.95 -0.5\n");
    Potential potential;
    ASSERT_EQ(readPotential(file.name, potential, standardMessages()), Status::ok); // a smaller step passes
    EXPECT_EQ(potential.count, 4);
    EXPECT_DOUBLE_EQ(potential.offset, 5.0);
    EXPECT_NEAR(potential.stepsize, 2.0, 1e-12);
    EXPECT_DOUBLE_EQ(potential.values[2], -1.0);
    EXPECT_DOUBLE_EQ(potential.values[3], -0.5);
    EXPECT_EQ(readPotential("", potential, standardMessages()), Status::ok);
    EXPECT_EQ(potential.count, 0);
}

TEST(PotentialFile, TablesWithoutAStepAreWarnedOf)
{
    Molecule molecule(3, 20, 2, 10.0);
    for (const char *text :
         {"", "0.1 1.0\n", "0.1 1.0\n0.1 1.0\n", "0.2 1.0\n0.1 1.0\n", "0.1 1.0\ninf 1.0\n"}) {
        const TempFile file(text);
        Potential potential;
        EXPECT_NE(said([&] {
                      EXPECT_EQ(readPotential(file.name, potential, standardMessages()), Status::ok);
                  }).err.find(" has no two lines of rising distances: charges feel no potential.\n"),
                  std::string::npos)
            << text;
        Potential none;
        Saupe saupe = {}, withoutTable = {};
        smaSays(infoFor(lcRod, 1e-2), molecule, potential, saupe);
        smaSays(infoFor(lcRod, 1e-2), molecule, none, withoutTable);
        EXPECT_EQ(saupe, withoutTable) << text;
    }
}

TEST(PotentialFile, FaultsOfTables)
{
    const std::pair<std::string, const char *> faults[] = {
        {"0.1 1.0\nno number\n", "wrong format\nLine:no number\n"},
        {"0.1 1.0\n0.2\n", "wrong format\nLine:0.2\n"},
        {"0.1 1\n0.2 1\n\n", "wrong format\nLine:\n"},
        {"0 1\n0.1 1\n0.25 1\n", "uniform stepsize\nLine:0.25 1\n1.500000e-01 1.000000e-01 ==> diff = 5.0"},
        {tableOf(9999), "digitization of potential too high."},
    };
    for (const auto &[text, message] : faults) {
        const TempFile file(text);
        Potential potential;
        const std::string err =
            said([&] {
                EXPECT_EQ(readPotential(file.name, potential, standardMessages()), Status::failed);
            }).err;
        EXPECT_NE(err.find(message), std::string::npos) << message << err;
    }
    const TempFile longest(tableOf(9998));
    Potential potential;
    EXPECT_EQ(readPotential(longest.name, potential, standardMessages()), Status::ok);
}

const std::string gridHeader = "1\n2\n3\n4\n5\n6\n7\n8\n9\n10\n11\n";

TEST(PotentialFile, GridBehindItsHeader)
{
    const TempFile file(gridHeader + "1 -7 3\n4 5\n6\n\n");
    const AlignmentOptions info = gridInfo(1, 2, 3, 1, 3, 1.0f);
    Block<double> pot3D;
    Block<float> pot3Dst;
    int read = 0;
    const std::string err =
        said([&] {
            ASSERT_EQ(read3DPotential(file.name, info, pot3D, read, standardMessages()), Status::ok);
        }).err;
    EXPECT_EQ(read, 6);
    EXPECT_DOUBLE_EQ(pot3D[1], -7.0);
    EXPECT_DOUBLE_EQ(pot3D[5], 6.0);
    EXPECT_EQ(err, "REMARK Reading values of 3D potential 3 of 6\r"
                   "WARNING: File with 3D Potential may contain line with wrong input format!\nLine:4 5\n"
                   "REMARK Reading values of 3D potential 5 of 6\r"
                   "WARNING: File with 3D Potential may contain line with wrong input format!\nLine:6\n"
                   "REMARK Reading values of 3D potential 6 of 6\r"
                   "WARNING: File with 3D Potential may contain line with wrong input format!\nLine:\n"
                   "REMARK Reading values of 3D potential 6 of 6\r\n");
    said([&] { ASSERT_EQ(read3DPotSteric(file.name, info, pot3Dst, read, standardMessages()), Status::ok); });
    const std::vector<float> expected = {1.0f, 0.0f, 1.0f, 1.0f, 0.0f, 0.0f};
    EXPECT_TRUE(std::ranges::equal(pot3Dst.span(), expected));
}

TEST(PotentialFile, FaultsOfGrids)
{
    struct Case {
        std::string text;
        AlignmentOptions info;
        const char *message;
    };
    const AlignmentOptions fine = gridInfo(1, 2, 3, 1, 3, 1.0f);
    AlignmentOptions flat = fine;
    flat.grid3DdeltaY = 0.0f;
    const Case cases[] = {
        {gridHeader + "1 2 3\n4 5\n", fine, "Total size of 3D grid not as specified"},
        {gridHeader + "1 2 3\n4 5 6\n7\n", fine, "Total size of 3D grid"},
        {gridHeader + "1 x 3\n4 5 6\n", fine, "wrong input format!\nLine:1 x 3\n"},
        {"", fine, "Total size of 3D grid"},
        {gridHeader + "1 2 3\n", gridInfo(0, 2, 3, 1, 3, 1.0f), "Total size of 3D grid"},
        {gridHeader, gridInfo(-1, 2, 3, 1, 3, 1.0f), "a negative number of points: see -nX, -nY, -nZ"},
        {gridHeader, gridInfo(50000, 50000, 0, 1, 3, 1.0f), "more points"},
        {gridHeader, gridInfo(1, 2, 3, -2147483647, 3, 1.0f), "more points"},
        {gridHeader, gridInfo(1, 2, 3, 1, 200000, 1.0f), "far more positions than points"},
        {gridHeader, flat, "a spacing of 0: see -dX, -dY, -dZ"},
    };
    for (const Case &c : cases) {
        const TempFile file(c.text);
        Block<double> pot3D;
        int read = 0;
        const std::string err =
            said([&] {
                EXPECT_EQ(read3DPotential(file.name, c.info, pot3D, read, standardMessages()),
                          Status::failed);
            }).err;
        EXPECT_NE(err.find(c.message), std::string::npos) << c.message << err;
    }
}

} // namespace
} // namespace trelm
