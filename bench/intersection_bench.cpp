#include "tvmath/intersection.h"

#include <string>

#include "support/bench_name.h"
#include "support/seeded_random.h"
#include "tvmath/angle.h"
#include "tvmath/scalar.h"

inline namespace tvmath {
namespace {

point at(double x, double y, double z) {
    return point(true, x, y, z);
}

ellipse seeded_ellipse() {
    return ellipse(20, 12, 0.3, point(true, 100, 50));
}
line seeded_line() {
    return line(point(true, 80, 40), point(true, 120, 57));
}
line space_line() {
    return line(
        make_transform(at(100, 50, 3), point(false, 3, 4, 5), point(false, 0, 1, 0), point(false, 0, 0, 1)));
}
plane tilted_plane() {
    return plane(at(100, 50, 3), point(false, 0.3, 0.2, 1));
}
cylinder seeded_cylinder() {
    return cylinder(20, 30, at(101, 52, 0), point(false, 0.1, 0.2, 1));
}
cone seeded_cone() {
    return cone(at(101, 52, -20), at(103, 50, 30), 10, 30);
}

// A wavy path of `spans` spans along X, from 0 to 1000.
curve wavy_path(std::int64_t spans, std::uint64_t seed) {
    seeded_random random(seed);
    unsigned int const size = static_cast<unsigned int>(3 * spans + 1);
    curve c(size);
    for (unsigned int i = 0; i < size; ++i) c(i) = at(1000.0 * i / (size - 1), random.uniform(-5, 5), 0);
    return c;
}

template <class A, class B>
void list_of_pair(benchmark::State& state, A const& a, B const& b) {
    std::int64_t found = 0;
    for (auto _ : state) {
        idioms::array<point> const points = point_intersect(a, b);
        benchmark::DoNotOptimize(points.begin());
        found = points.capacity();
    }
    state.counters["points"] = static_cast<double>(found);
}

void line_line(benchmark::State& state) {
    line const a = space_line(), b = seeded_line();
    for (auto _ : state) benchmark::DoNotOptimize(point_intersect(a, b));
}
void line_plane(benchmark::State& state) {
    line const a = space_line();
    plane const p = tilted_plane();
    for (auto _ : state) benchmark::DoNotOptimize(point_intersect(a, p));
}
void plane_plane(benchmark::State& state) {
    plane const p = tilted_plane(), q(at(90, 40, 1), point(false, -1, 0.2, 1));
    for (auto _ : state) benchmark::DoNotOptimize(line_intersect(p, q).begin());
}
void line_sphere(benchmark::State& state) {
    list_of_pair(state, space_line(), sphere(20, at(101, 52, 0)));
}
void line_cylinder(benchmark::State& state) {
    list_of_pair(state, space_line(), seeded_cylinder());
}
void line_cone(benchmark::State& state) {
    list_of_pair(state, space_line(), seeded_cone());
}
void line_circle(benchmark::State& state) {
    list_of_pair(state, seeded_line(), ellipse(20, point(true, 100, 50)));
}
void line_ellipse(benchmark::State& state) {
    list_of_pair(state, seeded_line(), seeded_ellipse());
}
void circle_circle(benchmark::State& state) {
    list_of_pair(state, circle(20, point(true, 100, 50)), circle(15, point(true, 120, 60)));
}
void ellipse_ellipse(benchmark::State& state) {
    list_of_pair(state, seeded_ellipse(), ellipse(20, 12, 1.7, point(true, 101, 52)));
}
void plane_sphere(benchmark::State& state) {
    sphere const s(20, at(101, 52, 0));
    plane const p = tilted_plane();
    for (auto _ : state) benchmark::DoNotOptimize(circle_intersect(p, s).begin());
}
void plane_cylinder(benchmark::State& state) {
    cylinder const c = seeded_cylinder();
    plane const p = tilted_plane();
    for (auto _ : state) benchmark::DoNotOptimize(ellipse_intersect(p, c).begin());
}
void plane_cone(benchmark::State& state) {
    cone const c = seeded_cone();
    plane const p = tilted_plane();
    for (auto _ : state) benchmark::DoNotOptimize(ellipse_intersect(p, c).begin());
}
void angle(benchmark::State& state) {
    line const a = seeded_line(), b(point(true, 80, 60), point(true, 90, 90));
    Angle_Description found;
    for (auto _ : state) benchmark::DoNotOptimize(angle_intersect(a, b, found));
}
void line_curve(benchmark::State& state) {
    list_of_pair(state, line(point(true, 0, 3), point(true, 1000, 4)), wavy_path(state.range(0), 1));
}
void ellipse_curve(benchmark::State& state) {
    list_of_pair(state, ellipse(400, 3, point(true, 500, 0)), wavy_path(state.range(0), 1));
}
void curve_curve(benchmark::State& state) {
    list_of_pair(state, wavy_path(state.range(0), 1), wavy_path(state.range(0), 2));
}
// The worst input: a path along itself.
void curve_itself(benchmark::State& state) {
    list_of_pair(state, wavy_path(state.range(0), 1), wavy_path(state.range(0), 1));
}

int const registered = [] {
    struct {
        char const* name;
        void (*run)(benchmark::State&);
    } const single[] = {
        {"line_line", line_line},         {"line_plane", line_plane},
        {"plane_plane", plane_plane},     {"line_sphere", line_sphere},
        {"line_cylinder", line_cylinder}, {"line_cone", line_cone},
        {"line_circle", line_circle},     {"line_ellipse", line_ellipse},
        {"circle_circle", circle_circle}, {"ellipse_ellipse", ellipse_ellipse},
        {"plane_sphere", plane_sphere},   {"plane_cylinder", plane_cylinder},
        {"plane_cone", plane_cone},       {"angle", angle},
    };
    for (auto const& s : single) register_sizes(std::string("intersect_") + s.name, "tvmath", s.run, {1});
    // Spans: one of a drawn curve; 1000 of a scanned and fitted outline.
    std::vector<std::int64_t> const spans = {1, 10, 100, 1000};
    register_sizes("intersect_line_curve", "tvmath", line_curve, spans);
    register_sizes("intersect_ellipse_curve", "tvmath", ellipse_curve, spans);
    register_sizes("intersect_curve_curve", "tvmath", curve_curve, spans);
    register_sizes("intersect_curve_itself", "tvmath", curve_itself, {1, 100});
    return 0;
}();

}  // namespace
}  // namespace tvmath
