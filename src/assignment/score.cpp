#include "assignment/score.h"

#include "couplings/fit.h"
#include "couplings/tensor.h"

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
    std::size_t firstColumn = 0, columns = 0;
};

/// The couplings of a medium: the fixed ones, then residue by residue those of the peak on it.
void collectCouplings(const AssignmentProblem &problem, const MediumPart &medium,
                      std::span<const int> rowIdList, ScoreWork &work)
{
    clearLists(work);
    for (const FixedCoupling &coupling : medium.fixed)
        append(work, coupling);
    for (std::size_t k = 0; k < problem.peakCount; ++k) {
        const std::size_t peak = problem.at(rowIdList[k], medium.firstColumn);
        const std::size_t residue = problem.at(k, medium.firstColumn);
        for (std::size_t c = 0; c < medium.columns; ++c) {
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
bool isInside(const TensorWindow &window, const TensorAnalysis &analysis)
{
    const auto da = static_cast<float>(analysis.da * amideHertz);
    const auto r = static_cast<float>(analysis.dr / analysis.da);
    return window.lowDa < da && da < window.highDa && window.lowR < r && r < window.highR;
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
    // Without a fit the tensor is 0, which lies outside.
    static_cast<void>(findS(vectors, fitted, work.fit, work.messages));
    Saupe saupe;
    std::ranges::copy(fitted, saupe.begin());
    TensorAnalysis analysis;
    if (analyzeSaupe(saupe, 0, 0, analysis, work.messages) != Status::ok) {
        work.messages.err("trelm: error in analyzeSaupe.\n");
        return outsideWindow; // what is no number lies in no window
    }
    if (!isInside(problem.window, analysis))
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
    std::size_t firstFixed = 0, firstColumn = 0;
    for (std::size_t n = 0; n < problem.nLcType; ++n) {
        const MediumPart medium = {std::span(problem.fixed).subspan(firstFixed, problem.nDTypList[n]),
                                   firstColumn, problem.colIdList[n]};
        collectCouplings(problem, medium, rowIdList, work);
        sum += scoreMedium(problem, work);
        firstFixed += problem.nDTypList[n];
        firstColumn += problem.colIdList[n];
    }
    return sum;
}

} // namespace trelm
