// The modes that compare and convert: they read what they need themselves.
#pragma once

#include "modes/run.h"

namespace trelm {

/// Each does the job of its mode. Fails after its messages.
Status combineCouplings(const Run &run, Messages &messages);
Status compareTensors(const Run &run, Messages &messages);
Status convertTable(const Run &run, Messages &messages);

} // namespace trelm
