// Noise on a structure: laws, and the order of the draws.
#include "errors/cone_noise.h"

#include "structure/backbone.h"
#include "structure/select.h"
#include "support/numerics/random.h"

#include "common/temp_file.h"
#include "couplings/prepared.h"
#include "reference/cone_reference.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <numeric>
#include <set>
#include <vector>

namespace trelm {
namespace {

using Vector = std::array<float, 3>;
constexpr double degree = 3.14159265358979 / 180.0;
constexpr ConeSetup fixedCone = {10.0, 4, 1, 90.0};
constexpr ConeSetup gaussCone = {20.0, 360, 0, 1.0};

PDBSelectInfo residuesFrom(int res1)
{
    PDBSelectInfo range;
    range.selectMode = selectMatching;
    range.resIDMode = 1;
    range.res1 = res1;
    range.resN = 76;
    pdbSelectAdjust(range);
    return range;
}

/// Ubiquitin from residue res1 on and a table of these couplings.
struct Molecule : Prepared {
    explicit Molecule(const std::string &rows, int aOff = 0, const PDBSelectInfo &range = residuesFrom(1))
        : Prepared(
              TempFile("VARS RESID_I ATOMNAME_I RESID_J ATOMNAME_J D DD\nFORMAT %d %s %d %s %f %f\n" + rows)
                  .name,
              aOff, &range)
    {
    }
    RandomStream random;
    std::vector<Coord3D> coords = copyOfCoordinates(pdb);
    NoiseTarget target() { return {{pdb, coords}, table}; }
    int move(const ConeSetup &cone, int aOff = 0)
    {
        return addPdbNoise(target(), cone, aOff, std::vector(table.observed().size(), 1), random);
    }
    Vector at(int resID, const char *name)
    {
        const AtomInfo *atom = findAtom(pdb, resID, name, pdb.defChainName.view(), pdb.defSegName.view());
        if (atom == nullptr)
            return {};
        const Coord3D &place = coords[pdb.placeOf(*atom)];
        return {place.x, place.y, place.z};
    }
    double distance(int resID, const char *nameI, const char *nameJ)
    {
        const Vector a = at(resID, nameI), b = at(resID, nameJ);
        return static_cast<double>(std::hypot(a[0] - b[0], a[1] - b[1], a[2] - b[2]));
    }
    std::vector<Vector> all()
    {
        std::vector<Vector> places;
        for (const Coord3D &place : coords)
            places.push_back({place.x, place.y, place.z});
        return places;
    }
};

TEST(AddVecNoise, FixedConeKeepsLengthAndAngleAndTakesEveryPosition)
{
    RandomStream random;
    for (const Vector &from : {Vector{1.02f, 0, 0}, {0, 0, -1.5f}, {0.3f, -0.7f, 0.6f}, {0, 0, 0}}) {
        const float length = std::hypot(from[0], from[1], from[2]);
        std::set<std::array<long, 3>> positions;
        for (int n = 0; n < 100; ++n) {
            Vector v = from;
            EXPECT_FLOAT_EQ(addVecNoise(random, v, fixedCone), length);
            EXPECT_NEAR(std::hypot(v[0], v[1], v[2]), length, 1e-6);
            EXPECT_NEAR(v[0] * from[0] + v[1] * from[1] + v[2] * from[2],
                        length * length * std::cos(10.0 * degree), 2e-6);
            positions.insert({std::lround(1e4f * v[0]), std::lround(1e4f * v[1]), std::lround(1e4f * v[2])});
        }
        EXPECT_EQ(positions.size(), length > 0.0f ? 4U : 1U);
    }
    Axis onAxis = {0.0, 0.0, 1.0}; // no ring to turn on
    rotCone({0.0, 0.0, 1.0}, 90.0, 0.0, onAxis);
    EXPECT_EQ(onAxis[2], 1.0);
}

TEST(AddVecNoise, GaussianConeIsWeightedByTheAreaOfItsRings)
{
    double norm = 0.0, cosine = 0.0, square = 0.0;
    for (double g = 0.0005; g < 180.0 * degree; g += 0.001) {
        const double p = std::exp(-0.5 * std::pow(g / (gaussCone.coneWidth * degree), 2)) * std::sin(g);
        norm += p;
        cosine += p * std::cos(g);
        square += p * std::cos(g) * std::cos(g);
    }
    constexpr int count = 20000;
    RandomStream random;
    std::array<double, 3> mean = {};
    for (int n = 0; n < count; ++n) {
        Vector v = {0, 0, 1};
        addVecNoise(random, v, gaussCone);
        for (std::size_t k = 0; k < 3; ++k)
            mean[k] += static_cast<double>(v[k]) / count;
    }
    const double side = 4.0 * std::sqrt((1.0 - square / norm) / 2.0 / count); // four standard errors
    EXPECT_NEAR(mean[0], 0.0, side);
    EXPECT_NEAR(mean[1], 0.0, side);
    EXPECT_NEAR(mean[2], cosine / norm,
                4.0 * std::sqrt((square / norm - std::pow(cosine / norm, 2)) / count));
}

// Along x the result is a closed formula of the draws; an angle below 0 ends on the same side as one above.
TEST(AddVecNoise, DrawsInOrderFromOneSeed)
{
    std::vector<Vector> expected;
    RandomStream random, judge;
    for (int n = 0; n < 50; ++n) {
        const auto g = static_cast<float>(drawAnglePlain(judge, gaussCone));
        const float w = std::floor(judge.ran3() * 360.0f) * static_cast<float>(degree);
        const float s = std::fabs(std::sin(g));
        expected.push_back({std::cos(g), -s * std::sin(w), s * std::cos(w)});
    }
    for (const Vector &e : expected) {
        Vector v = {1, 0, 0};
        addVecNoise(random, v, gaussCone);
        EXPECT_LT(std::hypot(v[0] - e[0], v[1] - e[1], v[2] - e[2]), 1e-6f);
    }
    EXPECT_EQ(random.ran1(), judge.ran1());
}

TEST(DrawAngle, TheCheapTestsDecideAsThePlainFormDoes)
{
    for (const double width : {0.01, 1.0, 5.0, 40.0, 170.0, 1e4}) { // beyond 90 degrees sines fall again
        const ConeSetup cone = {width, 360, 0, 1.0};
        RandomStream random, judge;
        for (int n = 0; n < 300; ++n)
            ASSERT_EQ(drawAngle(random, cone), drawAnglePlain(judge, cone)) << width;
        EXPECT_EQ(random.ran1(), judge.ran1()) << width;
        EXPECT_EQ(random.gauss(), judge.gauss()) << width;
    }
}

TEST(AddPdbNoise, MovesTheSecondAtomAloneAndTheSameWayFromTheSamePlaces)
{
    Molecule m("10 N 10 H 1 1\n");
    const double length = m.distance(10, "N", "H");
    const std::vector<Vector> before = m.all();
    EXPECT_EQ(m.move(gaussCone), 1);
    const std::vector<Vector> after = m.all();
    EXPECT_NEAR(m.distance(10, "N", "H"), length, 1e-5);
    EXPECT_EQ(std::ranges::mismatch(before, after).in1 - before.begin(),
              findAtom(m.pdb, 10, "H", "A", m.pdb.defSegName.view()) - m.pdb.atoms().data());
    EXPECT_EQ(
        std::inner_product(before.begin(), before.end(), after.begin(), 0, std::plus(), std::not_equal_to()),
        1);
    m.coords = copyOfCoordinates(m.pdb);
    m.random = RandomStream();
    m.move(gaussCone);
    EXPECT_EQ(m.all(), after);
}

TEST(AddPdbNoise, PutsTheAtomOnTheConeAroundTheOldVector)
{
    Molecule m("10 N 10 H 1 1\n20 N 20 H 1 1\n30 N 30 H 1 1\n");
    const auto vectors = [&m] {
        std::vector<Vector> list;
        for (const int residue : {10, 20, 30}) {
            const Vector n = m.at(residue, "N"), h = m.at(residue, "H");
            list.push_back({h[0] - n[0], h[1] - n[1], h[2] - n[2]});
        }
        return list;
    };
    const std::vector<Vector> before = vectors();
    EXPECT_EQ(m.move(fixedCone), 3);
    const std::vector<Vector> after = vectors();
    for (std::size_t i = 0; i < before.size(); ++i) {
        const float square = std::inner_product(before[i].begin(), before[i].end(), before[i].begin(), 0.0f);
        EXPECT_NEAR(std::inner_product(before[i].begin(), before[i].end(), after[i].begin(), 0.0f),
                    square * std::cos(10.0f * static_cast<float>(degree)), 1e-4f)
            << i;
    }
}

// The mean of three methyl protons lies a third of the bond from CB, away from CA; with the protons first
// they land on the side of CA, 1.53 angstrom from CB.
TEST(AddPdbNoise, ThreeEquivalentAtomsCollapse)
{
    for (const auto &[row, toCA] : {std::pair{"28 CB 28 HB# 1 1\n", 1.9}, {"28 HB# 28 CB 1 1\n", 1.2}}) {
        Molecule m(row);
        EXPECT_EQ(m.move(fixedCone), 1);
        EXPECT_EQ(m.at(28, "HB1"), m.at(28, "HB2"));
        EXPECT_EQ(m.at(28, "HB1"), m.at(28, "HB3"));
        EXPECT_NEAR(m.distance(28, "CB", "HB1"), 0.36, 0.05);
        EXPECT_NEAR(m.distance(28, "CA", "HB1"), toCA, 0.1);
    }
}

TEST(AddPdbNoise, CountsTheOffsetOnceAndDropsARowWhoseAtomIsGone)
{
    Molecule m("110 N 110 H 1 1\n111 N 111 H 1 1\n", -100);
    RowNames names = *m.table.dObsList[1].names;
    names.atomNameJ = Name::of("XX");
    setNames(m.table, names, m.table.dObsList[1]);
    EXPECT_EQ(m.move(fixedCone, -100), 1);
    EXPECT_EQ(m.table.dCalcList[0].valid, 1);
    EXPECT_EQ(m.table.dCalcList[1].valid, 0);
}

TEST(AddPhiPsiNoise, TurnsEveryAngleByTheFixedWidth)
{
    Molecule m("10 N 10 H 1 1\n");
    std::vector<std::array<float, 2>> before;
    for (const ResInfo &residue : m.pdb.residues()) {
        auto &[phi, psi] = before.emplace_back();
        getPDBPhiPsi({m.pdb, m.coords}, residue.resID, "A", m.pdb.defSegName.view(), phi, psi);
    }
    addPhiPsiNoise(m.random, m.target(), fixedCone, {1, 1, 76}, 1, standardMessages());
    auto angles = before.begin();
    for (const ResInfo &residue : m.pdb.residues()) {
        const auto [phiBefore, psiBefore] = *angles++;
        float phi = 0.0f, psi = 0.0f;
        const int known =
            getPDBPhiPsi({m.pdb, m.coords}, residue.resID, "A", m.pdb.defSegName.view(), phi, psi);
        const float phiTurn = (known & 1) != 0 ? phi - phiBefore : 10.0f;
        const float psiTurn = (known & 2) != 0 ? psi - psiBefore : 10.0f;
        EXPECT_NEAR(std::remainder(phiTurn - 10.0f, 360.0f), 0.0f, 0.05f) << residue.resID;
        EXPECT_NEAR(std::remainder(psiTurn - 10.0f, 360.0f), 0.0f, 0.05f) << residue.resID;
    }
}

// A list of residues that begins at 1 draws two angles more than it has; one that begins at 10 does not.
TEST(AddPhiPsiNoise, ResidueZeroBehindTheListDraws)
{
    for (const auto &[res1, angles] : {std::pair{1, 2 * 77}, {10, 2 * 67}}) {
        Molecule m("20 N 20 H 1 1\n", 0, residuesFrom(res1));
        RandomStream judge;
        addPhiPsiNoise(m.random, m.target(), gaussCone, {1, 1, 76}, 1, standardMessages());
        for (int n = 0; n < angles; ++n)
            drawAnglePlain(judge, gaussCone);
        EXPECT_EQ(m.random.ran1(), judge.ran1()) << res1;
    }
}

TEST(AddVecNoise, TooNarrowAGaussianConeMovesAndDrawsNothing)
{
    for (const auto &[cone, isMoved] : {std::pair{ConeSetup{9e-7, 4, 0, 90.0}, false},
                                        {{9e-7, 4, 1, 90.0}, true},
                                        {{-5.0, 4, 1, 90.0}, false}}) {
        RandomStream random;
        Vector v = {0, 0, 1};
        addVecNoise(random, v, cone);
        EXPECT_EQ(random.ran3() != RandomStream().ran3(), isMoved) << cone.coneWidth;
        Molecule m("10 N 10 H 1 1\n");
        const std::vector<Vector> before = m.all();
        addPhiPsiNoise(m.random, m.target(), cone, {1, 1, 76}, 1, standardMessages());
        EXPECT_EQ(m.all() != before, isMoved) << cone.coneWidth;
    }
}

} // namespace
} // namespace trelm
