// Da and R from extremes and peak of a distribution.
#include "magnitude/histogram.h"

#include "common/heard.h"
#include "magnitude/powder.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>

namespace trelm {
namespace {

/// The result for a synthetic pattern.
HistogramResult estimate(const Powder &powder, int modeFit, int optExtrem)
{
    Heard heard;
    HistogramResult result;
    EXPECT_EQ(getHistDabR(observedPowder(powder), {.optExtrem = optExtrem, .modeFit = modeFit}, result,
                          heard.messages),
              Status::ok)
        << heard.err;
    return result;
}

TEST(Histogram, PatternsComeBackWithinTheClaimedErrors)
{
    struct Case {
        int modeFit, optExtrem, count;
        double sigma;
        double errors; ///< claimed errors of Da that are allowed; noise takes the extremes outwards
    };
    for (const Case &run :
         {Case{2, 1, 1000, 0.5, 2.0}, Case{2, 0, 1000, 0.5, 2.0}, Case{2, 1, 5000, 0.2, 2.1},
          Case{3, 1, 5000, 0.2, 2.6}, Case{3, 1, 5000, 1.0, 2.6}, Case{3, 0, 5000, 0.5, 3.1}})
        for (const double da : {-10.3, 18.0})
            for (const double rhombicity : {0.05, 0.22, 0.45, 0.6}) {
                SCOPED_TRACE(testing::Message() << run.modeFit << run.optExtrem << ' ' << run.count << ' '
                                                << run.sigma << ' ' << da << ' ' << rhombicity);
                const HistogramResult found =
                    estimate({.da = da, .rhombicity = rhombicity, .count = run.count, .sigma = run.sigma},
                             run.modeFit, run.optExtrem);
                EXPECT_NEAR(found.DaFit, da, run.errors * double{found.DaErrFit});
                EXPECT_NEAR(found.RFit, rhombicity, 2.2 * double{found.RErrFit});
                EXPECT_NEAR(found.DaErrFit, run.sigma / std::sqrt(run.modeFit == 2 ? 4.0 : 6.0), 1e-3);
            }
}

TEST(Histogram, AnExtremeIsTheMeanOfTheFirstSetThatNoLongerAgrees)
{
    struct Case {
        float delta, sdevNeg, sdevPos, dNeg, dPos;
    };
    // From above: 10, 10 agree, with 9.8 sdev * sqrt(n) is 0.2, with 3 it is 6.9.
    for (const Case &limits :
         {Case{1.0f, 0.9f, 0.4f, -4.3f, 8.2f}, Case{1.0f, 0.05f, 0.19f, -7.95f, 9.9333f},
          Case{0.01f, 1.0f, 1.0f, -7.95f, 9.9333f}, Case{100.0f, 1.0f, 1.0f, 2.8167f, 2.8167f}, // all agree
          Case{0.0f, 1.0f, 1.0f, 0.0f, 0.0f}, Case{1.0f, -1.0f, 1.0f, 0.0f, 8.2f}}) {
        std::array<float, 6> couplings = {10.0f, 3.0f, -7.9f, 9.8f, -8.0f, 10.0f};
        const AveragedExtremes found = getDzzDyy(couplings, limits.delta, limits.sdevNeg, limits.sdevPos);
        EXPECT_NEAR(found.dNeg, limits.dNeg, 1e-4f) << limits.delta;
        EXPECT_NEAR(found.dPos, limits.dPos, 1e-4f) << limits.delta;
    }
}

TEST(Histogram, BinsLieFromTheSmallestOn)
{
    struct Case {
        float delta, max, min;
        int asked;
        bool fits;
        int count;
        float width;
    };
    for (const Case &range :
         {Case{0.5f, 10.0f, -5.0f, 0, true, 17, 1.0f}, // 16 wide, and one
          Case{0.5f, 10.0f, -5.0f, -3, true, 17, 1.0f}, Case{0.5f, 10.0f, -5.0f, 5, true, 5, 4.0f},
          Case{0.5f, 10.0f, -5.0f, 2, true, 2, 16.0f},
          Case{0.5f, 10.0f, -5.0f, 250, true, 250, 16.0f / 249.0f},
          Case{0.5f, 10.0f, -5.0f, 251, false, 251, 0.0f},
          Case{0.5f, 1e20f, -5.0f, 0, false, 1000000001, 0.0f}, Case{0.0f, 10.0f, -5.0f, 0, false, 251, 0.0f},
          Case{0.0f, 1.0f, 1.0f, 7, false, 251, 0.0f}}) {
        Bins bins;
        EXPECT_EQ(makeBins(range.delta, range.max, range.min, range.asked, bins), range.fits);
        EXPECT_EQ(bins.nBins, range.count);
        if (!range.fits)
            continue;
        ASSERT_EQ(bins.centres.size(), static_cast<std::size_t>(range.count));
        EXPECT_NEAR(bins.binWidth, range.width, 1e-6f);
        EXPECT_EQ(bins.centres.front(), range.min);
        EXPECT_NEAR(bins.centres[1], range.min + range.width, 1e-6f);
    }
}

TEST(Histogram, TheMostPopulatedBin)
{
    struct Case {
        std::vector<float> couplings;
        bool isSingle;
        float dxx;
        const char *told;
    };
    const std::vector<Case> cases = {
        {{0.2f, 1.2f, 1.4f}, true, 1.0f, ""},
        {{0.2f, 1.2f}, false, 0.0f, ""},
        {{0.2f, 1.2f, 2.0f, 2.1f}, true, 2.0f, ""}, // overtakes a tie
        {{2.5f}, true, 2.0f, ""},                   // the upper rim belongs to the last bin
        {{-0.5f, 1.0f, -0.4f}, true, 0.0f, ""},     // so does the lower
        {{3.0f, 1.0f, -0.6f}, true, 1.0f, "coupList[0] (3.000) > 2.500\ncoupList[2] (-0.600) < -0.500\n"},
        {{}, false, -1.0f, ""},
        {{7.0f}, false, -1.0f, "coupList[0] (7.000) > 2.500\n"}};
    const Bins bins = {.nBins = 3, .binWidth = 1.0f, .centres = {0.0f, 1.0f, 2.0f}};
    for (const Case &list : cases) {
        float dxx = -1.0f;
        Heard heard;
        EXPECT_EQ(getDxx(list.couplings, bins, dxx, heard.messages), list.isSingle);
        EXPECT_EQ(heard.out, list.told);
        EXPECT_EQ(dxx, list.dxx);
    }
}

TEST(Histogram, ModelAndItsDerivatives)
{
    const std::array<float, 2> a = {-9.0f, 0.3f};
    const auto model = [](float x, std::array<float, 2> at) {
        float y = 0.0f;
        std::array<float, 2> unused = {};
        alignpoly(x, at, y, unused);
        return y;
    };
    EXPECT_FLOAT_EQ(model(0.0f, a), -18.0f);
    EXPECT_FLOAT_EQ(model(1.0f, a), 9.0f * 1.45f);
    EXPECT_FLOAT_EQ(model(-1.0f, a), 9.0f * 0.55f);
    for (const float x : {0.0f, 1.0f, -1.0f}) {
        float y = 0.0f;
        std::array<float, 2> dyda = {};
        alignpoly(x, a, y, dyda);
        EXPECT_NEAR(dyda[0], (model(x, {-8.0f, 0.3f}) - model(x, {-10.0f, 0.3f})) / 2.0f, 1e-5f);
        EXPECT_NEAR(dyda[1], (model(x, {-9.0f, 0.4f}) - model(x, {-9.0f, 0.2f})) / 0.2f, 1e-4f);
    }
}

TEST(HistogramOfASet, FitStaysWithinItsBounds)
{
    // Dzz -20, Dyy 15 and Dxx 5 are those of Da -10, R 1/3.
    struct Case {
        int modeFit;
        float dxx, rhHi, da, r;
    };
    for (const Case &set :
         {Case{3, 5.0f, 0.667f, -10.0f, 1.0f / 3.0f}, Case{2, 5.0f, 0.667f, -10.0f, 1.0f / 3.0f},
          Case{3, 5.0f, 0.2f, -10.1942f, 0.2f}, Case{1, 5.0f, 0.667f, -7.0f, 0.1f}}) {
        HistogramResult hist;
        hist.Dzz = -20.0f, hist.Dyy = 15.0f, hist.Dxx = set.dxx;
        hist.Da2Par = -7.0f, hist.R2Par = 0.1f;
        Heard heard;
        fitDCHisto({.rhHi = set.rhHi, .modeFit = set.modeFit}, hist, heard.messages);
        EXPECT_NEAR(hist.DaFit, set.da, 2e-3f) << set.rhHi;
        EXPECT_NEAR(hist.RFit, set.r, 1e-4f) << set.rhHi;
    }
}

TEST(HistogramOfASet, WithoutAPeakTheTensorBeforeStays)
{
    struct Case {
        std::vector<float> couplings;
        int modeFit, nBinIn;
        Status status;
        int nBins;
        float da; ///< 99: as before
    };
    const std::vector<Case> cases = {
        {{-20.0f, 5.0f, 5.1f, 15.0f}, 3, 0, Status::ok, 19, -10.1667f},
        {{-20.0f, 5.0f, 15.0f}, 3, 0, Status::ok, 19, 99.0f},
        {{-20.0f, 5.0f, 15.0f}, 3, 9, Status::ok, 3, 99.0f}, // 9, 7, 5, 3 bins
        {{-20.0f, 5.0f, 15.0f}, 3, 7, Status::ok, 1, 99.0f}, // down to a single one, which takes none
        {{-20.0f, 5.0f, 9.0f, 15.0f}, 3, 9, Status::ok, 5, -10.4583f}, // no peak in 9 nor in 7
        {{-20.0f, 5.0f, 15.0f}, 2, 0, Status::ok, 0, -10.0f},
        {{-20.0f, 5.0f, 15.0f}, 7, 0, Status::ok, 0, 99.0f},
        {{-20.0f, 5.0f, 15.0f}, 3, 251, Status::failed, 0, 99.0f},
        {{-20.0f}, 2, 0, Status::failed, 0, 99.0f},
        {{0.0f, 0.0f}, 2, 0, Status::failed, 0, 99.0f}};
    for (const Case &set : cases) {
        HistogramResult hist;
        hist.DaFit = 99.0f;
        std::vector<float> couplings = set.couplings;
        const std::vector<float> sigma(couplings.size(), 1.0f);
        Heard heard;
        EXPECT_EQ(histoExtFit(couplings, sigma,
                              {.optExtrem = 0, .nBinIn = set.nBinIn, .modeFit = set.modeFit}, hist,
                              heard.messages),
                  set.status);
        EXPECT_EQ(hist.nBins, set.nBins) << set.nBinIn;
        EXPECT_NEAR(hist.DaFit, set.da, 1e-3f) << set.nBinIn;
    }
}

} // namespace
} // namespace trelm
