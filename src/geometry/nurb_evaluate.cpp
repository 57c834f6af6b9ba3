#include <algorithm>
#include <cmath>

#include "nurb_span.h"

// L. Piegl, W. Tiller, The NURBS Book, 2nd ed., Springer 1997: section 2.5, algorithm A2.2.

inline namespace tvmath {
namespace nurb_detail {
namespace {

// Span in which the recursion starts, or -1. A knot belongs to the span that it starts; the last knot has
// none of its own and belongs to the one before it, so that the curve has an end.
std::int64_t span_at(TQ3NURBCurveData const& d, double t) {
    std::size_t const count = std::size_t{d.order} + d.point_count;
    double const* const knots = d.knot_values;
    double const last = knots[count - 1];
    if (!(t >= knots[0] && t <= last)) return -1;
    std::size_t const next = t == last ? knots_below(knots, count, t) : knots_up_to(knots, count, t);
    bool const found = next > 0 && next < count && knots[next - 1] <= t && t <= knots[next];
    return found ? static_cast<std::int64_t>(next) - 1 : -1;
}

// Values at t of the `order` basis functions that are not zero on the span: convex combinations all the way,
// so that nothing cancels. Near the ends of the list some functions would need knots beyond it; their values
// are never used, and those of the others do not depend on them.
void basis_values(TQ3NURBCurveData const& d, std::int64_t span, double t, double* values) {
    std::int64_t const degree = std::int64_t{d.order} - 1, last = degree + d.point_count;
    auto const knot = [&](std::int64_t i) { return d.knot_values[std::clamp<std::int64_t>(i, 0, last)]; };
    values[0] = 1;
    for (std::int64_t j = 1; j <= degree; ++j) {
        double carried = 0;
        for (std::int64_t r = 0; r < j; ++r) {
            double const low = knot(span + 1 - j + r), high = knot(span + 1 + r);
            double const part = high > low ? values[r] / (high - low) : 0;
            values[r] = carried + (high - t) * part;
            carried = (t - low) * part;
        }
        values[j] = carried;
    }
}

// The same functions as polynomials in u - t, row by row: step j turns row r of degree j - 1 into its shares
// of the rows r and r + 1 of degree j. From the last row and the highest power down, so in place.
void basis_polynomials(TQ3NURBCurveData const& d, std::size_t span, double t, double* table) {
    std::size_t const order = d.order;
    std::fill_n(table, order * order, 0.0);
    table[0] = 1;
    for (std::size_t j = 1; j < order; ++j) {
        for (std::size_t r = j; r-- > 0;) {
            double const low = d.knot_values[span + 1 + r - j], high = d.knot_values[span + 1 + r];
            double const slope = high > low ? 1 / (high - low) : 0;
            double const rise = (t - low) * slope, fall = (high - t) * slope;
            double *const row = table + r * order, *const next = row + order;
            for (std::size_t c = j + 1; c-- > 0;) {
                double const same = row[c], lower = c > 0 ? row[c - 1] * slope : 0;
                next[c] += rise * same + lower;
                row[c] = fall * same - lower;
            }
        }
    }
}

}  // namespace

void span_coefficients(TQ3NURBCurveData const& d, unsigned int span, double t, xyz const& origin,
                       TQ3RationalPoint4D* coefficients) {
    std::size_t const order = d.order;
    scratch<double, usual_order * usual_order> table(order * order);
    basis_polynomials(d, span, t, table.begin());
    TQ3RationalPoint4D const* const points = d.control_points + (span + 1 - order);
    auto const shifted = [&](std::size_t r) {
        TQ3RationalPoint4D const& p = points[r];
        return TQ3RationalPoint4D{p.x - origin.x * p.w, p.y - origin.y * p.w, p.z - origin.z * p.w, p.w};
    };
    // The functions sum to 1, so the rows of all but the first point, applied to differences, are enough:
    // then the derivatives of a short curve far away keep their digits, and equal weights stay equal.
    TQ3RationalPoint4D const base = shifted(0);
    std::fill_n(coefficients, order, TQ3RationalPoint4D{0, 0, 0, 0});
    coefficients[0] = base;
    for (std::size_t r = 1; r < order; ++r) {
        TQ3RationalPoint4D const p = shifted(r);
        double const dx = p.x - base.x, dy = p.y - base.y, dz = p.z - base.z, dw = p.w - base.w;
        double const* const row = table.begin() + r * order;
        for (std::size_t c = 0; c < order; ++c) {
            coefficients[c].x += row[c] * dx;
            coefficients[c].y += row[c] * dy;
            coefficients[c].z += row[c] * dz;
            coefficients[c].w += row[c] * dw;
        }
    }
}

place place_at(TQ3RationalPoint4D const* c, std::size_t order, double v) {
    // Horner's rule for the polynomial and its derivative at once.
    TQ3RationalPoint4D sum = c[order - 1], slope = {0, 0, 0, 0};
    for (std::size_t i = order - 1; i-- > 0;) {
        slope = {slope.x * v + sum.x, slope.y * v + sum.y, slope.z * v + sum.z, slope.w * v + sum.w};
        sum = {sum.x * v + c[i].x, sum.y * v + c[i].y, sum.z * v + c[i].z, sum.w * v + c[i].w};
    }
    // (X / w)' = (X' - (X / w) w') / w
    xyz const p = location(sum), q = xyz{slope.x, slope.y, slope.z} - p * slope.w;
    return {p, {q.x / sum.w, q.y / sum.w, q.z / sum.w}};
}

}  // namespace nurb_detail

using namespace nurb_detail;

TQ3RationalPoint4D nurb::evaluate(double t) const {
    TQ3NURBCurveData const& d = data();
    TQ3RationalPoint4D sum = {0, 0, 0, 0};
    if (d.order == 0 || d.point_count == 0) return sum;
    std::int64_t const span = span_at(d, t);
    if (span < 0) return sum;
    scratch<double, usual_order> values(d.order);
    basis_values(d, span, t, values.begin());
    // Functions of points that the curve does not have, before the first and after the last, are left out.
    std::int64_t const first = span + 1 - d.order, end = std::min<std::int64_t>(span + 1, d.point_count);
    for (std::int64_t i = std::max<std::int64_t>(first, 0); i < end; ++i) {
        TQ3RationalPoint4D const& p = d.control_points[i];
        double const weight = values[static_cast<std::size_t>(i - first)];
        sum.x += weight * p.x;
        sum.y += weight * p.y;
        sum.z += weight * p.z;
        sum.w += weight * p.w;
    }
    return sum;
}

void nurb::calc_poly(unsigned int span, double* table, double t) const {
    TQ3NURBCurveData const& d = data();
    if (is_span(d, span)) {
        basis_polynomials(d, span, t, table);
    } else {
        std::fill_n(table, std::size_t{d.order} * d.order, 0.0);
    }
}

void nurb::calc_poly(unsigned int span, TQ3RationalPoint4D* coefficients, double t) const {
    TQ3NURBCurveData const& d = data();
    if (is_span(d, span)) {
        span_coefficients(d, span, t, xyz(), coefficients);
    } else {
        std::fill_n(coefficients, d.order, TQ3RationalPoint4D{0, 0, 0, 0});
    }
}

}  // namespace tvmath
