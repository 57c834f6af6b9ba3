#pragma once

#include <algorithm>
#include <cstddef>

#include "geometry/point_lanes.h"

inline namespace tvmath {
namespace geometry_fitter {

/// Rows of several points at once, gradient and residual, one array for each column: so that the quotients
/// and roots of several points share one instruction. The products are then added point by point.
template <std::size_t columns>
struct row_block {
    static constexpr std::size_t size = 64;
    static constexpr std::size_t products = columns * (columns + 1) / 2;
    alignas(32) double column[columns][size];

    /// Adds the products of the first `count` rows to the upper triangle `sums`, in the order of the points.
    [[gnu::always_inline]] void add_products(double* sums, std::size_t count) const {
        double total[products];
        std::copy_n(sums, products, total);
        for (std::size_t p = 0; p < count; ++p) {
            std::size_t k = 0;
#pragma GCC unroll 8
            for (std::size_t i = 0; i < columns; ++i) {
#pragma GCC unroll 8
                for (std::size_t j = i; j < columns; ++j) total[k++] += column[i][p] * column[j][p];
            }
        }
        std::copy_n(total, products, sums);
    }
};

}  // namespace geometry_fitter
}  // namespace tvmath
