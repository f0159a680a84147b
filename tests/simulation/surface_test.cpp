#include "simulation/obstacle/surface.h"

#include "common/said.h"
#include "reference/surface_reference.h"
#include "simulation/molecules.h"
#include "simulation/obstacle/atom_selection.h"
#include "simulation/obstacle/exposure.h"
#include "simulation/obstacle/solute_options.h"

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

namespace trelm {
namespace {

constexpr int allOfIt = surfaceDotList | surfaceVolume | surfaceAtomAreas;

TEST(Surface, ExposedDotsAreThoseOfThePlainForm)
{
    std::mt19937 engine(3);
    for (int round = 0; round < 30; ++round) {
        const int atoms = 1 + round * 12;
        const double shift = round % 3 == 0 ? 5000.0 : 0.0; // the surface is the same wherever it is
        std::uniform_real_distribution<double> place(shift, shift + 3.0 * std::cbrt(atoms)), size(1.4, 3.5);
        std::vector<double> co, radius;
        for (int i = 0; i < atoms; ++i) {
            co.insert(co.end(), {place(engine), place(engine), place(engine)});
            radius.push_back(round % 4 == 0 ? 3.1 : size(engine));
        }
        if (round % 5 == 0) // two atoms in one place
            std::copy_n(co.begin(), 3, co.end() - 3);
        Surface surface;
        ASSERT_EQ(nsc_dclm(co, radius, 200, allOfIt, surface, standardMessages()), Status::ok);
        const std::vector<int> plain = exposedDotsPlain(co, radius, dotsOf(200));
        std::size_t total = 0;
        for (std::size_t i = 0; i < radius.size(); ++i) {
            const double dotArea = radius[i] * radius[i] * (12.566370614359172 / 252.0);
            EXPECT_EQ(surface.at_area[i], dotArea * plain[i]) << "round " << round << " atom " << i;
            total += static_cast<std::size_t>(plain[i]);
        }
        EXPECT_EQ(surface.lidots.size(), 3 * total);
        // What is left as soon as it is settled is decided as all of the dots decide it.
        for (const double ratio : {0.0, 0.1, 0.5, 1.5, 20.0}) {
            std::vector<bool> isExposed;
            ASSERT_EQ(findExposedBalls(co, radius, {200, 1.0, ratio}, isExposed, standardMessages()),
                      Status::ok);
            for (std::size_t i = 0; i < radius.size(); ++i) {
                const double bare = radius[i] - 1.0;
                EXPECT_EQ(isExposed[i], surface.at_area[i] / (12.5663706 * (bare * bare)) > ratio)
                    << "round " << round << " atom " << i << " ratio " << ratio;
            }
        }
    }
}

TEST(Surface, SphereHasItsAreaAndVolume)
{
    const double r = 3.3;
    Surface surface;
    ASSERT_EQ(
        nsc_dclm(std::vector{1e3, -2.0, 5.0}, std::vector{r}, 700, allOfIt, surface, standardMessages()),
        Status::ok);
    EXPECT_NEAR(surface.value_of_area, 4.0 * M_PI * r * r, 1e-9);
    EXPECT_NEAR(surface.value_of_vol / (4.0 / 3.0 * M_PI * r * r * r), 1.0, 1e-6);
    // Atoms very far apart ask for no memory in between.
    ASSERT_EQ(nsc_dclm(std::vector{-1e9, 0.0, 0.0, 1e9, 1e9, 1e9}, std::vector{r, r}, 700, allOfIt, surface,
                       standardMessages()),
              Status::ok);
    EXPECT_NEAR(surface.value_of_area, 8.0 * M_PI * r * r, 1e-9);
    // Points have no surface.
    ASSERT_EQ(nsc_dclm(std::vector{0.0, 0.0, 0.0, 1.0, 0.0, 0.0}, std::vector{0.0, 0.0}, 700, allOfIt,
                       surface, standardMessages()),
              Status::ok);
    EXPECT_EQ(surface.value_of_area, 0.0);
}

TEST(Surface, AreaOfUbiquitinIsThatOfAnotherProgram)
{
    const PDBInfo pdb = ubiquitin();
    std::vector<double> co, radius;
    for (const AtomInfo &atom : pdb.atoms()) {
        const Coord3D &at = pdb.coordinates()[pdb.placeOf(atom)];
        const char letter = atom.atomName.text[0];
        if (isHydrogen(atom))
            continue;
        co.insert(co.end(),
                  {static_cast<double>(at.x), static_cast<double>(at.y), static_cast<double>(at.z)});
        radius.push_back(1.4 + (letter == 'C' ? 1.9 : letter == 'O' ? 1.4 : 1.8));
    }
    Surface surface;
    ASSERT_EQ(nsc_dclm(co, radius, 700, surfaceAtomAreas, surface, standardMessages()), Status::ok);
    // freesasa 2.1.2, Shrake-Rupley, the same heavy atoms and radii, with 20,000 points on each.
    EXPECT_NEAR(surface.value_of_area / 4978.96, 1.0, 0.002);
}

TEST(AtomSelection, ExposedAtomsAreMarked)
{
    // Without hydrogens in the way the marks are exact; with hydrogens that the selection left out they go to
    // the first atoms of the molecule.
    const PDBInfo pdb = ubiquitin();
    for (const bool withHydrogens : {false, true}) {
        AtomMask mask, exposed;
        for (const AtomInfo &atom : pdb.atoms())
            mask.push_back(withHydrogens || !isHydrogen(atom) ? 1 : 0);
        ASSERT_EQ(callNSC({pdb, mask}, exposed, standardMessages()), Status::ok);
        const auto count = std::ranges::count(exposed, 1);
        EXPECT_GT(count, 50);
        EXPECT_LT(count, 300);
        EXPECT_EQ(std::count(exposed.begin() + 602, exposed.end(), 1) > 0, withHydrogens);
    }
}

TEST(AtomSelection, ChargesComeFirstAndADipoleReplacesThem)
{
    const PDBInfo pdb = ubiquitin();
    AtomMask heavy;
    for (const AtomInfo &atom : pdb.atoms())
        heavy.push_back(isHydrogen(atom) ? 0 : 1);
    std::vector<double> x(2000), y(2000), z(2000);
    SoluteOptions info;
    info.surfFlag = 0;
    struct Row {
        int elFlag, chSelFlag, dipoleFlag, charges, atoms;
    };
    for (const Row &row : std::initializer_list<Row>{
             {0, 0, 0, 0, 602}, {1, 0, 0, 3, 605}, {1, 1, 0, 3, 3}, {1, 0, 1, 2, 2}, {0, 1, 0, 0, 0}}) {
        Charges placed = {{100, 200, 300}, {1.0f, -0.5f, -1.5f}};
        ChargeSet charges = placed.set();
        info.elFlag = row.elFlag;
        info.chSelFlag = row.chSelFlag;
        info.dipoleFlag = row.dipoleFlag;
        SelectedCount selected;
        ASSERT_EQ(chCoorSelect({pdb, heavy}, info, {x, y, z}, charges, selected, standardMessages()),
                  Status::ok);
        EXPECT_EQ(static_cast<int>(selected.places), row.atoms);
        EXPECT_EQ(charges.chCount, row.charges);
        if (row.charges == 3) {
            EXPECT_EQ(placed.atoms[2], 2);
            EXPECT_FLOAT_EQ(static_cast<float>(y[1]), pdb.coordinates()[200].y);
        }
        if (row.dipoleFlag != 0) { // the negative centre: a quarter of the way from atom 300 to atom 200
            EXPECT_FLOAT_EQ(placed.values[0], 1.0f);
            EXPECT_FLOAT_EQ(placed.values[1], -2.0f);
            EXPECT_NEAR(x[0], static_cast<double>(pdb.coordinates()[100].x), 1e-4);
            EXPECT_NEAR(z[1],
                        0.25 * static_cast<double>(pdb.coordinates()[200].z) +
                            0.75 * static_cast<double>(pdb.coordinates()[300].z),
                        1e-4);
        }
    }
}

TEST(AtomSelection, NothingSelectedIsTold)
{
    AtomMask exposed;
    EXPECT_EQ(said([&] {
                  EXPECT_EQ(callNSC({PDBInfo{}, AtomMask{}}, exposed, standardMessages()), Status::failed);
              }).err,
              "nsc_dclm: no surface atoms selected\nNSC: error.\n");
}

} // namespace
} // namespace trelm
