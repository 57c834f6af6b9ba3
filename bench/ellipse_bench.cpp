#include "tvmath/ellipse.h"

#include "support/bench_name.h"
#include "tvmath/scalar.h"

inline namespace tvmath {
namespace {

ellipse seeded_ellipse() {
    return ellipse(20, 12, 0.3, point(true, 100, 50));
}

int size_of(benchmark::State const& state) {
    return static_cast<int>(state.range(0));
}

void render(benchmark::State& state) {
    ellipse const e = seeded_ellipse();
    for (auto _ : state) {
        curve const c = e.render_ellipse(size_of(state));
        benchmark::DoNotOptimize(c.begin());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void render_offset(benchmark::State& state) {
    ellipse const e = seeded_ellipse();
    for (auto _ : state) {
        curve const c = e.render_ellipse(size_of(state), 0.5);
        benchmark::DoNotOptimize(c.begin());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

// The yardstick of both: a list of as many points, without computing any.
void write_points(benchmark::State& state) {
    point const p(true, 100, 50);
    for (auto _ : state) {
        curve const c(static_cast<unsigned int>(state.range(0)), p);
        benchmark::DoNotOptimize(c.begin());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

// The way by a sine and a cosine for each point.
void render_by_trigonometry(benchmark::State& state) {
    ellipse const e = seeded_ellipse();
    point const center = e.center(), u = e.semimajor_axis(), v = e.semiminor_axis();
    for (auto _ : state) {
        curve c(static_cast<unsigned int>(state.range(0)));
        point* to = c.lazycopy_begin();
        double const d = 2 * pi / static_cast<double>(state.range(0));
        for (int i = 0; i < size_of(state); ++i) to[i] = center + cos(i * d) * u + sin(i * d) * v;
        benchmark::DoNotOptimize(c.begin());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void whole_bezier(benchmark::State& state) {
    ellipse const e = seeded_ellipse();
    for (auto _ : state) {
        curve const c = e.render_bezier();
        benchmark::DoNotOptimize(c.begin());
    }
}

void arc_bezier(benchmark::State& state) {
    ellipse const e = seeded_ellipse();
    for (auto _ : state) {
        curve const c = e.render_bezier(0.2, 4.5);
        benchmark::DoNotOptimize(c.begin());
    }
}

// By the axis ratio, in thousandths: thin ellipses take more rows of the quadrature.
void perimeter(benchmark::State& state) {
    ellipse const e(1, static_cast<double>(state.range(0)) / 1000, 0.3);
    for (auto _ : state) benchmark::DoNotOptimize(e.perimeter());
}

void whole_rect(benchmark::State& state) {
    ellipse const e = seeded_ellipse();
    for (auto _ : state) benchmark::DoNotOptimize(e.get_bounding_rect());
}

void arc_rect(benchmark::State& state) {
    ellipse const e = seeded_ellipse();
    for (auto _ : state) benchmark::DoNotOptimize(e.get_bounding_rect(0.2, 4.5));
}

void arc_band_rect(benchmark::State& state) {
    ellipse const e = seeded_ellipse();
    transform const t = transform::rotation(0.1, 0.2, 0.3).translate(1, 2, 3);
    for (auto _ : state) benchmark::DoNotOptimize(e.get_bounding_rect(0.2, 4.5, t, 0.5));
}

void from_conic(benchmark::State& state) {
    for (auto _ : state) {
        double one = 1;
        benchmark::DoNotOptimize(one);
        ellipse const e(one, 0.5, 2, -3, 4, -5);
        benchmark::DoNotOptimize(e.begin());
    }
}

int const registered = [] {
    // 1e4: a drawn contour; 1e6: beyond every cache.
    std::vector<std::int64_t> const sizes = {10000, 1000000};
    register_sizes("ellipse_render", "tvmath", render, sizes);
    register_sizes("ellipse_render", "write_only", write_points, sizes);
    register_sizes("ellipse_render", "sine_and_cosine", render_by_trigonometry, sizes);
    register_sizes("ellipse_render_offset", "tvmath", render_offset, sizes);
    register_sizes("ellipse_render_offset", "write_only", write_points, sizes);
    register_sizes("ellipse_bezier", "tvmath", whole_bezier, {13});
    register_sizes("ellipse_arc_bezier", "tvmath", arc_bezier, {10});
    register_sizes("ellipse_perimeter", "tvmath", perimeter, {1, 500, 1000});
    register_sizes("ellipse_rect", "tvmath", whole_rect, {1});
    register_sizes("ellipse_arc_rect", "tvmath", arc_rect, {1});
    register_sizes("ellipse_arc_band_rect", "tvmath", arc_band_rect, {1});
    register_sizes("ellipse_from_conic", "tvmath", from_conic, {1});
    return 0;
}();

}  // namespace
}  // namespace tvmath
