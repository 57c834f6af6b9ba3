#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <memory>
#include <vector>

#include "support/seeded_random.h"
#include "support/shape_points.h"
#include "tvmath/geometry_fitter.h"

// Circles under every combination of conditions, against a search in long double among the circles that
// fulfil the conditions by construction.

inline namespace tvmath {
namespace {

using real = long double;

struct ball {
    real x, y, r;
};

real sum_of_squares(ball const& c, std::vector<point> const& points) {
    real sum = 0;
    for (point const& p : points) {
        real const dx = p.x() - c.x, dy = p.y() - c.y, d = std::sqrt(dx * dx + dy * dy) - c.r;
        sum += d * d;
    }
    return sum;
}

// Least value of `f` between lo and hi by golden sections.
real least_value(std::function<real(real)> const& f, real lo, real hi, real& at) {
    real const g = 0.6180339887498948482L;
    real a = hi - g * (hi - lo), b = lo + g * (hi - lo), fa = f(a), fb = f(b);
    for (int i = 0; i < 90; ++i) {
        if (fa < fb) {
            hi = b, b = a, fb = fa, a = hi - g * (hi - lo), fa = f(a);
        } else {
            lo = a, a = b, fa = fb, b = lo + g * (hi - lo), fb = f(b);
        }
    }
    return at = (lo + hi) / 2, f(at);
}

struct sheet {
    std::vector<point> fit, through;
    std::vector<line> tangents;
    // All circles that fulfil the conditions, by one or two numbers that are 0 for the true one.
    std::function<ball(real, real)> circle_at;
    int unknowns;
};

sheet random_sheet(seeded_random& random, int tangents, int throughs, double noise) {
    sheet s;
    double const far = random.coin() ? 1000 : 0, radius = random.log_uniform(0.1, 50);
    double const x = random.uniform(-far, far), y = random.uniform(-far, far);
    double const span = random.uniform(1.5, 6), first = random.uniform(0, 6);
    auto const on_circle = [&](double angle, double r) {
        return at(x + r * std::cos(angle), y + r * std::sin(angle), random.uniform(0, 1));
    };
    int const n = 5 + static_cast<int>(random.below(20));
    for (int i = 0; i < n; ++i) {
        s.fit.push_back(on_circle(first + span * i / n, radius * (1 + noise * random.normal())));
    }
    double const spread[] = {random.uniform(0, 6.28), random.uniform(0.7, 2.5)};
    std::vector<double> angles = {spread[0], spread[0] + spread[1]};
    for (int i = 0; i < throughs; ++i) s.through.push_back(on_circle(angles[static_cast<size_t>(i)], radius));
    if (tangents == 2 && random.below(4) == 0) angles[1] = angles[0] + 3.141592653589793;
    if (tangents == 2 && random.below(4) == 0) angles[1] = angles[0] + 3.141592653589793 - random.uniform(-.05,.05);
    if (tangents && throughs) angles[0] = angles[0] + 1.2;
    for (int i = 0; i < tangents; ++i) {
        double const a = angles[static_cast<size_t>(i)];
        point const touch = on_circle(a, radius);
        point const along(false, -std::sin(a), std::cos(a), 0);
        point const middle = touch + along * random.uniform(-3 * radius, 3 * radius);
        s.tangents.push_back(line(middle, along * (random.coin() ? 1 : -0.1)));
    }
    // Exact relations are made from the doubles.
    s.unknowns = 3 - tangents - throughs;
    if (s.unknowns == 3) s.unknowns = 2;
    std::vector<line> const lines = s.tangents;
    std::vector<point> const through = s.through, fit = s.fit;
    auto const signed_distance = [](line const& l, real px, real py) {
        point const o = l.basis(0), d = l.basis(1);
        real const dx = d.x(), dy = d.y();
        return ((py - o.y()) * dx - (px - o.x()) * dy) / std::sqrt(dx * dx + dy * dy);
    };
    if (tangents == 0 && throughs == 0) {
        s.circle_at = [=](real u, real v) {
            real r = 0;
            for (point const& p : fit) r += std::hypot(p.x() - x - u, p.y() - y - v);
            return ball{x + u, y + v, r / static_cast<real>(fit.size())};
        };
    } else if (tangents == 0 && throughs == 1) {
        s.circle_at = [=](real u, real v) {
            return ball{x + u, y + v, std::hypot(through[0].x() - x - u, through[0].y() - y - v)};
        };
    } else if (tangents == 1 && throughs == 0) {
        s.circle_at = [=](real u, real v) {
            return ball{x + u, y + v, std::fabs(signed_distance(lines[0], x + u, y + v))};
        };
    } else {
        // One number: the centre steps along, and a step across follows from the second condition by
        // bisection-free secants.
        auto const mismatch = [=](ball const& c) {
            auto const r_of = [&](std::size_t i) {
                if (i < lines.size()) return std::fabs(signed_distance(lines[i], c.x, c.y));
                point const& q = through[i - lines.size()];
                return std::hypot(q.x() - c.x, q.y() - c.y);
            };
            return std::pair<real, real>{r_of(0), r_of(1)};
        };
        // Direction in which both radii change alike is found numerically.
        real const h = 1e-6L * radius;
        auto const gap = [=](real px, real py) {
            auto const m = mismatch({px, py, 0});
            return m.first - m.second;
        };
        real const gx = (gap(x + h, y) - gap(x - h, y)) / (2 * h), gy = (gap(x, y + h) - gap(x, y - h)) / (2 * h);
        real const g = std::hypot(gx, gy);
        s.circle_at = [=](real u, real) {
            real const bx = x - u * gy / g, by = y + u * gx / g;
            real t = 0, before = h;
            real ft = gap(bx, by), fb = gap(bx + before * gx / g, by + before * gy / g);
            for (int i = 0; i < 60 && ft != 0 && ft != fb; ++i) {
                real const next = t - ft * (t - before) / (ft - fb);
                before = t, fb = ft, t = next, ft = gap(bx + t * gx / g, by + t * gy / g);
            }
            real const cx = bx + t * gx / g, cy = by + t * gy / g;
            return ball{cx, cy, mismatch({cx, cy, 0}).first};
        };
    }
    return s;
}

TEST(CircleFitter, FindsTheConstrainedMinimum) {
    struct {
        int tangents, throughs;
    } const cases[] = {{0, 0}, {0, 1}, {0, 2}, {1, 0}, {1, 1}, {2, 0}};
    for (auto const& c : cases) {
        SCOPED_TRACE(testing::Message() << c.tangents << " tangents, " << c.throughs << " points");
        seeded_random random(77);
        int failed = 0, wrong = 0;
        int const N = getenv("N") ? atoi(getenv("N")) : 60;
        double const noise = getenv("NOISE") ? atof(getenv("NOISE")) : 0.01;
        for (int trial = 0; trial < N; ++trial) {
            sheet const s = random_sheet(random, c.tangents, c.throughs, noise);
            geometry_fitter::circle_fitter fitter;
            fitter.add(geometry_fitter::fit(s.fit));
            for (point const& p : s.through) fitter.add(geometry_fitter::through(p));
            for (line const& l : s.tangents) fitter.add(geometry_fitter::tangent(l));
            Circle_Description found;
            if (!fitter.result(found)) { ++failed; printf("failed %d\n",trial); continue; }
            point const center = found.geometry.center();
            double const r = found.geometry.radius();
            real const reach = 0.3L * s.circle_at(0, 0).r;
            real u = 0, v = 0, best;
            if (s.unknowns == 1) {
                best = least_value([&](real t) { return sum_of_squares(s.circle_at(t, 0), s.fit); }, -reach, reach, u);
            } else {
                best = least_value([&](real t) {
                    return least_value([&](real w) { return sum_of_squares(s.circle_at(t, w), s.fit); }, -reach, reach, v);
                }, -reach, reach, u);
            }
            ball const b = s.circle_at(u, v);
            real const ours = sum_of_squares({center.x(), center.y(), r}, s.fit);
            double const off = static_cast<double>((ours - best) / (best + 1e-20L));
            double const pos = static_cast<double>(std::hypot(center.x() - b.x, center.y() - b.y) / b.r);
            if (std::fabs(off) > 1e-9 || pos > 1e-7) { ++wrong; if (wrong < 4) printf("T%d H%d trial %d off %g pos %g r %g\n", c.tangents, c.throughs, trial, off, pos, r); }
        }
        printf("T%d H%d: failed %d wrong %d of %d\n", c.tangents, c.throughs, failed, wrong, N);
    }
}

}  // namespace
}  // namespace tvmath
