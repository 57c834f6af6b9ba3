#include <cmath>
#include <limits>

#include "constructions/flat_ellipse.h"
#include "tvmath/intersection.h"
#include "tvmath/scalar.h"

inline namespace tvmath {
namespace {

// The circle about the normal. A negative radius reverses the normal and keeps its magnitude.
circle circle_about(xyz const& center, xyz const& normal, double radius) {
    if (!center.is_finite() || !std::isfinite(radius)) return circle();
    if (radius < 0) return circle_about(center, -1.0 * normal, -radius);
    plane const frame(center.location(true), point(false, normal.x, normal.y, normal.z));
    return circle(ellipse(radius, point(true, 0, 0, 0)) * frame);
}

// Where an axis meets a plane. False when it does not, exactly: a slight tilt is an honest point far away.
bool meets(xyz const& on_axis, xyz const& axis, plane const& p, xyz& at) {
    xyz const n(p.basis(3));
    double const rise = dot(axis, n);
    if (rise == 0) return false;
    at = on_axis + (dot(xyz(p.basis(0)) - on_axis, n) / rise) * axis;
    return at.is_finite();
}

point direction(xyz const& d) {
    return point(false, d.x, d.y, d.z);
}

// Across the plane's tilt against the axis: unit vector along n x a. Of a plane across the axis, its own
// first axis. A plane that is tilted about a coordinate axis has components of 0 here, and the others change
// sign together whenever a small tilt does; their sign then is kept positive.
xyz tilt_axis(plane const& p, xyz const& n, xyz const& a) {
    xyz const e = unit(cross(n, a));
    if (dot(e, e) == 0) return unit(xyz(p.basis(1)));
    bool const has_zero = e.x == 0 || e.y == 0 || e.z == 0;
    double const first = e.x != 0 ? e.x : e.y != 0 ? e.y : e.z;
    return has_zero && first < 0 ? -1.0 * e : e;
}

ellipse ellipse_of(xyz const& center, double major, double minor, xyz const& e, xyz const& n) {
    if (!(major > 0 && minor > 0) || !center.is_finite() || !std::isfinite(major + minor)) return ellipse();
    return ellipse(make_transform(center.location(true), direction(major * unit(cross(e, n))),
                                  direction(minor * e), direction(n)));
}

}  // namespace

circle circle_intersect(plane p, sphere s) {
    if (is_empty(p) || is_empty(s)) return circle();
    xyz const n = unit(xyz(p.basis(3))), c(s.basis(0));
    double const r = s.radius(), k = dot(c - xyz(p.basis(0)), n), squared = (r - k) * (r + k);
    return squared >= 0 ? circle_about(c - k * n, n, std::sqrt(squared)) : circle();
}

circle circle_intersect(plane p, cylinder c) {
    xyz at;
    if (is_empty(p) || is_empty(c) || !meets(xyz(c.basis(0)), xyz(c.basis(3)), p, at)) return circle();
    return circle_about(at, xyz(p.basis(3)), c.radius());
}

circle circle_intersect(plane p, cone c) {
    xyz at;
    if (is_empty(p) || !p.is_3d() || c.is_trivial()) return circle();
    xyz const middle(c.center()), axis(c.axis);
    if (!meets(middle, axis, p, at)) return circle();
    double const mean = (c.base_radius + c.top_radius) / 2;
    return circle_about(at, xyz(p.basis(3)), mean + dot(at - middle, axis) * c.slope());
}

circle circle_intersect(cylinder c, cone k) {
    if (is_empty(c) || !c.is_3d() || k.is_trivial()) return circle();
    double const r = c.radius(), share = (r - k.base_radius) / (k.top_radius - k.base_radius);
    xyz const base(k.base);
    return circle_about(base + share * (xyz(k.top) - base), xyz(k.axis), r);
}

ellipse ellipse_intersect(plane p, cylinder c) {
    xyz at;
    if (is_empty(p) || is_empty(c) || !meets(xyz(c.basis(0)), xyz(c.basis(3)), p, at)) return ellipse();
    xyz const n = unit(xyz(p.basis(3))), a = unit(xyz(c.basis(3)));
    double const r = c.radius();
    return ellipse_of(at, r / std::fabs(dot(n, a)), r, tilt_axis(p, n, a), n);
}

// The plane through the axis that holds n cuts the cone in two generators,
//     base + h a + side r(h) g,  g across the axis,  r(h) = r0 + slope h,  side = -1 or 1,
// and meets the section at the ends of its major axis. The centre lies half of the difference of both radii
// off the axis, where the cone has the mean of both: half the chord there, the minor half-axis, is the root
// of mean² - (difference / 2)², the product of both radii.
ellipse ellipse_intersect(plane p, cone c) {
    if (is_empty(p) || c.is_trivial()) return ellipse();
    xyz const n = unit(xyz(p.basis(3))), a(c.axis), base(c.base), e = tilt_axis(p, n, a), g = cross(e, a);
    double const slope = c.slope(), along = dot(n, a), across = slope * dot(n, g);
    // Both generators meet the plane on one nappe only if it is less steep than they are; of one that is
    // parallel to a generator, rounding would decide.
    double const steepness = along * along - across * across;
    if (!(steepness > 8 * std::numeric_limits<double>::epsilon() * (along * along + across * across))) {
        return ellipse();
    }
    double const level = dot(xyz(p.basis(0)) - base, n), rise = c.base_radius * dot(n, g);
    double const h1 = (level - rise) / (along + across), h2 = (level + rise) / (along - across);
    double const r1 = c.base_radius + slope * h1, r2 = c.base_radius + slope * h2;
    if (!(r1 > 0 && r2 > 0)) return ellipse();  // the mirrored nappe beyond the vertex is not the cone
    xyz const end1 = h1 * a + r1 * g, end2 = h2 * a - r2 * g;
    return ellipse_of(base + 0.5 * (end1 + end2), length(end1 - end2) / 2, std::sqrt(r1 * r2), e, n);
}

}  // namespace tvmath
