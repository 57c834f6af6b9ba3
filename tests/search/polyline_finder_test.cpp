#include "tvmath/polyline_finder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "finder_checks.h"

inline namespace tvmath {
namespace {

template <class finder>
struct PolyLineFinder : testing::Test {
    static bool constexpr is_3d = std::is_same_v<finder, PolyLineFinder3D>;

    static point at(double x, double y, double z) { return is_3d ? point(true, x, y, z) : point(true, x, y); }
    static float distance(point const& a, point const& b) {
        float const x = static_cast<float>(a.x() - b.x()), y = static_cast<float>(a.y() - b.y());
        float const z = is_3d ? static_cast<float>(a.z() - b.z()) : 0;
        return x * x + y * y + z * z;
    }

    // Squared distance from the nearest segment, by a walk over all of them in single precision.
    static float least_distance(std::vector<point> const& points, point const& q) {
        point start = points[0];
        float least = std::numeric_limits<float>::infinity();
        bool is_single = true;
        for (std::size_t k = 1; k <= points.size(); ++k) {
            bool const is_end = k == points.size();
            if (is_end && !is_single) break;
            point const end = is_end ? start : points[k];
            float const x = static_cast<float>(end.x() - start.x()),
                        y = static_cast<float>(end.y() - start.y());
            float const z = is_3d ? static_cast<float>(end.z() - start.z()) : 0;
            float const l = x * x + y * y + z * z;
            if (l < 1e-32f && !is_end) continue;
            is_single = false;
            float t = is_end ? 0 : static_cast<float>(q.x() - start.x()) * (x / l);
            t += is_end ? 0 : static_cast<float>(q.y() - start.y()) * (y / l);
            if (is_3d && !is_end) t += static_cast<float>(q.z() - start.z()) * (z / l);
            double const u = t >= 1 ? 1 : t <= 0 ? 0 : static_cast<double>(t);
            float const d =
                distance(q, at(start.x() + u * static_cast<double>(x), start.y() + u * static_cast<double>(y),
                               start.z() + u * static_cast<double>(z)));
            if (d < least) least = d;
            start = end;
        }
        return least;
    }
};
using finders = testing::Types<PolyLineFinder2D, PolyLineFinder3D>;
TYPED_TEST_SUITE(PolyLineFinder, finders);

point_family const families[] = {
    {"random", [](auto& r, int, int) { return r.uniform(-5, 5); }},
    {"contour", [](auto& r, int axis, int i) { return 20 * std::cos(0.05 * i + axis) + 1e-3 * r.normal(); }},
    {"staircase on a grid", [](auto& r, int, int i) { return i / 2 + (r.coin() ? 1 : 0); }},
    {"straight", [](auto&, int axis, int i) { return axis == 0 ? i : 0.0; }},
    {"repeated points", [](auto& r, int, int) { return 0.5 * r.below(2); }},
    {"one place", [](auto&, int, int) { return 0.1; }},
    {"far away", [](auto& r, int, int) { return 1e7 + r.uniform(-1, 1); }},
    {"long and short", [](auto& r, int, int) { return r.log_uniform(1e-10, 1e10); }},
    {"broken",
     [](auto& r, int, int) {
         unsigned int const kind = r.below(30);
         return kind == 0 ? nan : kind == 1 ? infinite : kind == 2 ? 1e300 : r.uniform(-1, 1);
     }},
};

TYPED_TEST(PolyLineFinder, AgreesWithExhaustiveSearch) {
    seeded_random random(10);
    for (point_family const& family : families) {
        for (int trial = 0; trial < 40; ++trial) {
            SCOPED_TRACE(std::string(family.name) + " " + std::to_string(trial));
            auto const points = family.list(random, TestFixture::is_3d);
            TypeParam finder;
            finder.construct(points);
            point query = points[0];
            for (int k = 0; k < 30; ++k) {
                family.move(query, random, points, k);
                point const answer = finder.find_closest(query);
                float const least = TestFixture::least_distance(points, query);
                ASSERT_EQ(answer.is_trivial(), !is_finite(query) || !(least < infinite));
                if (answer.is_trivial()) continue;
                ASSERT_EQ(TestFixture::distance(query, answer), least);
            }
        }
    }
}

// Against the formula in double precision: what single precision loses is 1e-7 of a segment's length.
TYPED_TEST(PolyLineFinder, IsExactToSinglePrecisionOfASegment) {
    seeded_random random(11);
    for (double const far : {0.0, 1e6}) {
        std::vector<point> const points = {TestFixture::at(far, far, far),
                                           TestFixture::at(far + 3, far + 4, far)};
        TypeParam finder;
        finder.construct(points);
        for (int k = 0; k < 200; ++k) {
            double const t = random.uniform(-0.5, 1.5), side = random.uniform(-2, 2);
            point const query = TestFixture::at(far + 3 * t - 4 * side, far + 4 * t + 3 * side, far + side);
            double const u = std::min(std::max(t, 0.0), 1.0);
            EXPECT_LT(distance3d(finder.find_closest(query), TestFixture::at(far + 3 * u, far + 4 * u, far)),
                      2e-6);
        }
    }
}

TYPED_TEST(PolyLineFinder, IsEmptyUntilBuiltAndAfterClear) {
    TypeParam finder;
    point const query = TestFixture::at(9, 0, 0), corner = TestFixture::at(1, 2, 3);
    EXPECT_TRUE(finder.find_closest(query).is_trivial());
    finder.construct({});
    EXPECT_TRUE(finder.find_closest(query).is_trivial());
    for (std::size_t const count : {1u, 2u, 5u}) {
        finder.construct(std::vector<point>(count, corner));
        EXPECT_TRUE(finder.find_closest(query) == corner) << count;
    }
    TypeParam copy = finder;
    finder.clear();
    EXPECT_TRUE(finder.find_closest(query).is_trivial());
    EXPECT_TRUE(copy.find_closest(query) == corner);
}

// From (0, 0) by (4, 0) and (0, 2) to (-1, 2), with a point twice. Midpoints by x: the last segment, 1.5,
// then 2 and 4; the first half is one segment, the second one is sorted by y.
TEST(PolyLineFinder2D, HasTheBlockWorkedByHand) {
    PolyLineFinder2D finder;
    finder.construct(
        {point(true, 0, 0), point(true, 4, 0), point(true, 4, 0), point(true, 4, 2), point(true, -1, 2)});
    auto const& block = block_of(finder);
    ASSERT_EQ(block.size(), 3u * 32 + 2 * 40);
    EXPECT_EQ(offset_of(finder, 0), 96u);
    EXPECT_EQ(offset_of(finder, 1), 96u);
    double const starts[3][2] = {{0, 0}, {4, 0}, {4, 2}};
    float const directions[3][4] = {{4, 0, 0.25f, 0}, {0, 2, 0, 0.5f}, {-5, 0, -0.2f, 0}};
    for (std::size_t k = 0; k < 3; ++k) {
        EXPECT_EQ(std::memcmp(&block[32 * k], starts[k], 16), 0) << k;
        EXPECT_EQ(std::memcmp(&block[32 * k + 16], directions[k], 16), 0) << k;
    }
    double const boxes[2][4] = {{0, 4, 0, 2}, {-1, 4, 0, 2}};
    std::uint32_t const children[2][2] = {{0, 32}, {64, 96}};
    for (std::size_t k = 0; k < 2; ++k) {
        EXPECT_EQ(std::memcmp(&block[96 + 40 * k], boxes[k], 32), 0) << k;
        EXPECT_EQ(std::memcmp(&block[96 + 40 * k + 32], children[k], 8), 0) << k;
    }
    EXPECT_TRUE(finder.find_closest(point(true, -8, 3)) == point(true, -1, 2));
    EXPECT_EQ(offset_of(finder, 1), 64u);
    // As far from the first segment as from the last one, which is the last answer.
    EXPECT_EQ(finder.find_closest(point(true, 1, 1)).y(), 2);
}

}  // namespace
}  // namespace tvmath
