#include "magnitude/motion.h"

#include "magnitude/histogram.h"
#include "magnitude/likelihood_score.h"
#include "simulation/orientations/sphere.h"
#include "support/text/progress.h"
#include "support/text/text.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace trelm {
namespace {

constexpr float rhombicLimit = 0.6667f; ///< R at and above it is at the rim of what a tensor can be
constexpr double stepDab = 0.2, stepR = 0.02;

/// What all sets are drawn from.
struct Pool {
    ResidueCouplings residues;
    int sCount = 0;             ///< residues of a set
    std::size_t nDcTypeMax = 0; ///< the most couplings of one residue
    std::vector<double> dots;   ///< directions of the even distribution
    [[nodiscard]] int nRes() const { return static_cast<int>(residues.dcMat.size()); }
};

Status checkSettings(const MotionSetup &setup, Messages &messages)
{
    const DrawOptions &draw = setup.draw;
    if (!setup.histogram.isFitted())
        messages.warn("Warning: -nFit %d: no set is fitted, all have Da and R 0.\n", setup.histogram.modeFit);
    if (draw.histRan < 1)
        messages.warn("Warning: -nRun %d: no set is drawn.\n", draw.histRan);
    if (draw.histRan > maxSets)
        return messages.fail("motionHist: -nRun %d: the number of sets is at most %d.\n", draw.histRan,
                             maxSets);
    if (draw.sCount < 0)
        return messages.fail("motionHist: -nSel %d: a set cannot have fewer than 0 residues.\n", draw.sCount);
    tellHistogram(setup.histogram, messages);
    if (!(setup.observed.rAveDD > 0.0f))
        return messages.fail("Error: The mean error of the couplings is not above 0.\n");
    if (setup.observed.maxD >= axisLength || setup.observed.minD <= -axisLength)
        return messages.fail("motionHist: a coupling lies outside the frequency axis of %.2f Hz.\n",
                             axisLength);
    return Status::ok;
}

/// Couplings by residue of the window; those whose larger residue lies outside have no place.
Status sortByResidue(const MotionSetup &setup, ResidueCouplings &residues, Messages &messages)
{
    const int first = setup.segFirst;
    const std::int64_t nRes = std::int64_t{setup.segLast} - first + 1;
    if (nRes > maxWindow)
        return messages.fail("motionHist: the window of residues %d to %d has more than %d.\n", first,
                             setup.segLast, maxWindow);
    residues.dcMat.resize(static_cast<std::size_t>(nRes));
    residues.sigMat.resize(static_cast<std::size_t>(nRes));
    int outside = 0;
    for (const DInfo &row : setup.dTab.observed()) {
        if (!isObserved(row))
            continue;
        const std::int64_t place = std::int64_t{std::max(row.resIDI, row.resIDJ)} - first;
        if (place < 0 || place >= nRes) {
            ++outside;
            continue;
        }
        residues.dcMat[static_cast<std::size_t>(place)].push_back(row.d * row.w);
        residues.sigMat[static_cast<std::size_t>(place)].push_back(row.sigma * row.w);
    }
    if (outside > 0)
        messages.err("motionHist: %d couplings left out, their larger residue is outside the window.\n",
                     outside);
    return Status::ok;
}

Status makePool(const MotionSetup &setup, Pool &pool, Messages &messages)
{
    if (sortByResidue(setup, pool.residues, messages) != Status::ok)
        return Status::failed;
    for (const auto &couplings : pool.residues.dcMat)
        pool.nDcTypeMax = std::max(pool.nDcTypeMax, couplings.size());
    const int asked = setup.draw.sCount;
    pool.sCount = asked != 0 ? std::min(asked, pool.nRes()) : pool.nRes();
    const std::int64_t density =
        std::min<std::int64_t>(pool.sCount * static_cast<std::int64_t>(pool.nDcTypeMax),
                               static_cast<std::int64_t>(setup.dTab.dCount));
    if (density < 1)
        messages.err("motionHist: no residue of the window has a coupling.\n");
    if (density < 1 || !do_unsp(static_cast<int>(density), pool.dots))
        return messages.fail("motionHist: unsp error occured.\n");
    messages.out("REMARK %zu simulated couplings (isotropic).\n", pool.dots.size() / 3);
    return Status::ok;
}

/// The couplings and errors of a set, Hz, and the mean of these.
struct SetCouplings {
    std::vector<float> coupList, sigma;
    float rAveDD = 0.0f;
};

/// The set's score over that of an even distribution; 0 for a tensor that no pattern has. Turns the couplings
/// of the set.
double scoreRatio(const Pool &pool, const MotionSet &set, SetCouplings &couplings, Messages &messages)
{
    if (!(set.Dab < 0.0f && isPattern(set.Dab, set.R)))
        return 0.0;
    turnPositive(couplings.coupList);
    const double anIso = mlMagTensorSingle(couplings.coupList, couplings.rAveDD, set.Dab, set.R, messages);
    std::vector<float> even;
    simulateIsotropic(pool.dots, set.Dab, set.R, even);
    turnPositive(even);
    const double iso = mlMagTensorSingle(even, couplings.rAveDD, set.Dab, set.R, messages);
    return iso != 0.0 ? anIso / iso : 0.0;
}

/// Scores the couplings of a set. One of fewer than two couplings, of zeros only, or whose errors cancel by
/// their weights, has no histogram: it keeps the tensor of the set before, as one without a peak does, and
/// the ratio 0. `found` comes with that tensor.
Status scoreSet(const Pool &pool, const HistogramOptions &options, SetCouplings &couplings,
                HistogramResult &found, MotionSet &set, Messages &messages)
{
    if (couplings.rAveDD > maxMeanError)
        return messages.fail("motionHist: the mean error of a set, %.3f Hz, is above %.2f Hz.\n",
                             double{couplings.rAveDD}, maxMeanError);
    const Extremes extremes = findExtremes(couplings.coupList);
    const bool hasPattern = couplings.coupList.size() > 1 && couplings.rAveDD > 0.0f &&
                            (extremes.minD != 0.0f || extremes.maxD != 0.0f);
    if (hasPattern &&
        histoExtFit(couplings.coupList, couplings.sigma, options, found, messages) != Status::ok)
        return messages.fail("trelm: error in histoExtFit.\n");
    set.nDSel = static_cast<int>(couplings.coupList.size());
    set.Dab = found.DaFit > 0.0f ? -found.DaFit : found.DaFit;
    set.R = found.RFit;
    set.scores[0] = hasPattern ? scoreRatio(pool, set, couplings, messages) : 0.0;
    return Status::ok;
}

/// What the user should hear of the sets drawn.
void tellSets(std::span<const MotionSet> sets, bool isFitted, float largestError, Messages &messages)
{
    const auto without =
        std::ranges::count_if(sets, [](const MotionSet &set) { return set.scores[0] == 0.0; });
    if (without > 0 && isFitted)
        messages.err(
            "motionHist: %td of %zu sets have no ratio: too few couplings, one outside the pattern of their"
            " tensor, or a tensor without a pattern.\n",
            without, sets.size());
    if (largestError > maxWholeError)
        messages.warn("Warning: the mean error of a set, %.3f Hz, is above %.2f Hz: the response runs into"
                      " itself.\n",
                      double{largestError}, maxWholeError);
}

Status drawSets(const Pool &pool, const MotionSetup &setup, std::vector<MotionSet> &sets, Messages &messages)
{
    RandomStream random;
    int count = 0;
    float largestError = 0.0f;
    HistogramResult found;
    sets.resize(static_cast<std::size_t>(std::max(setup.draw.histRan, 0)));
    Progress progress(messages, "REMARK Histogram ", setup.draw.histRan);
    Status status = Status::ok;
    for (auto set = sets.begin(); set != sets.end() && status == Status::ok; ++set) {
        progress.show(++count);
        progress.pause(); // a set may have something to say
        SetCouplings couplings;
        selectDcResidue(random, pool.residues, pool.sCount, couplings.coupList, couplings.sigma,
                        couplings.rAveDD);
        status = scoreSet(pool, setup.histogram, couplings, found, *set, messages);
        largestError = std::max(largestError, couplings.rAveDD);
    }
    progress.end();
    if (status == Status::ok)
        tellSets(sets, setup.histogram.isFitted(), largestError, messages);
    return status;
}

void appendSets(std::span<const MotionSet> sets, std::size_t nDots, std::string &text)
{
    appendf(text, "# nDots = %zu\n\n", nDots);
    int written = 0;
    for (const MotionSet &set : sets)
        appendf(text, "%d  %.3f  %.3f  %4d  %8.3f %8.3f %8.3f\n", ++written, double{set.Dab}, double{set.R},
                set.nDSel, set.scores[0], set.scores[1], set.scores[2]);
}

void appendRanges(const MotionRanges &ranges, std::string &text)
{
    for (std::size_t list = 0; list < 3; ++list) {
        appendf(text, "\n\n# DATA MAX_MIN Da     %.3f  %.3f\n", double{ranges.maxDab}, double{ranges.minDab});
        appendf(text, "# DATA MAX_MIN R      %.3f  %.3f\n", double{ranges.maxR}, double{ranges.minR});
        appendf(text, "# DATA MAX_MIN Score  %.3f  %.3f\n", ranges.maxScore[list], ranges.minScore[list]);
    }
}

/// The largest scores of the sets in a cell of the map.
struct Cell {
    std::array<double, 3> largest = {};
    bool hasSets = false;
};

void addSet(const MotionSet &set, Cell &cell)
{
    cell.hasSets = true;
    for (std::size_t list = 0; list < 3; ++list)
        cell.largest[list] = std::max(cell.largest[list], set.scores[list]);
}

std::array<int, 3> colourOf(const Cell &cell)
{
    std::array<int, 3> colour = {};
    for (std::size_t list = 0; list < 3; ++list)
        colour[list] =
            std::clamp(static_cast<int>(std::ceil(15.0 * std::min(cell.largest[list], 1.0))), 0, 15);
    if (cell.hasSets)
        colour[0] = std::max(colour[0], 1);
    return colour;
}

/// The cells of an axis that a value may touch, and one more to either side for its rounding: from the first
/// up to, but without, the second. Values beyond the axis have none.
std::pair<std::int64_t, std::int64_t> cellsNear(double value, double first, double step, std::int64_t count)
{
    const double place = (value - first) / step;
    if (!(place > -2.0 && place < static_cast<double>(count) + 2.0))
        return {0, 0};
    const auto middle = static_cast<std::int64_t>(std::floor(place));
    return {std::max<std::int64_t>(middle - 1, 0), std::min(middle + 3, count)};
}

/// Steps from first while at most last. The hair lets a last value that is a step count as one.
std::int64_t stepsTo(double first, double last, double step)
{
    constexpr double hair = 1e-6;
    return last < first ? 0 : static_cast<std::int64_t>((last - first) / step + hair) + 1;
}

/// Fails after a message if the map is too large.
Status layAxes(const MotionRanges &ranges, MapAxes &axes, Messages &messages)
{
    axes.firstDab = std::floor(double{ranges.minDab});
    axes.firstR = std::max(std::floor(double{ranges.minR}), 0.0);
    constexpr double most = 1e9; // keeps the counts within integers
    if (ranges.maxDab - axes.firstDab > most || ranges.maxR - axes.firstR > most)
        return messages.fail("motionHist: the sets spread too far for a map.\n");
    axes.countDab = stepsTo(axes.firstDab, ranges.maxDab, stepDab);
    axes.countR = stepsTo(axes.firstR, ranges.maxR, stepR);
    if (axes.countR > 0 && (axes.countDab + 1) > maxCells / axes.countR)
        return messages.fail("motionHist: the sets spread too far for a map.\n");
    return Status::ok;
}

void boundList(std::span<MotionSet> sets, std::size_t list, MotionRanges &ranges)
{
    double smallest = 1.0;
    bool found = false;
    for (const MotionSet &set : sets) {
        const double score = set.scores[list];
        if (set.R < rhombicLimit && score > 0.0 && score <= 1.0) {
            smallest = std::min(smallest, score);
            found = true;
        }
    }
    bool isFirst = true;
    for (MotionSet &set : sets) {
        double &score = set.scores[list];
        score = score > 0.0 ? std::min(score, 1.0) : (found ? smallest : 0.0);
        if (!(set.R < rhombicLimit))
            continue;
        ranges.minScore[list] = isFirst ? score : std::min(ranges.minScore[list], score);
        ranges.maxScore[list] = isFirst ? score : std::max(ranges.maxScore[list], score);
        isFirst = false;
    }
}

} // namespace

