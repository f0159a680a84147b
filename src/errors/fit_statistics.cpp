#include "errors/fit_statistics.h"

#include "couplings/statistics.h"
#include "ground/out_of_memory.h"
#include "support/numerics/numbers.h"
#include "support/numerics/random.h"
#include "support/text/text.h"

#include <algorithm>
#include <cmath>
#include <new>

namespace trelm {
namespace {

/// The weighted pairs of a statistics block and their sums.
struct Pairs {
    explicit Pairs(std::size_t rows) : dcNorm("statDC", rows + 1), dcMatrixNorm("statDC", rows + 1) {}
    Block<float> dcNorm, dcMatrixNorm; ///< measured and calculated, times the calculated entry's weight
    int nD = 0;
    double rSumD = 0.0, rSumD2 = 0.0, sumD2 = 0.0;
};

bool isCompared(const DInfo &observed, const DInfo &calculated)
{
    return observed.valid != 0 && calculated.valid != 0 && observed.d < missingCoupling &&
           calculated.d < missingCoupling;
}

void collectPairs(const DTable &dTab, Pairs &pairs)
{
    for (std::size_t i = 0; i < static_cast<std::size_t>(dTab.dCount); ++i) {
        const DInfo &o = dTab.dObsList[i];
        const DInfo &c = dTab.dCalcList[i];
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

/// The lines of a block. The offset is that of the exchanged regression, measured on calculated.
void appendBlock(float stdDevD, float q, const Regression &line, std::string &result)
{
    result += "\nDATA STATISTICS DC\n";
    appendf(result, "DATA STATISTICS DC STDDEV_DIFF  %.3f [Hz]\n", number(stdDevD));
    appendf(result, "DATA STATISTICS DC CORR R       %.3f\n", number(line.r));
    appendf(result, "DATA STATISTICS DC CORNILESCU Q %.3f\n", number(q));
    appendf(result, "DATA STATISTICS DC REGRESSION OFFSET    %.3f +/- %.3f [Hz]\n", number(line.xOnY.a),
            number(line.xOnY.siga));
    appendf(result, "DATA STATISTICS DC REGRESSION SLOPE     %.3f +/- %.3f [Hz]\n", number(line.yOnX.b),
            number(line.yOnX.sigb));
    appendf(result, "DATA STATISTICS DC REGRESSION BAX SLOPE %.3f +/- %.3f [Hz]\n", number(line.aveSlope),
            number(line.errAveSlope));
    result += "\n";
}

/// A random place in a list of n. The deviate can round to 1.0, so the place is bounded.
std::size_t drawPlace(RandomStream &random, std::size_t n)
{
    const auto place = static_cast<std::size_t>(random.ran3() * static_cast<float>(n));
    return std::min(place, n - 1);
}

} // namespace

Status statDC(const DTable &dTab, std::string &result, Messages &messages)
{
    result.clear();
    Pairs pairs(static_cast<std::size_t>(dTab.dCount));
    if (!pairs.dcNorm || !pairs.dcMatrixNorm)
        return messages.fail("Error allocating temporary buffers.\n");
    collectPairs(dTab, pairs);
    float stdDevD = 0.0f, q = 0.0f;
    Regression line;
    if (pairs.nD != 0) {
        const double n = pairs.nD;
        stdDevD =
            static_cast<float>(std::sqrt(std::max(0.0, (pairs.rSumD2 - pairs.rSumD * pairs.rSumD / n) / n)));
        const auto count = static_cast<std::size_t>(pairs.nD);
        line = regress(pairs.dcNorm.span().first(count), pairs.dcMatrixNorm.span().first(count));
    }
    if (pairs.sumD2 != 0.0)
        q = static_cast<float>(std::sqrt(pairs.rSumD2 / pairs.sumD2));
    appendBlock(stdDevD, q, line, result);
    return Status::ok;
}

int selectDcFrac(RandomStream &random, std::span<unsigned char> marks, float frac, int fixed,
                 Messages &messages)
{
    std::vector<std::size_t> indexTab;
    try {
        indexTab.reserve(marks.size());
    } catch (const std::bad_alloc &) { // the callers know no way to go on without a selection
        endWithoutMemory("allocation failure for indexTab", messages);
    }
    for (std::size_t i = 0; i < marks.size(); ++i) {
        if (marks[i] == 0)
            continue;
        marks[i] = 0;
        indexTab.push_back(i);
    }
    const float wanted = fixed != 0 ? frac : static_cast<float>(indexTab.size()) * frac;
    if (!(wanted >= 1.0f) || indexTab.empty())
        return 0;
    const std::size_t target =
        wanted >= static_cast<float>(indexTab.size()) ? indexTab.size() : static_cast<std::size_t>(wanted);
    for (std::size_t count = 0; count < target;) {
        unsigned char &mark = marks[indexTab[drawPlace(random, indexTab.size())]];
        if (mark != 0)
            continue; // drawn before
        mark = 1;
        ++count;
    }
    return static_cast<int>(target);
}

int selectDcResidue(RandomStream &random, const ResidueCouplings &residues, int sCount,
                    std::vector<float> &coupList, std::vector<float> &sigmaList, float &rAveDD)
{
    const std::size_t nRes = residues.dcMat.size();
    // More draws than residues would never end.
    const std::size_t draws = std::min(nRes, static_cast<std::size_t>(std::max(sCount, 0)));
    std::vector<bool> drawn(nRes, false);
    float sum = 0.0f;
    int copied = 0;
    for (std::size_t count = 0; count < draws;) {
        const std::size_t k = drawPlace(random, nRes);
        if (drawn[k])
            continue;
        drawn[k] = true;
        ++count;
        coupList.insert(coupList.end(), residues.dcMat[k].begin(), residues.dcMat[k].end());
        sigmaList.insert(sigmaList.end(), residues.sigMat[k].begin(), residues.sigMat[k].end());
        for (const float sigma : residues.sigMat[k])
            sum += sigma;
        copied += static_cast<int>(residues.dcMat[k].size());
    }
    rAveDD = copied > 0 ? sum / static_cast<float>(copied) : 0.0f;
    return copied;
}

} // namespace trelm
