#include "couplings/table_analysis.h"

#include "couplings/options.h"
#include <algorithm>
#include <cmath>

namespace trelm {
namespace {

bool isNumber(float value)
{
    return std::isfinite(value);
}

bool rowsAreFinite(const FittedTable &table)
{
    for (std::size_t i = 0; i < table.dTab.dCount; ++i)
        if (table.isShown(i) &&
            !(isNumber(table.calculated(i)) && isNumber(table.error(i)) && isNumber(table.weight(i))))
            return false;
    return true;
}

/// Of a table without couplings the values are those of its Saupe vector, else those of the analysis.
DTensor settledTensor(const TensorAnalysis &analysis, int nD, DTensor tensor)
{
    if (nD <= 0) {
        solveEuler(tensor);
        return tensor;
    }
    for (std::size_t k = 0; k < 3; ++k)
        tensor.eigVal[k] = static_cast<float>(analysis.eigVal[k]);
    tensor.da = static_cast<float>(analysis.da);
    tensor.dr = static_cast<float>(analysis.dr);
    return tensor;
}

} // namespace

bool isFinite(const FittedTable &table)
{
    return std::ranges::all_of(table.tensor.saupe, isNumber) && rowsAreFinite(table);
}

Status analyzeTensor(const DTensor &tensor, const FitOptions &options,
                     std::optional<TensorAnalysis> &analysis, Messages &messages)
{
    if (!std::ranges::all_of(tensor.saupe, isNumber))
        return Status::ok;
    Saupe saupe;
    std::ranges::copy(tensor.saupe, saupe.begin());
    return analyzeSaupe(saupe, options.yzFlag, options.eulerFlag, analysis.emplace(), messages);
}

Status analyzeRows(const FittedTable &table, TableAnalysis &analysis, Messages &messages)
{
    DcStatistics &stat = analysis.statistics;
    if (getStatDCmod(table, stat, messages) != Status::ok)
        return Status::failed;
    if (!(isNumber(stat.rSumD2) && isNumber(stat.pSumD)) && rowsAreFinite(table))
        return messages.fail("trelm: the deviations are no finite numbers: look at D, DD and W.\n");
    const bool hasAxes = analysis.tensor && table.tensor.saupe != SaupeValues{};
    analysis.settled = hasAxes ? settledTensor(*analysis.tensor, stat.nD, table.tensor) : table.tensor;
    return Status::ok;
}

} // namespace trelm
