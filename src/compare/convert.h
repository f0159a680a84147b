// A coupling table in the formats of other programs.
#pragma once

#include "compare/options.h"
#include "couplings/dipolar.h"
#include "ground/messages.h"

#include <string>

namespace trelm {

/// Fills the calculated rows of valid couplings with what goes out, Hz: the measured ones, with noise of
/// their errors (dcNoise), times their weights (normDc); then the weights of both columns become 1, and the
/// measured errors are scaled, too. Fails after a message if a coupling is no finite
/// number with its weight or noise.
Status fillConverted(const ConversionOptions &options, DTable &dTab, Messages &messages);

/// The table in the format of outFormat: restraints, a listing by residue, or plain rows; formatTrelm is
/// written by report/output.h. `inDName` is the name of the table that was read. Fails after a message if
/// there is no memory.
Status convertTab(const ConversionOptions &options, const DTable &dTab, const std::string &inDName,
                  std::string &text, Messages &messages);

} // namespace trelm
