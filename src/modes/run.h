// What one run owns.
#pragma once

#include "couplings/dipolar.h"
#include "ground/alloc.h"
#include "ground/messages.h"
#include "modes/run_options.h"
#include "report/parameters.h"
#include "structure/pdb.h"
#include "structure/select.h"

namespace trelm {

/// The records and buffers of a run, in the order in which the tear-down gives them back. The arrays behind
/// dcInfo are asked for by the common input phase, once and for the whole run.
struct Run {
    RunOptions options;
    PDBSelectInfo sInfo;
    AtomMask selection; ///< the atoms of sInfo, without the hydrogens if they are to stay out
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

/// Does what the run's mode asks for. Fails after its messages, with the status of the failing step.
Status runMode(Run &run, Messages &messages);

/// The last line of a strict run that has warned.
Status failedByWarnings(Messages &messages);

} // namespace trelm
