#include "magnitude/likelihood_score.h"

#include "support/text/text.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

namespace trelm {
namespace {

constexpr std::size_t places = axisPlaces;
constexpr std::size_t lanes = 16;          // sums side by side, so that the compiler can use vectors
constexpr std::size_t margin = 544;        // more than the longest wing and the padding of the taps
constexpr double placesPerHz = 100.0;      // to multiply with: a division by axisStep rounds differently
constexpr double patternHalfPi = 1.570795; // of the pattern's series; more digits would move the scores
constexpr double patternPi = 3.14159;
constexpr double besideSingularity = 0.001; // Hz

using Axis = std::array<double, places>;

/// Sums of one step, as a loop over frequencies has them: at the far end they differ from the products in the
/// last bits, and so may the place where a pattern ends.
constexpr Axis upAxis = [] {
    Axis axis = {};
    double x = 0.0;
    for (double &value : axis) {
        value = x;
        x += axisStep;
    }
    return axis;
}();

/// The same downwards: the last place is -0.01 Hz.
constexpr Axis downAxis = [] {
    Axis axis = {};
    double x = -axisStep;
    for (std::size_t i = places; i > 0; --i) {
        axis[i - 1] = x;
        x -= axisStep;
    }
    return axis;
}();

/// The complete elliptic integral of the pattern as a series, cut short.
double kooky(double m)
{
    const double m2 = m * m;
    return (1.0 + m2 * (0.25 + m2 * (0.1406 + m2 * 0.0977))) * patternHalfPi;
}

double normal(double m, double d, double x)
{
    const double far = (x - m) / d;
    return std::exp(-0.5 * far * far) / (std::sqrt(6.28318) * d);
}

/// The landmarks of a pattern, c <= b < a: its peak is at b, and t keeps a distance from it.
struct Landmarks {
    double a, b, c, t;
    Landmarks(double Dab, double R)
        : a(-2.0 * Dab), b(Dab * (1.0 - 1.5 * R)), c(Dab * (1.0 + 1.5 * R)), t(R == 0.0 ? b + axisStep : b)
    {
    }
};

/// The pattern at `count` frequencies between b and a (above the peak), or between c and b. One division and
/// one root a value; the loops have no branch and become vectors.
void fillAbove(const Landmarks &mark, const double *x, std::size_t count, float *out)
{
    const double ab = mark.a - mark.b, bc = mark.b - mark.c;
    for (std::size_t i = 0; i < count; ++i) {
        const double inverse = 1.0 / (ab * (x[i] - mark.c));
        out[i] = static_cast<float>(kooky(bc * (mark.a - x[i]) * inverse) * std::sqrt(inverse) / patternPi);
    }
}

void fillBelow(const Landmarks &mark, const double *x, std::size_t count, float *out)
{
    const double ab = mark.a - mark.b, bc = mark.b - mark.c;
    for (std::size_t i = 0; i < count; ++i) {
        const double inverse = 1.0 / (bc * (mark.a - x[i]));
        out[i] = static_cast<float>(kooky((x[i] - mark.c) * ab * inverse) * std::sqrt(inverse) / patternPi);
    }
}

/// The pattern at ascending frequencies from c to a.
void fillRange(const Landmarks &mark, std::span<const double> x, float *out)
{
    const auto placeOf = [x](auto it) { return static_cast<std::size_t>(it - x.begin()); };
    const std::size_t peak = placeOf(std::ranges::lower_bound(x, mark.b));
    const std::size_t past = placeOf(std::ranges::upper_bound(x, mark.b));
    const std::size_t above = std::max(past, placeOf(std::ranges::upper_bound(x, mark.t)));
    fillBelow(mark, x.data(), peak, out);
    const double beside = mark.b - besideSingularity;
    for (std::size_t i = peak; i < past; ++i) {
        out[i] = 0.0f;
        if (beside >= mark.c)
            fillBelow(mark, &beside, 1, out + i);
    }
    std::fill(out + past, out + above, 0.0f);
    fillAbove(mark, x.data() + above, x.size() - above, out + above);
}

/// Writes the pattern of a tensor over the one before. Where the halves of a wide one meet, the negative half
/// comes last.
void fillPattern(double Dab, double R, std::span<float> data)
{
    const Landmarks mark(Dab, R);
    const auto up = static_cast<std::size_t>(std::ranges::upper_bound(upAxis, mark.a) - upAxis.begin());
    fillRange(mark, std::span(upAxis).first(up), data.data());
    const auto down = static_cast<std::size_t>(std::ranges::lower_bound(downAxis, mark.c) - downAxis.begin());
    fillRange(mark, std::span(downAxis).subspan(down), data.data() + down);
}

/// The couplings as places of the axis.
Status collectPlaces(std::span<const float> couplings, std::vector<ScorePlace> &list, Messages &messages)
{
    std::vector<int> found;
    for (const float coupling : couplings) {
        const double k = std::floor(static_cast<double>(coupling) * placesPerHz);
        if (!(k >= -axisPlaces && k < axisPlaces))
            return messages.fail("Error: the coupling %.3f Hz lies outside the frequency axis of %.2f Hz.\n",
                                 static_cast<double>(coupling), axisLength);
        found.push_back(static_cast<int>(k) + (k < 0.0 ? axisPlaces : 0));
    }
    std::ranges::sort(found);
    list.clear();
    for (const int place : found) {
        if (list.empty() || list.back().place != place)
            list.push_back({place, 0});
        ++list.back().count;
    }
    return Status::ok;
}

constexpr std::size_t respPlaces = 1024;
constexpr std::size_t longestWing = 510; // places on either side of the centre, beside the two of the rim

/// The response in an array, and how many of its places were filled from the start.
struct FoldedResponse {
    std::array<float, respPlaces> values = {};
    std::size_t count = 0;
};

/// The response as an array that wraps around has it: from place 0 up, and once more from place 1023 down.
/// Where the two meet, the later value stays: the far side of one over the near side of the other.
FoldedResponse foldResponse(double delta)
{
    FoldedResponse resp;
    const double reach = reachOfResponse * delta;
    double x = 0.0; // summed up step by step, as the method has it
    for (; x <= reach && resp.count < respPlaces; x += axisStep) {
        const auto density = static_cast<float>(normal(0.0, delta, x));
        resp.values[resp.count] = resp.values[respPlaces - 1 - resp.count] = density;
        ++resp.count;
    }
    return resp;
}

/// The response, mirrored about its centre, with zeros behind it up to a whole number of lanes. A long one
/// has two places more below its centre than above: both places in the middle of the array belong there.
/// Returns the response from its centre to its end.
std::vector<float> makeTaps(double delta, PatternScorer &scorer)
{
    const FoldedResponse resp = foldResponse(delta);
    const auto wing = static_cast<std::ptrdiff_t>(std::min(resp.count, longestWing + 1));
    std::vector<float> half(resp.values.begin(), resp.values.begin() + wing);
    scorer.rim = resp.values[longestWing + 1];
    scorer.taps.assign(scorer.rim != 0.0f ? 2 : 0, scorer.rim);
    scorer.taps.insert(scorer.taps.end(), half.rbegin(), half.rend());
    scorer.below = static_cast<int>(scorer.taps.size()) - 1;
    scorer.taps.insert(scorer.taps.end(), half.begin() + 1, half.end());
    scorer.taps.resize((scorer.taps.size() + lanes - 1) / lanes * lanes, 0.0f);
    return half;
}

/// The shortest part of the axis that has all places: it begins behind the longest gap.
struct Window {
    int first = 0;
    std::size_t count = places;
};

Window findWindow(std::span<const ScorePlace> list)
{
    Window window;
    if (list.empty())
        return window;
    int last = list.back().place - axisPlaces, longest = 0;
    for (const ScorePlace &entry : list) {
        if (entry.place - last > longest) {
            longest = entry.place - last;
            window.first = entry.place;
        }
        last = entry.place;
    }
    window.count = static_cast<std::size_t>(axisPlaces - longest + 1);
    return window;
}

/// Sums cost one product a tap and place, the filter what some products a value of its transform cost.
Status chooseMethod(PatternScorer &scorer, std::span<const float> half, Messages &messages)
{
    constexpr std::size_t transformCost = 50;
    const Window window = findWindow(scorer.places);
    scorer.isDense = scorer.places.size() * scorer.taps.size() >
                     transformCost * filterLength(half.size() - 1, window.count);
    if (!scorer.isDense)
        return Status::ok;
    scorer.first = window.first;
    return startFilter(scorer.filter, half, window.count, messages);
}

/// The broadened pattern at one place, as a sum. The response is symmetric, its centre one place higher.
float sumAt(const PatternScorer &scorer, int place)
{
    const float *data =
        scorer.data.data() + static_cast<std::size_t>(static_cast<int>(margin) + place + 1 - scorer.below);
    std::array<float, lanes> sums = {};
    for (std::size_t i = 0; i < scorer.taps.size(); i += lanes)
        for (std::size_t k = 0; k < lanes; ++k)
            sums[k] += data[i + k] * scorer.taps[i + k];
    float sum = 0.0f;
    for (const float part : sums)
        sum += part;
    return sum;
}

/// The broadened pattern at all places, by transforms. Returns the least value that is exact enough: their
/// rounding goes by the largest one, and below a hundredth of it would show in a score.
float filterAll(PatternScorer &scorer)
{
    constexpr float exactPart = 1e-2f;
    const std::span<const float> data = scorer.data.span();
    return exactPart * applyFilter(scorer.filter, data.subspan(margin, places),
                                   static_cast<std::size_t>(scorer.first + 1));
}

/// One place of these; the rim of the response, which the filter has not, is added.
float filteredAt(const PatternScorer &scorer, int place)
{
    const int behind = place - scorer.first;
    const float value =
        scorer.filter.ans[static_cast<std::size_t>(behind < 0 ? behind + axisPlaces : behind)];
    if (scorer.rim == 0.0f)
        return value;
    const float *lowest =
        scorer.data.data() + static_cast<std::size_t>(static_cast<int>(margin) + place + 1 - scorer.below);
    return value + scorer.rim * (lowest[0] + lowest[1]);
}

/// The broadened pattern at a place; `least` is the least filtered value to take.
float valueAt(const PatternScorer &scorer, int place, float least)
{
    if (!scorer.isDense)
        return sumAt(scorer, place);
    const float value = filteredAt(scorer, place);
    return value >= least ? value : sumAt(scorer, place);
}

/// Sum of logarithms, as the logarithm of a product for as long as that is a number.
struct LogSum {
    double product = 1.0, sum = 0.0;

