// Arrays of a fit that stay from fit to fit.
#pragma once

#include "ground/alloc.h"
#include "structure/pdb.h"
#include "support/numerics/svd.h"

#include <cstddef>
#include <vector>

namespace trelm {

/// The workspace of one table, or of one series of calls of findS. A fresh one asks for its memory when it is
/// needed. Couplings that are fitted again on unmoved atoms find the decomposition of the fit before in it.
struct FitWork {
    Block<float> entries; ///< vectors of the linear engine: 10 lists
    Block<float> x, y;    ///< design matrix (rows of saupeCount) and right-hand side of the linear engine
    SvdWork svd;
    Block<Coord3D> aCoords, wCoords; ///< atoms of the non-linear engine, angstrom: as they stand, and turned
    std::vector<std::size_t> slots;  ///< for each atom of the molecule its place among them, if it has one
};

} // namespace trelm
