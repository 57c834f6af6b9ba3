#include <algorithm>
#include <cmath>

#include "tvmath/geometry_description.h"

inline namespace tvmath {
namespace {

// The point of the arc's own frame at that multiple of the radius.
point at_angle(double angle, double radius = 1) {
    return point(true, radius * std::cos(angle), radius * std::sin(angle));
}

// A witness line reaches from the vertex to the arc, whatever its extents hold.
void render_witness_line(circle const& arc, double angle, double near, double far, point& p, point& q) {
    p = at_angle(angle, std::min(near, 0.0)) * arc;
    q = at_angle(angle, std::max(1.0, far)) * arc;
}

}  // namespace

void Angle_Description::apply_transform(transform t) {
    arc *= t;
    if (!arc.is_left_handed()) return;
    start_angle = -start_angle;
    included_angle = -included_angle;
    arc.make_right_handed(2);
}

CRealRect Angle_Description::get_bounding_rect() const {
    CRealRect extent = arc.get_bounding_rect(start_angle, start_angle + included_angle);
    point ends[4];
    render_start_line(ends[0], ends[1]);
    render_end_line(ends[2], ends[3]);
    // Not by UnionRect: an extent of one point has no area there, and one at the origin counts as none.
    for (point const& p : ends) {
        extent.left = std::min(extent.left, p.x());
        extent.right = std::max(extent.right, p.x());
        extent.bottom = std::min(extent.bottom, p.y());
        extent.top = std::max(extent.top, p.y());
    }
    return extent;
}

idioms::array<point> Angle_Description::render_bezier() const {
    return arc.render_bezier(start_angle, start_angle + included_angle);
}

void Angle_Description::render_start_line(point& p, point& q) const {
    render_witness_line(arc, start_angle, start_line_near, start_line_far, p, q);
}

void Angle_Description::render_end_line(point& p, point& q) const {
    render_witness_line(arc, start_angle + included_angle, end_line_near, end_line_far, p, q);
}

void Angle_Description::render_arrow_head(point& tip, point& left, point& right) const {
    point const end = at_angle(start_angle + included_angle);
    double const x = end.x(), y = end.y();

    // The barbs grow with the arc, a tenth of its angle, which counts as pi / 8 to pi / 2; on a very short
    // arc they reach back to its middle.
    double s = std::copysign(std::clamp(std::fabs(included_angle), pi / 8, pi / 2), included_angle) / 10;
    if (std::fabs(included_angle) / 2 < std::fabs(s)) s = included_angle / 2;

    // The radial direction turned by -45 and by -135 degrees, sqrt(2) long: both sides of the way back along
    // the arc. A negative s turns them to the other side together with the sense of the arc.
    tip = end * arc;
    left = tip + point(false, x + y, y - x) * arc * s;
    right = tip + point(false, y - x, -x - y) * arc * s;
}

}  // namespace tvmath
