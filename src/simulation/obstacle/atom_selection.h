// The atoms and charges that a simulation is given.
#pragma once

#include "ground/alloc.h"
#include "ground/messages.h"
#include "simulation/charges/charges.h"
#include "simulation/charges/dipole.h"
#include "structure/select.h"

#include <optional>
#include <span>
#include <vector>

namespace trelm {

struct SoluteOptions;

/// Coordinates of a simulation, angstrom, counted from 0.
struct CoordinateBuffers {
    std::span<double> x, y, z;
};

/// For each selected atom, counted without the others, whether enough of it is exposed. Fails after a
/// message.
Status findExposed(const SelectedAtoms &selected, std::vector<bool> &isExposed, Messages &messages);

/// The exposed ones of the selected atoms, as the field is used to: they are put into the mask by their count
/// among the selected atoms. Hydrogens in the molecule that a selection left out so make other atoms exposed
/// than those that are. Fails after a message.
Status callNSC(const SelectedAtoms &selected, AtomMask &exposed, Messages &messages);

/// Moves the exposed atoms of bare coordinates, all of one radius, to the front. `atomSelCount` gets their
/// number. Fails after a message.
Status surfSel(int atomCount, const CoordinateBuffers &atoms, int &atomSelCount, Messages &messages);

/// What was chosen.
struct SelectedCount {
    std::size_t places = 0;       ///< charges and atoms
    AtomMask atoms;               ///< those in use: the exposed ones with surfFlag
    std::optional<Dipole> dipole; ///< of the charges, in an electrostatic run
};

/// Fills the coordinates of a simulation: the charges first (in an electrostatic run; chargeAtomID then
/// numbers these places, and the atoms that carry the charges are known to the caller's copy alone), then the
/// selected atoms, exposed ones only with surfFlag. With chSelFlag the charges stand alone, and with
/// dipoleFlag the two of the dipole that replaces them: without electrostatics that is nothing. The buffers
/// need room for charges and atoms. Fails after a message.
Status chCoorSelect(const SelectedAtoms &molecule, const SoluteOptions &options,
                    const CoordinateBuffers &atoms, ChargeSet &charges, SelectedCount &selected,
                    Messages &messages);

/// Room for chCoorSelect, asked for once for many selections of one molecule.
struct SelectionBuffers {
    Block<double> x, y, z;
    Block<int> chargeAtomID;
    Block<float> charges;
};

/// Asks for the room. Fails after a message if there is no memory.
Status makeSelectionBuffers(const char *tag, const PDBInfo &pdbInfo, SelectionBuffers &buffers,
                            Messages &messages);

/// What a simulation is given, views of the buffers.
struct Chosen {
    CoordinateBuffers atoms;
    ChargeSet charges;
    AtomMask mask;                ///< the atoms in use: the exposed ones with surfFlag
    std::optional<Dipole> dipole; ///< of the charges, in an electrostatic run
};

/// chCoorSelect with a copy of the charges, which it renumbers.
Status selectSolute(const SelectedAtoms &molecule, const SoluteOptions &options, const ChargeSet &original,
                    SelectionBuffers &buffers, Chosen &chosen, Messages &messages);

} // namespace trelm
