#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <vector>

#include "support/relative.h"
#include "support/seeded_random.h"
#include "support/shape_points.h"
#include "tvmath/geometry_fitter.h"

// Circles and spheres under every combination of conditions, against searches in long double.

inline namespace tvmath {
namespace {

using real = long double;

struct ring_of {
    real x, y, r;
};

real sum_of_squares(ring_of const& c, std::vector<point> const& points) {
    real sum = 0;
    for (point const& p : points) {
        real const d = std::hypot(p.x() - c.x, p.y() - c.y) - c.r;
        sum += d * d;
    }
    return sum;
}

// Least value of `f` between -reach and reach, by golden sections.
real least_value(std::function<real(real)> const& f, real reach) {
    real const g = 0.6180339887498948482L;
    real lo = -reach, hi = reach, a = hi - g * (hi - lo), b = lo + g * (hi - lo), fa = f(a), fb = f(b);
    for (int i = 0; i < 60; ++i) {
        if (fa < fb) {
            hi = b, b = a, fb = fa, a = hi - g * (hi - lo), fa = f(a);
        } else {
            lo = a, a = b, fa = fb, b = lo + g * (hi - lo), fb = f(b);
        }
    }
    return std::min(fa, fb);
}

// Scattered points of a circle, and points and lines that the circle passes and touches.
struct conditions {
    double x, y, radius;
    std::vector<point> fit, through;
    std::vector<line> tangents;

    conditions(seeded_random& random, std::size_t lines, std::size_t points) {
        double const far = random.coin() ? 1000 : 0, span = random.uniform(1.5, 6),
                     first = random.uniform(0, 6);
        radius = random.log_uniform(0.1, 50);
        x = random.uniform(-far, far);
        y = random.uniform(-far, far);
        fit = circle_points(random, at(x, y, 0), radius, first, span, 5 + static_cast<int>(random.below(20)),
                            0.01 * radius);
        // Two lines are parallel, or nearly so, in half of the trials.
        double angle = random.uniform(0, 6), step = random.uniform(0.7, 2.5);
        if (lines == 2 && random.coin()) {
            step = 3.141592653589793 + (random.coin() ? 0 : random.uniform(-0.05, 0.05));
        }
        for (std::size_t i = 0; i < lines + points; ++i, angle += step) {
            point const out(false, std::cos(angle), std::sin(angle), 0), along(false, -out.y(), out.x(), 0);
            point const place = at(x, y, 0) + radius * out;
            if (i < points) {
                through.push_back(place);
            } else {
                tangents.push_back(
                    line(place + random.uniform(-3, 3) * radius * along, (random.coin() ? 1 : -0.1) * along));
            }
        }
    }

    // Radius by which a circle about (px, py) fulfils condition i.
    real radius_by(std::size_t i, real px, real py) const {
        if (i < through.size()) return std::hypot(through[i].x() - px, through[i].y() - py);
        line const& l = tangents[i - through.size()];
        point const o = l.basis(0), d = l.basis(1);
        real const dx = d.x(), dy = d.y();
        return std::fabs((py - o.y()) * dx - (px - o.x()) * dy) / std::hypot(dx, dy);
    }

    // Least sum of squares of the circles that fulfil all conditions, with a centre near the true one.
    real least_sum() const {
        std::size_t const count = through.size() + tangents.size();
        real const reach = 0.2L * radius;
        if (count == 2) {
            return least_value([&](real u) { return sum_of_squares(between_both(u), fit); }, reach);
        }
        return least_value(
            [&](real u) {
                auto const at_centre = [&](real v) {
                    real r = 0;
                    for (point const& p : fit) r += std::hypot(p.x() - x - u, p.y() - y - v);
                    r = count == 0 ? r / static_cast<real>(fit.size()) : radius_by(0, x + u, y + v);
                    return sum_of_squares({x + u, y + v, r}, fit);
                };
                return least_value(at_centre, reach);
            },
            reach);
    }

    // A circle that fulfils two conditions: its centre a step u along the curve of such centres, brought onto
    // the curve by secants across it.
    ring_of between_both(real u) const {
        auto const gap = [&](real px, real py) { return radius_by(0, px, py) - radius_by(1, px, py); };
        real const h = 1e-5L * radius;
        real gx = gap(x + h, y) - gap(x - h, y), gy = gap(x, y + h) - gap(x, y - h), g = std::hypot(gx, gy);
        gx /= g;
        gy /= g;
        auto const px = [&](real t) { return x - u * gy + t * gx; };
        auto const py = [&](real t) { return y + u * gx + t * gy; };
        real before = h, t = 0, f_before = gap(px(h), py(h)), f = gap(px(0), py(0));
        for (int i = 0; i < 40 && f != 0 && f != f_before; ++i) {
            real const next = t - f * (t - before) / (f - f_before);
            before = t, f_before = f, t = next, f = gap(px(t), py(t));
        }
        return {px(t), py(t), radius_by(0, px(t), py(t))};
    }
};

TEST(CircleFitter, FindsTheConstrainedMinimum) {
    struct {
        std::size_t lines, points;
    } const cases[] = {{0, 0}, {0, 1}, {0, 2}, {1, 0}, {1, 1}, {2, 0}};
    for (auto const& c : cases) {
        seeded_random random(77);
        for (int trial = 0; trial < 40; ++trial) {
            SCOPED_TRACE(testing::Message() << c.lines << " lines, " << c.points << " points, " << trial);
            conditions const given(random, c.lines, c.points);
            geometry_fitter::circle_fitter fitter;
            fitter.add(geometry_fitter::fit(given.fit));
            for (point const& p : given.through) fitter.add(geometry_fitter::through(p));
            for (line const& l : given.tangents) fitter.add(geometry_fitter::tangent(l));
            Circle_Description found;
            ASSERT_TRUE(fitter.result(found));
            point const center = found.geometry.center();
            double const r = found.geometry.radius();
            for (std::size_t i = 0; i < c.lines + c.points; ++i) {
                // Coordinates of up to 1000 are rounded by 1e-13.
                EXPECT_NEAR(static_cast<double>(given.radius_by(i, center.x(), center.y())), r,
                            1e-14 * r + 1e-12);
            }
            double const least = static_cast<double>(given.least_sum());
            double const sum = static_cast<double>(sum_of_squares({center.x(), center.y(), r}, given.fit));
            EXPECT_TRUE(relatively_near(sum, least, 1e-9, "constraints kept to 1e-12 of a radius of 0.1"));
        }
    }
}

// At the minimum the gradient of the sum of squares is a combination of those of the conditions.
TEST(SphereFitter, FindsTheConstrainedMinimum) {
    seeded_random random(78);
    for (int trial = 0; trial < 200; ++trial) {
        SCOPED_TRACE(trial);
        double const r = random.log_uniform(1e-2, 1e3), far = random.uniform(0, 1000);
        point const true_center = at(random.uniform(-far, far), random.uniform(-far, far), far);
        std::vector<point> const fit = sphere_points(random, true_center, r, 30, 0.01 * r);
        std::vector<point> const through =
            sphere_points(random, true_center, r, static_cast<int>(random.below(4)));
        geometry_fitter::sphere_fitter fitter;
        fitter.add(geometry_fitter::fit(fit));
        for (point const& p : through) fitter.add(geometry_fitter::through(p));
        Sphere_Description found;
        ASSERT_TRUE(fitter.result(found));
        point const center = found.geometry.center();
        auto const row = [&](point const& p, real* g) {
            real const d[] = {p.x() - center.x(), p.y() - center.y(), p.z() - center.z()};
            real const length = std::hypot(d[0], d[1], d[2]);
            for (int k = 0; k < 3; ++k) g[k] = -d[k] / length;
            g[3] = -1;
            return length - found.geometry.radius();
        };
        auto const dot4 = [](real const* a, real const* b) {
            return a[0] * b[0] + a[1] * b[1] + a[2] * b[2] + a[3] * b[3];
        };
        real gradient[4] = {}, basis[3][4], g[4];
        for (point const& p : fit) {
            real const e = row(p, g);
            for (int k = 0; k < 4; ++k) gradient[k] += e * g[k];
        }
        for (std::size_t i = 0; i < through.size(); ++i) {
            EXPECT_LE(std::fabs(row(through[i], basis[i])), 1e-14L * r + 1e-12L);
            for (std::size_t j = 0; j < i; ++j) {
                real const part = dot4(basis[i], basis[j]);
                for (int k = 0; k < 4; ++k) basis[i][k] -= part * basis[j][k];
            }
            real const length = std::sqrt(dot4(basis[i], basis[i])),
                       along = dot4(gradient, basis[i]) / length;
            for (int k = 0; k < 4; ++k) gradient[k] -= along * (basis[i][k] /= length);
        }
        // A step of e changes the gradient by some 30 / 4 e; the rounding of far coordinates is 1e-13.
        EXPECT_LE(std::sqrt(dot4(gradient, gradient)), 10 * (1e-12L * r + 1e-12L));
        EXPECT_LE(distance3d(center, true_center), 0.05 * r);
    }
}

// Conditions that leave nothing to be squared are fulfilled exactly.
TEST(CircleFitter, FulfilsThreeConditionsExactly) {
    seeded_random random(9);
    for (int trial = 0; trial < 400; ++trial) {
        SCOPED_TRACE(trial);
        std::size_t const lines = random.below(4);
        double const far = random.coin() ? 1e6 : 0, r = random.log_uniform(1, 1e3),
                     start = random.uniform(0, 6);
        point const center = at(random.uniform(-far, far), random.uniform(-far, far), 0);
        geometry_fitter::circle_fitter fitter;
        std::vector<point> places;
        std::vector<line> touched;
        for (std::size_t i = 0; i < 3; ++i) {
            // Every other pair of lines is parallel.
            bool const opposite = lines == 2 && i < 2 && trial % 2 == 0;
            double const angle = opposite ? start + 3.141592653589793 * static_cast<double>(i)
                                          : start + 2.1 * static_cast<double>(i) + random.uniform(-0.6, 0.6);
            point const out(false, std::cos(angle), std::sin(angle), 0), along(false, -out.y(), out.x(), 0);
            point const place = center + r * out;
            if (i < lines) {
                touched.push_back(line(place + random.uniform(-2, 2) * r * along, r * along));
                fitter.add(geometry_fitter::tangent(touched.back()));
            } else {
                places.push_back(place);
                fitter.add(random.coin() ? geometry_fitter::through(place) : geometry_fitter::fit({place}));
            }
        }
        EXPECT_EQ(fitter.degrees_of_freedom(), 0);
        Circle_Description found;
        ASSERT_TRUE(fitter.result(found));
        point const c = found.geometry.center();
        double const tolerance = 1e-12 * r + 1e-15 * far;
        for (point const& p : places) EXPECT_NEAR(distance2d(p, c), found.geometry.radius(), tolerance);
        for (line const& l : touched) {
            double const distance = std::fabs(cross2d(l.direction(), c - l.basis(0)));
            EXPECT_NEAR(distance, found.geometry.radius(), tolerance);
        }
    }
}

}  // namespace
}  // namespace tvmath
