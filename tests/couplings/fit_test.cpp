#include "couplings/fit.h"

#include "common/said.h"
#include "couplings/dc_table.h"
#include "couplings/prepared.h"

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

namespace trelm {
namespace {

/// The largest difference of two Saupe vectors.
double apart(const SaupeValues &a, const SaupeValues &b)
{
    double largest = 0.0;
    for (std::size_t i = 0; i < 5; ++i)
        largest = std::max(largest, std::fabs(double{a[i]} - b[i]));
    return largest;
}

TEST(FitD, EvaluatesOnceWhereAllIsFixed)
{
    Prepared p(ubiquitinFolder + "bicelle_hn.tab");
    ASSERT_EQ(p.valid, static_cast<int>(p.table.dCount));
    DTensor &tensor = p.table.dTensor;
    tensor = DTensor{};
    tensor.tensorMode = tensorFixed;
    tensor.rhFlag = 1;
    tensor.rh = tensor.rhMin = tensor.rhMax = 0.25f;
    tensor.da = tensor.daMin = tensor.daMax = -4.0e-4f;
    tensor.psi = tensor.psiMin = tensor.psiMax = 30.0f;
    tensor.theta = tensor.thetaMin = tensor.thetaMax = -20.0f;
    tensor.phi = tensor.phiMin = tensor.phiMax = 110.0f;
    EXPECT_EQ(fitD(p.pdb.coordinates(), p.table, 0, standardMessages()), 63);
    EXPECT_EQ(tensor.dr, 0.25f * -4.0e-4f);
    EXPECT_EQ(tensor.psi, 30.0f);
    std::vector<float> nonlinear;
    for (const DCalc &row : p.table.calculated())
        nonlinear.push_back(row.d);
    // Both engines have one convention: the vector that this one leaves gives the same couplings.
    tensor.userSaupe = tensor.saupe;
    tensor.tensorMode = tensorSaupe;
    fitD(p.pdb.coordinates(), p.table, 0, standardMessages());
    for (std::size_t i = 0; i < nonlinear.size(); ++i)
        EXPECT_NEAR(p.table.calculated()[i].d, nonlinear[i], 0.002);
    EXPECT_NEAR(tensor.da, -4.0e-4f, 1.0e-9f);
    EXPECT_NEAR(tensor.dr, -1.0e-4f, 1.0e-8f);
}

TEST(FitD, DebugLinesOfAnEvaluation)
{
    Prepared p(ubiquitinFolder + "bicelle_hn.tab");
    for (DCalc &row : p.table.calculated().subspan(2))
        row.w = 0.0f;
    DTensor &tensor = p.table.dTensor;
    tensor.tensorMode = tensorFixed;
    tensor.rh = tensor.rhMin = tensor.rhMax = 0.25f;
    tensor.da = tensor.daMin = tensor.daMax = -4.0e-4f;
    tensor.dr = tensor.drMin = tensor.drMax = -1.0e-4f;
    tensor.psi = tensor.psiMin = tensor.psiMax = 30.0f;
    tensor.theta = tensor.thetaMin = tensor.thetaMax = -20.0f;
    tensor.phi = tensor.phiMin = tensor.phiMax = 110.0f;
    for (const int rhFlag : {1, 0}) {
        tensor.rhFlag = rhFlag;
        const std::string second = rhFlag != 0 ? "Rh 0.250" : "Dr -1.000e-04";
        EXPECT_EQ(said([&] { fitD(p.pdb.coordinates(), p.table, 3, standardMessages()); }).err,
                  "2 Couplings, 4 Atoms Selected.\n"
                  " DC   1   -8.170   -1.153   -7.017\n"
                  " DC   2    8.271   -9.864   18.135\n"
                  "Rot(30.000 -20.000 110.000) Da -4.000e-04 " +
                      second + " RMS(2): 85.9340\n"); // errors of 0.16 Hz
    }
}

TEST(FitD, RepeatedFitsHaveTheSameBits)
{
    // Rows of one, two, three and six pairs, of weight 0, and out of use.
    const std::string name = ubiquitinFolder + "bicelle_backbone.tab";
    Prepared p(name);
    DTable &table = p.table;
    ASSERT_EQ(p.valid, static_cast<int>(table.dCount));
    for (std::size_t i = 0; i < 40; ++i) {
        DCalc &row = table.dCalcList[i];
        const auto atomsI = static_cast<std::uint32_t>(i % 4);
        for (std::size_t a = 1; a < atomsI; ++a)
            row.atomI.places[a] = table.dCalcList[i + 50].atomI[0];
        row.atomI.count = std::max(1U, atomsI);
        if (i % 8 == 0) {
            row.atomJ.places[1] = table.dCalcList[i + 60].atomJ[0];
            row.atomJ.count = 2;
        }
        row.w = i % 11 == 0 ? 0.0f : row.w;
        row.valid = i % 13 == 0 ? 0 : 1;
    }
    FitColumns columns;
    takeColumns(table, columns);
    FitResult plain = startOf(table);
    const FitInput input = {p.pdb.coordinates(), table, columns};
    FitWork work;
    ASSERT_EQ(fitColumns(input, work, plain, standardMessages()), Status::ok);
    ASSERT_GT(plain.used, 200);
    RepeatedFit repeated;
    prepareRepeatedFit(input, plain.tensor, repeated);
    ASSERT_TRUE(repeated.isUsable);
    FitResult kept = plain;
    std::mt19937 engine(3);
    std::normal_distribution<float> noise;
    for (int sample = 0; sample < 5; ++sample) {
        for (float &d : columns.d)
            d += noise(engine);
        ASSERT_EQ(refitColumns(repeated, input, work, kept, standardMessages()), Status::ok);
        ASSERT_EQ(fitColumns(input, work, plain, standardMessages()), Status::ok);
        EXPECT_EQ(kept.used, plain.used);
        EXPECT_EQ(kept.tensor.saupe, plain.tensor.saupe);
        EXPECT_EQ(kept.tensor.phiList, plain.tensor.phiList);
        EXPECT_EQ(kept.calculated, plain.calculated);
    }
    plain.tensor.tensorMode = tensorNofixed; // no linear fit: fitColumns itself
    prepareRepeatedFit(input, plain.tensor, repeated);
    EXPECT_FALSE(repeated.isUsable);
}

TEST(FitD, LeavesZeroAnglesWithFewerCouplingsThanParameters)
{
    Prepared p(ubiquitinFolder + "bicelle_hn.tab");
    ASSERT_EQ(p.valid, static_cast<int>(p.table.dCount));
    for (DCalc &row : p.table.calculated().subspan(3))
        row.w = 0.0f;
    p.table.dTensor.tensorMode = tensorNofixed;
    EXPECT_EQ(fitD(p.pdb.coordinates(), p.table, 0, standardMessages()), 3);
    EXPECT_EQ(p.table.dTensor.psi, 0.0f);
    EXPECT_EQ(p.table.dTensor.psiList[0], 0.0f);
    EXPECT_EQ(p.table.dTensor.da, 0.001f);
    p.table.dTensor = DTensor{};
    EXPECT_EQ(fitD(p.pdb.coordinates(), p.table, 0, standardMessages()), 3); // the linear fit: a zero tensor
    EXPECT_EQ(p.table.dTensor.saupe, (SaupeValues{}));
    EXPECT_EQ(p.table.calculated()[0].d, 0.0f);
    EXPECT_EQ(p.table.calculated()[3].d, noCoupling);
}

/// One row on four atoms by hand, the tensor Szz = 1: a coupling is |di| (3 z^2 - 1) / 2.
struct HandMade {
    static constexpr Coord3D coords[4] = {{0, 0, 0}, {0, 0, 1}, {1, 0, 0}, {0, 1, 2}};
    DTable table;
    HandMade(std::uint32_t countI, std::uint32_t countJ)
    {
        table = makeTable({{0.0f, 0.0f}});
        table.maxCount = countI * countJ;
        DCalc &calc = table.dCalcList[0];
        calc.di = -10.0f;
        calc.atomI.count = countI;
        calc.atomJ.count = countJ;
        for (std::uint32_t j = 0; j < countJ; ++j)
            calc.atomJ.places[j] = j + 1;
        table.dTensor.tensorMode = tensorSaupe;
        table.dTensor.userSaupe = {1.0f, 0.0f, 0.0f, 0.0f, 0.0f};
    }
};

TEST(FitDSVD, TreatsGroupsOfAtomsByTheirNumberOfPairs)
{
    HandMade one(1, 1), two(1, 2), three(1, 3);
    for (HandMade *made : {&one, &two, &three})
        EXPECT_EQ(fitD(HandMade::coords, made->table, 0, standardMessages()), 1);
    EXPECT_NEAR(one.table.dCalcList[0].d, 10.0, 1e-5);       // along z
    EXPECT_NEAR(two.table.dCalcList[0].d, 10.0 - 5.0, 1e-5); // along z and along x, summed
    // One vector to the mean (1/3, 1/3, 1): cos^2 = 9/11.
    EXPECT_NEAR(three.table.dCalcList[0].d, 10.0 * (27.0 / 11.0 - 1.0) / 2.0, 1e-5);
}

/// Random vectors for findS, with couplings of a known tensor.
struct Sample {
    std::array<std::vector<float>, 6> xyz;
    std::vector<float> di, d, sigma;
    explicit Sample(std::size_t count)
    {
        std::mt19937 random(7);
        std::uniform_real_distribution<float> uniform(-10.0f, 10.0f);
        for (auto &column : xyz)
            for (std::size_t i = 0; i < count; ++i)
                column.push_back(uniform(random));
        di.assign(count, -5000.0f);
        d.assign(count, 0.0f);
        sigma.assign(count, 0.5f);
    }
    FitVectors vectors() { return {xyz[0], xyz[1], xyz[2], xyz[3], xyz[4], xyz[5], di, d, sigma}; }
};

TEST(FindS, SurvivesRowsThatSayNothing)
{
    const SaupeValues truth = {4e-4f, -3e-4f, 2e-4f, 1e-4f, -2e-4f};
    Sample sample(30);
    findD(sample.vectors(), truth);
    for (std::size_t k = 0; k < 6; ++k)
        sample.xyz[k].push_back(1.0f); // both atoms at one place
    sample.di.push_back(0.0f);         // no constant
    sample.d.push_back(3.0f);
    sample.sigma.push_back(0.0f);
    SaupeValues saupe = {};
    FitWork work;
    EXPECT_EQ(findS(sample.vectors(), saupe, work, standardMessages()), Status::ok);
    // The row has weight 1 and target 0 beside weights of 10000.
    EXPECT_LT(apart(saupe, truth), 2.0e-9);
    findD(sample.vectors(), saupe);
    EXPECT_EQ(sample.d.back(), 0.0f);
}

TEST(FindS, AsksForNoMemoryAgain)
{
    Sample large(50), small(20);
    SaupeValues saupe = {};
    FitWork work;
    EXPECT_EQ(findS(large.vectors(), saupe, work, standardMessages()), Status::ok);
    EXPECT_EQ(said([&] {
                  setAlloc(1);
                  EXPECT_EQ(findS(large.vectors(), saupe, work, standardMessages()), Status::ok);
                  setAlloc(0);
              }).err,
              "");
    EXPECT_EQ(findS(small.vectors(), saupe, work, standardMessages()), Status::ok);
}

TEST(Saupe2Euler, EverySolutionGivesTheVectorBack)
{
    const SaupeValues saupe = {-5e-4f, 3e-4f, -2e-4f, 1.5e-4f, 4e-4f};
    RotationLists lists;
    std::array<float, 3> eigVal = {};
    float da = 0.0f, dr = 0.0f;
    const int count = saupe2euler(saupe, lists, eigVal, da, dr);
    ASSERT_GE(count, 1);
    ASSERT_LE(count, 8);
    for (std::size_t i = 0; i < static_cast<std::size_t>(count); ++i) {
        SaupeValues back = {};
        euler2saupe(back, lists.psi[i], lists.theta[i], lists.phi[i], da, dr);
        EXPECT_LT(apart(back, saupe), 1.0e-9) << "solution " << i;
    }
}

} // namespace
} // namespace trelm
