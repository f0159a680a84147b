// Tensor, statistics and couplings of a table as JSON: what couplingReport tells as text. Keys and units
// stand in docs/schema.json.
#pragma once

#include "couplings/quality.h"
#include "couplings/table_analysis.h"
#include "support/text/json_writer.h"

#include <functional>
#include <string_view>

namespace trelm {

/// The five values of a Saupe vector under their names.
void writeSaupeJson(std::string_view key, const Saupe &saupe, JsonWriter &json);

/// A tensor in all its forms. `hasEuler`: angles were asked for.
void writeTensorJson(const DTensor &tensor, const TensorAnalysis *analysis, bool hasEuler, JsonWriter &json);

/// The statistics of the report.
void writeStatisticsJson(const DcStatistics &statistics, JsonWriter &json);

/// The rows that the report shows and those that a judgement of the fit has; `quality` may be null.
void writeRowsJson(const FittedTable &table, const FitQuality *quality, JsonWriter &json);

/// Both sides of a row: "i" and "j".
void writeAtomsJson(const DInfo &row, JsonWriter &json);

} // namespace trelm
