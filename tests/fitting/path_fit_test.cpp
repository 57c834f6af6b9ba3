#include "tvmath/path_fit.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>

#include "support/nurb_curves.h"
#include "support/relative.h"
#include "support/seeded_random.h"
#include "support/shape_points.h"

inline namespace tvmath {
namespace {

using points = std::vector<point>;

idioms::array<point> as_array(points const& list) {
    return idioms::array<point>(static_cast<unsigned int>(list.size()), list.data());
}

bool are_same(curve const& a, curve const& b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end());
}

// Point and derivatives with respect to the segment's own parameter, from the definition.
struct place_on_segment {
    point position, first, second;
};
place_on_segment on_segment(point const* b, double t) {
    point const a0 = b[1] - b[0], a1 = b[2] - b[1], a2 = b[3] - b[2];
    double const u = 1 - t;
    return {b[0] + 3 * u * u * t * (b[1] - b[0]) + 3 * u * t * t * (b[2] - b[0]) + t * t * t * (b[3] - b[0]),
            3 * (u * u * a0 + 2 * u * t * a1 + t * t * a2), 6 * (u * (a1 - a0) + t * (a2 - a1))};
}

// The integral of the squared curvature along the path, by Simpson's rule.
double bending_energy(curve const& c) {
    double sum = 0;
    for (unsigned int k = 0; k + 3 < c.capacity(); k += 3) {
        for (int i = 0; i <= 64; ++i) {
            place_on_segment const p = on_segment(c.begin() + k, i / 64.0);
            double const weight = i == 0 || i == 64 ? 1 : i % 2 ? 4 : 2, speed = p.first.length3d();
            point const bend = cross(p.first, p.second);
            sum += weight / 192 * sqr(bend) / std::pow(speed, 5);
        }
    }
    return sum;
}

// Distance of a point from a path, by sampling and a search between the samples.
double distance_from(curve const& c, point const& p) {
    double best = infinity;
    for (unsigned int k = 0; k + 3 < c.capacity(); k += 3) {
        auto const at_parameter = [&](double t) {
            return distance3d(p, on_segment(c.begin() + k, std::clamp(t, 0.0, 1.0)).position);
        };
        double t = 0, step = 0.125;
        for (int i = 1; i <= 8; ++i) {
            if (at_parameter(i * 0.125) < at_parameter(t)) t = i * 0.125;
        }
        for (; step > 1e-9; step *= 0.7) {
            for (double const next : {t - step, t + step}) {
                if (at_parameter(next) < at_parameter(t)) t = std::clamp(next, 0.0, 1.0);
            }
        }
        best = std::min(best, at_parameter(t));
    }
    return best;
}

double sum_of_squares(curve const& c, points const& list) {
    double sum = 0;
    for (point const& p : list) sum += std::pow(distance_from(c, p), 2);
    return sum;
}

// A wandering path without sharp turns, unevenly sampled.
points wandering_points(seeded_random& random, int n, bool solid) {
    points list;
    double heading = random.uniform(-3, 3);
    point p = solid ? at(1, 2, 3) : at(1, 2);
    for (int i = 0; i < n; ++i) {
        list.push_back(p);
        heading += random.uniform(-0.8, 0.8);
        double const step = random.uniform(0.5, 2);
        point const move(false, step * std::cos(heading), step * std::sin(heading));
        p += solid ? move + point(false, 0, 0, random.uniform(-0.5, 0.5)) : move;
    }
    return list;
}

struct named_fit {
    char const* name;
    curve (*of_vector)(points const&, bool);
    curve (*of_array)(idioms::array<point>, bool);
    bool is_interpolation;
};
named_fit const all_fits[] = {
    {"bezier_fit", bezier_fit, bezier_fit, true},
    {"minimum curvature", bezier_minimum_curvature_fit, bezier_minimum_curvature_fit, true},
    {"least squares", bezier_least_squares_fit, bezier_least_squares_fit, false}};

TEST(PathFits, GiveNoCurveForListsWithoutOne) {
    double const nan = std::nan("");
    struct {
        char const* name;
        points list;
        bool open, closed;  // whether there is a curve
    } const cases[] = {
        {"nothing", {}, false, false},
        {"one point", {at(1, 2)}, false, false},
        {"one place", {at(1, 2), at(1, 2), at(1, 2)}, false, false},
        {"one place to the last digits", {at(1e6, 0), at(std::nextafter(1e6, 2e6), 0)}, false, false},
        {"two places", {at(1, 2), at(3, 4)}, true, false},
        {"two places again and again", {at(1, 2), at(3, 4), at(1, 2), at(3, 4)}, true, false},
        {"three places", {at(1, 2), at(3, 4), at(0, 7)}, true, true},
        {"trivial point", {at(1, 2), at(3, 4), point(), at(0, 7)}, false, false},
        {"NaN", {at(1, 2), at(3, nan), at(0, 7)}, false, false},
        {"infinity", {at(1, 2), at(3, infinity), at(0, 7)}, false, false},
        {"extent beyond the numbers", {at(-1e308, 2), at(1e308, 4), at(0, 7)}, false, false},
        {"z of 2D points", {point(at(1, 2)), point(at(3, 4)), at(0, 7)}, true, true},
        {"denormal numbers", {at(0, 0), at(3e-310, 0), at(0, 7e-310)}, true, true},
        {"huge numbers", {at(0, 0), at(3e307, 0), at(0, 7e307)}, true, true},
    };
    for (auto const& c : cases) {
        for (named_fit const& f : all_fits) {
            SCOPED_TRACE(std::string(f.name) + ", " + c.name);
            EXPECT_EQ(!f.of_vector(c.list, false).is_trivial(), c.open);
            EXPECT_EQ(!f.of_vector(c.list, true).is_trivial(), c.closed);
        }
        EXPECT_EQ(!open_nurb_fit(c.list).is_trivial(), c.open) << c.name;
        EXPECT_EQ(!closed_nurb_fit(c.list).is_trivial(), c.closed) << c.name;
    }
}

// Whatever the points, the curves are finite: on a coarse grid, repeated, in clusters, back and forth.
TEST(PathFits, StayFiniteForPointsInDisorder) {
    seeded_random random(11);
    for (int trial = 0; trial < 60; ++trial) {
        points list;
        unsigned int const n = 2 + random.below(60), grid = 1 + random.below(9);
        double const cluster = random.coin() ? 0 : random.log_uniform(1e-16, 1);
        for (unsigned int i = 0; i < n; ++i) {
            double const x = random.below(grid) + cluster * random.unit(), y = random.below(2) * cluster;
            list.push_back(at(x, y, random.coin() ? 0 : x));
        }
        for (bool const closed : {false, true}) {
            for (named_fit const& f : all_fits) {
                for (point const& p : f.of_vector(list, closed)) {
                    EXPECT_TRUE(std::isfinite(p.length3d())) << f.name << trial << closed;
                }
            }
        }
    }
}

TEST(PathFits, AgreeForBothListFormsAndKeepTheDimension) {
    seeded_random random(3);
    for (bool const solid : {false, true}) {
        points const list = wandering_points(random, 40, solid);
        for (bool const closed : {false, true}) {
            for (named_fit const& f : all_fits) {
                SCOPED_TRACE(f.name);
                curve const c = f.of_vector(list, closed);
                EXPECT_TRUE(are_same(c, f.of_array(as_array(list), closed)));
                ASSERT_EQ(c.capacity() % 3, 1u);
                for (point const& p : c) EXPECT_TRUE(p.is_location() && p.is_3d() == solid);
                EXPECT_EQ(c[0] == c[c.capacity() - 1], closed);
            }
        }
    }
    points const mixed = {at(0, 0), at(1, 0, 2), at(2, 1)};
    EXPECT_TRUE(bezier_fit(mixed, false)[0] == at(0, 0, 0));
}

// Turned, scaled and moved points give the turned, scaled and moved curve.
TEST(PathFits, FollowTheirPointsAnywhere) {
    seeded_random random(4);
    for (int trial = 0; trial < 12; ++trial) {
        SCOPED_TRACE(trial);
        double const scale = random.log_uniform(1e-3, 1e5), far = trial % 2 ? 1e6 : 0;
        transform const t = transform::rotation(1, random.uniform(-3, 3), 2) *
                            transform::dilation(scale, scale, scale) * transform(far, -far, far);
        for (named_fit const& f : all_fits) {
            SCOPED_TRACE(f.name);
            points const list = f.is_interpolation ? wandering_points(random, 30, true)
                                                   : circle_points(random, at(0, 0), 5, 0, 6.2, 60, 1e-2);
            points moved;
            for (point const& p : list) moved.push_back(p * t);
            for (bool const closed : {false, true}) {
                curve const c = f.of_vector(list, closed) * t, d = f.of_vector(moved, closed);
                ASSERT_EQ(c.capacity(), d.capacity());
                for (unsigned int i = 0; i < c.capacity(); ++i) {
                    // Coordinates are rounded by 1e-16 of themselves; interpolation leaves that as it is. An
                    // iteration that stops at a fraction of the noise, 1e-2, magnifies it to less than that.
                    double const rounding = 1e-14 * scale * 30 + 2e-16 * far * 5;
                    EXPECT_LE(distance3d(c[i], d[i]), f.is_interpolation ? 10 * rounding : 1e-3 * scale);
                }
            }
        }
    }
}

TEST(BezierFit, MeetsEveryPointWithTwoContinuousDerivatives) {
    seeded_random random(1);
    for (int trial = 0; trial < 100; ++trial) {
        SCOPED_TRACE(trial);
        bool const closed = random.coin();
        points list = wandering_points(random, 4 + static_cast<int>(random.below(20)), random.coin());
        std::size_t const n = list.size();
        curve const c = bezier_fit(list, closed);
        ASSERT_EQ(c.capacity(), closed ? 3 * n + 1 : 3 * n - 2);
        for (unsigned int i = 0; i < n; ++i) EXPECT_TRUE(c[3 * i] == list[i]);
        for (unsigned int i = closed ? 0 : 1; i < (closed ? n : n - 1); ++i) {
            std::size_t const before = i == 0 ? n - 1 : i - 1;
            double const h = distance3d(list[before], list[i]), k = distance3d(list[i], list[(i + 1) % n]);
            place_on_segment const a = on_segment(c.begin() + 3 * before, 1),
                                   b = on_segment(c.begin() + 3 * i, 0);
            EXPECT_LE(distance3d(a.first / h, b.first / k), 1e-12);
            EXPECT_LE(distance3d(a.second / (h * h), b.second / (k * k)), 1e-11);
            if (!closed && n > 3 && (i == 1 || i == n - 2)) {  // one polynomial over both segments
                point const third_a =
                    (c[3 * i] - c[3 * i - 3] + 3 * (c[3 * i - 2] - c[3 * i - 1])) / (h * h * h);
                point const third_b =
                    (c[3 * i + 3] - c[3 * i] + 3 * (c[3 * i + 1] - c[3 * i + 2])) / (k * k * k);
                EXPECT_LE(distance3d(third_a, third_b), 1e-11);
            }
        }
        points twice;
        for (point const& p : list) twice.insert(twice.end(), 2, p);
        EXPECT_TRUE(are_same(bezier_fit(twice, closed), c));
    }
}

// Equal steps along a straight line, and two points: the thirds of each step.
TEST(BezierFit, OfAStraightLineDividesItEvenly) {
    for (double const far : {0.0, 1e6}) {
        for (int n : {2, 3, 4, 9}) {
            points list;
            for (int i = 0; i < n; ++i) list.push_back(at(far + 3 * i, 6 * i, -3 * i));
            curve const c = bezier_fit(list, false);
            ASSERT_EQ(c.capacity(), static_cast<unsigned int>(3 * n - 2));
            for (unsigned int i = 0; i < c.capacity(); ++i) {
                EXPECT_LE(distance3d(c[i], at(far + i, 2.0 * i, -1.0 * i)), far * 2.3e-16 + 1e-14);
            }
        }
    }
}

// Twice as many points bring the curve nearer by 2^4; every second step is longer, so that the
// parametrisation counts.
TEST(Interpolations, ConvergeWithTheFourthOrder) {
    auto const error = [](curve const& c) {
        double most = 0;
        for (unsigned int k = 0; k + 3 < c.capacity(); k += 3) {
            for (int i = 1; i < 8; ++i) {
                double const r = on_segment(c.begin() + k, i / 8.0).position.length2d();
                most = std::max(most, std::fabs(r - 1));
            }
        }
        return most;
    };
    for (bool const closed : {true, false}) {
        double last = 0;
        for (int n = 16; n <= 128; n *= 2) {
            points list;
            for (int i = 0; i < n; ++i) {
                double const a = (closed ? 2 * pi : 1.5) * (i + (i % 2 ? 0.2 : 0)) / n;
                list.push_back(at(std::cos(a), std::sin(a)));
            }
            double const now = error(bezier_fit(list, closed));
            if (last > 0) {
                EXPECT_NEAR(std::log2(last / now), 4, 0.3) << n;
            }
            last = now;
        }
    }
}

// The joints of both forms are the points, and between them the curves are the same.
TEST(NurbFit, OfFewPointsIsTheInterpolatingSpline) {
    seeded_random random(6);
    for (int trial = 0; trial < 60; ++trial) {
        SCOPED_TRACE(trial);
        bool const closed = random.coin();
        points const list =
            wandering_points(random, (closed ? 3 : 2) + static_cast<int>(random.below(20)), true);
        nurb const n = closed ? closed_nurb_fit(list) : open_nurb_fit(list);
        curve const c = bezier_fit(list, closed);
        ASSERT_EQ(n.order(), 4u);
        unsigned int const segments = (c.capacity() - 1) / 3;
        ASSERT_EQ(n.control_points(), segments + 3);
        for (unsigned int k = 0; k < segments; ++k) {
            for (double const s : {0.0, 0.3, 0.7, 1.0}) {
                double const t = n.get_knot(k + 3) + s * (n.get_knot(k + 4) - n.get_knot(k + 3));
                EXPECT_LE(distance3d(n.evaluate(t), on_segment(c.begin() + 3 * k, s).position), 1e-13 * 60);
            }
        }
        if (!closed) continue;
        // Periodic: one turn on, knots and points are the same.
        for (unsigned int i = 0; i < 3; ++i) {
            EXPECT_TRUE(point(n.get_control_point(i)) == point(n.get_control_point(segments + i)));
        }
        for (unsigned int i = 0; i < 6; ++i) {
            EXPECT_NEAR(n.get_knot(segments + i + 1) - n.get_knot(i + 1), last_parameter(n), 1e-14 * 20);
        }
    }
}

// No more bending than the other interpolation, and no less with the tangent turned at a joint.
TEST(BezierMinimumCurvatureFit, BendsNoMoreThanOtherPathsThroughThePoints) {
    seeded_random random(7);
    for (int trial = 0; trial < 60; ++trial) {
        SCOPED_TRACE(trial);
        bool const closed = random.coin();
        points const list = closed ? circle_points(random, at(0, 0), 3, 0, 2 * pi, 12, 0.1)
                                   : wandering_points(random, 20, random.coin());
        curve const c = bezier_minimum_curvature_fit(list, closed);
        double const energy = bending_energy(c);
        for (unsigned int i = 0; i < list.size(); ++i) EXPECT_TRUE(c[3 * i] == list[i]);
        EXPECT_LE(energy, bending_energy(bezier_fit(list, closed)) * (1 + 1e-6));  // two quadratures
        for (unsigned int i = 3; i + 3 < c.capacity(); i += 3) {
            double const turn = (random.coin() ? 1 : -1) * random.uniform(0.15, 0.3);
            curve other = c;
            point* const p = other.lazycopy_begin() + i;
            for (int side : {-1, 1}) p[side] = p[0] + (p[side] - p[0]).rotate(turn);
            EXPECT_GE(bending_energy(other), energy);
        }
        if (!closed) {  // free ends: no curvature
            point const bend = c[2] - c[1] - (c[1] - c[0]);
            EXPECT_LE(bend.length3d(), 1e-12);
        }
    }
}

// Uneven samples of one cubic, far from its chord-length parametrisation: one segment, the cubic itself.
TEST(BezierLeastSquaresFit, ReproducesACubicAndAStraightLine) {
    curve cubic(4);
    point const controls[] = {at(0, 0, 1), at(2, 7, 0), at(5, -4, 3), at(9, 1, 2)};
    std::copy(controls, controls + 4, cubic.lazycopy_begin());
    points samples, line;
    for (int i = 0; i < 50; ++i) {
        samples.push_back(on_segment(controls, i * i / 2401.0).position);
        line.push_back(at(1e6 + i, 2 * i));
    }
    curve const c = bezier_least_squares_fit(samples, false);
    ASSERT_EQ(c.capacity(), 4u);
    for (unsigned int i = 0; i < 4; ++i) EXPECT_LE(distance3d(c[i], controls[i]), 1e-11);
    curve const straight = bezier_least_squares_fit(line, false);
    ASSERT_EQ(straight.capacity(), 4u);
    EXPECT_LE(distance2d(straight[0], line[0]) + distance2d(straight[3], line[49]), 1e-9);
}

// The noise is 1e-2; the distances from the true curve are a good deal smaller, and no control polygon that
// keeps the joints smooth has a smaller sum of squares.
TEST(BezierLeastSquaresFit, SmoothsNoiseAndIsAMinimum) {
    seeded_random random(8);
    for (bool const closed : {true, false}) {
        SCOPED_TRACE(closed);
        points list;
        for (int i = 0; i < 200; ++i) {
            double const a = (closed ? 2 * pi : 4.5) * i / 200, noise = 1e-2 * random.normal();
            list.push_back(at((3 + noise) * std::cos(a), (2 + noise) * std::sin(a)));
        }
        curve const c = bezier_least_squares_fit(list, closed);
        EXPECT_LE(c.capacity(), 40u);
        double most = 0;
        for (unsigned int k = 0; k + 3 < c.capacity(); k += 3) {
            for (double t = 0; t < 1; t += 0.1) {
                point const p = on_segment(c.begin() + k, t).position;
                most = std::max(most, std::fabs(std::hypot(p.x() / 3, p.y() / 2) - 1));
            }
        }
        EXPECT_LE(most, 0.7e-2);
        double const sum = sum_of_squares(c, list);
        for (int trial = 0; trial < 10; ++trial) {
            // Moved by a cubic polynomial of the place, the spline stays one; small and along one direction.
            double const size = random.log_uniform(1e-6, 1e-4) * (random.coin() ? 1 : -1);
            double const turn = random.uniform(0, 2 * pi), scale = random.coin() ? size : 0;
            curve moved = c;
            for (point *p = moved.lazycopy_begin(), *end = p + c.capacity(); p != end; ++p) {
                p->dilate(1 + scale).translate(size * std::cos(turn), size * std::sin(turn));
            }
            EXPECT_GE(sum_of_squares(moved, list), sum * (1 - 1e-4));
        }
    }
}

// A closed contour of which a quarter could not be measured: no loop fills the gap.
TEST(BezierLeastSquaresFit, CrossesAGapWithoutALoop) {
    seeded_random random(12);
    for (int trial = 0; trial < 20; ++trial) {
        points const list = circle_points(random, at(0, 0), 1, 0, 1.5 * pi, 60 + 10 * trial, 3e-3);
        for (point const& p : bezier_least_squares_fit(list, true)) EXPECT_LE(p.length2d(), 1.6) << trial;
    }
}

TEST(NurbFit, OfManyPointsRunsAlongThem) {
    seeded_random random(9);
    points const list = circle_points(random, at(1e5, 5), 20, 0, 2 * pi, 500, 1e-3);
    nurb const n = closed_nurb_fit(list);
    EXPECT_LE(n.control_points(), 60u);
    double area = 0, length = 0;
    point center;
    n.compute_moments(area, length, center);
    EXPECT_NEAR(area, 400 * pi, 1e-3 * 40 * pi);
    EXPECT_LE(distance2d(center, at(1e5, 5)), 3e-4);
    points const half(list.begin(), list.begin() + 250);
    nurb const open = open_nurb_fit(half);
    EXPECT_LE(distance2d(open.evaluate(first_parameter(open)), half.front()), 5e-3);
    EXPECT_LE(distance2d(open.evaluate(last_parameter(open)), half.back()), 5e-3);
}

points shuffled(seeded_random& random, points list) {
    for (std::size_t i = list.size(); i > 1; --i)
        std::swap(list[i - 1], list[random.below(static_cast<unsigned int>(i))]);
    return list;
}

// The original order, turned to start where the documented rule lets it start.
points expected_order(points const& original, points const& given, bool closed) {
    auto const place = [&](point const& p) { return std::find(given.begin(), given.end(), p); };
    points list = original;
    if (closed) {
        std::rotate(list.begin(), std::find(list.begin(), list.end(), given[0]), list.end());
        if (place(list.back()) < place(list[1])) std::reverse(list.begin() + 1, list.end());
    } else if (place(list.back()) < place(list.front())) {
        std::reverse(list.begin(), list.end());
    }
    return list;
}

TEST(SortSplineData, RecoversAShuffledPath) {
    seeded_random random(10);
    for (int trial = 0; trial < 40; ++trial) {
        SCOPED_TRACE(trial);
        bool const closed = trial % 2, solid = trial % 4 < 2;
        int const n = 3 + static_cast<int>(random.below(400));
        points original;
        for (int i = 0; i < n; ++i) {
            // Three leaves, or one and a half turns of a spiral; steps uneven by up to a third.
            double const a = (i + random.uniform(-0.16, 0.16)) / n * (closed ? 2 * pi : 9);
            double const r = closed ? 20 + 8 * std::cos(3 * a) : 5 + 20 * a;
            original.push_back(solid ? at(r * std::cos(a), r * std::sin(a), closed ? 3 * std::sin(a) : a)
                                     : at(r * std::cos(a), r * std::sin(a)));
        }
        if (n < 30) original.resize(3);  // few points have shorter ways across
        points list = shuffled(random, original);
        points const expected = expected_order(original, list, closed);
        idioms::array<point> array = as_array(list);
        idioms::array<point> const shared = array;
        points const given = list;
        ASSERT_TRUE(sort_spline_data(list, closed));
        EXPECT_TRUE(list == expected || (original.size() == 3 && !closed));
        ASSERT_TRUE(sort_spline_data(array, closed));
        EXPECT_TRUE(std::equal(array.begin(), array.end(), list.begin()));
        EXPECT_TRUE(std::equal(shared.begin(), shared.end(), given.begin()));  // the copy is untouched
        ASSERT_TRUE(sort_spline_data(list, closed));                           // sorted: stays
        EXPECT_TRUE(list == expected || (original.size() == 3 && !closed));
    }
}

TEST(SortSplineData, KeepsRepeatedPointsTogetherAndRefusesPointsWithoutAPlace) {
    points list = {at(0, 0), at(3, 0), at(1, 0), at(3, 0), at(2, 0), at(0, 0)};
    ASSERT_TRUE(sort_spline_data(list, false));
    EXPECT_TRUE(list == (points{at(0, 0), at(0, 0), at(1, 0), at(2, 0), at(3, 0), at(3, 0)}));
    points same(1000, at(1, 2));
    EXPECT_TRUE(sort_spline_data(same, true) && same == points(1000, at(1, 2)));
    points nothing;
    EXPECT_TRUE(sort_spline_data(nothing, true));
    for (point const& bad : {point(), at(std::nan(""), 0), at(0, infinity)}) {
        points failing = {at(5, 0), at(0, 0), bad, at(1, 0)}, before = failing;
        EXPECT_FALSE(sort_spline_data(failing, false));
        EXPECT_TRUE(failing[0] == before[0] && failing[3] == before[3]);
    }
}

}  // namespace
}  // namespace tvmath
