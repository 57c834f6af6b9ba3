#include "tvmath/tangent.h"

#include "support/bench_name.h"
#include "tvmath/bisector.h"
#include "tvmath/circle.h"

inline namespace tvmath {
namespace {

point at(double x, double y) {
    return point(true, x, y);
}
ellipse seeded_ellipse() {
    return ellipse(20, 12, 0.3, at(100, 50));
}

void of_pair(benchmark::State& state, ellipse const& a, ellipse const& b) {
    unsigned int found = 0;
    bool inner = false;
    for (auto _ : state) {
        idioms::array<line> const lines = line_tangent(a, b, inner);
        benchmark::DoNotOptimize(lines.begin());
        found = lines.capacity();
    }
    state.counters["lines"] = found;
}

void from_point(benchmark::State& state) {
    ellipse const e = seeded_ellipse();
    point const p = at(140, 20);
    for (auto _ : state) benchmark::DoNotOptimize(line_tangent(p, e).begin());
}
void circles_apart(benchmark::State& state) {
    of_pair(state, circle(20, at(100, 50)), circle(15, at(150, 70)));
}
void circles_overlapping(benchmark::State& state) {
    of_pair(state, circle(20, at(100, 50)), circle(15, at(115, 60)));
}
void ellipses_apart(benchmark::State& state) {
    of_pair(state, seeded_ellipse(), ellipse(20, 12, 1.7, at(160, 52)));
}
void ellipses_overlapping(benchmark::State& state) {
    of_pair(state, seeded_ellipse(), ellipse(20, 12, 1.7, at(115, 60)));
}
void ellipses_crossed(benchmark::State& state) {
    of_pair(state, seeded_ellipse(), ellipse(20, 12, 1.7, at(101, 52)));
}
void ellipses_nested(benchmark::State& state) {
    of_pair(state, seeded_ellipse(), ellipse(8, 3, 1.7, at(101, 52)));
}
// The worst input: a double zero is sought down to rounding.
void ellipses_touching(benchmark::State& state) {
    of_pair(state, ellipse(20, 10, at(0, 0)), circle(10, at(0, 0)));
}
void records(benchmark::State& state) {
    Circle_Description a, b;
    a.geometry = circle(20, at(100, 50));
    b.geometry = circle(15, at(150, 70));
    std::vector<Segment_Description> found;
    for (auto _ : state) benchmark::DoNotOptimize(line_tangent(&a, &b, found).address());
}
void bisect_lines(benchmark::State& state) {
    line const a(at(80, 40), at(120, 57)), b(at(80, 60), at(90, 90));
    for (auto _ : state) benchmark::DoNotOptimize(line_bisect(a, b).begin());
}
void bisect_points(benchmark::State& state) {
    for (auto _ : state) benchmark::DoNotOptimize(line_bisect(at(80, 40), at(120, 57)).begin());
}

int const registered = [] {
    struct {
        char const* family;
        void (*run)(benchmark::State&);
    } const single[] = {
        {"tangent_point_ellipse", from_point},
        {"tangent_circles_apart", circles_apart},
        {"tangent_circles_overlapping", circles_overlapping},
        {"tangent_ellipses_apart", ellipses_apart},
        {"tangent_ellipses_overlapping", ellipses_overlapping},
        {"tangent_ellipses_crossed", ellipses_crossed},
        {"tangent_ellipses_nested", ellipses_nested},
        {"tangent_ellipses_touching", ellipses_touching},
        {"tangent_records", records},
        {"bisect_line_line", bisect_lines},
        {"bisect_point_point", bisect_points},
    };
    for (auto const& s : single) register_sizes(s.family, "tvmath", s.run, {1});
    return 0;
}();

}  // namespace
}  // namespace tvmath
