#include "magnitude/motion.h"

#include "couplings/output.h"
#include "couplings/run_report.h"
#include "errors/fit_statistics.h"
#include "magnitude/histogram.h"
#include "magnitude/likelihood_score.h"
#include "simulation/orientations/sphere.h"
#include "support/text/output_file.h"
#include "support/text/progress.h"
#include "support/text/text.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
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

int checkSettings(const TrelmInfo &info, const ObservedCouplings &observed)
{
    const MagnitudeOptions &hist = info;
    if (hist.modeFit != 2 && hist.modeFit != 3)
        complain("Warning: -nFit %d: no set is fitted, all have Da and R 0.\n", hist.modeFit);
    if (info.histRan < 1)
        complain("Warning: -nRun %d: no set is drawn.\n", info.histRan);
    if (info.histRan > maxSets)
        return complain("motionHist: -nRun %d: the number of sets is at most %d.\n", info.histRan, maxSets);
    if (info.sCount < 0)
        return complain("motionHist: -nSel %d: a set cannot have fewer than 0 residues.\n", info.sCount);
    if (checkHistogram(hist) != 0)
        return 1;
    if (!(observed.rAveDD > 0.0f))
        return complain("Error: The mean error of the couplings is not above 0.\n");
    if (observed.maxD >= axisLength || observed.minD <= -axisLength)
        return complain("motionHist: a coupling lies outside the frequency axis of %.2f Hz.\n", axisLength);
    return 0;
}

