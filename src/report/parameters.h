// The parameters of a run, as its command line sets them and its report shows them.
#pragma once

#include "assignment/options.h"
#include "compare/options.h"
#include "couplings/options.h"
#include "errors/options.h"
#include "magnitude/options.h"
#include "magnitude/results.h"
#include "report/modes.h"
#include "simulation/alignment/options.h"

namespace trelm {

/// The mode, and the kind of best-fit.
struct ModeOptions {
    Mode trelmMode = modeStTrelm;
    SpreadKind spreadMode = spreadSingle;
};

/// Every parameter of a run. Option names stand in the table of command/params.
struct TrelmInfo : AlignmentOptions,
                   MagnitudeOptions,
                   MagnitudeResult,
                   ModeOptions,
                   FitOptions,
                   ReportOptions,
                   JackknifeOptions,
                   CouplingNoiseOptions,
                   StructuralNoiseOptions,
                   ComparisonOptions,
                   ConversionOptions,
                   DrawOptions,
                   AssignmentOptions,
                   TensorWindow {
    int validCountD = 0; ///< couplings that survive selection and mapping
};

} // namespace trelm
