// The mode that looks at one structure by itself.
#pragma once

#include "modes/run.h"

namespace trelm {

/// Finds the axes of a structure (of its exposed atoms with surfFlag), by its shape or by its charges, and
/// writes it turned into these axes or into those of an order matrix, with a report of both frames. With
/// charges the structures show them. Fails after its messages.
Status reportStructure(const Run &run, Messages &messages);

} // namespace trelm
