// What a run says of tables and options that the user hardly meant: one line each on the error stream.
#pragma once

#include "modes/run.h"

namespace trelm {

/// A table that was read and whose rows were chosen, by what the run's mode takes from it.
void tellTable(const Run &run, const std::string &name, const DTable &dTab, Messages &messages);

/// Residue names of the run's table against its structure, where there are both.
void tellResidues(const Run &run, Messages &messages);

/// A best-fit: its tensor options, its samples, and whether its couplings determine it.
void tellFit(const Run &run, Messages &messages);

} // namespace trelm
