// What a run says of tables and options that the user hardly meant: one line each on the error stream.
#pragma once

#include "modes/run.h"

namespace trelm {

/// A table that was read and whose rows were chosen, by what the run's mode takes from it.
void tellTable(const Run &run, const std::string &name, const DTable &dTab, Messages &messages);

/// Residue names of the run's table against its structure, where there are both.
void tellResidues(const Run &run, Messages &messages);

/// Pairs whose order takes another interaction constant than that of the same pair the other way round.
void tellTurnedPairs(const Run &run, Messages &messages);

/// Rows that the fit will not use. Nothing without a structure, where there is nothing to find, and in a
/// search of assignments, which puts couplings on other residues than those of the table.
void tellLostCouplings(const Run &run, Messages &messages);

/// What of the selection of atoms does not act as one may think.
void tellSelection(const Run &run, Messages &messages);

/// Hydrogens of the file that a prediction leaves out, because the option that takes them was not given.
void tellHydrogens(const Run &run, Messages &messages);

/// A best-fit: its tensor options, its samples, and whether its couplings determine it.
void tellFit(const Run &run, Messages &messages);

} // namespace trelm
