// The modes that compare and convert: they read what they need themselves.
#pragma once

#include "modes/run.h"

namespace trelm {

/// Each does the job of its mode. Fails after its messages.
Status combineCouplings(Run &run, Messages &messages);
Status compareTensors(Run &run, Messages &messages);
Status convertTable(Run &run, Messages &messages);

} // namespace trelm
