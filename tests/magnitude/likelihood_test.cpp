// The likelihood search: fast scores against the plain form, tensors that come back, and what is refused.
#include "magnitude/likelihood.h"

#include "common/said.h"
#include "magnitude/powder.h"
#include "reference/likelihood_reference.h"

#include <algorithm>
#include <cmath>
#include <random>
#include <string>
#include <vector>

namespace trelm {
namespace {

TEST(Likelihood, FastScoreIsThePlainOne)
{
    // Few couplings are summed one by one, many go through transforms, of several lengths.
    std::mt19937 engine(7);
    std::uniform_real_distribution<double> any(0.0, 1.0);
    int scored = 0, outOfRace = 0;
    std::vector<std::pair<int, double>> cases;
    for (const int count : {20, 63, 2000, 5000})
        for (const double sigma : {0.05, 0.5, 1.7})
            cases.emplace_back(count, sigma);
    for (const double sigma : {1.71, 2.5, 3.413}) // the response runs into itself
        cases.insert(cases.end(), {{20, sigma}, {2000, sigma}});
    for (const auto &[count, sigma] : cases) {
        for (const double Da : {-3.5, -10.3, -24.0}) {
            std::vector<float> couplings = powderCouplings({.da = Da,
                                                            .rhombicity = 0.3 * any(engine),
                                                            .count = count,
                                                            .sigma = sigma,
                                                            .seed = static_cast<unsigned>(engine())});
            turnPositive(couplings);
            for (const bool clear : {false, true}) {
                PatternScorer scorer;
                Heard heard;
                ASSERT_EQ(startScorer(scorer, couplings, sigma, heard.messages), Status::ok);
                std::vector<float> data(axisPlaces);
                for (const double R : {0.0, 0.1 + 0.3 * any(engine), 0.69, -0.6 * any(engine), 2.3}) {
                    const MlPoint point = {.Dab = Da * (0.9 + 0.14 * any(engine)), .R = R};
                    if (!isPattern(point.Dab, R))
                        continue;
                    const double plain = scorePlain(couplings, sigma, point, clear, data);
                    const double fast = scorePattern(scorer, point.Dab, point.R, clear);
                    // Large and small logarithms may cancel: each is rounded in single precision.
                    EXPECT_NEAR(fast, plain, 1e-5 * std::max(1.0, std::fabs(plain)) + 1e-7 * count)
                        << count << ' ' << sigma << ' ' << Da;
                    ++(plain == 0.0 ? outOfRace : scored);
                }
            }
        }
    }
    EXPECT_GT(scored, 150);
    EXPECT_GT(outOfRace, 50);
}

TEST(Likelihood, PatternIsADensityBetweenItsExtremes)
{
    for (const double R : {0.0, 0.05, 0.22, 0.5, 0.66}) {
        const double Da = -10.3, high = -2.0 * Da, low = Da * (1.0 + 1.5 * R);
        double area = 0.0, best = 0.0, peak = 0.0;
        for (double x = -40.0; x < 40.0; x += 0.001) {
            const double value = analytical(Da, R, x);
            area += value * 0.001;
            if (value > best) {
                best = value;
                peak = x;
            }
            ASSERT_TRUE(x < low || x > high ? value == 0.0 : value >= 0.0) << x;
        }
        // The series is cut short, which costs up to a tenth of the area about the peak.
        EXPECT_LT(area, 1.01) << R;
        EXPECT_GT(area, 0.9) << R;
        EXPECT_NEAR(peak, Da * (1.0 - 1.5 * R), 0.015) << R;
        EXPECT_GT(analytical(Da, R, high - 0.01), 0.0);
        EXPECT_TRUE(std::isfinite(analytical(Da, R, Da * (1.0 - 1.5 * R)))) << R;
    }
}

/// A search on a synthetic pattern.
struct Search {
    Powder powder = {.count = 300};
    LikelihoodOptions options = {.incDaMl = 0.2f, .incRMl = 0.02f};
    Status status = Status::noSolution;
    std::string err = {}, scores = {};
    MagnitudeRange best = {};

