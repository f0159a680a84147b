// The kernels against their plain forms, and what a steric simulation must obey.
#include "simulation/obstacle/steric.h"

#include "common/said.h"
#include "reference/steric_reference.h"
#include "simulation/alignment/alignment.h"
#include "simulation/molecules.h"
#include "simulation/obstacle/rod.h"
#include "simulation/obstacle/wall.h"

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

namespace trelm {
namespace {

/// Atoms of a test, relative to their centre.
struct Solute {
    std::vector<double> x, y, z;
    [[nodiscard]] Coordinates view() const { return {x, y, z}; }
    CoordinateBuffers buffers() { return {x, y, z}; }
    void add(const Axis &p)
    {
        x.push_back(p[0]);
        y.push_back(p[1]);
        z.push_back(p[2]);
    }
};

Solute heavyAtoms()
{
    Solute solute;
    const PDBInfo pdb = ubiquitin();
    for (const AtomInfo &atom : pdb.atoms())
        if (!isHydrogen(atom))
            solute.add(toAxis(pdb.coordinates()[pdb.placeOf(atom)]));
    return solute;
}

StericSetup setupFor(LcType lcType, double size)
{
    StericSetup setup;
    setup.lcType = lcType;
    setup.stepOutLength = 440.0;
    setup.grid.max_obstruction = 20.0;
    setup.grid.gridSpacing = 0.2;
    setup.wvAmount = 0.05;
    setup.grid.max_protein_length = size;
    setup.digit_psi = 18;
    return setup;
}

/// A cloud of atoms of some shape: a ball, a flat box, a hollow shell, a needle along y.
Solute randomSolute(std::mt19937 &engine, int count, double size)
{
    std::normal_distribution<double> normal;
    std::uniform_int_distribution<int> shape(0, 3);
    const int kind = shape(engine);
    Solute solute;
    for (int i = 0; i < count; ++i) {
        Axis p = {normal(engine), normal(engine), normal(engine)};
        const double length = std::hypot(p[0], p[1], p[2]) + 1e-9;
        for (double &value : p)
            value *= size * (kind == 2 ? 1.0 / length : 0.4);
        p[0] *= kind == 3 ? 0.1 : 1.0;
        p[2] *= kind == 1 || kind == 3 ? 0.1 : 1.0;
        solute.add(p);
    }
    return solute;
}

/// The positions that one orientation leaves free, by the fast kernels.
std::vector<bool> freePositions(const StericSetup &setup, const StericGrid &grid, const Coordinates &atoms,
                                const Turn &turn)
{
    const auto count = static_cast<std::size_t>(grid.at.grid_el) + 1;
    std::vector<bool> free(count, true);
    if (setup.lcType == lcWall) {
        WallKernel kernel = makeWallKernel(atoms, grid.wallLimit.span().first(count));
        std::fill_n(free.begin(), firstFreeOfWall(kernel, turn.column1), false);
        return free;
    }
    RodKernel kernel = makeRodKernel(atoms, grid.at.positionDist.span().first(count),
                                     setup.grid.max_obstruction, setup.radius);
    std::vector<Interval> blocked;
    blockedByRod(kernel, turn.column1, turn.column2, blocked);
    for (const Interval &interval : blocked)
        std::fill(free.begin() + interval.first, free.begin() + interval.last + 1, false);
    return free;
}

std::vector<bool> freePositionsPlain(const StericSetup &setup, const StericGrid &grid,
                                     const Coordinates &atoms, const Turn &turn)
{
    TurnedAtoms turnedAtoms;
    turnAtomsPlain(atoms, turn.column1, turn.column2, true, turnedAtoms);
    const auto reach = static_cast<float>(setup.grid.max_obstruction + setup.radius);
    std::vector<bool> free;
    for (std::size_t i = 0; i <= static_cast<std::size_t>(grid.at.grid_el); ++i)
        free.push_back(setup.lcType == lcWall
                           ? !touchesWallPlain(turnedAtoms, grid.wallLimit[i])
                           : !touchesRodPlain(turnedAtoms, grid.at.positionDist[i], reach));
    return free;
}

/// Puts an atom within a rounding of where it starts to be in the way at some position.
void addAtBoundary(std::mt19937 &engine, const StericSetup &setup, const StericGrid &grid, const Turn &turn,
                   Solute &solute)
{
    std::uniform_int_distribution<int> position(0, grid.at.grid_el);
    std::uniform_real_distribution<double> angle(-M_PI, M_PI);
    const auto i = static_cast<std::size_t>(position(engine));
    const double reach = setup.grid.max_obstruction + setup.radius, a = angle(engine);
    const double across = reach * std::sin(a);
    const double along = setup.lcType == lcWall
                             ? static_cast<double>(grid.wallLimit[i])
                             : reach * std::cos(a) - static_cast<double>(grid.at.positionDist[i]);
    Axis p;
    for (std::size_t k = 0; k < 3; ++k)
        p[k] = along * turn.column1[k] + across * turn.column2[k];
    solute.add(p);
}

TEST(Steric, KernelsDecideAsThePlainForms)
{
    std::mt19937 engine(20);
    const std::vector<double> dots = dotsOf(33);
    const OrientationSet set = makeOrientationSet(dots, 7);
    for (int round = 0; round < 1500; ++round) {
        const int count = round % 3 == 0 ? 1 + round % 40 : 300;
        const double size = 2.0 + round % 60;
        StericSetup setup = setupFor(round % 2 == 0 ? lcWall : lcRod, size);
        setup.grid.max_obstruction = round % 5 == 0 ? 1.5 : 20.0; // a thin rod fits into a shell: gaps
        setup.radius = round % 7 == 0 ? 1.2 : 0.0;
        setup.grid.gridSpacing = round % 11 == 0 ? 0.013 : 0.2;
        setup.grid.min_protein_length = setup.radius;
        setup.grid.max_protein_length = size + setup.radius;
        StericGrid grid;
        ASSERT_EQ(makeStericGrid(setup, grid, standardMessages()), Status::ok);
        const Turn turn =
            makeTurn(makeDotTurn(&dots[3 * static_cast<std::size_t>(round % 42)]), set.psi[round % 7U]);
        Solute solute = randomSolute(engine, count, size);
        for (int i = 0; i < 3; ++i)
            addAtBoundary(engine, setup, grid, turn, solute);
        EXPECT_EQ(freePositions(setup, grid, solute.view(), turn),
                  freePositionsPlain(setup, grid, solute.view(), turn))
            << "round " << round;
    }
}

TEST(Steric, SumsAreThoseOfThePlainForm)
{
    Solute solute = heavyAtoms();
    const auto size = static_cast<double>(centreAtoms(solute.buffers()));
    const std::vector<double> dots = dotsOf(100);
    for (const LcType lcType : {lcWall, lcRod}) {
        const StericSetup setup = setupFor(lcType, size);
        Saupe fast, plain;
        std::vector<double> allowedCount;
        const std::string progress =
            said([&] {
                ASSERT_EQ(stericAlignment(setup, solute.view(), dots, fast, standardMessages()), Status::ok);
            }).err;
        ASSERT_EQ(stericAlignmentPlain(setup, solute.view(), dots, plain, allowedCount), 0);
        for (std::size_t k = 0; k < 5; ++k)
            EXPECT_NEAR(fast[k] / plain[k], 1.0, 1e-12) << lcType << " element " << k;
        EXPECT_EQ(progress.substr(0, 35), "REMARK Orientation 1 of 2196\rREMARK");
        EXPECT_EQ(progress.substr(progress.size() - 34), "\rREMARK Orientation 2196 of 2196\r\n");
    }
}

Saupe simulate(Solute &solute, LcType lcType)
{
    static const std::vector<double> dots = dotsOf(700);
    const auto size = static_cast<double>(centreAtoms(solute.buffers()));
    Saupe saupe = {};
    said([&] {
        EXPECT_EQ(stericAlignment(setupFor(lcType, size), solute.view(), dots, saupe, standardMessages()),
                  Status::ok);
    });
    return saupe;
}

double norm(const Saupe &saupe)
{
    TensorAnalysis analysis;
    EXPECT_EQ(analyzeSaupe(saupe, 0, 0, analysis, standardMessages()), Status::ok);
    return std::fabs(analysis.eigVal[0]);
}

TEST(Steric, ATurnedMoleculeGivesTheTurnedTensor)
{
    for (const LcType lcType : {lcWall, lcRod}) {
        Solute solute = heavyAtoms(), turnedSolute;
        Axis x, y, z;
        rotate_coorsystem(0.9, 0.4, -1.3, x, y, z);
        for (std::size_t i = 0; i < solute.x.size(); ++i)
            turnedSolute.add({solute.x[i] * x[0] + solute.y[i] * y[0] + solute.z[i] * z[0],
                              solute.x[i] * x[1] + solute.y[i] * y[1] + solute.z[i] * z[1],
                              solute.x[i] * x[2] + solute.y[i] * y[2] + solute.z[i] * z[2]});
        const Matrix3d before = saupeMatrix(simulate(solute, lcType));
        const Matrix3d after = saupeMatrix(simulate(turnedSolute, lcType));
        // S' = M S M^T, with the columns of M in x, y, z.
        const std::array<Axis, 3> columns = {x, y, z};
        double largest = 0.0, difference = 0.0;
        for (std::size_t i = 0; i < 3; ++i)
            for (std::size_t j = 0; j < 3; ++j) {
                double expected = 0.0;
                for (std::size_t k = 0; k < 3; ++k)
                    for (std::size_t l = 0; l < 3; ++l)
                        expected += columns[k][i] * before[3 * k + l] * columns[l][j];
                largest = std::max(largest, std::fabs(expected));
                difference = std::max(difference, std::fabs(expected - after[3 * i + j]));
            }
        EXPECT_LT(difference, 0.03 * largest) << lcType; // the sampling of the finite set
    }
}

TEST(Steric, ShapeDecidesOrderAndSign)
{
    const std::vector<double> sphereDots = dotsOf(200);
    Solute sphere, rod;
    for (std::size_t i = 0; i < sphereDots.size(); i += 3)
        sphere.add({15.0 * sphereDots[i], 15.0 * sphereDots[i + 1], 15.0 * sphereDots[i + 2]});
    for (int i = -30; i <= 30; ++i)
        rod.add({0.0, 0.0, 0.7 * i});
    for (const LcType lcType : {lcWall, lcRod}) {
        const Saupe ofRod = simulate(rod, lcType);
        // Free orientations of a long solute lie along the director more than across: what the simulation
        // averages has its long axis positive, and axial.
        EXPECT_GT(ofRod[0], 1e-3) << lcType;
        for (std::size_t k = 1; k < 5; ++k)
            EXPECT_LT(std::fabs(ofRod[k]), 0.02 * ofRod[0]) << lcType << " element " << k;
        EXPECT_LT(norm(simulate(sphere, lcType)), 0.02 * ofRod[0]) << lcType;
    }
}

TEST(Steric, GridEndsAtTheTable)
{
    StericSetup wall = setupFor(lcWall, 2000.0);
    StericSetup rod = setupFor(lcRod, 25.0); // reaches the end of the table only by what the gap asks for
    rod.wvAmount = 0.0001;
    for (const auto &[setup, grid_el] : {std::pair{&wall, 4999}, std::pair{&rod, 125}}) {
        StericGrid grid;
        EXPECT_EQ(said([&grid, &run = *setup] {
                      ASSERT_EQ(makeStericGrid(run, grid, standardMessages()), Status::ok);
                  }).err,
                  "WARNING: concentration too low - magnitude of alignment tensor incorrect\n");
        EXPECT_EQ(grid.at.grid_el, grid_el);
        EXPECT_EQ(grid.at.last, 4999);
    }
}

/// Order matrix and messages, without progress lines, of heavy atoms in a sample.
std::string simulateSample(const StericSetup &setup, Saupe &saupe, Status expected)
{
    Solute solute = heavyAtoms();
    centreAtoms(solute.buffers());
    const std::string err =
        said([&] {
            EXPECT_EQ(stericAlignment(setup, solute.view(), dotsOf(12), saupe, standardMessages()), expected);
        }).err;
    return err.substr(err.find('\n') + 1);
}

TEST(Steric, SampleWithoutRoomIsRefusedOrWarnedOf)
{
    Saupe saupe = {};
    StericSetup none = setupFor(lcRod, 25.0);
    none.grid.gridSpacing = 100.0; // wider than the gap between two rods
    none.wvAmount = 0.5;
    EXPECT_EQ(simulateSample(none, saupe, Status::failed),
              "stericAlignment: the sum of the weights at this concentration "
              "and grid, 0, can not be divided by.\n");

    // A cell of the wall's half thickness and little more, as -wv 0.9 gives it, has no room for the molecule:
    // the order has the wrong sign.
    StericSetup wide = setupFor(lcWall, 25.0), narrow = wide;
    narrow.stepOutLength = 22.2;
    Saupe right = {};
    EXPECT_EQ(simulateSample(wide, right, Status::ok), "");
    const std::string warning = simulateSample(narrow, saupe, Status::ok);
    EXPECT_TRUE(warning.starts_with("WARNING: Sum of the weights is negative (-")) << warning;
    EXPECT_EQ(std::ranges::count(warning, '\n'), 1);
    EXPECT_LT(saupe[0] * right[0], 0.0);
}

} // namespace
} // namespace trelm
