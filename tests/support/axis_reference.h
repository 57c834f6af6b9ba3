#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

#include "tvmath/point.h"

inline namespace tvmath {

/// An independent search for the cylinder or cone of least squares: Levenberg's method in long double with
/// derivatives by differences, from a start that the test knows to be near.
class axis_reference {
public:
    using real = long double;
    using triple = std::array<real, 3>;

    triple origin{}, axis{};
    real radius = 0;  ///< perpendicular to the axis, at the origin
    real angle = 0;

    static real dot(triple const& a, triple const& b) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; }
    static triple sum(triple const& a, real f, triple const& b) {
        return {a[0] + f * b[0], a[1] + f * b[1], a[2] + f * b[2]};
    }
    static triple of(point const& p) { return {p.x(), p.y(), p.z()}; }

    void set_axis(triple const& a) { axis = sum({}, 1 / std::sqrt(dot(a, a)), a); }

    real distance(triple const& p) const {
        triple const q = sum(p, -1, origin);
        real const z = dot(q, axis);
        triple const across = sum(q, -z, axis);
        return std::cos(angle) * (std::sqrt(dot(across, across)) - radius) - std::sin(angle) * z;
    }
    real squares(std::vector<triple> const& points) const {
        real total = 0;
        for (triple const& p : points) total += distance(p) * distance(p);
        return total;
    }

    /// Unknowns: two tilts, two shifts, the angle, the radius; `free` tells which may change.
    void minimize(std::vector<triple> const& points, std::array<bool, 6> const& free) {
        if (free[2]) center_on(points);
        real const size = radius;
        real best = squares(points), damping = 1e-6L;
        for (int round = 0; round < 40 && damping < 1e6L; ++round) {
            std::array<std::array<real, 7>, 6> system{};
            for (triple const& p : points) {
                std::array<real, 6> slope{};
                for (unsigned int i = 0; i < 6; ++i) {
                    std::array<real, 6> ahead{}, behind{};
                    ahead[i] = 1e-7L;
                    behind[i] = -1e-7L;
                    slope[i] = (moved(ahead, size).distance(p) - moved(behind, size).distance(p)) / 2e-7L;
                }
                for (unsigned int i = 0; i < 6; ++i) {
                    for (unsigned int j = 0; j < 6; ++j) system[i][j] += slope[i] * slope[j];
                    system[i][6] -= slope[i] * distance(p);
                }
            }
            for (unsigned int i = 0; i < 6; ++i) system[i][i] *= 1 + damping;
            axis_reference const trial = moved(solved(system, free), size);
            real const next = trial.squares(points);
            // The last steps change the sum by less than its rounding, and the unknowns still for the better.
            bool const lower = next <= best * (1 + 1e-17L);
            damping *= lower ? 0.1L : 10;
            if (!lower) continue;
            *this = trial;
            best = next;
        }
    }

private:
    void center_on(std::vector<triple> const& points) {
        triple mean{};
        for (triple const& p : points) mean = sum(mean, 1 / static_cast<real>(points.size()), p);
        real const along = dot(sum(mean, -1, origin), axis);
        origin = sum(origin, along, axis);
        radius += std::tan(angle) * along;
    }

    axis_reference moved(std::array<real, 6> const& step, real size) const {
        triple const e = std::fabs(axis[0]) < 0.6L ? triple{1, 0, 0} : triple{0, 1, 0};
        triple const u = {axis[1] * e[2] - axis[2] * e[1], axis[2] * e[0] - axis[0] * e[2],
                          axis[0] * e[1] - axis[1] * e[0]};
        triple const v = {axis[1] * u[2] - axis[2] * u[1], axis[2] * u[0] - axis[0] * u[2],
                          axis[0] * u[1] - axis[1] * u[0]};
        axis_reference result = *this;
        result.set_axis(sum(sum(axis, step[0], u), step[1], v));
        result.origin = sum(sum(origin, size * step[2], u), size * step[3], v);
        result.angle += step[4];
        result.radius += size * step[5];
        return result;
    }

    // Gauss-Jordan on the free rows and columns.
    static std::array<real, 6> solved(std::array<std::array<real, 7>, 6> a, std::array<bool, 6> const& free) {
        for (unsigned int i = 0; i < 6; ++i) {
            for (unsigned int r = 0; free[i] && r < 6; ++r) {
                real const factor = a[r][i] / a[i][i];
                for (unsigned int j = 0; r != i && j < 7; ++j) a[r][j] -= factor * a[i][j];
            }
        }
        std::array<real, 6> x{};
        for (unsigned int i = 0; i < 6; ++i) x[i] = free[i] ? a[i][6] / a[i][i] : 0;
        return x;
    }
};

