#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "fitting/point_span.h"
#include "geometry/point_lanes.h"
#include "tvmath/scalar.h"

inline namespace tvmath {
namespace geometry_fitter {

/// Adds up the rows of a circle (`dimension` 2, in XY) or sphere (3): for each point -u, its direction from
/// the centre, then -1 for the radius, then the residual, distance - radius. Their products go to the upper
/// triangle `sums`, row by row. The centre is `start` + `offset`, and a point's place is taken relative to
/// `start` first, so that points far from the origin keep the digits of a small offset. A direction among the
/// points has no distance: it makes the sum of squares NaN.
///
/// Four points at a time share each instruction, in four sums that meet at the end: the order is always the
/// same. To be inlined into a function with TVMATH_WIDE_LOOP.
template <std::size_t dimension>
class radial_sums {
public:
    static constexpr std::size_t columns = dimension + 1;  // u and the residual

    [[gnu::always_inline]] radial_sums(double const* start, double const* offset, double radius)
        : start_(start), offset_(offset), radius_(radius) {}

    [[gnu::always_inline]] void add(point_span points) {
        std::size_t const n = points.size(), whole = n / width * width;
        for (std::size_t i = 0; i < whole; i += width) {
            lanes row[columns];
            fill(row, &points[i], &points[i + 1], &points[i + 2], &points[i + 3]);
            add_products(row);
        }
        if (whole == n) return;
        // The last point fills up the rest, without weight.
        auto const at = [&](std::size_t i) { return &points[std::min(whole + i, n - 1)]; };
        lanes row[columns], weight{};
        fill(row, at(0), at(1), at(2), at(3));
        for (std::size_t i = 0; i < n - whole; ++i) weight[i] = 1;
        for (lanes& column : row) column *= weight;
        add_products(row);
    }

    [[gnu::always_inline]] void write(std::size_t count, double* sums) const {
        std::size_t k = 0;
        for (std::size_t i = 0; i < dimension; ++i) {
            for (std::size_t j = i; j < dimension; ++j) *sums++ = total(product_[k++]);
            *sums++ = total(sum_[i]);
            *sums++ = -total(product_[k++]);
        }
        *sums++ = static_cast<double>(count);
        *sums++ = -total(sum_[dimension]);
        bool const any = weightless_[0] | weightless_[1] | weightless_[2] | weightless_[3];
        *sums = any ? domain_error_value : total(product_[k]);
    }

private:
    using lanes = point_lanes;
    using truths = decltype(lanes{} == lanes{});
    static constexpr std::size_t width = 4;

    [[gnu::always_inline]] static double total(lanes const& a) { return (a[0] + a[1]) + (a[2] + a[3]); }

    [[gnu::always_inline]] void fill(lanes* row, point const* a, point const* b, point const* c,
                                     point const* d) {
        // Seen here, a list costs no pass of its own for the question whether it holds a direction.
        weightless_ |= lanes{(*a)[0], (*b)[0], (*c)[0], (*d)[0]} == 0.0;
        lanes squares{};
        for (unsigned int i = 0; i < dimension; ++i) {
            lanes const place = {(*a)[i + 1], (*b)[i + 1], (*c)[i + 1], (*d)[i + 1]};
            row[i] = (place - start_[i]) - offset_[i];
            squares += row[i] * row[i];
        }
        lanes distance;
        for (std::size_t i = 0; i < width; ++i) distance[i] = std::sqrt(squares[i]);
        // A point on the centre itself has no direction: NaN, and the iteration fails.
        lanes const inverse = 1.0 / distance;
        for (std::size_t i = 0; i < dimension; ++i) row[i] *= inverse;
        row[dimension] = distance - radius_;
    }

    [[gnu::always_inline]] void add_products(lanes const* row) {
        std::size_t k = 0;
        for (std::size_t i = 0; i < columns; ++i) {
            sum_[i] += row[i];
            for (std::size_t j = i; j < columns; ++j) product_[k++] += row[i] * row[j];
        }
    }

    double const *start_, *offset_;
    double radius_;
    lanes product_[columns * (columns + 1) / 2] = {}, sum_[columns] = {};
    truths weightless_ = {};
};

}  // namespace geometry_fitter
}  // namespace tvmath
