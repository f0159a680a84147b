// The result of a run as JSON, -outJ. What its keys mean, and their units, stands in docs/schema.json.
#pragma once

#include "couplings/fit.h"
#include "modes/run.h"
#include "support/text/json_writer.h"

#include <functional>

namespace trelm {

struct FitQuality;

/// Writes a part of the result.
using JsonPart = std::function<void(JsonWriter &json)>;

/// Whether the mode of a run writes it.
bool writesJson(const ModeOptions &mode);

/// Writes the file, if there is one: what the run was, and `result` as the members of its result. Fails after
/// a message.
Status writeJson(const Run &run, const JsonPart &result, Messages &messages);

/// The same for a table with its couplings: tensor, statistics, rows and `more`. `quality` may be null.
Status writeTableJson(const Run &run, const FittedTable &table, const FitQuality *quality,
                      const JsonPart &more, Messages &messages);

} // namespace trelm
