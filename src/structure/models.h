// The models of a structure file: one of them, or the molecule once and the places of its atoms in each.
#pragma once

#include "ground/messages.h"
#include "structure/pdb.h"

#include <cstddef>
#include <string>
#include <vector>

namespace trelm {

/// All models of a file. They have the same atoms, those of the molecule.
struct ModelSet {
    std::vector<int> numbers;                 ///< as the file has them; 1 where it has none
    std::vector<std::vector<Coord3D>> coords; ///< for each model, one for each atom, angstrom

    [[nodiscard]] bool empty() const { return numbers.empty(); }
};

/// What of a file goes into the molecule while it is read.
struct Models {
    int wanted = 0;          ///< number; 0: the first
    ModelSet *all = nullptr; ///< takes every model, whatever is wanted; null: one model is read
    int count = 0;
    bool isOpen = true; ///< the atoms read now are of a wanted model, or of no model
    bool wasFound = false;

    /// A model of this number begins.
    void begin(int number);
};

/// Takes an atom of an open model: into the molecule, or, of a model behind the first, its place alone. Fails
/// after a message without memory, or on an atom that is not the first model's at this place.
Status takeAtom(const AtomInfo &atom, const Coord3D &at, Models &models, PDBInfo &pdbInfo,
                Messages &messages);

/// The first model joins the others when the file is read. Fails after a message on a model with fewer atoms.
Status completeModels(const PDBInfo &pdbInfo, const char *name, ModelSet &all, Messages &messages);

/// Builds the hydrogens of each model (structure/hydrogens.h) before the tables of the molecule are made.
/// Fails after a message without memory, or if a model gets other hydrogens than the first.
Status addHydrogensToAll(const HydrogenBonds &bonds, PDBInfo &pdbInfo, ModelSet &all, std::size_t &built,
                         Messages &messages);

} // namespace trelm
