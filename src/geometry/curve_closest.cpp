#include "tvmath/curve.h"

inline namespace tvmath {
namespace {

// Scalar product of the plane (`dot2d`) or of space (`dot3d`): the one difference between both families.
using product = double (*)(point const&, point const&);

constexpr unsigned int none = 0xFFFFFFFFu;  // no list is so long that this is an index

// A distance replaces the best one so far: the first of equals stays, and NaN gives way to anything.
bool is_nearer(double distance, double best) {
    return distance < best || best != best;
}

template <product dot>
double squared_distance(point const& a, point const& b) {
    point const d = a - b;
    return dot(d, d);
}

template <product dot>
unsigned int nearest_vertex(curve const& c, point const& p) {
    unsigned int nearest = none;
    double best = 0;
    point const* const list = c.begin();
    for (unsigned int i = 0, n = c.capacity(); i < n; ++i) {
        if (list[i].is_trivial()) continue;
        double const distance = squared_distance<dot>(list[i], p);
        if (nearest != none && !is_nearer(distance, best)) continue;
        nearest = i;
        best = distance;
    }
    return nearest;
}

// Foot of the perpendicular from `p` on the segment from its nearer end `vertex` to `neighbour`; the trivial
// point when `p` projects outside, or the segment has no length (0 / 0), or there is no neighbour.
//
// Counted from the nearer end the parameter is at most 1/2, whichever way the path runs, and the rounding of
// a long segment is not carried to the foot.
template <product dot>
point foot_on(point const& vertex, point const& neighbour, point const& p) {
    if (neighbour.is_trivial()) return point();
    point const along = neighbour - vertex;
    double const s = dot(p - vertex, along) / dot(along, along);
    return s >= 0.0 && s <= 1.0 ? vertex + along * s : point();
}

template <product dot>
point closest(curve const& c, point const& p, bool interpolate) {
    unsigned int const nearest = nearest_vertex<dot>(c, p);
    if (nearest == none) return point();
    point const *const first = c.begin(), *const end = c.end(), *const vertex = first + nearest;
    if (!interpolate) return *vertex;

    point const* after = vertex + 1;
    while (after != end && after->is_trivial()) ++after;
    point const* before = vertex;
    while (before != first && (before - 1)->is_trivial()) --before;
    point const foot_before = before == first ? point() : foot_on<dot>(*vertex, before[-1], p);
    point const foot_after = after == end ? point() : foot_on<dot>(*vertex, *after, p);

    if (foot_before.is_trivial() && foot_after.is_trivial()) return *vertex;
    if (foot_before.is_trivial()) return foot_after;
    if (foot_after.is_trivial()) return foot_before;
    bool const later = squared_distance<dot>(foot_after, p) < squared_distance<dot>(foot_before, p);
    return later ? foot_after : foot_before;
}

template <product dot>
curve closest_path(idioms::array<curve> const& list, point const& p, bool interpolate) {
    curve const* nearest = nullptr;
    double best = 0;
    for (curve const& c : list) {
        point const candidate = closest<dot>(c, p, interpolate);
        if (candidate.is_trivial()) continue;
        double const distance = squared_distance<dot>(candidate, p);
        if (nearest && !is_nearer(distance, best)) continue;
        nearest = &c;
        best = distance;
    }
    return nearest ? *nearest : curve();
}

// Sum over differences from the first point that counts, so that a small cloud far from the origin keeps its
// digits however many points it has.
point mean(curve const& c, bool solid) {
    point start;
    double x = 0, y = 0, z = 0, count = 0;
    bool location = true;
    for (point p : c) {
        if (p.is_trivial()) continue;
        p.promote3d();
        if (count == 0) start = p;
        x += p.x() - start.x();
        y += p.y() - start.y();
        z += p.z() - start.z();
        location = location && p.is_location();
        ++count;
    }
    if (count == 0) return point();
    x = start.x() + x / count;
    y = start.y() + y / count;
    return solid ? point(location, x, y, start.z() + z / count) : point(location, x, y);
}

template <class measure>
vector distances(curve const& c, measure distance) {
    vector result(c.capacity());
    double* to = result.lazycopy_begin();
    for (point const& q : c) *to++ = distance(q);
    return result;
}

}  // namespace

point centroid2d(curve const& c) {
    return mean(c, false);
}

point centroid3d(curve const& c) {
    return mean(c, true);
}

point closest2d(curve const& c, point const& p, bool interpolate) {
    return closest<dot2d>(c, p, interpolate);
}

point closest3d(curve const& c, point const& p, bool interpolate) {
    return closest<dot3d>(c, p, interpolate);
}

curve closest2d(idioms::array<curve> const& list, point const& p, bool interpolate) {
    return closest_path<dot2d>(list, p, interpolate);
}

curve closest3d(idioms::array<curve> const& list, point const& p, bool interpolate) {
    return closest_path<dot3d>(list, p, interpolate);
}

vector distance2d(curve const& c, point const& p) {
    return distances(c, [&p](point const& q) { return distance2d(q, p); });
}

vector distance2d(point const& p, curve const& c) {
    return distance2d(c, p);
}

vector distance3d(curve const& c, point const& p) {
    return distances(c, [&p](point const& q) { return distance3d(q, p); });
}

vector distance3d(point const& p, curve const& c) {
    return distance3d(c, p);
}

curve midpoint(curve const& a, curve const& b) {
    unsigned int const n = a.capacity();
    if (n != b.capacity()) return curve();
    curve result(n);
    point* const to = result.lazycopy_begin();
    point const *const p = a.begin(), *const q = b.begin();
    for (unsigned int i = 0; i < n; ++i) to[i] = midpoint(p[i], q[i]);
    return result;
}

}  // namespace tvmath
