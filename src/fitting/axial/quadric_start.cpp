#include "quadric_start.h"

#include <algorithm>
#include <cmath>

#include "fitting/small_cholesky.h"
#include "tvmath/scalar.h"

inline namespace tvmath {
namespace {

// Coefficients of a function of the nine terms; what is constant follows from its mean being 0.
using nine = std::array<double, 9>;

// With P = 1 - w w' and l = a u + b v + c w, the quadric of revolution
//     q' P q - taper (w . q)² - 2 l . q = constant
// is a cylinder about a u + b v when taper and c are 0, and close to a cone for a tapered one.
enum unknown : std::size_t { tilt_u, tilt_v, center_u, center_v, center_w, taper, unknown_count };

using system_of_unknowns = small_cholesky<unknown_count>;

struct quadric {
    xyz u, v, w;
    double a = 0, b = 0, c = 0, taper = 0;
};

nine product(xyz const& p, xyz const& q) {
    return {p.x * q.x, p.x * q.y + p.y * q.x, p.x * q.z + p.z * q.x,
            p.y * q.y, p.y * q.z + p.z * q.y, p.z * q.z};
}

void add(nine& to, double factor, nine const& terms) {
    for (std::size_t i = 0; i < 9; ++i) to[i] += factor * terms[i];
}

nine linear(xyz const& l) {
    return {0, 0, 0, 0, 0, 0, l.x, l.y, l.z};
}

double trace(quadric_moments const& m) {
    return m.scatter[0][0] + m.scatter[1][1] + m.scatter[2][2];
}

nine coefficients(quadric const& q) {
    nine terms = {1, 0, 0, 1, 0, 1};
    add(terms, -(1 + q.taper), product(q.w, q.w));
    add(terms, -2, linear(q.a * q.u + q.b * q.v + q.c * q.w));
    return terms;
}

// A quarter of the mean squared gradient: for a cylinder the squared radius.
double gradient_square(quadric const& q, quadric_moments const& m) {
    double const along = dot(q.w, times(m, q.w));
    return trace(m) + (sqr(q.taper) - 1) * along + sqr(q.a) + sqr(q.b) + sqr(q.c);
}

struct objective {
    double value = 0;
    system_of_unknowns::row gradient{};
    system_of_unknowns::square hessian{};
};

nine through(quadric_moments const& m, nine const& terms) {
    nine result{};
    for (std::size_t i = 0; i < 9; ++i) add(result, terms[i], m.products[i]);
    return result;
}

double dot(nine const& a, nine const& b) {
    double sum = 0;
    for (std::size_t i = 0; i < 9; ++i) sum += a[i] * b[i];
    return sum;
}

// Gauss-Newton on the residuals f / (2 N), f linear in the nine terms and N² the mean squared gradient.
objective objective_at(quadric const& q, quadric_moments const& m, bool normalized) {
    nine const f = coefficients(q);
    double const square = gradient_square(q, m), inverse = 0.5 / std::sqrt(square);
    xyz const along = times(m, q.w);
    system_of_unknowns::row by_square = {2 * (sqr(q.taper) - 1) * dot(q.u, along),
                                         2 * (sqr(q.taper) - 1) * dot(q.v, along),
                                         2 * q.a,
                                         2 * q.b,
                                         2 * q.c,
                                         2 * q.taper * dot(q.w, along)};
    std::array<nine, unknown_count> d{};
    add(d[tilt_u], -2 * (1 + q.taper), product(q.u, q.w));
    add(d[tilt_v], -2 * (1 + q.taper), product(q.v, q.w));
    add(d[tilt_u], -2, linear(q.c * q.u - q.a * q.w));
    add(d[tilt_v], -2, linear(q.c * q.v - q.b * q.w));
    add(d[center_u], -2, linear(q.u));
    add(d[center_v], -2, linear(q.v));
    add(d[center_w], -2, linear(q.w));
    add(d[taper], -1, product(q.w, q.w));

    objective o;
    nine const mf = through(m, f);
    o.value = sqr(inverse) * dot(f, mf);
    for (std::size_t i = 0; i < unknown_count; ++i) {
        if (normalized) add(d[i], -by_square[i] / (2 * square), f);
        nine const md = through(m, d[i]);
        o.gradient[i] = sqr(inverse) * dot(f, md);
        for (std::size_t j = 0; j <= i; ++j) o.hessian[i][j] = sqr(inverse) * dot(d[j], md);
    }
    return o;
}

quadric stepped(quadric q, system_of_unknowns::row const& step) {
    double const turn = std::hypot(step[tilt_u], step[tilt_v]);
    if (turn > 0) {
        xyz const to = (step[tilt_u] / turn) * q.u + (step[tilt_v] / turn) * q.v;
        q.w = unit(std::cos(turn) * q.w + std::sin(turn) * to);
        q.u = unit(q.u - dot(q.u, q.w) * q.w);
        q.v = cross(q.w, q.u);
    }
    q.a += step[center_u];
    q.b += step[center_v];
    q.c += step[center_w];
    q.taper += step[taper];
    return q;
}

bool find_step(objective const& o, std::array<bool, unknown_count> const& free, double damping,
               system_of_unknowns::row& step) {
    system_of_unknowns system;
    if (!system.factor(o.hessian, free, damping, 1e-14)) return false;
    system_of_unknowns::row downhill = o.gradient;
    for (double& x : downhill) x = -x;
    step = system.solve(downhill);
    double const turn = std::hypot(step[tilt_u], step[tilt_v]);
    if (turn > 0.3) {
        for (double& x : step) x *= 0.3 / turn;
    }
    return true;
}

// For a fixed axis all else is linear: its exact solution in one step.
quadric best_about(xyz const& axis, quadric_moments const& m, bool tapered) {
    quadric q;
    q.w = axis;
    q.u = any_perpendicular(axis);
    q.v = cross(q.w, q.u);
    system_of_unknowns::row step;
    std::array<bool, unknown_count> const free = {false, false, true, true, tapered, tapered};
    if (find_step(objective_at(q, m, false), free, 1e-12, step)) q = stepped(q, step);
    return q;
}

double descend(quadric& q, quadric_moments const& m, bool tapered) {
    std::array<bool, unknown_count> const free = {true, true, true, true, tapered, tapered};
    objective now = objective_at(q, m, true);
    double damping = 1e-4;
    for (int round = 0; round < 20; ++round) {
        system_of_unknowns::row step;
        if (!find_step(now, free, damping, step)) break;
        quadric const trial = stepped(q, step);
        objective const next = objective_at(trial, m, true);
        if (!(next.value <= now.value)) {
            damping *= 10;
            continue;
        }
        // A start needs no more digits than these.
        bool const settled = next.value >= now.value * (1 - 1e-6);
        damping /= 10;
        q = trial;
        now = next;
        if (settled) break;
    }
    return now.value;
}

axial_surface surface_of(quadric const& q, quadric_moments const& m) {
    axial_surface s;
    s.u = q.u;
    s.v = q.v;
    s.w = q.w;
    s.origin = m.mean + q.a * q.u + q.b * q.v;
    double const along = dot(q.w, times(m, q.w));
    double const square = trace(m) - (1 + q.taper) * along + sqr(q.a) + sqr(q.b);
    double const radius = std::sqrt(std::max(square, 1e-6 * trace(m)));
    s.angle = std::atan(q.c / radius);
    s.offset = radius * std::cos(s.angle);
    return s;
}

}  // namespace

quadric_moments moments_of(std::span<xyz const> points) {
    quadric_moments m;
    double const share = 1 / static_cast<double>(points.size());
    for (xyz const& p : points) m.mean = m.mean + share * p;
    nine mean{};
    for (xyz const& p : points) {
        xyz const q = p - m.mean;
        nine terms = product(q, q);
        terms[1] /= 2;
        terms[2] /= 2;
        terms[4] /= 2;
        add(terms, 1, linear(q));
        add(mean, share, terms);
        for (std::size_t i = 0; i < 9; ++i) {
            for (std::size_t j = 0; j <= i; ++j) m.products[i][j] += share * terms[i] * terms[j];
        }
    }
    for (std::size_t i = 0; i < 9; ++i) {
        for (std::size_t j = 0; j <= i; ++j) {
            m.products[i][j] -= mean[i] * mean[j];
            m.products[j][i] = m.products[i][j];
        }
    }
    m.scatter = {{{mean[0], mean[1], mean[2]}, {mean[1], mean[3], mean[4]}, {mean[2], mean[4], mean[5]}}};
    return m;
}

std::vector<xyz> cube_axes() {
    std::vector<xyz> axes;
    for (int code = 14; code < 27; ++code) {  // of the 27 triples of -1, 0, 1 those after the zero one
        axes.push_back(unit(xyz(code / 9 - 1, code / 3 % 3 - 1, code % 3 - 1)));
    }
    return axes;
}

std::vector<axial_surface> quadric_starts(quadric_moments const& m, bool tapered) {
    struct minimum {
        quadric q;
        double value;
    };
    std::vector<minimum> minima;
    for (xyz const& axis : cube_axes()) {
        quadric q = best_about(axis, m, tapered);
        double const value = descend(q, m, tapered);
        bool const known = std::any_of(minima.begin(), minima.end(), [&](minimum const& other) {
            return std::fabs(dot(q.w, other.q.w)) > 1 - 1e-6 &&
                   std::fabs(value - other.value) <= 1e-3 * other.value;
        });
        if (std::isfinite(value) && !known) minima.push_back({q, value});
    }
    std::stable_sort(minima.begin(), minima.end(),
                     [](minimum const& a, minimum const& b) { return a.value < b.value; });
    std::vector<axial_surface> starts;
    for (minimum const& each : minima) starts.push_back(surface_of(each.q, m));
    return starts;
}

axial_surface quadric_start_about(xyz const& axis, quadric_moments const& m, bool tapered) {
    return surface_of(best_about(axis, m, tapered), m);
}

}  // namespace tvmath
