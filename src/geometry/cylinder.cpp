#include "tvmath/cylinder.h"

#include <cmath>

#include "axial_shape.h"
#include "direction_angles.h"
#include "tvmath/scalar.h"

inline namespace tvmath {
namespace {

// The coordinate axis most nearly perpendicular to n, the first one of equals.
point most_perpendicular_axis(point const& n) {
    unsigned int least = 1;
    for (unsigned int i = 2; i <= 3; ++i) {
        if (std::fabs(n[i]) < std::fabs(n[least])) least = i;
    }
    point axis(false, 0, 0, 0);
    axis[least] = 1;
    return axis;
}

transform cylinder_map(double radius, double height, point const& center, point axis) {
    axis.promote3d();
    axis.to_direction();
    point const n = normalize(axis);
    point const v = normalize(cross(n, most_perpendicular_axis(n))) * radius;
    return make_transform(center, cross(v, n), v, n * (height / 2));
}

// The end at `side` times half the axis, in the plane of the radial axes.
circle end_circle(cylinder const& c, double side) {
    if (c.is_trivial()) return circle(c);
    point const u = c.basis(1), v = c.basis(2);
    return circle(make_transform(c.basis(0) + c.basis(3) * side, u, v, normalize(cross(u, v))));
}

}  // namespace

cylinder::cylinder(double radius, double height, point center, point axis)
    : transform(cylinder_map(radius, height, center, axis)) {}

double cylinder::area() const {
    return perimeter() * height();
}

double cylinder::volume() const {
    return pi * sqr(radius()) * height();
}

double cylinder::pitch() const {
    return pitch_of(basis(3));
}

double cylinder::yaw() const {
    return yaw_of(basis(3));
}

circle cylinder::get_top() const {
    return end_circle(*this, 1);
}

circle cylinder::get_bottom() const {
    return end_circle(*this, -1);
}

CRealRect cylinder::get_bounding_rect() const {
    return ends_rect(get_top(), get_bottom());
}

namespace {

// How the lateral surface c + cos(t) u + sin(t) v + s w lies to the viewer at Z = infinity.
struct cylinder_view {
    point center, u, v, w;
    /// Where the surface is seen edge-on, on the right of the axis; on the left it is half a turn from there.
    double right_parameter;
    /// Turns of the parameter are anticlockwise about w: 1, or -1.
    double handedness;
    /// Above 0 when the end at w faces the viewer, below 0 when the other does.
    double top_facing;
    bool end_on;

    explicit cylinder_view(transform t) {
        t.promote3d();
        center = t.basis(0);
        u = t.basis(1);
        v = t.basis(2);
        w = t.basis(3);
        // The surface's normal is the product of the tangents cos(t) v - sin(t) u and w. Its z is
        // cos(t) (v x w)_z - sin(t) (u x w)_z, and 0 here:
        right_parameter = atan2(cross2d(v, w), cross2d(u, w));
        handedness = t.is_left_handed() ? -1 : 1;
        top_facing = handedness * cross2d(u, v);
        end_on = is_along_z(normalize(w));
    }

    point radial(double parameter) const { return cos(parameter) * u + sin(parameter) * v; }

    ellipse end(double side) const { return ellipse(make_transform(center + side * w, u, v, w)); }

    // All of an end, or what is left of it behind the body: the half nearer to the viewer, from left to
    // right.
    idioms::array<point> render_end(double side, bool visible_only) const {
        // Chords within 1e-3 of the radius; asked of the unit circle, so that a radius of 0 does no harm.
        int const n = ellipse(1.0).rendering_density(1e-3);
        if (!visible_only || side * top_facing >= 0) {
            curve closed = end(side).render_ellipse(n);
            closed.append(curve(*closed.begin()));
            return closed;
        }
        if (end_on) return {};
        return end(side).render_ellipse(n / 2, right_parameter - handedness * pi, right_parameter);
    }

    idioms::array<point> render_silhouette(double side) const {
        if (end_on) return {};
        point const d = side * radial(right_parameter);
        return curve(center + (d - w), center + (d + w));
    }
};

}  // namespace

void cylinder::render_cylinder(idioms::array<point>& top, idioms::array<point>& bottom,
                               idioms::array<point>& left, idioms::array<point>& right,
                               bool visible_only) const {
    cylinder_view const view(*this);
    top = view.render_end(1, visible_only);
    bottom = view.render_end(-1, visible_only);
    left = view.render_silhouette(-1);
    right = view.render_silhouette(1);
}

}  // namespace tvmath
