#include "magnitude/likelihood.h"

#include "support/text/progress.h"
#include "support/text/text.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <vector>

namespace trelm {
namespace {

/// Points from `low`, itself one, in steps of `inc` below `high`. Limits and steps come in single precision:
/// the last point stops a hair short, or 70 steps of 0.01 would reach 0.7 once more. Numbers that are none
/// give 0.
double countSteps(double low, double high, double inc)
{
    constexpr double hair = 1e-2; // of a step
    if (!(high > low && inc > 0.0))
        return 0.0;
    return std::max(1.0, std::ceil((high - low) / inc - hair));
}

/// Points along both axes; 0 on both where the limits of one meet or cross.
struct GridSize {
    double R = 0.0, Dab = 0.0; ///< whole numbers, maybe beyond any integer
    [[nodiscard]] double points() const { return R * Dab; }
};

GridSize sizeOf(const MlGrid &grid)
{
    const GridSize size = {.R = countSteps(grid.lowR, grid.highR, grid.incR),
                           .Dab = countSteps(grid.lowDab, grid.highDab, grid.incDa)};
    return size.R > 0.0 && size.Dab > 0.0 ? size : GridSize{};
}

/// Refuses a grid that cannot be searched, not one without points, and warns of points that no tensor has.
Status checkGrid(const MlGrid &grid, Messages &messages)
{
    if (!(grid.incR > 0.0 && grid.incDa > 0.0))
        return messages.fail("Error: the grid of Da and R has a step of 0.\n");
    const double points = sizeOf(grid).points();
    if (!(points <= maxMlPoints))
        return messages.fail("Error: the grid of Da and R has %.0f points, the limit is %d.\n", points,
                             maxMlPoints);
    if (points > 0.0 && !(grid.lowR >= 0.0 && grid.highR <= 2.0))
        messages.warn("Warning: the grid of R runs from %.3f to %.3f: no tensor has an R outside 0 to 2.\n",
                      grid.lowR, grid.highR);
    if (points > 0.0 && grid.highDab > 0.0)
        messages.warn("Warning: the grid of Da runs from %.3f to %.3f: its points above 0 have no pattern.\n",
                      grid.lowDab, grid.highDab);
    return Status::ok;
}

/// Whether the limits ask for a positive Da: the first one decides, also where the second has another sign.
bool isPositiveRequest(const LikelihoodOptions &options)
{
    return options.lDaMl >= 0.0f;
}

/// The limits as asked for; those of a positive request with their signs turned.
MlGrid settleGrid(const LikelihoodOptions &options)
{
    double l = options.lDaMl, h = options.hDaMl;
    if (isPositiveRequest(options)) {
        l = 0.0 - l; // no sign at a zero
        h = 0.0 - h;
    }
    return {.lowDab = std::min(l, h),
            .highDab = std::max(l, h),
            .incDa = std::fabs(options.incDaMl),
            .lowR = options.lRMl,
            .highR = options.hRMl,
            .incR = std::fabs(options.incRMl)};
}

/// Errors of Da and R by the number of couplings and the R found.
/// Rules of thumb of the method, not taken from the likelihood surface.
struct ErrorRow {
    std::size_t maxCount;
    double maxR;
    double DabErr, RErr;
};
constexpr std::size_t anyCount = maxMlCouplings;
constexpr double anyR = std::numeric_limits<double>::infinity();
constexpr ErrorRow errorRows[] = {
    {40, 0.1, 1.6, 0.17},       {40, 0.3, 2.3, 0.22},      {40, anyR, 2.5, 0.3},
    {90, 0.1, 0.5, 0.05},       {90, 0.3, 1.3, 0.13},      {90, anyR, 0.8, 0.13},
    {anyCount, 0.1, 0.3, 0.05}, {anyCount, 0.3, 0.9, 0.1}, {anyCount, anyR, 0.6, 0.1},
};

/// The best point and its errors; zero where no score is above 0.
MagnitudeRange findBest(std::span<const MlPoint> list, std::size_t nD, Messages &messages)
{
    constexpr double rounding = 1e-6; // 10 steps of a single-precision 0.01 are not exactly 0.1
    MagnitudeRange best;
    double bestScore = 0.0;
    for (const MlPoint &point : list) {
        if (!(point.score > bestScore))
            continue;
        bestScore = point.score;
        best.Dab = point.Dab;
        best.R = point.R;
    }
    if (list.empty())
        messages.warn("Warning: the grid of Da and R has no point between its limits, Da and R stay 0.\n");
    else if (bestScore == 0.0)
        messages.warn("Warning: no grid point scores above 0, Da and R stay 0.\n");
    const auto *row = std::ranges::find_if(errorRows, [&](const ErrorRow &entry) {
        return nD <= entry.maxCount && best.R <= entry.maxR + rounding;
    });
    best.DabErr = row->DabErr;
    best.RErr = row->RErr;
    return best;
}

/// Couplings that a search cannot place on its axis.
Status checkCouplings(const ObservedCouplings &observed, Messages &messages)
{
    if (observed.coupList.size() > maxMlCouplings)
        return messages.fail("Error: %zu couplings, the limit of a likelihood search is %zu.\n",
                             observed.coupList.size(), maxMlCouplings);
    const double span = double{observed.maxD} - observed.minD;
    if (!(span < axisLength)) // one end of the pattern would stand on the other
        return messages.fail("Error: the couplings span %.2f Hz, more than the frequency axis of %.2f Hz.\n",
                             span, axisLength);
    return Status::ok;
}

/// Warns of couplings that the tensors of the grid cannot explain, or not as they should.
void tellDoubts(const ObservedCouplings &observed, const MlGrid &grid, Messages &messages)
{
    const double reach = 2.0 * std::max(std::fabs(grid.lowDab), std::fabs(grid.highDab));
    const double largest = std::max(std::fabs(observed.minD), std::fabs(observed.maxD));
    if (largest > reach + reachOfResponse * observed.rAveDD)
        messages.warn("Warning: a coupling of %.2f Hz is beyond all tensors of the grid.\n", largest);
    if (observed.rAveDD > maxWholeError)
        messages.warn(
            "Warning: the mean error of the couplings, %.3f Hz, is above %.2f Hz: the response runs into"
            " itself.\n",
            double{observed.rAveDD}, maxWholeError);
}

/// Whether the best score lies in the last row of the grid, where a better one may lie beyond. R cannot be
/// below 0, so that the first row of R is an answer like others.
bool isAtEdge(const MlGrid &grid, const MagnitudeRange &best)
{
    const GridSize size = sizeOf(grid);
    const auto isLast = [](double distance, double inc) { return std::fabs(distance) < 0.5 * inc; };
    const double lastR = grid.lowR + (size.R - 1.0) * grid.incR;
    const double lastDab = grid.highDab - (size.Dab - 1.0) * grid.incDa;
    return isLast(best.Dab - grid.highDab, grid.incDa) || isLast(best.Dab - lastDab, grid.incDa) ||
           isLast(best.R - lastR, grid.incR) || (grid.lowR > 0.0 && isLast(best.R - grid.lowR, grid.incR));
}

/// Warns of an answer that its claimed errors do not cover.
void tellAnswer(const ObservedCouplings &observed, const MlGrid &grid, const MagnitudeRange &best,
                Messages &messages)
{
    // With 30 couplings of random directions Da was within its claimed error in 43 of 45 draws, with 20 in 52
    // of 60.
    constexpr std::size_t fewest = 30;
    if (best.Dab == 0.0)
        return;
    const std::size_t count = observed.coupList.size();
    if (count < fewest)
        messages.warn("trelm: %zu couplings for a pattern, Da and R may be farther off than their errors say"
                      " (%zu or more hold them)\n",
                      count, fewest);
    if (isAtEdge(grid, best))
        messages.warn(
            "trelm: the best score, Da %.3f R %.3f, is at the edge of the grid: its errors do not hold"
            " (see -lDa, -hDa, -lR, -hR; R above 0.667 means that the sign of Da is open)\n",
            best.Dab, best.R);
    const double largest = std::max(std::fabs(observed.minD), std::fabs(observed.maxD));
    const double end = 2.0 * std::fabs(best.Dab);
    if (largest > end + reachOfResponse * observed.rAveDD)
        messages.warn(
            "trelm: the couplings reach %.2f Hz, the pattern found ends at %.2f Hz: its errors do not"
            " hold (take -clearMl)\n",
            largest, end);
}

// Steps of the orientations, radians.
constexpr double angleStep = 0.01;
constexpr double lastTheta = 1.570795;
constexpr double lastPhi = 3.14159;

std::vector<double> anglesTo(double last)
{
    std::vector<double> angles;
    double angle = 0.0; // summed up step by step, as the method has it
    while (angle <= last) {
        angles.push_back(angle);
        angle += angleStep;
    }
    return angles;
}

/// All orientations, with the trigonometry done once an angle.
struct Orientations {
    std::vector<double> cosTheta, sinTheta, cosPhi;

