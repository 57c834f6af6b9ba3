#include "tvmath/quick_fit.h"

#include "support/bench_name.h"
#include "support/seeded_points.h"

inline namespace tvmath {
namespace {

// The yardstick: plain loops that sum x and y over the same memory, one for each pass of a fit. The centroid
// takes one pass, the scatter another.
template <int passes>
void plain_sum(benchmark::State& state) {
    auto const points = rippled_circle(state.range(0));
    for (auto _ : state) {
        for (int pass = 0; pass < passes; ++pass) {
            double x = 0, y = 0;
            for (point const& p : points) {
                x += p.x();
                y += p.y();
            }
            benchmark::DoNotOptimize(x);
            benchmark::DoNotOptimize(y);
        }
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void fit_point(benchmark::State& state) {
    auto const points = rippled_circle(state.range(0));
    for (auto _ : state) benchmark::DoNotOptimize(point_fit(points));
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void fit_line(benchmark::State& state) {
    auto const points = rippled_circle(state.range(0));
    point center, direction;
    for (auto _ : state) benchmark::DoNotOptimize(line_quick_fit(points, center, direction));
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void fit_circle(benchmark::State& state) {
    auto const points = rippled_circle(state.range(0));
    point center;
    double radius = 0;
    for (auto _ : state) benchmark::DoNotOptimize(circle_quick_fit(points, center, radius));
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void fit_sphere(benchmark::State& state) {
    auto const points = space_cloud(state.range(0));
    point center;
    double radius = 0;
    for (auto _ : state) benchmark::DoNotOptimize(sphere_quick_fit(points, center, radius));
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

int const registered = [] {
    // 1e2: a touched feature; 1e4: an edge tool; 1e6: beyond every cache.
    std::vector<std::int64_t> const sizes = {100, 10000, 1000000};
    register_sizes("point_fit", "tvmath", fit_point, sizes);
    register_sizes("point_fit", "plain_sum", plain_sum<1>, sizes);
    register_sizes("line_quick_fit", "tvmath", fit_line, sizes);
    register_sizes("line_quick_fit", "plain_sum_2", plain_sum<2>, sizes);
    register_sizes("circle_quick_fit", "tvmath", fit_circle, sizes);
    register_sizes("circle_quick_fit", "plain_sum_2", plain_sum<2>, sizes);
    register_sizes("sphere_quick_fit", "tvmath", fit_sphere, sizes);
    register_sizes("sphere_quick_fit", "plain_sum_2", plain_sum<2>, sizes);
    return 0;
}();

}  // namespace
}  // namespace tvmath
