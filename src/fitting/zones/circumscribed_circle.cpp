#include <cmath>

#include "circumscribed_walk.h"
#include "tvmath/zone_circle.h"
#include "zone_circle_points.h"

inline namespace tvmath {
namespace {

// Squared distances of coordinates of at most 1 are rounded by a few 1e-16.
constexpr double rounding = 4e-15;

bool encloses(contact_circle const& c, xy p) {
    xy const d = p - c.center;
    return dot(d, d) <= c.radius * c.radius + rounding;
}

// The smallest circle around the contacts of `c` and p, which lies outside: through p and one or two of them.
contact_circle enclosing(contact_circle const& c, xy p) {
    contact_circle best;
    best.radius = infinity;
    auto const try_circle = [&](contact_circle const& trial) {
        if (!(trial.radius < best.radius)) return;
        for (int k = 0; k < c.contacts; ++k) {
            if (!encloses(trial, c.contact[static_cast<std::size_t>(k)])) return;
        }
        best = trial;
    };
    for (std::size_t i = 0; i < static_cast<std::size_t>(c.contacts); ++i) {
        try_circle(circle_on_diameter(c.contact[i], p));
        for (std::size_t j = 0; j < i; ++j) try_circle(circle_through(c.contact[i], c.contact[j], p));
    }
    return best;
}

}  // namespace

// The walk on the corners of the hull in some directions nearly always finds the contacts, or near ones.
// Then, while a point lies outside, the farthest of all points becomes a contact: the radius grows at every
// step, so no set of contacts comes twice, and a circle around all points that is the smallest around its
// contacts is the smallest. Some steps are enough. Source: B. Gaertner, Fast and robust smallest enclosing
// balls, ESA 1999, LNCS 1643, 325-338; optimality: E. Welzl, Smallest enclosing disks (balls and
// ellipsoids), LNCS 555 (1991) 359-370.
circle minimum_circumscribed_circle(std::vector<point> const& points) {
    ring_points const all(points);
    if (all.count == 0) return circle();
    std::vector<xy> corners;
    for (std::size_t i : all.extremes(16)) corners.push_back(all[i]);
    contact_circle c = circumscribed_walk(corners);
    if (c.contacts == 0) return circle(0.0, all.centroid);

    for (int step = 0; step < 1000; ++step) {
        zone_center const center = zone_center::at(c.center);
        double power = 0;
        std::size_t const farthest = all.farthest_from(center, power);
        if (power + center.square() <= c.radius * c.radius + rounding) return all.place(c.center, c.radius);
        contact_circle const next = enclosing(c, all[farthest]);
        if (next.radius == infinity) break;
        c = next;
    }
    return circle();
}

}  // namespace tvmath
