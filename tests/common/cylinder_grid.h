// A file with a potential in space for tests.
#pragma once

#include <cmath>
#include <string>

/// A cylinder of 12 angstrom along z, of potential 9, in a grid of n by n by 6 points; spacing in angstrom.
inline std::string cylinderGrid(int n, int spacing)
{
    std::string text(11, '\n');
    for (int i = 0; i < n * n * 6; ++i) {
        const int x = i / (6 * n) - n / 2, y = i / 6 % n - n / 2;
        text += std::hypot(spacing * x, spacing * y) < 12.0 ? "9.0" : "-0.1";
        text += i % 3 == 2 ? "\n" : " ";
    }
    return text;
}