void simulateIsotropic(std::span<const double> dots, float Dab, float R, std::vector<float> &dc)
{
    dc.clear();
    for (std::size_t i = 0; i + 2 < dots.size(); i += 3) {
        const double x = dots[i], y = dots[i + 1], z = dots[i + 2];
        const double plane = x * x + y * y;
        const auto rhombic =
            static_cast<float>(plane > 0.0 ? 1.5 * R * plane * (x * x - y * y) / plane : 0.0);
        dc.push_back(static_cast<float>(Dab * (rhombic + (3.0 * z * z - 1.0))));
    }
}

void weighScores(std::span<MotionSet> sets)
{
    int nDSelMax = 0;
    for (const MotionSet &set : sets)
        nDSelMax = std::max(nDSelMax, set.nDSel);
    for (MotionSet &set : sets) {
        const double t = set.nDSel > 0 ? set.scores[0] / set.nDSel * nDSelMax : 0.0;
        set.scores[1] = (set.scores[0] + t) * 0.5;
        set.scores[2] = t;
    }
}

MotionRanges boundScores(std::span<MotionSet> sets)
{
    MotionRanges ranges;
    if (sets.empty())
        return ranges;
    const auto [leastDab, mostDab] = std::ranges::minmax(sets, {}, &MotionSet::Dab);
    const auto [leastR, mostR] = std::ranges::minmax(sets, {}, &MotionSet::R);
    ranges = {.maxDab = mostDab.Dab, .minDab = leastDab.Dab, .maxR = mostR.R, .minR = leastR.R};
    for (std::size_t list = 0; list < 3; ++list)
        boundList(sets, list, ranges);
    return ranges;
}

