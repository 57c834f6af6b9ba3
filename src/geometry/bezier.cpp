#include <algorithm>
#include <cmath>

#include "geometry/extent.h"
#include "geometry/point_lanes.h"
#include "tvmath/curve.h"

inline namespace tvmath {
namespace {

// Control points of one segment in XY, relative to (x0, y0). A trivial point counts as the origin.
struct segment {
    double x[4], y[4];

    explicit segment(point const* control, double x0 = 0, double y0 = 0) {
        for (int i = 0; i < 4; ++i) {
            bool const missing = control[i].is_trivial();
            x[i] = (missing ? 0.0 : control[i].x()) - x0;
            y[i] = (missing ? 0.0 : control[i].y()) - y0;
        }
    }
};

// Calls `visit` with every segment of a path whose size fits, in order.
template <class visitor>
void for_each_segment(curve const& c, visitor visit) {
    for (point const *control = c.begin(), *last = c.end() - 1; control != last; control += 3) visit(control);
}

// One coordinate of a segment at t, relative to its start, so that rounding follows the size of the segment
// and not its distance from the origin.
double coordinate_at(double const* v, double t) {
    double const u = 1 - t;
    return v[0] + t * (3 * u * (u * (v[1] - v[0]) + t * (v[2] - v[0])) + t * t * (v[3] - v[0]));
}

// Widens the extent, which holds both ends, by the extremes of one coordinate inside the segment.
void widen_by_extremes(interval& extent, double const* v) {
    // The curve lies within the extent of its control points.
    if (extent.contains(v[1]) && extent.contains(v[2])) return;

    // A third of the derivative is a t² + b t + c. Divided by the largest coefficient, so that squares
    // neither overflow nor vanish, whatever the unit.
    double const d0 = v[1] - v[0], d1 = v[2] - v[1], d2 = v[3] - v[2];
    double a = (d2 - d1) - (d1 - d0), b = 2 * (d1 - d0), c = d0;
    double const scale = std::max({std::fabs(a), std::fabs(b), std::fabs(c)});
    a /= scale;
    b /= scale;
    c /= scale;
    double const discriminant = b * b - 4 * a * c;
    if (!(discriminant >= 0)) return;  // NaN too

    // The root that -b and the square root would cancel in comes from the product of both roots, c / a. In
    // the linear case a = 0 the same formula leaves -c / b, beside an infinity or NaN that is no parameter.
    double const q = -(b + std::copysign(std::sqrt(discriminant), b)) / 2;
    for (double const t : {q / a, c / q}) {
        if (t > 0 && t < 1) extent.widen(coordinate_at(v, t));
    }
}

// Length of a segment by the trapezoid rule, refined until a refinement changes it by less than 1e-5 of
// itself, at most to 256 panels. The speeds of a level are independent, so that their roots are taken several
// at once; they are added in the order of the path.
TVMATH_WIDE_LOOP double segment_length(segment const& s) {
    // The derivative is x0 + x1 t + x2 t², and the same in y. Its square is summed from both coordinates,
    // never negative; as an expanded quartic it would cancel near a cusp.
    double const *const x = s.x, *const y = s.y;
    double const x0 = 3 * (x[1] - x[0]), y0 = 3 * (y[1] - y[0]);
    double const x1 = 6 * ((x[2] - x[1]) - (x[1] - x[0])), y1 = 6 * ((y[2] - y[1]) - (y[1] - y[0]));
    double const x2 = 3 * (x[3] - x[2]) - x0 - x1, y2 = 3 * (y[3] - y[2]) - y0 - y1;
    auto const speed = [&](double t) {
        double const dx = x0 + t * (x1 + t * x2), dy = y0 + t * (y1 + t * y2);
        return std::sqrt(dx * dx + dy * dy);
    };
    constexpr int last_level = 7;
    double speeds[1 << last_level];
    double length = (speed(0) + speed(1)) / 2;
    for (int level = 0; level <= last_level; ++level) {
        int const panels = 1 << level;
        double const h = 1.0 / panels, previous = length;
        for (int i = 0; i < panels; ++i) speeds[i] = speed((i + 0.5) * h);
        double sum = 0;
        for (int i = 0; i < panels; ++i) sum += speeds[i];
        length = (sum * h + length) / 2;
        if (std::fabs(length - previous) < 1e-5 * length) break;
    }
    return length;
}

// Integrals of x dy - y dx, of x times that and of y times that along a path: twice the area, and three times
// the first moments, of what it sweeps from the origin (Green's theorem).
//
// With the Bernstein polynomials B of the control points p, every one is a sum over the pairs i < j of the
// cross products pi x pj = xi yj - xj yi with the weights
//     w_ij  = integral of B_i B_j' - B_j B_i'         = {12, 6, 2, 6, 6, 12} / 20  of 01, 02, 03, 12, 13, 23,
//     m_ijk = integral of (B_i B_j' - B_j B_i') B_k   = the rows below / 280, which add to w_ij,
// the latter times xk or yk. Integrals of products follow from that of t^a (1 - t)^b, a! b! / (a + b + 1)!.
struct swept_moments {
    double area = 0, x = 0, y = 0;

    void add(segment const& s) {
        struct pair_weights {
            int i, j;
            double area, moment[4];
        };
        static constexpr pair_weights pairs[] = {
            {0, 1, 12, {105, 45, 15, 3}}, {0, 2, 6, {30, 30, 18, 6}}, {0, 3, 2, {5, 9, 9, 5}},
            {1, 2, 6, {15, 27, 27, 15}},  {1, 3, 6, {6, 18, 30, 30}}, {2, 3, 12, {3, 15, 45, 105}},
        };
        for (pair_weights const& w : pairs) {
            double const cross = s.x[w.i] * s.y[w.j] - s.x[w.j] * s.y[w.i];
            double const* const m = w.moment;
            area += w.area / 20 * cross;
            x += cross * (m[0] * s.x[0] + m[1] * s.x[1] + m[2] * s.x[2] + m[3] * s.x[3]) / 280;
            y += cross * (m[0] * s.y[0] + m[1] * s.y[1] + m[2] * s.y[2] + m[3] * s.y[3]) / 280;
        }
    }
};

}  // namespace

CRealRect bezier_bounding_rect(curve const& c) {
    if (c.capacity() % 3 != 1) return CRealRect();
    interval x, y;
    for (point const *p = c.begin(), *end = c.end();; p += 3) {
        x.widen(p->is_trivial() ? 0.0 : p->x());
        y.widen(p->is_trivial() ? 0.0 : p->y());
        if (end - p <= 3) break;
    }
    for_each_segment(c, [&](point const* control) {
        segment const s(control);
        widen_by_extremes(x, s.x);
        widen_by_extremes(y, s.y);
    });
    return rectangle_over(x, y);
}

bool calculate_bezier_length(curve const& c, double& length) {
    if (c.capacity() % 3 != 1) return false;
    double sum = 0;
    for_each_segment(c, [&](point const* control) { sum += segment_length(segment(control)); });
    length = sum;
    return true;
}

bool calculate_closed_bezier_moments(curve const& c, double& area, point& centroid) {
    if (c.capacity() % 3 != 1) return false;
    // Relative to the start of the path: a small path far from the origin keeps its digits, and the straight
    // line that closes an open path runs through the reference, where it sweeps nothing.
    point start = c[0];
    start.project2d();
    swept_moments swept;
    for_each_segment(c, [&](point const* control) { swept.add(segment(control, start.x(), start.y())); });

    // Exact on purpose: a tolerance would need to know how thin a path the caller still means.
    bool const has_centroid = swept.area != 0.0;
    double const scale = 2 / (3 * swept.area);
    centroid = has_centroid ? point(true, start.x() + swept.x * scale, start.y() + swept.y * scale) : point();
    area = swept.area / 2;
    return true;
}

}  // namespace tvmath
