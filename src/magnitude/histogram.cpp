#include "magnitude/histogram.h"

#include "couplings/output.h"
#include "couplings/run_report.h"
#include "support/numerics/least_squares.h"
#include "support/numerics/minimise.h"
#include "support/numerics/sort.h"
#include "support/numerics/statistics.h"
#include "support/text/text.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <string>

namespace trelm {
namespace {

/// Mean of an extreme, see getDzzDyy: of the values from the first on. The sums run along, so that an error
/// larger than all couplings takes no longer than others.
template <typename Iterator>
float averageSide(Iterator value, Iterator end, float limit)
{
    if (!(limit > 0.0f))
        return 0.0f;
    double mean = 0.0, squares = 0.0;
    int n = 0;
    for (; value != end; ++value) {
        const double before = *value - mean;
        mean += before / ++n;
        squares += before * (*value - mean);
        if (n > 1 && !(std::sqrt(squares / (n - 1) * n) < double{limit}))
            break;
    }
    return n > 1 ? static_cast<float>(mean) : 0.0f; // one value has no spread: it gives no mean
}

/// The values that a fit takes, larger extreme first.
struct PrincipalCouplings {
    float dzz = 0.0f, dyy = 0.0f;
};

/// The extremes as they stand or, with optExtrem, averaged. Averaging sorts the couplings.
PrincipalCouplings principalCouplings(std::span<float> coupList, const Extremes &extremes, float rAveDD,
                                      const MagnitudeOptions &histInfo)
{
    const bool negative = isNegativeSide(extremes.minD, extremes.maxD);
    AveragedExtremes values = {.dNeg = extremes.minD, .dPos = extremes.maxD};
    if (histInfo.optExtrem != 0)
        values = negative ? getDzzDyy(coupList, rAveDD, histInfo.sdevDzz, histInfo.sdevDyy)
                          : getDzzDyy(coupList, rAveDD, histInfo.sdevDyy, histInfo.sdevDzz);
    if (negative)
        return {.dzz = values.dNeg, .dyy = values.dPos};
    return {.dzz = values.dPos, .dyy = values.dNeg};
}

int tooManyBins(int nBins)
{
    complain("Error: Too many folders (%d) for histogram.\n", nBins);
    complain("       Measurement error too small.\n");
    return complain("       ==> 3-parameter fit not possible.\n");
}

int layBins(const PrincipalCouplings &principal, float rAveDD, int nUserBins, Bins &bins)
{
    return makeBins(rAveDD, std::max(principal.dzz, principal.dyy), std::min(principal.dzz, principal.dyy),
                    nUserBins, bins);
}

void storeBins(const Bins &bins, MagnitudeOptions &histInfo)
{
    histInfo.nBins = bins.nBins;
    histInfo.binWidth = bins.binWidth;
}

/// A fit needs different values: averaging makes the extremes one where the errors are as large as the
/// couplings. `values` are two extremes, and the peak if it takes part.
int checkPrincipal(const PrincipalCouplings &principal, std::span<const float> values)
{
    constexpr float rounding = 1e-5f;
    const auto [least, most] = std::ranges::minmax(values);
    if (!(most - least > rounding * std::max(std::fabs(least), std::fabs(most))))
        return complain("Error: The extremes of the couplings are one value, there is no tensor to fit.\n");
    if (principal.dzz * principal.dyy > 0.0f)
        complain("Warning: Both extremes of the couplings have one sign, which no tensor's have.\n");
    return 0;
}

/// The fit of a run to `count` principal couplings: DaFit, RFit and their errors.
int fitPrincipal(const PrincipalCouplings &principal, int count, float rAveDD, MagnitudeOptions &histInfo)
{
    constexpr std::array<float, 3> x = {0.0f, 1.0f, -1.0f};
    constexpr std::array<int, 2> ia = {1, 1};
    const std::array<float, 3> y = {principal.dzz, principal.dyy, histInfo.Dxx};
    const std::array<float, 3> sig = {rAveDD, rAveDD, rAveDD};
    const std::array<float, 2> guess = {histInfo.Da2Par, histInfo.R2Par};
    std::array<float, 2> a = guess, error = {};
    const auto n = static_cast<std::size_t>(count);
    if (checkPrincipal(principal, std::span(y).first(n)) != 0)
        return 1;
    const ModelFit model = {.x = std::span(x).first(n),
                            .y = std::span(y).first(n),
                            .sig = std::span(sig).first(n),
                            .ia = ia,
                            .funcs = alignpoly};
    const int status = nonlinearfit(model, a, guess, error);
    histInfo.DaFit = a[0];
    histInfo.RFit = a[1];
    histInfo.DaErrFit = error[0];
    histInfo.RErrFit = error[1];
    return status;
}

/// The three-parameter fit. Couplings without one peak leave the guess.
int fitWithPeak(std::span<const float> coupList, const PrincipalCouplings &principal, float rAveDD,
                MagnitudeOptions &histInfo)
{
    Bins bins;
    if (layBins(principal, rAveDD, histInfo.nBinIn, bins) != 0)
        return tooManyBins(bins.nBins);
    storeBins(bins, histInfo);
    if (getDxx(coupList, bins, histInfo.Dxx) != 0)
        return fitPrincipal(principal, 3, rAveDD, histInfo);
    complain("Error: No single most populated coupling value.\n");
    complain("       ==> 3-parameter fit not possible.\n");
    return 0;
}

/// What the estimate of a run and that of a set begin with: the extremes, the tensor that they alone tell,
/// and the values for a fit. From there on the two differ. A run reports only averaged extremes, fits two of
/// them as well as three, without bounds, and looks for the peak once. A set reports the extremes in any
/// case, takes two as they are, looks for the peak in up to four histograms, and fits within bounds.
PrincipalCouplings startEstimate(std::span<float> coupList, float rAveDD, MagnitudeOptions &histInfo)
{
    const Extremes extremes = findExtremes(coupList);
    solveExtremes(extremes.minD, extremes.maxD, histInfo);
    histInfo.dcMin = extremes.minD;
    histInfo.dcMax = extremes.maxD;
    return principalCouplings(coupList, extremes, rAveDD, histInfo);
}

/// Da and R of a run into the record.
int fitRun(ObservedCouplings &observed, MagnitudeOptions &histInfo)
{
    const PrincipalCouplings principal = startEstimate(observed.coupList, observed.rAveDD, histInfo);
    // What is reported are averages: without averaging there are none.
    histInfo.Dzz = histInfo.optExtrem != 0 ? principal.dzz : 0.0f;
    histInfo.Dyy = histInfo.optExtrem != 0 ? principal.dyy : 0.0f;
    histInfo.Dxx = 0.0f;
    histInfo.DaFit = histInfo.Da2Par;
    histInfo.RFit = histInfo.R2Par;
    histInfo.DaErrFit = histInfo.RErrFit = 0.0f;
    storeBins({}, histInfo);
    if (histInfo.modeFit == 2)
        return fitPrincipal(principal, 2, observed.rAveDD, histInfo);
    if (histInfo.modeFit == 3)
        return fitWithPeak(observed.coupList, principal, observed.rAveDD, histInfo);
    return 0;
}

/// What averaging and fit cannot do without.
int checkSettings(const ObservedCouplings &observed, const MagnitudeOptions &histInfo)
{
    if (observed.coupList.size() < 2)
        return complain("Error: One coupling has no distribution.\n");
    const bool isFitted = histInfo.modeFit == 2 || histInfo.modeFit == 3;
    if (!(observed.rAveDD > 0.0f) && isFitted) {
        if (histInfo.modeFit == 3 && histInfo.nBinIn < 2)
            return tooManyBins(maxBins + 1);
        return complain("Error: The mean error of the couplings is not above 0.\n");
    }
    tellHistogram(histInfo);
    return 0;
}

/// The calculated rows show the couplings that took part.
void copyObserved(DTable &dTab)
{
    for (std::size_t i = 0; i < dTab.observed().size(); ++i) {
        const DInfo &row = dTab.observed()[i];
        if (!isObserved(row))
            continue;
        dTab.calculated()[i].d = row.d;
        dTab.calculated()[i].valid = row.valid;
    }
}

/// The most populated value, in up to four histograms. With automatic bins all four are the same. Returns 0
/// with the flag of getDxx, or 1 after a message.
int findPeak(std::span<const float> coupList, const PrincipalCouplings &principal, float rAveDD,
             MagnitudeOptions &histInfo, int &isSingle)
{
    constexpr int tries = 4;
    constexpr int fewer = 2; // bins, from try to try
    isSingle = 0;
    for (int i = 0; i < tries && isSingle == 0; ++i) {
        Bins bins;
        if (layBins(principal, rAveDD, std::max(histInfo.nBinIn, 0) - fewer * i, bins) != 0)
            return tooManyBins(bins.nBins);
        storeBins(bins, histInfo);
        float dxx = 0.0f;
        isSingle = getDxx(coupList, bins, dxx);
        if (isSingle != 0)
            histInfo.Dxx = dxx;
    }
    return 0;
}

const MagnitudeOptions *extHistList =
    nullptr; ///< what fitDCHistTarget is to meet: the minimiser passes no context
int extVerbose = 0;

} // namespace

AveragedExtremes getDzzDyy(std::span<float> coupList, float delta, float sdevNeg, float sdevPos)
{
    rSort(coupList);
    return {.dNeg = averageSide(coupList.begin(), coupList.end(), delta * sdevNeg),
            .dPos = averageSide(coupList.rbegin(), coupList.rend(), delta * sdevPos)};
}

void tellHistogram(const MagnitudeOptions &histInfo)
{
    if (histInfo.optExtrem != 0 && !(histInfo.sdevDzz > 0.0f && histInfo.sdevDyy > 0.0f))
        complain("Warning: -sdevDzz %g, -sdevDyy %g: without a factor above 0 an extreme is averaged to 0.\n",
                 double{histInfo.sdevDzz}, double{histInfo.sdevDyy});
    if (histInfo.modeFit == 3 && histInfo.nBinIn == 1)
        complain("Warning: -bin 1: a single bin has no width, no coupling falls into it.\n");
}

int makeBins(float delta, float max, float min, int nUserBins, Bins &bins)
{
    const float range = (max + delta) - (min - delta);
    bins = {};
    if (nUserBins < 1) {
        bins.binWidth = 2.0f * delta;
        // Without a width no number of bins is enough.
        bins.nBins = maxBins + 1;
        if (bins.binWidth > 0.0f)
            bins.nBins = std::min(truncated(range / bins.binWidth), 1000000000) + 1;
    } else {
        bins.nBins = nUserBins;
        bins.binWidth = range / static_cast<float>(nUserBins - 1);
        if (!(bins.binWidth > 0.0f))
            bins.nBins = std::max(nUserBins, maxBins + 1);
    }
    if (bins.nBins > maxBins)
        return 1;
    for (int i = 0; i < bins.nBins; ++i)
        bins.centres.push_back(bins.binWidth * static_cast<float>(i) + min);
    return 0;
}

int getDxx(std::span<const float> coupList, const Bins &bins, float &dxx)
{
    const auto low = static_cast<float>(bins.centres.front() - 0.5 * bins.binWidth);
    const auto high = static_cast<float>(bins.centres.back() + 0.5 * bins.binWidth);
    std::vector<int> hist(bins.centres.size(), 0);
    int best = 0, isSingle = 0;
    for (std::size_t i = 0; i < coupList.size(); ++i) {
        const float c = coupList[i];
        if (!(low <= c && c <= high)) {
            const bool isBelow = c < low;
            if (isBelow || c > high) // neither beside a bin without a width
                std::printf("coupList[%zu] (%.3f) %c %.3f\n", i, static_cast<double>(c), isBelow ? '<' : '>',
                            static_cast<double>(isBelow ? low : high));
            continue;
        }
        // A coupling on the upper rim rounds to the place behind the last bin.
        const auto place = static_cast<std::size_t>((c - low) / bins.binWidth);
        const std::size_t k = std::min(place, hist.size() - 1);
        const int count = ++hist[k];
        if (count == best)
            isSingle = 0;
        if (count <= best)
            continue;
        dxx = bins.centres[k];
        best = count;
        isSingle = 1;
    }
    return isSingle;
}

void alignpoly(float x, std::span<const float> a, float &y, std::span<float> dyda)
{
    const auto f = static_cast<float>(1.0 + 1.5 * x * a[1]);
    const float g = 3.0f * (1.0f + x) * (x - 1.0f);
    y = -a[0] * f - a[0] * g;
    dyda[0] = -f - g;
    dyda[1] = static_cast<float>(-1.5 * x * a[0]);
}

int getHistDabR(const MagnitudeJob &job)
{
    TrelmInfo &trelmInfo = *job.trelmInfo;
    ObservedCouplings observed;
    if (readObserved(job) != 0 || collectObserved(*job.dTab, observed) != 0 ||
        checkSettings(observed, trelmInfo) != 0)
        return 1;
    copyObserved(*job.dTab);
    if (fitRun(observed, trelmInfo) != 0)
        return 1;
    std::string text;
    if (writeTrelm(trelmInfo, text) != 0)
        return complain("trelm: error in writeTrelm.\n");
    return writeDCmod(job.outDName, "w", job.dTab, &trelmInfo, text);
}

int histoExtFit(std::span<float> coupList, std::span<const float> sigma, MagnitudeOptions &histInfo)
{
    const Extremes extremes = findExtremes(coupList);
    if (coupList.size() < 2 || (extremes.minD == 0.0f && extremes.maxD == 0.0f))
        return complain("Error: One coupling, or none but zeros, has no distribution.\n");
    const float rAveDD = getAvg(sigma);
    const PrincipalCouplings principal = startEstimate(coupList, rAveDD, histInfo);
    histInfo.Dzz = principal.dzz;
    histInfo.Dyy = principal.dyy;
    if (histInfo.modeFit == 2) {
        histInfo.DaFit = histInfo.Da2Par;
        histInfo.RFit = histInfo.R2Par;
    }
    if (histInfo.modeFit != 3)
        return 0;
    int isSingle = 0;
    if (findPeak(coupList, principal, rAveDD, histInfo, isSingle) != 0)
        return 1;
    if (isSingle != 0)
        return fitDCHisto(histInfo, 0);
    complain("Warning: No single most populated coupling value.\n");
    complain("       ==> 3-parameter fit not possible.\n");
    return 0;
}

int fitDCHistTarget(int xCnt, int, float *cg, float *res)
{
    const MagnitudeOptions &hist = *extHistList;
    const double da = cg[0], rh = cg[1];
    const double dzz = 2.0 * da, dyy = -da * (1.0 + 1.5 * rh), dxx = -da * (1.0 - 1.5 * rh);
    res[0] = static_cast<float>(hist.Dzz - dzz);
    res[1] = static_cast<float>(hist.Dyy - dyy);
    if (xCnt == 3)
        res[2] = static_cast<float>(hist.Dxx - dxx);
    if (extVerbose > 1) {
        double sum = 0.0;
        for (int i = 0; i < xCnt; ++i)
            sum += double{res[i]} * res[i];
        std::fprintf(stderr,
                     "Dzz %.3f Dyy %.3f Dxx %.3f DzzC %.3f DyyC %.3f DxxC %.3f Da %.3e Rh %.3f RMS %.4f\n",
                     double{hist.Dzz}, double{hist.Dyy}, double{hist.Dxx}, dzz, dyy, dxx, da, rh,
                     std::sqrt(sum / xCnt));
    }
    return 0;
}

int fitDCHisto(MagnitudeOptions &histInfo, int verbFlag)
{
    extHistList = &histInfo;
    extVerbose = verbFlag;
    std::array<float, 2> guess = {histInfo.Da2Par, histInfo.R2Par};
    std::array<float, 2> lower = {histInfo.daLo, histInfo.rhLo};
    std::array<float, 2> upper = {histInfo.daHi, histInfo.rhHi};
    constexpr int itMax = 1000;
    // A refusal leaves the guess, which is then the result: one set without a fit does not end a run of many.
    if (histInfo.modeFit >= 2)
        nlsOpt(fitDCHistTarget, std::min(histInfo.modeFit, 3), guess, lower, upper, itMax);
    extHistList = nullptr;
    // Bounds that leave nothing free are values: the minimiser returns the guess then.
    for (std::size_t i = 0; i < guess.size(); ++i)
        if (lower[i] <= upper[i])
            guess[i] = std::clamp(guess[i], lower[i], upper[i]);
    histInfo.DaFit = guess[0];
    histInfo.RFit = guess[1];
    return 0;
}

} // namespace trelm
