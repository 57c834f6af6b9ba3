#include "tvmath/tangent_circle.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <string>

#include "distance_features.h"
#include "sampled_zeros.h"
#include "tvmath/scalar.h"

namespace {

using circles = std::vector<Circle_Description>;
constexpr double nan = std::numeric_limits<double>::quiet_NaN();
constexpr int trials = 300;

circles by_value(line const& a, line const& b, double r) {
    circles found(7);  // what was there goes
    EXPECT_TRUE(circle_tangent_tangent_value(a, b, r, found).address());
    return found;
}
circles by_value(ellipse const& a, ellipse const& b, double r) {
    circles found(7);
    EXPECT_TRUE(circle_arc_tangent_tangent_value(a, b, r, found).address());
    return found;
}
circles by_fit(line const& a, line const& b, point const& p) {
    circles found(7);
    EXPECT_TRUE(circle_tangent_tangent_fit(a, b, p, found).address());
    return found;
}
circles of_three(line const& a, line const& b, line const& c) {
    circles found(7);
    EXPECT_TRUE(circle_tangent_tangent_tangent(a, b, c, found).address());
    return found;
}

line through(double x0, double y0, double x1, double y1) {
    return line(at(x0, y0), at(x1, y1));
}
point center_of(Circle_Description const& c) {
    return c.geometry.basis(0);
}

struct expected_circle {
    double x, y, r;
};
void expect_circles(circles const& found, std::vector<expected_circle> const& expected) {
    ASSERT_EQ(found.size(), expected.size());
    for (std::size_t i = 0; i < found.size(); ++i) {
        SCOPED_TRACE(i);
        EXPECT_NEAR(center_of(found[i]).x(), expected[i].x, 1e-13);
        EXPECT_NEAR(center_of(found[i]).y(), expected[i].y, 1e-13);
        EXPECT_NEAR(found[i].geometry.radius(), expected[i].r, 1e-13);
    }
}

TEST(TangentCircle, OfLinesAreTheOnesWorkedByHandInTheirOrder) {
    line const x_axis = through(-2, 0, 4, 0), y_axis = through(0, 5, 0, 6), above = through(0, 2, 6, 2);
    double const root = std::sqrt(0.75);
    struct {
        char const* name;
        circles found;
        std::vector<expected_circle> expected;
    } const cases[] = {
        {"radius", by_value(x_axis, y_axis, 2), {{-2, 2, 2}, {2, 2, 2}, {-2, -2, 2}, {2, -2, 2}}},
        {"negative radius", by_value(y_axis, x_axis, -1), {{-1, 1, 1}, {-1, -1, 1}, {1, 1, 1}, {1, -1, 1}}},
        {"no radius", by_value(x_axis, y_axis, 0), {}},
        {"radius between parallel lines", by_value(x_axis, above, 1), {{2, 1, 1}}},
        {"other radius between parallel lines", by_value(x_axis, above, 1 + 1e-8), {}},
        {"radius of one line twice", by_value(x_axis, x_axis, 1), {}},
        // (x - r)² + (y - r)² = r² through (1, 2): r² - 6 r + 5 = 0.
        {"point in a sector", by_fit(x_axis, y_axis, at(1, 2)), {{1, 1, 1}, {5, 5, 5}}},
        {"point in another sector", by_fit(x_axis, y_axis, at(-1, 2)), {{-5, 5, 5}, {-1, 1, 1}}},
        {"point on a line", by_fit(x_axis, y_axis, at(3, 0)), {{3, 3, 3}, {3, -3, 3}}},
        {"point on the vertex", by_fit(x_axis, y_axis, at(0, 0)), {}},
        {"point between parallel lines",
         by_fit(x_axis, above, at(7, 0.5)),
         {{7 - root, 1, 1}, {7 + root, 1, 1}}},
        {"point on a parallel line", by_fit(above, x_axis, at(7, 2)), {{7, 1, 1}}},
        {"point beside parallel lines", by_fit(x_axis, above, at(7, 2.5)), {}},
        // The triangle of sides 3, 4 and 5 has an area of 6, which is r s, r1 (s - 3), r2 (s - 4), r3 (s - 5)
        // with s = 6.
        {"triangle",
         of_three(through(0, 0, 1, 0), through(0, 1, 0, 0), through(4, 0, 0, 3)),
         {{1, 1, 1}, {3, -3, 3}, {-2, 2, 2}, {6, 6, 6}}},
        {"two parallel lines", of_three(x_axis, y_axis, above), {{-1, 1, 1}, {1, 1, 1}}},
        {"three parallel lines", of_three(x_axis, through(3, 1, 2, 1), above), {}},
        {"a line twice", of_three(x_axis, y_axis, x_axis), {}},
        {"lines through one point",
         of_three(through(0.1, 0.1, 3, 7), through(1.1, 0.1, 0.1, 0.1), through(-2, 1, 2.2, -0.8)),
         {}},
    };
    for (auto const& c : cases) {
        SCOPED_TRACE(c.name);
        expect_circles(c.found, c.expected);
    }
}

// Circles, of which the centre is at the sums or differences of the radii from theirs, and ellipses that meet
// the circle at their vertices.
TEST(TangentCircle, OfEllipsesAreTheOnesWorkedByHand) {
    circle const small(2, at(0, 0)), large(3, at(7, 0)), ring(4, at(0, 0));
    ellipse const oval(2, 1, at(0, 0)), next(1, 2, at(5, 0));
    // Centres at 2 +- 1 from one centre and 3 +- 1 from the other, 7 away: only 3 + 4 reaches.
    expect_circles(by_value(small, large, 1), {{3, 0, 1}});
    EXPECT_EQ(by_value(small, large, 20).size(), 8u);
    expect_circles(by_value(small, ring, 1), {});  // a whole ring of them
    expect_circles(by_value(small, small, 1), {});
    expect_circles(by_value(oval, oval, 1), {});
    expect_circles(by_value(oval, next, 1), {{3, 0, 1}});  // a touch of both curves of centres
    expect_circles(by_value(oval, next, 0.999), {});
    EXPECT_EQ(by_value(oval, next, 1.001).size(), 2u);
    expect_circles(by_value(oval, ellipse(1, 0, at(1, 1)), 1), {});  // seen edge-on
    // The two-sided circles of concentric ellipses: one in each gap on the axes, and more between.
    EXPECT_EQ(by_value(oval, ellipse(3, 5, at(0, 0)), 0.5).size(), 2u);
}

TEST(TangentCircle, LiesAtTheMeanHeightWhereItTouches) {
    line const flat(at(0, 0, 1), at(1, 0, 1));
    line const rising(
        make_transform(at(0, 0, 3), point(false, 0, 1, 2), point(false, -1, 0, 0), point(false, 0, 0, 1)));
    // The one in the first quadrant touches `rising` at y = 2, where its height is 7.
    circles const found = by_value(flat, rising, 2);
    ASSERT_EQ(found.size(), 4u);
    EXPECT_TRUE(center_of(found[1]).is_3d());
    EXPECT_NEAR(center_of(found[1]).z(), 4, 1e-13);
    EXPECT_NEAR(center_of(by_fit(flat, rising, at(1, 2, 8))[0]).z(), (1 + 5 + 8) / 3.0, 1e-13);
    // The second ellipse rises by 1 from x = 5 to x = 4.
    ellipse const tilted(
        make_transform(at(5, 0, 1), point(false, 1, 0, -1), point(false, 0, 2, 0), point(false, 0, 0, 1)));
    circles const between = by_value(ellipse(2, 1, at(0, 0)), tilted, 1);
    ASSERT_EQ(between.size(), 1u);
    EXPECT_NEAR(center_of(between[0]).z(), 1, 1e-7);  // half of the digits along a touch
    EXPECT_TRUE(center_of(by_value(through(0, 0, 1, 0), through(0, 0, 0, 1), 1)[0]).is_2d());
    EXPECT_NEAR(circle_centered_tangent(at(1, 7, 9), rising).radius(), 1, 1e-15);
    EXPECT_EQ(circle_centered_tangent(at(1, 7, 9), rising).basis(0).z(), 9);
}

TEST(TangentCircle, OfNonsenseIsNone) {
    line const good = through(0, 0, 1, 0), other = through(0, 0, 0, 1);
    line const upright(
        make_transform(at(0, 0, 0), point(false, 0, 0, 1), point(false, 1, 0, 0), point(false, 0, 1, 0)));
    ellipse const oval(2, 1, at(0, 0));
    for (line const& bad :
         {line(), line(at(1, 1), at(1, 1)), upright, through(0, nan, 1, 0), through(0, 0, infinity, 1)}) {
        EXPECT_TRUE(by_value(bad, good, 1).empty() && by_value(good, bad, 1).empty());
        EXPECT_TRUE(by_fit(bad, good, at(1, 1)).empty() && by_fit(good, bad, at(1, 1)).empty());
        EXPECT_TRUE(of_three(bad, good, other).empty() && of_three(good, other, bad).empty());
        EXPECT_TRUE(circle_centered_tangent(at(1, 1), bad).is_trivial());
    }
    for (double const bad : {nan, infinity, -infinity}) {
        EXPECT_TRUE(by_value(good, other, bad).empty() && by_value(oval, oval, bad).empty());
        EXPECT_TRUE(by_fit(good, other, at(bad, 1)).empty());
        EXPECT_TRUE(circle_centered_tangent(at(bad, 1), good).is_trivial());
        EXPECT_TRUE(by_value(oval, ellipse(2, bad, at(3, 0)), 1).empty());
        EXPECT_TRUE(by_value(ellipse(2, 1, at(bad, 0)), oval, 1).empty());
    }
    EXPECT_TRUE(by_fit(good, other, point()).empty() && circle_centered_tangent(point(), good).is_trivial());
    EXPECT_TRUE(by_value(ellipse(), oval, 1).empty() && by_value(oval, ellipse(), 1).empty());
}

// As circles of the same centres and radii within `tolerance` times `scale`; `in_order` or in any.
bool same_circles(circles const& a, circles const& b, bool in_order, double scale, double tolerance) {
    if (a.size() != b.size()) return false;
    auto const same = [&](Circle_Description const& c, Circle_Description const& d) {
        double const size = scale + c.geometry.radius() + (center_of(c) - at(0, 0)).length2d();
        return distance2d(center_of(c), center_of(d)) <= tolerance * size &&
               std::fabs(c.geometry.radius() - d.geometry.radius()) <= tolerance * size;
    };
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (in_order ? !same(a[i], b[i])
                     : std::none_of(b.begin(), b.end(), [&](auto const& d) { return same(a[i], d); })) {
            return false;
        }
    }
    return true;
}

