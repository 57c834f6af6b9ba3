#include "fit_cases.h"

#include <gtest/gtest.h>

inline namespace tvmath {
namespace {

constexpr double h = 0.01;  // deviation of the points

// 12 places of a circle of radius 5 about (1, 2), outside and inside by turns: radius and centre are those
// of the circle by symmetry.
std::vector<point> rippled_circle() {
    return around(12, [](double a) {
        double const r = 5 + h * std::cos(6 * a);
        return at(1 + r * std::cos(a), 2 + r * std::sin(a));
    });
}

// Symmetric about the middle of the arc and without moments: +h, -h, -h, +h at -3, -1, 1, 3 times the step
// would bend the arc, so the pattern is +, -, -, +, -, +, +, - of no third moment (Thue and Morse).
std::vector<point> rippled_line() {
    static double const signs[] = {1, -1, -1, 1, -1, 1, 1, -1};
    std::vector<point> points;
    for (int i = 0; i < 8; ++i) points.push_back(at(2.0 * i, 3 + h * signs[i]));
    return points;
}

std::vector<point> exact_arc() {
    std::vector<point> points;
    for (int i = 0; i <= 10; ++i) points.push_back(at(20 * std::cos(0.1 * i), 7 + 20 * std::sin(0.1 * i)));
    return points;
}

std::vector<point> exact_ellipse() {
    return around(16, [](double a) { return at(3 + 4 * std::cos(a), 5 + 2 * std::sin(a)); });
}

// Each side has pairs of points, one outside and one inside.
std::vector<point> rippled_rectangle() {
    std::vector<point> points;
    for (double const s : {-1.0, 1.0}) {
        for (double const t : {-0.75, -0.25, 0.25, 0.75}) {
            double const d = (std::fabs(t) > 0.5 ? h : -h) * s;
            points.push_back(at(10 + 6 * t, 4 + 2 * s + d));
            points.push_back(at(10 + 6 * s + d, 4 + 2 * t));
        }
    }
    return points;
}

std::vector<point> exact_slot() {
    std::vector<point> points;
    for (double const x : {-3.0, -1.0, 1.0, 3.0}) {
        points.push_back(at(x, 1));
        points.push_back(at(x, -1));
    }
    for (double const a : {-1.0, -0.5, 0.0, 0.5, 1.0}) {
        points.push_back(at(3 + std::cos(a), std::sin(a)));
        points.push_back(at(-3 - std::cos(a), std::sin(a)));
    }
    return points;
}

std::vector<point> rippled_gap() {
    std::vector<point> points;
    for (double const s : {-1.0, 1.0}) {
        for (point const& p : rippled_line()) points.push_back(at(p.x(), s * (p.y() - 1)));
    }
    return points;
}

std::vector<point> ring_points(double radius) {
    return around(40, [radius](double a) {
        double const r = radius + 0.1 * std::cos(3 * a);
        return at(1 + r * std::cos(a), r * std::sin(a));
    });
}

std::vector<point> oring_points() {
    std::vector<point> points = ring_points(3);
    for (point const& p : ring_points(5)) points.push_back(p);
    return points;
}

std::vector<point> rippled_plane() {
    std::vector<point> points;
    for (int i = 0; i < 8; ++i) {
        for (int k = 0; k < 8; ++k) {
            points.push_back(at(2.0 * i, 3.0 * k,
                                rippled_line()[static_cast<std::size_t>(i)].y() +
                                    0 * rippled_line()[static_cast<std::size_t>(k)].y()));
        }
    }
    return points;
}

std::vector<point> exact_sphere() {
    seeded_random random(7);
    return sphere_points(random, at(1, 2, 3), 4, 50);
}

std::vector<point> tube(double bottom, double top) {
    std::vector<point> points;
    for (int k = 0; k <= 4; ++k) {
        double const radius = bottom + (top - bottom) * k / 4;
        for (point const& p : around(9, [&](double a) {
                 return at(2 + radius * std::cos(a), 3 + radius * std::sin(a), 10.0 * k / 4);
             }))
            points.push_back(p);
    }
    return points;
}

std::vector<point> quarter_turns() {
    return {at(0, 0), at(2, 0), at(2, 1), at(0, 1), at(1, 3)};
}

fit_request with(std::vector<std::string> fit_request::*option, std::vector<std::string> const& words) {
    fit_request request;
    request.*option = words;
    return request;
}

fit_request quick() {
    fit_request request;
    request.quick = true;
    return request;
}

fit_request by_method(char const* method) {
    fit_request request;
    request.method = method;
    return request;
}

fit_request about(char const* center, char const* direction) {
    fit_request request = with(&fit_request::parallel, {direction});
    request.center = {center};
    return request;
}

}  // namespace

std::vector<fit_case> fit_cases() {
    using request = fit_request;
    fit_request diameter;
    diameter.diameter = true;
    double const turn = 3.14159265358979323846;
    return {
        {"point",
         {at(0, 0), at(4, 0), at(2, 3)},
         {},
         {{"center", 0, 2}, {"center", 1, 1}},
         std::sqrt(5.0) - 2,
         2},
        {"line", rippled_line(), {}, {{"direction", 0, 1}, {"center", 1, 3}, {"length", 0, 14}}, 2 * h, 6},
        {"line", rippled_line(), quick(), {{"direction", 0, 1}, {"center", 1, 3}}, 2 * h, 6},
        {"line", rippled_line(), with(&request::parallel, {"0 0 5 0"}), {{"center", 1, 3}}, 2 * h, 7},
        {"line", rippled_line(), with(&request::perpendicular, {"0 1"}), {{"start", 1, 3}}, 2 * h, 7},
        {"line", rippled_line(), with(&request::through, {"7 3"}), {{"direction", 0, 1}}, 2 * h, 7},
        {"circle",
         rippled_circle(),
         {},
         {{"center", 0, 1}, {"center", 1, 2}, {"radius", 0, 5}, {"diameter", 0, 10}},
         2 * h,
         9},
        {"circle", rippled_circle(), with(&request::center, {"1 2"}), {{"radius", 0, 5}}, 2 * h, 11},
        // Touching y = 7 at its top, and through its lowest place: the circle itself.
        {"circle",
         around(12, [](double a) { return at(1 + 5 * std::sin(a), 2 + 5 * std::cos(a)); }),
         with(&request::tangent, {"-9 7 9 7"}),
         {{"center", 1, 2}, {"radius", 0, 5}},
         0,
         10},
        {"circle",
         {at(0, 0), at(6, 8)},
         diameter,
         {{"center", 0, 3}, {"center", 1, 4}, {"radius", 0, 5}},
         0,
         0},
        // The algebraic circle of four points at distances 2 and 1: r² = 2.5 by symmetry.
        {"circle",
         {at(2, 0), at(-2, 0), at(0, 1), at(0, -1)},
         quick(),
         {{"radius", 0, std::sqrt(2.5)}},
         1,
         1},
        {"arc",
         exact_arc(),
         {},
         {{"center", 1, 7},
          {"radius", 0, 20},
          {"included angle", 0, 1},
          {"start angle", 0, 0},
          {"length", 0, 20}},
         0,
         8},
        {"arc", exact_arc(), quick(), {{"radius", 0, 20}, {"end angle", 0, 1}}, 0, 8},
        {"ellipse",
         exact_ellipse(),
         {},
         {{"major half axis", 0, 4}, {"minor half axis", 0, 2}, {"angle", 0, 0}, {"area", 0, 8 * turn}},
         0,
         11},
        {"ellipse", exact_ellipse(), with(&request::center, {"3,5"}), {{"major half axis", 0, 4}}, 0, 13},
        {"ellipse", exact_ellipse(), quick(), {{"minor half axis", 0, 2}, {"center", 1, 5}}, 0, 11},
        {"rectangle",
         rippled_rectangle(),
         {},
         {{"width", 0, 12}, {"height", 0, 4}, {"center", 0, 10}, {"angle", 0, 0}},
         2 * h,
         11},
        {"slot",
         exact_slot(),
         {},
         {{"length", 0, 8}, {"width", 0, 2}, {"end radius", 0, 1}, {"center", 0, 0}},
         0,
         13},
        {"gap", rippled_gap(), {}, {{"distance", 0, 4}, {"length", 0, 14}, {"angle", 0, 0}}, 2 * h, 13},
        {"ring", ring_points(3), {}, {{"mean radius", 0, 3}, {"center", 0, 1}, {"center", 1, 0}}, 0, -1},
        {"oring", oring_points(), {}, {{"inner mean radius", 0, 3}, {"outer mean radius", 0, 5}}, 0, -1},
        {"plane", rippled_plane(), {}, {{"normal", 2, 1}, {"center", 2, 3}}, 2 * h, 61},
        {"plane", rippled_plane(), with(&request::parallel, {"0 0 2"}), {{"center", 2, 3}}, 2 * h, 63},
        {"plane", rippled_plane(), with(&request::center, {"7 10.5 3"}), {{"normal", 2, 1}}, 2 * h, 62},
        {"sphere", exact_sphere(), {}, {{"center", 2, 3}, {"radius", 0, 4}}, 0, 46},
        {"sphere", exact_sphere(), with(&request::through, {"1 2 7"}), {{"radius", 0, 4}}, 0, 47},
        {"sphere", exact_sphere(), quick(), {{"radius", 0, 4}, {"center", 0, 1}}, 0, 46},
        {"cylinder",
         tube(4, 4),
         {},
         {{"radius", 0, 4}, {"axis", 2, 1}, {"height", 0, 10}, {"center", 2, 5}},
         0,
         40},
        {"cylinder", tube(4, 4), with(&request::parallel, {"0 0 -3"}), {{"radius", 0, 4}}, 0, 42},
        {"cylinder", tube(4, 4), about("2 3 0", "0 0 1"), {{"radius", 0, 4}}, 0, 44},
        // The radius grows from 2 to 7 over a height of 10: the tip lies 4 below.
        {"cone",
         tube(2, 7),
         {},
         {{"apex", 2, -4}, {"half angle", 0, std::atan(0.5)}, {"height", 0, 10}},
         0,
         39},
        {"cone",
         tube(2, 7),
         with(&request::nominal, {"cone 2 3 0 2 3 10 2 7"}),
         {{"base radius", 0, 2}, {"axis", 2, 1}},
         0,
         39},
        {"cone", tube(2, 7), with(&request::center, {"2 3 1"}), {{"apex", 2, -4}}, 0, 41},
        {"cone", tube(2, 7), about("2 3 1", "0 0 1"), {{"base radius", 0, 2}, {"top radius", 0, 7}}, 0, 43},
        {"open-spline", {at(0, 0), at(3, 4)}, {}, {{"length", 0, 5}, {"segments", 0, 1}}, 0, -1},
        {"open-spline", rippled_line(), by_method("minimum-curvature"), {{"segments", 0, 7}}, 0, -1},
        {"closed-spline",
         around(60, [](double a) { return at(std::cos(a), std::sin(a)); }),
         by_method("interpolating"),
         {{"area", 0, turn}, {"centroid", 0, 0}},
         0,
         -1},
        {"closed-spline",
         around(60, [](double a) { return at(std::cos(a), std::sin(a)); }),
         by_method("least-squares"),
         {{"area", 0, turn}},
         0,
         -1},
        {"open-nurb", {at(0, 0), at(3, 4)}, {}, {{"length", 0, 5}, {"order", 0, 4}}, 0, -1},
        {"closed-nurb",
         around(60, [](double a) { return at(std::cos(a), std::sin(a)); }),
         {},
         {{"length", 0, 2 * turn}},
         0,
         -1},
        {"transform",
         quarter_turns(),
         {},
         {{"offset", 0, 5}, {"angle", 0, turn / 2}, {"scale x", 0, 2}, {"shear", 0, 0}},
         0,
         4},
        {"composite",
         rippled_circle(),
         with(&request::nominal, {"circle 5 0 0"}),
         {{"offset", 0, 1}, {"offset", 1, 2}},
         2 * h,
         9},
    };
}

fit_result fitted(fit_case const& c) {
    fit_kind const* const kind = find_fit_kind(c.kind);
    fit_result result;
    fit_conditions known;
    std::string reason;
    bool is_usage = false;
    EXPECT_TRUE(kind && read_conditions(c.request, *kind, known, reason)) << c.kind << ": " << reason;
    // What a transform leads to: twice as large, turned by a quarter, and moved by (5, 6).
    for (point const& p : c.points) known.onto.push_back(at(5 - 2 * p.y(), 6 + 2 * p.x()));
    EXPECT_TRUE(fit_feature(*kind, c.points, {c.points.size()}, known, result, reason, is_usage))
        << c.kind << ": " << reason;
    return result;
}

}  // namespace tvmath
