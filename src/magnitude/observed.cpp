#include "magnitude/observed.h"

#include "couplings/table_input.h"
#include "support/numerics/statistics.h"
#include "support/text/text.h"

#include <cmath>

namespace trelm {

int readObserved(const MagnitudeJob &job)
{
    DTable &dTab = *job.dTab;
    DcInfo &dcInfo = *job.dcInfo;
    const int status = readTable(job.inDName, &dTab);
    if (status != 0)
        return status;
    settleWindow(dcInfo, dTab);
    const int count = chooseRows(dTab, dcInfo, job.atomNameS1, job.atomNameS2);
    job.trelmInfo->validCountD = count;
    tellRows(count, "selected", dcInfo.excludeMode);
    return count > 0 ? 0 : complain("trelm: no coupling is left to estimate a tensor from.\n");
}

int collectObserved(const DTable &dTab, ObservedCouplings &observed)
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
            return complain("Error: The coupling of row %d times its weight is out of range.\n", row.id);
        observed.coupList.push_back(d);
        observed.sigma.push_back(sigma);
    }
    const Extremes extremes = findExtremes(observed.coupList);
    observed.minD = extremes.minD;
    observed.maxD = extremes.maxD;
    if (observed.minD == 0.0f && observed.maxD == 0.0f)
        return complain("Error: All couplings are 0, there is no tensor to find.\n");
    observed.rAveDD = rSumDD / static_cast<float>(observed.coupList.size());
    return 0;
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

void solveExtremes(float minD, float maxD, MagnitudeOptions &histInfo)
{
    const bool negative = isNegativeSide(minD, maxD);
    const float larger = negative ? minD : maxD;
    const float other = negative ? maxD : minD;
    histInfo.Da2Par = 0.5f * larger;
    histInfo.R2Par = static_cast<float>((double{other} / histInfo.Da2Par + 1.0) / -1.5);
}

} // namespace trelm
