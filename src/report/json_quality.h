// What a fit is worth as JSON: what qualityText tells as text.
#pragma once

#include "couplings/quality.h"
#include "support/text/json_writer.h"

namespace trelm {

/// The member "quality" of a fit's result. The rows of it stand with the others, by writeRowsJson.
void writeQualityJson(const DTable &dTab, const FitQuality &quality, JsonWriter &json);

} // namespace trelm
