#include "couplings/fit.h"

#include "couplings/design.h"
#include "support/numerics/svd.h"

#include <algorithm>
#include <cmath>

namespace trelm {
namespace {

/// The workspace of a table, cut into arrays of maxCount values each.
struct Slices {
    std::span<float> xI, yI, zI, xJ, yJ, zJ;
    std::span<float> diBack; ///< constants for back-calculation
    std::span<float> diFit;  ///< constants for the fit
    std::span<float> d, sigma;
};

/// The arrays as the fit takes them, up to `count` entries.
FitVectors firstEntries(const Slices &s, std::span<float> di, std::size_t count)
{
    return {s.xI.first(count), s.yI.first(count), s.zI.first(count), s.xJ.first(count),   s.yJ.first(count),
            s.zJ.first(count), di.first(count),   s.d.first(count),  s.sigma.first(count)};
}

/// Zeroes the workspace and cuts it. Returns false if the table has none.
bool cutWork(DTable &dTab, Slices &s)
{
    const auto size = static_cast<std::size_t>(dTab.maxCount);
    std::span<float> rest = dTab.work.span();
    std::span<float> *const slices[] = {&s.xI, &s.yI,     &s.zI,    &s.xJ, &s.yJ,
                                        &s.zJ, &s.diBack, &s.diFit, &s.d,  &s.sigma};
    if (dTab.maxCount < 0 || rest.size() < size * std::size(slices))
        return false;
    std::ranges::fill(rest, 0.0f);
    for (std::span<float> *slice : slices) {
        *slice = rest.first(size);
        rest = rest.subspan(size);
    }
    return true;
}

/// A single pair and a group of three are one entry; anything else is one entry a pair.
std::size_t entryCount(const DInfo &calc)
{
    const auto pairs = static_cast<std::size_t>(calc.atomICount * calc.atomJCount);
    return pairs == 3 ? 1 : pairs;
}

/// Adds a share of a pair's coordinates to entry k.
void addPair(const Slices &s, std::size_t k, const AtomInfo &atomI, const AtomInfo &atomJ, float divisor)
{
    s.xI[k] += atomI.x / divisor;
    s.yI[k] += atomI.y / divisor;
    s.zI[k] += atomI.z / divisor;
    s.xJ[k] += atomJ.x / divisor;
    s.yJ[k] += atomJ.y / divisor;
    s.zJ[k] += atomJ.z / divisor;
}

/// Writes the entries of one row from place k on.
void putRow(const Slices &s, std::size_t k, const DInfo &obs, const DInfo &calc)
{
    const bool single = calc.atomICount * calc.atomJCount == 1;
    const bool mean = calc.atomICount * calc.atomJCount == 3;
    const std::size_t entries = entryCount(calc);
    for (std::size_t i = 0; i < entries; ++i) {
        s.diBack[k + i] = calc.di;
        // Rows of several pairs hold no coupling of one vector: constant 0 makes their target 0.
        s.diFit[k + i] = single || mean ? calc.di : 0.0f;
        s.d[k + i] = obs.d;
        s.sigma[k + i] = obs.sigma;
    }
    std::size_t place = k;
    for (const AtomInfo *atomI : calc.atomsI())
        for (const AtomInfo *atomJ : calc.atomsJ()) {
            addPair(s, place, *atomI, *atomJ, mean ? 3.0f : 1.0f);
            place += mean ? 0 : 1;
        }
}

/// How much putRows has written.
struct Filled {
    std::size_t entries = 0; ///< of the arrays
    int rows = 0;            ///< of the table
};

Filled putRows(const DTable &dTab, const Slices &s)
{
    Filled filled;
    for (std::size_t i = 0; i < dTab.calculated().size(); ++i) {
        const DInfo &calc = dTab.calculated()[i];
        if (!takesPart(calc) || filled.entries + entryCount(calc) > s.d.size())
            continue;
        putRow(s, filled.entries, dTab.observed()[i], calc);
        filled.entries += entryCount(calc);
        ++filled.rows;
    }
    return filled;
}

/// The couplings back to the rows, in the order in which putRows went. The other rows keep theirs: in a table
/// of several media the fits of one medium leave those of the others alone.
void takeRows(DTable &dTab, const Slices &s)
{
    std::size_t k = 0;
    for (DInfo &calc : dTab.calculated()) {
        const std::size_t entries = entryCount(calc);
        if (!takesPart(calc) || k + entries > s.d.size())
            continue;
        calc.d = 0.0f;
        for (float value : s.d.subspan(k, entries))
            calc.d += value;
        k += entries;
    }
}

/// The couplings of a tensor into the rows, as findD and takeRows.
void calculateRows(const RepeatedFit &fit, const SaupeValues &saupe, DTable &dTab)
{
    std::size_t k = 0;
    while (k < fit.rows.size()) {
        const int row = fit.rows[k];
        DInfo &calc = dTab.dCalcList[static_cast<std::size_t>(row)];
        calc.d = 0.0f;
        for (; k < fit.rows.size() && fit.rows[k] == row; ++k) {
            float sum = 0.0f;
            for (std::size_t j = 0; j < saupe.size(); ++j)
                sum += fit.entries[k].terms[j] * saupe[j];
            calc.d += sum * fit.entries[k].scale;
        }
    }
}

/// Couplings, errors or a tensor near the end of the range of single precision: no result is worth writing.
std::optional<int> checkTensor(const DTensor &tensor, int used, Messages &messages)
{
    if (std::ranges::all_of(tensor.saupe, [](float element) { return std::isfinite(element); }))
        return used;
    messages.err(
        "DC Error: the order matrix is no finite number: look at D, DD, W and the tensor options.\n");
    return std::nullopt;
}

} // namespace

void solveEuler(DTensor &tensor)
{
    RotationLists lists;
    tensor.eulerCount = saupe2euler(tensor.saupe, lists, tensor.eigVal, tensor.da, tensor.dr);
    tensor.psiList = lists.psi;
    tensor.thetaList = lists.theta;
    tensor.phiList = lists.phi;
}

std::optional<int> fitD(PDBInfo *pdbInfo, DTable &dTab, int verbose, Messages &messages)
{
    std::optional<int> used = 0;
    switch (dTab.dTensor.tensorMode) {
    case tensorSvd:
    case tensorSaupe:
    case tensorGiven:
    case tensorGivenToo:
        used = fitDSVD(dTab, messages);
        break;
    case tensorNofixed:
    case tensorDaDr:
    case tensorFixed:
    case tensorFreeToo:
        if (pdbInfo != nullptr)
            used = fitDCAlign(*pdbInfo, dTab, verbose, messages);
        break;
    default:
        break;
    }
    return used ? checkTensor(dTab.dTensor, *used, messages) : std::nullopt;
}

std::optional<int> fitDSVD(DTable &dTab, Messages &messages)
{
    DTensor &tensor = dTab.dTensor;
    const bool fit = tensor.tensorMode == tensorSvd;
    tensor.saupe = fit ? SaupeValues{} : tensor.userSaupe;
    Slices slices;
    if (!cutWork(dTab, slices))
        return 0;
    const Filled filled = putRows(dTab, slices);
    // Too few couplings leave a zero tensor, and then zero couplings: that is an answer, not a failure.
    if (fit && findS(firstEntries(slices, slices.diFit, filled.entries), tensor.saupe, dTab.fitWork,
                     messages) == Status::failed)
        return std::nullopt;
    findD(firstEntries(slices, slices.diBack, filled.entries), tensor.saupe);
    if (tensor.eulerFlag != 0)
        solveEuler(tensor);
    takeRows(dTab, slices);
    return filled.rows;
}

void prepareRepeatedFit(DTable &dTab, RepeatedFit &fit)
{
    fit = RepeatedFit{};
    Slices slices;
    if (dTab.dTensor.tensorMode != tensorSvd || !cutWork(dTab, slices))
        return;
    const Filled filled = putRows(dTab, slices);
    const std::size_t count = filled.entries;
    fit.used = filled.rows;
    const FitVectors vectors = firstEntries(slices, slices.diFit, count);
    for (std::size_t k = 0; k < count; ++k) {
        const RowScale scale = rowScale(vectors, k);
        const SaupeValues terms = geometryTerms(vectors, k);
        fit.entries.push_back({terms, scale.coupling, std::fabs(slices.diBack[k])});
        for (const float term : terms)
            fit.x.push_back(scale.design * term);
    }
    for (int row = 0; row < dTab.dCount; ++row) {
        const DInfo &calc = dTab.dCalcList[static_cast<std::size_t>(row)];
        if (takesPart(calc) && fit.rows.size() + entryCount(calc) <= slices.d.size())
            fit.rows.insert(fit.rows.end(), entryCount(calc), row);
    }
    fit.y.resize(count);
    fit.isUsable = count >= fewestCouplings;
}

std::optional<int> refitD(RepeatedFit &fit, PDBInfo *pdbInfo, DTable &dTab, int verbose, Messages &messages)
{
    if (!fit.isUsable)
        return fitD(pdbInfo, dTab, verbose, messages);
    DTensor &tensor = dTab.dTensor;
    for (std::size_t k = 0; k < fit.entries.size(); ++k)
        fit.y[k] = fit.entries[k].toFit * dTab.dObsList[static_cast<std::size_t>(fit.rows[k])].d;
    if (svdLSMat(fit.x, fit.y, tensor.saupe, fit.svd) != Status::ok)
        return std::nullopt;
    if (tensor.eulerFlag != 0)
        solveEuler(tensor);
    calculateRows(fit, tensor.saupe, dTab);
    return checkTensor(tensor, fit.used, messages);
}

} // namespace trelm
