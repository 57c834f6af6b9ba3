#include "tvmath/delaunay.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <map>
#include <set>
#include <sstream>
#include <utility>
#include <vector>

#include "support/seeded_random.h"

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

// Points on the border of the convex hull, those inside its sides too: monotone chains of A. Andrew.
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

using places = std::vector<std::array<double, 3>>;  // x, y and something that is not looked at

places placed(nodes const& points, int exponent, std::int64_t offset) {
    places list;
    for (auto const& [x, y] : points) {
        list.push_back(
            {std::ldexp(double(x + offset), exponent), std::ldexp(double(y - offset), exponent), NAN});
    }
    return list;
}

// A triangulation in buffers of just the documented size, with a guard behind each.
struct result {
    places list;
    std::vector<Delaunay::Edge> edges;
    std::vector<Delaunay::Triad> triads;
    bool guards_hold = true;

    explicit result(places points) : list(std::move(points)) {
        auto const n = static_cast<unsigned int>(list.size());
        unsigned int const capacity = Delaunay::delaunay_triangulation__edge_buffer_count(n);
        Delaunay::Edge const guard = {&list[0][0], nullptr, nullptr, nullptr, nullptr, nullptr, true, false};
        edges.assign(capacity + 4, guard);
        unsigned int const count =
            Delaunay::delaunay_triangulation(&list[0][0], n, sizeof list[0], edges.data());
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
    std::size_t index(double const* p) const { return static_cast<std::size_t>(p - &list[0][0]) / 3; }
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
        EXPECT_TRUE(!same || e.a < e.b);
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

struct draw {
    seeded_random& random;
    double i, n;  // point i of n
    std::int64_t below(unsigned int end) const { return random.below(end); }
    node below_both(unsigned int end) const { return {below(end), below(end)}; }
    std::int64_t either(std::int64_t a, std::int64_t b) const { return random.coin() ? a : b; }
};

node near(double x, double y) {
    return {std::llround(x), std::llround(y)};
}
node near_polar(double r, double angle) {
    return near(r * std::cos(angle), r * std::sin(angle));
}

constexpr double reach = 0x1p27;
constexpr int legs[][2] = {{25, 0}, {24, 7}, {20, 15}, {15, 20}, {7, 24}, {0, 25}};

node on_circle_of_25(draw d) {
    auto const& [x, y] = legs[d.below(6)];
    return {d.either(x, -x), d.either(y, -y)};
}

node near_a_corner(draw d) {
    node const corner = d.below_both(4), off = d.below_both(9);
    return {(corner.first << 26) + off.first, (corner.second << 26) + off.second};
}

node on_rectangle(draw d) {
    std::int64_t const t = d.below(1000), side = d.either(0, 1000);
    return d.random.coin() ? node(t, side) : node(side, t);
}

// Neighbours in Fibonacci's sequence: triangles of area 1/2 with sides up to 2^28.
node near_golden_line(draw d) {
    std::int64_t a = 0, b = 1;
    for (auto k = d.below(42); k > 0; --k) a = std::exchange(b, a + b);
    return {a, b};
}

// Families in which many points are on one line, on one circle, equal, or nearly so.
struct {
    char const* name;
    node (*make)(draw d);
} const families[] = {
    {"square", [](draw d) { return d.below_both(1u << 28); }},
    {"few places, most repeated", [](draw d) { return d.below_both(6); }},
    {"grid", [](draw d) { return near(std::fmod(d.i, 8), std::floor(d.i / 8)); }},
    {"grid, rounded",
     [](draw d) { return near(1e6 / 3 * std::fmod(d.i, 8), 1e6 / 3 * std::floor(d.i / 8)); }},
    {"circle", [](draw d) { return near_polar(reach, 6.283185307179586 * d.i / d.n); }},
    {"circle, exactly", on_circle_of_25},
    {"spiral", [](draw d) { return near_polar(reach * d.i / d.n, 0.7 * d.i); }},
    {"clusters", near_a_corner},
    {"line", [](draw d) { return near(3 * d.i, -7 * d.i); }},
    {"line, repeated", [](draw d) { return node(5, d.below(20)); }},
    {"nearly a line", [](draw d) { return near(d.i * reach / d.n, d.i * reach / d.n + double(d.below(3))); }},
    {"line and one point", [](draw d) { return node(d.i < d.n - 1 ? 0 : 9, d.below(1000)); }},
    {"two lines", [](draw d) { return near(std::fmod(d.i, 2), std::floor(d.i / 2)); }},
    {"rectangle", on_rectangle},
    {"near the golden line", near_golden_line},
    {"parabola", [](draw d) { return near(d.i - d.n / 2, (d.i - d.n / 2) * (d.i - d.n / 2)); }},
};

TEST(Delaunay, OfEveryFamilyIsExactAtEverySizeAndPlace) {
    // Plain, far from the origin, the smallest and the largest doubles.
    std::pair<int, std::int64_t> const where[] = {
        {0, 0}, {-20, std::int64_t{1} << 51}, {-1074, 0}, {995, 0}, {-640, 1 << 28}};
    seeded_random random(11);
    for (auto const& family : families) {
        for (int trial = 0; trial < 150; ++trial) {
            double const n = trial < 100 ? 2 + trial / 4 : trial < 145 ? 30 + 4 * (trial - 100) : 2000;
            nodes points;
            for (double i = 0; i < n; ++i) points.push_back(family.make({random, i, n}));
            auto const& [exponent, offset] = where[static_cast<unsigned int>(trial % 5)];
            SCOPED_TRACE(std::string(family.name) + ", trial " + std::to_string(trial));
            expect_delaunay(points, result(placed(points, exponent, offset)));
            if (HasFatalFailure() || HasNonfatalFailure()) return;
        }
    }
}

// Points on lines that their rounding bends. Source: fixture robustness1 of mapbox/delaunator. The numbers of
// triangles and of hull points are those of the exact hull of these doubles, its area is rounded.
char const* const robustness = R"(
66.10364838437141 68.58861247166476  146.6807134621004 121.68071346210043  128.86889656046745
117.26179755904141  66.10364838437144 68.58861247166477  169.552139667572 146.1337765382769
126.62939224605088 181.11140466039208  74.43444828023371 78.63089877952069  121.11140466039205
153.37060775394912  98.88859533960789 186.62939224605086  52.66066896814022 63.178539267712424
85.32133793628044 86.35707853542483  129.61570560806462 173.90180644032262  91.52240934977428
162.34633135269814  137.24095128280055 112.24095128280054  93.37060775394912 158.88859533960792  175 150
124.14213562373091 184.14213562373098  96.2082275923272 94.08325829132899  98.88859533960799
153.37060775394906  117.9820069044207 109.53561780313727  116.19447026430383 108.26704341337691
54.32437806124571 62.30633496599771  30.88688965604674 47.72617975590414  107.09511724837395
101.80943804723313  38.892261948632665 52.59484129908844  146.6807134621004 121.6807134621004
95.85786437626908 155.85786437626902  54.3243780612457 62.306334965997706  137.24095128280055
112.24095128280055  161.5295655286077 140.44033682675382  90.3842943919354 166.09819355967738
113.22072967687429 93.71772249433295  77.88291870749715 74.87088997733181  50 60  85.32133793628046
86.35707853542485  41.77377931209348 55.45235951180829  89.66218903062287 81.15316748299887
101.44145935374857 87.4354449886659  124.14213562373097 155.85786437626905  172.41645518465438
148.16651658265795  63.54755862418691 70.90471902361652  150.64267587256094 132.7141570708497
109.99999999999993 190  128.47759065022572 177.65366864730183  90 169.99999999999994  128.47759065022575
162.3463313526982  156.12047564140028 131.12047564140028  90.38429439193538 173.9018064403225
95.85786437626899 184.1421356237309  77.88291870749714 74.8708899773318  139.7557862165142
124.98797731494555  130 170  102.34633135269813 188.4775906502257  41.77377931209348 55.45235951180828
91.52240934977424 177.6536686473017  27.7845238972653 45.189682598176866  126.62939224605091
158.88859533960797  106.09819355967736 189.6157056080646  52.6606689681402 63.178539267712395
74.43444828023368 78.63089877952068  106.09819355967747 150.38429439193538  117.65366864730173
188.47759065022575  125 100  38.892261948632566 52.59484129908838  52.66066896814023 63.17853926771242
129.61570560806462 166.09819355967744  20 40  117.65366864730181 151.52240934977428  161.52956552860766
140.44033682675382  63.54755862418697 70.90471902361656  127.80118910350068 102.80118910350068
89.66218903062284 81.15316748299885  102.34633135269824 151.52240934977425  93.37060775394906
181.11140466039197  113.9018064403225 189.61570560806462  121.111404660392 186.62939224605094
113.90180644032259 150.38429439193538  110.00000000000003 150  165.56023782070014 140.56023782070014)";

TEST(Delaunay, FillsThePublishedHullToItsFlatTriangles) {
    std::istringstream text(robustness);
    places points;
    for (double x = 0, y = 0; text >> x >> y;) points.push_back({x, y, NAN});
    result const r(points);
    ASSERT_EQ(r.list.size(), 79u);
    ASSERT_TRUE(r.guards_hold);
    EXPECT_EQ(r.triads.size(), 141u);
    EXPECT_EQ(std::count_if(r.edges.begin(), r.edges.end(), [](auto const& e) { return e.on_hull; }), 15);
    double twice_area = 0;
    for (Delaunay::Triad const& t : r.triads) {
        twice_area += (t.b[0] - t.a[0]) * (t.c[1] - t.a[1]) - (t.b[1] - t.a[1]) * (t.c[0] - t.a[0]);
    }
    EXPECT_NEAR(twice_area / 2, 8798.190355622859, 1e-10);
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
    result const two(places{{3, 4, 0}, {1, 2, 0}});
    ASSERT_EQ(two.edges.size(), 1u);
    Delaunay::Edge const& e = two.edges[0];
    EXPECT_TRUE(e.a == &two.list[0][0] && e.b == &two.list[1][0] && e.on_hull && !e.in_stack);
    EXPECT_TRUE(e.left_prev == &e && e.left_next == &e && e.right_prev == &e && e.right_next == &e);
}

// Doubles of every exponent, in which some digits are 2^2000 times smaller than others.
TEST(Delaunay, OfAnyBitsStaysInItsBuffersAndKeepsEveryPoint) {
    seeded_random random(12);
    for (int trial = 0; trial < 2000; ++trial) {
        places points(2 + random.below(60));
        bool finite = true;
        for (auto& p : points) {
            for (double& x : p) {
                std::uint64_t const bits = random.bits();
                std::memcpy(&x, &bits, sizeof x);
                if (trial % 4 != 0 && !std::isfinite(x)) x = 1;
            }
            finite = finite && std::isfinite(p[0]) && std::isfinite(p[1]);
        }
        result const r(points);
        ASSERT_TRUE(r.guards_hold) << trial;
        std::set<double const*> ends;
        for (Delaunay::Edge const& e : r.edges) ends.insert({e.a, e.b});
        ASSERT_EQ(ends.size(), finite ? points.size() : 0) << trial;
    }
}

}  // namespace
}  // namespace tvmath