    void add(double value, int count)
    {
        for (; count > 0; --count) {
            product *= value;
            if (product > 1e-200 && product < 1e200)
                continue;
            sum += std::log10(product);
            product = 1.0;
        }
    }
    [[nodiscard]] double total() const { return sum + std::log10(product); }
};

/// Margins on both sides, so that a sum across an end needs no second loop.
void repeatEnds(Block<float> &data)
{
    std::copy_n(data.data() + margin, margin, data.data() + margin + places);
    std::copy_n(data.data() + places, margin, data.data());
}

} // namespace

bool isPattern(double Dab, double R)
{
    return R > -2.0 / 3.0 && isWithinAxis(Dab, R);
}

bool isWithinAxis(double Dab, double R)
{
    return -Dab * std::max(2.0, 1.0 + 1.5 * R) <= maxPatternReach;
}

Status startScorer(PatternScorer &scorer, std::span<const float> couplings, double delta, Messages &messages)
{
    if (!(delta >= minMeanError && delta <= maxMeanError))
        return messages.fail("Error: the mean error of the couplings is %.3g Hz, it must be %g to %.2f Hz.\n",
                             delta, minMeanError, maxMeanError);
    if (collectPlaces(couplings, scorer.places, messages) != Status::ok)
        return Status::failed;
    scorer.data = Block<float>("data", places + 2 * margin);
    if (!scorer.data)
        return nrerror("allocation failure for data", messages);
    return chooseMethod(scorer, makeTaps(delta, scorer), messages);
}

double scorePattern(PatternScorer &scorer, double Dab, double R, bool clear)
{
    const std::span<float> data = scorer.data.span().subspan(margin, places);
    if (clear)
        std::ranges::fill(data, 0.0f);
    fillPattern(Dab, R, data);
    repeatEnds(scorer.data);
    const float least = scorer.isDense ? filterAll(scorer) : 0.0f;
    LogSum score;
    for (const ScorePlace &entry : scorer.places) {
        const float value = valueAt(scorer, entry.place, least);
        if (!(value > 0.0f && std::isfinite(value)))
            return 0.0;
        score.add(static_cast<double>(value), entry.count);
    }
    return score.total();
}

double mlMagTensorSingle(std::span<const float> coup_mat, double delta, double Dab, double R,
                         Messages &messages)
{
    PatternScorer scorer;
    if (!isPattern(Dab, R) || startScorer(scorer, coup_mat, delta, messages) != Status::ok)
        return 0.0;
    return scorePattern(scorer, Dab, R, true);
}

} // namespace trelm