double off_line(line const& l, point const& p) {
    return std::fabs(cross2d(p - l.basis(0), l.direction()));
}

// What a construction must give for random lines: so many different circles that each touch every line, and
// pass through a point, and the same ones in the same order from nearly the same lines.
void expect_tangent(std::function<circles(line, line, line, point)> const& construct, std::size_t count,
                    int lines) {
    for_random_features(20261 + count, trials, [&](random_features f) {
        f.solid = false;
        double const far = f.random.below(3) == 0 ? 1e4 * f.scale : 0;  // far from the origin
        line l[3];
        for (line& a : l) a = line(f.place(), f.place());
        if (f.random.below(3) == 0) {  // nearly parallel
            point const tilt = f.random.log_uniform(1e-6, 1) * (f.place() - at(0, 0));
            l[1] = line(l[0].basis(0) - l[0].basis(1) + tilt, l[0].basis(0) + l[0].basis(1) - tilt);
        }
        if (std::fabs(cross2d(l[0].direction(), l[1].direction())) < 1e-7) return;  // those are parallel
        transform const away = transform::translation(at(far, -far));
        for (line& a : l) a *= away;
        point const p = f.place() * away;
        circles const found = construct(l[0], l[1], l[2], p);
        ASSERT_EQ(found.size(), count);
        for (Circle_Description const& c : found) {
            double const r = c.geometry.radius();
            double size = 20 * f.scale + far + r;
            for (int i = 0; i < 3; ++i) size += distance2d(center_of(c), l[i].basis(0));
            for (int i = 0; i < lines; ++i)
                EXPECT_LE(std::fabs(off_line(l[i], center_of(c)) - r), 1e-14 * size);
            if (lines == 2 && count == 2) {
                EXPECT_LE(std::fabs(distance2d(center_of(c), p) - r), 1e-14 * size);
            }
            auto const equal = std::count_if(found.begin(), found.end(), [&](auto const& d) {
                return same_circles({c}, {d}, true, 0, 1e-12);
            });
            EXPECT_EQ(equal, 1);
        }
        circles const swapped = construct(l[1], l[0], l[2], p);
        // Lines that meet at a small angle have their circles as far away as that is small.
        EXPECT_TRUE(same_circles(found, swapped, false, far + 20 * f.scale, 1e-6));
        point const nudge = 1e-9 * f.scale * (f.place() - at(0, 0)) / (10 * f.scale);
        line const moved = line(l[0].basis(0) - l[0].basis(1) + nudge, l[0].basis(0) + l[0].basis(1));
        EXPECT_TRUE(same_circles(found, construct(moved, l[1], l[2], p), true, far + 20 * f.scale, 1e-2));
    });
}

