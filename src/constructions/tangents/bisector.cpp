#include "tvmath/bisector.h"

#include <algorithm>
#include <cmath>

#include "constructions/flat_ellipse.h"
#include "line_about.h"
#include "tvmath/construction_choice.h"
#include "tvmath/intersection.h"

inline namespace tvmath {
namespace {

// The unit vector across `d` that lies in XY, to its left; X for a direction along Z.
xyz left_of(xyz const& d) {
    xyz const left = unit({-d.y, d.x, 0});
    return dot(left, left) > 0 ? left : xyz(1, 0, 0);
}

// Both bisectors of two lines, through one origin and equally long.
struct bisecting_pair {
    bool exists = false, parallel = false, solid = false;
    xyz origin, first, second;  // half-vectors

    bisecting_pair(line const& a, line const& b) {
        if (is_empty(a) || is_empty(b)) return;
        xyz const half_a(a.basis(1)), half_b(b.basis(1)), u = unit(half_a);
        xyz v = unit(half_b);
        if (dot(u, u) == 0 || dot(v, v) == 0) return;
        if (dot(u, v) < 0) v = -1.0 * v;
        point const meeting = point_intersect(a, b);
        parallel = meeting.is_trivial();
        origin = parallel ? 0.5 * (xyz(a.basis(0)) + xyz(b.basis(0))) : xyz(meeting);
        xyz const along = unit(u + v);
        // Not u - v, which has few digits at a small angle: in XY the normal has all of them.
        xyz normal = unit(cross(u, v));
        if (normal.z < 0) normal = -1.0 * normal;
        double const size = 0.5 * (length(half_a) + length(half_b));
        first = size * along;
        second = size * cross(normal, along);
        solid = a.is_3d() || b.is_3d();
        exists = origin.is_finite() && first.is_finite();
    }
};

Segment_Description record(line const& l) {
    Segment_Description made;
    made.geometry = l;
    return made;
}

}  // namespace

line line_bisect(line a, line b) {
    bisecting_pair const pair(a, b);
    return pair.exists ? line_about(pair.origin, pair.first, pair.solid) : line();
}

line line_bisect(line l, point const& p) {
    return line_bisect(p, l);
}

line line_bisect(point const& p, line l) {
    if (p.is_trivial() || is_empty(l)) return line();
    xyz const at(p), from(l.basis(0)), half(l.basis(1)), d = unit(half), left = left_of(d);
    if (dot(d, d) == 0) return line();
    bool const solid = p.is_3d() || l.is_3d();
    xyz const w = at - from, off = w - dot(w, d) * d;
    double const distance = length(off), size = std::max(length(half), distance);
    // In a plane there is one perpendicular, whatever the distance. In space the point tells it, unless it
    // lies on the line up to rounding.
    bool const tells = solid && distance > 1e-14 * (length(at) + length(from) + length(w));
    xyz across = tells ? unit(off) : left;
    if (dot(across, left) < 0) across = -1.0 * across;
    return line_about(at, size * across, solid);
}

line line_bisect(point const& a, point const& b) {
    if (a.is_trivial() || b.is_trivial()) return line();
    xyz const p(a), q(b), half = 0.5 * (q - p);
    return line_about(p + half, length(half) * left_of(half), a.is_3d() || b.is_3d());
}

idioms::ref<multi_solution> line_bisect(line a, line b, std::vector<Segment_Description>& bisectors) {
    bisectors.clear();
    bisecting_pair const pair(a, b);
    if (!pair.exists) return idioms::ref<multi_solution>(new bisect_line_line);
    bisectors.push_back(record(line_about(pair.origin, pair.first, pair.solid)));
    if (!pair.parallel) bisectors.push_back(record(line_about(pair.origin, pair.second, pair.solid)));
    return idioms::ref<multi_solution>(new bisect_line_line(bisectors.front().geometry.direction()));
}

}  // namespace tvmath
