// What an error analysis of a fit has found, as JSON: what mappingReport tells as text, and more.
#pragma once

#include "errors/tensor_samples.h"
#include "support/text/json_writer.h"

namespace trelm {

/// The member "samples" of the result.
void writeMappingJson(const TensorSamples &samples, JsonWriter &json);

} // namespace trelm
