#include "tvmath/cylinder_fit.h"

#include <cmath>
#include <span>

#include "axial_fit.h"

inline namespace tvmath {
namespace {

// The one of two opposite directions whose component of largest magnitude is positive.
xyz positive(xyz const& w) {
    double const x = std::fabs(w.x), y = std::fabs(w.y), z = std::fabs(w.z);
    double const most = x >= y && x >= z ? w.x : y >= z ? w.y : w.z;
    return most < 0 ? -1.0 * w : w;
}

cylinder fit(std::span<point const> points, point const* center, point const* axis) {
    local_points const local = make_local(points);
    axial_task task;
    if (!hold_axis(task, local, center, axis)) return cylinder();
    axial_fit_result const fitted = fit_axial_surface(local, task);
    if (!fitted.found) return cylinder();
    axial_surface const& s = fitted.surface;
    xyz const middle = s.origin + ((fitted.low + fitted.high) / 2) * s.w, w = axis ? s.w : positive(s.w);
    return cylinder(s.offset * local.scale, (fitted.high - fitted.low) * local.scale,
                    local.from_local(middle).location(true), point(false, w.x, w.y, w.z));
}

}  // namespace

cylinder cylinder_fit(idioms::array<point> points) {
    return fit(span_of(points), nullptr, nullptr);
}

cylinder cylinder_parallel_fit(point axis, std::vector<point> const& points) {
    return fit(points, nullptr, &axis);
}

cylinder cylinder_parallel_fit(point axis, idioms::array<point> points) {
    return fit(span_of(points), nullptr, &axis);
}

cylinder cylinder_parallel_centered_fit(point center, point axis, std::vector<point> const& points) {
    return fit(points, &center, &axis);
}

cylinder cylinder_parallel_centered_fit(point center, point axis, idioms::array<point> points) {
    return fit(span_of(points), &center, &axis);
}

}  // namespace tvmath
