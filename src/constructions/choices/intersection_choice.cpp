#include "tvmath/intersection_choice.h"

#include "constructions/flat_ellipse.h"
#include "tvmath/construction_choice.h"

inline namespace tvmath {
namespace {

using choice = idioms::ref<multi_solution>;

void set(std::vector<Point_Description>& places, idioms::array<point> const& found) {
    places.clear();
    for (point const& p : found) places.emplace_back().position = p;
}

// The choice between the two places found on a line, or the same choice for none.
choice along(line const& l, double sense, idioms::array<point> const& found,
             std::vector<Point_Description>& places) {
    set(places, found);
    point const direction = is_empty(l) ? point() : l.basis(1);
    return choice(new intersect_line_ellipse(sense * direction));
}

// The choice by place.
template <class kind>
choice among(idioms::array<point> const& found, std::vector<Point_Description>& places) {
    set(places, found);
    return choice(new kind(found));
}

// A line that turns through the direction of a generator lets one of its places run off to one end and come
// back from the other, on the other nappe. In the order of the line this exchanges both places, unless the
// order then is taken against the line: 1 while both are on one nappe, -1 while they are on both. The single
// place between is the first one, because the other one is away where the cone widens.
double sense_at(line const& l, cone const& c, idioms::array<point> const& found) {
    if (found.capacity() == 0) return 1;
    xyz const axis(c.axis);
    double const slope = c.slope();
    auto const radius_at = [&](point const& p) { return c.base_radius + slope * dot(xyz(p - c.base), axis); };
    double const first = radius_at(found[0]);
    double const other = found.capacity() == 1 ? slope * dot(xyz(l.basis(1)), axis) : radius_at(found[1]);
    return (first < 0) == (other < 0) ? 1 : -1;
}

}  // namespace

choice point_intersect(line l, sphere s, std::vector<Point_Description>& places) {
    return along(l, 1, point_intersect(l, s), places);
}

choice point_intersect(line l, cylinder c, std::vector<Point_Description>& places) {
    return along(l, 1, point_intersect(l, c), places);
}

choice point_intersect(line l, cone c, std::vector<Point_Description>& places) {
    idioms::array<point> const found = point_intersect(l, c);
    return along(l, sense_at(l, c, found), found, places);
}

choice point_intersect(line l, ellipse e, std::vector<Point_Description>& places) {
    set(places, point_intersect(l, e));
    point direction = is_empty(l) ? point() : l.basis(1);
    if (direction.is_3d()) direction.z() = 0;
    return choice(new intersect_line_ellipse(direction));
}

choice point_intersect(line l, curve c, std::vector<Point_Description>& places) {
    return among<intersect_curve>(point_intersect(l, c), places);
}

choice point_intersect(ellipse e1, ellipse e2, std::vector<Point_Description>& places) {
    return among<intersect_ellipse_ellipse>(point_intersect(e1, e2), places);
}

choice point_intersect(ellipse e, curve c, std::vector<Point_Description>& places) {
    return among<intersect_curve>(point_intersect(e, c), places);
}

choice point_intersect(curve a, curve b, std::vector<Point_Description>& places) {
    return among<intersect_curve>(point_intersect(a, b), places);
}

}  // namespace tvmath
