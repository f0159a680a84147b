// Sets of residues against the pattern of a rigid molecule.
#include "magnitude/motion.h"

#include "common/said.h"
#include "magnitude/histogram.h"
#include "magnitude/likelihood_score.h"
#include "magnitude/powder.h"
#include "simulation/orientations/sphere.h"

#include <algorithm>
#include <cmath>
#include <random>
#include <sstream>

namespace trelm {
namespace {

TEST(Motion, EvenDistributionHasThePrincipalCouplings)
{
    const std::array<double, 12> dots = {0, 0, 1, 1, 0, 0, 0, 1, 0, 0, 0, -1};
    std::vector<float> dc = {7.0f};
    simulateIsotropic(dots, -10.0f, 0.2f, dc);
    ASSERT_EQ(dc.size(), 4u);
    EXPECT_FLOAT_EQ(dc[0], -20.0f); // no division by 0 at the poles
    EXPECT_FLOAT_EQ(dc[1], 7.0f);
    EXPECT_FLOAT_EQ(dc[2], 13.0f);
    EXPECT_FLOAT_EQ(dc[3], -20.0f);
}

TEST(Motion, ScoresByTheNumberOfCouplings)
{
    std::vector<MotionSet> sets(3);
    sets[0] = {.nDSel = 10, .scores = {0.4, 0, 0}};
    sets[1] = {.nDSel = 20, .scores = {0.4, 0, 0}};
    sets[2] = {.nDSel = 0, .scores = {0.4, 9, 9}};
    weighScores(sets);
    EXPECT_DOUBLE_EQ(sets[0].scores[1], 0.6);
    EXPECT_DOUBLE_EQ(sets[0].scores[2], 0.8);
    EXPECT_DOUBLE_EQ(sets[1].scores[1], 0.4);
    EXPECT_DOUBLE_EQ(sets[2].scores[1], 0.2);
    EXPECT_DOUBLE_EQ(sets[2].scores[2], 0.0);
}

TEST(Motion, ScoresAreBroughtInto0To1)
{
    struct Case {
        float r;
        double score, bounded;
    };
    const Case cases[] = {{0.1f, 0.5, 0.5}, {0.2f, 0.3, 0.3},  {0.3f, 1.7, 1.0},
                          {0.4f, 0.0, 0.3}, {0.5f, -2.0, 0.3}, {0.7f, 0.1, 0.1}}; // the last: R too large
    std::vector<MotionSet> sets;
    for (const Case &set : cases)
        sets.push_back({.Dab = -10.0f * set.r, .R = set.r, .scores = {set.score, 0.0, 2.0}});
    const MotionRanges ranges = boundScores(sets);
    for (std::size_t i = 0; i < sets.size(); ++i) {
        EXPECT_EQ(sets[i].scores[0], cases[i].bounded) << i;
        EXPECT_EQ(sets[i].scores[1], 0.0); // no score to take
        EXPECT_EQ(sets[i].scores[2], 1.0);
    }
    EXPECT_EQ(ranges.minScore[0], 0.3);
    EXPECT_EQ(ranges.maxScore[0], 1.0);
    EXPECT_EQ(ranges.minScore[2], 1.0);
    EXPECT_FLOAT_EQ(ranges.minDab, -7.0f);
    EXPECT_FLOAT_EQ(ranges.maxDab, -1.0f);
    EXPECT_FLOAT_EQ(ranges.minR, 0.1f);
    EXPECT_FLOAT_EQ(ranges.maxR, 0.7f);
    EXPECT_EQ(boundScores({}).maxScore[0], 0.0);
}

TEST(Motion, ColoursAreThoseOfAWalkOverAllSetsForEachCell)
{
    std::mt19937 engine(5);
    std::uniform_real_distribution<double> score(0.0, 1.2);
    std::uniform_int_distribution<int> tenth(-4, 44), hundredth(-4, 24);
    const MapAxes axes = {.firstDab = -13.0, .firstR = 0.0, .countDab = 21, .countR = 11};
    std::vector<MotionSet> sets(250);
    for (MotionSet &set : sets) // on the rims of cells, and beyond those of the map
        set = {.Dab = static_cast<float>(axes.firstDab + 0.1 * tenth(engine)),
               .R = static_cast<float>(0.01 * hundredth(engine)),
               .scores = {score(engine), score(engine), score(engine)}};
    const auto colours = mapColours(sets, axes);
    ASSERT_EQ(colours.size(), 21u * 11u);
    int empty = 0;
    for (std::size_t cell = 0; cell < colours.size(); ++cell) {
        const double Dab = axes.firstDab + 0.2 * static_cast<double>(cell / 11),
                     R = 0.02 * static_cast<double>(cell % 11);
        std::array<int, 3> plain = {};
        for (const MotionSet &set : sets)
            if (std::fabs(set.Dab - Dab) <= 0.5 * 0.2 && std::fabs(set.R - R) <= 0.5 * 0.02)
                for (std::size_t list = 0; list < 3; ++list)
                    plain[list] =
                        std::max({plain[list], list == 0 ? 1 : 0,
                                  static_cast<int>(std::ceil(15.0 * std::min(set.scores[list], 1.0)))});
        EXPECT_EQ(colours[cell], plain) << Dab << ' ' << R;
        empty += plain[0] == 0 ? 1 : 0;
    }
    EXPECT_GT(empty, 10);
    EXPECT_LT(empty, 150);
    EXPECT_EQ(mapColours({}, {.countDab = 1, .countR = 1}).at(0), (std::array<int, 3>{0, 0, 0}));
}

/// What a run on a synthetic pattern leaves.
struct MotionRun {
    Status status = Status::noSolution;
    std::string table, map;
};

MotionRun runMotion(const Powder &powder, const HistogramOptions &histogram, const DrawOptions &draw)
{
    const DTable dTab = powderTable(powder);
    const ObservedCouplings observed = observedPowder(powder);
    Heard heard;
    MotionRun run;
    MotionSets drawn;
    said([&] {
        run.status = drawMotion({dTab, 1, powder.count, observed, histogram, draw}, drawn, heard.messages);
    });
    const MotionRanges ranges = appendMotion(drawn.sets, drawn.nDots, run.table);
    EXPECT_EQ(appendMap(drawn.sets, ranges, run.map, heard.messages), Status::ok);
    return run;
}

/// The numbers of the lines of a table that begin with one.
std::vector<std::vector<double>> numbers(const std::string &text)
{
    std::vector<std::vector<double>> rows;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) {
        if (line.empty() || line[0] == '#')
            continue;
        std::istringstream words(line);
        rows.emplace_back();
        for (double value = 0.0; words >> value;)
            rows.back().push_back(value);
    }
    return rows;
}

TEST(Motion, SetsOfARigidMolecule)
{
    const MotionRun run =
        runMotion({.count = 400, .sigma = 0.5}, {.modeFit = 2}, {.sCount = 100, .histRan = 200});
    ASSERT_EQ(run.status, Status::ok);
    EXPECT_TRUE(run.table.starts_with("# nDots = 122\n\n1  -"));
    const auto sets = numbers(run.table);
    ASSERT_EQ(sets.size(), 200u);
    double da = 0.0, r = 0.0;
    double highest = -1e9;
    int scored = 0;
    for (const auto &set : sets) {
        ASSERT_EQ(set.size(), 7u);
        EXPECT_EQ(set[3], 100.0);
        da += set[1] / 200.0;
        highest = std::max(highest, set[1]);
        r += set[2] / 200.0;
        scored += set[4] > 0.0 ? 1 : 0;
        EXPECT_EQ(set[4], set[6]); // all sets have as many couplings
    }
    EXPECT_NEAR(da, -10.3, 0.5);
    EXPECT_NEAR(r, 0.22, 0.05);
    EXPECT_GT(scored, 190);
    // The map covers all sets, by steps of 0.2 and 0.02, and one row of Da more.
    const auto cells = numbers(run.map);
    ASSERT_FALSE(cells.empty());
    std::vector<double> colours;
    for (const auto &cell : cells)
        colours.push_back(cell[2]);
    EXPECT_EQ(cells.front()[0], std::floor(cells.front()[0]));
    EXPECT_EQ(cells.front()[1], 0.0);
    const std::size_t range = run.table.find("# DATA MAX_MIN Score  ");
    ASSERT_NE(range, std::string::npos);
    double most = 0.0, least = 0.0;
    std::istringstream(run.table.substr(range + 22)) >> most >> least;
    EXPECT_EQ(*std::ranges::max_element(colours), std::ceil(15.0 * (most - least))); // above the least ratio
    EXPECT_GT(std::ranges::count(colours, 0.0), 0);
    EXPECT_GT(cells.back()[0], highest);
    EXPECT_LT(cells.back()[0], highest + 0.2);
}

TEST(Motion, RatioIsThatOfTheCouplingsOverAnEvenDistribution)
{
    const Powder powder = {.count = 60, .sigma = 0.3};
    const auto sets = numbers(runMotion(powder, {.modeFit = 2}, {.sCount = 0, .histRan = 1}).table);
    ASSERT_EQ(sets.size(), 1u);
    std::vector<float> couplings = powderCouplings(powder);
    const Extremes extremes = findExtremes(couplings);
    const ExtremesTensor hist = solveExtremes(extremes.minD, extremes.maxD);
    const float da = -std::fabs(hist.Da2Par);
    turnPositive(couplings);
    std::vector<double> dots;
    ASSERT_TRUE(do_unsp(60, dots));
    std::vector<float> even;
    simulateIsotropic(dots, da, hist.R2Par, even);
    turnPositive(even);
    const double expected = mlMagTensorSingle(couplings, 0.3f, da, hist.R2Par, standardMessages()) /
                            mlMagTensorSingle(even, 0.3f, da, hist.R2Par, standardMessages());
    EXPECT_GT(std::fabs(expected - 1.0 / expected), 0.02);
    EXPECT_NEAR(sets[0][4], expected, 6e-4); // rounded in the table
}

TEST(Motion, ASetLargerThanTheMoleculeIsAllOfIt)
{
    for (const int sCount : {0, 60, 1000}) {
        const auto sets = numbers(
            runMotion({.count = 60, .sigma = 0.3}, {.modeFit = 2}, {.sCount = sCount, .histRan = 3}).table);
        ASSERT_EQ(sets.size(), 3u) << sCount;
        for (const auto &set : sets)
            EXPECT_EQ(set[3], 60.0) << sCount;
        for (std::size_t column = 1; column < sets[0].size(); ++column)
            EXPECT_EQ(sets[0][column], sets[2][column]) << column;
    }
}

TEST(Motion, MoreThanThousandsOfCouplings)
{
    const MotionRun run = runMotion({.count = 12000, .sigma = 0.5}, {}, {.sCount = 0, .histRan = 2});
    EXPECT_EQ(run.status, Status::ok);
    EXPECT_TRUE(run.table.starts_with("# nDots = 12002\n")) << run.table.substr(0, 60);
    EXPECT_EQ(numbers(run.table).at(1).at(3), 12000.0);
}

TEST(SelectDcResidue, ResiduesBringAllTheirCouplings)
{
    const ResidueCouplings residues = {{{1, 2}, {3}, {}}, {{0.5f, 0.5f}, {2}, {}}};
    std::vector<float> couplings, errors;
    float average = 0.0f;
    RandomStream random;
    EXPECT_EQ(selectDcResidue(random, residues, 3, couplings, errors, average), 3);
    EXPECT_FLOAT_EQ(average, 1.0f);
    EXPECT_EQ(errors.size(), couplings.size());
    couplings.clear();
    errors.clear();
    EXPECT_EQ(selectDcResidue(random, residues, 99, couplings, errors, average), 3); // no endless drawing
}

} // namespace
} // namespace trelm
