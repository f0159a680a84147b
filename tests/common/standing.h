// A molecule that a test moves.
#pragma once

#include "structure/pdb.h"

#include <vector>

namespace trelm {

struct Standing {
    PDBInfo pdb;
    std::vector<Coord3D> coords = copyOfCoordinates(pdb);

    operator Conformation() { return {pdb, coords}; }
};

} // namespace trelm
