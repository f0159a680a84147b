#include "magnitude/histogram.h"

#include "support/numerics/least_squares.h"
#include "support/numerics/minimise.h"
#include "support/numerics/sort.h"
#include "support/numerics/statistics.h"
#include "support/text/text.h"

#include <algorithm>
#include <array>
#include <cmath>

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
                                      const HistogramOptions &options)
{
    const bool negative = isNegativeSide(extremes.minD, extremes.maxD);
    AveragedExtremes values = {.dNeg = extremes.minD, .dPos = extremes.maxD};
    if (options.optExtrem != 0)
        values = negative ? getDzzDyy(coupList, rAveDD, options.sdevDzz, options.sdevDyy)
                          : getDzzDyy(coupList, rAveDD, options.sdevDyy, options.sdevDzz);
    if (negative)
        return {.dzz = values.dNeg, .dyy = values.dPos};
    return {.dzz = values.dPos, .dyy = values.dNeg};
}

Status tooManyBins(int nBins, Messages &messages)
{
    messages.err("Error: Too many folders (%d) for histogram.\n", nBins);
    messages.err("       Measurement error too small.\n");
    return messages.fail("       ==> 3-parameter fit not possible.\n");
}

bool layBins(const PrincipalCouplings &principal, float rAveDD, int nUserBins, Bins &bins)
{
    return makeBins(rAveDD, std::max(principal.dzz, principal.dyy), std::min(principal.dzz, principal.dyy),
                    nUserBins, bins);
}

void storeBins(const Bins &bins, HistogramResult &result)
{
    result.nBins = bins.nBins;
    result.binWidth = bins.binWidth;
}

/// A fit needs different values: averaging makes the extremes one where the errors are as large as the
/// couplings. `values` are two extremes, and the peak if it takes part.
Status checkPrincipal(std::span<const float> values, Messages &messages)
{
    constexpr float rounding = 1e-5f;
    const auto [least, most] = std::ranges::minmax(values);
    if (!(most - least > rounding * std::max(std::fabs(least), std::fabs(most))))
        return messages.fail(
            "Error: The extremes of the couplings are one value, there is no tensor to fit.\n");
    if (values[0] * values[1] > 0.0f)
        messages.warn("Warning: Both extremes of the couplings have one sign, which no tensor's have.\n");
    return Status::ok;
}

/// The fit of a run to values, Dzz first: DaFit, RFit and their errors.
Status fitPrincipal(std::span<const float> values, float rAveDD, HistogramResult &result, Messages &messages)
{
    constexpr std::array<float, 3> x = {0.0f, 1.0f, -1.0f};
    constexpr std::array<int, 2> ia = {1, 1};
    const std::array<float, 3> sig = {rAveDD, rAveDD, rAveDD};
    const std::array<float, 2> guess = {result.Da2Par, result.R2Par};
    std::array<float, 2> a = guess, error = {};
    const ModelFit model = {.x = std::span(x).first(values.size()),
                            .y = values,
                            .sig = std::span(sig).first(values.size()),
                            .ia = ia,
                            .funcs = alignpoly};
    const Status status = nonlinearfit(model, a, guess, error, messages);
    result.DaFit = a[0];
    result.RFit = a[1];
    result.DaErrFit = error[0];
    result.RErrFit = error[1];
    return status;
}

/// The fit to the extremes and, with modeFit 3, the peak. Couplings without one peak leave the guess.
Status fitValues(std::span<const float> coupList, const PrincipalCouplings &principal, float rAveDD,
                 const HistogramOptions &options, HistogramResult &result, Messages &messages)
{
    std::array<float, 3> values = {principal.dzz, principal.dyy, 0.0f};
    if (options.modeFit == 3) {
        Bins bins;
        if (!layBins(principal, rAveDD, options.nBinIn, bins))
            return tooManyBins(bins.nBins, messages);
        storeBins(bins, result);
        const bool isSingle = getDxx(coupList, bins, result.Dxx, messages);
        values[2] = result.Dxx;
        if (!isSingle) {
            messages.err("Error: No single most populated coupling value.\n");
            messages.err("       ==> 3-parameter fit not possible.\n");
            return Status::ok;
        }
    }
    const auto fitted = std::span(values).first(options.modeFit == 3 ? 3 : 2);
    if (checkPrincipal(fitted, messages) != Status::ok)
        return Status::failed;
    return fitPrincipal(fitted, rAveDD, result, messages);
}

