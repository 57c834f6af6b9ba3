#include <cmath>
#include <stdexcept>

#include "reference_set.h"

// A point moved along the normal of a feature, and its twin moved as far the other way, have opposite
// residuals and the same derivatives: in the normal equations they cancel, and the feature they were moved
// from is that of least squares, as long as they scatter little. All places are integers on features with
// Pythagorean directions, scaled by a power of two, so no point is rounded.
namespace {

using triple = std::array<double, 3>;

triple operator+(triple const& a, triple const& b) {
    return {a[0] + b[0], a[1] + b[1], a[2] + b[2]};
}

triple operator*(double s, triple const& a) {
    return {s * a[0], s * a[1], s * a[2]};
}

double length(triple const& a) {
    return std::sqrt(a[0] * a[0] + a[1] * a[1] + a[2] * a[2]);
}

// Axes at right angles, each of length 7.
constexpr triple u = {2, 3, 6}, v = {3, -6, 2}, w = {6, 2, -3};
constexpr double axis_length = 7;

struct surface_point {
    triple foot, normal;
};
using surface = std::vector<surface_point>;

// Integers on the circle of that radius whose angle is within `half_angle` of that of (1, 1).
std::vector<triple> circle_places(int radius, double half_angle = 4) {
    std::vector<triple> places;
    double const square = double(radius) * radius;
    for (int x = -radius; x <= radius; ++x) {
        double const y = std::sqrt(square - double(x) * x);
        if (y != std::floor(y)) continue;
        for (double const sign : {-1.0, 1.0}) {
            if (y == 0 && sign < 0) continue;
            if (std::fabs(std::atan2(sign * y - x, sign * y + x)) <= half_angle) {
                places.push_back({double(x), sign * y, 0});
            }
        }
    }
    return places;
}

// Integers on the sphere of that radius, no farther than `half_angle` from the direction (2, 3, 6).
surface sphere_places(int radius, double half_angle) {
    surface places;
    for (int x = -radius; x <= radius; ++x) {
        for (int y = -radius; y <= radius; ++y) {
            double const rest = double(radius) * radius - double(x) * x - double(y) * y, z = std::sqrt(rest);
            if (rest < 0 || z != std::floor(z)) continue;
            for (double const sign : {-1.0, 1.0}) {
                if (z == 0 && sign < 0) continue;
                triple const p = {double(x), double(y), sign * z};
                double const along = (2 * p[0] + 3 * p[1] + 6 * p[2]) / (7 * radius);
                if (along >= std::cos(half_angle) - 1e-12) places.push_back({p, p});
            }
        }
    }
    return places;
}

struct placement {
    char const* name;
    double size;  // to the next power of two
    triple origin;
};
constexpr triple here = {0, 0, 0}, far_off = {1048576, -524288, 262144};
constexpr placement placements[] = {{"tiny", 1e-3, here},
                                    {"tiny, far away", 1e-3, far_off},
                                    {"huge", 1e5, here},
                                    {"huge, far away", 1e5, far_off}};

// The points of a surface in their place. `scatter` is a power of two, by which normals are multiplied.
class builder {
public:
    builder(std::string const& name, std::string const& kind, placement const& at, double integer_size,
            double scatter = 0x1p-10)
        : origin_(at.origin),
          unit_(std::exp2(std::round(std::log2(at.size / integer_size)))),
          scatter_(scatter) {
        set.name = "constructed " + kind + ", " + name;
        set.kind = kind;
        set.origin = "pairs of points on either side of the feature, exact in binary";
        set.known_by = "construction: the residuals of each pair cancel in the normal equations";
    }

    void add(surface const& places, bool in_space) {
        double sum = 0, most = 0;
        for (surface_point const& s : places) {
            for (double const side : {-1.0, 1.0}) {
                triple const p = place(s.foot + side * scatter_ * s.normal);
                set.points.push_back(in_space ? point(true, p[0], p[1], p[2]) : point(true, p[0], p[1]));
            }
            double const residual = measure(scatter_ * length(s.normal));
            sum += 2 * residual * residual;
            most = std::max(most, residual);
        }
        set.answer["sum_sq"] = {sum};
        set.answer["res_pv"] = {2 * most};
    }

    void answer(char const* name, std::vector<double> const& values) { set.answer[name] = values; }
    double measure(double integer_length) const { return unit_ * integer_length; }
    triple place(triple const& p) const {
        triple const q = origin_ + unit_ * p;
        for (std::size_t i = 0; i < 3; ++i) {
            if ((q[i] - origin_[i]) / unit_ != p[i])
                throw std::logic_error(set.name + ": a point is rounded");
        }
        return q;
    }
    std::vector<double> place_2d(triple const& p) const { return {place(p)[0], place(p)[1]}; }
    std::vector<double> place_3d(triple const& p) const {
        triple const q = place(p);
        return {q.begin(), q.end()};
    }

