#include "support/numerics/linear_assignment.h"

#include <cstddef>
#include <limits>
#include <utility>

namespace trelm {
namespace {

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr int none = -1;

/// Gives one more row a column, along the path of smallest cost through the rows that have one.
bool augment(std::span<const double> costs, int row, std::size_t columns, LinearAssignment &s)
{
    s.slack.assign(columns, infinity);
    s.parent.assign(columns, none);
    s.isDone.assign(columns, 0);
    double reached = 0.0;
    int current = row, last = none;
    while (last == none) {
        const double *const cost = &costs[static_cast<std::size_t>(current) * columns];
        const double offset = reached - s.rowPrice[static_cast<std::size_t>(current)];
        double nearest = infinity;
        std::size_t next = columns;
        for (std::size_t j = 0; j < columns; ++j) {
            if (s.isDone[j] != 0)
                continue;
            const double through = offset + cost[j] - s.columnPrice[j];
            if (through < s.slack[j]) {
                s.slack[j] = through;
                s.parent[j] = current;
            }
            if (s.slack[j] < nearest) {
                nearest = s.slack[j];
                next = j;
            }
        }
        if (next == columns)
            return false;
        reached = nearest;
        s.isDone[next] = 1;
        if (s.rowOf[next] == none)
            last = static_cast<int>(next);
        else
            current = s.rowOf[next];
    }
    s.rowPrice[static_cast<std::size_t>(row)] += reached;
    for (std::size_t j = 0; j < columns; ++j)
        if (s.isDone[j] != 0 && static_cast<int>(j) != last) {
            const double change = reached - s.slack[j];
            s.rowPrice[static_cast<std::size_t>(s.rowOf[j])] += change;
            s.columnPrice[j] -= change;
        }
    for (int j = last; j != none;) {
        const int owner = s.parent[static_cast<std::size_t>(j)];
        s.rowOf[static_cast<std::size_t>(j)] = owner;
        std::swap(s.columnOf[static_cast<std::size_t>(owner)], j);
        if (owner == row)
            break;
    }
    return true;
}

} // namespace

bool linearAssignment(std::span<const double> costs, int rows, int columns, LinearAssignment &solution)
{
    const auto m = static_cast<std::size_t>(rows), n = static_cast<std::size_t>(columns);
    solution.columnOf.assign(m, none);
    solution.rowOf.assign(n, none);
    solution.rowPrice.assign(m, 0.0);
    solution.columnPrice.assign(n, 0.0);
    solution.total = 0.0;
    for (int row = 0; row < rows; ++row)
        if (!augment(costs, row, n, solution))
            return false;
    for (std::size_t row = 0; row < m; ++row)
        solution.total += costs[row * n + static_cast<std::size_t>(solution.columnOf[row])];
    return true;
}

} // namespace trelm
