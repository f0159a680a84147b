// Several models of one structure file in one run.
#pragma once

#include "couplings/fit.h"
#include "modes/run.h"

namespace trelm {

/// Whether all models are read: for a tensor of each, or for one tensor of all.
bool wantsAllModels(const RunOptions &options);
bool averagesModels(const RunOptions &options);

/// The same record as the common input phase went by.
RowMatch rowMatchOf(const Run &run);

/// Fails after a line if the run can do nothing with several models; tells of options that then have no
/// effect.
Status checkModels(const Run &run, Messages &messages);

/// What a fit of the run goes by: the first model, or the mean of all.
FitInput fitInputOf(const Run &run, const FitColumns &columns);

/// Lays the models that were read on the first, by atoms of the residues that have couplings unless others
/// are asked for, or leaves them where they are; keeps a remark that tells which. Nothing without several
/// models. Fails after a message if there are no atoms to do it by.
Status layModels(Run &run, Messages &messages);

/// Fits each model of the run and writes the table of the fits. Fails after messages.
Status fitEachModel(const Run &run, Messages &messages);

} // namespace trelm
