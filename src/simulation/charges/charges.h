// The charge model: point charges on the selected atoms of a structure.
#pragma once

#include "ground/messages.h"
#include "structure/select.h"

#include <span>
#include <string>

namespace trelm {

struct ChargeOptions;

constexpr int maxCharges = 1200; ///< of a simulation

/// The point charges of a simulation, views of a run's buffers, counted from 0; charges in units of e.
struct ChargeSet {
    std::span<int> chargeAtomID; ///< place of each charged atom in the atom list
    std::span<float> charges;    ///< elementary charges
    int chCount = 0;
    float chSum = 0.0f; ///< net charge
};

/// Places the charges of a run. Their source is the pKa file `inName` if there is a name (it is read in
/// electrostatic runs only; in others there are then no charges), else, while pkaFlag is on, the pKa defaults
/// or the CHARMM partial charges by `charmm` and `pH`. The spans of `set` hold maxCharges + 1 elements.
/// If `outName` is not empty, that file gets the charges in a form that a later run reads as its pKa file:
/// three decimals, before the scales kMonoCh, kQuadCh and kDipoCh, which apply to fixed places of the list.
/// Fails without charges, after a message, if a file fails, a line is bad, charges (or lines of the
/// pKa file) reach maxCharges - 1, or the net charge is not finite. pKa defaults and titration: see
/// charge_tables.h.
Status chargeSetup(const std::string &inName, const SelectedAtoms &selected, const ChargeOptions &elInfo,
                   ChargeSet &set, const std::string &outName, Messages &messages);

} // namespace trelm
