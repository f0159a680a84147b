// Nearly uniform sets of unit vectors (dots): the directions in which a molecule is turned, and the test
// points on the surface of its atoms. They come from a geodesic subdivision of the icosahedron, or of the
// icosahedron with the centres of its faces.
#pragma once

#include <span>

namespace trelm {

constexpr int maxOrientations = 40001; ///< dots of a simulation

/// Dots that lie in one cell of the cube around the unit sphere stand side by side: cell c holds `count[c]`
/// dots from `first[c]` on.
struct DotCells {
    std::span<const int> count;
    std::span<const int> first;
};

/// Builds the smaller of the two tessellations that reach the density, in the order of the cells of a 4 by 4
/// by 4 cube. `dots` gets x, y, z of each unit vector; it belongs to the generator and is void after its next
/// build. Returns 0, or 1 if the set could not be made or would have more than ten million dots. Who
/// copies them has to look how many there are: maxOrientations is the room of a run.
int do_unsp(int densit, std::span<const double> &dots);

/// The same, unless the last build already is this set; with the cells.
void surfaceDots(int densit, std::span<const double> &dots, DotCells &cells);

/// 9 (based on the dodecahedron) or 10 (icosahedron): the one with fewer dots, of equal ones the first.
int unsp_type(int densit);

/// The number of dots that do_unsp makes of a density. The density is a lower limit. Beyond the range of int
/// its limit.
int dotCount(int densit);

/// Builds the set of a type, 9 or 10; a negative type also sorts the dots into the cells of a cube of `cubus`
/// cells an edge (0: as many as suit the number of dots). Returns 0, or 1 after a message for any other type.
int make_unsp(int densit, int mode, int &num_dot, int cubus);

} // namespace trelm
