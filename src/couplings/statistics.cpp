#include "couplings/statistics.h"

#include "support/numerics/numbers.h"
#include "support/text/text.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace trelm {
namespace {

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

/// A result in single precision. Squares of extreme couplings or magnitudes leave that range, so they are
/// formed in double precision; what is no number even then has no value, which is 0.
float valueOf(double result)
{
    constexpr double largest = std::numeric_limits<float>::max();
    return std::isnan(result) ? 0.0f : static_cast<float>(std::clamp(result, -largest, largest));
}

/// Weighted pairs of the rows that count, and their sums.
void collectPairs(const FittedTable &table, Block<float> &obs, Block<float> &calc, Sums &sums,
                  DcStatistics &stat)
{
    for (std::size_t i = 0; i < table.dTab.dCount; ++i) {
        const DInfo &o = table.dTab.dObsList[i];
        const DCalc &c = table.dTab.dCalcList[i];
        if (!table.isShown(i) || !(o.d < reportLimit) || !(table.calculated(i) < reportLimit))
            continue;
        if (std::abs(c.di) > sums.diMax) {
            sums.diMax = c.di;
            sums.wMax = c.w;
        }
        const auto pair = static_cast<std::size_t>(stat.nD++);
        obs[pair] = c.w * o.d;
        calc[pair] = c.w * table.calculated(i);
        const float diff = obs[pair] - calc[pair], sigma = table.error(i);
        sums.obs2 += squared(obs[pair]);
        sums.diff += diff;
        stat.rSumD2 += squared(diff);
        stat.pSumD += squared(sigma != 0.0f ? diff / sigma : diff);
    }
}

/// The RMS against that of couplings of vectors in all directions.
float qOfTensor(const DTensor &tensor, const Sums &sums, float rms)
{
    const float a = sums.diMax * tensor.da * sums.wMax;
    const float b = sums.diMax * tensor.dr * sums.wMax;
    if (a == 0.0f)
        return 0.0f;
    const double aSquared = double{a} * a;
    const double ratio = double{b} / a;
    return valueOf(rms / std::sqrt(2.0 * aSquared * (4.0 + 3.0 * ratio * ratio) / 5.0));
}

/// The weighted pairs of a statistics block and their sums.
struct Pairs {
    explicit Pairs(std::size_t rows) : dcNorm("statDC", rows + 1), dcMatrixNorm("statDC", rows + 1) {}
    Block<float> dcNorm, dcMatrixNorm; ///< measured and calculated, times the calculated entry's weight
    int nD = 0;
    double rSumD = 0.0, rSumD2 = 0.0, sumD2 = 0.0;
};

bool isCompared(const DInfo &observed, const DCalc &calculated)
{
    return observed.valid != 0 && calculated.valid != 0 && observed.d < missingCoupling &&
           calculated.d < missingCoupling;
}

void collectCompared(const DTable &dTab, Pairs &pairs)
{
    for (std::size_t i = 0; i < dTab.dCount; ++i) {
        const DInfo &o = dTab.dObsList[i];
        const DCalc &c = dTab.dCalcList[i];
        if (!isCompared(o, c))
            continue;
        const auto pair = static_cast<std::size_t>(pairs.nD++);
        pairs.dcNorm[pair] = o.d * c.w;
        pairs.dcMatrixNorm[pair] = c.d * c.w;
        const double measured = static_cast<double>(pairs.dcNorm[pair]);
        const double diff = measured - static_cast<double>(pairs.dcMatrixNorm[pair]);
        pairs.rSumD += diff;
        pairs.rSumD2 += diff * diff;
        pairs.sumD2 += measured * measured;
    }
}

} // namespace

