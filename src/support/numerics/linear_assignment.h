// The linear assignment problem.
#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace trelm {

/// Work space and solution of linearAssignment.
struct LinearAssignment {
    std::vector<int> columnOf; ///< column of each row
    std::vector<double> rowPrice,
        columnPrice; ///< duals: cost - rowPrice - columnPrice >= 0, 0 on the solution
    double total = 0.0;

    std::vector<int> rowOf, parent; ///< of columns; work space
    std::vector<double> slack;
    std::vector<char> isDone;
};

/// Gives each row a column of its own at the smallest total cost; rows * columns costs, row by row, none
/// negative, infinity where a pair is not allowed. Rows must not outnumber columns. Returns false if there is
/// no solution. Shortest augmenting paths, rows^2 * columns steps. Source: Kuhn, Naval Res. Logist. Q. 2
/// (1955) 83; Tomizawa, Networks 1 (1971) 173.
bool linearAssignment(std::span<const double> costs, int rows, int columns, LinearAssignment &solution);

/// Columns of a row of costs with the room that makes it whole vectors.
constexpr std::size_t assignmentStride(std::size_t size)
{
    constexpr std::size_t lanes = 8;
    return (size + lanes - 1) / lanes * lanes;
}

/// What stands in the room behind the costs of a row.
constexpr double noCost = 1e300;

/// Work space and solution of solveAssignment.
struct AssignmentWork {
    std::vector<int> columnOf, rowOf; ///< of rows, of columns

    std::vector<int> exchanged; ///< rows that change their column where costWithoutPair has found a solution

    std::vector<int> freeRows, reached; ///< work space
    std::vector<double> key, distance, open, pred;
};

/// Gives each of `size` rows a column of its own at the smallest total cost, which is returned. costs: size
/// rows of assignmentStride(size) finite values of any sign, noCost behind the columns. prices:
/// assignmentStride(size) values, in: what is thought of the columns, anything finite; out: dual prices, so
/// that cost - price of a row is least at its column. Prices near the right ones make it fast: one pass over
/// the costs, and a shortest path for each row that has then no column. Source: Jonker, Volgenant, Computing
/// 38 (1987) 325; the paths are those of linearAssignment.
double solveAssignment(std::span<const double> costs, std::size_t size, std::span<double> prices,
                       AssignmentWork &work);

/// By how much the least total cost of a solution rises if the row may not have its column; noCost where it
/// has no other solution. prices: as solveAssignment has left them. work: its solution, which stays;
/// `exchanged` begins with the row, and each row of it takes the column of the next one, the last that of the
/// first.
double costWithoutPair(std::span<const double> costs, std::size_t row, std::span<const double> prices,
                       AssignmentWork &work);

} // namespace trelm
