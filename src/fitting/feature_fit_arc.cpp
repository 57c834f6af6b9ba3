#include <cmath>

#include "angular_range.h"
#include "point_span.h"
#include "tvmath/feature_fit.h"
#include "tvmath/quick_fit.h"
#include "tvmath/scalar.h"

inline namespace tvmath {
namespace {

// The range of the points' angles about `center`. False for no points, a trivial point, and an angle that is
// not a number.
bool range_of_points(point const& center, point_span points, double& start, double& end) {
    std::vector<double> angles;
    angles.reserve(points.size());
    for (point const& p : points) {
        double const angle = (p - center).angle2d();
        if (p.is_trivial() || std::isnan(angle)) return false;
        angles.push_back(angle);
    }
    if (angles.empty()) return false;
    start = end = angles[0];
    if (angles.size() > 1) angular_range(angles, start, end);
    return true;
}

circle turn_to_arc(circle const& c, point_span points, double& sweep) {
    double start = 0, end = 0;
    if (c.is_trivial()) return c;
    if (!range_of_points(c.basis(0), points, start, end)) return circle();
    sweep = end - start;
    // In the circle's own frame, before its placement.
    return circle(transform::rotation((start + end) / 2 - c.basis(1).angle2d()) * c);
}

}  // namespace

bool arc_quick_fit(idioms::array<point> points, point& center, double& radius, double& start_angle,
                   double& end_angle) {
    point c;
    double r = 0;
    if (!circle_quick_fit(points, c, r) || !std::isfinite(r)) return false;
    if (!range_of_points(c, span_of(points), start_angle, end_angle)) return false;
    center = c;
    radius = r;
    return true;
}

circle arc_fit(idioms::array<point> points, double& sweep) {
    return circle_to_arc(circle_fit(points), points, sweep);
}

circle arc_centered_fit(point center, idioms::array<point> points, double& sweep) {
    return circle_to_arc(circle_centered_fit(center, points), points, sweep);
}

circle circle_to_arc(circle c, std::vector<point> const& points, double& sweep) {
    return turn_to_arc(c, points, sweep);
}

circle circle_to_arc(circle c, idioms::array<point> points, double& sweep) {
    return turn_to_arc(c, span_of(points), sweep);
}

}  // namespace tvmath
