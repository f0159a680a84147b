// PDB files: a molecule as it stands, and turned into the frames of a tensor.
#pragma once

#include "ground/messages.h"
#include "structure/pdb.h"

#include <span>
#include <string>

namespace trelm {

struct PDBSelectInfo;

/// What an atom is marked with instead of what was read.
struct AtomLabel {
    float tempFactor = 0.0f;
    Name chargeStr;
};

/// What is written of a molecule.
struct PDBOutput {
    const PDBInfo &pdbInfo;
    const PDBSelectInfo *sInfo = nullptr;   ///< which atoms; null: all
    const char *remark = nullptr;           ///< may be null
    std::span<const AtomLabel> labels = {}; ///< one for each atom; empty: as read
};

/// Writes the atoms, which stand at `coords`, as ATOM lines, then END. An empty name is standard output.
/// Fails after a message if the file cannot be opened or not be written to its end.
Status writePDB(const std::string &pdbName, const PDBOutput &output, std::span<const Coord3D> coords,
                Messages &messages);

/// The angles of four frames, degrees.
struct FrameAngles {
    std::span<const double, 4> gamma, beta, alpha;
};

/// Writes the molecule turned into each of the four frames, centred, to `outName`.0 to `outName`.3, and the
/// one of number `rotID` to `outName` too. An empty name gives the files .0 to .3 alone, and so does any
/// other number than 0 to 3, which is told of where there is a name; "-", a device or a pipe gets the one of
/// `rotID` alone. Fails after a message; a numbered file
/// that cannot be opened is told and passed over.
Status writePDBRot(const FrameAngles &frames, int rotID, const PDBOutput &output, const std::string &outName,
                   Messages &messages);

} // namespace trelm
