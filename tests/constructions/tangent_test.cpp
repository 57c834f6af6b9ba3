#include "tvmath/tangent.h"

#include <gtest/gtest.h>

#include <limits>

#include "distance_features.h"
#include "sampled_zeros.h"
#include "tvmath/circle.h"

inline namespace tvmath {
namespace {

using lines = idioms::array<line>;

// How far the ellipse reaches from its centre along n.
double reach(ellipse const& e, point const& n) {
    return std::hypot(dot(e.basis(1), n), dot(e.basis(2), n));
}
// How far the tangents with the normal n are from a line; which of them, by the sign.
double off_tangent(line const& l, ellipse const& e, point const& n, double& side) {
    side = dot(l.basis(0) - e.basis(0), n);
    return std::fabs(std::fabs(side) - reach(e, n));
}
point normal_in_xy(line const& l) {
    return normalize(point(false, -l.basis(1).y(), l.basis(1).x()));
}

void expect_moved(lines const& found, lines const& moved, transform const& t, double tolerance) {
    ASSERT_EQ(found.capacity(), moved.capacity());
    for (unsigned int i = 0; i < found.capacity(); ++i) {
        EXPECT_LE(distance3d(start_of(found[i]) * t, start_of(moved[i])), tolerance);
        EXPECT_LE(distance3d(end_of(found[i]) * t, end_of(moved[i])), tolerance);
    }
}

TEST(LineTangent, FromAPointTouchesTheEllipseAndDoesNotCut) {
    for_random_features(71, 3000, [](random_features f) {
        ellipse const e = f.oval();
        double const out = 1 + f.random.log_uniform(1e-9, 1e3), t = f.random.uniform(-3, 3);
        point p = e.basis(0) + out * (point_of(e, t) - e.basis(0));
        if (f.solid) p = p + e.direction(3) * f.length(-1, 1);
        point const axis = f.solid ? e.direction(3) : point(false, 0, 0, 1);
        lines const found = line_tangent(p, e);
        ASSERT_EQ(found.capacity(), 2u);
        double const size = 20 * f.scale * (1 + out), tolerance = 1e-14 * size;
        for (unsigned int i = 0; i < 2; ++i) {
            line const& l = found[i];
            double side = 0;
            point const across = cross(axis, l.direction());  // short when the point is far above or below
            EXPECT_LE(off_tangent(l, e, normalize(across), side), tolerance / across.length3d());
            // The left one has the ellipse on its right; right-handed seen along the axis, from above in XY.
            bool const is_left = side > 0;
            EXPECT_EQ(is_left, (axis.z() > 0) == (i == 0));
            if (l.length() < 0.01 * (1 + 1e-9)) {
                EXPECT_NEAR(l.length(), 0.01, 1e-11);
                continue;
            }
            EXPECT_LE(distance3d(start_of(l), p), tolerance);
            EXPECT_LE(distance3d(point_nearest3d_on(end_of(l), e), end_of(l)), 100 * tolerance);
        }
        transform turn = transform::rotation(f.random.uniform(-3, 3));
        turn.translate(f.length(-5, 5), f.length(-5, 5));
        ellipse moved = e;
        moved *= turn;
        // A point so near that its squared distance is rounded moves the tangent points by the root of that.
        double const shift = f.scale * (1e-12 + 1e-13 * out / std::sqrt(out - 1) * 1e3);
        expect_moved(found, line_tangent(p * turn, moved), turn, shift + 10 * tolerance);
    });
}

TEST(LineTangent, FromAPointDecidesByTheSquaredDistance) {
    ellipse const circle2(2, at(0, 0)),
        oblique(make_transform(at(3, 4), point(false, 2, 1), point(false, 0, 3)));
    struct {
        char const* name;
        lines found;
        unsigned int count;
    } const cases[] = {
        {"inside", line_tangent(at(1.9, 0), circle2), 0},
        {"just inside", line_tangent(at(2 * (1 - 0.51e-10), 0), circle2), 0},
        {"on it, inside", line_tangent(at(2 * (1 - 0.49e-10), 0), circle2), 1},
        {"on it, outside", line_tangent(at(0, 2 * (1 + 0.49e-10)), circle2), 1},
        {"just outside", line_tangent(at(0, 2 * (1 + 0.51e-10)), circle2), 2},
        {"centre", line_tangent(at(3, 4), oblique), 0},
        {"trivial point", line_tangent(point(), circle2), 0},
        {"null ellipse", line_tangent(at(3, 4), ellipse()), 0},
        {"no area", line_tangent(at(3, 4), ellipse(0, at(1, 1))), 0},
        {"not a number", line_tangent(at(std::nan(""), 4), circle2), 0},
        {"infinite", line_tangent(at(infinity, 4), circle2), 0},
    };
    for (auto const& c : cases) EXPECT_EQ(c.found.capacity(), c.count) << c.name;
    // By hand: the tangent in the point 2 at angle 90 degrees; from (4, 0) to (1, -+sqrt 3).
    line const touching = cases[3].found[0];
    EXPECT_LE(distance2d(touching.basis(0), at(0, 2)), 1e-9);
    EXPECT_LE(distance2d(touching.basis(1), at(0.005, 0)), 1e-15);
    lines const two = line_tangent(at(4, 0), circle2);
    EXPECT_LE(distance2d(end_of(two[0]), at(1, -std::sqrt(3))), 1e-15);
    EXPECT_LE(distance2d(end_of(two[1]), at(1, std::sqrt(3))), 1e-15);
}

// Number of tangents with one side of the second ellipse, by samples.
int counted(ellipse const& a, ellipse const& b, double side, int n, double unsure) {
    point const gap = b.basis(0) - a.basis(0);
    auto const clearance = [&](double t) {
        point const normal(false, std::cos(full_turn * t + 0.2), std::sin(full_turn * t + 0.2));
        return dot(gap, normal) + side * reach(b, normal) - reach(a, normal);
    };
    return sampled_zeros(clearance, n, unsure);
}

TEST(LineTangent, OfTwoEllipsesFindsAllThatTouchBoth) {
    int by_count[5] = {};
    for_random_features(72, 2000, [&](random_features f) {
        ellipse const a = f.oval();
        ellipse b = f.oval();
        // Two of three pairs are near enough to overlap; some have one centre.
        point const offset(false, f.length(-3, 3), f.length(-3, 3));
        unsigned int const kind = f.random.below(6);
        if (kind < 4) b.translate(a.basis(0) - b.basis(0) + (kind == 0 ? 0.0 : 1.0) * offset);
        bool inner = false;
        lines const found = line_tangent(a, b, inner);
        double const tolerance = 1e-13 * f.scale;
        int outers = 0, inners = 0;
        for (line const& l : found) {
            point const n = normal_in_xy(l);
            double side_a = 0, side_b = 0;
            EXPECT_LE(off_tangent(l, a, n, side_a), tolerance);
            EXPECT_LE(off_tangent(l, b, n, side_b), tolerance);
            ((side_a < 0) == (side_b < 0) ? outers : inners) += 1;
            // The ends are where the ellipses have the normal of the line: their tangents run along it.
            point const from = start_of(l) - a.basis(0), to = end_of(l) - b.basis(0);
            EXPECT_NEAR(std::fabs(dot2d(from, n)), reach(a, n), tolerance);
            EXPECT_NEAR(std::fabs(dot2d(to, n)), reach(b, n), tolerance);
            EXPECT_EQ(l.is_3d(), f.solid);
        }
        for (int const samples : {500, 20000}) {
            int const outer = counted(a, b, 1, samples, tolerance);
            int const between = counted(a, b, -1, samples, tolerance);
            if (outer < 0 || between < 0) return;
            if (samples < 1000 && (outer != outers || between != inners)) continue;
            EXPECT_EQ(outers, outer);
            EXPECT_EQ(inners, between);
            break;
        }
        EXPECT_EQ(inner, inners > 0);
        by_count[found.capacity()] += 1;

        lines const swapped = line_tangent(b, a, inner);
        ASSERT_EQ(swapped.capacity(), found.capacity());
        for (line const& l : found) {
            double nearest = infinity;
            for (line const& s : swapped) {
                nearest = std::min(nearest,
                                   distance3d(start_of(l), end_of(s)) + distance3d(end_of(l), start_of(s)));
            }
            EXPECT_LE(nearest, 1e-7 * f.scale);
        }
        transform turn = transform::rotation(f.random.uniform(-3, 3));
        turn.translate(f.length(-5, 5), f.length(-5, 5));
        ellipse moved_a = a, moved_b = b;
        expect_moved(found, line_tangent(ellipse(moved_a *= turn), ellipse(moved_b *= turn), inner), turn,
                     1e-7 * f.scale);
    });
    for (int const count : {0, 2, 4}) EXPECT_GT(by_count[count], 50) << count;
}

TEST(LineTangent, OfTwoEllipsesKnowsTheSpecialPlaces) {
    circle const one(1, at(0, 0));
    ellipse const wide(2, 1, at(0, 0));
    struct {
        char const* name;
        ellipse a, b;
        unsigned int count;
        bool inner;
    } const cases[] = {
        {"equal circles side by side", one, circle(1, at(3, 0)), 4, true},
        {"touching outside", one, circle(1, at(2, 0)), 3, true},
        {"touching outside, ellipses", wide, ellipse(1, 2, at(3, 0)), 3, true},
        {"crossing", one, circle(1, at(1, 1)), 2, false},
        {"touching inside", one, circle(0.5, at(0, 0.5)), 1, false},
        {"nested", one, circle(0.5, at(0.1, 0.2)), 0, false},
        {"concentric circles", one, circle(2, at(0, 0)), 0, false},
        {"the same circle", one, circle(1, at(0, 0)), 0, false},
        {"the same ellipse", wide, ellipse(1, 2, 1.5707963267948966), 0, false},
        {"crossed ellipses", wide, ellipse(1, 2, at(0, 0)), 4, false},
        {"same axes, inside", wide, ellipse(1.5, 0.5, at(0, 0)), 0, false},
        {"touching at both ends", wide, circle(1, at(0, 0)), 2, false},
        {"touching around both ends", wide, circle(2, at(0, 0)), 2, false},
        {"a long one through a round one", one, ellipse(5, 1e-4, 0.3), 4, false},
        {"a tiny one on the edge", circle(1e5, at(0, 0)), circle(1e-3, at(1e5, 0)), 2, false},
        {"a tiny one outside", circle(1e5, at(0, 0)), circle(1e-3, at(1e5 + 2e-3, 0)), 4, true},
        {"far away", circle(1e-3, at(1e5, 1e5)), circle(2e-3, at(1e5, 1e5 + 4e-3)), 4, true},
        {"no area", one, circle(0, at(5, 0)), 0, false},
        {"null", one, ellipse(), 0, false},
        {"not a number", one, circle(std::nan(""), at(5, 0)), 0, false},
        {"infinite", circle(1, at(infinity, 0)), one, 0, false},
    };
    for (auto const& c : cases) {
        for (double const angle : {0.0, 0.3, 2.0}) {
            ellipse a = c.a, b = c.b;
            transform const turn = transform::rotation(angle);
            if (!a.is_trivial()) a *= turn;
            if (!b.is_trivial()) b *= turn;
            bool inner = !c.inner;
            EXPECT_EQ(line_tangent(a, b, inner).capacity(), c.count) << c.name << angle;
            EXPECT_EQ(inner, c.inner) << c.name;
        }
    }
    // Circles of radius 3 and 1, 10 apart: outer tangents of length sqrt(10² - 2²), inner ones sqrt(10² -
    // 4²); the left ones first, seen along +X.
    bool inner = false;
    lines const four = line_tangent(circle(3, at(0, 0)), circle(1, at(10, 0)), inner);
    for (unsigned int i = 0; i < 4; ++i) {
        EXPECT_NEAR(four[i].length(), std::sqrt(i < 2 ? 96 : 84), 1e-14);
        EXPECT_EQ(start_of(four[i]).y() > 0, i % 2 == 0);
    }
    // The one in the place where they touch.
    line const touch = line_tangent(one, circle(1, at(2, 0)), inner)[2];
    EXPECT_LE(distance2d(touch.basis(0), at(1, 0)), 1e-15);
    EXPECT_NEAR(std::fabs(touch.basis(1).y()), 0.005, 1e-17);
}

TEST(LineTangent, OfRecordsRunsFromTheFirstToTheSecond) {
    Point_Description place;
    place.position = at(4, 0);
    Circle_Description round;
    round.geometry = circle(2, at(0, 0));
    Ellipse_Description oval;
    oval.geometry = ellipse(1, 0.5, at(-9, 0));
    Arc_Description arc;
    arc.circle = round.geometry;
    arc.included_angle = 0.1;
    Segment_Description other;
    struct {
        Geometry_Description *a, *b;
        std::size_t count;
        double start_x;  // of the first one, rounded
    } const cases[] = {{&place, &round, 2, 4},  {&round, &place, 2, 1},  {&arc, &place, 2, 1},
                       {&place, &arc, 2, 4},    {&oval, &place, 2, -9},  {&place, &oval, 2, 4},
                       {&arc, &round, 0, 0},    {&oval, &arc, 4, -9},    {&arc, &oval, 4, 0},
                       {&place, &place, 0, 0},  {&other, &arc, 0, 0},    {nullptr, &arc, 0, 0},
                       {&place, nullptr, 0, 0}, {nullptr, nullptr, 0, 0}};
    for (auto const& c : cases) {
        std::vector<Segment_Description> tangents(7);
        idioms::ref<multi_solution> const memory = line_tangent(c.a, c.b, tangents);
        ASSERT_EQ(tangents.size(), c.count) << &c - cases;
        double const start_x = tangents.empty() ? 0 : start_of(tangents[0].geometry).x();
        EXPECT_NEAR(start_x, c.start_x, 0.5) << &c - cases;
        unsigned int index = 9;
        ASSERT_TRUE(memory.address() != nullptr);
        memory->selected(index);
        EXPECT_EQ(index, 0u);
    }
}

}  // namespace
}  // namespace tvmath
