// An order matrix out of a report.
#pragma once

#include "couplings/tensor.h"
#include "ground/messages.h"

#include <string>

namespace trelm {

/// Reads the Saupe vector of a report that a fit or a prediction has written: the five numbers
/// behind "DATA SAUPE". Fails after a message: no such file or line, or five numbers that are none.
Status readSaupe(const std::string &name, Saupe &saupe, Messages &messages);

} // namespace trelm
