#include "cubic_spline.h"
#include "measured_path.h"
#include "path_through.h"
#include "tvmath/path_fit.h"

inline namespace tvmath {
namespace {

curve interpolate(std::span<point const> points, bool closed) {
    measured_path const path = prepare_path(points, closed);
    if (path.is_empty()) return curve();
    std::vector<double> const steps = chord_lengths(path.local, closed);
    spline_ends const ends = closed ? spline_ends::periodic : spline_ends::not_a_knot;
    return path_through(path, steps, spline_slopes(path.local, steps, ends));
}

}  // namespace

curve bezier_fit(std::vector<point> const& points, bool closed) {
    return interpolate(points, closed);
}

curve bezier_fit(idioms::array<point> points, bool closed) {
    return interpolate(span_of(points), closed);
}

}  // namespace tvmath