/// What the estimate of a run and that of a set begin with: the extremes, the tensor that they alone tell,
/// and the values for a fit. From there on the two differ. A run reports only averaged extremes, fits two of
/// them as well as three, without bounds, and looks for the peak once. A set reports the extremes in any
/// case, takes two as they are, looks for the peak in up to four histograms, and fits within bounds.
PrincipalCouplings startEstimate(std::span<float> coupList, float rAveDD, const HistogramOptions &options,
                                 HistogramResult &result)
{
    const Extremes extremes = findExtremes(coupList);
    static_cast<ExtremesTensor &>(result) = solveExtremes(extremes.minD, extremes.maxD);
    result.dcMin = extremes.minD;
    result.dcMax = extremes.maxD;
    return principalCouplings(coupList, extremes, rAveDD, options);
}

/// What averaging and fit cannot do without.
Status checkSettings(const ObservedCouplings &observed, const HistogramOptions &options, Messages &messages)
{
    if (observed.coupList.size() < 2)
        return messages.fail("Error: One coupling has no distribution.\n");
    if (!(observed.rAveDD > 0.0f) && options.isFitted()) {
        if (options.modeFit == 3 && options.nBinIn < 1)
            return tooManyBins(maxBins + 1, messages);
        return messages.fail("Error: The mean error of the couplings is not above 0.\n");
    }
    return Status::ok;
}

/// The most populated value, in up to four histograms. With automatic bins all four are the same.
Status findPeak(std::span<const float> coupList, const PrincipalCouplings &principal, float rAveDD,
                const HistogramOptions &options, HistogramResult &result, Messages &messages)
{
    constexpr int tries = 4;
    constexpr int fewer = 2; // bins, from try to try
    for (int i = 0; i < tries; ++i) {
        Bins bins;
        if (!layBins(principal, rAveDD, std::max(options.nBinIn, 0) - fewer * i, bins))
            return tooManyBins(bins.nBins, messages);
        storeBins(bins, result);
        float dxx = 0.0f;
        if (!getDxx(coupList, bins, dxx, messages))
            continue;
        result.Dxx = dxx;
        return Status::ok;
    }
    return Status::noSolution;
}

/// By what Da and R miss the principal couplings; the third is that of Dxx, where it takes part.
void fitResiduals(const HistogramResult &wanted, std::span<const float> magnitudes, std::span<float> res)
{
    const double da = magnitudes[0], rh = magnitudes[1];
    res[0] = static_cast<float>(wanted.Dzz - 2.0 * da);
    res[1] = static_cast<float>(wanted.Dyy + da * (1.0 + 1.5 * rh));
    if (res.size() == 3)
        res[2] = static_cast<float>(wanted.Dxx + da * (1.0 - 1.5 * rh));
}

/// Warns of what the claimed error does not know: whether a vector stands near the axis. Of n random vectors
/// the share of those with a coupling beyond 2 Da (1 - x) is x/3, so that with 19 chances of 20 the outermost
/// misses the end by less than 3 ln(20) / n of it.
void tellClaim(const ObservedCouplings &observed, const HistogramResult &result, Messages &messages)
{
    const double share = std::min(1.0, 3.0 * std::log(20.0) / static_cast<double>(observed.coupList.size()));
    const double missed = share * std::fabs(double{result.Da2Par});
    if (missed > double{result.DaErrFit})
        messages.warn(
            "trelm: the ends of the pattern may be empty: of %zu vectors the outermost is up to %.2f Hz too"
            " small for Da, whatever Da_ERR says (-daMl -clearMl takes all couplings)\n",
            observed.coupList.size(), missed);
    const double low = std::fabs(observed.minD), high = std::fabs(observed.maxD);
    if (std::fabs(high - low) < 2.0 * missed)
        messages.warn(
            "trelm: the couplings reach %.2f and %.2f Hz: which of them is 2 Da, and so the sign of Da, is"
            " open (give a structure, -bestFit)\n",
            double{observed.minD}, double{observed.maxD});
}

} // namespace

AveragedExtremes getDzzDyy(std::span<float> coupList, float delta, float sdevNeg, float sdevPos)
{
    rSort(coupList);
    return {.dNeg = averageSide(coupList.begin(), coupList.end(), delta * sdevNeg),
            .dPos = averageSide(coupList.rbegin(), coupList.rend(), delta * sdevPos)};
}

void tellHistogram(const HistogramOptions &options, Messages &messages)
{
    if (options.optExtrem != 0 && !(options.sdevDzz > 0.0f && options.sdevDyy > 0.0f))
        messages.warn(
            "Warning: -sdevDzz %g, -sdevDyy %g: without a factor above 0 an extreme is averaged to 0.\n",
            double{options.sdevDzz}, double{options.sdevDyy});
    if (options.modeFit == 3 && options.nBinIn == 1)
        messages.warn("Warning: -bin 1: a single bin has no width, no coupling falls into it.\n");
}

