// The linear assignment problem.
#pragma once

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

} // namespace trelm
