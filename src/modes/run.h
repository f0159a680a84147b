// What one run goes by, and what it has read.
#pragma once

#include "couplings/dipolar.h"
#include "couplings/window.h"
#include "ground/alloc.h"
#include "ground/messages.h"
#include "modes/run_options.h"
#include "report/parameters.h"
#include "structure/models.h"
#include "structure/pdb.h"
#include "structure/select.h"

namespace trelm {

struct AssignmentOptions;
struct CouplingNoiseOptions;
struct DrawOptions;
struct JackknifeOptions;
struct StructuralNoiseOptions;
struct TensorWindow;

/// What the command line asks for, record by record. Nothing of it changes. Who reads a record includes its
/// header.
struct AskedOptions {
    const RunOptions &options;
    const ModeOptions &mode;
    const FitOptions &fit;
    const ReportOptions &report;
    const DTensor &tensor; ///< to start from
    const DcInfo &askedWindow;
    const PDBSelectInfo &askedAtoms;
    const AlignmentOptions &alignment;
    const MagnitudeOptions &magnitude;
    const DrawOptions &draw;
    const JackknifeOptions &jackknife;
    const CouplingNoiseOptions &couplingNoise;
    const StructuralNoiseOptions &structuralNoise;
    const ComparisonOptions &comparison;
    const ConversionOptions &conversion;
    const AssignmentOptions &assignment;
    const TensorWindow &tensorWindow;
};

/// What the common input phase reads and settles; afterwards nothing of it changes. In modes without that
/// phase the molecule and the table stay empty.
struct RunInputs {
    Block<PDBInfo> pdbInfo;
    Block<DTable> dTab;
    DcInfo window;       ///< of the couplings, what was left open settled by the table
    int validCount = 0;  ///< couplings that a choice of rows and the structure have left
    PDBSelectInfo sInfo; ///< the criteria that were applied last; those of the structures that are written
    AtomMask selection;  ///< atoms, without the hydrogens if they are to stay out
    ModelSet models;     ///< all of the structure file, if they are asked for, in the frame of the first
    std::string modelRemark; ///< how they were brought there: whole lines for the results
    std::string remark;      ///< for the structures: that of the run, and what tells of built hydrogens
};

struct Run : AskedOptions, RunInputs {
    /// For a structure that is written; null without any.
    [[nodiscard]] const char *structureRemark() const
    {
        return remark.empty() ? options.remark : remark.c_str();
    }
};

/// Does what the run's mode asks for. Fails after its messages, with the status of the failing step.
Status runMode(Run &run, Messages &messages);

/// The last line of a strict run that has warned.
Status failedByWarnings(Messages &messages);

} // namespace trelm
