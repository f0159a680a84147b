// From what a file of another program holds to the rows of a table.
#pragma once

#include "couplings/dipolar.h"
#include "couplings/formats/archive.h"
#include "couplings/formats/detect.h"

#include <optional>
#include <string>

namespace trelm {

/// How coupling files are read.
struct CouplingReading {
    std::optional<CouplingForm> form = {}; ///< nothing: by content
    std::string medium = {};               ///< of a file of several; empty: the first
    bool useLabels = false;    ///< label numbers and names, where a form has both, else the author's
    bool isPhysical = false;   ///< values have physical signs: those of pairs without N are turned
    bool isNormalised = false; ///< values are normalised to N-H: it is undone
};

/// Makes a table of one medium of an archive, and tells of what is not used of the file: couplings without
/// value, ambiguous ones, those of weight 0, of nuclei without spin 1/2, or beyond 900 Hz, and those that are
/// given again with the same value. DD becomes the error over the root of the weight, 1 Hz without an error.
/// Pairs that have a fixed distance in the other order of their atoms are turned: H comes before N. Fails
/// after a message if the medium is not there or no row is left.
Status takeArchive(const std::string &name, const CouplingReading &reading, Archive &archive, DTable &dTab,
                   Messages &messages);

/// Turns the signs and undoes the normalisation of a table of any form, as the reading asks for. Tells of
/// rows whose normalisation is not known.
void applyConventions(const std::string &name, const CouplingReading &reading, DTable &dTab,
                      Messages &messages);

} // namespace trelm
