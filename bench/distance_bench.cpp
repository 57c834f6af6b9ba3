#include <cmath>

#include "support/bench_name.h"
#include "support/seeded_points.h"
#include "tvmath/distance.h"

inline namespace tvmath {
namespace {

// A wavy closed path of `n` spans around the centre, about 40 across.
curve wavy_path(std::int64_t n, double x, double y) {
    auto const at = [&](double t) {
        double const angle = 6.283185307179586 * t / static_cast<double>(n), r = 20 + std::sin(7 * angle);
        return point(true, x + r * std::cos(angle), y + r * std::sin(angle), 0.0);
    };
    curve path(static_cast<unsigned int>(3 * n + 1));
    point* const to = path.lazycopy_begin();
    // A span between two points of the path, along the chords of their neighbours.
    for (std::int64_t i = 0; i <= n; ++i) {
        double const t = static_cast<double>(i);
        point const third = (at(t + 1) - at(t - 1)) / 6;
        to[3 * i] = at(t);
        if (i > 0) to[3 * i - 1] = at(t) - third;
        if (i < n) to[3 * i + 1] = at(t) + third;
    }
    return path;
}

std::vector<point> moved_cloud(std::int64_t n, double x) {
    std::vector<point> points = space_cloud(n);
    for (point& p : points) p.x() += x;
    return points;
}

// One pair per call, going round in the list of first features.
template <class first, class second, class function>
void time_pairs(benchmark::State& state, std::vector<first> const& as, second const& b, function const& ask) {
    std::size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(ask(as[i], b));
        if (++i == as.size()) i = 0;
    }
}

template <class feature, class function>
void with_points(benchmark::State& state, feature const& f, function const& ask) {
    time_pairs(state, space_cloud(1024), f, ask);
}

std::vector<line> lines() {
    std::vector<line> result;
    std::vector<point> const points = space_cloud(1025);
    for (std::size_t i = 0; i < 1024; ++i) result.emplace_back(points[i], points[i + 1]);
    return result;
}

std::vector<ellipse> ellipses() {
    std::vector<ellipse> result;
    for (point const& p : space_cloud(256)) {
        result.emplace_back(2 + std::fabs(p.x()), 1 + std::fabs(p.y()), p.z(), point(true, p.y(), p.z()));
    }
    return result;
}

line const tilted_line(point(true, 1, 2), point(true, 7, 5));
ellipse const tilted_ellipse(9, 4, 0.3, point(true, 5, -3));

void point_line(benchmark::State& state) {
    with_points(state, tilted_line, [](point const& p, line const& l) { return distance_fit(p, l); });
}
void point_plane(benchmark::State& state) {
    plane const s(point(true, 1, 2, 3), point(false, 1, 2, 3));
    with_points(state, s, [](point const& p, plane const& q) { return distance_fit(p, q); });
}
void point_rectangle(benchmark::State& state) {
    rectangle const r(9, 4, 0.3, point(true, 1, 2));
    with_points(state, r, [](point const& p, rectangle const& q) { return point_nearest_on(p, q); });
}
void point_ellipse_near(benchmark::State& state) {
    with_points(state, tilted_ellipse, [](point const& p, ellipse const& e) { return distance_near(p, e); });
}
void point_ellipse_far(benchmark::State& state) {
    with_points(state, tilted_ellipse, [](point const& p, ellipse const& e) { return distance_far(p, e); });
}
void line_ellipse(benchmark::State& state) {
    time_pairs(state, lines(), tilted_ellipse,
               [](line const& l, ellipse const& e) { return distance_near(l, e); });
}
void ellipse_ellipse_near(benchmark::State& state) {
    time_pairs(state, ellipses(), tilted_ellipse,
               [](ellipse const& a, ellipse const& b) { return distance_near(a, b); });
}
void ellipse_ellipse_far(benchmark::State& state) {
    time_pairs(state, ellipses(), tilted_ellipse,
               [](ellipse const& a, ellipse const& b) { return distance_far(a, b); });
}
// The pair that takes all steps the search has.
void ellipse_ellipse_concentric(benchmark::State& state) {
    ellipse const inner(5, 4.9999, 0.0);
    time_pairs(state, std::vector<ellipse>{ellipse(9, 8.9999, 0.4)}, inner,
               [](ellipse const& a, ellipse const& b) { return distance_near(a, b); });
}

void point_curve_near(benchmark::State& state) {
    with_points(state, wavy_path(state.range(0), 0, 0),
                [](point const& p, curve const& c) { return distance_near(p, c); });
}
void point_curve_far(benchmark::State& state) {
    with_points(state, wavy_path(state.range(0), 0, 0),
                [](point const& p, curve const& c) { return distance_far(p, c); });
}
void line_curve(benchmark::State& state) {
    time_pairs(state, lines(), wavy_path(state.range(0), 0, 0),
               [](line const& l, curve const& c) { return distance_near(l, c); });
}
// Side by side, one within the other and crossing.
void curve_curve(benchmark::State& state, double x, double scale) {
    curve const a = wavy_path(state.range(0), 0, 0), b = scale * wavy_path(state.range(0), x, 3);
    for (auto _ : state) benchmark::DoNotOptimize(distance_near(a, b));
}
void curve_curve_apart(benchmark::State& state) {
    curve_curve(state, 50, 1);
}
void curve_curve_within(benchmark::State& state) {
    curve_curve(state, 1, 0.8);
}
void curve_curve_crossing(benchmark::State& state) {
    curve_curve(state, 10, 1);
}
void points_curve(benchmark::State& state) {
    auto const list = space_cloud(state.range(0));
    curve const c = wavy_path(100, 0, 0);
    for (auto _ : state) benchmark::DoNotOptimize(distance_near_2d(list, c));
}

template <std::int64_t held, bool near>
void lists(benchmark::State& state) {
    auto const a = space_cloud(held), b = moved_cloud(state.range(0), 35);
    for (auto _ : state) benchmark::DoNotOptimize(near ? distance_near_3d(a, b) : distance_far_3d(a, b));
    state.SetItemsProcessed(state.iterations() * (held + state.range(0)));
}

int const registered = [] {
    register_sizes("distance_point_line", "tvmath", point_line, {1});
    register_sizes("distance_point_plane", "tvmath", point_plane, {1});
    register_sizes("distance_point_rectangle", "tvmath", point_rectangle, {1});
    register_sizes("distance_point_ellipse_near", "tvmath", point_ellipse_near, {1});
    register_sizes("distance_point_ellipse_far", "tvmath", point_ellipse_far, {1});
    register_sizes("distance_line_ellipse", "tvmath", line_ellipse, {1});
    register_sizes("distance_ellipses_near", "tvmath", ellipse_ellipse_near, {1});
    register_sizes("distance_ellipses_far", "tvmath", ellipse_ellipse_far, {1});
    register_sizes("distance_ellipses_concentric", "tvmath", ellipse_ellipse_concentric, {1});
    // 1: a corner; 10: a fitted contour; 1000: a long traced one.
    std::vector<std::int64_t> const spans = {1, 10, 100, 1000};
    register_sizes("distance_point_curve_near", "tvmath", point_curve_near, spans);
    register_sizes("distance_point_curve_far", "tvmath", point_curve_far, spans);
    register_sizes("distance_line_curve", "tvmath", line_curve, spans);
    register_sizes("distance_curves_apart", "tvmath", curve_curve_apart, {10, 100, 1000});
    register_sizes("distance_curves_within", "tvmath", curve_curve_within, {10, 100, 1000});
    register_sizes("distance_curves_crossing", "tvmath", curve_curve_crossing, {10, 100, 1000});
    register_sizes("distance_points_curve", "tvmath", points_curve, {1000, 100000});
    // The number of points walked; 1e3 and 1e5 are held.
    register_sizes("distance_lists_near_1e3", "tvmath", lists<1000, true>, {1000, 1000000});
    register_sizes("distance_lists_far_1e3", "tvmath", lists<1000, false>, {1000, 1000000});
    register_sizes("distance_lists_near_1e5", "tvmath", lists<100000, true>, {100000, 1000000}, 1);
    register_sizes("distance_lists_far_1e5", "tvmath", lists<100000, false>, {100000, 1000000}, 1);
    return 0;
}();

}  // namespace
}  // namespace tvmath
