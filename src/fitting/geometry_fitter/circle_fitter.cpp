#include <cmath>

#include "circle_lsf.h"
#include "constraint_list.h"
#include "fitting/angular_range.h"
#include "mean_distance.h"
#include "planar.h"

inline namespace tvmath {
namespace geometry_fitter {
namespace {

constexpr counting_rules rules = {
    .unknowns = 3, .centered = {2, any_number}, .through = {1, any_number}, .tangent = {1, any_number}};

double radius_about(point const& center, constraint* list) {
    if (auto const* c = next_of<through_cnst>(list)) return distance2d(center, c->place);
    if (auto const* c = next_of<tangent_cnst>(list)) {
        return distance2d(center, foot_on_line(center, c->touched));
    }
    return mean_distance(fit_points(list), [&](point const& p) { return distance2d(p, center); });
}

std::vector<double> angles_about(point const& center, constraint* list) {
    std::vector<double> angles;
    auto const add = [&](point const& p) { angles.push_back((p - center).angle2d()); };
    for (point const& p : through_points(list)) add(p);
    for (transform const& l : touched_shapes(list)) add(foot_on_line(center, l));
    for (point const& p : fit_points(list)) add(p);
    return angles;
}

}  // namespace

bool circle_fitter::can_add(std::type_info const& kind) const {
    return has_room(rules, first_, kind);
}

int circle_fitter::degrees_of_freedom() const {
    return redundancy(rules, first_);
}

bool circle_fitter::result(Geometry_Description& description) {
    if (degrees_of_freedom() < 0 || !prepare(first_)) return false;
    Circle_Description found;
    if (auto const* c = next_of<centered_cnst>(first_)) {
        found.geometry = circle(radius_about(c->center, first_), c->center);
    } else if (!least_squares_circle({fit_points(first_), through_points(first_), touched_shapes(first_)},
                                     found.geometry)) {
        return false;
    }
    return std::isfinite(found.geometry.radius()) && !_isnan(found.geometry) && description.assign(found);
}

bool arc_fitter::result(Geometry_Description& description) {
    Circle_Description whole;
    if (!circle_fitter::result(whole)) return false;
    point const center = whole.geometry.center();
    std::vector<double> const angles = angles_about(center, first_);
    // A single angle has a gap of 2 pi and keeps it as its range.
    double start = angles[0], end = start - 2 * pi;
    if (angles.size() > 1) angular_range(angles, start, end);
    double const mid = (start + end) / 2.0;
    Arc_Description found;
    found.circle = whole.geometry;
    found.circle.translate(-center);
    found.circle.rotate(mid);
    found.circle.translate(center);
    found.included_angle = (end - mid) - (start - mid);
    return description.assign(found);
}

}  // namespace geometry_fitter
}  // namespace tvmath
