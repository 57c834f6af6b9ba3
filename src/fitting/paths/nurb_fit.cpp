#include <cstddef>
#include <cstdint>

#include "cubic_spline.h"
#include "measured_path.h"
#include "spline_least_squares.h"
#include "tvmath/path_fit.h"

inline namespace tvmath {
namespace {

// Points picked one by one are meant; of a scanned contour each one has its noise.
constexpr std::size_t most_points_through = 100;

nurb to_nurb(measured_path const& path, cubic_bspline const& spline) {
    nurb result(4, static_cast<std::uint32_t>(spline.controls.size()));
    TQ3NURBCurveData& data = result;
    for (std::size_t i = 0; i < spline.controls.size(); ++i) {
        xyz const p = path.origin + path.unit * spline.controls[i];
        data.control_points[i] = {p.x, p.y, p.z, 1};
    }
    for (std::size_t i = 0; i < spline.knots.size(); ++i) data.knot_values[i] = spline.knots[i];
    return result;
}

nurb fit(std::span<point const> points, bool closed) {
    measured_path const path = prepare_path(points, closed);
    if (path.is_empty()) return nurb();
    if (path.given.size() > most_points_through) {
        return to_nurb(path, spline_along(path.local, closed, path.is_solid));
    }
    std::vector<double> const steps = chord_lengths(path.local, closed);
    spline_ends const ends = closed ? spline_ends::periodic : spline_ends::not_a_knot;
    return to_nurb(path, to_bspline(path.local, steps, spline_slopes(path.local, steps, ends), closed));
}

}  // namespace

nurb open_nurb_fit(std::vector<point> const& points) {
    return fit(points, false);
}

nurb open_nurb_fit(idioms::array<point> points) {
    return fit(span_of(points), false);
}

nurb closed_nurb_fit(std::vector<point> const& points) {
    return fit(points, true);
}

nurb closed_nurb_fit(idioms::array<point> points) {
    return fit(span_of(points), true);
}

}  // namespace tvmath
