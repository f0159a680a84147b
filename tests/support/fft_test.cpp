#include "reference/fft.h"

#include "common/said.h"
#include "random_values.h"

#include <cmath>
#include <complex>
#include <vector>

namespace trelm {
namespace {

/// The transform by its definition.
std::vector<std::complex<double>> plainTransform(const std::vector<float> &data)
{
    const std::size_t n = data.size();
    std::vector<std::complex<double>> result(n);
    for (std::size_t j = 0; j < n; ++j)
        for (std::size_t k = 0; k < n; ++k)
            result[j] += std::polar(double{data[k]},
                                    2.0 * M_PI * static_cast<double>(j * k % n) / static_cast<double>(n));
    return result;
}

TEST(Fft, TransformsAgreeWithTheDefinitionAndGoBack)
{
    for (std::size_t n : {2U, 4U, 8U, 64U, 512U}) {
        const double tolerance = 2.0e-7 * static_cast<double>(n);
        const std::vector<float> one = randomValues(n, -1), two = randomValues(n, -2);
        const auto plainOne = plainTransform(one), plainTwo = plainTransform(two);
        std::vector<float> fft1(2 * n), fft2(2 * n), real = one;
        ASSERT_EQ(twofft(one, two, fft1, fft2), 0);
        ASSERT_EQ(realft(real, 1), 0);
        for (std::size_t k = 0; k < n; ++k) {
            EXPECT_NEAR(fft1[2 * k], plainOne[k].real(), tolerance);
            EXPECT_NEAR(fft1[2 * k + 1], plainOne[k].imag(), tolerance);
            EXPECT_NEAR(fft2[2 * k], plainTwo[k].real(), tolerance);
            EXPECT_NEAR(fft2[2 * k + 1], plainTwo[k].imag(), tolerance);
            if (k > 0 && k < n / 2) {
                EXPECT_NEAR(real[2 * k], plainOne[k].real(), tolerance);
                EXPECT_NEAR(real[2 * k + 1], plainOne[k].imag(), tolerance);
            }
        }
        EXPECT_NEAR(real[1], plainOne[n / 2].real(), tolerance);
        ASSERT_EQ(four1(fft1, -1), 0);
        ASSERT_EQ(realft(real, -1), 0);
        for (std::size_t k = 0; k < n; ++k) {
            EXPECT_NEAR(fft1[2 * k] / static_cast<float>(n), one[k], 1.0e-6);
            EXPECT_NEAR(real[k] * 2.0f / static_cast<float>(n), one[k], 1.0e-6);
        }
    }
}

TEST(Fft, ConvolutionIsTheDirectSumAndGoesBack)
{
    constexpr std::size_t n = 128, m = 9, wing = (m - 1) / 2;
    const std::vector<float> data = randomValues(n, -3);
    // Not symmetric, so that a response the wrong way round shows.
    const std::vector<float> response = {1.0f, 0.3f, 0.1f, 0.05f, 0.02f, 0.01f, 0.02f, 0.04f, 0.2f};
    std::vector<float> ans(2 * n), back(2 * n);
    ASSERT_EQ(convlv(data, response, 1, ans), 0);
    for (std::size_t i = 0; i < n; ++i) {
        double sum = 0.0;
        for (std::size_t k = 0; k <= wing; ++k)
            sum += response[k] * data[(i + n - k) % n];
        for (std::size_t k = 1; k <= wing; ++k)
            sum += response[m - k] * data[(i + k) % n];
        EXPECT_NEAR(ans[i], sum, 2.0e-6) << i;
    }
    ASSERT_EQ(convlv(std::span(ans).first(n), response, -1, back), 0);
    for (std::size_t i = 0; i < n; ++i)
        EXPECT_NEAR(back[i], data[i], 1.0e-5);
}

TEST(Fft, WhatCannotBeTransformedIsRefused)
{
    std::vector<float> odd(6), data(8, 1.0f), ans(16);
    const Said told = said([&] {
        EXPECT_EQ(four1(odd, 1), 1);
        EXPECT_EQ(convlv(odd, std::vector<float>{1.0f}, 1, ans), 1);
        EXPECT_EQ(convlv(data, std::vector<float>(2), 1, ans), 1);
        EXPECT_EQ(convlv(data, std::vector<float>(3, 0.0f), -1, ans), 1);
    });
    EXPECT_NE(told.err.find("Deconvolving at response zero in convlv"), std::string::npos);
}

} // namespace
} // namespace trelm