TEST(TangentCircle, OfRandomLinesTouchesThem) {
    expect_tangent([](auto a, auto b, auto, auto p) { return by_value(a, b, 1 + p.length2d()); }, 4, 2);
    expect_tangent([](auto a, auto b, auto, auto p) { return by_fit(a, b, p); }, 2, 2);
    expect_tangent([](auto a, auto b, auto c, auto) { return of_three(a, b, c); }, 4, 3);
}

// Distances of p from the ellipse along its normals, by samples and bisection.
std::vector<double> normal_distances(ellipse const& e, point const& p, int n) {
    auto const slope = [&](double t) {
        point const along = std::cos(t) * e.basis(2) - std::sin(t) * e.basis(1);
        return dot2d(point_of(e, t) - p, along);
    };
    std::vector<double> distances;
    double last = slope(0);
    for (int i = 0; i < n; ++i) {
        double lo = full_turn * i / n, hi = full_turn * (i + 1) / n;
        double const next = slope(hi), first = last;
        last = next;
        if ((first < 0) == (next < 0)) continue;
        for (int step = 0; step < 50; ++step) {
            double const middle = (lo + hi) / 2;
            ((slope(middle) < 0) == (first < 0) ? lo : hi) = middle;
        }
        distances.push_back(distance2d(point_of(e, lo), p));
    }
    return distances;
}

