// The face of a molecule beside a charged particle, and the dipole and second moments that describe it.
#include "simulation/alignment/face.h"

#include "common/said.h"
#include "simulation/alignment/options.h"
#include "simulation/charges/charge_labels.h"
#include "simulation/charges/dipole.h"
#include "simulation/charges/field.h"
#include "simulation/domains/inertia.h"
#include "simulation/molecules.h"
#include "simulation/obstacle/steric.h"
#include "support/text/text.h"

#include <cmath>
#include <vector>

namespace trelm {
namespace {

/// A molecule of one selected atom a residue, each read with the charge "2+".
PDBInfo makeMolecule(const std::vector<Axis> &places)
{
    std::string text;
    int resID = 0;
    for (const Axis &at : places)
        appendf(text, "ATOM      1  CA  GLY A%4d    %8.3f%8.3f%8.3f  1.00  7.00           C2+\n", ++resID,
                at[0], at[1], at[2]);
    PDBInfo pdbInfo = moleculeOf(text + "END\n");
    EXPECT_EQ(pdbInfo.atomCount, resID);
    return pdbInfo;
}

AlignmentOptions sample(LcType lcType)
{
    AlignmentOptions info;
    info.lcType = lcType;
    info.surfFlag = 0;
    info.elFlag = 1;
    info.iFace = 30.0f;
    info.kEnergy = 0.5f;
    return info;
}

/// The weight of a charge 5 angstrom off the centre of two atoms, in the direction of `sign` along z.
double weightOf(const AlignmentOptions &info, double sign)
{
    std::vector<double> x = {0.0, 0.0}, y = {6.0, -6.0}, z = {5.0 * sign, -5.0 * sign};
    Charges charges = {{0}, {1.0f}};
    Potential none;
    double prob = -1.0;
    said([&] { iFace(info, {x, y, z}, charges.set(), none, prob, standardMessages()); });
    return prob;
}

TEST(Face, WeighsTheChargeInTheFieldAtItsPlace)
{
    const struct {
        LcType lcType;
        double sign, distance;
    } rows[] = {{lcWall, 1.0, 35.0},
                {lcWall, -1.0, 25.0},
                {lcRod, 1.0, std::hypot(55.0, 6.0) - 20.0},
                {lcRod, -1.0, std::hypot(45.0, 6.0) - 20.0}};
    for (const auto &row : rows) {
        AlignmentOptions info = sample(row.lcType);
        info.concNaCl = 0.001f; // the field must reach as far
        const FieldConstants field = fieldConstants(info);
        const double y =
            4.0 * std::atanh(static_cast<double>(field.gamma) * std::exp(-field.kappa * row.distance / 10.0));
        const double expected = std::exp(-0.5 * y);
        ASSERT_GT(expected, 1.05); // negative surface, positive charge
        EXPECT_NEAR(weightOf(info, row.sign), expected, 1e-6 * expected) << row.lcType << " " << row.sign;
    }
}

TEST(Face, OtherModelsKeepTheWeightAndAMoleculeThatTouchesTheParticleHasNone)
{
    EXPECT_EQ(weightOf(sample(lcGrid), 1.0), -1.0);
    AlignmentOptions info = sample(lcWall);
    info.iFace = 5.0f; // the lower atom lies on the surface exactly
    EXPECT_EQ(weightOf(info, 1.0), 0.0);
    info.iFace = 5.001f;
    EXPECT_GT(weightOf(info, 1.0), 0.0);
}

TEST(Face, EachCallMultipliesTheTableByItsScale)
{
    AlignmentOptions info = sample(lcRod);
    info.kPot = 0.1f;
    std::vector<double> zero = {0.0};
    Charges none;
    Potential potential;
    potential.values = Block<double>("test", 3);
    for (std::size_t i = 0; i < 3; ++i)
        potential.values[i] = 2.0;
    potential.count = 2;
    double prob = 0.0;
    said([&] {
        iFace(info, {zero, zero, zero}, none.set(), potential, prob, standardMessages());
        iFace(info, {zero, zero, zero}, none.set(), potential, prob, standardMessages());
    });
    EXPECT_EQ(potential.values[0], static_cast<double>(2.0f * 0.1f * 0.1f)); // in single precision
    EXPECT_EQ(potential.values[1], potential.values[0]);
    EXPECT_EQ(potential.values[2], 2.0); // not in use
    EXPECT_EQ(prob, 1.0);                // no charges
}

/// A run over two atoms with these charges; `written` gets the molecule of the result file.
Said runFace(const std::vector<float> &values, const AlignmentOptions &info, PDBInfo &written)
{
    PDBInfo pdbInfo = makeMolecule({{1.0, 2.0, 5.0}, {1.0, 2.0, -3.0}});
    Charges charges = {{0, 1}, values};
    const TempFile file;
    Potential none;
    const Said lines = said([&] {
        EXPECT_EQ(iFacePDB(EulerLists{}, {pdbInfo, allAtoms(pdbInfo), info, charges.set()}, none,
                           {file.name, nullptr, standardMessages()}),
                  Status::ok);
    });
    EXPECT_EQ(readPDB(file.name, written, nullptr, standardMessages()), Status::ok);
    EXPECT_EQ(charges.atoms, (std::vector<int>{0, 1}));
    return lines;
}

TEST(FacePDB, WritesTheOrientationOfTheLowerWeight)
{
    const struct {
        const char *why;
        std::vector<float> values;
        std::array<float, 2> z; ///< of the two atoms; a flip centres the molecule first
    } rows[] = {{"positive charge away from the negative wall: stays", {1.0f, 0.0f}, {5.0f, -3.0f}},
                {"negative charge away from it: flipped", {-1.0f, 0.0f}, {-4.0f, 4.0f}},
                {"equal weights: stays", {1.0f, 1.0f}, {5.0f, -3.0f}}};
    for (const auto &row : rows) {
        PDBInfo written;
        runFace(row.values, sample(lcWall), written);
        ASSERT_EQ(written.atomCount, 2);
        for (std::size_t i = 0; i < 2; ++i)
            EXPECT_NEAR(written.coordinates()[i].z, row.z[i], 0.0011f) << row.why;
    }
}

TEST(FacePDB, AMoleculeWithinTheParticleIsNotFlipped)
{
    AlignmentOptions info = sample(lcRod);
    info.iFace = -10.0f;
    PDBInfo written;
    const Said lines = runFace({-1.0f, 0.0f}, info, written);
    EXPECT_NE(lines.out.find("REMARK Probability of initial orientation 0.000000e+00.\n"), std::string::npos);
    const std::string warning = "WARNING: Molecule too close to LC particel ...\n"
                                "         Interaction face cannot be determined!\n";
    EXPECT_EQ(lines.err, warning + warning); // one for each face
    EXPECT_EQ(written.coordinates()[0].z, 5.0f);
}

TEST(ChargeLabels, MarkTheAtomsOfTheCharges)
{
    const struct {
        float charge;
        const char *label;
    } rows[] = {{1.0f, "1+"},   {0.4f, "1+"},  {0.3999f, "1-"}, {0.0f, "1-"},
                {-0.39f, "1-"}, {-0.4f, "0+"}, {-1.0f, "0+"}};
    Charges charges;
    std::vector<Axis> places = {{0.0, 0.0, 0.0}}; // the first atom has no charge
    for (const auto &row : rows) {
        charges.atoms.push_back(static_cast<int>(places.size()));
        charges.values.push_back(row.charge);
        places.push_back({1.0, 2.0, 3.0});
    }
    const std::vector<AtomLabel> labels = labelCharges(makeMolecule(places), charges.set());
    EXPECT_EQ(labels[0].chargeStr.view(), "2+");
    EXPECT_EQ(labels[0].tempFactor, 0.0f);
    for (std::size_t i = 0; i < std::size(rows); ++i) {
        EXPECT_EQ(labels[i + 1].chargeStr.view(), rows[i].label) << rows[i].charge;
        EXPECT_EQ(labels[i + 1].tempFactor, rows[i].charge);
    }
}

TEST(DipoleMoment, OfAFewChargesKnownByHand)
{
    const std::vector<double> x = {3.0, 3.0, 3.0}, y = {1.0, 1.0, 5.0}, z = {2.0, -2.0, -2.0};
    const struct {
        std::vector<float> charges;
        float magnitude, chSum;
        std::array<double, 3> direction;
    } rows[] = {
        {{1.0f, -1.0f}, 4.0f, 0.0f, {0.0, 0.0, 1.0}},
        {{-1.0f, 1.0f}, 4.0f, 0.0f, {0.0, 0.0, -1.0}},
        {{2.0f, -1.0f}, 4.0f, 1.0f, {0.0, 0.0, 1.0}}, // the smaller charge takes part
        {{0.5f, -2.0f}, 2.0f, -1.5f, {0.0, 0.0, 1.0}},
        {{0.05f, -0.05f}, 0.2f, 0.0f, {0.0, 0.0, 1.0}}, // partial charges are small
        {{1.0f, -0.5f, -0.5f}, std::sqrt(20.0f), 0.0f, {0.0, -1.0 / std::sqrt(5.0), 2.0 / std::sqrt(5.0)}}};
    for (const auto &row : rows) {
        const std::vector<int> atoms = {0, 1, 2};
        const auto used = std::span<const int>(atoms).first(row.charges.size());
        const Dipole dipole = dipoleMoment({x, y, z, used, row.charges});
        EXPECT_NEAR(dipole.magnitude, row.magnitude, 1e-5f);
        EXPECT_FLOAT_EQ(dipole.chSum, row.chSum);
        for (std::size_t k = 0; k < 3; ++k)
            EXPECT_NEAR(dipole.dipoleVec[3 * k], row.direction[k], 1e-6);
    }
}

TEST(Inertia, IsTheSecondMomentOfTheSelectedAtoms)
{
    const PDBInfo pdbInfo = makeMolecule(
        {{11.0, 2.0, 0.0}, {9.0, -2.0, 0.0}, {50.0, 50.0, 50.0}, {10.0, 0.0, 3.0}, {10.0, 0.0, -3.0}});
    AtomMask mask = {1, 1, 0, 1, 1};
    Matrix3d inertiaTensor;
    ASSERT_EQ(calcInertia({pdbInfo, mask}, inertiaTensor, standardMessages()), Status::ok);
    const Matrix3d expected = {0.5, 1.0, 0.0, 1.0, 2.0, 0.0, 0.0, 0.0, 4.5};
    for (std::size_t i = 0; i < expected.size(); ++i)
        EXPECT_DOUBLE_EQ(inertiaTensor[i], expected[i]) << i;

    mask.assign(5, 0);
    EXPECT_EQ(said([&] {
                  EXPECT_EQ(calcInertia({pdbInfo, mask}, inertiaTensor, standardMessages()), Status::failed);
              }).err,
              "WARNING: Zero atoms for inertia tensor selected.");
}

} // namespace
} // namespace trelm
