// What a table with its calculated couplings comes to: the result of a fit, a prediction or a combination.
#pragma once

#include "couplings/dipolar.h"
#include "couplings/statistics.h"
#include "couplings/tensor.h"
#include "ground/messages.h"

#include <optional>

namespace trelm {

struct FitOptions;

/// Statistics of the rows, and the tensor in all its forms.
struct TableAnalysis {
    DcStatistics statistics;
    std::optional<TensorAnalysis> tensor; ///< empty for a tensor that is no finite number: it has no axes
    /// The tensor of the table, with eigenvalues (Azz, Ayy, Axx), Da and Dr of the analysis. Without a
    /// coupling that is compared they are those of its Saupe vector in single precision, with their Euler
    /// solutions about x, y, z.
    DTensor settled;
};

/// Whether all numbers of a table that go out are finite.
bool isFinite(const FittedTable &table);

/// Analyses a tensor, unless it is no finite number. Fails after a message if it is not diagonalised.
Status analyzeTensor(const DTensor &tensor, const FitOptions &options,
                     std::optional<TensorAnalysis> &analysis, Messages &messages);

/// Analyses a table, all but the tensor, which analyzeTensor has analysed. Fails after a message: no memory,
/// or deviations beyond single precision.
Status analyzeRows(const FittedTable &table, TableAnalysis &analysis, Messages &messages);

} // namespace trelm
