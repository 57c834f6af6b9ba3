#include "tvmath/geometry_fitter.h"

inline namespace tvmath {
namespace geometry_fitter {
namespace {

bool is_place(point const& p) {
    return p.is_3d() && p.is_location();
}

}  // namespace

constraint::~constraint() = default;

bool centered_cnst::is_valid() const {
    return is_place(center);
}

bool through_cnst::is_valid() const {
    return is_place(place);
}

bool tangent_cnst::is_valid() const {
    return touched.is_3d();
}

bool parallel_cnst::is_valid() const {
    return direction.is_3d();
}

bool perpendicular_cnst::is_valid() const {
    return direction.is_3d();
}

fit_cnst::fit_cnst(std::vector<point> const& list) : points(list) {
    if (points.empty()) points.emplace_back();
}

bool fit_cnst::is_valid() const {
    bool all = true;
    // Without a branch for each point: a list with a fault in it may take as long as a good one.
    for (point const& p : points) all &= static_cast<bool>(p.is_3d() & (p[0] != 0.0));
    return all;
}

constraint* centered(point p) {
    return new centered_cnst(p);
}
std::type_info const& centered() {
    return typeid(centered_cnst);
}

constraint* through(point p) {
    return new through_cnst(p);
}
std::type_info const& through() {
    return typeid(through_cnst);
}

constraint* tangent(line l) {
    return new tangent_cnst(l);
}
constraint* tangent(plane p) {
    return new tangent_cnst(p);
}
std::type_info const& tangent() {
    return typeid(tangent_cnst);
}

constraint* parallel(line l) {
    return new parallel_cnst(l);
}
std::type_info const& parallel() {
    return typeid(parallel_cnst);
}

constraint* perpendicular(line l) {
    return new perpendicular_cnst(l);
}
std::type_info const& perpendicular() {
    return typeid(perpendicular_cnst);
}

constraint* fit(std::vector<point> const& points) {
    return new fit_cnst(points);
}
constraint* fit(idioms::array<point> points) {
    return new fit_cnst(std::vector<point>(points.begin(), points.end()));
}
std::type_info const& fit() {
    return typeid(fit_cnst);
}

}  // namespace geometry_fitter
}  // namespace tvmath
