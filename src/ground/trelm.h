// The run record: every parameter of a run, with its default at the field.
#pragma once

#include "assignment/options.h"
#include "compare/options.h"
#include "errors/options.h"
#include "magnitude/options.h"
#include "magnitude/results.h"
#include "simulation/alignment/options.h"

#include <array>
#include <string>

namespace trelm {


/// The mode, and the kind of best-fit.
struct ModeOptions {
    int trelmMode = 1;  ///< the mode, 1 to 17
    int spreadMode = 0; ///< best-fit: 0 single, 1 jack, 2 mcDc, 3 mcStruc, 4 rand, 5 exhaust, 6 exhaustSel
};

/// How couplings are fitted.
struct FitOptions {
    int allowFixedDI = 1; ///< use fixed interaction constants when possible, else those of PDB distances
    int yzFlag = 0;       ///< exchange the ordering of the y and z axes in tensor analysis
    int eulerFlag = 1;    ///< solve for Euler angles
};

/// What a report shows.
struct ReportOptions {
    int verbFlag = 1; ///< coupling output in extended format
    int qFlag = 1;    ///< 0 Q from rms, 1 Q from the order matrix, 2 a standard deviation
    int rotN = 0;     ///< index of the rotation of the PDB, or of a hinge axis
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

/// A field of DcInfo below this counts as unset.
constexpr int unsetResID = -99999;

/// The window of couplings.
struct DcInfo {
    int segFirst = -999999; ///< first residue of the coupling segment
    int segLast = -999999;  ///< last residue of the segment
    int segID = 1;          ///< segment id
    int segStep = 0;        ///< segment step
    int aFirst = -999999;   ///< first residue in the PDB that corresponds to segFirst
    int excludeMode = 3;    ///< 1 exclusive, 2 inclusive, 3 inclusive with the maximum range
};

/// The fatal exit of the numerical code: three lines on the standard error stream, then the process ends with
/// status 1, without the tear-down and the memory balance of other failures.
[[noreturn]] void mzerror(const char *text);

} // namespace trelm