double MapAxes::dabAt(std::int64_t i) const
{
    return firstDab + stepDab * static_cast<double>(i);
}

double MapAxes::rAt(std::int64_t k) const
{
    return firstR + stepR * static_cast<double>(k);
}

std::vector<std::array<int, 3>> mapColours(std::span<const MotionSet> sets, const MapAxes &axes)
{
    std::vector<Cell> cells(static_cast<std::size_t>(axes.countDab * axes.countR));
    for (const MotionSet &set : sets) {
        const auto [iFirst, iBeyond] = cellsNear(set.Dab, axes.firstDab, stepDab, axes.countDab);
        const auto [kFirst, kBeyond] = cellsNear(set.R, axes.firstR, stepR, axes.countR);
        for (std::int64_t i = iFirst; i < iBeyond; ++i)
            for (std::int64_t k = kFirst; k < kBeyond; ++k)
                if (std::fabs(set.Dab - axes.dabAt(i)) <= 0.5 * stepDab &&
                    std::fabs(set.R - axes.rAt(k)) <= 0.5 * stepR)
                    addSet(set, cells[static_cast<std::size_t>(i * axes.countR + k)]);
    }
    std::vector<std::array<int, 3>> colours;
    colours.reserve(cells.size());
    for (const Cell &cell : cells)
        colours.push_back(colourOf(cell));
    return colours;
}

