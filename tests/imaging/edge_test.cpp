#include "tvmath/edge.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <utility>

#include "imaging/rendered_scene.h"
#include "imaging/vision_switch.h"
#include "tvmath/polynomial.h"

inline namespace tvmath {
namespace {

// Within the single precision of the running sums.
void expect_equal(image const& a, image const& b) {
    ASSERT_TRUE(rows(a) == rows(b) && cols(a) == cols(b));
    for (unsigned int y = 0; y < rows(a); ++y) {
        for (unsigned int x = 0; x < cols(a); ++x) ASSERT_NEAR(a[y][x], b[y][x], 1e-6);
    }
}

TEST(EdgeGradient, MeasuresChangesOfGreyAndOfTexture) {
    for (bool const is_new : {false, true}) {
        EXPECT_TRUE(with_new_algorithms(is_new, [is_new] {
            double const scale = is_new ? std::sqrt(0.5) : 1;
            // A slope of grey without texture: twice the slope. At the border two means of 3 have bent it:
            // the first rows are 0.5, 1 and 2 steps after one of them, 0.75 and 3.5 / 3 after both.
            image m = image_of(12, 16, [](double y, double) { return 0.05 * y; });
            m.horizontal_edge_gradient(false);
            EXPECT_NEAR(m[6][8], scale * 0.1, 1e-6);
            EXPECT_NEAR(m[0][8], scale * 0.05 * (3.5 / 3 - 0.75), 1e-6);
            // Bright and dark columns by turns from row 10 on, 0.2 about the mean. Over 5 columns each
            // deviates by 0.8 of that from the mean, and is itself 1/9 after two means of 3. Down the columns
            // these two are weights of 1 2 3 2 1 ninths, of which 5 lie between the rows beside the edge.
            m = image_of(20, 18, [](double y, double x) {
                return y < 10 ? 0.5 : static_cast<int>(x) % 2 ? 0.3 : 0.7;
            });
            m.horizontal_edge_gradient(false);
            for (unsigned int y : {9u, 10u})
                EXPECT_NEAR(m[y][9], scale * 0.2 * std::hypot(0.8, 5.0 / 81), 1e-6);
            for (unsigned int y : {5u, 14u}) EXPECT_NEAR(m[y][9], 0, 1e-6);

            seeded_random random(3);
            for (int trial = 0; trial < 30; ++trial) {
                image const a = random_image(random, 2 + random.below(20), 2 + random.below(20));
                image along = a, across = transpose(a);
                bool const wrap = random.coin();
                expect_equal(image(transpose(along.vertical_edge_gradient(wrap))),
                             across.horizontal_edge_gradient(wrap));
            }
        }));
    }
    image row = matrix(1, 5, 0.3);
    EXPECT_EQ(max_value(row.horizontal_edge_gradient(true).vertical_edge_gradient(true)), 0.3);
}

TEST(NormalAngle, IsTheDirectionOfASlope) {
    seeded_random random(4);
    for (int trial = 0; trial < 200; ++trial) {
        unsigned int const radius = 2 + random.below(5), r = 2 * radius + 1 + random.below(20);
        unsigned int const c = 2 * radius + 1 + random.below(20);
        int const half_width = static_cast<int>(random.below(radius));
        bool const axis = trial % 4 == 0;
        double const angle =
            axis ? pi / 2 * (trial / 4 % 4 - 1) : random.uniform(-1, 1) * (trial % 4 == 1 ? 1e-6 : pi);
        double const dx = axis ? std::round(std::cos(angle)) : std::cos(angle);
        double const dy = axis ? std::round(std::sin(angle)) : std::sin(angle);
        double const found = image_of(r, c, [=](double y, double x) {
                                 return dx * x + dy * y;
                             }).find_normal_angle(radius, half_width);
        // The bright side is told along an axis alone.
        double const expected = axis ? angle : std::remainder(angle, pi);
        EXPECT_NEAR(found, expected, 1e-12)
            << r << " by " << c << ", radius " << radius << ", " << half_width;
        std::pair<unsigned int, int> const refused[] = {{0, 0},
                                                        {radius, static_cast<int>(radius)},
                                                        {radius, -1},
                                                        {(std::min(r, c) + 1) / 2, 0},
                                                        {~0u, 0}};
        for (auto [too_long, width] : refused)
            EXPECT_TRUE(std::isnan(image(r, c).find_normal_angle(too_long, width)));
    }
}

// One bright pixel shows whether a strip about a sample of the grid holds it: below or above that sample, for
// else the answer is 0. In 6 by 6 the circle is about (2, 2), and its lowest sample (2, 4). In 18 by 18 with
// steps of 3 row 3 has samples at 5, 8 and 11, row 6 at 4, 7 and on. In 15 by 15 with steps of 2 row 5 has
// one at 4, in 14 by 14 with steps of 1 row 1.
TEST(NormalAngle, SamplesTheGridInTheCircle) {
    struct {
        unsigned int size, radius, x, y;
        double angle;
    } const cases[] = {{6, 1, 2, 5, pi / 2},  {6, 1, 3, 5, 0},        {18, 3, 5, 0, -pi / 2},
                       {18, 3, 6, 0, 0},      {18, 3, 4, 4, -pi / 2}, {15, 3, 4, 2, -pi / 2},
                       {14, 1, 4, 0, -pi / 2}};
    for (auto const& c : cases) {
        image m(c.size, c.size);
        m(c.y)(c.x) = 1;
        EXPECT_EQ(m.find_normal_angle(c.radius, 0), c.angle) << c.x << ' ' << c.y;
    }
    // Below a product of 1e-10 a diagonal counts as an axis.
    for (auto [difference, angle] : {std::pair(1.1e-5, pi / 4), std::pair(0.9e-5, 0.0)}) {
        image m(3, 3);
        m(1)(2) = m(2)(1) = difference;
        EXPECT_NEAR(m.find_normal_angle(1, 0), angle, 1e-9);
    }
}

TEST(FindPeak, ClimbsToAPixelThatNoNeighbourExceeds) {
    seeded_random random(5);
    for (int trial = 0; trial < 100; ++trial) {
        unsigned int const r = 1 + random.below(12), c = 1 + random.below(12);
        image const m = random_image(random, r, c);
        pixel const start(static_cast<int>(random.below(c)), static_cast<int>(random.below(r)));
        pixel const peak = m.find_peak(start);
        auto const around = [&m](pixel p, unsigned int reach) {
            unsigned int const x = static_cast<unsigned int>(p.x), y = static_cast<unsigned int>(p.y);
            unsigned int const left = std::min(x, reach), up = std::min(y, reach);
            return max_value(keep_matrix(m, y - up, up + 1 + reach, x - left, left + 1 + reach));
        };
        EXPECT_EQ(around(peak, 0), around(peak, 1));
        EXPECT_GE(around(peak, 0), around(start, 1));
        EXPECT_EQ(image(3, 4).find_peak(start), start);  // flat, or outside
    }
}

// A line against the image by the parameters at which it crosses each border (Cyrus and Beck), an independent
// method. Its ends in the documented order: along the direction for dy from 0 up, otherwise against it.
bool clip(double x, double y, double dx, double dy, double w, double h, double (&ends)[2][2]) {
    double enter = -infinity, leave = infinity;
    double const start[] = {x, y}, step[] = {dx, dy}, size[] = {w, h};
    for (int axis = 0; axis < 2; ++axis) {
        if (step[axis] == 0 && (start[axis] < 0 || start[axis] > size[axis])) return false;
        if (step[axis] == 0) continue;
        double const a = -start[axis] / step[axis], b = (size[axis] - start[axis]) / step[axis];
        enter = std::max(enter, std::min(a, b));
        leave = std::min(leave, std::max(a, b));
    }
    if (dy < 0) std::swap(enter, leave);
    for (int axis = 0; axis < 2; ++axis) {
        ends[0][axis] = start[axis] + enter * step[axis];
        ends[1][axis] = start[axis] + leave * step[axis];
    }
    return dy < 0 ? leave <= enter : enter <= leave;
}

TEST(EdgePoints, AreWhereTheLineCrossesTheBorders) {
    seeded_random random(6);
    int hits = 0;
    for (int trial = 0; trial < 20000; ++trial) {
        int const w = 1 + static_cast<int>(random.below(30)), h = 1 + static_cast<int>(random.below(30));
        double const x = random.uniform(-10, 40), y = random.uniform(-10, 40),
                     angle = random.uniform(-pi, pi);
        double const dx = trial % 10 == 0 ? 0 : std::cos(angle), dy = trial % 10 == 1 ? 0 : std::sin(angle);
        double ends[2][2];
        bool const expected = clip(x, y, dx, dy, w, h, ends);
        pixel p[2] = {pixel(-7, -7), pixel(-7, -7)};
        bool const found = image(static_cast<unsigned int>(h), static_cast<unsigned int>(w))
                               .edge_points(x, y, dx, dy, p[0], p[1]);
        ASSERT_EQ(found, expected) << x << ' ' << y << ' ' << dx << ' ' << dy;
        hits += found;
        for (int end = 0; end < 2; ++end) {
            // Within the margin of the pixel, which an end on a border needs.
            double const px = found ? ends[end][0] - p[end].x : 0, py = found ? ends[end][1] - p[end].y : 0;
            ASSERT_TRUE(px > -1e-8 && px < 1 + 1e-8 && py > -1e-8 && py < 1 + 1e-8) << end;
            ASSERT_TRUE(found ? p[end].x >= 0 && p[end].x < w && p[end].y >= 0 && p[end].y < h
                              : p[end] == pixel(-7, -7));
        }
    }
    EXPECT_GT(hits, 5000);
}

TEST(EdgePoints, OfLinesThroughCornersAndOfBadLines) {
    pixel const none(-7, -7);
    double const bad = std::nan(""), huge = 1e300;
    struct {
        double x, y, dx, dy;
        pixel first, second;
    } const cases[] = {{0, 0, 1, 1, {0, 0}, {7, 7}},         {0, 8, 1, -1, {7, 0}, {0, 7}},
                       {4, 4, -2, -2, {0, 0}, {7, 7}},       {4, 4, -1, 1, {7, 0}, {0, 7}},
                       {99, 2.5, -3, 0, {7, 2}, {0, 2}},     {4, 4, 0, 0, none, none},
                       {bad, 4, 1, 0, none, none},           {4, 4, bad, 1, none, none},
                       {4, 4, infinity, 1, none, none},      {-infinity, 4, 1, 0, none, none},
                       {huge, huge, 1, 1, none, none},       {1e17, 1e17 + 16, 1, 1, none, none},
                       {1e17, 2.6, 1, 1e-18, {0, 2}, {7, 2}}};
    for (auto const& c : cases) {
        for (unsigned int const size : {8u, 0u}) {
            pixel first = none, second = none;
            bool const hit = size > 0 && c.first != none;
            EXPECT_EQ(image(8, size).edge_points(c.x, c.y, c.dx, c.dy, first, second), hit)
                << c.x << ' ' << c.dx;
            EXPECT_TRUE(first == (hit ? c.first : none) && second == (hit ? c.second : none))
                << c.x << ' ' << c.dx;
        }
    }
}

TEST(Hough, TurnsALineIntoASpot) {
    seeded_random random(7);
    for (int trial = 0; trial < 20; ++trial) {
        int const r = static_cast<int>(random.below(30)), a = 4 + static_cast<int>(random.below(12));
        double const theta = pi / 2 - 0.2 + (a + 0.5) * 0.02, c = std::cos(theta), s = std::sin(theta);
        double const distance = r + 0.5 - 15;  // from the middle in whole numbers (40, 30), along the normal
        image m = image_of(61, 81, [=](double y, double x) {
            return std::exp(-0.5 * std::pow((x + 0.5 - 40) * c + (y + 0.5 - 30) * s - distance, 2));
        });
        m.hough(30, 20);
        ASSERT_TRUE(rows(m) == 30 && cols(m) == 20);
        EXPECT_NEAR(max_value(m), 1, 1e-12);
        EXPECT_EQ(min_value(m), 0);
        vector const at_offset = m[static_cast<unsigned int>(r)];
        EXPECT_GT(at_offset[static_cast<unsigned int>(a)], 0.9);
        double weights = 0, moment = 0;  // a centroid tells half a step of angle from none
        for (int d = -4; d <= 4; ++d) {
            double const w = std::pow(at_offset[static_cast<unsigned int>(a + d)], 8);
            weights += w;
            moment += d * w;
        }
        EXPECT_NEAR(moment / weights, 0, 0.25);
    }
    image zeros(9, 9), none(9, 9);
    EXPECT_EQ(max_value(zeros.hough(5, 4)), 0);
    EXPECT_EQ(rows(none.hough(-1, 4)), 0u);
}

// A ridge of two rows in three columns, the outer ones and one between, whose centroid lies on the curve:
// least squares fit it exactly. A weaker ridge runs beside it, out of reach of the narrow band.
image two_row_ridge(unsigned int r, unsigned int c, vector const& curve) {
    return image_of(r, c, [&](double y, double x) {
        double const d = y + 0.5 - poly(x + 0.5, curve);
        bool const taken = x == 0 || x == 24 || x + 1 == c;
        return taken ? std::max(0.0, 1 - std::fabs(d)) + (std::fabs(d + 3) <= 0.5 ? 0.1 : 0) : 0;
    });
}

TEST(LsfEdge, FindsTheCurveOfARidge) {
    struct {
        double c[3], angle, offset;  // the line to start from
    } const cases[] = {{{20.5, 0, 0}, pi / 2, 0},
                       {{21.5, 0, 0}, pi / 2, 0},
                       {{19.2, 0.02, 0}, pi / 2 + 0.02, 0},
                       {{19.2, 0.05, -0.0008}, pi / 2, 0},
                       {{1.3, 0.3, 0}, pi / 2 + std::atan(0.3), -9.3}};
    for (bool const is_new : {false, true}) {
        EXPECT_TRUE(with_new_algorithms(is_new, [&] {
            for (auto const& k : cases) {
                vector const curve(3, k.c);
                image const ridge = two_row_ridge(40, 60, curve);
                // The squares in the last rounds draw the centroid of two rows to the stronger one.
                double const tolerance = is_new ? 0.3 : 1e-9;
                vector const whole = lsf_edge(ridge), on_line = lsf_edge2(ridge, k.angle, k.offset);
                for (double x : {0.0, 17.0, 60.0}) {
                    if (k.offset == 0) {
                        EXPECT_NEAR(poly(x, whole), poly(x, curve), tolerance) << x << ' ' << k.c[0];
                    }
                    EXPECT_NEAR(poly(x, on_line), poly(x, curve), tolerance) << x << ' ' << k.c[0];
                }
            }
        }));
    }
}

// With the new method a column takes part with the peak that the curve lies on, level flanks and all, but no
// farther than 2 sigma of about 1, and not at all in a valley or where it is level.
TEST(LsfEdge, TakesOfEachColumnThePeakAtTheCurve) {
    double const peak[] = {0.4, 0.4, 0.4, 0.9, 0.6}, valley[] = {0, 0, 0.1, 0, 0, 0.18};
    image const columns = image_of(40, 60, [&](double y, double x) {
        int const r = static_cast<int>(y) - 17;
        if (x >= 55) return 0.1;
        if (x >= 50) return r >= 0 && r < 6 ? valley[r] : 0.0;
        return r >= 0 && r < 5 ? peak[r] : 0.0;
    });
    double const expected = (0.16 * (18.5 + 19.5) + 0.81 * 20.5 + 0.36 * 21.5) / (0.16 + 0.16 + 0.81 + 0.36);
    image mirrored = columns;
    mirrored.mirror_x();
    EXPECT_TRUE(with_new_algorithms(
        false, [&] { EXPECT_GT(std::fabs(poly(30, lsf_edge(columns)) - expected), 0.05); }));
    EXPECT_TRUE(with_new_algorithms(true, [&] {
        for (double x : {0.0, 30.0, 60.0}) {
            EXPECT_NEAR(poly(x, lsf_edge(columns)), expected, 1e-9);
            EXPECT_NEAR(poly(x, lsf_edge(mirrored)), 40 - expected, 1e-9);
        }
    }));
}

// No number in a pixel and no size leads outside the image; a sanitizer would tell.
TEST(Edges, OfBadPixelsAndSizesDoNoHarm) {
    EXPECT_TRUE(with_new_algorithms(true, [] {
        seeded_random random(8);
        double const bad[] = {std::nan(""), infinity, -infinity, 1e308, -1e308, 5e-324, 0.0};
        for (int trial = 0; trial < 200; ++trial) {
            unsigned int const r = random.below(9), c = random.below(9);
            image m = random_image(random, r, c), g = m;
            if (r * c > 0) m(random.below(r))(random.below(c)) = bad[trial % 7];
            double x = 0, y = 0, z = 0;
            m.ave_gray(x, y, z);
            m.local_rms(x);
            m.find_normal_angle(2, 1);
            m.threshold(bad[random.below(7)])
                .boxcar2d(3)
                .enhance()
                .abs()
                .remove_tearing()
                .mirror_x()
                .mirror_y();
            EXPECT_EQ(lsf_edge(g = m.horizontal_edge_gradient(true).vertical_edge_gradient(true)).capacity(),
                      3u);
            EXPECT_EQ(lsf_edge2(g, pi / 2, 0).capacity(), r * c > 0 ? 3u : 0u);
            EXPECT_TRUE(rows(m.hough(3, 2)) == 3 && cols(m) == 2);
        }
    }));
}

TEST(LsfEdge, AnswersWhereThereIsNoEdge) {
    EXPECT_TRUE(with_new_algorithms(true, [] {
        double const zeros[] = {0, 0, 0};
        for (image const& none : {image(20, 30), image(0, 0), image(3, 0)}) {
            EXPECT_TRUE(lsf_edge(none) == vector(3, zeros));
        }
        for (double const offset : {50.0, -50.0, 1e300, std::nan(""), infinity}) {
            EXPECT_TRUE(lsf_edge2(image(20, 30), pi / 2, offset).is_trivial()) << offset;
        }
        EXPECT_EQ(lsf_edge2(image(20, 30), 0.0, 0.0).capacity(), 3u);  // along the columns: one of them
    }));
}

}  // namespace
}  // namespace tvmath
