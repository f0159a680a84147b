#include "couplings/fit.h"

#include "couplings/design.h"
#include "support/numerics/svd.h"

#include <algorithm>
#include <cmath>

namespace trelm {
namespace {

/// The entries of a fit, cut into arrays of maxCount values each.
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

/// Zeroes the entries and cuts them. Returns false without memory.
bool cutEntries(const DTable &dTab, FitWork &work, Slices &s)
{
    std::span<float> *const slices[] = {&s.xI, &s.yI,     &s.zI,    &s.xJ, &s.yJ,
                                        &s.zJ, &s.diBack, &s.diFit, &s.d,  &s.sigma};
    const std::size_t size = dTab.maxCount;
    const std::size_t length = size * std::size(slices);
    if (work.entries.length() < length)
        work.entries = Block<float>("dc", length);
    if (work.entries.length() < length)
        return false;
    std::span<float> rest = work.entries.span().first(length);
    std::ranges::fill(rest, 0.0f);
    for (std::span<float> *slice : slices) {
        *slice = rest.first(size);
        rest = rest.subspan(size);
    }
    return true;
}

/// A single pair and a group of three are one entry; anything else is one entry a pair.
std::size_t entryCount(const DCalc &calc)
{
    const std::size_t pairs = calc.pairCount();
    return pairs == 3 ? 1 : pairs;
}

/// Adds a share of a pair's coordinates to entry k.
void addPair(const Slices &s, std::size_t k, const Coord3D &atomI, const Coord3D &atomJ, float divisor)
{
    s.xI[k] += atomI.x / divisor;
    s.yI[k] += atomI.y / divisor;
    s.zI[k] += atomI.z / divisor;
    s.xJ[k] += atomJ.x / divisor;
    s.yJ[k] += atomJ.y / divisor;
    s.zJ[k] += atomJ.z / divisor;
}

/// Writes the entries of one row from place k on.
void putRow(const Slices &s, std::size_t k, const FitInput &input, std::size_t row)
{
    const DCalc &calc = input.dTab.dCalcList[row];
    const bool single = calc.pairCount() == 1;
    const bool mean = calc.pairCount() == 3;
    const std::size_t entries = entryCount(calc);
    for (std::size_t i = 0; i < entries; ++i) {
        s.diBack[k + i] = calc.di;
        // Rows of several pairs hold no coupling of one vector: constant 0 makes their target 0.
        s.diFit[k + i] = single || mean ? calc.di : 0.0f;
        s.d[k + i] = input.columns.d[row];
        s.sigma[k + i] = input.columns.sigma[row];
    }
    std::size_t place = k;
    for (const std::uint32_t atomI : calc.atomI.span())
        for (const std::uint32_t atomJ : calc.atomJ.span()) {
            addPair(s, place, input.coords[atomI], input.coords[atomJ], mean ? 3.0f : 1.0f);
            place += mean ? 0 : 1;
        }
}

/// How much putRows has written.
struct Filled {
    std::size_t entries = 0; ///< of the arrays
    int rows = 0;            ///< of the table
};

/// Calls `visit` with each row in use that has room, and the place of its entries.
template <class Visit>
Filled forEachRow(const FitInput &input, std::size_t room, Visit visit)
{
    Filled filled;
    for (std::size_t row = 0; row < input.columns.use.size(); ++row) {
        const std::size_t entries = entryCount(input.dTab.dCalcList[row]);
        if (input.columns.use[row] == 0 || filled.entries + entries > room)
            continue;
        visit(row, filled.entries, entries);
        filled.entries += entries;
        ++filled.rows;
    }
    return filled;
}

Filled putRows(const FitInput &input, const Slices &s)
{
    return forEachRow(input, s.d.size(),
                      [&](std::size_t row, std::size_t k, std::size_t) { putRow(s, k, input, row); });
}

/// The couplings back to the rows. The others keep theirs: in a table of several media the fits of one medium
/// leave those of the others alone.
void takeRows(const FitInput &input, const Slices &s, FitResult &result)
{
    forEachRow(input, s.d.size(), [&](std::size_t row, std::size_t k, std::size_t entries) {
        result.calculated[row] = 0.0f;
        for (const float value : s.d.subspan(k, entries))
            result.calculated[row] += value;
    });
}

/// The couplings of a tensor into the rows, as findD and takeRows.
void calculateRows(const RepeatedFit &fit, FitResult &result)
{
    const SaupeValues &saupe = result.tensor.saupe;
    for (const int row : fit.rows)
        result.calculated[static_cast<std::size_t>(row)] = 0.0f;
    for (std::size_t k = 0; k < fit.rows.size(); ++k) {
        float sum = 0.0f;
        for (std::size_t j = 0; j < saupe.size(); ++j)
            sum += fit.entries[k].terms[j] * saupe[j];
        result.calculated[static_cast<std::size_t>(fit.rows[k])] += sum * fit.entries[k].scale;
    }
}

/// Couplings, errors or a tensor near the end of the range of single precision: no result is worth writing.
Status checkTensor(const DTensor &tensor, Messages &messages)
{
    if (std::ranges::all_of(tensor.saupe, [](float element) { return std::isfinite(element); }))
        return Status::ok;
    return messages.fail(
        "DC Error: the order matrix is no finite number: look at D, DD, W and the tensor options.\n");
}

Status noRoom(Messages &messages)
{
    return messages.fail("DC Error Allocating DC Workspaces.\n");
}

/// The linear engine.
Status fitDSVD(const FitInput &input, FitWork &work, FitResult &result, Messages &messages)
{
    DTensor &tensor = result.tensor;
    const bool fit = tensor.tensorMode == tensorSvd;
    tensor.saupe = fit ? SaupeValues{} : tensor.userSaupe;
    Slices slices;
    if (!cutEntries(input.dTab, work, slices))
        return noRoom(messages);
    const Filled filled = putRows(input, slices);
    // Too few couplings leave a zero tensor, and then zero couplings: that is an answer, not a failure.
    if (fit && findS(firstEntries(slices, slices.diFit, filled.entries), tensor.saupe, work, messages) ==
                   Status::failed)
        return Status::failed;
    findD(firstEntries(slices, slices.diBack, filled.entries), tensor.saupe);
    if (tensor.eulerFlag != 0)
        solveEuler(tensor);
    takeRows(input, slices, result);
    result.used = filled.rows;
    return Status::ok;
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

void takeColumns(const DTable &dTab, FitColumns &columns)
{
    const std::size_t rows = dTab.observed().size();
    columns.d.resize(rows);
    columns.sigma.resize(rows);
    columns.use.resize(rows);
    std::ranges::transform(dTab.observed(), columns.d.begin(), &DInfo::d);
    std::ranges::transform(dTab.observed(), columns.sigma.begin(), &DInfo::sigma);
    std::ranges::transform(dTab.calculated(), columns.use.begin(),
                           [](const DCalc &calc) { return takesPart(calc) ? 1 : 0; });
}

FitResult startOf(const DTable &dTab)
{
    FitResult result = {.tensor = dTab.dTensor, .calculated = std::vector<float>(dTab.dCount)};
    std::ranges::transform(dTab.calculated(), result.calculated.begin(), &DCalc::d);
    return result;
}

void takeFit(const FitResult &fit, DTable &dTab)
{
    dTab.dTensor = fit.tensor;
    for (std::size_t row = 0; row < fit.calculated.size(); ++row)
        dTab.dCalcList[row].d = fit.calculated[row];
}

Status fitColumns(const FitInput &input, FitWork &work, FitResult &result, Messages &messages)
{
    result.used = 0;
    if (!input.models.empty())
        return fitMeanModel(input, work, result, messages);
    Status status = Status::ok;
    switch (result.tensor.tensorMode) {
    case tensorSvd:
    case tensorSaupe:
    case tensorGiven:
        status = fitDSVD(input, work, result, messages);
        break;
    case tensorNofixed:
    case tensorDaDr:
    case tensorFixed:
        status = fitDCAlign(input, work, result, messages);
        break;
    }
    return status == Status::ok ? checkTensor(result.tensor, messages) : status;
}

std::optional<int> fitD(std::span<const Coord3D> coords, DTable &dTab, int verbose, Messages &messages)
{
    FitColumns columns;
    takeColumns(dTab, columns);
    FitResult result = startOf(dTab);
    const Status status = fitColumns({coords, dTab, columns, verbose}, dTab.fitWork, result, messages);
    takeFit(result, dTab);
    return status == Status::ok ? std::optional(result.used) : std::nullopt;
}

void prepareRepeatedFit(const FitInput &input, const DTensor &tensor, RepeatedFit &fit)
{
    fit = RepeatedFit{};
    FitWork work;
    Slices slices;
    if (tensor.tensorMode != tensorSvd || !cutEntries(input.dTab, work, slices))
        return;
    const Filled filled = putRows(input, slices);
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
    forEachRow(input, slices.d.size(), [&](std::size_t row, std::size_t, std::size_t entries) {
        fit.rows.insert(fit.rows.end(), entries, static_cast<int>(row));
    });
    fit.y.resize(count);
    fit.isUsable = count >= fewestCouplings;
}

Status refitColumns(RepeatedFit &fit, const FitInput &input, FitWork &work, FitResult &result,
                    Messages &messages)
{
    if (!fit.isUsable)
        return fitColumns(input, work, result, messages);
    DTensor &tensor = result.tensor;
    for (std::size_t k = 0; k < fit.entries.size(); ++k)
        fit.y[k] = fit.entries[k].toFit * input.columns.d[static_cast<std::size_t>(fit.rows[k])];
    if (svdLSMat(fit.x, fit.y, tensor.saupe, fit.svd) != Status::ok)
        return Status::failed;
    if (tensor.eulerFlag != 0)
        solveEuler(tensor);
    calculateRows(fit, result);
    result.used = fit.used;
    return checkTensor(tensor, messages);
}

} // namespace trelm
