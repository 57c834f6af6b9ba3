#include "tvmath/ellipse_fit.h"

#include "orthogonal_ellipse.h"
#include "tvmath/quick_fit.h"

inline namespace tvmath {
namespace {

// As many points as unknowns have one ellipse, that of the start. Else the best one near it, at the height
// and in the dimension of the start's centre.
ellipse best_ellipse(point_span points, std::size_t unknowns, point const& center, point const& major,
                     point const& minor, planar_ellipse const* circle) {
    planar_points const local = relative_to(center, points);
    if (local.is_empty()) return ellipse();
    planar_ellipse e{{0, 0}, major.length2d(), minor.length2d(), major.angle2d()};
    bool const centered = unknowns == 3;
    if (points.size() > unknowns && !refine_ellipse(local.at, centered, e, circle)) return ellipse();
    ellipse const found(e.a, e.b, e.angle, local.place(e.center));
    return _isnan(found, true) ? ellipse() : found;
}

template <class list>
ellipse fit(list const& points) {
    point center, major, minor, middle;
    if (!ellipse_quick_fit(points, center, major, minor)) return ellipse();
    double radius = 0;
    bool const has_circle = circle_quick_fit(points, middle, radius);
    planar_ellipse const circle{{middle.x() - center.x(), middle.y() - center.y()}, radius, radius, 0};
    ellipse found = best_ellipse(span_of(points), 5, center, major, minor, has_circle ? &circle : nullptr);
    if (!found.is_trivial() && points[0].is_2d()) found.project2d();
    return found;
}

template <class list>
ellipse fit_centered(point const& given, list const& points) {
    point center, major, minor;
    if (!ellipse_quick_centered_fit(given, points, center, major, minor)) return ellipse();
    return best_ellipse(span_of(points), 3, center, major, minor, nullptr);
}

}  // namespace

ellipse ellipse_fit(std::vector<point> const& points) {
    return fit(points);
}

ellipse ellipse_fit(idioms::array<point> points) {
    return fit(points);
}

ellipse ellipse_centered_fit(point center, std::vector<point> const& points) {
    return fit_centered(center, points);
}

ellipse ellipse_centered_fit(point center, idioms::array<point> points) {
    return fit_centered(center, points);
}

}  // namespace tvmath
