#include "tvmath/tangent.h"

#include <cmath>

#include "constructions/flat_ellipse.h"
#include "least_tangent.h"
#include "line_about.h"
#include "tvmath/construction_choice.h"

inline namespace tvmath {
namespace {

// Squared distances from the centre, in the unit frame, between which a point lies on the ellipse: what a
// measured point that was constructed on it may be off.
constexpr double least_on = 0.9999999999, least_outside = 1.0000000001;

line with_least_extent(xyz const& middle, xyz const& half, bool solid) {
    double const size = length(half);
    return line_about(middle, size < least_half_length ? (least_half_length / size) * half : half, solid);
}

}  // namespace

// With q the point in the unit frame, d = |q|, s² = d² - 1 and q' = q turned by a quarter, the tangent points
// are (q -+ s q') / d². The way there is s (-s q -+ q') / d²: no difference of nearly equal places, so that
// the direction is exact for a point next to the ellipse as well.
idioms::array<line> line_tangent(point const& p, ellipse e) {
    if (p.is_trivial() || is_empty(e)) return {};
    point const center = e.basis(0);
    xyz const at(p), u(e.basis(1)), v(e.basis(2)), w = at - xyz(center);
    bool const solid = p.is_3d() || center.is_3d();
    point const q = point(false, w.x, w.y, w.z) / e;
    double const squared = dot2d(q, q);
    if (!(squared >= least_on) || !std::isfinite(squared)) return {};

    // The left one first, as seen from the point and from above.
    double const left = cross(xy(u), xy(v)) < 0 ? 1 : -1;
    auto const mapped = [&](double x, double y) { return x * u + y * v; };
    xyz const to_left = mapped(-left * q.y(), left * q.x());
    if (squared < least_outside) {
        line const touching = line_about(at, least_half_length * unit(to_left), solid);
        return idioms::array<line>(touching.is_trivial() ? 0 : 1, touching);
    }
    double const s = std::sqrt(squared - 1), part = 0.5 * s / squared;
    xyz const height = center.is_3d() ? (0.5 * q.z()) * xyz(e.basis(3)) : xyz(0, 0, 0.5 * w.z);
    xyz const inwards = (-part * s) * mapped(q.x(), q.y()) - height;
    idioms::array<line> lines(2);
    line* to = lines.lazycopy_begin();
    for (double const side : {part, -part}) {
        xyz const half = inwards + side * to_left;
        *to = with_least_extent(at + half, half, solid);
        if ((to++)->is_trivial()) return {};
    }
    return lines;
}

namespace {

// What a record contributes to a tangent: a point, a full ellipse, or nothing.
struct tangent_end {
    point place;
    ellipse round;

    explicit tangent_end(Geometry_Description const* record) {
        if (auto const* as_point = dynamic_cast<Point_Description const*>(record)) {
            place = as_point->position;
        } else if (auto const* as_ellipse = dynamic_cast<Ellipse_Description const*>(record)) {
            round = as_ellipse->geometry;
        } else if (auto const* as_circle = dynamic_cast<Circle_Description const*>(record)) {
            round = as_circle->geometry;
        } else if (auto const* as_arc = dynamic_cast<Arc_Description const*>(record)) {
            round = as_arc->circle;
        }
    }
};

line reversed(line const& l) {
    return line_about(xyz(l.basis(0)), -1.0 * xyz(l.basis(1)), l.is_3d());
}

std::vector<line> tangents_between(tangent_end const& a, tangent_end const& b) {
    std::vector<line> lines;
    bool inner = false;
    if (!a.place.is_trivial()) {
        for (line const& l : line_tangent(a.place, b.round)) lines.push_back(l);
    } else if (!b.place.is_trivial()) {
        for (line const& l : line_tangent(b.place, a.round)) lines.push_back(reversed(l));
    } else {
        for (line const& l : line_tangent(a.round, b.round, inner)) lines.push_back(l);
    }
    return lines;
}

}  // namespace

idioms::ref<multi_solution> line_tangent(Geometry_Description* a, Geometry_Description* b,
                                         std::vector<Segment_Description>& tangents) {
    std::vector<line> const lines = tangents_between(tangent_end(a), tangent_end(b));
    tangents.assign(lines.size(), Segment_Description());
    for (std::size_t i = 0; i < lines.size(); ++i) tangents[i].geometry = lines[i];
    return idioms::ref<multi_solution>(new tangent_line_multi(lines));
}

}  // namespace tvmath