    Orientations()
    {
        for (const double theta : anglesTo(lastTheta)) {
            cosTheta.push_back(std::cos(theta));
            sinTheta.push_back(std::sin(theta));
        }
        for (const double phi : anglesTo(lastPhi))
            cosPhi.push_back(std::cos(2.0 * phi));
    }
    [[nodiscard]] std::size_t count() const { return cosTheta.size() * cosPhi.size(); }
};

/// The coupling of an orientation, rounded to single precision before Dab scales it.
double scaledCoupling(double cosTheta, double sinTheta, double cosPhi, double Dab, double R)
{
    return Dab * static_cast<double>(static_cast<float>((1.0 - 3.0 * cosTheta * cosTheta) -
                                                        cosPhi * 1.5 * R * sinTheta * sinTheta));
}

} // namespace

Status mlMagTensor(const MlCouplings &couplings, const MlGrid &grid, bool clear, std::span<MlPoint> list,
                   std::size_t &lCount, Messages &messages)
{
    lCount = 0;
    const GridSize size = sizeOf(grid);
    if (!(size.points() <= static_cast<double>(list.size())))
        return messages.fail("Error: the grid of Da and R has %.0f points, the limit is %zu.\n",
                             size.points(), list.size());
    const double lastR = grid.lowR + (size.R - 1.0) * grid.incR;
    const double lastDab = grid.highDab - (size.Dab - 1.0) * grid.incDa;
    if (size.points() > 0.0 && !isWithinAxis(lastDab, lastR))
        return messages.fail("Error: the patterns up to Da %.3f Hz, R %.3f do not fit the axis of %.2f Hz.\n",
                             lastDab, lastR, axisLength);
    PatternScorer scorer;
    if (size.points() > 0.0 &&
        startScorer(scorer, couplings.coup_mat, couplings.delta, messages) != Status::ok)
        return Status::failed;
    Progress progress(messages, "", 0);
    std::string line;
    const auto countR = static_cast<int>(size.R), countDa = static_cast<int>(size.Dab);
    for (int i = 0; i < countR; ++i) {
        for (int k = 0; k < countDa; ++k) {
            MlPoint &point = list[lCount++];
            point.R = grid.lowR + i * grid.incR;
            point.Dab = grid.highDab - k * grid.incDa;
            if (progress.isDue(i + 1 == countR && k + 1 == countDa)) {
                line.clear();
                appendf(line, "Grid point R = %.2f D = %.2f\r", point.R, point.Dab);
                progress.showLine(line);
            }
            if (isPattern(point.Dab, point.R))
                point.score = scorePattern(scorer, point.Dab, point.R, clear);
        }
    }
    progress.end();
    return Status::ok;
}

Status startRanges(CouplingRanges &ranges, const MagnitudeRange &range, Messages &messages)
{
    const Orientations list;
    for (std::size_t corner = 0; corner < ranges.corners.size(); ++corner) {
        Block<CornerCoupling> &couplings = ranges.corners[corner];
        couplings = Block<CornerCoupling>("mapMl", list.count());
        if (!couplings)
            return messages.fail("Error allocating the couplings of the orientations.\n");
        const double Dab = range.Dab + (corner % 2 == 0 ? range.DabErr : -range.DabErr);
        const double R = range.R + (corner < 2 ? range.RErr : -range.RErr);
        std::size_t place = 0;
        for (std::size_t t = 0; t < list.cosTheta.size(); ++t) {
            for (const double cosPhi : list.cosPhi)
                couplings[place++] = {
                    scaledCoupling(list.cosTheta[t], list.sinTheta[t], cosPhi, Dab, R),
                    scaledCoupling(list.cosTheta[t], list.sinTheta[t], cosPhi, range.Dab, range.R)};
        }
        std::ranges::sort(couplings.span(), {}, &CornerCoupling::corner);
    }
    return Status::ok;
}

void mapMagToDc(const CouplingRanges &ranges, double coup, double coupErr, double &coupAve,
                double &coupAveErr)
{
    double dMin = coup, dMax = coup;
    for (const Block<CornerCoupling> &corner : ranges.corners) {
        // Sorted by the corner's value, the orientations that agree stand side by side.
        const auto agreeing = corner.span();
        auto entry = std::ranges::upper_bound(agreeing, coup - coupErr, {}, &CornerCoupling::corner);
        for (; entry != agreeing.end() && entry->corner < coup + coupErr; ++entry) {
            dMax = std::max(dMax, entry->centre);
            dMin = std::min(dMin, entry->centre);
        }
    }
    coupAve = (dMax + dMin) * 0.5;
    coupAveErr = std::fabs(dMax - coupAve);
}

Status getMlDabR(const ObservedCouplings &observed, const LikelihoodOptions &options, std::span<MlPoint> list,
                 MlSearch &found, Messages &messages)
{
    if (checkCouplings(observed, messages) != Status::ok)
        return Status::failed;
    found.extremes = solveExtremes(observed.minD, observed.maxD);
    const MlGrid grid = settleGrid(options);
    if (checkGrid(grid, messages) != Status::ok)
        return Status::failed;
    if (sizeOf(grid).points() > 0.0)
        tellDoubts(observed, grid, messages);
    std::vector<float> coupList = observed.coupList;
    turnPositive(coupList);
    if (mlMagTensor({coupList, observed.rAveDD}, grid, options.mlClear != 0, list, found.points, messages) !=
        Status::ok)
        return messages.fail("Error in mlMagTensor.\n");
    found.best = findBest(list.first(found.points), coupList.size(), messages);
    tellAnswer(observed, grid, found.best, messages);
    if (isPositiveRequest(options))
        found.best.Dab = 0.0 - found.best.Dab;
    return Status::ok;
}

Status fillCalculated(DTable &dTab, const MagnitudeRange &best, bool mlMap, Messages &messages)
{
    const auto isWeighted = [](const DInfo &row) { return isObserved(row) && row.w != 1.0f; };
    if (mlMap && std::ranges::any_of(dTab.observed(), isWeighted))
        messages.warn("Warning: the ranges of couplings are found without their weights.\n");
    CouplingRanges ranges;
    if (mlMap && startRanges(ranges, best, messages) != Status::ok)
        return Status::failed;
    for (std::size_t i = 0; i < dTab.observed().size(); ++i) {
        DInfo &obs = dTab.dObsList[i];
        DCalc &calc = dTab.dCalcList[i];
        if (!isObserved(obs))
            continue;
        double coupAve = 0.0, coupAveErr = 0.0;
        if (mlMap)
            mapMagToDc(ranges, double{obs.d}, double{obs.sigma}, coupAve, coupAveErr);
        calc.valid = 1;
        calc.d = static_cast<float>(coupAve);
        calc.sigma = obs.sigma = static_cast<float>(coupAveErr);
    }
    return Status::ok;
}

void appendScores(std::span<const MlPoint> list, std::string &text)
{
    text += "VARS   DA R SCORE\nFORMAT %3.1f %1.2f %e\n\n";
    for (const MlPoint &point : list)
        appendf(text, "%3.1f %1.2f %e\n", point.Dab + 0.0, point.R, point.score); // no sign at a zero
}

} // namespace trelm
