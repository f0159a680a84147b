// A single best-fit: the fit, what it is worth, and the files of both.
#pragma once

#include "modes/run.h"

namespace trelm {

/// Fits the table of the run, without its outliers if that is asked for, and writes report, structures and
/// what the fit is worth. Fails after messages.
Status bestFitSingle(const Run &run, Messages &messages);

} // namespace trelm
