// The hydrogens of a protein's backbone, built where a structure has none.
#pragma once

#include "ground/messages.h"
#include "structure/pdb.h"

#include <cstddef>

namespace trelm {

/// Builds the amide H of each residue that follows on another and is no proline, and HA (HA2 and HA3 of
/// glycine), where the residue has none under any usual name. H lies in the peptide plane, on the line that
/// halves the angle C-N-CA; HA on the line from the mean direction of the three other bonds of CA; the two of
/// glycine in the plane that halves N-CA-C, at 109.5 degrees to each other, HA2 where other residues have HA.
/// Source of the geometry: Engh and Huber, Acta Cryst. A47 (1991) 392, whose C-N-H and CA-N-H are equal but
/// for two degrees.
///
/// The molecule is the list of atoms alone, before its tables are made; built atoms stand behind the others
/// of their residue. `built` is their number. Fails after a message without memory.
Status addHydrogens(const HydrogenBonds &bonds, PDBInfo &pdbInfo, std::size_t &built, Messages &messages);

} // namespace trelm
