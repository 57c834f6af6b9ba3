#include "tvmath/angle.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "constructions/flat_ellipse.h"
#include "tvmath/intersection.h"
#include "tvmath/scalar.h"

inline namespace tvmath {
namespace {

// Below this angle the directions count as one, and both midpoints are told by the first.
constexpr double nearly_parallel = 5 * pi / 180;

double wrapped(double angle) {
    return modulus(angle, -pi, pi);
}

point direction(xyz const& d) {
    return point(false, d.x, d.y, d.z);
}

// A line as it is seen from the vertex.
struct leg {
    xyz ray;                      // unit vector
    double middle = 0, half = 0;  // where the middle of the line lies along the ray, and half of its length

    leg() = default;
    leg(line const& l, xyz const& vertex) : ray(unit(xyz(l.basis(1)))), half(length(xyz(l.basis(1)))) {
        middle = dot(xyz(l.basis(0)) - vertex, ray);
    }
    void turn() {
        ray = -1.0 * ray;
        middle = -middle;
    }
};

struct vertex_and_legs {
    xyz vertex;
    leg first, second;
    xyz normal;

    // Signed, as seen against the normal.
    double included() const {
        return std::atan2(dot(cross(first.ray, second.ray), normal), dot(first.ray, second.ray));
    }
};

bool find_legs(line const& a, line const& b, vertex_and_legs& found) {
    if (is_empty(a) || is_empty(b)) return false;
    point const meeting = point_intersect(a, b);
    if (meeting.is_trivial()) return false;
    found.vertex = xyz(meeting);
    found.first = leg(a, found.vertex);
    found.second = leg(b, found.vertex);
    found.normal = unit(cross(found.first.ray, found.second.ray));
    if (found.normal.z < 0) found.normal = -1.0 * found.normal;
    return dot(found.normal, found.normal) > 0;
}

// Each ray runs towards the middle of its line.
void turn_to_middles(vertex_and_legs& v) {
    leg &one = v.first, &two = v.second;
    if (length(cross(one.ray, two.ray)) < nearly_parallel && dot(one.ray, two.ray) < 0) two.turn();
    if (one.middle < 0) one.turn();
    if (two.middle < 0) two.turn();
}

// The record with its first axis along the bisector. False when it has no extent.
bool fill(vertex_and_legs const& v, double included, Angle_Description& angle) {
    leg const &one = v.first, &two = v.second;
    double const most = std::max(
        {one.middle + one.half, two.middle + two.half, std::fabs(one.middle) + std::fabs(two.middle)});
    double const radius = most / 2, c = std::cos(included / 2), s = std::sin(included / 2);
    if (!(radius > 0) || !std::isfinite(radius) || !v.vertex.is_finite()) return false;
    xyz const across = cross(v.normal, one.ray), bisector = unit(c * one.ray + s * across);
    Angle_Description made;
    made.arc = circle(transform::dilation(radius) *
                      make_transform(v.vertex.location(true), direction(bisector),
                                     direction(cross(v.normal, bisector)), direction(v.normal)));
    made.included_angle = included;
    made.start_angle = wrapped(-included / 2);
    made.start_line_near = (one.middle - one.half) / radius;
    made.start_line_far = (one.middle + one.half) / radius;
    made.end_line_near = (two.middle - two.half) / radius;
    made.end_line_far = (two.middle + two.half) / radius;
    angle = made;
    return true;
}

// Unit vector of a ray of the record, in space.
xyz ray_of(Angle_Description const& a, double angle) {
    return unit(xyz(point(false, std::cos(angle), std::sin(angle)) * a.arc));
}

void reverse_witness(double& near, double& far) {
    std::swap(near, far);
    near = -near;
    far = -far;
}

}  // namespace

bool angle_intersect(line first, line second, Angle_Description& angle) {
    vertex_and_legs v;
    angle = Angle_Description();
    if (!find_legs(first, second, v)) return false;
    turn_to_middles(v);
    if (!fill(v, v.included(), angle)) return false;
    if (angle.included_angle < 0) change_sign(angle);
    return true;
}

bool angle_intersect(line first, line second, Angle_Description const& reference, Angle_Description& angle) {
    Angle_Description old = reference;
    angle = Angle_Description();
    vertex_and_legs v;
    if (!find_legs(first, second, v)) return false;
    bool const positive = old.included_angle >= 0;
    if (old.sign_changed) change_sign(old);  // so that its start is the first line again
    if (dot(v.normal, xyz(old.arc.basis(3))) < 0) v.normal = -1.0 * v.normal;
    if (dot(v.first.ray, ray_of(old, old.start_angle)) < 0) v.first.turn();
    if (dot(v.second.ray, ray_of(old, old.start_angle + old.included_angle)) < 0) v.second.turn();
    double included = v.included();
    if (std::fabs(old.included_angle) > pi) included += included < 0 ? 2 * pi : -2 * pi;
    if (!fill(v, included, angle)) return false;
    if ((angle.included_angle >= 0) != positive) change_sign(angle);
    return true;
}

void change_sign(Angle_Description& angle) {
    angle.start_angle = wrapped(angle.start_angle + angle.included_angle);
    angle.included_angle = -angle.included_angle;
    angle.sign_changed = !angle.sign_changed;
    std::swap(angle.start_line_near, angle.end_line_near);
    std::swap(angle.start_line_far, angle.end_line_far);
}

void get_angle_solutions(Angle_Description const& angle, std::vector<Angle_Description>& solutions) {
    std::vector<Angle_Description> four(4, angle);
    Angle_Description &supplement = four[1], &vertical = four[2], &reflex = four[3];
    double const sense = angle.included_angle < 0 ? -1 : 1;
    supplement.included_angle -= sense * pi;
    supplement.start_angle = wrapped(angle.start_angle + pi);
    vertical.start_angle = supplement.start_angle;
    reflex.included_angle -= sense * 2 * pi;
    // Behind the vertex the extents of a line count from the other side.
    reverse_witness(supplement.start_line_near, supplement.start_line_far);
    reverse_witness(vertical.start_line_near, vertical.start_line_far);
    reverse_witness(vertical.end_line_near, vertical.end_line_far);
    for (Angle_Description& a : four) {
        double const bisector = a.start_angle + a.included_angle / 2;
        if (bisector != 0) {
            a.arc = circle(transform::rotation(bisector) * a.arc);
            a.start_angle = wrapped(a.start_angle - bisector);
        }
        if ((a.included_angle < 0) != (angle.included_angle < 0)) change_sign(a);
    }
    solutions.swap(four);
}

}  // namespace tvmath