/// Where and how points of a cylinder or cone are scattered in a test.
struct axial_case {
    char const* name;
    int n;
    double radius, aspect;  ///< radius amid the points, slant length as a multiple of it
    double arc, angle;      ///< in degrees
    double noise;           ///< standard deviation as a share of the radius
    double distance;        ///< from the origin
    double tolerance;       ///< of the parameters, as a share of the radius
};

/// Random points and the surface they scatter about.
struct axial_sample {
    std::vector<point> points;
    point center, axis;
    double radius = 0, angle = 0;

    template <class generator>
    axial_sample(generator& random, axial_case const& c)
        : radius(c.radius), angle(c.angle * 0.017453292519943295) {
        auto const direction = [&] {
            return normalize(point(false, random.normal(), random.normal(), random.normal()));
        };
        center = point(true, 0, 0, 0) + direction() * c.distance;
        axis = direction();
        point const u = normalize(cross(axis, direction())), v = cross(axis, u);
        for (int i = 0; i < c.n; ++i) {
            double const turn = c.arc * 0.017453292519943295 * random.unit();
            double const s = radius * c.aspect * random.uniform(-0.5, 0.5),
                         d = radius * c.noise * random.normal();
            double const r = radius + s * std::sin(angle) + d * std::cos(angle);
            double const z = s * std::cos(angle) - d * std::sin(angle);
            points.push_back(center + u * (r * std::cos(turn)) + v * (r * std::sin(turn)) + axis * z);
        }
    }

    /// Relative to `center`, which doubles subtract exactly enough and long double exactly.
    axis_reference::triple local(point const& p) const {
        return axis_reference::sum(axis_reference::of(p), -1, axis_reference::of(center));
    }
    std::vector<axis_reference::triple> local_points() const {
        std::vector<axis_reference::triple> list;
        for (point const& p : points) list.push_back(local(p));
        return list;
    }
    axis_reference truth() const {
        axis_reference surface;
        surface.set_axis(axis_reference::of(axis));
        surface.radius = radius;
        surface.angle = angle;
        return surface;
    }
};

struct named_points {
    char const* name;
    std::vector<point> points;
};

/// Lists that show no surface of `needed` unknowns; the last one is a circle about Z.
template <class generator>
std::vector<named_points> hopeless_lists(generator& random, std::vector<point> const& good, int needed) {
    auto const with = [&](point const& p) {
        std::vector<point> points = good;
        points[3] = p;
        return points;
    };
    auto const made = [&](auto const& rule) {
        std::vector<point> points;
        for (int i = 0; i < 40; ++i) points.push_back(rule(random.uniform(-1, 1), random.uniform(-1, 1)));
        return points;
    };
    std::vector<point> const few(good.data(), good.data() + needed - 1);
    std::vector<point> repeated;
    for (int i = 0; i < 8; ++i) repeated.insert(repeated.end(), few.begin(), few.end());
    auto const plane = [](double x, double y) { return point(true, x, y, 1 + x - y / 2); };
    auto const rough = [&](double x, double y) { return point(true, x, y, 1e-3 * random.normal()); };
    auto const line = [](double x, double) { return point(true, x, 2 * x, -x); };
    auto const ring = [](double x, double) { return point(true, std::cos(4 * x), std::sin(4 * x), 5); };
    return {{"none", {}},
            {"too few", few},
            {"too few, repeated", repeated},
            {"a trivial point", with(point())},
            {"a 2D point", with(point(true, 1, 1))},
            {"NaN", with(point(true, 0, std::nan(""), 0))},
            {"infinity", with(point(true, 0, 0, INFINITY))},
            {"a plane", made(plane)},
            {"a rough plane", made(rough)},
            {"a line", made(line)},
            {"a circle", made(ring)}};
}

}  // namespace tvmath
