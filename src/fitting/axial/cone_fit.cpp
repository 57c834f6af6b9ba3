#include "tvmath/cone_fit.h"

#include <algorithm>
#include <cmath>
#include <span>

#include "axial_fit.h"

inline namespace tvmath {
namespace {

// The nominal cone without its ends; nothing for the null cone and for one without an axis.
void add_nominal(cone const& nominal, local_points const& local, axial_task& task) {
    xyz const base(nominal.base), top(nominal.top), axis = unit(top - base);
    double const mean_radius = (nominal.base_radius + nominal.top_radius) / 2, slope = nominal.slope();
    if (nominal.is_trivial() || dot(axis, axis) == 0.0 || !std::isfinite(mean_radius + slope)) return;
    axial_surface s = axial_surface_about(local.to_local(0.5 * (base + top)), axis);
    s.angle = std::atan(slope);
    s.offset = std::cos(s.angle) * mean_radius / local.scale;
    task.starts.push_back(s);
}

// `sense` is the direction that the axis is to point to; without one the base is the wider end.
cone fit(local_points const& local, axial_task const& task, xyz const& sense) {
    axial_fit_result const fitted = fit_axial_surface(local, task);
    if (!fitted.found) return cone();
    axial_surface const& s = fitted.surface;
    double low = fitted.low, high = fitted.high;
    if (s.radius_at(low) < 0) low = -s.offset / std::sin(s.angle);
    if (s.radius_at(high) < 0) high = -s.offset / std::sin(s.angle);
    double const along = dot(s.w, sense);
    if (along < 0 || (along == 0.0 && s.angle > 0)) std::swap(low, high);
    auto const end = [&](double z) { return local.from_local(s.origin + z * s.w).location(true); };
    auto const radius = [&](double z) { return std::max(0.0, s.radius_at(z) * local.scale); };
    cone result(end(low), end(high), radius(low), radius(high));
    // From the surface and not from the ends, which far from the origin are rounded.
    xyz const w = low < high ? s.w : -1.0 * s.w;
    result.axis = point(false, w.x, w.y, w.z);
    return result;
}

cone fit_nominal(point const* center, std::span<point const> points, cone const& nominal) {
    local_points const local = make_local(points);
    axial_task task;
    task.free.angle = true;
    if (!hold_axis(task, local, center, nullptr)) return cone();
    add_nominal(nominal, local, task);
    return fit(local, task, task.starts.empty() ? xyz() : task.starts[0].w);
}

cone fit_parallel(point const* center, point const& axis, std::span<point const> points) {
    local_points const local = make_local(points);
    axial_task task;
    task.free.angle = true;
    return hold_axis(task, local, center, &axis) ? fit(local, task, task.axis) : cone();
}

}  // namespace

cone cone_fit(std::vector<point> const& points, cone nominal) {
    return fit_nominal(nullptr, points, nominal);
}

cone cone_fit(idioms::array<point> points, cone nominal) {
    return fit_nominal(nullptr, span_of(points), nominal);
}

cone cone_centered_fit(point center, std::vector<point> const& points, cone nominal) {
    return fit_nominal(&center, points, nominal);
}

cone cone_centered_fit(point center, idioms::array<point> points, cone nominal) {
    return fit_nominal(&center, span_of(points), nominal);
}

cone cone_parallel_fit(point axis, std::vector<point> const& points) {
    return fit_parallel(nullptr, axis, points);
}

cone cone_parallel_fit(point axis, idioms::array<point> points) {
    return fit_parallel(nullptr, axis, span_of(points));
}

cone cone_parallel_centered_fit(point center, point axis, std::vector<point> const& points) {
    return fit_parallel(&center, axis, points);
}

cone cone_parallel_centered_fit(point center, point axis, idioms::array<point> points) {
    return fit_parallel(&center, axis, span_of(points));
}

}  // namespace tvmath
