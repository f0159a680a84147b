#include "couplings/statistics.h"

#include "support/text.h"

#include <algorithm>
#include <cmath>

namespace trelm {
namespace {

constexpr float reportLimit = 888.0f; ///< couplings from here on have no value in the report

/// Sums over the pairs of a report.
struct Sums {
    float obs2 = 0.0f;
    float diff = 0.0f;
    float diMax = 0.0f; ///< signed: after a negative value any row replaces it
    float wMax = 0.0f;
};

float safeRatio(float a, float b)
{
    return b != 0.0f ? a / b : 0.0f;
}

float squared(float a)
{
    return a * a;
}

/// Weighted pairs of the rows that count, and their sums.
void collectPairs(const DTable &dTab, Block<float> &obs, Block<float> &calc, Sums &sums, DcStatistics &stat)
{
    for (int i = 0; i < dTab.dCount; ++i) {
        const auto row = static_cast<std::size_t>(i);
        const DInfo &o = dTab.dObsList[row];
        const DInfo &c = dTab.dCalcList[row];
        if (o.valid == 0 || c.valid == 0 || !(o.d < reportLimit) || !(c.d < reportLimit))
            continue;
        if (std::abs(c.di) > sums.diMax) {
            sums.diMax = c.di;
            sums.wMax = c.w;
        }
        const auto pair = static_cast<std::size_t>(stat.nD++);
        obs[pair] = c.w * o.d;
        calc[pair] = c.w * c.d;
        const float diff = obs[pair] - calc[pair];
        sums.obs2 += squared(obs[pair]);
        sums.diff += diff;
        stat.rSumD2 += squared(diff);
        stat.pSumD += squared(o.sigma != 0.0f ? diff / o.sigma : diff);
    }
}

/// The RMS against that of couplings of vectors in all directions.
float qOfTensor(const DTensor &tensor, const Sums &sums, float rms)
{
    const float a = sums.diMax * tensor.da * sums.wMax;
    const float b = sums.diMax * tensor.dr * sums.wMax;
    const float norm =
        a != 0.0f ? std::sqrt(2.0f * squared(a) * (4.0f + 3.0f * squared(b / a)) / 5.0f) : 0.0f;
    return safeRatio(rms, norm);
}

} // namespace

Regression regress(std::span<const float> x, std::span<const float> y)
{
    Regression result;
    result.r = pearsn(x, y).r;
    result.yOnX = fit(x, y, {}, 0);
    result.xOnY = fit(y, x, {}, 0);
    if (result.xOnY.b == 0.0f)
        return result;
    result.aveSlope = (1.0f / result.xOnY.b + result.yOnX.b) / 2.0f;
    result.errAveSlope =
        result.aveSlope / 2.0f *
        std::sqrt(squared(result.yOnX.sigb) + squared(result.xOnY.sigb / squared(result.xOnY.b)));
    return result;
}

int getStatDC(std::span<const DInfo> dObsList, std::span<const DInfo> dCalcList, float &rSumD, float &pSumD,
              int &nD)
{
    rSumD = pSumD = 0.0f;
    nD = 0;
    int measured = 0;
    for (std::size_t i = 0; i < dObsList.size(); ++i) {
        const DInfo &o = dObsList[i];
        const DInfo &c = dCalcList[i];
        if (o.valid == 0 || o.d > maxCoupling)
            continue;
        ++measured;
        if (c.valid == 0 || c.d > maxCoupling)
            continue;
        const float diff = o.d - c.d;
        rSumD += squared(diff) * squared(c.w);
        pSumD += squared(o.sigma != 0.0f ? diff / o.sigma : diff);
        ++nD;
    }
    rSumD = nD > 0 ? std::sqrt(rSumD / static_cast<float>(nD)) : 0.0f;
    return measured;
}

int getStatDCmod(const DTable &dTab, DcStatistics &stat)
{
    stat = DcStatistics{};
    const auto rows = static_cast<std::size_t>(dTab.dCount);
    Block<float> obs("statDC", rows + 1);
    Block<float> calc("statDC", rows + 1);
    if (!obs || !calc)
        return complain("Error allocating temporary buffers.\n");
    Sums sums;
    collectPairs(dTab, obs, calc, sums, stat);
    if (stat.nD == 0)
        return 0;
    const auto n = static_cast<float>(stat.nD);
    stat.stdDevD = std::sqrt(std::max(0.0f, (stat.rSumD2 - squared(sums.diff) / n) / n));
    stat.qD = std::sqrt(safeRatio(stat.rSumD2, sums.obs2));
    stat.rSumD2 = std::sqrt(stat.rSumD2 / n);
    stat.qIsoD = qOfTensor(dTab.dTensor, sums, stat.rSumD2);
    const auto pairs = static_cast<std::size_t>(stat.nD);
    const Regression line = regress(obs.span().first(pairs), calc.span().first(pairs));
    stat.coorR = line.r;
    stat.offset = line.yOnX.a;
    stat.errOffset = line.yOnX.siga;
    stat.slope = line.yOnX.b;
    stat.errSlope = line.yOnX.sigb;
    stat.aveSlope = line.aveSlope;
    stat.errAveSlope = line.errAveSlope;
    return 0;
}

} // namespace trelm
