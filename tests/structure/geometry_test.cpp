// Torsion angles, transformations, turns.
#include "structure/backbone.h"

#include "common/standing.h"
#include "molecules.h"
#include "structure/rotate.h"
#include "structure/transform.h"

#include <cmath>

namespace trelm {
namespace {

float distance(const Coord3D &a, const Coord3D &b)
{
    return std::hypot(a.x - b.x, a.y - b.y, a.z - b.z);
}

TEST(Backbone, AnglesOfUbiquitin)
{
    Standing pdb = {readUbiquitin()};
    float phi = 0.0f, psi = 0.0f;
    EXPECT_EQ(getPDBPhiPsi(pdb, 1, "A", "", phi, psi), 2);
    EXPECT_EQ(phi, noAngle);
    EXPECT_EQ(getPDBPhiPsi(pdb, 76, "A", "", phi, psi), 1);
    EXPECT_EQ(psi, noAngle);
    // Residues 23 to 33 are the helix.
    for (int resID = 24; resID <= 32; ++resID) {
        EXPECT_EQ(getPDBPhiPsi(pdb, resID, "A", "", phi, psi), 3);
        EXPECT_NEAR(phi, -63.0f, 12.0f) << resID;
        EXPECT_NEAR(psi, -41.0f, 15.0f) << resID;
    }
}

TEST(Backbone, SetAnglesAreFoundAgainAndBondsStay)
{
    for (const int resID : {10, 60}) { // one in each half: another side moves
        Standing pdb = {readUbiquitin()};
        const auto at = [&pdb](int number, const char *name) -> const Coord3D & {
            return pdb.coords[pdb.pdb.placeOf(*findAtom(pdb.pdb, number, name, "A", ""))];
        };
        const Coord3D first = pdb.coords[0], last = pdb.coords[1230];
        const Coord3D &ca = at(resID, "CA"), &c = at(resID, "C");
        const float bond = distance(ca, c);
        // The peptide planes are stiff: H stays with the residue before, O with the one behind.
        const Coord3D &h = at(resID, "H"), &o = at(resID, "O");
        const Coord3D &before = at(resID - 1, "O"), &behind = at(resID + 1, "H");
        const float planeBefore = distance(before, h), planeBehind = distance(o, behind);
        EXPECT_EQ(setPDBPhiPsi(pdb, resID, "A", "", -120.0f, 140.0f), 3);
        float phi = 0.0f, psi = 0.0f;
        getPDBPhiPsi(pdb, resID, "A", "", phi, psi);
        EXPECT_NEAR(phi, -120.0f, 0.01f);
        EXPECT_NEAR(psi, 140.0f, 0.01f);
        EXPECT_NEAR(distance(ca, c), bond, 1e-4f);
        EXPECT_NEAR(distance(before, h), planeBefore, 1e-4f);
        EXPECT_NEAR(distance(o, behind), planeBehind, 1e-4f);
        EXPECT_EQ(distance(pdb.coords[0], first) > 0.1f, resID == 10);
        EXPECT_EQ(distance(pdb.coords[1230], last) > 0.1f, resID == 60);
    }
}

TEST(Backbone, DihedralOfKnownPoints)
{
    const Coord3D a = {1, 0, 0}, b = {0, 0, 0}, c = {0, 0, 1};
    for (const float angle : {-150.0f, -90.0f, -10.0f, 0.0f, 45.0f, 179.0f}) {
        const float radian = angle * 3.14159265f / 180.0f;
        float phi = 1.0f;
        EXPECT_EQ(getDihedralAngle(a, b, c, {std::cos(radian), std::sin(radian), 1}, phi), 0);
        EXPECT_NEAR(phi, angle, 0.05f);
    }
    float phi = 1.0f;
    EXPECT_EQ(getDihedralAngle({0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {3, 0, 0}, phi), 0); // on a line
    EXPECT_EQ(phi, 0.0f);
}

TEST(Transform, OrderAndSense)
{
    const struct {
        const char *why;
        void (*append)(Transform &);
        Coord3D from, to;
    } cases[] = {
        {"a quarter turn about z, after the translation",
         [](Transform &turn) {
             turn.appendTranslation(0, 1, 0);
             turn.appendRotation(0, 0, 90);
         },
         {1, 0, 0},
         {-1, 1, 0}},
        {"about x, which brings y to z; then about y, which brings z to x",
         [](Transform &turn) { turn.appendRotation(90, 90, 0); },
         {0, 1, 0},
         {1, 0, 0}},
        {"about a line parallel to z through (1, 1)",
         [](Transform &turn) {
             turn.appendRotation({1, 1, 0}, {1, 1, 5}, 90);
         },
         {2, 1, 0},
         {1, 2, 0}},
        {"about no line",
         [](Transform &turn) {
             turn.appendRotation({1, 2, 3}, {1, 2, 3}, 50);
         },
         {2, 1, 0},
         {2, 1, 0}},
    };
    for (const auto &test : cases) {
        Transform turn;
        test.append(turn);
        Coord3D r = test.from;
        turn.apply({&r, 1});
        EXPECT_LT(std::hypot(r.x - test.to.x, r.y - test.to.y, r.z - test.to.z), 1e-6f) << test.why;
    }
}

TEST(Rotate, TurnsBringAnAxisWhereItsAnglesSay)
{
    // phi and theta of a direction, as polar angles, turn it onto z.
    const double phi = 35.0, theta = 70.0;
    const double degree = 3.14159265 / 180.0;
    Standing pdb = {readUbiquitin()};
    Coord3D &atom = pdb.coords[0];
    atom.x = static_cast<float>(std::sin(theta * degree) * std::cos(phi * degree));
    atom.y = static_cast<float>(std::sin(theta * degree) * std::sin(phi * degree));
    atom.z = static_cast<float>(std::cos(theta * degree));
    const float untouched = pdb.coords[1230].x;
    rotateDomain({phi, theta, 20.0}, pdb, 1, 10);
    EXPECT_NEAR(atom.x, 0.0f, 1e-6f);
    EXPECT_NEAR(atom.y, 0.0f, 1e-6f);
    EXPECT_NEAR(atom.z, 1.0f, 1e-6f);
    EXPECT_EQ(pdb.coords[1230].x, untouched);
    rotateDomain({-20.0, -theta, -phi}, pdb, 1, 10); // and back
    EXPECT_NEAR(atom.z, static_cast<float>(std::cos(theta * degree)), 1e-6f);
}

TEST(Rotate, ShiftNeedsAtoms)
{
    Standing pdb = {readUbiquitin()};
    Heard heard;
    EXPECT_EQ(shiftMol2Domain(pdb, 1, 76, heard.messages), Status::ok);
    double sum = 0.0;
    for (const Coord3D &at : pdb.coords)
        sum += static_cast<double>(at.x);
    EXPECT_NEAR(sum / 1231, 0.0, 1e-5);
    EXPECT_EQ(shiftMol2Domain(pdb, 100, 200, heard.messages), Status::failed);
    EXPECT_EQ(heard.err, "Error in positionDomain: zero atoms selected.");
}

} // namespace
} // namespace trelm
