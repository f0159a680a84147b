#include "magnitude/observed.h"

#include "support/numerics/statistics.h"

#include <cmath>

namespace trelm {

Status collectObserved(const DTable &dTab, ObservedCouplings &observed, Messages &messages)
{
    observed = {};
    float rSumDD = 0.0f;
    for (const DInfo &row : dTab.observed()) {
        if (!isObserved(row))
            continue;
        const float d = row.w * row.d;
        const float sigma = row.w * row.sigma;
        rSumDD += sigma;
        if (!std::isfinite(d) || !std::isfinite(rSumDD))
            return messages.fail("Error: The coupling of row %d times its weight is out of range.\n", row.id);
        observed.coupList.push_back(d);
        observed.sigma.push_back(sigma);
    }
    const Extremes extremes = findExtremes(observed.coupList);
    observed.minD = extremes.minD;
    observed.maxD = extremes.maxD;
    if (observed.minD == 0.0f && observed.maxD == 0.0f)
        return messages.fail("Error: All couplings are 0, there is no tensor to find.\n");
    observed.rAveDD = rSumDD / static_cast<float>(observed.coupList.size());
    return Status::ok;
}

bool isNegativeSide(float minD, float maxD)
{
    return std::fabs(minD) > std::fabs(maxD);
}

Extremes findExtremes(std::span<const float> coupList)
{
    return {.minD = getMin(coupList), .maxD = getMax(coupList)};
}

void turnPositive(std::span<float> coupList)
{
    const Extremes extremes = findExtremes(coupList);
    if (!isNegativeSide(extremes.minD, extremes.maxD))
        return;
    for (float &d : coupList)
        d = -d;
}

ExtremesTensor solveExtremes(float minD, float maxD)
{
    const bool negative = isNegativeSide(minD, maxD);
    const float larger = negative ? minD : maxD;
    const float other = negative ? maxD : minD;
    const float Da = 0.5f * larger;
    return {.Da2Par = Da, .R2Par = static_cast<float>((double{other} / Da + 1.0) / -1.5)};
}

} // namespace trelm