Regression regress(std::span<const float> x, std::span<const float> y)
{
    Regression result;
    result.r = pearsn(x, y);
    result.yOnX = fit(x, y);
    result.xOnY = fit(y, x);
    for (LineFit *line : {&result.yOnX, &result.xOnY})
        for (float *value : {&line->a, &line->b, &line->siga, &line->sigb})
            *value = valueOf(*value);
    if (result.xOnY.b == 0.0f)
        return result;
    // The errors enter as they are, though the factor in front of the root asks for relative ones: that is
    // the number which the reports have always shown.
    const double b1 = result.yOnX.b, sigb1 = result.yOnX.sigb;
    const double b2 = result.xOnY.b, sigb2 = result.xOnY.sigb / (b2 * b2);
    const double aveSlope = (1.0 / b2 + b1) / 2.0;
    result.aveSlope = valueOf(aveSlope);
    result.errAveSlope = valueOf(aveSlope / 2.0 * std::sqrt(sigb1 * sigb1 + sigb2 * sigb2));
    return result;
}

Misfit getStatDC(const DTable &dTab, const FitColumns &columns, std::span<const float> calculated)
{
    Misfit misfit;
    for (std::size_t i = 0; i < calculated.size(); ++i) {
        const bool isMeasured = dTab.dObsList[i].valid != 0 && !(columns.d[i] > maxCoupling);
        if (!isMeasured || columns.use[i] == 0 || calculated[i] > maxCoupling)
            continue;
        const float diff = columns.d[i] - calculated[i], sigma = columns.sigma[i];
        misfit.rSumD += squared(diff) * squared(dTab.dCalcList[i].w);
        misfit.pSumD += squared(sigma != 0.0f ? diff / sigma : diff);
        ++misfit.nD;
    }
    if (misfit.nD > 0)
        misfit.rSumD = std::sqrt(misfit.rSumD / static_cast<float>(misfit.nD));
    return misfit;
}

Status getStatDCmod(const FittedTable &table, DcStatistics &stat, Messages &messages)
{
    stat = DcStatistics{};
    const std::size_t rows = table.dTab.dCount;
    // Both regressions run over the pairs themselves: a copy with room behind them gives the same numbers.
    Block<float> obs("statDC", rows + 1);
    Block<float> calc("statDC", rows + 1);
    if (!obs || !calc)
        return messages.fail("Error allocating temporary buffers.\n");
    Sums sums;
    collectPairs(table, obs, calc, sums, stat);
    if (stat.nD == 0)
        return Status::ok;
    const auto n = static_cast<float>(stat.nD);
    stat.stdDevD = std::sqrt(std::max(0.0f, (stat.rSumD2 - squared(sums.diff) / n) / n));
    stat.qD = valueOf(std::sqrt(safeRatio(stat.rSumD2, sums.obs2)));
    stat.rSumD2 = std::sqrt(stat.rSumD2 / n);
    stat.qIsoD = qOfTensor(table.tensor, sums, stat.rSumD2);
    const auto pairs = static_cast<std::size_t>(stat.nD);
    const Regression line = regress(obs.span().first(pairs), calc.span().first(pairs));
    stat.coorR = line.r;
    stat.offset = line.yOnX.a;
    stat.errOffset = line.yOnX.siga;
    stat.slope = line.yOnX.b;
    stat.errSlope = line.yOnX.sigb;
    stat.aveSlope = line.aveSlope;
    stat.errAveSlope = line.errAveSlope;
    return Status::ok;
}

Status statDC(const DTable &dTab, ComparedCouplings &found, Messages &messages)
{
    found = ComparedCouplings{};
    Pairs pairs(dTab.dCount);
    if (!pairs.dcNorm || !pairs.dcMatrixNorm)
        return messages.fail("Error allocating temporary buffers.\n");
    collectCompared(dTab, pairs);
    if (pairs.nD != 0) {
        const double n = pairs.nD;
        found.stdDevD =
            static_cast<float>(std::sqrt(std::max(0.0, (pairs.rSumD2 - pairs.rSumD * pairs.rSumD / n) / n)));
        const auto count = static_cast<std::size_t>(pairs.nD);
        found.line = regress(pairs.dcNorm.span().first(count), pairs.dcMatrixNorm.span().first(count));
    }
    if (pairs.sumD2 != 0.0)
        found.q = static_cast<float>(std::sqrt(pairs.rSumD2 / pairs.sumD2));
    return Status::ok;
}

} // namespace trelm
