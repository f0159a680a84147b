#include "simulation/orientations/sphere.h"

#include "common/said.h"
#include "simulation/molecules.h"
#include "simulation/orientations/rotation.h"

#include <cmath>
#include <vector>

namespace trelm {
namespace {

TEST(Sphere, DensityGivesTheSmallerTessellation)
{
    struct Row {
        int densit, type, dots;
    };
    for (const Row &row : std::initializer_list<Row>{{1, 10, 12},
                                                     {12, 10, 12},
                                                     {13, 9, 32},
                                                     {33, 10, 42},
                                                     {100, 9, 122},
                                                     {162, 10, 162},
                                                     {200, 10, 252},
                                                     {400, 9, 482},
                                                     {700, 9, 752},
                                                     {1000, 10, 1002}}) {
        EXPECT_EQ(unsp_type(row.densit), row.type) << row.densit;
        EXPECT_EQ(dotCount(row.densit), row.dots) << row.densit;
        EXPECT_EQ(dotsOf(row.densit).size(), static_cast<std::size_t>(3 * row.dots)) << row.densit;
    }
    EXPECT_GT(dotCount(2000000000), 2000000000); // near the range of int: no overflow
    DotSet set;
    EXPECT_FALSE(make_unsp(20000000, set)); // too many
}

TEST(Sphere, DotsAreEvenAndOnTheUnitSphere)
{
    for (const int densit : {33, 100, 162, 700}) {
        const std::vector<double> dots = dotsOf(densit);
        const std::size_t count = dots.size() / 3;
        // Even dots keep a distance near that of a hexagonal packing of their number.
        const double spacing = std::sqrt(4.0 * M_PI / static_cast<double>(count) * 2.0 / std::sqrt(3.0));
        for (std::size_t i = 0; i < count; ++i) {
            double nearest = 4.0;
            for (std::size_t j = 0; j < count; ++j) {
                const double d = std::hypot(dots[3 * i] - dots[3 * j], dots[3 * i + 1] - dots[3 * j + 1],
                                            dots[3 * i + 2] - dots[3 * j + 2]);
                nearest = j != i ? std::min(nearest, d) : nearest;
            }
            EXPECT_NEAR(std::hypot(dots[3 * i], dots[3 * i + 1], dots[3 * i + 2]), 1.0, 1e-12);
            EXPECT_NEAR(nearest / spacing, 1.0, 0.25) << densit;
        }
        EXPECT_EQ(dots, dotsOf(densit)) << "the same order each time";
    }
}

TEST(Sphere, DotsOfACellStandTogether)
{
    DotSet set;
    ASSERT_TRUE(make_unsp(700, set));
    const std::vector<double> &dots = set.dots;
    int total = 0;
    for (std::size_t c = 0; c < set.cellCount.size(); ++c) {
        total += set.cellCount[c];
        for (int i = set.cellFirst[c]; i < set.cellFirst[c] + set.cellCount[c]; ++i)
            for (std::size_t axis = 0; axis < 3; ++axis) {
                const auto place = static_cast<std::size_t>(std::lround(std::pow(4.0, axis)));
                const double cell = static_cast<double>(c / place % 4);
                const double value = dots[static_cast<std::size_t>(3 * i) + axis];
                EXPECT_GE(value, -1.0 + 0.5 * cell - 1e-12);
                EXPECT_LE(value, -0.5 + 0.5 * cell + 1e-12);
            }
    }
    EXPECT_EQ(total, 752);
    // The cells with the lowest x come first, whatever their y and z.
    for (std::size_t i = 3; i < dots.size(); i += 3)
        EXPECT_GE(std::floor(dots[i] * 2.0), std::floor(dots[i - 3] * 2.0));
}

TEST(Rotation, MatrixTurnsVectorsThePassiveWay)
{
    const double theta = 0.7, phi = -1.1, psi = 2.3;
    const Matrix3f single =
        getRotMat(static_cast<float>(theta), static_cast<float>(phi), static_cast<float>(psi));
    // A dot turns onto the director when its own angles are used.
    const Axis dot = {std::sin(theta) * std::cos(phi), std::sin(theta) * std::sin(phi), std::cos(theta)};
    const Axis turned = rotate_vector(theta, phi, psi, dot);
    const Axis director = {0.0, 0.0, 1.0};
    for (std::size_t i = 0; i < 3; ++i) {
        EXPECT_NEAR(turned[i], director[i], 1e-12);
        double product = 0.0;
        for (std::size_t j = 0; j < 3; ++j)
            product += static_cast<double>(single[3 * i + j]) * dot[j];
        EXPECT_NEAR(product, director[i], 1e-6);
    }
    const Matrix3f back = matMult(
        single, getRotMat(static_cast<float>(-theta), static_cast<float>(-psi), static_cast<float>(-phi)));
    for (std::size_t i = 0; i < 9; ++i)
        EXPECT_NEAR(back[i], i % 4 == 0 ? 1.0f : 0.0f, 1e-6f);
}

TEST(Rotation, GridPointsRoundHalvesTowardZero)
{
    struct Row {
        float value;
        int point;
    };
    for (const Row &row : std::initializer_list<Row>{{0.0f, 0},
                                                     {0.5f, 0},
                                                     {0.51f, 1},
                                                     {-0.5f, 0},
                                                     {-0.51f, -1},
                                                     {2.5f, 2},
                                                     {-2.6f, -3},
                                                     {1e20f, 2147483647}})
        EXPECT_EQ(getGridPoint(row.value), row.point) << row.value;
}

} // namespace
} // namespace trelm