Status drawMotion(const MotionSetup &setup, MotionSets &drawn, Messages &messages)
{
    Pool pool;
    if (checkSettings(setup, messages) != Status::ok || makePool(setup, pool, messages) != Status::ok)
        return Status::failed;
    drawn.nDots = pool.dots.size() / 3;
    return drawSets(pool, setup, drawn.sets, messages);
}

MotionRanges appendMotion(std::span<MotionSet> sets, std::size_t nDots, std::string &text)
{
    weighScores(sets);
    appendSets(sets, nDots, text);
    const MotionRanges ranges = boundScores(sets);
    appendRanges(ranges, text);
    for (MotionSet &set : sets)
        for (std::size_t list = 0; list < 3; ++list)
            set.scores[list] -= ranges.minScore[list];
    return ranges;
}

Status appendMap(std::span<const MotionSet> sets, const MotionRanges &ranges, std::string &text,
                 Messages &messages)
{
    MapAxes axes;
    if (layAxes(ranges, axes, messages) != Status::ok)
        return Status::failed;
    ++axes.countDab; // one row of Da more than the range has: plots close with it
    std::int64_t cell = 0;
    for (const auto &colour : mapColours(sets, axes)) {
        appendf(text, "%.3f  %.3f  %4d  %4d  %4d\n", axes.dabAt(cell / axes.countR),
                axes.rAt(cell % axes.countR), colour[0], colour[1], colour[2]);
        ++cell;
    }
    return Status::ok;
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
        const std::size_t k = random.place(nRes);
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
