// What one run owns, and its stages.
#pragma once

#include "couplings/dipolar.h"
#include "driver/run_options.h"
#include "ground/alloc.h"
#include "ground/trelm.h"
#include "structure/pdb.h"
#include "structure/select.h"

namespace trelm {

/// The records and buffers of a run, in the order in which the tear-down gives them back. The arrays behind
/// dcInfo are asked for by the common input phase, once and for the whole run.
struct Run {
    RunOptions options;
    PDBSelectInfo sInfo;
    SearchState search;
    Block<PDBInfo> pdbInfo;
    Block<DTable> dTab;
    Block<TrelmInfo> trelmInfo;
    Block<DcInfo> dcInfo;
    Block<double> xI, yI, zI;    ///< atoms chosen for simulation, counted from 1
    Block<int> chargeAtomID;     ///< atom of each charge, counted from 1
    Block<float> charges;        ///< value of each charge, counted from 1
    Block<int> chargeAtomIDOrig; ///< the same, before a simulation renumbers them
    Block<float> chargesOrig;
    Block<double> ddots; ///< orientation points on the unit sphere, three values each
};

/// Prints the banner and asks for the records. Returns 0, or 1 after a message.
int startRun(Run &run);

/// Reads the command line into the records and checks its words. Returns 0, or 1 after a message.
int readOptions(int argc, char **argv, Run &run);

/// Does what the run's mode asks for. Returns 0, or the status of the failing step after its messages.
int runMode(Run &run);

/// The one tear-down: releases the records and prints the memory balance. Returns the status, or 1 if
/// standard output or the standard error stream could not be written to its end, or if any request for memory
/// failed.
int endRun(Run &run, int status);

} // namespace trelm
