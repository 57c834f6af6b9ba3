#include "tvmath/feature_fit.h"

#include <cmath>

#include "geometry/extent.h"
#include "geometry/xyz.h"
#include "geometry_fitter/circle_lsf.h"
#include "geometry_fitter/sphere_lsf.h"
#include "point_lists.h"
#include "point_span.h"
#include "tvmath/quick_fit.h"

inline namespace tvmath {
namespace {

using geometry_fitter::refine_circle;
using geometry_fitter::refine_sphere;

// A NaN or an infinity among the coordinates reaches each of these numbers.
bool all_finite(point const& p) {
    return xyz(p).is_finite();
}

template <class shape>
shape finite_shape(double radius, point const& center) {
    return std::isfinite(radius) && all_finite(center) ? shape(radius, center) : shape();
}

template <class list>
circle fit_circle(list const& points) {
    point_span const all = span_of(points);
    unsigned int const distinct = count_distinct(all, 3);
    bool const exact = distinct == 3;
    point center;
    double radius = 0;
    if (distinct < 3 || !circle_quick_fit(points, center, radius)) return circle();
    // Where a 2D point follows a 3D one, the centre is 2D.
    if (!exact && (center.dimension() < all[0].dimension() || !refine_circle(all, center, radius))) {
        return circle();
    }
    // The sums of points on one line may overflow instead of vanishing.
    return finite_shape<circle>(radius, center);
}

// Mean distance of the points from `center`, a NaN when there is a trivial point or none at all. A distance
// takes x, y and z, or x and y alone.
double mean_distance(xyz const& center, point_span points, bool in_space) {
    double sum = 0;
    for (point const& p : points) {
        if (p.is_trivial()) return domain_error_value;
        xyz const d = xyz(p) - center;
        sum += std::sqrt(d.x * d.x + d.y * d.y + (in_space ? d.z * d.z : 0.0));
    }
    return sum / static_cast<double>(points.size());
}

template <class shape>
shape fit_about(point const& center, point_span points, bool in_space) {
    if (center.is_trivial()) return shape();
    return finite_shape<shape>(mean_distance(xyz(center), points, in_space), center);
}

}  // namespace

line line_fit(idioms::array<point> points) {
    unsigned int const n = points.capacity();
    point const* const p = points.begin();
    if (n == 2 && !p[0].is_trivial() && !p[1].is_trivial()) {
        point first = p[0], second = p[1];
        first.to_location();
        second.to_location();
        return all_finite(first - second) && all_finite(first + second) ? line(first, second) : line();
    }
    point center, direction;
    if (!line_quick_fit(points, center, direction)) return line();

    interval along{0, 0};  // the centroid belongs to the line
    for (unsigned int i = 0; i < n; ++i) {
        along.widen((p[i].x() - center.x()) * direction.x() + (p[i].y() - center.y()) * direction.y());
    }
    point const middle = center + direction * ((along.low + along.high) / 2);
    point half = direction * ((along.high - along.low) / 2);
    if (dot2d(p[n - 1] - p[0], half) < 0.0) half = -half;
    return all_finite(middle) && all_finite(half) ? line(middle, half) : line();
}

circle circle_fit(std::vector<point> const& points) {
    return fit_circle(points);
}

circle circle_fit(idioms::array<point> points) {
    return fit_circle(points);
}

circle circle_2pt_fit(idioms::array<point> points) {
    if (points.capacity() != 2) return circle_fit(points);
    point const center = point_fit(points);
    if (center.is_trivial()) return circle();
    return finite_shape<circle>(distance2d(points[0], points[1]) / 2, center);
}

circle circle_centered_fit(point center, std::vector<point> const& points) {
    return fit_about<circle>(center, points, false);
}

circle circle_centered_fit(point center, idioms::array<point> points) {
    return fit_about<circle>(center, span_of(points), false);
}

sphere sphere_fit(std::vector<point> const& points) {
    unsigned int const distinct = count_distinct(points, 4);
    bool const exact = distinct == 4;
    point center;
    double radius = 0;
    if (distinct < 4 || !sphere_quick_fit(points, center, radius)) return sphere();
    if (!exact && !refine_sphere(points, center, radius)) return sphere();
    return finite_shape<sphere>(radius, center);
}

sphere sphere_centered_fit(point center, std::vector<point> const& points) {
    return fit_about<sphere>(center, points, true);
}

}  // namespace tvmath
