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
constexpr int most_rounds = 500;
// A radius of 1e12 times the extent is a line for all that the coordinates can tell.
constexpr double least_curvature = 1e-12;

// A centre by least squares from at most some hundred points: the result does not depend on it.
zone_center starting_center(zone_points const& all) {
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

// The least width amid few of the points bounds that of all from below, so a ring that is the narrowest amid
// few and holds all is the narrowest of all. While points are beyond it, some of them join the few.
bool narrowest_of_all(zone_points const& all, zone_ring& ring) {
    zone_center const start = starting_center(all);
    std::vector<xy> few;
    for (std::size_t i : all.extremes(16)) few.push_back(all[i]);
    std::size_t const stride = all.count / 16 + 1;
    for (std::size_t i = 0; i < all.count; i += stride) few.push_back(all[i]);
    xy const pole = start.t > 0.1 ? start.position() : xy();

    ring.center = start;
    for (int round = 0; round < most_rounds; ++round) {
        zone_center const near = iterated(ring.center, few);
        if (!narrowest_ring(few, near, ring)) return false;
        power_range held, range;
        for (xy p : few) held.widen(power_about(ring.center, p));
        double const slack = rounding * (ring.center.t + std::sqrt(ring.center.square()));
        held.low -= slack;
        held.high += slack;
        if (!sector_picks::add_beyond(all, ring.center, held, pole, few, range)) return true;
    }
    return false;
}

}  // namespace

circle minimum_zone_circle(std::vector<point> const& points) {
    if (points.size() < 3) return circle();
    zone_points const all(points);
    if (all.count == 0) return circle();
    if (points.size() == 3) {
        circle const through = circle_fit(points);
        if (!through.is_trivial()) return through;
    }
    switch (all.distinct()) {
        case 1:
            return circle(0.0, all.centroid);
        case 2: {
            xy const a = all[0];
            std::size_t i = 1;
            while (all[i].x == a.x && all[i].y == a.y) ++i;
            return all.place(0.5 * (a + all[i]), 0.5 * std::sqrt(dot(a - all[i], a - all[i])));
        }
        default:
            break;
    }
    zone_ring ring;
    if (!narrowest_of_all(all, ring) || !(ring.center.t > least_curvature)) return circle();
    power_range range;
    all.visit_beyond(ring.center, range, [&](std::size_t, double a) { range.widen(a); });
    double const radius =
        (reach(ring.center, range.low) + reach(ring.center, range.high)) / 2 / ring.center.t;
    xy const c = all.size * ring.center.position();
    ZoneCircleModel model(circle(radius * all.size, all.centroid + point(false, c.x, c.y)));
    return model.circle();
}

}  // namespace tvmath
