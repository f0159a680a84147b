#include "support/numerics/jacobi.h"

#include "common/heard.h"
#include "support/numerics/random.h"

#include <algorithm>
#include <cmath>

namespace trelm {
namespace {

/// a v = v d, v orthonormal and right-handed, as rotations are.
template <class T>
void expectEigensystem(const std::array<T, 9> &a, const std::array<T, 3> &d, const std::array<T, 9> &v,
                       double tolerance)
{
    for (std::size_t i = 0; i < 3; ++i)
        for (std::size_t j = 0; j < 3; ++j) {
            double av = 0.0, vv = 0.0;
            for (std::size_t k = 0; k < 3; ++k) {
                av += double{a[3 * i + k]} * v[3 * k + j];
                vv += double{v[3 * k + i]} * v[3 * k + j];
            }
            EXPECT_NEAR(av, double{v[3 * i + j]} * d[j], tolerance);
            EXPECT_NEAR(vv, i == j ? 1.0 : 0.0, tolerance);
        }
    const double determinant = v[0] * (v[4] * v[8] - v[5] * v[7]) - v[1] * (v[3] * v[8] - v[5] * v[6]) +
                               v[2] * (v[3] * v[7] - v[4] * v[6]);
    EXPECT_NEAR(determinant, 1.0, tolerance);
}

TEST(Jacobi, EigensystemsInBothPrecisions)
{
    RandomStream random(-5);
    for (int trial = 0; trial < 200; ++trial) {
        Matrix3d a = {};
        for (std::size_t i = 0; i < 3; ++i)
            for (std::size_t j = i; j < 3; ++j)
                a[3 * i + j] = a[3 * j + i] = trial % 4 == 0 && i != j ? 1.0 : 2.0 * random.ran1() - 1.0;
        Matrix3f single = {};
        std::ranges::transform(a, single.begin(), [](double x) { return static_cast<float>(x); });
        std::array<float, 3> d = {};
        Matrix3f v = {};
        ASSERT_EQ(diag3By3(single, d, v), Status::ok);
        expectEigensystem(single, d, v, 3.0e-6);

        std::array<double, 3> dd = {};
        Matrix3d vv = {};
        Heard heard;
        EXPECT_EQ(jacobimz(a, dd, vv, heard.messages), Status::ok);
        expectEigensystem(a, dd, vv, 1.0e-13);
    }
}

TEST(Jacobi, SortRaisesMagnitudesAndKeepsTheHand)
{
    const std::array<float, 3> cases[] = {{3.0f, 1.0f, 2.0f}, {-5.0f, 4.0f, 1.0f}, {1.0f, 2.0f, -3.0f}};
    const Matrix3f a = {1.0f, 0.4f, -0.2f, 0.4f, -2.0f, 0.6f, -0.2f, 0.6f, 1.0f};
    Matrix3f frame = {};
    std::array<float, 3> unused = {};
    ASSERT_EQ(diag3By3(a, unused, frame), Status::ok);
    for (std::array<float, 3> d : cases) {
        // The matrix with these eigenvalues in that frame.
        Matrix3f m = {};
        for (std::size_t i = 0; i < 3; ++i)
            for (std::size_t j = 0; j < 3; ++j)
                for (std::size_t k = 0; k < 3; ++k)
                    m[3 * i + j] += frame[3 * i + k] * d[k] * frame[3 * j + k];
        Matrix3f v = frame;
        eigsrt3By3NegRevTP(d, v);
        EXPECT_TRUE(std::fabs(d[0]) <= std::fabs(d[1]) && std::fabs(d[1]) <= std::fabs(d[2]));
        const Matrix3f columns = {v[0], v[3], v[6], v[1], v[4], v[7], v[2], v[5], v[8]};
        expectEigensystem(m, d, columns, 1.0e-5);
    }
    // A tie is an exchange too, with the sign in the first column.
    std::array<float, 3> d = {1.0f, -1.0f, 2.0f};
    Matrix3f v = {1, 0, 0, 0, 1, 0, 0, 0, 1};
    eigsrt3By3NegRevTP(d, v);
    EXPECT_EQ(d, (std::array<float, 3>{-1.0f, 1.0f, 2.0f}));
    EXPECT_EQ(v, (Matrix3f{0, -1, 0, 1, 0, 0, 0, 0, 1}));
}

TEST(Jacobi, ValuesThatAreNoNumbersFail)
{
    std::array<float, 3> d = {};
    Matrix3f v = {};
    EXPECT_EQ(diag3By3({1, NAN, 0, NAN, 1, 0, 0, 0, 1}, d, v), Status::failed);
    std::array<double, 3> dd = {};
    Matrix3d vv = {};
    Heard heard;
    EXPECT_EQ(jacobimz({1, NAN, 0, NAN, 1, 0, 0, 0, 1}, dd, vv, heard.messages), Status::failed);
    EXPECT_EQ(heard.err, "Utility Error: Too many iterations in routine jacobi\nAborting.\n");
}

} // namespace
} // namespace trelm
