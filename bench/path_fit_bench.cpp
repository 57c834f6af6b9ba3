#include "tvmath/path_fit.h"

#include <algorithm>

#include "support/bench_name.h"
#include "support/seeded_points.h"

inline namespace tvmath {
namespace {

void count_points(benchmark::State& state) {
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

template <curve (*fit)(std::vector<point> const&, bool)>
void fit_closed_path(benchmark::State& state) {
    auto const points = rippled_circle(state.range(0));
    for (auto _ : state) benchmark::DoNotOptimize(fit(points, true));
    count_points(state);
}

void fit_nurb(benchmark::State& state) {
    auto const points = rippled_circle(state.range(0));
    for (auto _ : state) benchmark::DoNotOptimize(closed_nurb_fit(points));
    count_points(state);
}

void sort_shuffled(benchmark::State& state) {
    auto points = rippled_circle(state.range(0));
    seeded_random random(3);
    for (std::size_t i = points.size(); i > 1; --i) {
        std::swap(points[i - 1], points[random.below(static_cast<unsigned int>(i))]);
    }
    for (auto _ : state) {
        auto copy = points;
        benchmark::DoNotOptimize(sort_spline_data(copy, true));
    }
    count_points(state);
}

int const registered = [] {
    // 1e2: a traced edge; 1e4: a scanned contour; 1e6: beyond what a scan gives.
    std::vector<std::int64_t> const sizes = {100, 10000, 1000000}, small = {100, 10000}, large = {1000000};
    register_sizes("bezier_fit", "tvmath", fit_closed_path<bezier_fit>, sizes);
    register_sizes("bezier_minimum_curvature_fit", "tvmath", fit_closed_path<bezier_minimum_curvature_fit>,
                   sizes);
    struct {
        char const* family;
        void (*run)(benchmark::State&);
    } const slow[] = {{"bezier_least_squares_fit", fit_closed_path<bezier_least_squares_fit>},
                      {"closed_nurb_fit", fit_nurb},
                      {"sort_spline_data", sort_shuffled}};
    for (auto const& fit : slow) {
        register_sizes(fit.family, "tvmath", fit.run, small);
        register_sizes(fit.family, "tvmath", fit.run, large, 3);
    }
    return 0;
}();

}  // namespace
}  // namespace tvmath
