#include "couplings/quality.h"

#include "couplings/prepared.h"
#include "support/numerics/student.h"

#include <algorithm>
#include <cmath>
#include <random>

namespace trelm {
namespace {

/// A table, its fit and what that is worth.
struct Judged : Prepared {
    FitColumns columns;
    FitResult fit;
    FitQuality quality;
    explicit Judged(const std::string &name) : Prepared(ubiquitinFolder + name)
    {
        takeColumns(table, columns);
    }
    Judged &judge(const QualityOptions &options = {})
    {
        FitWork work;
        fit = startOf(table);
        const FitInput input = {pdb.coordinates(), table, columns};
        EXPECT_EQ(fitColumns(input, work, fit, standardMessages()), Status::ok);
        EXPECT_EQ(assessQuality(input, fit, options, quality, standardMessages()), Status::ok);
        return *this;
    }
    std::string doubtfulTypes() const
    {
        std::string names;
        for (const TypeQuality &type : quality.byType.types)
            if (isDoubtful(type.verdict))
                names += type.name + (type.verdict == TypeVerdict::turned       ? " turned "
                                      : type.verdict == TypeVerdict::normalised ? " normalised "
                                                                                : " otherwise ");
        return names;
    }
    /// Couplings of a random tensor of 10 Hz on a random part of the rows, with the noise that the errors
    /// tell.
    void simulate(std::mt19937 &random)
    {
        std::normal_distribution<double> normal;
        Saupe saupe;
        std::ranges::generate(saupe, [&] { return normal(random); });
        const double size = std::sqrt(couplingOf(saupe, saupe));
        std::ranges::for_each(saupe, [&](double &value) { value *= 1e-3 / size; });
        judge();
        const double kept = std::uniform_real_distribution(0.4, 1.0)(random);
        for (const QualityRow &row : quality.rows) {
            columns.d[row.row] = static_cast<float>(couplingOf(row.design, saupe) +
                                                    normal(random) * double{columns.sigma[row.row]});
            columns.use[row.row] = std::uniform_real_distribution()(random) < kept ? 1 : 0;
        }
    }
    /// Multiplies the couplings of a type, and their errors by the size of the factor.
    void multiply(const std::string &type, double factor)
    {
        for (const QualityRow &row : quality.rows)
            if (quality.byType.types[row.type].name == type) {
                columns.d[row.row] *= static_cast<float>(factor);
                columns.sigma[row.row] *= static_cast<float>(std::fabs(factor));
            }
    }
};

const std::string backboneNames[] = {"N-H", "H-C", "CA-HA", "N-C", "CA-C"};

TEST(Quality, StudentAgreesWithTables)
{
    // Abramowitz and Stegun, table 26.10.
    EXPECT_NEAR(studentLimit(0.05, 1), 12.706, 0.001);
    EXPECT_NEAR(studentLimit(0.01, 10), 3.169, 0.001);
    EXPECT_NEAR(studentLimit(0.001, 60), 3.460, 0.001);
    EXPECT_NEAR(studentLimit(0.05, 100000), 1.960, 0.001);
}

TEST(Quality, FiguresOfUbiquitin)
{
    const FitQuality q = Judged("bicelle_hn.tab").judge().quality;
    EXPECT_EQ(q.degreesOfFreedom, 58);
    EXPECT_NEAR(q.unitWeight, 2.443, 0.001);
    EXPECT_NEAR(q.analysis.da * amideHertz, -9.398, 0.001);
    EXPECT_NEAR(q.errors->da * amideHertz, 0.0256, 0.0001);
    EXPECT_NEAR(q.scaledErrors->da * amideHertz, 0.0625, 0.0001);
    EXPECT_NEAR(q.scaledErrors->rhombicity, 0.0064, 0.0001);
    EXPECT_NEAR(q.scaledErrors->tiltZY, 0.23, 0.005);
    EXPECT_NEAR(q.scaledErrors->tiltZX, 0.25, 0.005);
    EXPECT_NEAR(q.scaledErrors->tiltYX, 1.10, 0.005);
    EXPECT_NEAR(q.meanLeverage, 0.079, 0.0005);
    EXPECT_NEAR(q.largestLeverage, 0.114, 0.0005);
    EXPECT_NEAR(q.fitted.q, 0.0459, 0.00005);
    EXPECT_NEAR(q.free[0].q, 0.0500, 0.00005);
    EXPECT_TRUE(q.outliers.empty());

    Judged all("bicelle_hn_all.tab");
    all.judge();
    ASSERT_GE(all.quality.outliers.size(), 2U);
    const auto residue = [&](std::size_t k) {
        return all.table.observed()[all.quality.rows[all.quality.outliers[k].row].row].resIDI;
    };
    EXPECT_EQ(residue(0), 76);
    EXPECT_EQ(residue(1), 75);
    EXPECT_NEAR(all.quality.outliers[0].studentised, 11.3, 0.05);
    const RowResidual &hidden = all.quality.residuals[all.quality.outliers[1].row];
    EXPECT_NEAR(hidden.studentised, 4.8, 0.05);
    EXPECT_NEAR(hidden.robust, 11.8, 0.05);
}

TEST(Quality, ErrorsAreThoseOfNoisyFits)
{
    Judged judged("bicelle_hn.tab");
    const FitQuality first = judged.judge().quality;
    std::mt19937 random(20);
    std::normal_distribution<double> normal;
    constexpr int count = 4000;
    std::vector<double> da, rhombicity, gamma;
    for (int k = 0; k < count; ++k) {
        for (const QualityRow &row : first.rows)
            judged.columns.d[row.row] =
                static_cast<float>(row.calculated + normal(random) * first.unitWeight / row.weight);
        FitWork work;
        FitResult fit = startOf(judged.table);
        ASSERT_EQ(fitColumns({judged.pdb.coordinates(), judged.table, judged.columns}, work, fit,
                             standardMessages()),
                  Status::ok);
        Saupe saupe;
        std::ranges::copy(fit.tensor.saupe, saupe.begin());
        TensorAnalysis analysis;
        ASSERT_EQ(analyzeSaupe(saupe, 0, 1, analysis, standardMessages()), Status::ok);
        da.push_back(analysis.da);
        rhombicity.push_back(analysis.dr / analysis.da);
        gamma.push_back(std::remainder(analysis.euler.gamma[0] - first.analysis.euler.gamma[0], 180.0));
    }
    const auto spread = [](const std::vector<double> &values) {
        double sum = 0.0, squares = 0.0;
        for (const double value : values) {
            sum += value;
            squares += value * value;
        }
        return std::sqrt(squares / count - sum / count * sum / count);
    };
    EXPECT_NEAR(first.scaledErrors->da / spread(da), 1.0, 0.05);
    EXPECT_NEAR(first.scaledErrors->rhombicity / spread(rhombicity), 1.0, 0.05);
    EXPECT_NEAR(first.scaledErrors->gamma / spread(gamma), 1.0, 0.05);
}

TEST(Quality, LeavingOutIsFittingWithout)
{
    Judged judged("bicelle_backbone.tab");
    const FitQuality all = judged.judge({.free = FreeOptions{LeaveOut::inParts, 4, 7}}).quality;
    for (const std::size_t row : {std::size_t{0}, std::size_t{100}, std::size_t{290}}) {
        judged.columns.use[row] = 0;
        const FitQuality without = judged.judge().quality;
        EXPECT_NEAR(all.free[0].predicted[row], without.rows[row].calculated, 2e-4);
        EXPECT_NEAR(all.residuals[row].leftOut,
                    without.notFitted.rms * (all.residuals[row].leftOut < 0.0 ? -1 : 1), 2e-4);
        judged.columns.use[row] = 1;
    }
    for (const QualityRow &row : all.rows)
        judged.columns.use[row.row] = row.type == 1 ? 0 : 1;
    EXPECT_NEAR(all.free[1].parts[1].rms, judged.judge().quality.notFitted.rms, 1e-4);
    EXPECT_NEAR(all.byType.types[1].leftOutRms, judged.quality.notFitted.rms, 1e-4);
    ASSERT_EQ(all.free[2].parts.size(), 4U);
    EXPECT_EQ(all.free[2].count, 301);
    EXPECT_NEAR(all.free[2].q, all.free[0].q, 0.002);
}

TEST(Quality, NothingIsSaidOfCleanCouplings)
{
    std::mt19937 random(1);
    Judged judged("bicelle_backbone.tab");
    int outliers = 0;
    for (int k = 0; k < 100; ++k) {
        judged.simulate(random);
        EXPECT_EQ(judged.judge().doubtfulTypes(), "") << "case " << k;
        outliers += judged.quality.outliers.empty() ? 0 : 1;
    }
    EXPECT_LE(outliers, 4); // one in a hundred is its chance
}

TEST(Quality, PlantedFaultsAreNamed)
{
    std::mt19937 random(2);
    for (int k = 0; k < 100; ++k) {
        Judged judged("bicelle_backbone.tab");
        judged.simulate(random);
        const std::string &type = backboneNames[static_cast<std::size_t>(k) % 5];
        const FitColumns clean = judged.columns;
        judged.multiply(type, -1.0);
        EXPECT_EQ(judged.judge().doubtfulTypes(), type + " turned ") << "turned, case " << k;

        judged.columns = clean;
        const std::string &scaled = type == "N-H" ? backboneNames[1] : type;
        judged.multiply(
            scaled, amideHertz /
                        std::ranges::find(judged.quality.byType.types, scaled, &TypeQuality::name)->constant);
        EXPECT_EQ(judged.judge().doubtfulTypes(), scaled + " normalised ") << "normalised, case " << k;

        judged.columns = clean;
        const auto fitted = [&] {
            std::size_t row = random() % clean.d.size();
            while (clean.use[row] == 0)
                row = random() % clean.d.size();
            return row;
        };
        const std::size_t first = fitted(), second = fitted();
        for (const std::size_t row : {first, second})
            judged.columns.d[row] += 15.0f * clean.sigma[row];
        judged.judge();
        for (const std::size_t row : {first, second})
            EXPECT_TRUE(std::ranges::any_of(
                judged.quality.outliers,
                [&](const Outlier &outlier) { return judged.quality.rows[outlier.row].row == row; }))
                << "outlier, case " << k;
        EXPECT_EQ(judged.doubtfulTypes(), "");
    }
}

TEST(Quality, OfTwoTypesTheOtherThanTheAmideIsTold)
{
    std::mt19937 random(4);
    for (int k = 0; k < 20; ++k) {
        Judged judged("bicelle_backbone.tab");
        judged.simulate(random);
        for (const QualityRow &row : judged.quality.rows)
            if (judged.quality.byType.types[row.type].name != "N-H" &&
                judged.quality.byType.types[row.type].name != "N-C")
                judged.columns.use[row.row] = 0;
        judged.multiply("N-H", -1.0);
        EXPECT_EQ(judged.judge().doubtfulTypes(), "N-C turned ");
    }
}

TEST(Quality, PhysicalSignsAreToldAsSuch)
{
    std::mt19937 random(3);
    Judged judged("bicelle_backbone.tab");
    judged.simulate(random);
    for (const char *type : {"H-C", "CA-HA", "CA-C"})
        judged.multiply(type, -1.0);
    EXPECT_EQ(judged.judge().doubtfulTypes(), "H-C turned CA-HA turned CA-C turned ");
    EXPECT_TRUE(judged.quality.byType.signsArePhysical);
}

} // namespace
} // namespace trelm
