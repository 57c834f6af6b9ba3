#include <cstddef>

#include "measured_path.h"
#include "spline_least_squares.h"
#include "tvmath/path_fit.h"

inline namespace tvmath {
namespace {

template <class list>
curve fit_along(list const& points, bool closed) {
    measured_path const path = prepare_path(span_of(points), closed);
    if (path.given.size() < least_points_along) return bezier_fit(points, closed);
    std::vector<xyz> const controls = to_bezier(spline_along(path.local, closed, path.is_solid));
    curve result(static_cast<unsigned int>(controls.size()));
    point* to = result.lazycopy_begin();
    for (xyz const& p : controls) *to++ = path.outside(p);
    return result;
}

}  // namespace

curve bezier_least_squares_fit(std::vector<point> const& points, bool closed) {
    return fit_along(points, closed);
}

curve bezier_least_squares_fit(idioms::array<point> points, bool closed) {
    return fit_along(points, closed);
}

}  // namespace tvmath
