#include <algorithm>
#include <cmath>
#include <limits>

#include "constraint_list.h"
#include "fitting/principal_axis.h"
#include "geometry/xyz.h"
#include "planar.h"
#include "tvmath/quick_fit.h"

inline namespace tvmath {
namespace geometry_fitter {
namespace {

constexpr counting_rules point_rules = {.unknowns = 1, .centered = {1, any_number}};
constexpr counting_rules line_rules = {
    .unknowns = 2, .centered = {1, any_number}, .through = {1, any_number}, .direction = {1, 1}};

constexpr double least_span = 1e-05;  // below it a given direction keeps its given length

// Range along a line, as lengths from its middle: so a line far from the origin keeps its digits.
struct range {
    double lo = std::numeric_limits<double>::infinity(), hi = -std::numeric_limits<double>::infinity();

    void include(double t) {
        if (t < lo) lo = t;
        if (t > hi) hi = t;
    }
    void make_symmetric_about(double mid) {
        double const a = mid - lo, b = hi - mid;
        (a <= b ? lo : hi) = a <= b ? mid - b : mid + a;
    }
};

// What is known about a line. Lengths along it count from its middle, basis(0).
struct line_conditions {
    std::vector<point> const& fit;
    std::vector<point> through;
    centered_cnst const* centered;
    point anchor;

    explicit line_conditions(constraint* list)
        : fit(fit_points(list)), through(through_points(list)), centered(next_of<centered_cnst>(list)) {
        anchor = !through.empty() ? through.front() : centered ? centered->center : point_fit(fit);
    }

    // Widens `span` to all points, and then to both sides of the centre alike.
    void measure(point const& middle, point const& u, range& span) const {
        auto const along = [&](point const& p) { return dot(p - middle, u); };
        for (point const& p : through) span.include(along(p));
        for (point const& p : fit) span.include(along(p));
        if (!centered) return;
        span.include(along(centered->center));
        span.make_symmetric_about(along(centered->center));
    }
};

// The line of the two through points, or along the principal axis; trivial when there is none.
line determined_line(line_conditions const& known) {
    if (known.through.size() == 2) return line(known.through[0], known.through[1]);
    point const axis = principal_axis(known.fit, known.anchor);
    return axis.is_trivial() ? line() : line(known.anchor, axis);
}

// The line from the foot on `given` towards the anchor. Its span begins at the anchor and is as long as
// `given`, so that the line stands without any other point.
line perpendicular_line(point const& anchor, line const& given, range& span) {
    point const foot = foot_on_line(anchor, given);
    point across = given.basis(1);
    across.project2d();
    across.rotate_90();
    double along = dot2d(anchor - foot, across);
    if (along < 0) {
        across = -across;
        along = -along;
    }
    double const half = across.length2d();
    span.lo = along / half;
    span.hi = span.lo + 2.0 * half;
    return line(foot, across);
}

line parallel_line(point const& anchor, line const& given) {
    point direction = given.basis(1);
    direction.project2d();
    return line(anchor, direction);
}

bool has_extent(line const& l) {
    double const half = l.size(1);
    return half > 0 && std::isfinite(half) && !_isnan(l, true);
}

}  // namespace

bool point_fitter::can_add(std::type_info const& kind) const {
    return has_room(point_rules, first_, kind);
}

int point_fitter::degrees_of_freedom() const {
    return redundancy(point_rules, first_);
}

bool point_fitter::result(Geometry_Description& description) {
    if (degrees_of_freedom() < 0 || !prepare(first_)) return false;
    // The count leaves room for a centre or for points, never for both.
    centered_cnst const* const centre = next_of<centered_cnst>(first_);
    Point_Description found;
    found.position = centre ? centre->center : point_fit(fit_points(first_));
    return xyz(found.position).is_finite() && description.assign(found);
}

bool line_fitter::can_add(std::type_info const& kind) const {
    return has_room(line_rules, first_, kind);
}

int line_fitter::degrees_of_freedom() const {
    return redundancy(line_rules, first_);
}

bool line_fitter::result(Geometry_Description& description) {
    if (degrees_of_freedom() < 0 || !prepare(first_)) return false;
    line_conditions const known(first_);
    parallel_cnst const* const parallel_to = next_of<parallel_cnst>(first_);
    perpendicular_cnst const* const perpendicular_to = next_of<perpendicular_cnst>(first_);
    range span;
    Segment_Description found;
    found.geometry = perpendicular_to ? perpendicular_line(known.anchor, perpendicular_to->direction, span)
                     : parallel_to    ? parallel_line(known.anchor, parallel_to->direction)
                                      : determined_line(known);
    if (!has_extent(found.geometry)) return false;

    point const middle = found.geometry.basis(0), u = found.geometry.direction();
    known.measure(middle, u, span);
    if (!std::isfinite(span.lo) || !std::isfinite(span.hi)) return false;
    bool const made = !parallel_to && !perpendicular_to;
    if (made || span.lo < span.hi - least_span) {
        found.geometry = line(middle + u * span.lo, middle + u * span.hi);
    }
    return has_extent(found.geometry) && description.assign(found);
}

}  // namespace geometry_fitter
}  // namespace tvmath
