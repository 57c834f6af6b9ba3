#include <algorithm>
#include <cmath>
#include <limits>

#include "constructions/flat_ellipse.h"
#include "tvmath/intersection.h"
#include "tvmath/scalar.h"
#include "two_points.h"

inline namespace tvmath {
namespace {

constexpr double epsilon = std::numeric_limits<double>::epsilon();

// The segment between two points of a line in space. The constructor from two points would lay it into XY.
line segment(xyz const& from, xyz const& to) {
    xyz const half = 0.5 * (to - from);
    double const n = length(half), flat = std::hypot(half.x, half.y);
    xyz const along = unit(half);
    // As the constructor has it wherever both apply: the second axis is the first one turned about Z.
    xyz const across = flat > 0 ? xyz(-half.y / flat, half.x / flat, 0) : xyz(1, 0, 0);
    return line(make_transform((from + half).location(true), point(false, half.x, half.y, half.z),
                               point(false, n * across.x, n * across.y, 0),
                               unit(cross(along, across)).location(true)));
}

}  // namespace

// With n = u x v, u and v the unit directions and w from the first origin to the second, the closest points
// lie at t = det(w, v, n) / n² and s = det(w, u, n) / n². The dot products of the normal equations give the
// same, but their 1 - (u v)² keeps no digit of a small angle.
point point_intersect(line a, line b) {
    if (is_empty(a) || is_empty(b)) return point();
    point const start_a = a.basis(0), start_b = b.basis(0);
    xyz const p(start_a), q(start_b), u = unit(xyz(a.basis(1))), v = unit(xyz(b.basis(1))), w = q - p;
    // Angles below 3e-8 are parallel: beyond, the meeting point is a matter of rounding.
    if (std::fabs(1 - std::fabs(dot(u, v))) < 5e-16) return point();
    xyz const n = cross(u, v);
    double const n2 = dot(n, n);
    // A line without extent is a point, whose foot on the other one counts.
    double const t = n2 == 0 ? dot(w, u) : dot(cross(w, v), n) / n2;
    double const s = n2 == 0 ? -dot(w, v) : dot(cross(w, u), n) / n2;
    xyz const middle = 0.5 * ((p + t * u) + (q + s * v));
    return middle.is_finite() ? middle.location(start_a.is_3d() || start_b.is_3d()) : point();
}

point point_intersect(line l, plane p) {
    if (is_empty(l) || is_empty(p)) return point();
    point const start = l.basis(0);
    xyz const from(start), d(l.basis(1)), n(p.basis(3));
    double const rise = dot(d, n);
    if (rise == 0) return point();  // exact on purpose: a slight tilt is an honest point far away
    xyz const at = from + (dot(xyz(p.basis(0)) - from, n) / rise) * d;
    return at.is_finite() ? at.location(start.is_3d()) : point();
}

line line_intersect(plane a, plane b) {
    if (is_empty(a) || is_empty(b)) return line();
    xyz const q1(a.basis(0)), q2(b.basis(0)), n1 = unit(xyz(a.basis(3))), n2 = unit(xyz(b.basis(3)));
    xyz const n = cross(n1, n2), d = unit(n);
    // In the directions d x n1, across the line within the first plane, and d; the first plane holds q1.
    double const sine = length(n);
    double const across = sine > 0 ? dot(q2 - q1, n2) / sine : 0, along = 0.5 * dot(q2 - q1, d);
    xyz const at = q1 + across * cross(d, n1) + along * d;

    double least = infinity, most = -infinity;
    for (plane const& p : {a, b}) {
        xyz const center(p.basis(0)), u(p.basis(1)), v(p.basis(2));
        for (xyz const& diagonal : {u + v, u - v}) {
            double const middle = dot(center - at, d), half = dot(diagonal, d);
            least = std::min({least, middle - half, middle + half});
            most = std::max({most, middle - half, middle + half});
        }
    }
    return segment(at + least * d, at + most * d);
}

idioms::array<point> point_intersect(line l, sphere s) {
    if (is_empty(l) || is_empty(s)) return {};
    xyz const from(l.basis(0)), center(s.basis(0)), d = unit(xyz(l.basis(1)));
    xyz const foot = from + dot(center - from, d) * d;
    double const r = s.radius(), k = length(center - foot);
    if (!(k <= r) || dot(d, d) == 0) return {};
    double const h = std::sqrt((r - k) * (r + k));
    return two_points(foot - h * d, foot + h * d);
}

// In the frame where the cylinder is x² + y² = 1: of p + t d, a = d², b = p d, and the discriminant
// b² - a (p² - 1) is a - (p x d)², which does not cancel far away.
idioms::array<point> point_intersect(line l, cylinder c) {
    if (is_empty(l) || is_empty(c)) return {};
    point start = l.basis(0), step = l.basis(1);
    xyz const from(start), along(step);
    xy const p{xyz(start / c)}, d{xyz(step / c)};
    double const a = dot(d, d), b = dot(p, d), offset = cross(p, d), speed = std::sqrt(a);
    // Along the axis, but for the rounding of its direction.
    if (!(speed > 8 * epsilon * length(along) * std::max(c.inverse_size(1), c.inverse_size(2)))) return {};
    if (!(std::fabs(offset) <= speed)) return {};
    double const root = std::sqrt((speed - std::fabs(offset)) * (speed + std::fabs(offset)));
    return two_points(from + ((-b - root) / a) * along, from + ((-b + root) / a) * along);
}

// The surface is |x across the axis| = r(x along the axis), both squared. With w from the base to the place
// of the line next to the middle of the cone, so that far lines keep their digits:
//     A t² + 2 B t + C = 0,  A = d_across² - (slope d_along)²,  B = w_across d_across - slope d_along r,
//     C = w_across² - r²,  r the radius at w.
idioms::array<point> point_intersect(line l, cone c) {
    if (is_empty(l) || c.is_trivial()) return {};
    xyz const from(l.basis(0)), d = unit(xyz(l.basis(1))), axis(c.axis), base(c.base);
    xyz const near = from + dot(xyz(c.center()) - from, d) * d, w = near - base;
    double const slope = c.slope(), r = c.base_radius + slope * dot(w, axis), steep = slope * dot(d, axis);
    xyz const d_across = d - dot(d, axis) * axis, w_across = w - dot(w, axis) * axis;
    double A = dot(d_across, d_across) - steep * steep, B = dot(w_across, d_across) - steep * r;
    double const C = dot(w_across, w_across) - r * r;
    // Parallel to a generator, but for rounding: the second root would be a matter of it.
    if (std::fabs(A) <= 8 * epsilon * (dot(d_across, d_across) + steep * steep)) A = 0;
    if (!std::isfinite(A + B + C) || (A == 0 && B == 0)) return {};
    if (A == 0) {
        xyz const at = near - (C / (2 * B)) * d;
        return idioms::array<point>(at.is_finite() ? 1 : 0, at.location(true));
    }
    double discriminant = B * B - A * C;
    // Through the vertex, the axis among them, it is 0 but for rounding.
    if (std::fabs(discriminant) <= 8 * epsilon * (B * B + std::fabs(A * C))) discriminant = 0;
    if (discriminant < 0) return {};
    // The sum without cancellation, then the other root from the product C / A.
    double const sum = B < 0 ? -B + std::sqrt(discriminant) : -B - std::sqrt(discriminant);
    double first = sum / A, second = sum == 0 ? first : C / sum;
    if (second < first) std::swap(first, second);
    return two_points(near + first * d, near + second * d);
}

}  // namespace tvmath
