// Alignment of a molecule in a potential given at the points of a grid in space.
#pragma once

#include "couplings/tensor.h"
#include "simulation/alignment/setup.h"
#include "simulation/charges/charges.h"
#include "simulation/orientations/columns.h"
#include "simulation/orientations/orientation.h"

#include <array>
#include <span>
#include <vector>

namespace trelm {

struct Grid3DOptions;

/// A grid: counts and spacings (angstrom) along x, y, z, and the planes in use along z, counted from 1. The
/// points are stored z fastest, then y, then x.
struct Grid3D {
    std::array<int, 3> count = {1, 1, 1};
    std::array<float, 3> spacing = {0.2f, 0.2f, 0.2f};
    std::array<int, 3> half = {0, 0, 0};
    std::array<double, 3> start = {}; ///< place of the molecule's centre at the first position
    int z1 = 1, zN = 1;
    float maxPot = 5.0f; ///< an atom clashes where the magnitude is at or above, kT/e
    [[nodiscard]] int planes() const { return zN - z1 + 1; }
    [[nodiscard]] bool hasPositions() const { return count[0] > 0 && count[1] > 0 && planes() > 0; }
};

Grid3D makeGrid3D(const Grid3DOptions &options);

/// The points of a grid, kT/e, and what the rows along z hold in common: the clash test asks a whole row at
/// once.
struct GridRows {
    static constexpr unsigned char noClash = 0, someClash = 1, allClash = 2;
    std::span<const double> pot3D;
    std::vector<unsigned char> clashes; ///< 1 for each point where an atom clashes, or 0
    std::vector<unsigned char> marks;   ///< which points of a row clash, y fastest; beyond the rows someClash
    std::vector<unsigned char> someMarks; ///< someClash for each
};

/// Points that follow each other as the positions do.
struct GridRun {
    std::size_t first = 0, length = 0; ///< positions
    int point = 0;                     ///< of the first
};

/// The runs of all atoms, those of an atom side by side.
struct GridRuns {
    std::vector<GridRun> runs;
    std::vector<std::size_t> firstOf = {0}; ///< of each atom, and one more

    [[nodiscard]] std::span<const GridRun> of(std::size_t j) const
    {
        return std::span(runs).subspan(firstOf[j], firstOf[j + 1] - firstOf[j]);
    }
};

GridRows makeGridRows(const Grid3D &grid, std::span<const double> pot3D);

/// The molecule on the grid in one orientation: for each atom the point that it lies nearest to, for each
/// shift of the centre along each axis.
struct GridPlaces {
    static constexpr int off = -1; ///< off the grid
    std::vector<int> x, y;      ///< shift by shift, an entry an atom: what it adds to the number of the row
    std::vector<int> z;         ///< atom by atom, an entry a shift: the point in the row, from 0; the row
                                ///< before has -1, and beyond the values there is no potential
    std::vector<char> isWithin; ///< whether an atom stays in its row at every shift along z
    GridRuns yRuns, zRuns;      ///< of y, without the points off the grid, and of z
    std::vector<float> turnedAxis; ///< work space
};

void placeAtoms(const Grid3D &grid, const Coordinates &atoms, const std::array<Axis, 3> &columns,
                GridPlaces &places);

/// Work space of weighPositions.
struct RowSearch {
    std::vector<unsigned char> isTaken; ///< position by position along z
    std::vector<double> energy;
    std::vector<unsigned char> marks; ///< of the rows along y, for all atoms together
};

/// The sum of the weights exp(-E) of all positions where no atom clashes.
double weighPositions(const Grid3D &grid, const GridRows &rows, const GridPlaces &places,
                      const ChargeSet &charges, RowSearch &search);

/// The weighted simulation. Tells its parameters. Fails after a message. gridPoints has accepted the grid.
Status sma3D(const AlignmentSetup &setup, const Coordinates &atoms, const ChargeSet &charges,
             std::span<const double> pot3D, Saupe &saupe);

/// The steric form of it, which looks at the first position of the first orientation and ends the run there:
/// Status::ended. Without any position there is no order, and the run goes on.
Status ssia3D(const AlignmentSetup &setup, Saupe &saupe);

} // namespace trelm
