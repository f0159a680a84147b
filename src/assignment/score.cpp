#include "assignment/score.h"

#include "couplings/fit.h"
#include "couplings/tensor.h"
#include "support/text/text.h"

#include <algorithm>

namespace trelm {
namespace {

void clearLists(ScoreWork &work)
{
    for (std::vector<float> *list :
         {&work.x, &work.y, &work.z, &work.d, &work.di, &work.sigma, &work.w, &work.dOrig})
        list->clear();
}

void append(ScoreWork &work, const FixedCoupling &coupling)
{
    work.x.push_back(coupling.x);
    work.y.push_back(coupling.y);
    work.z.push_back(coupling.z);
    work.d.push_back(coupling.d);
    work.di.push_back(coupling.di);
    work.sigma.push_back(coupling.sigma);
    work.w.push_back(coupling.w);
    work.dOrig.push_back(coupling.d);
}

/// One medium's share of a problem.
struct MediumPart {
    std::span<const FixedCoupling> fixed;
    int firstColumn = 0, columns = 0;
};

/// The couplings of a medium: the fixed ones, then residue by residue those of the peak on it.
void collectCouplings(const AssignmentProblem &problem, const MediumPart &medium,
                      std::span<const int> rowIdList, ScoreWork &work)
{
    clearLists(work);
    for (const FixedCoupling &coupling : medium.fixed)
        append(work, coupling);
    for (int k = 0; k < problem.peakCount; ++k) {
        const std::size_t peak = problem.at(rowIdList[static_cast<std::size_t>(k)], medium.firstColumn);
        const std::size_t residue = problem.at(k, medium.firstColumn);
        for (std::size_t c = 0; c < static_cast<std::size_t>(medium.columns); ++c) {
            if (problem.dcMat[peak + c] == noPeakCoupling)
                continue;
            append(work, {problem.xMat[residue + c], problem.yMat[residue + c], problem.zMat[residue + c],
                          problem.dcMat[peak + c], problem.diValMat[peak + c], problem.sigMat[peak + c],
                          problem.wMat[peak + c]});
        }
    }
    if (work.zero.size() < work.d.size())
        work.zero.resize(work.d.size(), 0.0f);
}

FitVectors vectorsOf(ScoreWork &work)
{
    const std::span<const float> origin = std::span<const float>(work.zero).first(work.d.size());
    return {origin, origin, origin, work.x, work.y, work.z, work.di, work.d, work.sigma};
}

/// Whether a tensor lies inside the window. A Da of 0 has an R of 0 / 0, which no window holds.
bool isInside(const AssignmentProblem &problem, const TensorAnalysis &analysis)
{
    const auto da = static_cast<float>(analysis.da * amideHertz);
    const auto r = static_cast<float>(analysis.dr / analysis.da);
    return problem.lDa < da && da < problem.hDa && problem.lR < r && r < problem.hR;
}

float sumOfSquares(const ScoreWork &work)
{
    double sum = 0.0;
    for (std::size_t i = 0; i < work.d.size(); ++i) {
        const double term = (static_cast<double>(work.dOrig[i]) - static_cast<double>(work.d[i])) *
                            static_cast<double>(work.w[i]);
        sum += term * term;
    }
    return static_cast<float>(sum);
}

/// The score of the couplings in the lists.
float scoreMedium(const AssignmentProblem &problem, ScoreWork &work)
{
    const FitVectors vectors = vectorsOf(work);
    SaupeValues fitted = {};
    static_cast<void>(findS(vectors, fitted, work.fit)); // without a fit the tensor is 0, which lies outside
    Saupe saupe;
    std::ranges::copy(fitted, saupe.begin());
    TensorAnalysis analysis;
    if (analyzeSaupe(saupe, 0, 0, analysis) != 0) {
        complain("trelm: error in analyzeSaupe.\n");
        return outsideWindow; // what is no number lies in no window
    }
    if (!isInside(problem, analysis))
        return outsideWindow;
    findD(vectors, fitted);
    return sumOfSquares(work);
}

} // namespace

float getSvdChi2Exh(const AssignmentProblem &problem, std::span<const int> rowIdList, ScoreWork &work)
{
    if (problem.nLcType == 0)
        return outsideWindow;
    float sum = 0.0f;
    std::size_t firstFixed = 0;
    int firstColumn = 0;
    for (std::size_t n = 0; n < static_cast<std::size_t>(problem.nLcType); ++n) {
        const auto fixedCount = static_cast<std::size_t>(problem.nDTypList[n]);
        const MediumPart medium = {std::span(problem.fixed).subspan(firstFixed, fixedCount), firstColumn,
                                   problem.colIdList[n]};
        collectCouplings(problem, medium, rowIdList, work);
        sum += scoreMedium(problem, work);
        firstFixed += fixedCount;
        firstColumn += problem.colIdList[n];
    }
    return sum;
}

} // namespace trelm
