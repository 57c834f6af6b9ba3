#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>

#include "geometry/xyz.h"
#include "tvmath/array.h"
#include "tvmath/nurb.h"

inline namespace tvmath {
namespace nurb_detail {

/// Room for `size` elements, fewer than 2^32, none of them set: on the stack up to `local`, so that curves of
/// the usual degrees take no block of the heap.
template <class T, std::size_t local>
class scratch {
public:
    explicit scratch(std::size_t size) {
        if (size <= local) return;
        beyond_ = idioms::array<T>(static_cast<unsigned int>(size));
        first_ = beyond_->begin();
    }
    scratch(scratch const&) = delete;
    scratch& operator=(scratch const&) = delete;
    T* begin() { return first_; }
    T& operator[](std::size_t i) { return first_[i]; }

private:
    T local_[local];
    idioms::ref<idioms::array_storage<T>> beyond_;
    T* first_ = local_;
};

/// The order up to which everything about one span fits the stack.
constexpr std::size_t usual_order = 16;
/// Polynomials of a higher order would keep no digit, and their tables would take any time and memory.
constexpr std::size_t largest_polynomial_order = 256;

/// The place of a rational point.
inline xyz location(TQ3RationalPoint4D const& p) {
    return {p.x / p.w, p.y / p.w, p.z / p.w};
}
/// Number of knots at the start of the list that pass `test`, by bisection. The standard's bisection is
/// undefined for a list that is out of order; this one then gives some number up to `count`.
template <class predicate>
std::size_t leading_knots(double const* knots, std::size_t count, predicate test) {
    std::size_t low = 0;
    while (low < count) {
        std::size_t const middle = low + (count - low) / 2;
        if (test(knots[middle])) {
            low = middle + 1;
        } else {
            count = middle;
        }
    }
    return low;
}
inline std::size_t knots_below(double const* knots, std::size_t count, double t) {
    return leading_knots(knots, count, [t](double knot) { return knot < t; });
}
inline std::size_t knots_up_to(double const* knots, std::size_t count, double t) {
    return leading_knots(knots, count, [t](double knot) { return knot <= t; });
}

/// True for a span of the parameter range that has a width and a polynomial; every index is allowed.
inline bool is_span(TQ3NURBCurveData const& d, std::size_t span) {
    return d.order > 0 && d.order <= largest_polynomial_order && span + 1 >= d.order &&
           span < d.point_count && d.knot_values[span] < d.knot_values[span + 1] &&
           std::isfinite(d.knot_values[span + 1] - d.knot_values[span]);
}

/// Calls `use(span)` for the spans that are not empty, in order.
template <class function>
void for_each_span(TQ3NURBCurveData const& d, function const& use) {
    for (unsigned int span = d.order == 0 ? d.point_count : d.order - 1; span < d.point_count; ++span) {
        if (is_span(d, span)) use(span);
    }
}

/// True when the curve jumps at the start of the span: the knot stands there `order` times, which leaves the
/// points before and after it on their own.
inline bool starts_apart(TQ3NURBCurveData const& d, unsigned int span) {
    if (span < d.order || d.knot_values[span + 1 - d.order] != d.knot_values[span]) return false;
    xyz const before = location(d.control_points[span - d.order]);
    xyz const after = location(d.control_points[span + 1 - d.order]);
    return before.x != after.x || before.y != after.y || before.z != after.z;
}

/// The first of `n` control points that has a location: sums relative to it keep the digits of a small curve
/// far from the origin.
inline xyz origin_near(TQ3RationalPoint4D const* points, std::size_t n) {
    for (std::size_t i = 0; i < n; ++i) {
        xyz const p = location(points[i]);
        if (p.is_finite()) return p;
    }
    return {};
}

/// Coefficients of the curve less `origin` on a span, in ascending powers of (u - t): `order` rational
/// points.
void span_coefficients(TQ3NURBCurveData const& d, unsigned int span, double t, xyz const& origin,
                       TQ3RationalPoint4D* coefficients);

/// The rational point of such coefficients at u - t = v, by Horner's rule.
inline TQ3RationalPoint4D polynomial_at(TQ3RationalPoint4D const* c, std::size_t order, double v) {
    TQ3RationalPoint4D sum = c[order - 1];
    for (std::size_t i = order - 1; i-- > 0;) {
        sum.x = sum.x * v + c[i].x;
        sum.y = sum.y * v + c[i].y;
        sum.z = sum.z * v + c[i].z;
        sum.w = sum.w * v + c[i].w;
    }
    return sum;
}

/// Location and derivative with respect to the parameter.
struct place {
    xyz position, derivative;
};
place place_at(TQ3RationalPoint4D const* c, std::size_t order, double v);

/// One span as a polynomial about its middle, where the powers of the parameter lose the fewest digits.
class span_curve {
public:
    explicit span_curve(std::size_t order) : order_(order), coefficients_(order) {}

    void set(TQ3NURBCurveData const& d, unsigned int span, xyz const& origin) {
        width_ = d.knot_values[span + 1] - d.knot_values[span];
        span_coefficients(d, span, d.knot_values[span] + width_ / 2, origin, coefficients_.begin());
    }
    double width() const { return width_; }
    /// At `s` times the width of the span, 0 to 1.
    xyz at(double s) { return location(polynomial_at(coefficients_.begin(), order_, (s - 0.5) * width_)); }
    place place_at(double s) {
        return nurb_detail::place_at(coefficients_.begin(), order_, (s - 0.5) * width_);
    }

private:
    std::size_t order_;
    scratch<TQ3RationalPoint4D, usual_order> coefficients_;
    double width_ = 0;
};

}  // namespace nurb_detail
}  // namespace tvmath
