// The states of an ensemble, and the domains that they put in place.
#include "simulation/domains/ensemble.h"

#include "common/said.h"
#include "common/standing.h"
#include "simulation/domains/domains.h"
#include "simulation/molecules.h"
#include "simulation/orientations/rotation.h"
#include "simulation/two_domains.h"
#include "support/text/text.h"

#include <algorithm>
#include <cmath>
#include <sstream>

namespace trelm {
namespace {

std::vector<std::string> linesOf(const std::string &name)
{
    std::ifstream in(name);
    std::vector<std::string> lines;
    for (std::string line; std::getline(in, line);)
        lines.push_back(line);
    return lines;
}

Ensemble emptyEnsemble()
{
    Ensemble ensemble;
    ensemble.states = Block<EnsembleState>("test", maxEnsembleStates);
    return ensemble;
}

std::string repeated(const char *line, int count)
{
    std::string text;
    for (int i = 0; i < count; ++i)
        text += line;
    return text;
}

struct FileCase {
    std::string text;
    int status, count;
    const char *message;
};

TEST(EnsembleFile, LinesAreStatesOrRefused)
{
    const char *const format =
        "Error: Input data in file with measured dipolar couplings have wrong format\nLine:";
    const std::vector<FileCase> cases = {
        {"1 2.5 -3e1\n \t4 5 6 words behind\r\n", 0, 2, ""},
        {"", 0, 0, ""},
        {"1 2 3\n\n", 1, 0, format},
        {"1-2+3x\n0x10 5 6\n", 0, 2, ""},
        {repeated("1 2 3\n", 39998), 0, 39998, ""},
        {"1 2 3\n\n4 5 6\n", 1, 0, format},
        {"1,2,3\n", 1, 0, format},
        {"1 2 nan\n", 1, 0, format},
        {"1 inf 2\n", 1, 0, format},
    };
    for (const FileCase &one : cases) {
        const TempFile file(one.text);
        Ensemble ensemble = emptyEnsemble();
        const std::string err =
            said([&] {
                EXPECT_EQ(static_cast<int>(readEnsemble(file.name, ensemble, standardMessages())),
                          one.status);
            }).err;
        EXPECT_TRUE(err.starts_with(one.message)) << err;
        EXPECT_EQ(err.empty(), one.status == 0) << err;
        EXPECT_EQ(ensemble.count, one.count) << one.text.substr(0, 40);
        if (one.count == 2) {
            const auto &[alpha, beta, gamma] = ensemble.states[0];
            const bool isJoined = one.text.starts_with("1-2");
            EXPECT_EQ(alpha, 1.0);
            EXPECT_EQ(beta, isJoined ? -2.0 : 2.5);
            EXPECT_EQ(gamma, isJoined ? 3.0 : -30.0);
            EXPECT_EQ(ensemble.states[1].alpha, isJoined ? 16.0 : 4.0);
        }
    }
}

TEST(EnsembleSphere, StatesLieWithinTheLimits)
{
    DomainOptions grid;
    grid.densE = 162; // 162 dots
    grid.lBetaCone = 10.0f;
    grid.hBetaCone = 60.0f;
    grid.digPsiE = 4;
    const TempFile e, ax;
    const EnsembleFiles files = {.outEName = e.name, .outEAxName = ax.name, .inEName = ""};
    Ensemble ensemble = emptyEnsemble();
    ASSERT_EQ(setupEnsemble(grid, files, ensemble, standardMessages()), Status::ok);
    const int all = ensemble.count;
    // A cap between 10 and 60 degrees has (cos 10 - cos 60) / 2 of the sphere: 39 of 162 dots.
    EXPECT_NEAR(all / 4, 39, 6);
    const auto axes = linesOf(files.outEAxName), angles = linesOf(files.outEName);
    ASSERT_EQ(axes.size(), static_cast<std::size_t>(all));
    ASSERT_EQ(angles.size(), axes.size());
    for (std::size_t i = 0; i < axes.size(); ++i) {
        const EnsembleState &state = ensemble.states[i];
        EXPECT_GE(state.beta, 9.999);
        EXPECT_LE(state.beta, 60.001);
        EXPECT_DOUBLE_EQ(state.gamma, 90.0 * static_cast<double>(i % 4)); // third angle fastest
        // The z axis leans by beta towards minus x, and gamma takes it round: alpha does not move it.
        double x = 0.0, y = 0.0, z = 0.0, written = 0.0;
        std::istringstream(axes[i]) >> x >> y >> z;
        const double b = state.beta * M_PI / 180.0, g = state.gamma * M_PI / 180.0;
        EXPECT_NEAR(x, -std::sin(b) * std::cos(g), 6e-4);
        EXPECT_NEAR(y, std::sin(b) * std::sin(g), 6e-4);
        EXPECT_NEAR(z, std::cos(b), 6e-4);
        std::istringstream(angles[i]) >> written;
        EXPECT_NEAR(written, state.alpha, 1e-2);
    }

    grid.errAlphaCone = 0.1f; // the sideways turns of 90 and 270 degrees lean too far
    ASSERT_EQ(setupEnsemble(grid, {}, ensemble, standardMessages()), Status::ok);
    EXPECT_EQ(ensemble.count, all / 2);
    for (const EnsembleState &state : ensemble.used())
        EXPECT_NEAR(std::sin(state.gamma * M_PI / 180.0), 0.0, 1e-6);
    grid.digPsiE = 1;
    ASSERT_EQ(setupEnsemble(grid, {}, ensemble, standardMessages()), Status::ok);
    EXPECT_TRUE(std::ranges::all_of(ensemble.used(), [](const EnsembleState &s) { return s.gamma == 0.0; }));

    const TempFile two("1 2 3\n4 5 6\n"), none("");
    Ensemble read = emptyEnsemble();
    ASSERT_EQ(setupEnsemble(grid, {.outEName = "", .outEAxName = "", .inEName = two.name}, read,
                            standardMessages()),
              Status::ok);
    EXPECT_EQ(read.count, 2);
    EXPECT_EQ(read.states[1].beta, 5.0);
    ASSERT_EQ(setupEnsemble(grid, {.outEName = "", .outEAxName = "", .inEName = none.name}, read,
                            standardMessages()),
              Status::ok);
    EXPECT_EQ(read.count, ensemble.count); // a file without states replaces nothing
}

struct GridCase {
    const char *why;
    void (*change)(DomainOptions &);
    EnsembleFiles files;
    const char *message; ///< empty: no failure, and no states
};

TEST(EnsembleSphere, FailuresAreTold)
{
    const std::vector<GridCase> cases = {
        {"too many dots",
         [](DomainOptions &g) { g.densE = 2000000000; },
         {},
         "setupEnsemble: unsp error occured.\n"},
        {"too many turns",
         [](DomainOptions &g) { g.digPsiE = 2147483647; },
         {},
         "setupEnsemble: ensemble too big.\n"},
        {"too many states",
         [](DomainOptions &g) { g.digPsiE = 39998; },
         {},
         "setupEnsemble: ensemble too big.\n"},
        {"no turns", [](DomainOptions &g) { g.digPsiE = -1; }, {}, ""},
        {"angles",
         [](DomainOptions &) {},
         {"/none/e", "", ""},
         "TRELM Error opening ensemble monitoring file "},
        {"axes",
         [](DomainOptions &) {},
         {"", "/none/a", ""},
         "TRELM Error opening ensemble monitoring file "},
    };
    for (const GridCase &one : cases) {
        SCOPED_TRACE(one.why);
        DomainOptions info;
        one.change(info);
        Ensemble ensemble = emptyEnsemble();
        int status = -1;
        const std::string err =
            said([&] {
                status = static_cast<int>(setupEnsemble(info, one.files, ensemble, standardMessages()));
            }).err;
        EXPECT_NE(err.find(one.message), std::string::npos) << err;
        EXPECT_EQ(status, *one.message == '\0' ? 0 : 1);
        if (status == 0) {
            EXPECT_EQ(ensemble.count, 0);
        }
    }
}

/// The first 20 residues twice.
Standing smallMolecule(double shift)
{
    return {moleculeOf(twoDomains(20, shift))};
}

DomainOptions smallInfo()
{
    DomainOptions g;
    g.startResDom1 = g.startResPart1 = 1;
    g.endResDom1 = g.endResPart1 = 20;
    g.startResDom2 = g.startResPart2 = 101;
    g.endResDom2 = g.endResPart2 = 120;
    g.resDom1Origin = 10;
    g.resDom2Origin = 110;
    return g;
}

Axis alphaCarbon(const Standing &molecule, int resID)
{
    for (const AtomInfo &atom : molecule.pdb.atoms())
        if (atom.resID == resID && atom.atomName == "CA")
            return toAxis(molecule.coords[molecule.pdb.placeOf(atom)]);
    return {};
}

double distanceOf(const Axis &a, const Axis &b)
{
    return std::hypot(a[0] - b[0], a[1] - b[1], a[2] - b[2]);
}

TEST(Domains, StartOnTheirAxesWithThePivotAtTheOrigin)
{
    Standing pdb = smallMolecule(30.0);
    DomainOptions info = smallInfo();
    ASSERT_EQ(initOrient(pdb, info, 0, standardMessages()), Status::ok);
    Matrix3d moments;
    ASSERT_EQ(calcInertiaSel(pdb, 1, 20, moments, standardMessages()), Status::ok);
    EXPECT_NEAR(distanceOf(alphaCarbon(pdb, 10), {}), 0.0, 1e-5);
    EXPECT_GT(moments[8], moments[4]); // longest along z
    EXPECT_GT(moments[4], moments[0]);
    for (const std::size_t k : {1U, 2U, 5U})
        EXPECT_NEAR(moments[k], 0.0, 1e-3);
    Matrix3d turned;
    ASSERT_EQ(calcInertiaSel(pdb, 20, 1, turned, standardMessages()), Status::ok); // in either order
    EXPECT_EQ(turned, moments);

    // Not turned onto the axes: moved only.
    Standing moved = smallMolecule(30.0);
    const Standing fresh = smallMolecule(30.0);
    info.initOrientFlag = 0;
    ASSERT_EQ(initOrient(moved, info, 0, standardMessages()), Status::ok);
    const Axis a = alphaCarbon(fresh, 10), b = alphaCarbon(fresh, 115), c = alphaCarbon(moved, 115);
    for (std::size_t k = 0; k < 3; ++k)
        EXPECT_NEAR(c[k], b[k] - a[k], 1e-4);
}

TEST(Domains, SecondOneTurnsAboutItsPivot)
{
    DomainOptions info = smallInfo();
    info.initOrientFlag = 0;
    Standing straight = smallMolecule(30.0), turned = smallMolecule(30.0);
    ASSERT_EQ(initOrient(straight, info, 0, standardMessages()), Status::ok);
    info.angleDomFlag = 1;
    info.angleDom[0] = 90.0f; // x' = y, y' = -x
    ASSERT_EQ(initOrient(turned, info, 0, standardMessages()), Status::ok);
    const Axis pivot = alphaCarbon(straight, 110), before = alphaCarbon(straight, 117),
               after = alphaCarbon(turned, 117);
    EXPECT_NEAR(distanceOf(alphaCarbon(turned, 110), pivot), 0.0, 1e-4);
    EXPECT_NEAR(distanceOf(alphaCarbon(turned, 3), alphaCarbon(straight, 3)), 0.0, 1e-4);
    EXPECT_NEAR(after[0] - pivot[0], before[1] - pivot[1], 1e-4);
    EXPECT_NEAR(after[1] - pivot[1], pivot[0] - before[0], 1e-4);
    EXPECT_NEAR(after[2], before[2], 1e-4);
}

TEST(Domains, SecondMomentsOfTwoAtoms)
{
    Standing pdb = {moleculeOf("ATOM      1  N   ALA A   1       1.000   2.000   0.000\n"
                               "ATOM      2  CA  ALA A   1       5.000  -4.000   2.000\n"
                               "ATOM      3  H   ALA A   1      50.000   0.000   0.000\n"
                               "ATOM      4  N   ALA A   2      90.000   0.000   0.000\n")};
    Matrix3d moments;
    ASSERT_EQ(calcInertiaSel(pdb, 1, 1, moments, standardMessages()), Status::ok);
    const Matrix3d expected = {4, -6, 2, -6, 9, -3, 2, -3, 1};
    for (std::size_t k = 0; k < expected.size(); ++k)
        EXPECT_NEAR(moments[k], expected[k], 1e-12);
}

TEST(Domains, ClashIsTheFirstPairBelowTheDistance)
{
    Standing pdb = smallMolecule(12.0);
    DomainOptions info = smallInfo();
    std::vector<std::size_t> indI, indJ;
    ASSERT_EQ(selectSurfDom(pdb, 1, 20, indI, indJ, standardMessages()), Status::ok);
    ASSERT_FALSE(indI.empty());
    EXPECT_EQ(indI.size(), indJ.size()); // the copies are alike, each measured alone
    for (std::size_t k = 0; k < indI.size(); ++k) {
        const AtomInfo &a = pdb.pdb.atomList[indI[k]], &b = pdb.pdb.atomList[indJ[k]];
        EXPECT_EQ(a.resID + 100, b.resID);
        EXPECT_EQ(a.atomName, b.atomName);
        EXPECT_TRUE(a.atomName == "C" || a.atomName == "CA" || a.atomName == "N");
    }
    const auto apart = [&](std::size_t i, std::size_t j) {
        const Coord3D &a = pdb.coords[i], &b = pdb.coords[j];
        return calcNorm(a.x - b.x, a.y - b.y, a.z - b.z);
    };
    float smallest = 1e9f;
    for (const std::size_t i : indI)
        for (const std::size_t j : indJ)
            smallest = std::min(smallest, apart(i, j));
    info.clashDist = smallest; // not below it
    EXPECT_FALSE(chkClashDom(pdb, info.clashDist, indI, indJ, standardMessages()));
    info.clashDist = smallest + 3.0f;
    std::string expected;
    for (const std::size_t i : indI)
        for (const std::size_t j : indJ)
            if (expected.empty() && apart(i, j) < info.clashDist) {
                const AtomInfo &a = pdb.pdb.atomList[i], &b = pdb.pdb.atomList[j];
                appendf(expected, "\nREMARK steric clash of %5d %6s %6s   and  %5d %6s %6s : %6.2f A\n",
                        a.resID, a.resName.c_str(), a.atomName.c_str(), b.resID, b.resName.c_str(),
                        b.atomName.c_str(), static_cast<double>(apart(i, j)));
            }
    EXPECT_EQ(
        said([&] { EXPECT_TRUE(chkClashDom(pdb, info.clashDist, indI, indJ, standardMessages())); }).out,
        expected);
}

} // namespace
} // namespace trelm
