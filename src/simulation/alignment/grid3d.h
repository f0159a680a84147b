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
    enum Kind : unsigned char { free, mixed, full }; ///< no, some, all points of the row clash
    std::span<const double> pot3D;
    std::vector<Kind> kind; ///< y fastest
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
    std::vector<float> turnedAxis; ///< work space
};

void placeAtoms(const Grid3D &grid, const Coordinates &atoms, const std::array<Axis, 3> &columns,
                GridPlaces &places);

/// Work space of weighPositions.
struct RowSearch {
    std::vector<std::size_t> mixed; ///< atoms that may clash at some positions of the row
    std::vector<char> isFree;       ///< position by position along z
    std::vector<double> energy;
    std::size_t lastClash = 0; ///< the atom that blocked a whole row last: tried first
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
