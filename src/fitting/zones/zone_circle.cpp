#include "tvmath/zone_circle.h"

#include <algorithm>
#include <cmath>

#include "tvmath/feature_fit.h"
#include "zone_circle_iteration.h"
#include "zone_circle_points.h"
#include "zone_circle_search.h"

inline namespace tvmath {
namespace {

// Powers about a centre are rounded by some 1e-16 of the square of its farthest coordinate.
constexpr double rounding = 4e-15;
// A measured contour takes some hundred, a form that is no ring some thousand; only a filled disc of a
// million points has been seen to take more. Every round of the search divides some.
constexpr int most_triangles = 1000000;
// A radius of 1e12 times the extent is a line for all that the coordinates can tell.
constexpr double least_curvature = 1e-12;

// A centre by least squares from at most some hundred points: the result does not depend on it.
zone_center starting_center(ring_points const& all) {
    std::vector<point> sample;
    std::size_t const stride = all.count / 200 + 1;
    for (std::size_t i = 0; i < all.count; i += stride) sample.emplace_back(true, all[i].x, all[i].y);
    circle const c = circle_fit(sample);
    if (c.is_trivial()) return zone_center();
    xy const at{c.basis(0).x(), c.basis(0).y()};
    double const most = std::max({1.0, std::fabs(at.x), std::fabs(at.y)});
    return {at.x / most, at.y / most, 1 / most};
}

// The start improved by the iteration, where that succeeds.
zone_center iterated(zone_center const& start, std::vector<xy> const& points) {
    if (!(start.t > 1e-3)) return start;
    xy const at = start.position();
    ZoneCircleModel model(circle(0.0, point(true, at.x, at.y)));
    if (!iterate_zone_circle(model, points) || !std::isfinite(model.x + model.y)) return start;
    zone_center const found = zone_center::at({model.x, model.y});
    return ring_about(found, points).width < ring_about(start, points).width ? found : start;
}

// Whether all points are in the ring that just holds the few; if not, some of them join the few.
bool holds_all(ring_points const& all, zone_center const& c, xy pole, std::vector<xy>& few) {
    power_range held, range;
    for (xy p : few) held.widen(power_about(c, p));
    double const slack = rounding * (c.t + std::sqrt(c.square()));
    held.low -= slack;
    held.high += slack;
    return !sector_picks::add_beyond(all, c, held, pole, few, range);
}

// The least width amid few of the points bounds that of all from below, so a ring that is the narrowest amid
// few and holds all is the narrowest of all. While points are beyond it, some of them join the few. The
// iteration alone finds nearly all that are needed, with less work than the search.
bool narrowest_of_all(ring_points const& all, zone_ring& ring) {
    zone_center const start = starting_center(all);
    std::vector<xy> few;
    for (std::size_t i : all.extremes(16)) few.push_back(all[i]);
    std::size_t const stride = all.count / 16 + 1;
    for (std::size_t i = 0; i < all.count; i += stride) few.push_back(all[i]);
    xy const pole = start.t > 0.1 ? start.position() : xy();

    zone_center c = start;
    for (int round = 0; round < 10; ++round) {
        c = iterated(c, few);
        if (holds_all(all, c, pole, few)) break;
    }
    int budget = most_triangles;
    for (;;) {
        if (!narrowest_ring(few, c, budget, ring)) return false;
        if (holds_all(all, ring.center, pole, few)) return true;
        c = iterated(ring.center, few);
    }
}

// The ring of any circle through two places has no width; the smallest one is as good a choice as any.
circle circle_on_two(ring_points const& all) {
    xy const a = all[0];
    std::size_t i = 1;
    while (all[i].x == a.x && all[i].y == a.y) ++i;
    xy const d = all[i] - a;
    return all.place(a + 0.5 * d, 0.5 * std::sqrt(dot(d, d)));
}

// In closed form from differences: of three points near a line, an algebraic fit loses digits.
circle circle_on_three(ring_points const& all) {
    xy const c = circumcenter(all[0], all[1], all[2]), d = all[0] - c;
    double const radius = std::sqrt(dot(d, d));
    return radius * least_curvature < 1 ? all.place(c, radius) : circle();
}

circle amid(zone_center const& c, ring_points const& all) {
    if (!(c.t > least_curvature)) return circle();
    power_range range;
    all.visit_beyond(c, range, [&range](std::size_t, double a) { range.widen(a); });
    double const radius = (reach(c, range.low) + reach(c, range.high)) / 2 / c.t;
    xy const at = all.size * c.position();
    ZoneCircleModel model(circle(radius * all.size, all.centroid + point(false, at.x, at.y)));
    return model.circle();
}

}  // namespace

circle minimum_zone_circle(std::vector<point> const& points) {
    ring_points const all(points);
    if (all.count < 3) return circle();
    int const places = all.distinct();
    if (places == 1) return circle(0.0, all.centroid);
    if (places == 2) return circle_on_two(all);
    if (all.count == 3) return circle_on_three(all);
    zone_ring ring;
    return narrowest_of_all(all, ring) ? amid(ring.center, all) : circle();
}

}  // namespace tvmath
