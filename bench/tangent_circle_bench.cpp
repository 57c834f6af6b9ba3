#include "tvmath/tangent_circle.h"

#include "support/bench_name.h"

inline namespace tvmath {
namespace {

line first_line() {
    return line(point(true, 80, 40), point(true, 120, 57));
}
line second_line() {
    return line(point(true, 90, 30), point(true, 85, 90));
}
line third_line() {
    return line(point(true, 60, 100), point(true, 140, 80));
}
ellipse first_ellipse() {
    return ellipse(20, 12, 0.3, point(true, 100, 50));
}
ellipse second_ellipse() {
    return ellipse(15, 9, 1.7, point(true, 120, 62));
}

template <class construction>
void list_of(benchmark::State& state, construction const& construct) {
    std::vector<Circle_Description> found;
    for (auto _ : state) {
        auto const memory = construct(found);
        benchmark::DoNotOptimize(memory.address());
    }
    state.counters["circles"] = static_cast<double>(found.size());
}

void centered(benchmark::State& state) {
    line const l = first_line();
    point const p(true, 90, 70);
    for (auto _ : state) benchmark::DoNotOptimize(circle_centered_tangent(p, l).begin());
}
void lines_radius(benchmark::State& state) {
    line const a = first_line(), b = second_line();
    list_of(state, [&](auto& found) { return circle_tangent_tangent_value(a, b, 5, found); });
}
void lines_point(benchmark::State& state) {
    line const a = first_line(), b = second_line();
    point const p(true, 110, 80);
    list_of(state, [&](auto& found) { return circle_tangent_tangent_fit(a, b, p, found); });
}
void three_lines(benchmark::State& state) {
    line const a = first_line(), b = second_line(), c = third_line();
    list_of(state, [&](auto& found) { return circle_tangent_tangent_tangent(a, b, c, found); });
}
void circles_radius(benchmark::State& state) {
    circle const a(20, point(true, 100, 50)), b(15, point(true, 120, 62));
    list_of(state, [&](auto& found) { return circle_arc_tangent_tangent_value(a, b, 30, found); });
}
void ellipses_radius(benchmark::State& state) {
    ellipse const a = first_ellipse(), b = second_ellipse();
    double const r = static_cast<double>(state.range(0));
    list_of(state, [&](auto& found) { return circle_arc_tangent_tangent_value(a, b, r, found); });
}
// The worst input: most of the curves of the centres nearly coincide.
void ellipses_alike(benchmark::State& state) {
    ellipse const a = first_ellipse(), b(20, 12, 0.3 + 1e-7, point(true, 100, 50));
    list_of(state, [&](auto& found) { return circle_arc_tangent_tangent_value(a, b, 5, found); });
}

int const registered = [] {
    struct {
        char const* name;
        void (*run)(benchmark::State&);
    } const single[] = {
        {"tangent_circle_centered", centered},       {"tangent_circle_lines_radius", lines_radius},
        {"tangent_circle_lines_point", lines_point}, {"tangent_circle_three_lines", three_lines},
        {"tangent_circle_circles", circles_radius},  {"tangent_circle_ellipses_alike", ellipses_alike},
    };
    for (auto const& s : single) register_sizes(s.name, "tvmath", s.run, {1});
    // The radius: without cusps of the curves inside, with them, and many times the ellipses' size.
    register_sizes("tangent_circle_ellipses", "tvmath", ellipses_radius, {3, 15, 3000});
    return 0;
}();

}  // namespace
}  // namespace tvmath
