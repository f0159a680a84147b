// Laws of the tensor analysis.
#include "couplings/fit.h"
#include "couplings/tensor.h"

#include "common/said.h"

#include <algorithm>
#include <cmath>

namespace trelm {
namespace {

constexpr Saupe example = {-5.6e-4, 0.9e-4, 0.3e-4, -1.4e-4, 5.6e-4};

Matrix3d product(const Matrix3d &a, const Matrix3d &b)
{
    Matrix3d m{};
    for (std::size_t i = 0; i < 3; ++i)
        for (std::size_t j = 0; j < 3; ++j)
            for (std::size_t k = 0; k < 3; ++k)
                m[i * 3 + j] += a[i * 3 + k] * b[k * 3 + j];
    return m;
}

/// Turns by an angle, degrees, about axis 0, 1 or 2.
Matrix3d turn(std::size_t axis, double angle)
{
    const double c = std::cos(angle * 3.14159265 / 180.0), s = std::sin(angle * 3.14159265 / 180.0);
    const std::size_t i = (axis + 1) % 3, j = (axis + 2) % 3;
    Matrix3d m = {1, 0, 0, 0, 1, 0, 0, 0, 1};
    m[i * 3 + i] = m[j * 3 + j] = c;
    m[i * 3 + j] = -s;
    m[j * 3 + i] = s;
    return m;
}

/// M = Rz(gamma) Ry(beta) Rz(alpha), passive, from angles in degrees.
Matrix3d frameOf(double alpha, double beta, double gamma)
{
    return product(turn(2, -gamma), product(turn(1, -beta), turn(2, -alpha)));
}

Matrix3d transposed(const Matrix3d &a)
{
    return {a[0], a[3], a[6], a[1], a[4], a[7], a[2], a[5], a[8]};
}

TEST(Tensor, EverySolutionDiagonalisesTheMatrix)
{
    TensorAnalysis analysis;
    ASSERT_EQ(analyzeSaupe(example, 0, 1, analysis, standardMessages()), Status::ok);
    EXPECT_GE(std::abs(analysis.eigVal[0]), std::abs(analysis.eigVal[1]));
    EXPECT_GE(std::abs(analysis.eigVal[1]), std::abs(analysis.eigVal[2]));
    EXPECT_NEAR(analysis.gMag,
                std::hypot(analysis.eigVal[0], analysis.eigVal[1], analysis.eigVal[2]) *
                    std::sqrt(8.0 * 3.14159265 / 15.0),
                1e-10);
    for (std::size_t i = 0; i < 4; ++i) {
        const Matrix3d turn =
            frameOf(-analysis.euler.gamma[i], -analysis.euler.beta[i], -analysis.euler.alpha[i]);
        const Matrix3d diagonal = product(product(turn, saupeMatrix(example)), transposed(turn));
        EXPECT_NEAR(diagonal[0], analysis.eigVal[2], 1e-10) << i;
        EXPECT_NEAR(diagonal[4], analysis.eigVal[1], 1e-10) << i;
        EXPECT_NEAR(diagonal[8], analysis.eigVal[0], 1e-10) << i;
        EXPECT_NEAR(diagonal[1], 0.0, 1e-10) << i;
        EXPECT_NEAR(diagonal[5], 0.0, 1e-10) << i;
    }
}

TEST(Tensor, MagnitudesOfKnownTensors)
{
    // Along the axes: Szz, Syy, Sxx = -6, 4, 2.
    struct {
        const char *why;
        Saupe saupe;
        int yzFlag;
        double da, dr;
    } const cases[] = {
        {"axes in order", {-6, -2, 0, 0, 0}, 0, -3.0, -2.0 / 3.0},
        {"y for z", {-6, -2, 0, 0, 0}, 1, 2.0, 8.0 / 3.0},
        {"axial", {6, 0, 0, 0, 0}, 0, 3.0, 0.0},
        {"nothing", {0, 0, 0, 0, 0}, 0, 0.0, 0.0},
    };
    for (const auto &known : cases) {
        TensorAnalysis analysis;
        ASSERT_EQ(analyzeSaupe(known.saupe, known.yzFlag, 1, analysis, standardMessages()), Status::ok);
        EXPECT_NEAR(analysis.da, known.da, 1e-12) << known.why;
        EXPECT_NEAR(analysis.dr, known.dr, 1e-12) << known.why;
        for (const double angle : analysis.euler.beta)
            EXPECT_TRUE(std::isfinite(angle)) << known.why;
    }
    TensorAnalysis analysis;
    const std::string told =
        said([&] {
            EXPECT_EQ(analyzeSaupe({0, 0, NAN, 0, 0}, 0, 1, analysis, standardMessages()), Status::failed);
            EXPECT_EQ(analyzeMatrix3D({0, NAN, 0, NAN, 0, 0, 0, 0, 0}, 0, analysis, standardMessages()),
                      Status::failed);
        }).err;
    EXPECT_EQ(told, "Utility Error: Too many iterations in routine jacobi\nAborting.\n"
                    "Utility Error: Too many iterations in routine jacobi\nAborting.\n");
}

TEST(Tensor, CollinearityAtItsEnds)
{
    float dcos = 9.0f, angle = 9.0f;
    for (int step = 1; step <= 50; ++step) {
        const float size = 1e-4f * static_cast<float>(step);
        SaupeValues a = {-5.6f * size, 0.9f, 0.3f * size, -1.4f, 5.6f}, opposite = a;
        for (float &value : opposite)
            value = -value;
        irrCollinarity(a, a, dcos, angle);
        EXPECT_EQ(dcos, 1.0f) << step;
        EXPECT_EQ(angle, 0.0f) << step;
        irrCollinarity(a, opposite, dcos, angle);
        EXPECT_EQ(dcos, -1.0f) << step;
        EXPECT_EQ(angle, 0.0f) << step; // by convention: the arc is not taken
    }
    irrCollinarity({2, 0, 0, 0, 0}, {}, dcos, angle);
    EXPECT_EQ(dcos, 0.0f);
    irrCollinarity({2, 0, 0, 0, 0}, {0, 0, 1, 0, 0}, dcos, angle);
    EXPECT_NEAR(angle, 90.0f, 1e-4f);
}

TEST(Tensor, RotationGivesItsOwnAnglesBack)
{
    for (const auto &[psi, theta, phi] : {std::array{20.0f, 30.0f, 40.0f},
                                          {-75.0f, -50.0f, 10.0f},
                                          {5.0f, 80.0f, -88.0f},
                                          {33.0f, 90.0f, 0.0f},
                                          {0.0f, 0.0f, 0.0f}}) {
        Matrix3f r = {};
        std::ranges::transform(product(turn(2, phi), product(turn(1, theta), turn(0, psi))), r.begin(),
                               [](double value) { return static_cast<float>(value); });
        RotationLists lists;
        EXPECT_EQ(rot2euler(r, lists), 2) << theta;
        const float bound = theta == 0.0f ? 0.0f : 0.05f;
        EXPECT_NEAR(lists.psi[0], psi, bound) << theta;
        EXPECT_NEAR(lists.theta[0], theta, bound) << theta;
        EXPECT_NEAR(lists.phi[0], phi, bound) << theta;
    }
    // Theta of 90 degrees, and an element that rounding has put above 1.
    RotationLists lists;
    rot2euler({0, 0, 1.0000001f, 0, 1, 0, -1, 0, 0}, lists);
    EXPECT_TRUE(std::isfinite(lists.psi[0]));
}

} // namespace
} // namespace trelm
