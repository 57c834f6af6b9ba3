#include "tvmath/point_finder.h"

#include <gtest/gtest.h>

#include "finder_checks.h"

inline namespace tvmath {
namespace {

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

point_family const families[] = {
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
    for (point_family const& family : families) {
        for (int trial = 0; trial < 60; ++trial) {
            SCOPED_TRACE(std::string(family.name) + " " + std::to_string(trial));
            auto const points = family.list(random, TestFixture::is_3d);
            TypeParam finder;
            finder.construct(points);
            point query = points[0];
            for (int k = 0; k < 40; ++k) {
                family.move(query, random, points, k);
                double least = infinite, most = -infinite;
                for (point const& p : points) {
                    double const d = TestFixture::distance(p, query);
                    if (d < least) least = d;
                    if (d > most) most = d;
                }
                unsigned int closest = 0, farthest = 0;
                bool const is_near = is_finite(query) && least < infinite,
                           is_far = is_finite(query) && most >= 0;
                ASSERT_EQ(finder.find_closest(query, closest), is_near);
                ASSERT_EQ(finder.find_farthest(query, farthest), is_far);
                ASSERT_EQ(finder.find_closest(query), is_near ? points[closest] : point());
                if (is_near) {
                    ASSERT_EQ(TestFixture::distance(points[closest], query), least);
                }
                if (is_far) {
                    ASSERT_EQ(TestFixture::distance(points[farthest], query), most);
                }
            }
        }
    }
}

// The leaf that answers by a walk over the whole tree, the side of the query first: of leaves that are just
// as near the last answer, else the first on the way.
template <class finder>
class whole_walk {
    static constexpr unsigned int dimension = std::is_same_v<finder, PointFinder3D> ? 3 : 2;

public:
    static constexpr std::uint32_t nowhere = 0xFFFFFFFFu;

    whole_walk(finder const& f, point const& query) : tree_(block_of(f).data()), query_(query) {
        std::uint32_t const last = offset_of(f, 0);
        if (last != nowhere) meet(last);
        visit(0, dimension == 3 ? 1 : 0);
    }
    std::uint32_t leaf() const { return leaf_; }

private:
    void meet(std::uint32_t leaf) {
        double sum = 0;
        for (unsigned int i = 0; i < dimension; ++i) {
            double const d = read<double>(tree_, leaf + 8 + 8 * i) - query_[1 + i];
            sum += d * d;
        }
        if (sum < least_) least_ = sum, leaf_ = leaf;
    }
    void visit(std::uint32_t offset, unsigned int axis) {
        std::uint32_t const second = read<std::uint32_t>(tree_, offset), next = (axis + 1) % dimension;
        if (second == 0) {
            return meet(offset);
        }
        bool const is_second_first = query_[1 + axis] >= read<double>(tree_, offset + 20);
        visit(offset + (is_second_first ? second : 28), next);
        visit(offset + (is_second_first ? 28 : second), next);
    }

    unsigned char const* tree_;
    point const& query_;
    double least_ = infinite;
    std::uint32_t leaf_ = nowhere;
};

// Straight ways in steps of all lengths with turns, rests and jumps between; on the way finders are copied,
// assigned and built anew. To the leaf, so that ties count.
TYPED_TEST(PointFinder, AnswersOnAWayAsFromTheRoot) {
    seeded_random random(10);
    for (point_family const& family : families) {
        for (int trial = 0; trial < 24; ++trial) {
            SCOPED_TRACE(std::string(family.name) + " " + std::to_string(trial));
            std::vector<point> points;
            auto const build = [&](auto& f) {
                points.clear();
                for (int i = trial % 2 == 0 ? 40 : 400; i > 0; --i) {
                    points.push_back(family.draw(random, TestFixture::is_3d, i));
                }
                if (trial % 3 == 0) points.insert(points.end(), points.begin(), points.begin() + 20);
                f.construct(points);
            };
            TypeParam finder, other;
            build(finder);
            point query = points[0], step = query;
            for (int k = 0; k < 300; ++k) {
                unsigned int const event = random.below(60);
                if (event == 0) query = points[random.below(40)];
                if (event == 1) other = finder;
                if (event == 2) std::swap(finder, other);
                if (event == 3 && k > 200) build(finder);
                if (event == 4) finder.clear(), finder.construct(points);
                if (event < 9 || k == 0) {
                    point const &a = points[random.below(40)], &b = points[random.below(40)];
                    double const length = event == 5 ? 0 : random.log_uniform(1e-4, 1);
                    for (unsigned int i = 1; i < 4; ++i) step[i] = length * (b[i] - a[i]);
                }
                for (unsigned int i = 1; i < 4; ++i) query[i] += step[i];
                if (!is_finite(query)) query = step = TestFixture::at(0.1, 0, 0);
                if (block_of(finder).empty()) continue;
                std::uint32_t const expected = whole_walk<TypeParam>(finder, query).leaf();
                unsigned int index = 0;
                bool const is_near = expected != whole_walk<TypeParam>::nowhere;
                ASSERT_EQ(finder.find_closest(query, index), is_near);
                if (is_near) {
                    ASSERT_EQ(offset_of(finder, 0), expected);
                    ASSERT_EQ(index, read<std::uint32_t>(block_of(finder).data(), expected + 4));
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

// Without an answer to keep: nearest goes first to the side that the query is on, which at the split itself
// is the second one; farthest goes first to the other one. Points a to d in the corners of a square, worked
// by hand.
TEST(PointFinder2D, AnswersTheFirstTieOnItsWay) {
    PointFinder2D finder;
    for (auto const& [x, y, closest, farthest] :
         {std::tuple(0.0, 0.0, 3u, 0u), std::tuple(-0.5, 0.0, 1u, 2u), std::tuple(0.0, -0.5, 2u, 1u)}) {
        finder.construct({point(true, -1, -1), point(true, -1, 1), point(true, 1, -1), point(true, 1, 1)});
        unsigned int index = 9;
        ASSERT_TRUE(finder.find_closest(point(true, x, y), index));
        EXPECT_EQ(index, closest);
        ASSERT_TRUE(finder.find_farthest(point(true, x, y), index));
        EXPECT_EQ(index, farthest);
    }
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
        if (is_leaf) indices.push_back(read<std::uint32_t>(block.data(), r.offset + 4));
        EXPECT_EQ(read<std::uint32_t>(block.data(), r.offset), r.head);
        std::size_t const values = r.offset + (is_leaf ? 8 : 4);
        EXPECT_EQ(std::memcmp(&block[values], r.values.data(), 8 * r.values.size()), 0);
    }
    EXPECT_EQ(indices, (std::vector<std::uint32_t>{0, 2, 1}));
    EXPECT_TRUE(finder.find_closest(point(true, 6, 1)) == point(true, 5, 1));
    EXPECT_TRUE(finder.find_farthest(point(true, 6, 1)) == point(true, 1, 8));
    EXPECT_EQ(offset_of(finder, 0), 104u);
    EXPECT_EQ(offset_of(finder, 1), 80u);
}

// By y first, then z, then x. Equal coordinates: the first half of the list goes to the first child.
TEST(PointFinder3D, SplitsByYThenZThenX) {
    PointFinder3D finder;
    finder.construct({point(true, 4, 0, 0), point(true, 2, 0, 0), point(true, 0, 0, 2), point(true, 1, 9)});
    unsigned char const* const tree = block_of(finder).data();
    ASSERT_EQ(block_of(finder).size(), 4u * 32 + 3 * 28);
    EXPECT_EQ(read<double>(tree, 20), 2.25);               // y of 0, 0, 0, 9
    EXPECT_EQ(read<double>(tree, 28 + 20), 2.0 / 3);       // z of 0, 0, 2
    EXPECT_EQ(read<double>(tree, 2 * 28 + 20), 3);         // x of 4, 2
    EXPECT_EQ(read<std::uint32_t>(tree, 3 * 28 + 4), 1u);  // (2, 0, 0) is below that mean
    finder.construct({point(true, 1, 1, 1), point(true, 1, 1, 1), point(true, 1, 1, 1)});
    EXPECT_EQ(read<std::uint32_t>(block_of(finder).data()), 28u + 32);
    EXPECT_EQ(read<std::uint32_t>(block_of(finder).data(), 28 + 4), 0u);
    EXPECT_EQ(read<std::uint32_t>(block_of(finder).data(), 28 + 32 + 28 + 4), 1u);
}

TYPED_TEST(PointFinder, IsEmptyUntilBuiltAndAfterClear) {
    TypeParam finder;
    point const query = TestFixture::at(9, 9, 9), only = TestFixture::at(1, 2, 3);
    auto const expect_empty = [&](char const* when) {
        SCOPED_TRACE(when);
        unsigned int index = 7;
        EXPECT_FALSE(finder.find_closest(query, index) || finder.find_farthest(query, index));
        EXPECT_EQ(index, 7u);
        EXPECT_TRUE(finder.find_closest(query).is_trivial() && finder.find_farthest(query).is_trivial());
        EXPECT_EQ(offset_of(finder, 0), 0xFFFFFFFFu);
        EXPECT_EQ(offset_of(finder, 1), 0xFFFFFFFFu);
    };
    expect_empty("new");
    finder.construct({only});
    EXPECT_TRUE(finder.find_closest(query) == only && finder.find_farthest(query) == only);
    TypeParam const copy = finder;
    finder.clear();
    expect_empty("cleared");
    finder.construct({});
    expect_empty("built from nothing");
    unsigned int index = 7;
    EXPECT_TRUE(copy.find_closest(query, index));
    EXPECT_EQ(index, 0u);
}

}  // namespace
}  // namespace tvmath
