#include "structure/superpose.h"

#include "structure/transform.h"

#include <gtest/gtest.h>

#include <vector>

namespace trelm {
namespace {

TEST(Superposition, TurnedAtomsComeBackAndThoseThatAreNotChosenFollow)
{
    const std::vector<Coord3D> fixed = {{1, 2, 3}, {4, -1, 0}, {-2, 5, 1}, {0, 0, 7}, {3, 3, -4}, {9, 9, 9}};
    for (const float angle : {0.0f, 10.0f, 90.0f, 180.0f}) {
        for (const std::size_t chosen : {std::size_t{3}, std::size_t{5}}) { // three lie in a plane
            std::vector<Coord3D> moved = fixed;
            Transform turn;
            turn.appendRotation(angle, -2.0f * angle, 0.7f * angle);
            turn.appendTranslation(30.0f, -20.0f, 5.0f);
            turn.apply(moved);
            AtomMask atoms(fixed.size(), 0);
            std::fill_n(atoms.begin(), chosen, static_cast<unsigned char>(1));
            const Superposition laid = superpose(fixed, moved, atoms);
            moveAtoms(laid, moved);
            EXPECT_LT(laid.rmsd, 1e-5);
            for (std::size_t k = 0; k < fixed.size(); ++k) {
                EXPECT_NEAR(moved[k].x, fixed[k].x, 1e-5) << angle << ' ' << k;
                EXPECT_NEAR(moved[k].y, fixed[k].y, 1e-5) << angle << ' ' << k;
                EXPECT_NEAR(moved[k].z, fixed[k].z, 1e-5) << angle << ' ' << k;
            }
        }
    }
}

} // namespace
} // namespace trelm
