#include <gtest/gtest.h>

#include <algorithm>
#include <bit>

#include "support/relative.h"
#include "support/shape_points.h"
#include "support/zone_points.h"
#include "tvmath/quick_fit.h"
#include "tvmath/zone_fit.h"

inline namespace tvmath {
namespace {

using real = long double;

struct location {
    real x, y, z;
};
location operator-(location const& a, location const& b) {
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}
real dot(location const& a, location const& b) {
    return a.x * b.x + a.y * b.y + a.z * b.z;
}
location exact(point const& p) {
    return {p.x(), p.y(), p.z()};
}

// The square of the radius of the sphere through the points about a centre in their span; 0 when the centre
// is not among them. By Lagrangian duality no sphere around the points is smaller than the largest of these,
// and the smallest sphere is one of them.
real squared_radius(std::vector<location> const& p) {
    std::size_t const k = p.size() - 1;
    real g[3][4], weight[3], first_weight = 1;
    for (std::size_t i = 0; i < k; ++i) {
        for (std::size_t j = 0; j < k; ++j) g[i][j] = dot(p[i + 1] - p[0], p[j + 1] - p[0]);
        g[i][3] = g[i][i] / 2;
    }
    for (std::size_t i = 0; i < k; ++i) {
        real const pivot = g[i][i];
        if (!(pivot > 0)) return 0;
        for (std::size_t j = 0; j < k; ++j) {
            real const factor = j == i ? 0 : g[j][i] / pivot;
            for (std::size_t l = 0; l < 4; ++l) g[j][l] -= factor * g[i][l];
        }
    }
    location c{0, 0, 0};  // from the first point
    for (std::size_t i = 0; i < k; ++i) {
        weight[i] = g[i][3] / g[i][i];
        first_weight -= weight[i];
        if (!(weight[i] >= 0)) return 0;
        location const d = p[i + 1] - p[0];
        c = {c.x + weight[i] * d.x, c.y + weight[i] * d.y, c.z + weight[i] * d.z};
    }
    if (!(first_weight >= 0)) return 0;
    real sum = first_weight * dot(c, c);
    for (std::size_t i = 0; i < k; ++i) {
        location const d = p[i + 1] - p[0] - c;
        sum += weight[i] * dot(d, d);
    }
    return sum;
}

// Over all sets of up to four of the points.
double largest_support_radius(std::vector<point> const& points) {
    real best = 0;
    for (unsigned int chosen = 1; chosen < 1u << points.size(); ++chosen) {
        if (std::popcount(chosen) > 4) continue;
        std::vector<location> support;
        for (std::size_t i = 0; i < points.size(); ++i) {
            if (chosen >> i & 1) support.push_back(exact(points[i]));
        }
        best = std::max(best, squared_radius(support));
    }
    return static_cast<double>(std::sqrt(best));
}

TEST(CircumscribedSphere, IsAsSmallAsItsSupportAllowsAndHoldsAll) {
    seeded_random random(41);
    for (int trial = 0; trial < 4500; ++trial) {
        SCOPED_TRACE(trial);
        auto const points = random_zone_points(random, trial % zone_families);
        point center;
        double radius = -1;
        ASSERT_TRUE(minimum_circumscribed_sphere(points, center, radius));
        ASSERT_TRUE(near_at_scale(radius, largest_support_radius(points), radius, 1e-14, "some roundings"));
        double const coordinates = 1 + std::fabs(center.x());  // the centre is rounded as these are
        for (point const& p : points) ASSERT_LE(distance3d(p, center), radius + 1e-15 * coordinates);
    }
}

TEST(CircumscribedSphere, HoldsManyPointsOnTheSupportItTells) {
    seeded_random random(42);
    for (int trial = 0; trial < 20; ++trial) {
        // Points within a unit ball, some on it, and the ends of a diameter.
        auto points = sphere_points(random, at(0, 0, 0), 1, 2000);
        for (point& p : points) p *= random.coin() ? 1.0 : random.unit();
        points.push_back(-points[0] * (1 / points[0].length3d()));
        points[0] = -points.back();
        point center;
        double radius = 0;
        ASSERT_TRUE(minimum_circumscribed_sphere(points, center, radius));
        EXPECT_NEAR(radius, 1, 1e-15);
        EXPECT_NEAR(center.length3d(), 0, 1e-8) << "the radius rises with the square of the centre's error";
    }
}

TEST(CircumscribedSphere, OfFewPointsIsWorkedByHand) {
    point center;
    double radius = -1;
    EXPECT_FALSE(minimum_circumscribed_sphere({}, center, radius));
    EXPECT_FALSE(minimum_circumscribed_sphere({at(0, 0), at(1, 1)}, center, radius)) << "2D";
    EXPECT_TRUE(minimum_circumscribed_sphere(std::vector<point>{}).is_trivial());
    ASSERT_TRUE(minimum_circumscribed_sphere({at(1, 2, 3), at(1, 2, 3)}, center, radius));
    EXPECT_TRUE(radius == 0 && center == at(1, 2, 3));
    ASSERT_TRUE(minimum_circumscribed_sphere({at(0, 0), at(0, 0, 4), at(1, 0, 2)}, center, radius));
    EXPECT_TRUE(radius == 2 && center == at(0, 0, 2)) << "on two, one of them in z = 0";
}

// (b - a) x (c - a) . (p - a), and without z.
real side(point const& a, point const& b, point const& c, point const& p) {
    location const u = exact(b) - exact(a), v = exact(c) - exact(a), d = exact(p) - exact(a);
    return (u.y * v.z - u.z * v.y) * d.x + (u.z * v.x - u.x * v.z) * d.y + (u.x * v.y - u.y * v.x) * d.z;
}
real side_xy(point const& a, point const& b, point const& c) {
    location const u = exact(b) - exact(a), v = exact(c) - exact(a);
    return u.x * v.y - u.y * v.x;
}

bool on_one_line_in_xy(std::vector<point> const& points, double tolerance) {
    for (point const& a : points) {
        for (point const& b : points) {
            for (point const& c : points) {
                if (std::fabs(side_xy(a, b, c)) > tolerance) return false;
            }
        }
    }
    return true;
}

// A triangle of the points that holds the centroid, with no point beyond its plane, is the optimum: every
// plane with no point beyond lies at least as far out over each corner, and so over all of the triangle.
TEST(SeatingPlane, RestsOnATriangleAroundTheCentroid) {
    seeded_random random(43);
    int found = 0;
    for (int trial = 0; trial < 9000; ++trial) {
        SCOPED_TRACE(trial);
        auto const points = random_zone_points(random, trial % zone_families);
        bool const below = random.coin();
        idioms::array<point> contacts;
        plane const seat = seating_plane_fit(as_array(points), below, contacts);
        if (seat.is_trivial()) {
            EXPECT_TRUE(on_one_line_in_xy(points, 1e-9));
            continue;
        }
        ++found;
        point const a = contacts[0], b = contacts[1], c = contacts[2], center = point_fit(points);
        for (point const& p : {a, b, c}) {
            EXPECT_NE(std::find(points.begin(), points.end(), p), points.end());
            EXPECT_NEAR(dot(p - seat.basis(0), seat.normal()), 0, 1e-15 + 2e-9 * (std::fabs(p.x()) > 1e5));
        }
        EXPECT_TRUE(side_xy(a, b, center) >= 0 && side_xy(b, c, center) >= 0 && side_xy(c, a, center) >= 0);
        for (point const& p : points) {
            real const out = below ? -side(a, b, c, p) : side(a, b, c, p);
            EXPECT_LE(out, 1e-15L * distance3d(p, a) * distance3d(b, a) * distance3d(c, a) + 1e-24L);
        }
    }
    EXPECT_GT(found, 7000);
}

TEST(SeatingPlane, OfALargePartIsFoundFromEitherSide) {
    seeded_random random(44);
    std::vector<point> points;
    for (int i = 0; i < 20000; ++i) {
        double const x = random.uniform(-1, 1), y = random.uniform(-1, 1);
        points.push_back(at(x, y, x * x + y * y + 0.5 * random.unit()));  // a bowl, filled in part
    }
    for (bool const below : {false, true}) {
        idioms::array<point> contacts;
        ASSERT_FALSE(seating_plane_fit(as_array(points), below, contacts).is_trivial());
        point const a = contacts[0], b = contacts[1], c = contacts[2], center = point_fit(points);
        EXPECT_TRUE(side_xy(a, b, center) > 0 && side_xy(b, c, center) > 0 && side_xy(c, a, center) > 0);
        for (point const& p : points) EXPECT_LE(below ? -side(a, b, c, p) : side(a, b, c, p), 1e-15);
    }
    idioms::array<point> contacts;
    EXPECT_TRUE(
        seating_plane_fit(as_array({at(0, 0, 0), at(1, 1, 2), at(2, 2, 3)}), true, contacts).is_trivial());
    EXPECT_TRUE(seating_plane_fit(as_array({at(0, 0, 0), at(1, 1, 2)}), true, contacts).is_trivial());
}

}  // namespace
}  // namespace tvmath