    void run()
    {
        std::vector<MlPoint> list(maxMlPoints);
        MlSearch found;
        Heard heard;
        err = said([&] {
                  status = getMlDabR(observedPowder(powder), options, list, found, heard.messages);
              }).err; // the progress
        err += heard.err;
        best = found.best;
        appendScores(std::span(list).first(found.points), scores);
    }
};

TEST(Likelihood, TensorsComeBackWithinTheirErrors)
{
    for (const double Da : {-5.0, -10.3, -18.0, 10.3}) {
        for (const double R : {0.04, 0.22, 0.5}) {
            Search search = {.powder = {.da = Da, .rhombicity = R, .count = 300}};
            search.options.mlClear = 1;
            search.options.lDaMl = static_cast<float>(Da - 4.0);
            search.options.hDaMl = static_cast<float>(Da + 4.0);
            search.run();
            ASSERT_EQ(search.status, Status::ok) << search.err;
            // At low R the pattern comes out a little wide: see the guide.
            EXPECT_NEAR(search.best.Dab, Da, search.best.DabErr + 0.02 * std::fabs(Da)) << R;
            EXPECT_NEAR(search.best.R, R, search.best.RErr) << Da;
        }
    }
}

TEST(Likelihood, LimitsOfEitherOrderAndSign)
{
    struct Case {
        float lDa, hDa;
        double sign;
    };
    for (const Case &limits : {Case{-25.0f, -3.0f, 1.0}, Case{-3.0f, -25.0f, 1.0}, Case{3.0f, 25.0f, -1.0},
                               Case{25.0f, 3.0f, -1.0}, Case{-25.0f, 3.0f, 1.0}, Case{0.0f, 25.0f, -1.0}}) {
        Search search;
        search.options.mlClear = 1;
        search.options.lDaMl = limits.lDa;
        search.options.hDaMl = limits.hDa;
        search.options.incDaMl = -0.5f; // its sign does not count
        search.run();
        ASSERT_EQ(search.status, Status::ok) << search.err;
        EXPECT_NEAR(search.best.Dab, -10.3 * limits.sign, search.best.DabErr) << limits.lDa;
        EXPECT_NE(search.scores.find("\n-10.0 0.20 "), std::string::npos) << "scores have the Da of the grid";
    }
}

TEST(Likelihood, ErrorsGoByCountAndR)
{
    struct Row {
        int count;
        float R;
        double DaErr, RErr;
    };
    for (const Row &row : {Row{40, 0.1f, 1.6, 0.17}, Row{40, 0.3f, 2.3, 0.22}, Row{40, 0.31f, 2.5, 0.3},
                           Row{41, 0.1f, 0.5, 0.05}, Row{90, 0.3f, 1.3, 0.13}, Row{90, 0.31f, 0.8, 0.13},
                           Row{91, 0.1f, 0.3, 0.05}, Row{91, 0.11f, 0.9, 0.1}, Row{91, 0.5f, 0.6, 0.1}}) {
        Search search = {.powder = {.rhombicity = row.R, .count = row.count, .sigma = 0.3}};
        search.options.lRMl = row.R;
        search.options.hRMl = row.R + 0.01f;
        search.run();
        ASSERT_EQ(search.best.R, double{row.R}) << search.err;
        EXPECT_EQ(search.best.DabErr, row.DaErr) << row.count << ' ' << row.R;
        EXPECT_EQ(search.best.RErr, row.RErr) << row.count << ' ' << row.R;
    }
}

TEST(Likelihood, NoPatternReachesTheCouplings)
{
    Search search;
    search.options.hDaMl = -3.0f;
    search.options.lDaMl = -4.0f;
    search.run();
    EXPECT_EQ(search.status, Status::ok);
    EXPECT_TRUE(search.err.ends_with("Warning: no grid point scores above 0, Da and R stay 0.\n"));
    EXPECT_EQ(search.best.Dab, 0.0);
    EXPECT_NE(search.scores.find("-3.0 0.00 0.000000e+00\n"), std::string::npos);
}

TEST(Likelihood, RefusesWhatItCannotSearch)
{
    struct Case {
        const char *message;
        void (*spoil)(Search &);
    };
    const Case cases[] = {
        {"Error: 5001 couplings, the limit of a likelihood search is 5000.\n",
         [](Search &s) { s.powder.count = 5001; }},
        {"Error: the grid of Da and R has 20001 points, the limit is 20000.\n",
         [](Search &s) {
             s.options.lDaMl = -3.0f - 2.0001e1f;
             s.options.incDaMl = 0.001f;
             s.options.hRMl = 0.01f;
         }},
        {"Error: the grid of Da and R has a step of 0.\n", [](Search &s) { s.options.incRMl = 0.0f; }},
        {"Error: the grid of Da and R has a step of 0.\n", [](Search &s) { s.options.incDaMl = NAN; }},
        {"Error: the patterns up to Da -44.800 Hz, R 0.680 do not fit the axis of 81.92 Hz.\n",
         [](Search &s) { s.options.lDaMl = -45.0f; }},
        {"Error: the mean error of the couplings is 0 Hz, it must be 1e-06 to 3.41 Hz.\n",
         [](Search &s) { s.powder.sigma = 0.0; }},
        {"Error: the mean error of the couplings is 3.42 Hz, it must be 1e-06 to 3.41 Hz.\n",
         [](Search &s) { s.powder.sigma = 3.42; }},
        {" Hz, more than the frequency axis of 81.92 Hz.\n", [](Search &s) { s.powder.da = -45.0; }},
    };
    for (const Case &fault : cases) {
        Search search;
        fault.spoil(search);
        search.run();
        EXPECT_EQ(search.status, Status::failed) << fault.message;
        EXPECT_NE(search.err.find(fault.message), std::string::npos) << fault.message << search.err;
        EXPECT_EQ(search.err.find("Grid point"), std::string::npos) << fault.message;
    }
    PatternScorer scorer;
    Heard heard;
    EXPECT_EQ(startScorer(scorer, std::vector{85.0f}, 0.5, heard.messages), Status::failed);
    EXPECT_EQ(heard.err, "Error: the coupling 85.000 Hz lies outside the frequency axis of 81.92 Hz.\n");
}

TEST(Likelihood, TakesWhatIsJustWithinTheLimits)
{
    Search search = {.powder = {.count = 5000, .sigma = 1.7}};
    search.options.mlClear = 1;
    search.options.lRMl = 0.2f;
    search.options.hRMl = 0.24f;
    search.run();
    ASSERT_EQ(search.status, Status::ok) << search.err;
    EXPECT_NEAR(search.best.Dab, -10.3, 0.9);

    Search fine = {.powder = {.da = -2.0, .count = 20}};
    fine.options = {.lDaMl = -3.0f, .hDaMl = -1.0f, .incDaMl = 0.01f, .hRMl = 1.0f, .incRMl = 0.01f};
    fine.run();
    EXPECT_EQ(fine.status, Status::ok) << fine.err;
    EXPECT_EQ(std::ranges::count(fine.scores, '\n'), 20000 + 3);
}

// Patterns that are kept favour narrow tensors; one R at a time widens the pattern only, and leaves nothing
// over.
TEST(Likelihood, OneRLeavesNothingOver)
{
    Search search = {.powder = {.count = 2000}};
    search.options.lRMl = 0.22f;
    search.options.hRMl = 0.23f;
    search.run();
    EXPECT_NEAR(search.best.Dab, -10.3, 0.3) << search.err;
}

TEST(Likelihood, AGridWithoutPointsHasNone)
{
    const std::vector<float> couplings = {1.0f, -2.0f};
    // Not even where the other axis has more steps than an integer counts.
    for (const MlGrid &grid :
         {MlGrid{-20.0, -3.0, 0.1, 0.5, 0.5, 0.1}, MlGrid{-1e300, -3.0, 1.0, 0.5, 0.5, 0.1},
          MlGrid{-3.0, -3.0, 0.1, 0.0, 1e9, 1e-300}}) {
        std::vector<MlPoint> list(10);
        std::size_t count = 1;
        Heard heard;
        EXPECT_EQ(mlMagTensor({couplings, 0.5}, grid, true, list, count, heard.messages), Status::ok);
        EXPECT_EQ(heard.err, "\n");
        EXPECT_EQ(count, 0u);
    }
}

TEST(Likelihood, RangesAreThePlainOnes)
{
    const MagnitudeRange range = {.Dab = -9.9, .DabErr = 1.3, .R = 0.13, .RErr = 0.13};
    CouplingRanges ranges;
    Heard heard;
    ASSERT_EQ(startRanges(ranges, range, heard.messages), Status::ok);
    for (const double coup : {-25.0, -11.2, -3.7, 0.0, 4.4, 8.5, 18.9, 30.0}) {
        for (const double coupErr : {0.0, 0.02, 0.16}) {
            double ave = 0.0, err = 0.0, avePlain = 0.0, errPlain = 0.0;
            mapMagToDc(ranges, coup, coupErr, ave, err);
            mapMagToDcPlain(range, coup, coupErr, avePlain, errPlain);
            EXPECT_EQ(ave, avePlain) << coup;
            EXPECT_EQ(err, errPlain) << coup;
        }
    }
}

} // namespace
} // namespace trelm
