#include "closest_point.h"

#include <algorithm>

inline namespace tvmath {
namespace {

double squared_distance(xyz const& a, xyz const& b) {
    xyz const d = a - b;
    return dot(d, d);
}

}  // namespace

xyz closest_on_segment(xyz const& p, segment_ends const& s) {
    xyz const d = s.b - s.a;
    double const dd = dot(d, d), from_a = dot(p - s.a, d);
    if (!(dd > 0) || from_a <= 0) return s.a;
    if (from_a >= dd) return s.b;
    // From the nearer end, whose part of the product is the smaller one.
    return from_a <= dd / 2 ? s.a + (from_a / dd) * d : s.b + (dot(p - s.b, d) / dd) * d;
}

xyz closest_on_segments(xyz const& p, std::span<segment_ends const> segments) {
    xyz best = closest_on_segment(p, segments.front());
    double best_distance = squared_distance(best, p);
    for (segment_ends const& s : segments.subspan(1)) {
        xyz const q = closest_on_segment(p, s);
        double const distance = squared_distance(q, p);
        if (!(distance < best_distance)) continue;
        best_distance = distance;
        best = q;
    }
    return best;
}

xyz closest_on_plane(xyz const& p, xyz const& center, xyz const& normal) {
    return p - dot(p - center, normal) * normal;
}

xyz closest_on_sphere(xyz const& p, xyz const& center, double radius) {
    xyz const outward = unit(p - center);
    return center + radius * (dot(outward, outward) > 0 ? outward : xyz(1, 0, 0));
}

xyz closest_on_frustum(xyz const& p, xyz const& base, xyz const& axis, double height, double base_radius,
                       double top_radius) {
    // The nearest point lies in the half-plane through p and the axis, where the surface is a segment.
    xyz const w = p - base;
    xyz radial = w - dot(w, axis) * axis;
    radial = radial - dot(radial, axis) * axis;  // what the first step left when p is far along the axis
    double const distance = length(radial);
    xyz const outward = distance > 0 ? unit(radial) : any_perpendicular(axis);
    xyz const q =
        closest_on_segment({distance, dot(w, axis), 0}, {{base_radius, 0, 0}, {top_radius, height, 0}});
    return base + q.y * axis + q.x * outward;
}

xyz closest_on_slot(xyz const& p, xyz const& center, xyz const& e1, xyz const& e2, double half,
                    double radius) {
    xyz const w = p - center;
    double const x = dot(w, e1), y = dot(w, e2), foot = std::clamp(x, -half, half);
    double const distance = std::hypot(x - foot, y);
    // On the middle line itself both sides are equally near.
    double const dx = distance > 0 ? (x - foot) / distance : 0, dy = distance > 0 ? y / distance : 1;
    return center + (foot + radius * dx) * e1 + (radius * dy) * e2;
}

}  // namespace tvmath
