// The assignment problem of one medium as a search over its tensor wants it.
//
// A coupling of peak p and type c is w (d - |DI| t.s) off, t the geometry terms of a residue's vector, s the
// Saupe vector; v = w |DI| is what it weighs in s. With V the largest v of its type, Q the sum of V^2 t t^T
// over all residues and types and of the fixed couplings, Q = L L^T, x = L^T s and f = V L^-1 t the score of
// an assignment is
//   D + |x|^2 - 2 A.x - q(x),    D = sum w^2 d^2,    A = sum (v / V) w d f,    q(x) = sum (1 - v^2 / V^2)
//   (f.x)^2,
// as each residue is used once: q has those couplings alone that are missing or weigh less than others of
// their type. A and q are sums over pairs. With x = t u, |u| = 1 and T^2 = D - limit no assignment is within
// the limit unless
//   A.u + t/2 q(u) >= (T^2 / t + t) / 2    for some u and t,
// and where its own tensor is x, T <= t. Without q the length drops out: A.u >= T.
#pragma once

#include "assignment/search_space.h"
#include "assignment/triangle.h"

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace trelm {

using TensorVector = Saupe; ///< a vector in the space of x

/// Scaled to length 1.
struct TensorDirection {
    TensorVector u = {};
    double length = 0.0;
};

/// Tables of a search over the tensor. Rows and peaks are as many.
struct TensorProblem {
    std::size_t size = 0, stride = 0, columns = 0;
    double data = 0.0;                 ///< D
    std::vector<double> terms;         ///< f, by column, element and residue row: stride values each
    std::vector<double> slope, excess; ///< by peak and column: w d v / V, 1 - v^2 / V^2
    std::vector<int> partial;          ///< peaks with an excess
    TensorVector fixed = {};           ///< what the fixed couplings add to A
    std::vector<double> barrier; ///< by peak and row: what is added to the cost of a pair that may not be
    Triangle factor = {};        ///< L, lower triangle row by row
    double largestShare = 0.0;   ///< what q(u) does not exceed
    bool isFitted = false;       ///< fit and score weigh alike: the tensor of an assignment is its x

    [[nodiscard]] bool hasPartial() const { return !partial.empty(); }
    [[nodiscard]] std::span<const double> termsOf(std::size_t column, std::size_t element) const
    {
        return std::span(terms).subspan((column * saupeCount + element) * stride, size);
    }
    [[nodiscard]] std::size_t cell(std::size_t peak, std::size_t column) const
    {
        return peak * columns + column;
    }
};

/// The tables of a space. Nothing where this search does not apply: several media, fewer peaks than residues,
/// couplings that determine no tensor.
std::optional<TensorProblem> makeTensorProblem(const SearchSpace &space);

/// Costs of pairs, and what they are made from.
struct PairCosts {
    std::vector<double> costs;       ///< by peak and residue row, stride apart
    std::vector<double> projections; ///< f.v, by column and residue row, stride apart
};

/// Costs whose least total is -(A.v + tau / 2 q(v)), without what is fixed.
void pairCosts(const TensorProblem &problem, const TensorVector &v, double tau, PairCosts &work);

/// Each residue row's f.v, by column, stride apart.
void projectTerms(const TensorProblem &problem, const TensorVector &v, std::vector<double> &projections);

/// What an assignment says of the tensor.
struct TensorFit {
    TensorVector sum = {}; ///< A
    Triangle share = {};   ///< the matrix of q
    bool isSolved = false; ///< false: it determines no tensor
    TensorVector x = {};   ///< the tensor that fits best
    double score = 0.0;    ///< in double precision, with the weights of the score
};

/// What is added to the cost of a pair that may not be: more than any total.
double barrierOf(const TensorProblem &problem);

/// Fits an assignment: the row of each peak.
TensorFit fitTensor(const TensorProblem &problem, std::span<const int> rowOf);

/// x of a Saupe vector.
TensorVector tensorOf(const TensorProblem &problem, const Saupe &saupe);

/// The Saupe vector of x.
Saupe saupeOf(const TensorProblem &problem, const TensorVector &x);

TensorDirection directionOf(const TensorVector &x);

} // namespace trelm
