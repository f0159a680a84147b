// A matrix that belongs to someone else.
#pragma once

#include <cstddef>
#include <span>

namespace trelm {

/// Row-major, single precision.
struct MatrixView {
    float *data;
    int rows, columns;

    float &operator()(int i, int j) const { return data[std::ptrdiff_t{i} * columns + j]; }
    [[nodiscard]] std::span<float> row(int i) const
    {
        return {data + std::ptrdiff_t{i} * columns, static_cast<std::size_t>(columns)};
    }
};

} // namespace trelm
