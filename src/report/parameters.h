// The parameters of a run, as its command line sets them and its report shows them.
#pragma once

#include "assignment/options.h"
#include "compare/options.h"
#include "couplings/options.h"
#include "errors/options.h"
#include "magnitude/options.h"
#include "magnitude/results.h"
#include "simulation/alignment/options.h"

namespace trelm {

/// The mode, and the kind of best-fit.
struct ModeOptions {
    int trelmMode = 1;  ///< the mode, 1 to 17
    int spreadMode = 0; ///< best-fit: 0 single, 1 jack, 2 mcDc, 3 mcStruc, 4 rand, 5 exhaust, 6 exhaustSel
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
