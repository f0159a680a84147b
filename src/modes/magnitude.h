// The branches that estimate the tensor's magnitude from histograms. They read their own input.
#pragma once

#include "magnitude/observed.h"
#include "modes/run.h"

namespace trelm {

/// What every estimate of a run works on.
MagnitudeJob makeJob(Run &run);

// Both return 0, or the status of the failing step after its messages.
int estimateByHistogram(Run &run);
int estimateByMotion(Run &run);

} // namespace trelm