bool makeBins(float delta, float max, float min, int nUserBins, Bins &bins)
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
        return false;
    for (int i = 0; i < bins.nBins; ++i)
        bins.centres.push_back(bins.binWidth * static_cast<float>(i) + min);
    return true;
}

bool getDxx(std::span<const float> coupList, const Bins &bins, float &dxx, Messages &messages)
{
    const auto low = static_cast<float>(bins.centres.front() - 0.5 * bins.binWidth);
    const auto high = static_cast<float>(bins.centres.back() + 0.5 * bins.binWidth);
    std::vector<int> hist(bins.centres.size(), 0);
    int best = 0;
    bool isSingle = false;
    for (std::size_t i = 0; i < coupList.size(); ++i) {
        const float c = coupList[i];
        if (!(low <= c && c <= high)) {
            const bool isBelow = c < low;
            if (isBelow || c > high) // neither beside a bin without a width
                messages.out("coupList[%zu] (%.3f) %c %.3f\n", i, static_cast<double>(c), isBelow ? '<' : '>',
                             static_cast<double>(isBelow ? low : high));
            continue;
        }
        // A coupling on the upper rim rounds to the place behind the last bin.
        const auto place = static_cast<std::size_t>((c - low) / bins.binWidth);
        const std::size_t k = std::min(place, hist.size() - 1);
        const int count = ++hist[k];
        if (count == best)
            isSingle = false;
        if (count <= best)
            continue;
        dxx = bins.centres[k];
        best = count;
        isSingle = true;
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

Status getHistDabR(const ObservedCouplings &observed, const HistogramOptions &options,
                   HistogramResult &result, Messages &messages)
{
    result = {};
    if (checkSettings(observed, options, messages) != Status::ok)
        return Status::failed;
    tellHistogram(options, messages);
    std::vector<float> coupList = observed.coupList;
    const PrincipalCouplings principal = startEstimate(coupList, observed.rAveDD, options, result);
    if (options.optExtrem != 0) { // what is reported are averages
        result.Dzz = principal.dzz;
        result.Dyy = principal.dyy;
    }
    result.DaFit = result.Da2Par;
    result.RFit = result.R2Par;
    const Status status = options.isFitted()
                              ? fitValues(coupList, principal, observed.rAveDD, options, result, messages)
                              : Status::ok;
    if (status == Status::ok)
        tellClaim(observed, result, messages);
    return status;
}

Status histoExtFit(std::span<float> coupList, std::span<const float> sigma, const HistogramOptions &options,
                   HistogramResult &result, Messages &messages)
{
    const Extremes extremes = findExtremes(coupList);
    if (coupList.size() < 2 || (extremes.minD == 0.0f && extremes.maxD == 0.0f))
        return messages.fail("Error: One coupling, or none but zeros, has no distribution.\n");
    const float rAveDD = getAvg(sigma);
    const PrincipalCouplings principal = startEstimate(coupList, rAveDD, options, result);
    result.Dzz = principal.dzz;
    result.Dyy = principal.dyy;
    if (options.modeFit == 2) {
        result.DaFit = result.Da2Par;
        result.RFit = result.R2Par;
    }
    if (options.modeFit != 3)
        return Status::ok;
    const Status peak = findPeak(coupList, principal, rAveDD, options, result, messages);
    if (peak == Status::ok)
        fitDCHisto(options, result, messages);
    if (peak != Status::noSolution)
        return peak;
    messages.err("Warning: No single most populated coupling value.\n");
    messages.err("       ==> 3-parameter fit not possible.\n");
    return Status::ok;
}

void fitDCHisto(const HistogramOptions &options, HistogramResult &result, Messages &messages)
{
    const auto residuals = [&result](std::span<const float> magnitudes, std::span<float> res) {
        fitResiduals(result, magnitudes, res);
    };
    std::array<float, 2> guess = {result.Da2Par, result.R2Par};
    std::array<float, 2> lower = {options.daLo, options.rhLo};
    std::array<float, 2> upper = {options.daHi, options.rhHi};
    constexpr int itMax = 1000;
    // A refusal leaves the guess, which is then the result: one set without a fit does not end a run of many.
    if (options.modeFit >= 2)
        nlsOpt({residuals, static_cast<std::size_t>(std::min(options.modeFit, 3))}, guess, lower, upper,
               itMax, messages);
    // Bounds that leave nothing free are values: the minimiser returns the guess then.
    for (std::size_t i = 0; i < guess.size(); ++i)
        if (lower[i] <= upper[i])
            guess[i] = std::clamp(guess[i], lower[i], upper[i]);
    result.DaFit = guess[0];
    result.RFit = guess[1];
}

} // namespace trelm
