#include "tvmath/geometry_fitter.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "support/relative.h"
#include "support/seeded_random.h"
#include "support/shape_points.h"

inline namespace tvmath {
namespace {

using namespace geometry_fitter;

line segment(double x1, double y1, double x2, double y2, double z = 0) {
    return line(at(x1, y1, z), at(x2, y2, z));
}

// One letter for each kind; two points for a fit.
constraint* made(char kind) {
    line const l = segment(0, 0, 1, 0);
    if (kind == 'c') return centered(at(1, 2, 3));
    if (kind == 't') return through(at(4, 6, 3));
    return kind == 'g'   ? tangent(l)
           : kind == 'p' ? parallel(l)
           : kind == 'o' ? perpendicular(l)
                         : fit({at(0, 0, 0), at(3, 1, 0)});
}

// Offers what each letter stands for; `taken` are the letters that find room.
template <class kind>
void expect_count(std::string const& offered, std::string const& taken, int redundancy) {
    SCOPED_TRACE(testing::Message() << typeid(kind).name() << " " << offered);
    kind f;
    std::string found;
    for (char letter : offered) {
        std::unique_ptr<constraint> c(made(letter));
        bool const takes = f.can_add(typeid(*c));
        f.add(c.get());  // what is refused stays with us
        if (!takes) continue;
        c.release();
        found += letter;
    }
    EXPECT_EQ(found, taken);
    EXPECT_EQ(f.degrees_of_freedom(), redundancy);
}

TEST(Fitters, CountTheirConditions) {
    expect_count<point_fitter>("", "", -1);
    expect_count<point_fitter>("tgpocfc", "c", 0);
    expect_count<point_fitter>("ffc", "ff", 3);
    expect_count<line_fitter>("gcft", "cf", 1);
    expect_count<line_fitter>("pof", "pf", 1);
    expect_count<line_fitter>("opc", "oc", 0);
    expect_count<line_fitter>("ttt", "tt", 0);
    expect_count<circle_fitter>("tgc", "tg", -1);
    expect_count<circle_fitter>("ctg", "ct", 0);
    expect_count<circle_fitter>("ttf", "ttf", 1);
    expect_count<arc_fitter>("pofc", "fc", 1);
    expect_count<sphere_fitter>("cgt", "cg", 0);
    expect_count<sphere_fitter>("tttft", "tttf", 1);
    expect_count<ellipse_fitter>("ccf", "cf", -1);
    expect_count<ellipse_fitter>("ftgpof", "ff", -1);
    struct own : fit_cnst {
        own() : fit_cnst({at(1, 1, 1)}) {}
    };
    EXPECT_FALSE(point_fitter().can_add(typeid(own)));  // a kind is an exact type
}

void expect_segment(char const* name, std::vector<constraint*> const& known, point from, point to) {
    SCOPED_TRACE(name);
    line_fitter f;
    for (constraint* c : known) f.add(c);
    Segment_Description found;
    ASSERT_TRUE(f.result(found));
    line const& l = found.geometry;
    EXPECT_LE(distance3d(l.basis(0) - l.basis(1), from), 1e-14);
    EXPECT_LE(distance3d(l.basis(0) + l.basis(1), to), 1e-14);
}

TEST(LineFitter, SpansWhatItWasGiven) {
    line const given = segment(0, 1, 4, 1);
    expect_segment("points", {through(at(1, 1, 2)), through(at(4, 5, 4))}, at(4, 5, 3), at(1, 1, 3));
    expect_segment("axis", {fit({at(0, 0, 1), at(2, 2, 1), at(1, 1, 1)})}, at(0, 0, 1), at(2, 2, 1));
    expect_segment("axis about a point", {fit({at(1, 0, 5), at(3, 0, 5)}), through(at(0, 0, 5))}, at(0, 0, 5),
                   at(3, 0, 5));
    // -1 to 3 about 0 becomes -3 to 3.
    expect_segment("centre", {fit({at(-1, 0, 0), at(3, 0, 0)}), centered(at(0, 0, 0))}, at(-3, 0, 0),
                   at(3, 0, 0));
    expect_segment("given length", {parallel(given), through(at(7, 5, 2))}, at(5, 5, 2), at(9, 5, 2));
    expect_segment("parallel", {parallel(given), fit({at(1, 2, 0), at(6, 4, 0)})}, at(1, 3, 0), at(6, 3, 0));
    // From the anchor away from the given line, by its length.
    expect_segment("above", {perpendicular(given), through(at(3, 3, 0))}, at(3, 3, 0), at(3, 7, 0));
    expect_segment("below", {perpendicular(given), through(at(3, 0, 0))}, at(3, 0, 0), at(3, -4, 0));
    expect_segment("wide", {perpendicular(given), fit({at(3, -3, 0), at(3, 9, 0)})}, at(3, -3, 0),
                   at(3, 9, 0));
}

TEST(PointFitter, TakesTheMeanOfAllLists) {
    point_fitter f;
    f.add(fit({at(1, 2, 3)}));
    f.add(fit({at(3, 4, 5), at(5, 0, 1)}));
    Point_Description found;
    ASSERT_TRUE(f.result(found));
    ASSERT_TRUE(f.result(found));  // the joined list is the same
    EXPECT_LE(distance3d(found.position, at(3, 2, 3)), 1e-15);
    EXPECT_EQ(f.degrees_of_freedom(), 2);
}

TEST(CircleFitter, TakesTheRadiusFromTheCentre) {
    struct {
        constraint* known;
        double radius;
    } const cases[] = {{through(at(4, 6, 9)), 5},
                       {tangent(segment(-7, -1, -6, -1, 8)), 3},
                       {fit({at(4, 6, 9), at(1, 5, 0), at(2, 2, 0)}), 3}};
    for (auto const& c : cases) {
        circle_fitter f;
        f.add(centered(at(1, 2, 3)));
        f.add(c.known);
        Circle_Description found;
        ASSERT_TRUE(f.result(found));
        EXPECT_LE(distance3d(found.geometry.center(), at(1, 2, 3)), 1e-15);
        EXPECT_NEAR(found.geometry.radius(), c.radius, 1e-15);
    }
    sphere_fitter f;
    f.add(centered(at(1, 1, 1)));
    f.add(tangent(plane(at(9, 5, 3), point(false, 0, 0, 2))));
    Sphere_Description found;
    ASSERT_TRUE(f.result(found));
    EXPECT_NEAR(found.geometry.radius(), 2, 1e-15);
}

// Four points at height 4, a point at 8 and the foot on a line at 0: (4 * 4 + 8 + 0) / 6.
TEST(CircleFitter, LiesAtTheMeanHeightOfAll) {
    circle_fitter f;
    f.add(fit({at(5, 0, 4), at(0, 5, 4), at(-5, 0, 4), at(-3, 4, 4)}));
    f.add(through(at(3, 4, 8)));
    f.add(tangent(segment(-1, -5, 2, -5)));
    Circle_Description found;
    ASSERT_TRUE(f.result(found));
    EXPECT_LE(distance3d(found.geometry.center(), at(0, 0, 4)), 1e-14);
    EXPECT_NEAR(found.geometry.radius(), 5, 1e-14);
}

// Gander, Golub, Strebel, BIT 34 (1994) 558-578; the answer by Newton's method in 60 digits.
TEST(CircleFitter, ReproducesThePublishedCircle) {
    circle_fitter c;
    c.add(fit({at(1, 7, 0), at(2, 6, 0), at(5, 8, 0), at(7, 7, 0), at(9, 5, 0), at(3, 7, 0)}));
    Circle_Description found;
    ASSERT_TRUE(c.result(found));
    EXPECT_LE(distance2d(found.geometry.center(), at(4.739782410906074, 2.9835326992924753)), 1e-12);
    EXPECT_NEAR(found.geometry.radius(), 4.71422603779211, 1e-12);
}

// The same points, moved and scaled by powers of 2 that leave every coordinate exact, give the same feature
// to the rounding of the far coordinates.
TEST(Fitters, KeepTheDigitsOfFarAndTinyFeatures) {
    seeded_random random(4);
    for (int trial = 0; trial < 50; ++trial) {
        SCOPED_TRACE(trial);
        double const unit = std::ldexp(1, -static_cast<int>(random.below(12))),
                     far = random.coin() ? 1048576 : 0;
        std::vector<point> near_points, far_points;
        for (point p : sphere_points(random, at(0, 0, 0), 1, 40, 0.005)) {
            for (unsigned int k = 1; k < 4; ++k) p[k] = std::ldexp(std::round(std::ldexp(p[k], 20)), -20);
            near_points.push_back(p);
            far_points.push_back(at(unit * p.x() + far, unit * p.y() - far, unit * p.z() + far));
        }
        Sphere_Description a, b;
        sphere_fitter f, g;
        f.add(fit(near_points));
        g.add(fit(far_points));
        ASSERT_TRUE(f.result(a) && g.result(b));
        point const expected = unit * a.geometry.center() + point(false, far, -far, far);
        double const rounding = 1e-12 * unit + far * 4.5e-16;
        EXPECT_LE(distance3d(b.geometry.center(), expected), rounding);
        EXPECT_NEAR(b.geometry.radius(), unit * a.geometry.radius(), 1e-12 * unit);
    }
}

TEST(EllipseFitter, FindsEllipsesFreeAndCentred) {
    seeded_random random(6);
    for (int trial = 0; trial < 50; ++trial) {
        SCOPED_TRACE(trial);
        double const b = random.log_uniform(1e-3, 1e3), a = b * random.uniform(1.1, 5),
                     angle = random.uniform(-1.5, 1.5);
        double const far = random.coin() ? 1e6 : 0;
        point const center = at(random.uniform(-far, far), far, 2);
        std::vector<point> points;
        for (int i = 0; i < 40; ++i) {
            double const t = i * 0.15, x = a * std::cos(t), y = b * std::sin(t);
            points.push_back(center + point(false, x * std::cos(angle) - y * std::sin(angle),
                                            x * std::sin(angle) + y * std::cos(angle), i));
        }
        for (bool given : {false, true}) {
            ellipse_fitter f;
            f.add(fit(points));
            if (given) f.add(centered(center));
            Ellipse_Description found;
            ASSERT_TRUE(f.result(found));
            ellipse const& e = found.geometry;
            double const tolerance = 1e-12 * a + 1e-15 * far;
            EXPECT_LE(distance2d(e.center(), center), given ? 1e-15 * (far + a) : tolerance);
            EXPECT_NEAR(e.semimajor(), a, tolerance);
            EXPECT_NEAR(e.semiminor(), b, tolerance);
            EXPECT_NEAR(std::sin(e.major_angle2d() - angle), 0, 20 * tolerance / a);
            EXPECT_NEAR(e.center().z(), given ? 2 : 21.5, 1e-12);
        }
    }
}

TEST(ArcFitter, SpansThePoints) {
    seeded_random random(8);
    double const pi_ = 3.141592653589793;
    for (int trial = 0; trial < 200; ++trial) {
        double const start = random.uniform(-7, 7), sweep = random.uniform(0.3, 5),
                     r = random.log_uniform(0.1, 10);
        std::vector<point> points = circle_points(random, at(3, 4, 5), r, start, sweep * 21 / 20, 21);
        for (std::size_t i = points.size() - 1; i > 0; --i) {
            std::swap(points[i], points[random.below(static_cast<unsigned int>(i + 1))]);
        }
        arc_fitter f;
        f.add(fit(points));
        Arc_Description found;
        ASSERT_TRUE(f.result(found));
        EXPECT_NEAR(found.included_angle, sweep, 1e-12);
        double const off = std::remainder(found.circle.basis(1).angle2d() - start - sweep / 2, 2 * pi_);
        EXPECT_NEAR(off, 0, 1e-12);
        EXPECT_NEAR(found.circle.radius(), r, 1e-12 * r);
    }
    arc_fitter single;  // one angle has no second one to end at
    single.add(centered(at(0, 0, 0)));
    single.add(through(at(0, 2, 0)));
    Arc_Description found;
    ASSERT_TRUE(single.result(found));
    EXPECT_NEAR(found.included_angle, -2 * pi_, 1e-15);
    EXPECT_NEAR(found.circle.basis(1).y(), -2, 1e-15);
}

TEST(Fitters, LeaveTheRecordAloneWhenTheyFail) {
    double const nan = std::numeric_limits<double>::quiet_NaN(),
                 inf = std::numeric_limits<double>::infinity();
    std::vector<point> const square = {at(0, 0, 0), at(1, 0, 0), at(1, 1, 0), at(0, 1, 0)};
    auto const with = [&](point const& p) {
        std::vector<point> list = square;
        list.push_back(p);
        return fit(list);
    };
    line const flat = segment(0, 0, 4, 0), steep = segment(0, 0, 0, 4);
    struct {
        char const* name;
        std::vector<constraint*> known;
    } const cases[] = {
        {"nothing", {}},
        {"two points", {through(at(0, 0, 0)), through(at(1, 0, 0))}},
        {"2D point", {with(at(1, 1))}},
        {"direction", {with(point(false, 1, 1, 1))}},
        {"empty list", {fit(std::vector<point>()), fit(square)}},
        {"NaN", {with(at(nan, 1, 1))}},
        {"infinity", {with(at(1, -inf, 1))}},
        {"infinity about a centre", {centered(at(0, 0, 0)), with(at(1, -inf, 1))}},
        {"huge", {with(at(1e300, 1e300, 0))}},
        {"2D line", {tangent(line(at(0, 0), at(1, 1))), fit(square)}},
        {"null line", {tangent(line()), fit(square)}},
        {"line without length", {tangent(segment(1, 2, 1, 2)), fit(square)}},
        {"points on a line", {fit({at(0, 0, 0), at(1, 0, 0), at(2, 0, 0), at(3, 0, 0)})}},
        {"equal points", {fit(std::vector<point>(9, at(1, 2, 3)))}},
        // Through which rounding would draw some circle.
        {"two points, repeated",
         {fit({at(9.1, -7, 3), at(8.3, 4, 3), at(9.1, -7, 3), at(8.3, 4, 3), at(8.3, 4, 3)})}},
        {"points on both sides of a line", {tangent(flat), fit({at(0, 1, 0), at(0, -1, 0)})}},
        {"a point on the line", {tangent(flat), through(at(1, 0, 0)), fit(square)}},
        {"equal through points", {through(at(5, 5, 0)), through(at(5, 5, 0)), fit(square)}},
        {"parallel lines", {tangent(flat), tangent(flat), tangent(segment(0, 2, 4, 2))}},
        {"lines through one point", {tangent(flat), tangent(steep), tangent(segment(0, 0, 3, 3))}},
    };
    for (auto const& c : cases) {
        SCOPED_TRACE(c.name);
        circle_fitter circles;
        sphere_fitter spheres;
        for (constraint* known : c.known) {
            // The sphere's fitter gets points alone, and those of the square lie in a plane.
            if (auto const* list = dynamic_cast<fit_cnst*>(known)) spheres.add(fit(list->points));
            circles.add(known);
        }
        Circle_Description whole;
        whole.geometry = circle(7);
        Sphere_Description ball;
        ball.geometry = sphere(7);
        EXPECT_FALSE(circles.result(whole));
        EXPECT_FALSE(spheres.result(ball));
        EXPECT_TRUE(whole.geometry.radius() == 7 && ball.geometry.radius() == 7);
    }
    circle_fitter good;
    good.add(fit(square));
    Sphere_Description other_kind;
    EXPECT_FALSE(good.result(other_kind));
}

}  // namespace
}  // namespace tvmath
