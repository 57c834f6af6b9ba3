#include "tvmath/point_finder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <functional>
#include <limits>

#include "support/seeded_random.h"

inline namespace tvmath {
namespace {

double constexpr infinite = std::numeric_limits<double>::infinity();
double constexpr nan = std::numeric_limits<double>::quiet_NaN();

template <class finder>
struct PointFinder : testing::Test {
    static bool constexpr is_3d = std::is_same_v<finder, PointFinder3D>;

    static point at(double x, double y, double z) { return is_3d ? point(true, x, y, z) : point(true, x, y); }
    static double distance(point const& a, point const& b) {
        double const x = a.x() - b.x(), y = a.y() - b.y(), z = is_3d ? a.z() - b.z() : 0;
        return x * x + y * y + z * z;
    }
};
using finders = testing::Types<PointFinder2D, PointFinder3D>;
TYPED_TEST_SUITE(PointFinder, finders);

using coordinate = std::function<double(seeded_random&, int axis, int i)>;

struct family {
    char const* name;
    coordinate draw;
};

family const families[] = {
    {"uniform", [](auto& r, int, int) { return r.uniform(-5, 5); }},
    {"ties on a grid", [](auto& r, int, int) { return 0.1 * r.below(6); }},
    {"equal", [](auto&, int, int) { return 0.1; }},
    {"plane across X", [](auto& r, int axis, int) { return axis == 0 ? 7.3 : r.uniform(-1, 1); }},
    {"on the diagonal", [](auto&, int, int i) { return 0.3 * i; }},
    {"clusters", [](auto& r, int, int) { return 10 * r.below(3) + 1e-3 * r.normal(); }},
    {"skewed", [](auto& r, int, int) { return (r.coin() ? 1 : -1) * r.log_uniform(1e-9, 1e9); }},
    {"far away", [](auto& r, int, int) { return 1e9 + r.uniform(-1, 1); }},
    // The mean of neighbouring numbers rounds to one of them or beyond, and separates nothing.
    {"steps of rounding", [](auto& r, int, int) { return 1 + 0x1p-52 * r.below(4); }},
    {"infinite sums", [](auto& r, int, int) { return r.below(8) == 0 ? 1e308 : r.uniform(-1, 1); }},
    {"with NaN and infinity",
     [](auto& r, int, int) {
         unsigned int const kind = r.below(20);
         return kind == 0 ? nan : kind == 1 ? infinite : kind == 2 ? -infinite : r.uniform(-1, 1);
     }},
};

// The distances are those of the exhaustive search to the last bit; which of several ties answers is open.
TYPED_TEST(PointFinder, AgreesWithExhaustiveSearch) {
    seeded_random random(6);
    for (family const& f : families) {
        for (int trial = 0; trial < 60; ++trial) {
            SCOPED_TRACE(std::string(f.name) + " " + std::to_string(trial));
            int const count = 1 + static_cast<int>(random.below(trial % 10 == 0 ? 700 : 20));
            auto const draw = [&](int i) {
                double const x = f.draw(random, 0, i), y = f.draw(random, 1, i);
                return TestFixture::at(x, y, f.draw(random, 2, i));
            };
            std::vector<point> points;
            for (int i = 0; i < count; ++i) points.push_back(draw(i));
            TypeParam finder;
            finder.construct(points);
            point query = draw(0);
            for (int k = 0; k < 40; ++k) {
                // By turns a new place, a point of the list and a place close to the last one.
                if (k % 4 == 0) query = draw(k);
                if (k % 4 == 1) query = points[random.below(static_cast<unsigned int>(count))];
                if (k % 4 == 2) query.x() += random.uniform(-0.1, 0.1);
                double least = infinite, most = -infinite;
                for (point const& p : points) {
                    double const d = TestFixture::distance(p, query);
                    if (d < least) least = d;
                    if (d > most) most = d;
                }
                bool const is_finite = std::isfinite(TestFixture::distance(query, query));
                unsigned int closest = 0, farthest = 0;
                ASSERT_EQ(finder.find_closest(query, closest), is_finite && least < infinite);
                ASSERT_EQ(finder.find_farthest(query, farthest), is_finite && most >= 0);
                if (is_finite && least < infinite) {
                    ASSERT_EQ(TestFixture::distance(points[closest], query), least);
                    ASSERT_TRUE(finder.find_closest(query) == points[closest]);
                }
                if (is_finite && most >= 0) {
                    ASSERT_EQ(TestFixture::distance(points[farthest], query), most);
                }
            }
        }
    }
}

TYPED_TEST(PointFinder, KeepsTheLastAnswerAmongTies) {
    TypeParam finder;
    finder.construct({TestFixture::at(-1, 0, 0), TestFixture::at(1, 0, 0), TestFixture::at(1, 0, 0)});
    for (double const side : {-1.0, 1.0, -1.0}) {
        unsigned int before = 9, tied = 9;
        ASSERT_TRUE(finder.find_closest(TestFixture::at(0.5 * side, 0, 0), before));
        ASSERT_TRUE(finder.find_closest(TestFixture::at(0, 1, 0), tied));
        EXPECT_EQ(tied, before);
        EXPECT_EQ(tied == 0, side < 0);
        ASSERT_TRUE(finder.find_farthest(TestFixture::at(0.5 * side, 0, 0), before));
        ASSERT_TRUE(finder.find_farthest(TestFixture::at(0, 1, 0), tied));
        EXPECT_EQ(tied, before);
        EXPECT_EQ(tied == 0, side > 0);
    }
}

// What a finder is made of: the block, then two 32-bit offsets.
template <class type>
type read(unsigned char const* from) {
    type value;
    std::memcpy(&value, from, sizeof value);
    return value;
}
template <class finder>
std::vector<unsigned char> const& block_of(finder const& f) {
    return reinterpret_cast<std::vector<unsigned char> const&>(f);
}
template <class finder>
std::uint32_t offset_of(finder const& f, int which) {
    return read<std::uint32_t>(reinterpret_cast<unsigned char const*>(&f) +
                               sizeof(std::vector<unsigned char>) + 4 * static_cast<std::size_t>(which));
}

// Root by x: mean 2 of 0, 5, 1. Below it (0, 0) and (1, 8) by y: mean 4.
TEST(PointFinder2D, HasTheTreeWorkedByHand) {
    PointFinder2D finder;
    finder.construct({point(true, 0, 0), point(true, 5, 1), point(true, 1, 8)});
    auto const& block = block_of(finder);
    ASSERT_EQ(block.size(), 3u * 24 + 2 * 28);
    struct record {
        std::size_t offset;
        std::uint32_t head;
        std::vector<double> values;
    };
    record const records[] = {
        {0, 104, {0, 5, 2}}, {28, 52, {0, 8, 4}}, {56, 0, {0, 0}}, {80, 0, {1, 8}}, {104, 0, {5, 1}}};
    std::vector<std::uint32_t> indices;
    for (record const& r : records) {
        SCOPED_TRACE(r.offset);
        bool const is_leaf = r.head == 0;
        if (is_leaf) indices.push_back(read<std::uint32_t>(&block[r.offset + 4]));
        EXPECT_EQ(read<std::uint32_t>(&block[r.offset]), r.head);
        for (std::size_t i = 0; i < r.values.size(); ++i) {
            EXPECT_EQ(read<double>(&block[r.offset + (is_leaf ? 8 : 4) + 8 * i]), r.values[i]);
        }
    }
    EXPECT_EQ(indices, (std::vector<std::uint32_t>{0, 2, 1}));
    EXPECT_EQ(offset_of(finder, 0), 0xFFFFFFFFu);
    EXPECT_TRUE(finder.find_closest(point(true, 6, 1)) == point(true, 5, 1));
    EXPECT_TRUE(finder.find_farthest(point(true, 6, 1)) == point(true, 1, 8));
    EXPECT_EQ(offset_of(finder, 0), 104u);
    EXPECT_EQ(offset_of(finder, 1), 80u);
}

// By y first, then z, then x. Equal coordinates: the first half of the list goes to the first child.
TEST(PointFinder3D, SplitsByYThenZThenX) {
    PointFinder3D finder;
    finder.construct({point(true, 4, 0, 0), point(true, 2, 0, 0), point(true, 0, 0, 2), point(true, 1, 9)});
    auto const& block = block_of(finder);
    ASSERT_EQ(block.size(), 4u * 32 + 3 * 28);
    EXPECT_EQ(read<double>(&block[20]), 2.25);               // y of 0, 0, 0, 9
    EXPECT_EQ(read<double>(&block[28 + 20]), 2.0 / 3);       // z of 0, 0, 2
    EXPECT_EQ(read<double>(&block[28 + 28 + 20]), 3);        // x of 4, 2
    EXPECT_EQ(read<std::uint32_t>(&block[3 * 28 + 4]), 1u);  // (2, 0, 0) is below that mean
    finder.construct({point(true, 1, 1, 1), point(true, 1, 1, 1), point(true, 1, 1, 1)});
    EXPECT_EQ(read<std::uint32_t>(&block_of(finder)[0]), 28u + 32);
    EXPECT_EQ(read<std::uint32_t>(&block_of(finder)[28 + 4]), 0u);
}

TYPED_TEST(PointFinder, IsEmptyUntilBuiltAndAfterClear) {
    TypeParam finder;
    auto const expect_empty = [&](char const* when) {
        SCOPED_TRACE(when);
        unsigned int index = 7;
        EXPECT_FALSE(finder.find_closest(TestFixture::at(0, 0, 0), index));
        EXPECT_FALSE(finder.find_farthest(TestFixture::at(0, 0, 0), index));
        EXPECT_EQ(index, 7u);
        EXPECT_TRUE(finder.find_closest(TestFixture::at(0, 0, 0)).is_trivial());
        EXPECT_TRUE(finder.find_farthest(TestFixture::at(0, 0, 0)).is_trivial());
        EXPECT_EQ(offset_of(finder, 0), 0xFFFFFFFFu);
        EXPECT_EQ(offset_of(finder, 1), 0xFFFFFFFFu);
    };
    expect_empty("new");
    finder.construct({TestFixture::at(1, 2, 3)});
    EXPECT_TRUE(finder.find_closest(TestFixture::at(9, 9, 9)) == TestFixture::at(1, 2, 3));
    TypeParam const copy = finder;
    finder.clear();
    expect_empty("cleared");
    finder.construct({});
    expect_empty("built from nothing");
    unsigned int index = 7;
    EXPECT_TRUE(copy.find_closest(TestFixture::at(9, 9, 9), index));
    EXPECT_EQ(index, 0u);
}

}  // namespace
}  // namespace tvmath
