#include "tvmath/delaunay.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <map>
#include <set>
#include <utility>
#include <vector>

#include "support/seeded_random.h"
#include "tvmath/point.h"

inline namespace tvmath {
namespace {

__extension__ using int128 = __int128;

// Points on a lattice of integers up to 2^29, where every determinant of this test is exact in 128 bits. They
// are given to the library scaled and moved, without rounding.
using node = std::pair<std::int64_t, std::int64_t>;
using nodes = std::vector<node>;
using triangle = std::array<node, 3>;

int128 turn(node a, node b, node c) {
    return int128(a.first - c.first) * (b.second - c.second) -
           int128(a.second - c.second) * (b.first - c.first);
}

// Above 0 when d is inside the circle through a, b, c, anticlockwise.
int128 in_circle(node a, node b, node c, node d) {
    auto const lift = [&](node p) {
        int128 const x = p.first - d.first, y = p.second - d.second;
        return x * x + y * y;
    };
    return lift(a) * turn(b, c, d) + lift(b) * turn(c, a, d) + lift(c) * turn(a, b, d);
}

// Points on the border of the convex hull, those inside its sides too, each once: monotone chains of A.
// Andrew.
std::set<node> hull_border(std::set<node> const& points, int128& twice_area) {
    std::set<node> border;
    twice_area = 0;
    for (int const side : {1, -1}) {
        nodes chain;
        for (node const& p : points) {
            while (chain.size() > 1 && side * turn(chain[chain.size() - 2], chain.back(), p) < 0)
                chain.pop_back();
            chain.push_back(p);
        }
        border.insert(chain.begin(), chain.end());
        for (std::size_t i = 1; i < chain.size(); ++i)
            twice_area += side * turn(chain[0], chain[i - 1], chain[i]);
    }
    return border;
}

struct placement {
    int exponent;
    std::int64_t offset;
};

// A triangulation in buffers of just the documented size, with a guard behind each.
struct result {
    std::vector<double> xy;
    std::vector<Delaunay::Edge> edges;
    std::vector<Delaunay::Triad> triads;
    bool guards_hold = true;

    explicit result(std::vector<double> coordinates) : xy(std::move(coordinates)) {
        auto const n = static_cast<unsigned int>(xy.size() / 2);
        unsigned int const capacity = Delaunay::delaunay_triangulation__edge_buffer_count(n);
        Delaunay::Edge const guard = {xy.data(), nullptr, nullptr, nullptr, nullptr, nullptr, true, false};
        edges.assign(capacity + 4, guard);
        unsigned int const count = Delaunay::delaunay_triangulation(xy.data(), n, 16, edges.data());
        guards_hold = count <= capacity;
        for (unsigned int i = capacity; i < edges.size(); ++i) {
            guards_hold = guards_hold && std::memcmp(&edges[i], &guard, sizeof guard) == 0;
        }
        unsigned int const triangles = Delaunay::make_mesh__triad_count(n, count);
        triads.assign(triangles + 4, Delaunay::Triad{nullptr, nullptr, nullptr});
        Delaunay::make_mesh(edges.data(), count, triads.data());
        for (unsigned int i = 0; i < triads.size(); ++i) {
            guards_hold = guards_hold && (triads[i].a != nullptr) == (i < triangles);
        }
        edges.resize(count);
        triads.resize(triangles);
    }
    result(nodes const& points, placement where) : result(placed(points, where)) {}

    static std::vector<double> placed(nodes const& points, placement where) {
        std::vector<double> xy;
        for (node const& p : points) {
            xy.push_back(std::ldexp(static_cast<double>(p.first + where.offset), where.exponent));
            xy.push_back(std::ldexp(static_cast<double>(p.second - where.offset), where.exponent));
        }
        return xy;
    }
    std::size_t index(double const* p) const { return static_cast<std::size_t>(p - xy.data()) / 2; }
};

// Each side of an edge that bounds a triangle is followed by two edges that lead back to it.
void expect_links(Delaunay::Edge const& e, bool left) {
    double const *const end = left ? e.b : e.a, *const start = left ? e.a : e.b;
    Delaunay::Edge const &next = left ? *e.left_next : *e.right_next,
                         &prev = left ? *e.left_prev : *e.right_prev;
    double const* const corner = next.a == end ? next.b : next.a;
    EXPECT_TRUE((next.a == end ? next.left_prev : next.right_prev) == &e);
    EXPECT_TRUE((next.a == end ? next.left_next : next.right_next) == &prev);
    EXPECT_TRUE((prev.a == corner && prev.b == start) || (prev.b == corner && prev.a == start));
}

void expect_edges(result const& r, std::size_t repeated, std::size_t border, bool on_a_line) {
    std::size_t hull = 0, lone = 0;
    for (Delaunay::Edge const& e : r.edges) {
        EXPECT_FALSE(e.in_stack);
        bool const same = e.a[0] == e.b[0] && e.a[1] == e.b[1];
        lone += same;
        hull += e.on_hull && !same;
        if (same || on_a_line) {
            EXPECT_TRUE(e.on_hull && e.left_next == &e && e.left_prev == &e);
            continue;
        }
        expect_links(e, true);
        if (!e.on_hull) expect_links(e, false);
        EXPECT_TRUE(!e.on_hull ||
                    (e.right_next->b == e.a && e.right_prev->a == e.b && e.right_next->on_hull));
    }
    EXPECT_EQ(lone, repeated);
    EXPECT_EQ(hull, on_a_line ? r.edges.size() - repeated : border);
}

// Anticlockwise triangles that border each side once and whose areas sum up to the hull's tile it; a tiling
// of which no two neighbours' circles hold each other's corner is Delaunay everywhere (B. Delaunay, 1934).
void expect_delaunay(nodes const& points, result const& r) {
    std::set<node> const distinct(points.begin(), points.end());
    int128 hull_area = 0, area = 0;
    std::size_t const border = hull_border(distinct, hull_area).size(), n = distinct.size();
    bool const on_a_line = hull_area == 0;
    ASSERT_TRUE(r.guards_hold);
    ASSERT_EQ(r.triads.size(), on_a_line ? 0 : 2 * n - 2 - border);
    ASSERT_EQ(r.edges.size(), (on_a_line ? n - 1 : 3 * n - 3 - border) + points.size() - n);
    expect_edges(r, points.size() - n, border, on_a_line);

    std::map<std::pair<node, node>, node> corner_behind;
    for (Delaunay::Triad const& t : r.triads) {
        triangle const c = {points[r.index(t.a)], points[r.index(t.b)], points[r.index(t.c)]};
        ASSERT_TRUE(turn(c[0], c[1], c[2]) > 0);
        area += turn(c[0], c[1], c[2]);
        for (std::size_t i = 0; i < 3; ++i) {
            ASSERT_TRUE(corner_behind.try_emplace({c[i], c[(i + 1) % 3]}, c[(i + 2) % 3]).second);
        }
    }
    EXPECT_TRUE(area == hull_area);
    for (auto const& [side, corner] : corner_behind) {
        auto const other = corner_behind.find({side.second, side.first});
        if (other == corner_behind.end()) continue;
        int128 const power = in_circle(side.first, side.second, corner, other->second);
        ASSERT_FALSE(power > 0);
        // Of four on a circle, the last counts as outside: no diagonal leads to it.
        ASSERT_TRUE(power != 0 || std::max(side.first, side.second) < std::max(corner, other->second));
    }
}

std::int64_t rounded(double x) {
    return std::llround(x);
}

constexpr double reach = 0x1p27;

// Families in which many points are on one line, on one circle, equal, or nearly so.
struct {
    char const* name;
    node (*make)(seeded_random& random, double i, double n);
} const families[] = {
    {"square",
     [](seeded_random& r, double, double) {
         return node(rounded(r.uniform(-reach, reach)), rounded(r.uniform(-reach, reach)));
     }},
    {"few places, most repeated",
     [](seeded_random& r, double, double) { return node(r.below(6), r.below(7)); }},
    {"grid",
     [](seeded_random&, double i, double n) {
         double const side = std::ceil(std::sqrt(n));
         return node(rounded(std::fmod(i, side)), rounded(std::floor(i / side)));
     }},
    {"grid with coarse step",
     [](seeded_random& r, double, double n) {
         auto const side = static_cast<unsigned int>(std::sqrt(n) + 1);
         return node(13421773 * std::int64_t{r.below(side)} / side,
                     13421773 * std::int64_t{r.below(side)} / side);
     }},
    {"circle",
     [](seeded_random&, double i, double n) {
         return node(rounded(reach * std::cos(6.283185307179586 * i / n)),
                     rounded(reach * std::sin(6.283185307179586 * i / n)));
     }},
    {"circle of 25, exactly",
     [](seeded_random& r, double, double) {
         int const c[][2] = {{25, 0}, {24, 7}, {20, 15}, {15, 20}, {7, 24}, {0, 25}};
         auto const& p = c[r.below(6)];
         return node(r.coin() ? p[0] : -p[0], r.coin() ? p[1] : -p[1]);
     }},
    {"spiral",
     [](seeded_random&, double i, double n) {
         double const s = reach * i / n;
         return node(rounded(s * std::cos(0.7 * i)), rounded(s * std::sin(0.7 * i)));
     }},
    {"clusters",
     [](seeded_random& r, double, double) {
         return node((std::int64_t{r.below(4)} << 26) + r.below(9),
                     (std::int64_t{r.below(4)} << 26) + r.below(9));
     }},
    {"line",
     [](seeded_random& r, double, double) {
         std::int64_t const t = r.below(1u << 20);
         return node(3 * t, -7 * t);
     }},
    {"vertical line", [](seeded_random& r, double, double) { return node(5, r.below(1000)); }},
    {"nearly a line",
     [](seeded_random& r, double i, double n) {
         std::int64_t const t = rounded(i * reach / n);
         return node(t, t + r.below(3));
     }},
    {"line and one point",
     [](seeded_random& r, double i, double n) { return node(i < n - 1 ? 0 : 9, r.below(1u << 10)); }},
    {"two lines", [](seeded_random&, double i,
                     double) { return node(rounded(std::fmod(i, 2)), rounded(std::floor(i / 2))); }},
    {"rectangle",
     [](seeded_random& r, double, double) {
         std::int64_t const t = r.below(1000), side = 1000 * r.coin();
         return r.coin() ? node(t, side) : node(side, t);
     }},
    {"neighbours of the golden line",
     [](seeded_random& r, double, double) {
         std::int64_t a = 0, b = 1;
         for (unsigned int k = r.below(42); k > 0; --k) a = std::exchange(b, a + b);
         return node(a, b);
     }},
    {"parabola",
     [](seeded_random&, double i, double n) {
         double const t = i - n / 2;
         return node(rounded(t), rounded(t * t));
     }},
};

TEST(Delaunay, OfEveryFamilyIsExactAtEverySizeAndPlace) {
    // Plain, far from the origin, the smallest and the largest doubles.
    placement const places[] = {{0, 0}, {-20, std::int64_t{1} << 51}, {-1074, 0}, {995, 0}, {-640, 1 << 28}};
    seeded_random random(11);
    for (auto const& family : families) {
        for (int trial = 0; trial < 150; ++trial) {
            double const n = trial < 100 ? 2 + trial / 4 : trial < 145 ? 30 + 4 * (trial - 100) : 2000;
            nodes points;
            for (double i = 0; i < n; ++i) points.push_back(family.make(random, i, n));
            placement const& where = places[static_cast<unsigned int>(trial % 5)];
            SCOPED_TRACE(std::string(family.name) + ", trial " + std::to_string(trial));
            expect_delaunay(points, result(points, where));
            if (HasFatalFailure() || HasNonfatalFailure()) return;
        }
    }
}

TEST(Delaunay, CountsByHand) {
    EXPECT_EQ(Delaunay::delaunay_triangulation__edge_buffer_count(1), 0u);
    EXPECT_EQ(Delaunay::delaunay_triangulation__edge_buffer_count(2), 1u);
    EXPECT_EQ(Delaunay::delaunay_triangulation__edge_buffer_count(10), 25u);
    EXPECT_EQ(Delaunay::delaunay_triangulation__edge_buffer_count(4000000000u), 0u);
    EXPECT_EQ(Delaunay::make_mesh__triad_count(3, 0), 0u);
    EXPECT_EQ(Delaunay::make_mesh__triad_count(3, 3), 1u);
    EXPECT_EQ(Delaunay::make_mesh__triad_count(4, 5), 2u);
    Delaunay::Edge edge;
    EXPECT_EQ(Delaunay::delaunay_triangulation(nullptr, 0, 16, &edge), 0u);
    EXPECT_EQ(Delaunay::delaunay_triangulation(nullptr, 1, 16, &edge), 0u);

    // Two points come in their order, with all links to the one edge.
    result const two({3, 4, 1, 2});
    ASSERT_EQ(two.edges.size(), 1u);
    Delaunay::Edge const& e = two.edges[0];
    EXPECT_TRUE(e.a == &two.xy[0] && e.b == &two.xy[2] && e.on_hull && !e.in_stack);
    EXPECT_TRUE(e.left_prev == &e && e.left_next == &e && e.right_prev == &e && e.right_next == &e);
}

// A stride that leaves every other double unaligned, and a list of points as it lies in memory.
TEST(Delaunay, ReadsAnyStride) {
    std::vector<point> const list = {point(true, 0, 0), point(true, 2, 0), point(true, 0, 2),
                                     point(true, 3, 3)};
    Delaunay::Edge edges[7];
    ASSERT_EQ(Delaunay::delaunay_triangulation(&list[0][1], 4, sizeof(point), edges), 5u);
    Delaunay::Triad triads[2];
    Delaunay::make_mesh(edges, 5, triads);
    // (3, 3) is outside the circle about (1, 1): the diagonal runs from (2, 0) to (0, 2).
    for (Delaunay::Triad const& t : triads) {
        std::set<double const*> const corners = {t.a, t.b, t.c};
        EXPECT_TRUE(corners.count(&list[1][1]) == 1 && corners.count(&list[2][1]) == 1);
    }
}

// Doubles of every exponent, in which some digits are 2^2000 times smaller than others.
TEST(Delaunay, OfAnyBitsStaysInItsBuffersAndKeepsEveryPoint) {
    seeded_random random(12);
    for (int trial = 0; trial < 2000; ++trial) {
        std::vector<double> xy(2 * (2 + random.below(60)));
        bool finite = true;
        for (double& x : xy) {
            std::uint64_t const bits = random.bits();
            std::memcpy(&x, &bits, sizeof x);
            if (trial % 4 != 0 && !std::isfinite(x)) x = 1;
            if (trial % 8 == 0 && random.below(100) == 0) x = std::numeric_limits<double>::quiet_NaN();
            finite = finite && std::isfinite(x);
        }
        result const r(xy);
        ASSERT_TRUE(r.guards_hold) << trial;
        std::set<double const*> ends;
        for (Delaunay::Edge const& e : r.edges) ends.insert({e.a, e.b});
        ASSERT_EQ(ends.size(), finite ? xy.size() / 2 : 0) << trial;
    }
}

}  // namespace
}  // namespace tvmath
