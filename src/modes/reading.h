// How the inputs of a run are read, as its command line says.
#pragma once

#include "couplings/formats/take.h"
#include "modes/run_options.h"
#include "structure/pdb.h"

#include <string>

namespace trelm {

/// Reads a coupling table of the run. Fails after its messages, also on an option with a value that is none.
Status readCouplings(const RunOptions &options, const std::string &name, DTable &dTab, Messages &messages);

/// How a structure is read. Fails after a message on a value that is none.
Status readingOf(const RunOptions &options, StructureReading &reading, Messages &messages);

} // namespace trelm
