#include "tvmath/curve.h"

#include "support/bench_name.h"
#include "support/seeded_points.h"

inline namespace tvmath {
namespace {

constexpr unsigned int points_per_segment = 10;

curve list_of(std::vector<point> const& points) {
    return idioms::array<point>(static_cast<unsigned int>(points.size()), points.data());
}

// Segments with extremes inside, none like the next.
curve tangled_path(std::int64_t segments) {
    return list_of(space_cloud(3 * segments + 1));
}

void segments_per_second(benchmark::State& state) {
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void render_path(benchmark::State& state) {
    curve const c = tangled_path(state.range(0));
    for (auto _ : state) {
        curve const polyline = render(c, false, points_per_segment);
        benchmark::DoNotOptimize(polyline.begin());
    }
    segments_per_second(state);
}

// The yardstick of `render`: a new list of as many points, each written once.
void write_points(benchmark::State& state) {
    auto const n = static_cast<unsigned int>(state.range(0)) * points_per_segment + 1;
    point const p(true, 1, 2, 3);
    for (auto _ : state) {
        curve const list(n, p);
        benchmark::DoNotOptimize(list.begin());
    }
    segments_per_second(state);
}

void extent_of_path(benchmark::State& state) {
    curve const c = tangled_path(state.range(0));
    for (auto _ : state) benchmark::DoNotOptimize(bezier_bounding_rect(c));
    segments_per_second(state);
}

void length_of_path(benchmark::State& state) {
    curve const c = tangled_path(state.range(0));
    double length = 0;
    for (auto _ : state) benchmark::DoNotOptimize(calculate_bezier_length(c, length));
    segments_per_second(state);
}

void moments_of_path(benchmark::State& state) {
    curve const c = tangled_path(state.range(0));
    double area = 0;
    point centroid;
    for (auto _ : state) benchmark::DoNotOptimize(calculate_closed_bezier_moments(c, area, centroid));
    segments_per_second(state);
}

// Form error 1e-3: at 1e-2 nearly every span fits its chord, at 1e-4 hardly any does.
template <int negative_exponent>
void reduce_by_tolerance(benchmark::State& state) {
    curve const c = list_of(rippled_circle(state.range(0)));
    double const tolerance = std::pow(10.0, -negative_exponent);
    for (auto _ : state) {
        curve reduced = c;
        reduced.reduce_points_by_tolerance(tolerance, false);
        benchmark::DoNotOptimize(reduced.begin());
    }
    segments_per_second(state);
}

void closest_to(benchmark::State& state) {
    curve const c = list_of(space_cloud(state.range(0)));
    point const p(true, 1, 2, 3);
    for (auto _ : state) benchmark::DoNotOptimize(closest2d(c, p, true));
    segments_per_second(state);
}

int const registered = [] {
    // 100: a drawn outline; 1e5: an imported contour.
    std::vector<std::int64_t> const segments = {100, 100000};
    register_sizes("bezier_render", "tvmath", render_path, segments);
    register_sizes("bezier_render", "write_points", write_points, segments);
    register_sizes("bezier_extent", "tvmath", extent_of_path, segments);
    register_sizes("bezier_length", "tvmath", length_of_path, segments);
    register_sizes("bezier_moments", "tvmath", moments_of_path, segments);
    // Tenfold sizes show the linear growth.
    std::vector<std::int64_t> const points = {10000, 100000, 1000000};
    register_sizes("reduce_wide_tolerance", "tvmath", reduce_by_tolerance<2>, points);
    register_sizes("reduce_tight_tolerance", "tvmath", reduce_by_tolerance<4>, points);
    register_sizes("closest2d", "tvmath", closest_to, points);
    return 0;
}();

}  // namespace
}  // namespace tvmath
