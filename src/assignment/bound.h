// What no assignment can undercut: bounds from below on the score, for a set of peaks already placed.
//
// For any Saupe vector s the score is a sum of squares over (peak, residue) pairs, w^2 (d - |DI| t.s)^2 with
// the geometry terms t of a residue's vector. Three facts carry the bound.
// - The smallest sum over all s on the placed pairs can not be undercut: a least-squares problem. Its normal
//   equations are sums over pairs. It does not matter how the fit of the score weighs its couplings.
// - Every s that could still win lies in an ellipsoid about the best s of the placed pairs. Over it a
//   coupling misses by at least |d - |DI| t.s| less |DI| times the half width of the ellipsoid along t.
// - The remaining peaks take different residues: the least total of their misses is a linear assignment
//   problem.
// The window of Da limits the size of the tensor, which counts in the least squares with a weight of its own:
// heavy as long as few pairs are placed, so that there is an ellipsoid from the start, light later.
// Rounding: a pivot near nothing leaves the medium open; what the solution in double precision can be off
// by is taken from the bound; what scoring in single precision can be off by is given to the limit
// (exactLimit).
#pragma once

#include "assignment/problem.h"
#include "couplings/tensor.h"

#include <array>
#include <span>
#include <vector>

namespace trelm {

using SaupeTerms = Saupe; ///< a Saupe vector, or what stands before its elements in a coupling

/// One coupling of a peak.
struct PeakCoupling {
    std::size_t column;
    double d, w, di; ///< Hz, weight in the score, size of the interaction constant, Hz
};

/// The problem as the bounds want it.
struct BoundTables {
    std::size_t peakCount = 0, columns = 0, media = 0;
    std::vector<std::size_t> mediumOf; ///< of each column
    std::vector<SaupeTerms> terms;     ///< by residue row and column
    std::vector<std::vector<PeakCoupling>> peaks;
    double tensorSize = 0.0; ///< limit of 1.5 s0^2 + s1^2 / 2 + 2 (s2^2 + s3^2 + s4^2) inside the window
    double rounding = 0.0;   ///< what single precision can add to or take from the root of a score
};

BoundTables makeBoundTables(const AssignmentProblem &problem);

/// The largest sum of squares in exact arithmetic that single-precision scoring could show as `score` or
/// less.
double exactLimit(const BoundTables &tables, float score);

/// Normal equations of one medium: sums over placed pairs, lower triangle row by row.
struct NormalEquations {
    std::array<double, 15> matrix = {};
    SaupeTerms rhs = {};
    double square = 0.0;
    int count = 0;
    void add(const SaupeTerms &terms, double d, double w, double di);
};

using MediaEquations = std::array<NormalEquations, maxMedia>;

/// The equations of the fixed couplings.
MediaEquations fixedEquations(const AssignmentProblem &problem);

/// Adds the couplings of a peak on a residue row.
void addPair(const BoundTables &tables, std::size_t peak, std::size_t row, MediaEquations &equations);

/// The ellipsoid of one medium.
struct Ellipsoid {
    std::array<double, 15> factor = {}; ///< Cholesky factor of the matrix, lower triangle
    SaupeTerms centre = {};
    double least = 0.0;  ///< no vector undercuts it, on the placed pairs
    double given = 0.0;  ///< by how much the size of the tensor was allowed to count
    double bottom = 0.0; ///< the smallest sum with the size of the tensor counted
    bool isOpen = true;  ///< nothing is known
};

/// Solves a medium. `limit`: the score that is to be beaten.
Ellipsoid makeEllipsoid(const BoundTables &tables, const NormalEquations &equations, double limit);

/// What each coupling of a residue row would be, per interaction constant, and how far it can be from that.
struct RowRange {
    double centre, halfWidth;
};

/// The ranges of all columns of the rows given; `slack` of each medium is what its ellipsoid may take.
void rowRanges(const BoundTables &tables, std::span<const Ellipsoid> ellipsoids,
               const std::array<double, maxMedia> &slack, std::span<const int> rows,
               std::vector<RowRange> &ranges);

/// What a peak costs at least on a row with these ranges.
double pairCost(std::span<const PeakCoupling> peak, const RowRange *row);

} // namespace trelm
