#pragma once

#include <cmath>
#include <limits>
#include <vector>

#include "flat_ellipse.h"
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

    void add(double radius, xy const& at, double height) {
        xyz const center = origin_ + xyz(at.x, at.y, height);
        if (!center.is_finite() || !std::isfinite(radius) || !(radius > 0)) return;
        found_.push_back(circle(radius, center.location(solid_)));
    }

    /// Fills the list of the caller and returns the memory of the choice.
    template <class memory>
    idioms::ref<multi_solution> remembered(std::vector<Circle_Description>& circles) const {
        circles.resize(found_.size());
        for (std::size_t i = 0; i < found_.size(); ++i) circles[i].geometry = found_[i];
        return idioms::ref<multi_solution>(new memory(found_));
    }

private:
    bool solid_;
    xyz origin_;
    std::vector<circle> found_;
};

}  // namespace tvmath
