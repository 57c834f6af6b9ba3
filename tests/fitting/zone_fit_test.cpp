#include "tvmath/zone_fit.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>

#include "support/relative.h"
#include "support/shape_points.h"
#include "support/zone_points.h"

inline namespace tvmath {
namespace {

using real = long double;

struct direction {
    real x, y, z;
};

// Edges between two clusters are so nearly parallel that of 64 bits their product keeps too few.
__extension__ using wide_real = __float128;

// (b - a) x (d - c) of length 1; all zero when that is nothing but rounding.
direction normal_of(point const& a, point const& b, point const& c, point const& d) {
    auto const across = [](wide_real p, wide_real q, wide_real r, wide_real s) {
        wide_real const left = p * q, right = r * s;
        real const v = static_cast<real>(left - right);
        real const size = std::fabs(static_cast<real>(left)) + std::fabs(static_cast<real>(right));
        return std::fabs(v) <= 1e-30L * size ? 0.0L : v;
    };
    wide_real const ux = wide_real(b.x()) - a.x(), uy = wide_real(b.y()) - a.y(),
                    uz = wide_real(b.z()) - a.z();
    wide_real const vx = wide_real(d.x()) - c.x(), vy = wide_real(d.y()) - c.y(),
                    vz = wide_real(d.z()) - c.z();
    real const x = across(uy, vz, uz, vy), y = across(uz, vx, ux, vz), z = across(ux, vy, uy, vx);
    real const size = std::sqrt(x * x + y * y + z * z);
    return size > 0 ? direction{x / size, y / size, z / size} : direction{0, 0, 0};
}

double width_along(direction const& n, std::vector<point> const& points) {
    real low = 0, high = 0;
    for (point const& p : points) {
        point const& first = points[0];
        real const t = (real(p.x()) - first.x()) * n.x + (real(p.y()) - first.y()) * n.y +
                       (real(p.z()) - first.z()) * n.z;
        low = std::min(low, t);
        high = std::max(high, t);
    }
    return static_cast<double>(high - low);
}

void lower(double& best, direction const& n, std::vector<point> const& points) {
    if (n.x != 0 || n.y != 0 || n.z != 0) best = std::min(best, width_along(n, points));
}

// Least width over the planes through any three points and those along any two edges.
double least_slab(std::vector<point> const& p) {
    double best = std::numeric_limits<double>::infinity();
    std::size_t const n = p.size();
    for (std::size_t i = 0; i < n; ++i) {
        for (std::size_t j = i + 1; j < n; ++j) {
            for (std::size_t k = j + 1; k < n; ++k) lower(best, normal_of(p[i], p[j], p[i], p[k]), p);
            for (std::size_t k = i + 1; k < n; ++k) {
                for (std::size_t l = k + 1; l < n; ++l) lower(best, normal_of(p[i], p[j], p[k], p[l]), p);
            }
        }
    }
    return best;
}

// Least width, in XY, over the lines through any two points.
double least_strip(std::vector<point> points) {
    for (point& p : points) p.z() = 0;
    double best = std::numeric_limits<double>::infinity();
    point const up = at(0, 0, 1), down = at(0, 0, 0);
    for (point const& a : points) {
        for (point const& b : points) lower(best, normal_of(a, b, down, up), points);
    }
    return best == std::numeric_limits<double>::infinity() ? 0 : best;
}

double extent_of(std::vector<point> const& points) {
    double extent = 0;
    for (point const& p : points) extent = std::max(extent, distance3d(p, points[0]));
    return extent;
}

constexpr char const* rounding = "some roundings of the extent";

TEST(LineZone, IsTheNarrowestStripThatAnyTwoPointsSpan) {
    seeded_random random(31);
    for (int trial = 0; trial < 9000; ++trial) {
        SCOPED_TRACE(trial);
        auto const points = random_zone_points(random, trial % zone_families);
        double zone = -1;
        line const found = line_zone_fit(points, zone);
        ASSERT_FALSE(found.is_trivial());
        EXPECT_TRUE(near_at_scale(zone, least_strip(points), extent_of(points) + 1e-300, 1e-14, rounding));
    }
}

TEST(PlaneZone, IsTheNarrowestSlabThatAnyFacesOrEdgesSpan) {
    seeded_random random(32);
    int found = 0;
    for (int trial = 0; trial < 4500; ++trial) {
        SCOPED_TRACE(trial);
        auto const points = random_zone_points(random, trial % zone_families);
        double zone = -1;
        plane const middle = plane_zone_fit(as_array(points), zone);
        if (middle.is_trivial()) continue;  // repeated points, or points on one line
        ++found;
        ASSERT_TRUE(near_at_scale(zone, least_slab(points), extent_of(points), 1e-14, rounding));
    }
    EXPECT_GT(found, 4200);
}

// The slab of a list does not change by points inside, however many hide its corners.
TEST(PlaneZone, FindsTheCornersAmongManyPoints) {
    seeded_random random(33);
    for (int trial = 0; trial < 10; ++trial) {
        auto points = random_zone_points(random, trial % 2 == 0 ? 0 : 7);
        if (points.size() < 4) continue;
        double const expected = least_slab(points);
        std::size_t const corners = points.size();
        for (int i = 0; i < 20000; ++i) {
            point inside = points[random.below(static_cast<unsigned int>(corners))];
            for (int k = 0; k < 4; ++k) {
                point const& other = points[random.below(static_cast<unsigned int>(corners))];
                inside += random.uniform(0, 0.9) * (other - inside);
            }
            points.push_back(inside);
        }
        double zone = -1;
        plane_zone_fit(as_array(points), zone);
        EXPECT_TRUE(near_at_scale(zone, expected, extent_of(points), 1e-9, "interior points round outwards"));
    }
}

// Surfaces on which all sides are decided by the last digits, or tie.
TEST(PlaneZone, OfRuledAndFlatSurfacesHasTheCornersAlone) {
    seeded_random random(34);
    for (double const step : {0.1, 1.0, 1 / 3.0}) {
        // z = k x y is straight along its sides, so that its hull is the solid of the four corners.
        std::vector<point> saddle, flat;
        int const m = 60;
        for (int i = 0; i < m * m; ++i) {
            double const x = step * (i % m), y = step * (i / m);
            saddle.push_back(at(x, y, 1e-4 * x * y));
            double const u = random.uniform(-step, step), v = random.uniform(-step, step);
            flat.push_back(at(u, v, 0.3 * u + 0.7 * v));
        }
        std::vector<point> const corners{saddle[0], saddle[m - 1], saddle[m * (m - 1)], saddle[m * m - 1]};
        double zone = -1;
        plane_zone_fit(as_array(saddle), zone);
        EXPECT_TRUE(near_at_scale(zone, least_slab(corners), m * step, 1e-14, rounding));
        plane_zone_fit(as_array(flat), zone);
        EXPECT_LE(zone, 1e-15 * step);
        EXPECT_GE(zone, 0);
    }
}

TEST(Zones, AgreeWithPublishedSets) {
    // K. Pearson, Phil. Mag. 2 (1901) 559; the strip worked out in 60 digits from every hull edge.
    double const pearson[][2] = {{0, 5.9},   {0.9, 5.4}, {1.8, 4.4}, {2.6, 4.6}, {3.3, 3.5},
                                 {4.4, 3.7}, {5.2, 2.8}, {6.1, 2.8}, {6.5, 2.4}, {7.4, 1.5}};
    std::vector<point> line_points;
    for (auto const& p : pearson) line_points.push_back(at(p[0], p[1]));
    double zone = 0;
    line const middle = line_zone_fit(line_points, zone);
    EXPECT_NEAR(zone, 0.6708203932499373, 2e-16);
    EXPECT_NEAR(middle.direction().x(), 0.8944271909999159, 2e-16);  // from the first point to the last
    EXPECT_NEAR(cross2d(at(3.786, 3.632) - middle.basis(0), middle.direction()), 0, 1e-15);

    // plane.txt of the OSGeoLabBp tutorials: the nodes of a grid with z in hundredths.
    int const z[] = {133, 200, 267, 333, 400, 167, 233, 300, 367, 433, 200, 267, 333,
                     400, 467, 233, 300, 367, 433, 500, 267, 333, 400, 467, 533};
    std::vector<point> plane_points;
    for (int i = 0; i < 25; ++i) plane_points.push_back(at(i % 5, i / 5, z[i] / 100.0));
    plane const surface = plane_zone_fit(as_array(plane_points), zone);
    EXPECT_NEAR(zone, 0.005345224838248374, 1e-15);
    EXPECT_NEAR(surface.normal().x(), -0.5345224838248488, 1e-14);
    EXPECT_NEAR(surface.normal().y(), -0.2672612419124244, 1e-14);
}

TEST(LineZone, RunsThroughTheMiddleInTheOrderOfMeasurement) {
    // A rectangle of 4 by 1, measured right to left: its middle line, 4 long.
    double zone = -1;
    line const found = line_zone_fit({at(4, 0, 1), at(4, 1, 2), at(0, 1, 3), at(0, 0, 6)}, zone);
    EXPECT_EQ(zone, 1);
    EXPECT_EQ(found.length(), 4);
    EXPECT_TRUE(found.direction() == point(false, -1, 0) || found.direction() == point(false, -1, 0, 0));
    EXPECT_TRUE(found.basis(0) == at(2, 0.5, 3)) << "the middle, at the mean z";
    // Of the equal strips of a square the one on the edge that starts at its lower left corner.
    line const square = line_zone_fit({at(0, 0), at(1, 0), at(1, 1), at(0, 1), at(0.5, 0.5)});
    EXPECT_EQ(square.direction().y(), 0);
    EXPECT_TRUE(line_zone_fit({at(0, 0)}, zone).is_trivial());
    EXPECT_EQ(zone, 0);
    EXPECT_EQ(line_zone_fit({at(1, 2), at(4, 6)}, zone).length(), 5);
    EXPECT_EQ(zone, 0);
    EXPECT_EQ(line_zone_fit({at(0, 0), at(2, 1), at(4, 2)}, zone).length(), std::sqrt(20.0));
    EXPECT_EQ(zone, 0);
}

TEST(PlaneParallelZone, StaysParallelAndTakesTheMiddle) {
    plane const given(at(0, 0, 1e6), point(false, 0, 0, -2));
    double zone = -1;
    plane const middle =
        plane_parallel_zone_fit(given, as_array({at(0, 0, 1), at(4, 0, 2), at(0, 2, 5), at(4, 2)}), zone);
    EXPECT_EQ(zone, 5) << "the 2D point lies in z = 0";
    EXPECT_TRUE(middle.basis(0) == at(2, 1, 2.5));
    EXPECT_TRUE(plane_parallel_zone_fit(plane(), as_array({at(0, 0, 0)}), zone).is_trivial());
    EXPECT_TRUE(plane_parallel_zone_fit(given, as_array({}), zone).is_trivial());

    plane const moved = plane_parallel_centered(given, at(1, 2, 3));
    EXPECT_TRUE(moved.basis(0) == at(1, 2, 3));
    for (int i = 1; i <= 3; ++i) EXPECT_TRUE(moved.basis(i) == given.basis(i));
    EXPECT_TRUE(plane_parallel_centered(plane(), at(1, 2, 3)).is_trivial());
    EXPECT_TRUE(plane_parallel_centered(given, point()).is_trivial());
}

TEST(Zones, RefuseWhatIsNoPoint) {
    double const nan = std::numeric_limits<double>::quiet_NaN(),
                 inf = std::numeric_limits<double>::infinity();
    auto const good = std::vector<point>{at(0, 0, 0), at(3, 0, 0), at(0, 3, 1), at(3, 3, 4), at(1, 1, 1)};
    plane const given(at(0, 0, 0), point(false, 0, 0, 1));
    for (point const& bad : {point(), at(nan, 0, 0), at(0, inf, 0), at(0, 0, -inf)}) {
        for (std::size_t i = 0; i < good.size(); ++i) {
            auto points = good;
            points[i] = bad;
            double zone = 7, radius = 7;
            point center;
            idioms::array<point> contacts;
            EXPECT_TRUE(line_zone_fit(points, zone).is_trivial());
            EXPECT_EQ(zone, 0);
            zone = 7;
            EXPECT_TRUE(plane_zone_fit(as_array(points), zone).is_trivial());
            EXPECT_TRUE(plane_parallel_zone_fit(given, as_array(points), zone).is_trivial());
            EXPECT_TRUE(seating_plane_fit(as_array(points), true, contacts).is_trivial());
            EXPECT_FALSE(minimum_circumscribed_sphere(points, center, radius));
            EXPECT_TRUE(zone == 7 && radius == 7 && center.is_trivial() && contacts.capacity() == 0);
        }
    }
    EXPECT_TRUE(plane_zone_fit(as_array({at(0, 0), at(1, 0), at(0, 1), at(2, 2)})).is_trivial()) << "2D";
}

TEST(Zones, HoldForTinyAndHugePoints) {
    for (double const s : {0x1p-900, 0x1p-300, 0x1p300, 0x1p900}) {
        // A box of 3 by 2 by 1.
        std::vector<point> points;
        for (int i = 0; i < 8; ++i) points.push_back(at(s * 3 * (i & 1), s * (i & 2), s * (i >> 2)));
        double zone = 0, radius = 0;
        point center;
        line_zone_fit(points, zone);
        EXPECT_EQ(zone / s, 2);
        ASSERT_TRUE(minimum_circumscribed_sphere(points, center, radius));
        EXPECT_DOUBLE_EQ(radius / s, std::sqrt(3.5));
    }
}

}  // namespace
}  // namespace tvmath
