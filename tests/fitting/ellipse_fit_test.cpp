#include "tvmath/ellipse_fit.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "support/mirrored_points.h"
#include "support/relative.h"
#include "support/shape_points.h"

inline namespace tvmath {
namespace {

struct known_ellipse {
    point center;
    double a, b, angle;
};

// Within `tolerance` of the longer half-axis.
void expect_ellipse(point const& center, point const& major, point const& minor, known_ellipse const& e,
                    double tolerance) {
    EXPECT_LE(distance2d(center, e.center) / e.a, tolerance);
    EXPECT_TRUE(near_at_scale(major.length2d(), e.a, e.a, tolerance, "major"));
    EXPECT_TRUE(near_at_scale(minor.length2d(), e.b, e.a, tolerance, "minor"));
    double const turn = std::sin(major.angle2d() - e.angle) * (e.a - e.b) / e.a;
    EXPECT_LE(std::fabs(turn), tolerance);
    EXPECT_LE(std::fabs(dot2d(normalize(major), normalize(minor))), 1e-12);
}

std::vector<point> points_of(seeded_random& random, known_ellipse const& e, double start, double span, int n,
                             double noise = 0) {
    mirrored_points points(random, e.center, e.angle, noise);
    for (int i = 0; i < n; ++i) {
        double const t = start + span * i / n, c = std::cos(t), s = std::sin(t);
        points.add(e.a * c, e.b * s, e.b * c, e.a * s);
    }
    return points.shuffled();
}

known_ellipse random_ellipse(seeded_random& random, double far) {
    double const a = random.log_uniform(1e-3, 1e5);
    return {at(random.uniform(-far, far), random.uniform(-far, far)), a, a * random.uniform(0.1, 0.95),
            random.uniform(-1.5, 1.5)};
}

TEST(EllipseQuickFit, RecoversTheEllipseOfExactPointsAtAnySizeAndDistance) {
    seeded_random random(1);
    for (int trial = 0; trial < 300; ++trial) {
        SCOPED_TRACE(trial);
        double const far = random.log_uniform(1e-3, 1e6);
        known_ellipse const e = random_ellipse(random, far);
        int const n = trial % 3 == 0 ? 5 : 40;  // exactly 5: the conic through them
        mirrored_points exact(random, e.center, e.angle, 0);
        std::vector<point> points;
        for (int i = 0; i < n; ++i) {
            double const t = 1 + 5.5 * i / n;
            points.push_back(exact.out(e.a * std::cos(t), e.b * std::sin(t)));
        }
        // Rounding of the coordinates, magnified a few times.
        double const tolerance = 30 * 1.1e-16 * (far + e.a) / e.a;
        point center, major, minor, other, other_major, other_minor;
        ASSERT_TRUE(ellipse_quick_fit(repeated(points), center, major, minor));
        expect_ellipse(center, major, minor, e, tolerance);
        ASSERT_TRUE(ellipse_quick_fit(points, center, major, minor));
        expect_ellipse(center, major, minor, e, tolerance);
        ASSERT_TRUE(ellipse_quick_fit(as_array(points), other, other_major, other_minor));
        EXPECT_TRUE(other == center && other_major == major && other_minor == minor);  // to the last bit
        ASSERT_TRUE(ellipse_quick_centered_fit(e.center, points, center, major, minor));
        expect_ellipse(center, major, minor, e, tolerance);
        EXPECT_TRUE(center == e.center);
    }
}

// A third of a radian tells 4th powers of an angle from rounding, about 1e-2 of 1e-16.
TEST(EllipseQuickFit, RecoversTheEllipseOfAShortArc) {
    seeded_random random(2);
    for (int trial = 0; trial < 100; ++trial) {
        known_ellipse const e = {at(30, -20), 5, 3, 0.5};
        std::vector<point> const arc = points_of(random, e, random.uniform(0, 6), 0.35, 60);
        point center, major, minor;
        ASSERT_TRUE(ellipse_quick_fit(arc, center, major, minor));
        expect_ellipse(center, major, minor, e, 1e-9);
    }
}

TEST(EllipseQuickFit, LeavesOutputsAloneWhenItFails) {
    double const nan = std::numeric_limits<double>::quiet_NaN();
    std::vector<point> const failing[] = {
        {},
        {at(0, 0), at(1, 0), at(1, 1), at(0, 1)},
        {at(0, 0), at(1, 0), at(1, 1), at(0, 1), at(0, 1)},             // four different ones
        {at(0, 0), at(1, 0), at(2, 0), at(3, 0), at(0, 1)},             // four on a line
        {at(0, 0), at(1, 2), at(2, 4), at(3, 6), at(4, 8)},             // all on a line
        {at(1, 1), at(2, 0.5), at(4, 0.25), at(-1, -1), at(-2, -0.5)},  // x y = 1
        {at(0, 0), at(1, 0), at(1, 2), at(0, 1), at(-1, 0.5), point()},
        {at(0, 0), at(1, 0), at(1, 2), at(0, 1), at(-1, 0.5), at(nan, 1)},
        {at(0, 0), at(1, 0), at(1, 2), at(0, 1), at(-1, 0.5), at(infinity, 1)},
    };
    for (auto const& points : failing) {
        SCOPED_TRACE(points.size());
        point center = at(7, 8), major = center, minor = center;
        EXPECT_FALSE(ellipse_quick_fit(points, center, major, minor));
        EXPECT_FALSE(ellipse_quick_centered_fit(point(), points, center, major, minor));
        EXPECT_TRUE(center == at(7, 8) && major == center && minor == center);
        EXPECT_TRUE(ellipse_fit(points).is_trivial());
    }
    point center, major, minor;
    EXPECT_FALSE(ellipse_quick_centered_fit(at(0, 0), {at(1, 0), at(-1, 0), at(0, 1)}, center, major, minor));
}

// Answers in 60 digits by Newton's method on the gradient of the distances.
TEST(EllipseFit, ReproducesReferenceEllipses) {
    double const noisy[][2] = {
        {-2.514927162, 11.965513224},  {-11.601957899, -1.08730931}, {9.263889066, 14.607883467},
        {-5.240585094, -8.615387405},  {10.055920261, -3.354751889}, {14.507933908, 2.602828361},
        {-8.735497532, 6.410544222},   {7.971998111, 14.783391448},  {-11.320714901, 1.087999345},
        {-5.313006789, -8.601804158},  {-3.661301657, 11.246220976}, {-1.199939955, -8.723672043},
        {15.365519711, 5.171966923},   {-11.165968221, 1.660406017}, {-11.020140422, -4.313603163},
        {8.95121822, -4.283586123},    {-3.86098623, -8.818281965},  {7.155640027, -5.581729807},
        {-10.114179619, -5.810692827}, {14.954300373, 3.750251774},  {4.233753207, 14.568441027},
        {-4.875233127, -8.654051623},  {9.115069218, 14.639349356},  {15.297534745, 9.482823259},
        {-11.609079188, -1.453993771}, {7.042729429, 14.811674215},  {15.374999207, 5.171038086},
        {15.615196208, 7.070689573},   {-2.44806824, 12.025501645},  {-8.350107849, 6.87172725},
        {1.900429856, 13.992852111},   {-11.135104271, 1.732058149}, {-11.07671473, -4.193047578},
        {-6.844316647, 8.600774985},   {-8.787679426, 6.356628165},  {-4.5977768, 10.567982504},
        {7.69897771, 14.792939727},    {4.590888813, 14.628556583},  {14.912925389, 10.567213211},
        {2.571215394, 14.184029414}};
    std::vector<point> points;
    for (auto const& p : noisy) points.push_back(at(p[0], p[1]));
    ellipse const fitted = ellipse_fit(points);
    expect_ellipse(
        fitted.basis(0), fitted.basis(1), fitted.basis(2),
        {at(1.997651348605918, 2.997956872946027), 15.000221563650826, 9.999175097710923, 0.5997260202838263},
        1e-14);

    // W. Gander, G. Golub, R. Strebel, BIT 34 (1994) 558-578: the scatter is a seventh of the shorter
    // half-axis.
    std::vector<point> const published = {at(1, 7), at(2, 6), at(5, 8), at(7, 7),
                                          at(9, 5), at(3, 7), at(6, 2), at(8, 4)};
    ellipse const wide = ellipse_fit(as_array(published));
    expect_ellipse(wide.basis(0), wide.basis(1), wide.basis(2),
                   {at(2.6996121879, 3.8159566459), 6.5187223025, 3.0318860017, 0.3596242711}, 1e-10);
}

TEST(EllipseFit, StaysAtTheEllipseOfMirroredPoints) {
    seeded_random random(3);
    for (int trial = 0; trial < 200; ++trial) {
        SCOPED_TRACE(trial);
        double const far = random.log_uniform(1e-3, 1e6);
        known_ellipse e = random_ellipse(random, far);
        std::vector<point> const points =
            points_of(random, e, random.uniform(0, 6), random.uniform(3, 6), 25, 1e-4 * e.b);
        double const tolerance = 300 * 1.1e-16 * (far + e.a) / e.a;
        ellipse const free = ellipse_fit(points), held = ellipse_centered_fit(e.center, repeated(points));
        expect_ellipse(free.basis(0), free.basis(1), free.basis(2), e, tolerance);
        expect_ellipse(held.basis(0), held.basis(1), held.basis(2), e, tolerance);
    }
}

// Residual of a point, positive outside, and its derivatives by centre, half-axes and angle: the foot by
// halving its quadrant.
struct gauss_newton_row {
    long double gradient[5], residual;
};

gauss_newton_row exact_row(long double const (&q)[5], point const& p) {
    long double const c = std::cos(q[4]), s = std::sin(q[4]), dx = p.x() - q[0], dy = p.y() - q[1];
    long double const x = c * dx + s * dy, y = c * dy - s * dx, a = q[2], b = q[3];
    long double low = 0, high = std::acos(0.0L);
    for (int i = 0; i < 70; ++i) {
        long double const t = (low + high) / 2, u = std::cos(t), v = std::sin(t);
        ((a * u - std::fabs(x)) * -a * v + (b * v - std::fabs(y)) * b * u > 0 ? high : low) = t;
    }
    long double const u = std::copysign(std::cos(low), x), v = std::copysign(std::sin(low), y);
    long double const n = std::hypot(b * u, a * v), nx = b * u / n, ny = a * v / n;
    return {{s * ny - c * nx, -s * nx - c * ny, -u * nx, -v * ny, v * nx * b - u * ny * a},
            (x - a * u) * nx + (y - b * v) * ny};
}

// The largest of Gauss and Newton's next step in units of a: 0 at a minimum of the sum of squares.
double next_step(ellipse const& e, std::vector<point> const& points) {
    long double const q[] = {e.basis(0).x(), e.basis(0).y(), e.basis(1).length2d(), e.basis(2).length2d(),
                             e.basis(1).angle2d()};
    long double m[5][6] = {};
    for (point const& p : points) {
        gauss_newton_row const row = exact_row(q, p);
        for (int i = 0; i < 5; ++i) {
            for (int j = 0; j < 5; ++j) m[i][j] += row.gradient[i] * row.gradient[j];
            m[i][5] += row.gradient[i] * row.residual;
        }
    }
    for (int i = 0; i < 5; ++i) {  // positive definite: no pivots
        for (int j = 0; j < 5; ++j) {
            long double const f = j == i ? 0 : m[j][i] / m[i][i];
            for (int k = i; k < 6; ++k) m[j][k] -= f * m[i][k];
        }
    }
    long double most = 0;
    for (int i = 0; i < 4; ++i) most = std::max(most, std::fabs(m[i][5] / m[i][i]));
    return static_cast<double>(most / q[2]);
}

TEST(EllipseFit, OfScatteredArcsIsAMinimumOrNone) {
    struct {
        double span, noise, tolerance;
        int most_null;  // of 40
    } const cases[] = {{6.2, 1e-2, 1e-13, 0}, {6.2, 1e-6, 1e-13, 0}, {3, 1e-2, 1e-12, 0},
                       {3, 1e-4, 1e-12, 0},   {1.6, 1e-2, 1e-9, 15}, {1.6, 1e-4, 1e-11, 0},
                       {1, 1e-4, 1e-10, 0},   {1, 1e-6, 1e-12, 0},   {0.2, 1e-8, 1e-8, 20}};
    seeded_random random(5);
    for (auto const& c : cases) {
        SCOPED_TRACE(testing::Message() << "span " << c.span << " noise " << c.noise);
        int null = 0;
        for (int trial = 0; trial < 40; ++trial) {
            known_ellipse const e = random_ellipse(random, 1);
            double const start = random.uniform(0, 6);
            mirrored_points frame(random, e.center, e.angle, 0);
            std::vector<point> points;
            for (int i = 0; i < 50; ++i) {
                double const t = start + c.span * i / 50, off = c.noise * e.a;
                points.push_back(frame.out(e.a * std::cos(t) + off * random.normal(),
                                           e.b * std::sin(t) + off * random.normal()));
            }
            ellipse const found = ellipse_fit(points);
            if (found.is_trivial()) {
                ++null;
            } else {
                EXPECT_LE(next_step(found, points), c.tolerance);
            }
        }
        EXPECT_LE(null, c.most_null);
    }
}

TEST(EllipseFit, KeepsTheDimensionOfThePoints) {
    seeded_random random(4);
    std::vector<point> flat = points_of(random, {at(5, 6), 4, 2, 0.3}, 0, 6, 20, 1e-3), raised = flat;
    for (std::size_t i = 0; i < raised.size(); ++i) raised[i] = raised[i] + point(false, 0, 0, i % 2 ? 1 : 3);
    EXPECT_TRUE(ellipse_fit(flat).is_2d());
    EXPECT_TRUE(ellipse_fit(raised).is_3d());
    EXPECT_NEAR(ellipse_fit(raised).basis(0).z(), 2, 1e-14);
    EXPECT_NEAR(ellipse_centered_fit(at(5, 6, 9), raised).basis(0).z(), 9, 0);
    EXPECT_TRUE(ellipse_centered_fit(at(5, 6), flat).is_2d());
    EXPECT_TRUE(ellipse_centered_fit(point(), flat).is_trivial());
}

}  // namespace
}  // namespace tvmath
