// Structures in the mmCIF format of the archives.
#pragma once

#include "ground/messages.h"
#include "structure/models.h"
#include "structure/pdb.h"

#include <string>
#include <string_view>

namespace trelm {

/// Whether a text begins as an mmCIF file does: with "data_", behind comments.
bool isMmcif(std::string_view text);

/// A file that is read.
struct MmcifText {
    std::string_view text;
    const char *name;
    bool useLabels = false; ///< names and numbers of the archive, where they are there, else the author's
    bool takesHetatms = false;
};

/// Appends the atoms of the first `_atom_site` loop that are of the open model and pass `sInfo` (null: all).
/// Each name and number comes from the author's columns, and from the label columns where those have none or
/// are not there; with useLabels the other way round. Fails after a line with file and line number: on what
/// breaks the grammar, a coordinate that is no finite number, an atom without a name or a number.
Status readMmcif(const MmcifText &file, const PDBSelectInfo *sInfo, Models &models, PDBInfo &pdbInfo,
                 Messages &messages);

} // namespace trelm
