#include <algorithm>
#include <cmath>

#include "inscribed_search.h"
#include "tvmath/zone_circle.h"
#include "zone_circle_points.h"

inline namespace tvmath {
namespace {

// Squared distances of coordinates up to 1 are rounded by a few 1e-16.
constexpr double rounding = 4e-15;

std::vector<xy> corners_of(ring_points const& all, unsigned int directions) {
    std::vector<xy> corners;
    for (std::size_t i : all.extremes(directions)) corners.push_back(all[i]);
    return corners;
}

// Points on a line, to a rounding: the circle on the largest gap between neighbours.
bool on_a_line(ring_points const& all, std::vector<xy> const& corners, double resolution) {
    xy const a = corners[0];
    xy far = a;
    for (xy p : corners) {
        if (length(p - a) > length(far - a)) far = p;
    }
    xy const along = 1 / length(far - a) * (far - a);
    auto const is_off = [&](xy p) { return std::fabs(cross(along, p - a)) > resolution; };
    if (std::any_of(corners.begin(), corners.end(), is_off)) return false;
    for (std::size_t i = 0; i < all.count; ++i) {
        if (is_off(all[i])) return false;
    }
    return true;
}

contact_circle largest_gap(ring_points const& all) {
    std::vector<xy> sorted;
    for (std::size_t i = 0; i < all.count; ++i) sorted.push_back(all[i]);
    // Along a line the lexicographic order is the one on the line.
    std::sort(sorted.begin(), sorted.end(),
              [](xy p, xy q) { return p.x < q.x || (p.x == q.x && p.y < q.y); });
    contact_circle best;
    for (std::size_t i = 1; i < sorted.size(); ++i) {
        contact_circle const c = circle_on_diameter(sorted[i - 1], sorted[i]);
        if (c.radius > best.radius) best = c;
    }
    return best;
}

// Amid the few, the greatest distance of a place on the side from a to b from the nearest of them, at most.
double emptiness_along(xy a, xy b, std::vector<xy> const& few) {
    constexpr int steps = 64;
    double most = 0;
    for (int i = 0; i <= steps; ++i) {
        xy const x = a + static_cast<double>(i) / steps * (b - a);
        double least = infinity;
        for (xy p : few) least = std::min(least, length(p - x));
        most = std::max(most, least);
    }
    return most + length(b - a) / (2 * steps);
}

// How far points lie beyond the side from a to b, seen from inside a polygon that runs anticlockwise.
double height_beyond(ring_points const& all, xy a, xy b) {
    xy const outward = 1 / length(b - a) * xy{b.y - a.y, a.x - b.x};
    zone_center const away{-outward.x / 2, -outward.y / 2, 0};
    power_range range{-infinity, dot(outward, a)};
    all.visit_beyond(away, range, [&range](std::size_t, double h) { range.high = h; });
    return range.high - dot(outward, a);
}

bool holds(ring_points const& all, std::vector<xy> const& fence, double radius, std::vector<xy> const& few) {
    for (std::size_t i = 0; i < fence.size(); ++i) {
        xy const a = fence[i], b = fence[(i + 1) % fence.size()];
        if (length(b - a) <= radius) continue;
        double const empty = emptiness_along(a, b, few);
        if (empty > radius || empty + height_beyond(all, a, b) > radius) return false;
    }
    return true;
}

// The largest circle enclosed by three contacts, from few of the points: the largest one amid them, and as
// long as other points lie inside, with the deepest of these added.
//
// It is the largest amid all points when `fence` holds it: a polygon of extreme points in directions less
// than a right angle apart, that are among the few. Proof: take a larger empty circle about c, enclosed by
// contacts. Leaving out points, its centre can only gain distance, and moves uphill to a circle enclosed by
// three of the few, which would be larger than the largest, or out of the fence. On the way out it crosses a
// side, where no place is farther than the side's length from both ends, nor than its emptiness from the
// few. A c outside the fence lies in a cap between a side and the corner beyond, whose angle is obtuse,
// together with a contact, since contacts enclose c: their distance is below the side's length, and c is
// no farther from the few than the height of the cap and the emptiness of the side.
contact_circle from_few(ring_points const& all, std::vector<xy> const& fence) {
    std::vector<xy> few = fence;
    std::size_t const stride = all.count / 48 + 1;
    for (std::size_t i = 0; i < all.count; i += stride) few.push_back(all[i]);
    for (int round = 0; round < 50; ++round) {
        contact_circle const c = inscribed_search(few);
        if (c.contacts == 0 || !holds(all, fence, c.radius, few)) return {};
        zone_center const center = zone_center::at(c.center);
        power_range const empty{c.radius * c.radius - center.square() - rounding, infinity};
        power_range range;
        if (!sector_picks::add_beyond(all, center, empty, c.center, few, range)) return c;
    }
    return {};
}

contact_circle largest_enclosed(ring_points const& all, std::vector<xy> const& fence) {
    constexpr std::size_t small = 128;  // as many as the few would become
    if (all.count > small) {
        contact_circle const c = from_few(all, fence);
        if (c.contacts != 0) return c;
    }
    std::vector<xy> every;
    for (std::size_t i = 0; i < all.count; ++i) every.push_back(all[i]);
    return inscribed_search(every);
}

}  // namespace

circle maximum_inscribed_circle(std::vector<point> const& points) {
    ring_points const all(points);
    if (all.count < 3 || all.distinct() < 3) return circle();
    std::vector<xy> const corners = corners_of(all, 16);
    double const farthest = std::fmax(std::fabs(all.centroid.x()), std::fabs(all.centroid.y()));
    double const resolution = 4e-16 * (2 + 2 * farthest / all.size);
    contact_circle const c =
        on_a_line(all, corners, resolution) ? largest_gap(all) : largest_enclosed(all, corners);
    return c.contacts == 0 ? circle() : all.place(c.center, c.radius);
}

}  // namespace tvmath
