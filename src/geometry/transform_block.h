#pragma once

#include "tvmath/transform.h"

inline namespace tvmath {
namespace transform_detail {

// One map inside a block: n rows of an offset and n coefficients.

/// Rows of the maps of a transform: 2, 3, or 0 for the trivial one and for a block of a size that is no map.
inline int rows_of(transform const& t) {
    return t.is_3d() ? 3 : t.is_2d() ? 2 : 0;
}

/// Where the inverse map starts.
constexpr int map_size(int n) {
    return n * (n + 1);
}

inline void add_row(double* map, int n, int to, double factor, int from) {
    for (int c = 0; c <= n; ++c) map[to * (n + 1) + c] += factor * map[from * (n + 1) + c];
}

/// Columns count from 1; the offsets, column 0, belong to no axis.
inline void add_column(double* map, int n, int to, double factor, int from) {
    for (int r = 0; r < n; ++r) map[r * (n + 1) + to] += factor * map[r * (n + 1) + from];
}

/// Column i as a location (0) or direction, of an n-row map.
inline point column_of(double const* map, int n, int i) {
    return n == 2 ? point(i == 0, map[i], map[i + 3]) : point(i == 0, map[i], map[i + 4], map[i + 8]);
}

}  // namespace transform_detail
}  // namespace tvmath
