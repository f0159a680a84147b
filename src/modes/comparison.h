// The modes that compare and convert: they read what they need themselves.
#pragma once

#include "modes/run.h"

namespace trelm {

/// Each does the job of its mode. Returns 0, or non-zero after its messages.
int combineCouplings(Run &run);
int compareTensors(Run &run);
int convertTable(Run &run);

} // namespace trelm
