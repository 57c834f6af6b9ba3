#include "tvmath/cylinder_fit.h"

#include <cmath>
#include <span>

#include "axial_fit.h"

inline namespace tvmath {
namespace {

using point_span = std::span<point const>;

point_span span_of(idioms::array<point> const& points) {
    return {points.begin(), points.end()};
}

cylinder fit(local_points const& local, axial_task const& task) {
    axial_fit_result const fitted = fit_axial_surface(local, task);
    if (!fitted.found) return cylinder();
    axial_surface const& s = fitted.surface;
    xyz const middle = s.origin + ((fitted.low + fitted.high) / 2) * s.w;
    // A direction found is two; the one with a positive largest component is taken.
    double const most = std::fabs(s.w.x) >= std::fabs(s.w.y) && std::fabs(s.w.x) >= std::fabs(s.w.z) ? s.w.x
                        : std::fabs(s.w.y) >= std::fabs(s.w.z)                                       ? s.w.y
                                                                                                     : s.w.z;
    xyz const w = task.free.tilt && most < 0 ? -1.0 * s.w : s.w;
    return cylinder(s.offset * local.scale, (fitted.high - fitted.low) * local.scale,
                    local.from_local(middle).location(true), point(false, w.x, w.y, w.z));
}

cylinder fit_parallel(point const* center, point const& axis, point_span points) {
    local_points const local = make_local(points);
    axial_task task;
    task.axis = unit(xyz(axis));
    if (local.points.empty() || dot(task.axis, task.axis) == 0.0) return cylinder();
    task.free.shift = center == nullptr;
    if (center) {
        if (center->is_trivial() || !xyz(*center).is_finite()) return cylinder();
        task.center = local.to_local(xyz(*center));
    }
    return fit(local, task);
}

}  // namespace

cylinder cylinder_fit(idioms::array<point> points) {
    axial_task task;
    task.free = {true, true, false};
    return fit(make_local(span_of(points)), task);
}

cylinder cylinder_parallel_fit(point axis, std::vector<point> const& points) {
    return fit_parallel(nullptr, axis, points);
}

cylinder cylinder_parallel_fit(point axis, idioms::array<point> points) {
    return fit_parallel(nullptr, axis, span_of(points));
}

cylinder cylinder_parallel_centered_fit(point center, point axis, std::vector<point> const& points) {
    return fit_parallel(&center, axis, points);
}

cylinder cylinder_parallel_centered_fit(point center, point axis, idioms::array<point> points) {
    return fit_parallel(&center, axis, span_of(points));
}

}  // namespace tvmath
