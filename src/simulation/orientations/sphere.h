// Nearly uniform sets of unit vectors (dots): the directions in which a molecule is turned, and the test
// points on the surface of its atoms. They come from a geodesic subdivision of the icosahedron, or of the
// icosahedron with the centres of its faces.
#pragma once

#include <vector>

namespace trelm {

constexpr int maxOrientations = 40001; ///< dots of a simulation

/// Unit vectors. Those that lie in one cell of a 4 by 4 by 4 cube around the unit sphere stand side by side:
/// cell c holds cellCount[c] of them from number cellFirst[c] on. The cells come x outermost, z innermost.
struct DotSet {
    std::vector<double> dots; ///< x, y, z of each
    std::vector<int> cellCount, cellFirst;
};

/// 9 (based on the dodecahedron) or 10 (icosahedron): the one with fewer dots, of equal ones the first.
int unsp_type(int densit);

/// The number of dots that make_unsp makes of a density. The density is a lower limit. Beyond the range of
/// int its limit.
int dotCount(int densit);

/// Builds the smaller of the two tessellations that reach the density. False if it would have more than ten
/// million dots; more than maxOrientations are not for a simulation.
[[nodiscard]] bool make_unsp(int densit, DotSet &set);

/// Its dots alone.
[[nodiscard]] bool do_unsp(int densit, std::vector<double> &dots);

} // namespace trelm
