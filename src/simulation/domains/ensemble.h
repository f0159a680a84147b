// The ensemble: states of a molecule in which domain 1 is turned against the rest, each simulated by itself,
// and the average of what they would show.
#pragma once

#include "couplings/dipolar.h"
#include "couplings/tensor.h"
#include "ground/alloc.h"
#include "ground/messages.h"
#include "simulation/alignment/alignment.h"
#include "simulation/charges/charges.h"
#include "simulation/charges/potential.h"
#include "simulation/domains/options.h"
#include "simulation/obstacle/atom_selection.h"
#include "structure/select.h"

#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace trelm {

constexpr int maxEnsembleStates = 39999; ///< an ensemble that reaches this number of states is refused

/// A turn of domain 1, degrees: rotateDomain takes them in this order.
struct EnsembleState {
    double alpha = 0.0, beta = 0.0, gamma = 0.0;
};

/// States, counted from 0. `states` has room for maxEnsembleStates from the start.
struct Ensemble {
    Block<EnsembleState> states;
    int count = 0;
    [[nodiscard]] std::span<const EnsembleState> used() const
    {
        return states.span().first(static_cast<std::size_t>(count));
    }
};

/// Files of an ensemble; an empty name is no file.
struct EnsembleFiles {
    std::string outEName;   ///< written: the generated states
    std::string outEAxName; ///< written: where the z axis goes in each
    std::string inEName;    ///< read: states that replace the generated ones
};

/// Reads lines of alpha, beta, gamma. An empty name gives no states. Fails with no states after a
/// message: no file, a line without three finite numbers, too many lines.
Status readEnsemble(const std::string &inName, Ensemble &ensemble, Messages &messages);

/// The ensemble of a run: the directions of a sphere of density densE within the limits of beta and of the
/// sideways displacement, each with digPsiE steps of gamma; or the states of a file, if that has any. Fails
/// after a message.
Status setupEnsemble(const DomainOptions &options, const EnsembleFiles &files, Ensemble &ensemble,
                     Messages &messages);

/// Takes the couplings of a state, with what is to be remarked on it. A failure
/// ends the run.
using TakeCouplings = std::function<Status(const DTable &dTab, std::string_view remark)>;

/// What the simulation of an ensemble is given beside molecule and couplings.
struct EnsembleSetup {
    AlignmentSetup simulation;
    const DomainOptions &domains;
    const AtomMask &selection;      ///< atoms to simulate
    std::span<const Coord3D> start; ///< where the atoms stand before domain 1 is turned
    std::span<const EnsembleState> states;
    ChargeSet charges;                    ///< as placed; every state works on a copy
    const PDBSelectInfo *sInfo = nullptr; ///< atoms of the PDB files
    const char *remark = nullptr;         ///< of the PDB files; may be null
    std::string outName;                  ///< log; empty: standard output
    TakeCouplings takeCouplings;          ///< called after each state
    int yzFlag = 0;                       ///< exchange the y and z axes of tensors
    int eulerFlag = 1;                    ///< find Euler angles
    int verbose = 0;                      ///< of the fits
};

/// What an ensemble comes to.
struct EnsembleResult {
    Saupe saupe = {};             ///< the average, with its own sign
    std::vector<float> couplings; ///< Hz, the averages of the calculated rows; of the others what they hold
    int states = 0;               ///< that were averaged
};

/// Simulates each state. States whose domains clash count in the averages with nothing. The couplings are
/// summed in single precision; tensor and calculated rows of dTab are those of the last state. Beside a rod
/// there is no potential table, and charges feel nothing. A state without Da logs the R of the state before
/// it. Writes "rot.pdb" in the current folder, and with outEflag 3, which lists the states without simulating
/// them, "rotEns.pdb". Fails after a message.
Status ensembleAlignment(const PDBInfo &pdbInfo, DTable &dTab, const EnsembleSetup &setup,
                         EnsembleResult &result);

/// The simulation of one state as it stands. `saupe`: in the sense of the surviving orientations. Fails after
/// a message.
Status simEnsAlignment(const AlignmentSetup &setup, const CoordinateBuffers &atoms, const ChargeSet &charges,
                       Potential &potential, Saupe &saupe);

/// Moves coordinates to their centre, in single precision throughout.
void centreSingle(const CoordinateBuffers &atoms);

} // namespace trelm
