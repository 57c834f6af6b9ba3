#include "tvmath/ellipse_fit.h"

#include "fitting/planar/planar_points.h"
#include "tvmath/geometry_fitter.h"

inline namespace tvmath {
namespace {

// The fitter takes points in space. Empty when a point is trivial: raising it would make it the origin.
std::vector<point> raised(std::span<point const> points) {
    std::vector<point> in_space(points.begin(), points.end());
    for (point& p : in_space) {
        if (p.is_trivial()) return {};
        p.promote3d();
        p.to_location();
    }
    return in_space;
}

ellipse result_of(geometry_fitter::ellipse_fitter& fitter, bool is_flat) {
    Ellipse_Description found;
    if (!fitter.result(found)) return ellipse();
    if (is_flat) found.geometry.project2d();
    return found.geometry;
}

ellipse fit(std::span<point const> points) {
    if (points.size() < 5) return ellipse();
    geometry_fitter::ellipse_fitter fitter;
    fitter.add(geometry_fitter::fit(raised(points)));
    return result_of(fitter, points[0].is_2d());
}

ellipse fit_centered(point center, std::span<point const> points) {
    if (points.size() < 3 || center.is_trivial()) return ellipse();
    bool const is_flat = center.is_2d();
    center.promote3d();
    center.to_location();
    geometry_fitter::ellipse_fitter fitter;
    fitter.add(geometry_fitter::centered(center));
    fitter.add(geometry_fitter::fit(raised(points)));
    return result_of(fitter, is_flat);
}

}  // namespace

ellipse ellipse_fit(std::vector<point> const& points) {
    return fit(points);
}

ellipse ellipse_fit(idioms::array<point> points) {
    return fit(span_of(points));
}

ellipse ellipse_centered_fit(point center, std::vector<point> const& points) {
    return fit_centered(center, points);
}

ellipse ellipse_centered_fit(point center, idioms::array<point> points) {
    return fit_centered(center, span_of(points));
}

}  // namespace tvmath