    reference_set set;

private:
    triple origin_;
    double unit_, scatter_;
};

std::vector<double> direction(triple const& integer) {
    triple const d = (1 / length(integer)) * integer;
    return {d.begin(), d.end()};
}

reference_set circle_set(std::string const& name, placement const& at, std::vector<triple> const& places,
                         double scatter, double bound) {
    double const radius = length(places[0]);
    builder b(name, "circle", at, radius, scatter);
    surface on;
    for (triple const& p : places) on.push_back({p, p});
    b.add(on, false);
    b.answer("center", b.place_2d(here));
    b.answer("radius", {b.measure(radius)});
    b.set.bound = bound;
    return b.set;
}

reference_set sphere_set(std::string const& name, placement const& at, surface const& places, double bound) {
    double const radius = length(places[0].foot);
    builder b(name, "sphere", at, radius);
    b.add(places, true);
    b.answer("center", b.place_3d(here));
    b.answer("radius", {b.measure(radius)});
    b.set.bound = bound;
    return b.set;
}

reference_set line_set(placement const& at) {
    builder b(at.name, "line", at, 60);
    surface on;
    for (int i = 0; i <= 24; ++i) on.push_back({{3.0 * i, 4.0 * i, 0}, {-4, 3, 0}});
    b.add(on, false);
    b.answer("point", b.place_2d({36, 48, 0}));
    b.answer("direction", {0.6, 0.8});
    return b.set;
}

reference_set plane_set(std::string const& name, placement const& at, int half_length, int half_width) {
    builder b(name, "plane", at, axis_length * half_length);
    surface on;
    for (int i = -8; i <= 8; ++i) {
        for (int j = -half_width; j <= half_width; ++j) on.push_back({(i * half_length / 8) * u + j * v, w});
    }
    b.add(on, true);
    b.answer("point", b.place_3d(here));
    b.answer("normal", direction(w));
    return b.set;
}

// Half-axes `major` and `minor` times 325, the longer one along (3, 4).
reference_set ellipse_set(std::string const& name, placement const& at, double major, double minor) {
    builder b(name, "ellipse", at, 325 * major);
    auto const turned = [](double x, double y) { return triple{3 * x - 4 * y, 4 * x + 3 * y, 0}; };
    surface on;
    for (triple const& p : circle_places(65)) {
        on.push_back({turned(major * p[0], minor * p[1]), turned(minor * p[0], major * p[1])});
    }
    b.add(on, false);
    b.answer("center", b.place_2d(here));
    b.answer("semi_major", {b.measure(325 * major)});
    b.answer("semi_minor", {b.measure(325 * minor)});
    b.answer("angle", {std::atan2(4, 3)});
    return b.set;
}

reference_set cylinder_set(std::string const& name, placement const& at, std::vector<triple> const& places,
                           double bound) {
    double const radius = length(places[0]);
    builder b(name, "cylinder", at, axis_length * radius);
    surface on;
    for (int h = -2; h <= 2; ++h) {
        for (triple const& p : places) {
            triple const radial = p[0] * u + p[1] * v;
            on.push_back({radial + h * radius * w, radial});
        }
    }
    b.add(on, true);
    b.answer("axis_point", b.place_3d(here));
    b.answer("axis", direction(w));
    b.answer("radius", {b.measure(axis_length * radius)});
    b.set.bound = bound;
    return b.set;
}

// With its apex in the origin; 3 wide where it is 4 high.
reference_set cone_set(placement const& at) {
    int const r = 25;
    builder b(at.name, "cone", at, 20 * axis_length * r, 0x1p-8);
    surface on;
    for (int k = 1; k <= 5; ++k) {
        for (triple const& p : circle_places(r)) {
            triple const radial = p[0] * u + p[1] * v;
            on.push_back({k * (3.0 * radial + 4.0 * r * w), 4.0 * radial + -3.0 * r * w});
        }
    }
    b.add(on, true);
    b.answer("apex", b.place_3d(here));
    b.answer("axis", direction(w));
    b.answer("half_angle", {std::atan2(3, 4)});
    b.answer("axis_point", b.place_3d(3 * 4.0 * r * w));
    b.answer("radius_at_axis_point", {b.measure(3 * 3 * axis_length * r)});
    return b.set;
}

}  // namespace

std::vector<reference_set> constructed_sets() {
    double const weak = 1e-9, well = 1e-12, degree = std::atan2(0, -1) / 180;
    placement const unit = {"", 1, here}, unit_far = {"", 1, far_off};
    std::vector<triple> const most = circle_places(1105, 135 * degree),
                              arc = circle_places(160225, 2.5 * degree);
    std::vector<reference_set> sets;
    for (placement const& at : placements) sets.push_back(circle_set(at.name, at, most, 0x1p-10, well));
    sets.push_back(circle_set("scatter of 1 %", unit, most, 0x1p-7, well));
    sets.push_back(circle_set("no scatter, every point twice", unit, most, 0, well));
    sets.push_back(circle_set("arc of 5 degrees", unit, arc, 0x1p-14, weak));
    sets.push_back(circle_set("arc of 5 degrees, far away", unit_far, arc, 0x1p-14, weak));
    for (placement const& at : placements)
        sets.push_back(sphere_set(at.name, at, sphere_places(65, 120 * degree), well));
    sets.push_back(sphere_set("cap of 30 degrees", unit, sphere_places(325, 15 * degree), weak));
    sets.push_back(
        sphere_set("cap of 30 degrees, far away", unit_far, sphere_places(325, 15 * degree), weak));
    for (placement const& at : placements) sets.push_back(line_set(at));
    for (placement const& at : placements) sets.push_back(plane_set(at.name, at, 8, 4));
    sets.push_back(plane_set("strip 1000 times as long as wide", unit, 1000, 1));
    for (placement const& at : placements) sets.push_back(ellipse_set(at.name, at, 3, 2));
    sets.push_back(ellipse_set("10 times as long as wide", unit, 10, 1));
    for (placement const& at : placements) sets.push_back(cylinder_set(at.name, at, circle_places(65), well));
    sets.push_back(cylinder_set("sector of 30 degrees", unit, circle_places(1105, 15 * degree), weak));
    for (placement const& at : placements) sets.push_back(cone_set(at));
    return sets;
}
