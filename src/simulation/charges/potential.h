// Potential files: a table along one axis, and a grid in space.
#pragma once

#include "ground/alloc.h"
#include "ground/messages.h"

#include <cstddef>
#include <string>

namespace trelm {

struct Grid3DOptions;

constexpr int maxPotentialLines = 9999; ///< a table that reaches this number of lines is refused

/// The table of a rod: the potential, kT/e, at equal steps of the distance from its surface.
struct Potential {
    Block<double> values;                ///< entry i is taken to lie at the distance i * stepsize
    int count = 0;                       ///< entries in use
    double offset = 0.0, stepsize = 0.0; ///< distance of the first line and between two, angstrom
    bool isTold = false;                 ///< the user knows that charges were out of its reach
};

/// Reads lines of a distance in nanometres and a potential. An empty name reads nothing: a table without
/// entries. Without two lines of rising distances there is no step, and no charge feels a potential: a
/// warning. Fails after a message: no memory, no file, a line that is no pair of numbers, a step
/// larger than the first one, too many lines.
Status readPotential(const std::string &inName, Potential &potential, Messages &messages);

/// Whether there is a distance between two entries: else nothing can be looked up.
bool hasStep(const Potential &potential);

/// The number of points of the grid of a run. Fails after a message if a spacing is 0 or no finite
/// number, the product of the counts is negative, there are more points or positions than an index can have,
/// or many positions with far fewer points. Warns of a grid without positions, of z planes beyond it and of
/// negative spacings.
Status gridPoints(const Grid3DOptions &options, std::size_t &points, Messages &messages);

/// Read a grid, z fastest, then y, then x, behind a header of eleven lines: its values, kT/e, or for each 1
/// if an atom may be there (its magnitude is below maxPot), else 0. An empty name reads nothing: all zero.
/// `read` gets the number of values. Fail after a message if the file can not be read or does not
/// hold just the points of the grid.
Status read3DPotential(const std::string &inName, const Grid3DOptions &options, Block<double> &pot3D,
                       int &read, Messages &messages);
Status read3DPotSteric(const std::string &inName, const Grid3DOptions &options, Block<float> &pot3Dst,
                       int &read, Messages &messages);

} // namespace trelm
