#pragma once

#include <cmath>
#include <limits>
#include <vector>

#include "constructions/flat_ellipse.h"
#include "tvmath/circle.h"
#include "tvmath/geometry_description.h"
#include "tvmath/line.h"
#include "tvmath/multi_solution.h"

inline namespace tvmath {

/// A line as it is seen along Z, relative to `origin`.
struct flat_line {
    xy at, u;             // u is 0 for a line that has no direction in XY
    double height, rise;  // z at `at`, and what it gains for a step of u

    flat_line(line const& l, xyz const& origin) {
        xyz const d(l.basis(1)), from(l.basis(0));
        u = xy(unit(xyz(d.x, d.y, 0)));
        at = xy(from - origin);
        height = from.z;
        rise = d.z == 0 ? 0 : d.z / std::hypot(d.x, d.y);
    }
    bool has_direction() const { return dot(u, u) > 0; }
    /// Positive to the left of the direction.
    double distance(xy const& p) const { return cross(u, p - at); }
    /// z of the line beside p.
    double height_at(xy const& p) const { return height + rise * dot(p - at, u); }
};

/// The place at the given distances, positive on the left, from two lines; from `start`, which need not be
/// near. The second step leaves errors of the size of the rounding of the place itself, also where the lines
/// are nearly parallel and meet far away.
inline xy place_beside(flat_line const& a, double da, flat_line const& b, double db, xy const& start) {
    double const sine = cross(a.u, b.u);
    xy at = start;
    for (int step = 0; step < 2; ++step) {
        at = at + ((da - a.distance(at)) / sine) * b.u - ((db - b.distance(at)) / sine) * a.u;
    }
    return at;
}

/// Below this sine of their angle two lines are parallel, as for `point_intersect`: beyond, where they meet
/// is a matter of rounding.
inline constexpr double parallel_sine = 3e-8;

/// What rounding can do to coordinates of this size.
inline double rounding_at(double size) {
    return 8 * std::numeric_limits<double>::epsilon() * size;
}

/// The circles that a construction finds, in its order.
class circle_answers {
public:
    /// `solid`: whether the circles are 3D. Centres are relative to `origin`.
    circle_answers(bool solid, xyz const& origin) : solid_(solid), origin_(origin.x, origin.y, 0) {}

    /// Nothing for a radius of 0 and for numbers that are not finite.
    void add(double radius, xy const& at, double height);

    /// Fills the list of the caller and returns the memory of the choice.
    template <class memory>
    idioms::ref<multi_solution> remembered(std::vector<Circle_Description>& circles) const {
        fill(circles);
        return idioms::ref<multi_solution>(new memory(found_));
    }

private:
    void fill(std::vector<Circle_Description>& circles) const;

    bool solid_;
    xyz origin_;
    std::vector<circle> found_;
};

}  // namespace tvmath