/// Couplings by residue of the window; those whose larger residue lies outside have no place.
int sortByResidue(const MagnitudeJob &job, ResidueCouplings &residues)
{
    const int first = job.dcInfo->segFirst;
    const std::int64_t nRes = std::int64_t{job.dcInfo->segLast} - first + 1;
    if (nRes > maxWindow)
        return complain("motionHist: the window of residues %d to %d has more than %d.\n", first,
                        job.dcInfo->segLast, maxWindow);
    residues.dcMat.resize(static_cast<std::size_t>(nRes));
    residues.sigMat.resize(static_cast<std::size_t>(nRes));
    int outside = 0;
    for (const DInfo &row : job.dTab->observed()) {
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
        complain("motionHist: %d couplings left out, their larger residue is outside the window.\n", outside);
    return 0;
}

int makePool(const MagnitudeJob &job, Pool &pool)
{
    if (sortByResidue(job, pool.residues) != 0)
        return 1;
    for (const auto &couplings : pool.residues.dcMat)
        pool.nDcTypeMax = std::max(pool.nDcTypeMax, couplings.size());
    const int asked = job.trelmInfo->sCount;
    pool.sCount = asked != 0 ? std::min(asked, pool.nRes()) : pool.nRes();
    const std::int64_t density =
        std::min<std::int64_t>(pool.sCount * static_cast<std::int64_t>(pool.nDcTypeMax), job.dTab->dCount);
    if (density < 1)
        complain("motionHist: no residue of the window has a coupling.\n");
    if (density < 1 || !do_unsp(static_cast<int>(density), pool.dots))
        return complain("motionHist: unsp error occured.\n");
    std::printf("REMARK %zu simulated couplings (isotropic).\n", pool.dots.size() / 3);
    return 0;
}

/// Buffers of a set, kept from set to set.
struct SetBuffers {
    std::vector<float> coupList, sigma, dc;
    float largestError = 0.0f; ///< of the mean errors so far
};

/// The set's score over that of an even distribution; 0 for a tensor that no pattern has.
double scoreRatio(const Pool &pool, const MotionSet &set, float rAveDD, SetBuffers &buffers)
{
    if (!(set.Dab < 0.0f && isPattern(set.Dab, set.R)))
        return 0.0;
    turnPositive(buffers.coupList);
    const double anIso = mlMagTensorSingle(buffers.coupList, rAveDD, set.Dab, set.R);
    simulateIsotropic(pool.dots, set.Dab, set.R, buffers.dc);
    turnPositive(buffers.dc);
    const double iso = mlMagTensorSingle(buffers.dc, rAveDD, set.Dab, set.R);
    return iso != 0.0 ? anIso / iso : 0.0;
}

/// Draws a set and scores it. One of fewer than two couplings, of zeros only, or whose errors cancel by their
/// weights, has no histogram: it keeps the tensor of the set before, as one without a peak does, and the
/// ratio 0.
int drawSet(const Pool &pool, MagnitudeOptions &histInfo, int &idum, SetBuffers &buffers, MotionSet &set)
{
    buffers.coupList.clear();
    buffers.sigma.clear();
    float rAveDD = 0.0f;
    set.nDSel = selectDcResidue(&idum, pool.residues, pool.sCount, buffers.coupList, buffers.sigma, rAveDD);
    if (rAveDD > maxMeanError)
        return complain("motionHist: the mean error of a set, %.3f Hz, is above %.2f Hz.\n", double{rAveDD},
                        maxMeanError);
    buffers.largestError = std::max(buffers.largestError, rAveDD);
    const Extremes extremes = findExtremes(buffers.coupList);
    const bool hasPattern =
        set.nDSel > 1 && rAveDD > 0.0f && (extremes.minD != 0.0f || extremes.maxD != 0.0f);
    if (hasPattern && histoExtFit(buffers.coupList, buffers.sigma, histInfo) != 0)
        return complain("trelm: error in histoExtFit.\n");
    set.Dab = histInfo.DaFit > 0.0f ? -histInfo.DaFit : histInfo.DaFit;
    set.R = histInfo.RFit;
    set.scores[0] = hasPattern ? scoreRatio(pool, set, rAveDD, buffers) : 0.0;
    return 0;
}

/// What the user should hear of the sets drawn.
void tellSets(std::span<const MotionSet> sets, float largestError)
{
    const auto without =
        std::ranges::count_if(sets, [](const MotionSet &set) { return set.scores[0] == 0.0; });
    if (without > 0)
        complain(
            "motionHist: %td of %zu sets have no ratio: too few couplings, one outside the pattern of their"
            " tensor, or a tensor without a pattern.\n",
            without, sets.size());
    if (largestError > maxWholeError)
        complain("Warning: the mean error of a set, %.3f Hz, is above %.2f Hz: the response runs into"
                 " itself.\n",
                 double{largestError}, maxWholeError);
}

int drawSets(const Pool &pool, TrelmInfo &trelmInfo, std::vector<MotionSet> &sets)
{
    int idum = -1;
    SetBuffers buffers;
    sets.resize(static_cast<std::size_t>(std::max(trelmInfo.histRan, 0)));
    Progress progress = startProgress("REMARK Histogram ", trelmInfo.histRan);
    int status = 0, drawn = 0;
    for (auto set = sets.begin(); set != sets.end() && status == 0; ++set) {
        showProgress(progress, ++drawn);
        pauseProgress(progress); // a set may have something to say
        status = drawSet(pool, trelmInfo, idum, buffers, *set);
    }
    endProgress(progress);
    if (status == 0)
        tellSets(sets, buffers.largestError);
    return status;
}

void writeSets(std::span<const MotionSet> sets, std::size_t nDots, OutFile &out)
{
    std::string text;
    appendf(text, "# nDots = %zu\n\n", nDots);
    int written = 0;
    for (const MotionSet &set : sets)
        appendf(text, "%d  %.3f  %.3f  %4d  %8.3f %8.3f %8.3f\n", ++written, double{set.Dab}, double{set.R},
                set.nDSel, set.scores[0], set.scores[1], set.scores[2]);
    writeOut(out, text);
}

void writeRanges(const MotionRanges &ranges, OutFile &out)
{
    std::string text;
    for (std::size_t list = 0; list < 3; ++list) {
        appendf(text, "\n\n# DATA MAX_MIN Da     %.3f  %.3f\n", double{ranges.maxDab}, double{ranges.minDab});
        appendf(text, "# DATA MAX_MIN R      %.3f  %.3f\n", double{ranges.maxR}, double{ranges.minR});
        appendf(text, "# DATA MAX_MIN Score  %.3f  %.3f\n", ranges.maxScore[list], ranges.minScore[list]);
    }
    writeOut(out, text);
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

/// Returns 0, or 1 after a message if the map is too large.
int layAxes(const MotionRanges &ranges, MapAxes &axes)
{
    axes.firstDab = std::floor(double{ranges.minDab});
    axes.firstR = std::max(std::floor(double{ranges.minR}), 0.0);
    constexpr double most = 1e9; // keeps the counts within integers
    if (ranges.maxDab - axes.firstDab > most || ranges.maxR - axes.firstR > most)
        return complain("motionHist: the sets spread too far for a map.\n");
    axes.countDab = stepsTo(axes.firstDab, ranges.maxDab, stepDab);
    axes.countR = stepsTo(axes.firstR, ranges.maxR, stepR);
    if (axes.countR > 0 && (axes.countDab + 1) > maxCells / axes.countR)
        return complain("motionHist: the sets spread too far for a map.\n");
    return 0;
}

int writeMap(std::span<const MotionSet> sets, const MotionRanges &ranges, OutFile &out)
{
    MapAxes axes;
    if (layAxes(ranges, axes) != 0)
        return 1;
    ++axes.countDab; // one row of Da more than the range has: plots close with it
    std::string text;
    std::int64_t cell = 0;
    for (const auto &colour : mapColours(sets, axes)) {
        appendf(text, "%.3f  %.3f  %4d  %4d  %4d\n", axes.dabAt(cell / axes.countR),
                axes.rAt(cell % axes.countR), colour[0], colour[1], colour[2]);
        ++cell;
    }
    writeOut(out, text);
    return 0;
}

int openResult(OutFile &out, const std::string &name)
{
    return openOut(out, name, "w") != 0 ? complain("TRELM Error opening output file %s\n", name.c_str()) : 0;
}

/// Each file of a run has a name of its own: the two results are opened before the table is read.
int checkNames(const std::string &inDName, const std::string &outDName, const std::string &outScName,
               const std::string &outColName)
{
    const std::string *const names[][2] = {{&outScName, &outColName},
                                           {&inDName, &outScName},
                                           {&inDName, &outColName},
                                           {&outDName, &outScName},
                                           {&outDName, &outColName}};
    for (const auto &[first, second] : names)
        if (isSameFile(*first, *second))
            return complain("motionHist: %s is another file of this run: give each a name of its own.\n",
                            second->c_str());
    return 0;
}

/// Table and map of the sets.
int writeMotion(std::span<MotionSet> sets, std::size_t nDots, OutFile &outSc, OutFile &outCol)
{
    weighScores(sets);
    writeSets(sets, nDots, outSc);
    const MotionRanges ranges = boundScores(sets);
    writeRanges(ranges, outSc);
    for (MotionSet &set : sets)
        for (std::size_t list = 0; list < 3; ++list)
            set.scores[list] -= ranges.minScore[list];
    int status = writeMap(sets, ranges, outCol);
    for (OutFile *out : {&outSc, &outCol})
        if (closeOut(*out) != 0)
            status = 1;
    return status;
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

int motionHist(const MagnitudeJob &job, const std::string &outScName, const std::string &outColName)
{
    OutFile outSc, outCol;
    if (checkNames(job.inDName, job.outDName, outScName, outColName) != 0 ||
        openResult(outSc, outScName) != 0 || openResult(outCol, outColName) != 0)
        return 1;
    ObservedCouplings observed;
    if (readObserved(job) != 0 || collectObserved(*job.dTab, observed) != 0 ||
        checkSettings(*job.trelmInfo, observed) != 0)
        return 1;
    Pool pool;
    std::vector<MotionSet> sets;
    if (makePool(job, pool) != 0 || drawSets(pool, *job.trelmInfo, sets) != 0 ||
        writeMotion(sets, pool.dots.size() / 3, outSc, outCol) != 0)
        return 1;
    std::string text;
    if (writeTrelm(*job.trelmInfo, text) != 0)
        return complain("trelm: error in writeTrelm.\n");
    return writeDCmod(job.outDName, "w", job.dTab, job.trelmInfo, text);
}

} // namespace trelm