// How near r is to one of these distances. The sign is that of the product of all differences, which changes
// where one of them does, but not where two feet appear or merge.
double signed_miss(ellipse const& e, point const& p, double r) {
    double miss = infinity, sign = 1;
    for (double const d : normal_distances(e, p, 48)) {
        miss = std::min(miss, std::fabs(d - r));
        if (d < r) sign = -sign;
    }
    return sign * miss;
}

// All centres lie at r along a normal of the first ellipse; there the zeros are counted for the second.
int counted(ellipse const& a, ellipse const& b, double r, double unsure, int n) {
    int count = 0;
    for (double const side : {r, -r}) {
        auto const miss = [&](double t) {
            double const angle = full_turn * t + 0.1;
            point const along = std::cos(angle) * a.basis(2) - std::sin(angle) * a.basis(1);
            double const turn = cross2d(a.basis(1), a.basis(2)) > 0 ? -side : side;
            return signed_miss(b, point_of(a, angle) + turn * normalize(along).rotate_90(), r);
        };
        int const zeros = sampled_zeros(miss, n, unsure);
        if (zeros < 0) return -1;
        count += zeros;
    }
    return count;
}

ellipse random_oval(random_features& f) {
    double const a = f.scale * f.random.uniform(1, 10), b = a * f.random.uniform(0.1, 1);
    if (f.random.below(4) == 0) return ellipse(a, f.place());
    transform shape = ellipse(a, b, f.random.uniform(-3, 3), f.place());
    if (f.random.coin()) shape.shear_x(f.random.uniform(-1, 1));
    return ellipse(shape);
}

TEST(TangentCircle, OfRandomEllipsesAreAllThatTouch) {
    for_random_features(77, trials / 5, [](random_features f) {
        f.solid = false;
        ellipse const a = random_oval(f), b = random_oval(f);
        double const r = f.scale * f.random.log_uniform(0.3, 30);
        circles const found = by_value(a, b, r);
        for (Circle_Description const& c : found) {
            for (ellipse const& e : {a, b}) {
                double miss = infinity;
                for (double const d : normal_distances(e, center_of(c), 500))
                    miss = std::min(miss, std::fabs(d - r));
                EXPECT_LE(miss, 1e-13 * (40 * f.scale + r));
            }
        }
        int count = counted(a, b, r, 1e-9 * f.scale, 100);
        if (count != static_cast<int>(found.size())) count = counted(a, b, r, 1e-9 * f.scale, 4000);
        EXPECT_TRUE(count < 0 || found.size() == static_cast<std::size_t>(count));
        double const size = 20 * f.scale;
        EXPECT_TRUE(same_circles(found, by_value(b, a, r), false, size, 1e-9));
        EXPECT_TRUE(same_circles(found, by_value(a, b, r * (1 + 1e-11)), true, size, 1e-6));
        transform const move = transform::rotation(f.random.uniform(-3, 3)).translate(1e3 * f.scale, 0);
        circles moved = by_value(ellipse(a * move), ellipse(b * move), r);
        for (Circle_Description& c : moved) c.geometry /= move;
        EXPECT_TRUE(same_circles(found, moved, false, 1e3 * size, 1e-9));
    });
}

}  // namespace
