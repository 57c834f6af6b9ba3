#include "tvmath/zone_circle.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>

#include "support/seeded_random.h"
#include "support/shape_points.h"

inline namespace tvmath {
namespace {

using real = long double;

// The reference: every circle that contacts can determine, in long double, relative to the first point.
struct spot {
    real x = 0, y = 0;
};
using spots = std::vector<spot>;

testing::AssertionResult near(real a, real b, real tolerance) {
    if (std::fabs(a - b) <= tolerance) return testing::AssertionSuccess();
    return testing::AssertionFailure() << a << " and " << b << " differ by " << a - b;
}

real distance(spot a, spot b) {
    return std::hypot(a.x - b.x, a.y - b.y);
}

spots relative(std::vector<point> const& points) {
    spots list;
    for (point const& p : points) list.push_back({real(p.x()) - points[0].x(), real(p.y()) - points[0].y()});
    return list;
}

spot relative(circle const& c, std::vector<point> const& points) {
    return {real(c.basis(0).x()) - points[0].x(), real(c.basis(0).y()) - points[0].y()};
}

// Where a and b are equally far, and c and d.
bool meet(spot a, spot b, spot c, spot d, spot& found) {
    real const ax = b.x - a.x, ay = b.y - a.y, cx = d.x - c.x, cy = d.y - c.y, det = ax * cy - cx * ay;
    real const p = (ax * (a.x + b.x) + ay * (a.y + b.y)) / 2, q = (cx * (c.x + d.x) + cy * (c.y + d.y)) / 2;
    found = {(p * cy - q * ay) / det, (ax * q - cx * p) / det};
    return det != 0;
}

// Without cancellation between radii that are nearly equal.
real ring_width(spots const& list, spot c) {
    real low = INFINITY, high = -INFINITY;
    for (spot p : list) {
        real const a = p.x * (p.x - 2 * c.x) + p.y * (p.y - 2 * c.y);
        low = std::min(low, a);
        high = std::max(high, a);
    }
    real const square = c.x * c.x + c.y * c.y;
    real const sum = std::sqrt(std::max<real>(0, high + square)) + std::sqrt(std::max<real>(0, low + square));
    return sum > 0 ? (high - low) / sum : 0;
}

// Of every two pairs of points the centre as far from the two of either.
real narrowest_ring(spots const& list) {
    std::vector<std::pair<spot, spot>> pairs;
    real least = INFINITY;
    for (std::size_t i = 0; i < list.size(); ++i) {
        for (std::size_t j = 0; j < i; ++j) {
            pairs.emplace_back(list[i], list[j]);
            for (auto const& [a, b] : pairs) {
                spot c;
                if (meet(list[i], list[j], a, b, c)) least = std::min(least, ring_width(list, c));
            }
        }
    }
    return least;
}

// What the width falls to as the centre goes to infinity: the least width of a strip, along some two points.
real narrowest_strip(spots const& list) {
    real least = INFINITY;
    for (spot a : list) {
        for (spot b : list) {
            real const l = distance(a, b);
            real low = INFINITY, high = -INFINITY;
            for (spot p : list) {
                real const s = (p.x * (b.y - a.y) - p.y * (b.x - a.x)) / l;
                low = std::min(low, s);
                high = std::max(high, s);
            }
            if (l > 0) least = std::min(least, high - low);
        }
    }
    return least;
}

real farthest(spots const& list, spot c) {
    real most = 0;
    for (spot p : list) most = std::max(most, distance(p, c));
    return most;
}
real nearest(spots const& list, spot c) {
    real least = INFINITY;
    for (spot p : list) least = std::min(least, distance(p, c));
    return least;
}

bool obtuse_at(spot a, spot b, spot c) {
    return (b.x - a.x) * (c.x - a.x) + (b.y - a.y) * (c.y - a.y) < -1e-12L * distance(a, b) * distance(a, c);
}

void walk_triples(spots const& list, std::function<void(spot, spot, spot)> const& visit) {
    for (std::size_t i = 0; i < list.size(); ++i) {
        for (std::size_t j = 0; j < i; ++j) {
            for (std::size_t k = 0; k < j; ++k) visit(list[i], list[j], list[k]);
        }
    }
}

real smallest_around(spots const& list) {
    real least = INFINITY;
    for (spot a : list) {
        for (spot b : list) least = std::min(least, farthest(list, {(a.x + b.x) / 2, (a.y + b.y) / 2}));
    }
    walk_triples(list, [&](spot a, spot b, spot c) {
        spot m;
        if (meet(a, b, a, c, m)) least = std::min(least, farthest(list, m));
    });
    return least;
}

// 0 when there is none.
real largest_amid(spots const& list, real tolerance) {
    real most = 0;
    walk_triples(list, [&](spot a, spot b, spot c) {
        spot m;
        if (!meet(a, b, a, c, m) || obtuse_at(a, b, c) || obtuse_at(b, c, a) || obtuse_at(c, a, b)) return;
        if (nearest(list, m) >= distance(a, m) - tolerance) most = std::max(most, distance(a, m));
    });
    return most;
}

bool on_a_line(spots const& list, real tolerance) {
    return narrowest_strip(list) <= tolerance;
}

struct family {
    char const* name;
    std::function<std::vector<point>(seeded_random&, int)> make;
};

std::vector<point> lobed(seeded_random& random, int n, double radius, double depth, int lobes, double noise,
                         double span = 2 * pi) {
    std::vector<point> points;
    double const phase = random.uniform(0, 7), x = radius * random.uniform(-1, 1), y = radius * random.unit();
    for (int i = 0; i < n; ++i) {
        double const t = phase + span * (i + 0.3 * random.unit()) / n;
        double const r = radius * (1 + depth * std::cos(lobes * t) + noise * random.normal());
        points.push_back(at(x + r * std::cos(t), y + r * std::sin(t)));
    }
    return points;
}

template <class maker>
std::vector<point> repeated(int n, maker make) {
    std::vector<point> points;
    for (int i = 0; i < n; ++i) points.push_back(make(i));
    return points;
}

family const families[] = {
    {"circle", [](seeded_random& r, int n) { return lobed(r, n, r.log_uniform(0.1, 100), 0, 0, 1e-3); }},
    {"tiny", [](seeded_random& r, int n) { return lobed(r, n, 1e-3, 0, 0, 1e-3); }},
    {"huge", [](seeded_random& r, int n) { return lobed(r, n, 1e5, 0, 0, 1e-5); }},
    {"perfect", [](seeded_random& r, int n) { return lobed(r, n, r.log_uniform(0.1, 100), 0, 0, 0); }},
    {"lobed",
     [](seeded_random& r, int n) {
         return lobed(r, n, 10, r.log_uniform(1e-4, 0.3), 2 + static_cast<int>(r.below(14)), 1e-5);
     }},
    {"arc", [](seeded_random& r, int n) { return lobed(r, n, 10, 0, 0, 1e-4, r.uniform(0.3, 4)); }},
    {"perfect arc", [](seeded_random& r, int n) { return lobed(r, n, 10, 0, 0, 0, r.uniform(0.3, 4)); }},
    {"ellipse",
     [](seeded_random& r, int n) {
         double const k = r.uniform(0.1, 1);
         return repeated(n, [&](int) {
             double const t = r.uniform(0, 7);
             return at(std::cos(t), k * std::sin(t)).rotate(k);
         });
     }},
    {"cloud",
     [](seeded_random& r, int n) { return repeated(n, [&](int) { return at(r.normal(), r.normal()); }); }},
    {"two groups",
     [](seeded_random& r, int n) {
         return repeated(n, [&](int i) { return at(r.normal() / 10 + (i % 2 ? 5 : 0), r.normal() / 10); });
     }},
    {"grid",
     [](seeded_random& r, int n) {
         unsigned int const m = 2 + r.below(4);
         return repeated(n, [&](int) { return at(r.below(m), r.below(m)); });
     }},
    {"collinear",
     [](seeded_random& r, int n) {
         double const t = r.coin() ? 0 : r.uniform(0, 3);
         return repeated(n, [&](int) { return at(r.uniform(-5, 5), 0).rotate(t); });
     }},
    {"nearly collinear",
     [](seeded_random& r, int n) {
         return repeated(n, [&](int) { return at(r.uniform(-5, 5), 1e-4 * r.normal()).rotate(0.7); });
     }},
    {"repeats",
     [](seeded_random& r, int n) {
         std::vector<point> points;
         for (int i = 0; i < n; ++i) {
             bool const again = i > 2 && r.coin();
             points.push_back(again ? points[r.below(static_cast<unsigned int>(i))] : at(r.unit(), r.unit()));
         }
         return points;
     }},
};

// Calls `check` with small lists of all families, near the origin and far from it, with what rounding of the
// coordinates and of some operations at the size of the list may cost.
void for_small_lists(std::function<void(std::vector<point> const&, spots const&, real)> const& check) {
    seeded_random random(20260101);
    for (family const& f : families) {
        for (int trial = 0; trial < 120; ++trial) {
            SCOPED_TRACE(std::string(f.name) + " " + std::to_string(trial));
            std::vector<point> points = f.make(random, 3 + static_cast<int>(random.below(6)));
            bool const far = trial % 3 == 2;
            for (point& p : points) p = far ? p + point(false, 1e6, -2e6) : p;
            spots const list = relative(points);
            real const size = farthest(list, list[0]);
            if (size > 0) check(points, list, 1e-12L * size + (far ? 2e-9L : 0));
        }
    }
}

TEST(ZoneCircles, NarrowestRingOfAllPairsOfContacts) {
    for_small_lists([](std::vector<point> const& points, spots const& list, real tolerance) {
        circle const found = minimum_zone_circle(points);
        real const ring = narrowest_ring(list), strip = narrowest_strip(list);
        if (found.is_trivial()) {
            EXPECT_LE(strip, ring + tolerance);
            return;
        }
        // The centre of a circle much larger than the part is rounded at its own place.
        real const rounding = tolerance + 1e-15L * found.radius();
        EXPECT_LE(ring_width(list, relative(found, points)), std::min(ring, strip) + rounding);
    });
}

TEST(ZoneCircles, LargestOfAllEmptyAcuteTriangles) {
    for_small_lists([](std::vector<point> const& points, spots const& list, real tolerance) {
        circle const found = maximum_inscribed_circle(points);
        real const expected = largest_amid(list, tolerance);
        if (on_a_line(list, tolerance)) return;  // the next test
        EXPECT_EQ(found.is_trivial(), expected == 0);
        if (found.is_trivial()) return;
        EXPECT_TRUE(near(found.radius(), expected, tolerance));
        EXPECT_TRUE(near(nearest(list, relative(found, points)), found.radius(), tolerance));
    });
}

TEST(ZoneCircles, InscribedOfALineStandsOnTheLargestGap) {
    std::vector<point> const points = {at(0, 0), at(3, 6), at(1, 2), at(7, 14), at(1, 2), at(8, 16)};
    circle const found = maximum_inscribed_circle(points);
    EXPECT_NEAR(distance2d(found.basis(0), at(5, 10)), 0, 1e-14);
    EXPECT_NEAR(found.radius(), std::sqrt(20.0), 1e-14);
}

TEST(ZoneCircles, SmallestOfAllCirclesOnTwoOrThree) {
    for_small_lists([](std::vector<point> const& points, spots const& list, real tolerance) {
        circle const found = minimum_circumscribed_circle(points);
        EXPECT_TRUE(near(found.radius(), smallest_around(list), tolerance));
        EXPECT_TRUE(near(farthest(list, relative(found, points)), found.radius(), tolerance));
    });
}

// The angles of the points within `slack` of the distance r from c.
std::vector<real> contact_angles(spots const& list, spot c, real r, real slack) {
    std::vector<real> angles;
    for (spot p : list) {
        if (std::fabs(distance(p, c) - r) <= slack) angles.push_back(std::atan2(p.y - c.y, p.x - c.x));
    }
    std::sort(angles.begin(), angles.end());
    return angles;
}

real largest_gap(std::vector<real> const& angles) {
    if (angles.empty()) return 7;
    real gap = angles.front() + 2 * pi - angles.back();
    for (std::size_t i = 1; i < angles.size(); ++i) gap = std::max(gap, angles[i] - angles[i - 1]);
    return gap;
}

// How often contacts of the one kind follow those of the other kind around the centre.
int alternations(std::vector<real> const& a, std::vector<real> const& b) {
    std::vector<std::pair<real, int>> all;
    for (real t : a) all.emplace_back(t, 0);
    for (real t : b) all.emplace_back(t, 1);
    std::sort(all.begin(), all.end());
    int count = 0;
    for (std::size_t i = 0; i < all.size(); ++i) count += all[i].second != all[(i + 1) % all.size()].second;
    return count;
}

// For large lists: no point beyond the circle, and contacts that keep the centre from moving.
TEST(ZoneCircles, ContactsOfLargeListsHoldTheCentre) {
    seeded_random random(77);
    for (int lobes = 2; lobes <= 15; ++lobes) {
        for (int n : {200, 5000}) {
            SCOPED_TRACE(std::to_string(lobes) + " lobes, " + std::to_string(n));
            auto const points = lobed(random, n, 25, 1e-3, lobes, 1e-4);
            spots const list = relative(points);
            real const slack = 1e-12;

            circle const zone = minimum_zone_circle(points);
            spot const c = relative(zone, points);
            real const inner = nearest(list, c), outer = farthest(list, c);
            EXPECT_TRUE(near(zone.radius(), (inner + outer) / 2, slack));
            EXPECT_GE(
                alternations(contact_angles(list, c, inner, slack), contact_angles(list, c, outer, slack)),
                4);

            circle const small = maximum_inscribed_circle(points),
                         large = minimum_circumscribed_circle(points);
            spot const s = relative(small, points), l = relative(large, points);
            EXPECT_TRUE(near(small.radius(), nearest(list, s), slack));
            EXPECT_TRUE(near(large.radius(), farthest(list, l), slack));
            EXPECT_LE(largest_gap(contact_angles(list, s, small.radius(), slack)), pi + 1e-9);
            EXPECT_LE(largest_gap(contact_angles(list, l, large.radius(), slack)), pi + 1e-9);
            EXPECT_GE(small.radius(), inner - slack);
            EXPECT_LE(large.radius(), outer + slack);
            EXPECT_LE(outer - inner,
                      std::min(farthest(list, s) - small.radius(), large.radius() - nearest(list, l)));
        }
    }
}

// Pockets that a local walk ends in: the large hole is away from the centroid.
TEST(ZoneCircles, InscribedFindsAHoleFarFromTheCentroid) {
    seeded_random random(5);
    std::vector<point> points =
        repeated(20000, [&](int) { return at(random.uniform(0, 10), random.uniform(0, 10)); });
    std::erase_if(points, [](point const& p) { return distance2d(p, at(8, 2)) < 1; });
    circle const found = maximum_inscribed_circle(points);
    EXPECT_NEAR(distance2d(found.basis(0), at(8, 2)), 0, 0.1);
    EXPECT_GE(found.radius(), 1);
}

TEST(ZoneCircles, AgreeOnAPerfectCircle) {
    seeded_random random(8);
    for (int n : {4, 5, 12, 360, 4096}) {
        for (double radius : {1e-3, 1.0, 1e5}) {
            auto const points =
                circle_points(random, at(3 * radius, -radius, radius), radius, 0.1, 2 * pi, n);
            for (circle const& c : {minimum_zone_circle(points), maximum_inscribed_circle(points),
                                    minimum_circumscribed_circle(points)}) {
                ASSERT_TRUE(c.is_3d()) << n << " points of radius " << radius;
                EXPECT_NEAR(c.radius(), radius, 1e-14 * radius);
                EXPECT_NEAR(distance3d(c.basis(0), at(3 * radius, -radius, radius)), 0, 2e-14 * radius);
            }
        }
    }
}

struct published {
    std::vector<point> points;
    point zone, inscribed, circumscribed;
    double inner, outer, largest, smallest;
};

// Both with answers verified in 60 digits by enumeration of contacts. The first list: third literature set of
// the comparison of methods in kuyexinxi, roundness of train axles, Dataset3; the second: noise on 12 points.
published const sets[] = {
    {{at(107.5811, 114.2119), at(102.2909, 119.9906), at(95.6848, 124.2034), at(88.2128, 126.5634),
      at(80.3826, 126.9159),  at(72.7251, 125.2311),  at(65.7612, 121.6196), at(59.9721, 116.3233),
      at(55.7576, 109.7039),  at(53.4073, 102.218),   at(53.0774, 94.3816),  at(54.7849, 86.7302),
      at(58.4107, 79.7824),   at(63.7075, 74.0083),   at(70.3176, 69.8019),  at(77.7899, 67.4519),
      at(85.6152, 67.1081),   at(93.2669, 68.7926),   at(100.2245, 72.4009), at(106.0093, 77.6929),
      at(110.2199, 84.3073),  at(112.5676, 91.7864),  at(112.8977, 99.6156), at(111.2129, 107.2695)},
     at(82.9909410494445083251, 97.0083872670613512335),
     at(82.9849317972160122688, 97.0105449575936516509),
     at(82.9907, 97.0081),
     30.0106109162403904726,
     30.0488418602219565628,
     30.0116951721018636687,
     30.0488418578819795364},
    {{at(17.017282, 4), at(14.329402, 14.005135), at(7.005542, 21.330107), at(-3, 23.990288),
      at(-12.996981, 21.315278), at(-20.313932, 13.996203), at(-22.982931, 4), at(-20.316918, -5.997927),
      at(-13.004325, -13.327999), at(-3, -16.001908), at(6.998905, -13.318611), at(14.30714, -5.992282)},
     at(-2.99733575638225863176, 4.00535378805740595836),
     at(-2.99775519749388600985, 4.00511166985203895145),
     at(-2.99258620795493176722, 3.99712496277223164639),
     19.9849343895312198633,
     20.0146184724350572108,
     19.9851764562198599612,
     20.0098684144989978119}};

TEST(ZoneCircles, ReproducePublishedSets) {
    for (published const& set : sets) {
        struct {
            circle found;
            point center;
            double radius;
        } const cases[] = {
            {minimum_zone_circle(set.points), set.zone, (set.inner + set.outer) / 2},
            {maximum_inscribed_circle(set.points), set.inscribed, set.largest},
            {minimum_circumscribed_circle(set.points), set.circumscribed, set.smallest},
        };
        for (auto const& c : cases) {
            EXPECT_NEAR(distance2d(c.found.basis(0), c.center), 0,
                        1e-12);  // coordinates up to 100 are rounded
            EXPECT_NEAR(c.found.radius(), c.radius, 3e-14);
        }
    }
}

TEST(ZoneCircles, FewPlaces) {
    std::vector<point> const two(2, at(1, 2)), same(5, at(1, 2)),
        pair = {at(0, 0), at(4, 0), at(0, 0), at(4, 0)};
    for (auto const& points : {std::vector<point>(), two}) {
        EXPECT_TRUE(minimum_zone_circle(points).is_trivial());
        EXPECT_TRUE(maximum_inscribed_circle(points).is_trivial());
    }
    EXPECT_TRUE(minimum_circumscribed_circle({}).is_trivial());
    EXPECT_TRUE(maximum_inscribed_circle(same).is_trivial());
    EXPECT_TRUE(maximum_inscribed_circle(pair).is_trivial());
    for (circle const& c : {minimum_circumscribed_circle(same), minimum_zone_circle(same)}) {
        EXPECT_TRUE(!c.is_trivial() && c.radius() == 0);
        EXPECT_EQ(distance2d(c.basis(0), at(1, 2)), 0);
    }
    for (circle const& c : {minimum_circumscribed_circle(pair), minimum_zone_circle(pair)}) {
        EXPECT_EQ(distance2d(c.basis(0), at(2, 0)), 0);
        EXPECT_EQ(c.radius(), 2);
    }
    EXPECT_NEAR(minimum_zone_circle({at(0, 0), at(4, 0), at(0, 3)}).radius(), 2.5, 1e-15);
}

TEST(ZoneCircles, RefuseWhatIsNoNumberAndStandExtremes) {
    double const infinite = infinity, nan = std::numeric_limits<double>::quiet_NaN();
    for (point const& bad : {at(nan, 0), at(0, infinite), at(1e308, -1e308), point()}) {
        std::vector<point> const points = {at(0, 0), at(1, 0), bad, at(0, 1), at(-1e308, 1e308)};
        EXPECT_TRUE(minimum_zone_circle(points).is_trivial());
        EXPECT_TRUE(maximum_inscribed_circle(points).is_trivial());
        EXPECT_TRUE(minimum_circumscribed_circle(points).is_trivial());
    }
    for (double scale : {1e-140, 1e140}) {
        std::vector<point> points = {at(1, 0), at(0, 1), at(-1, 0), at(0, -1), at(0.6, 0.8)};
        for (point& p : points) p *= scale;
        EXPECT_NEAR(minimum_zone_circle(points).radius() / scale, 1, 1e-14);
        EXPECT_NEAR(maximum_inscribed_circle(points).radius() / scale, 1, 1e-14);
        EXPECT_NEAR(minimum_circumscribed_circle(points).radius() / scale, 1, 1e-14);
    }
}

}  // namespace
}  // namespace tvmath
