// One structure by itself: its axes, its charges, and how it lies to an order matrix.
#pragma once

#include "couplings/tensor.h"
#include "report/parameters.h"
#include "simulation/charges/charges.h"
#include "structure/select.h"

#include <string>

namespace trelm {

/// Results of a structure analysis.
struct AnalysisFiles {
    std::string pdbRotName;               ///< turned structures: this name, and with .0 to .3 behind it
    std::string reportName;               ///< empty: standard output
    const PDBSelectInfo *sInfo = nullptr; ///< atoms of the structures
    const char *remark = nullptr;         ///< for the structures
};

/// Finds the axes of the selected atoms (with surfFlag the exposed ones), from their second moments or, with
/// elPdbFlag 1, from the dipole of their charges; writes the structure turned into these axes (with elPdbFlag
/// 2 into those of `saupe`), and a report of both frames with the angles between them. With elPdbFlag 1 the
/// structures show the charges. `charges` numbers places in the atom list; its chSum becomes the net
/// charge of those in use. A molecule whose charges have no direction keeps the frame it has, after a line on
/// the standard error stream. Fails after a message: no atoms or memory, values that are no
/// finite numbers, files that can not be written.
Status analyzePDB(const SelectedAtoms &molecule, const TrelmInfo &trelmInfo, ChargeSet &charges,
                  const Saupe &saupe, const AnalysisFiles &files, Messages &messages);

} // namespace trelm
