#include "tvmath/nurb.h"

#include <cmath>
#include <vector>

#include "support/bench_name.h"
#include "support/seeded_random.h"

inline namespace tvmath {
namespace {

// A rational cubic outline around a circle, of `spans` spans, rippled by a part of their width.
nurb outline(std::int64_t spans) {
    seeded_random random(1);
    nurb n(4, static_cast<unsigned int>(spans) + 3);
    for (unsigned int i = 0; i < n.control_points(); ++i) {
        double const angle = 6.283185307179586 * i / static_cast<double>(n.control_points());
        double const w = random.uniform(0.8, 1.25),
                     r = 20 + 20 * random.normal() / static_cast<double>(spans);
        n.set_control_point(i, {w * r * std::cos(angle), w * r * std::sin(angle), 0, w});
    }
    for (unsigned int i = 0; i < n.knots(); ++i) {
        n.set_knot(i, i < 4 ? 0 : i < n.control_points() ? i - 3.0 : static_cast<double>(spans));
    }
    return n;
}

constexpr std::int64_t point_count = 100000;

void render(benchmark::State& state) {
    nurb const n = outline(state.range(0));
    auto const steps = static_cast<int>(point_count / state.range(0));
    for (auto _ : state) benchmark::DoNotOptimize(n.render(steps, true).begin());
    state.SetItemsProcessed(state.iterations() * steps * state.range(0));
}

// The same points, each by the recursion on its own.
void render_by_recursion(benchmark::State& state) {
    nurb const n = outline(state.range(0));
    auto const count = static_cast<unsigned int>(point_count / state.range(0) * state.range(0));
    for (auto _ : state) {
        curve list(count);
        point* to = list.lazycopy_begin();
        for (unsigned int i = 1; i <= count; ++i) {
            *to++ = n.evaluate(static_cast<double>(state.range(0)) * i / count);
        }
        benchmark::DoNotOptimize(list.begin());
    }
    state.SetItemsProcessed(state.iterations() * count);
}

void evaluate(benchmark::State& state) {
    nurb const n = outline(state.range(0));
    seeded_random random(2);
    std::vector<double> parameters;
    for (int i = 0; i < 1024; ++i)
        parameters.push_back(random.uniform(0, static_cast<double>(state.range(0))));
    for (auto _ : state) {
        for (double const t : parameters) benchmark::DoNotOptimize(n.evaluate(t));
    }
    state.SetItemsProcessed(state.iterations() * 1024);
}

void length(benchmark::State& state) {
    nurb const n = outline(state.range(0));
    double result = 0;
    for (auto _ : state) {
        n.compute_moments(result);
        benchmark::DoNotOptimize(result);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void area(benchmark::State& state) {
    nurb const n = outline(state.range(0));
    double result = 0, perimeter = 0;
    point centroid;
    for (auto _ : state) {
        n.compute_moments(result, perimeter, centroid);
        benchmark::DoNotOptimize(result);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

// One knot into the middle of every span.
void insert_knots(benchmark::State& state) {
    nurb const n = outline(state.range(0));
    std::vector<double> middles;
    for (std::int64_t i = 0; i < state.range(0); ++i) middles.push_back(static_cast<double>(i) + 0.5);
    for (auto _ : state) {
        nurb refined = n;
        refined.insert_knots(middles.data(), static_cast<unsigned int>(middles.size()));
        benchmark::DoNotOptimize(refined.control_points());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

int const registered = [] {
    // 8: an arc or two; 128: an outline; 10000: a digitised contour. Time should grow with the spans where
    // the work does, and by the logarithm for one evaluation.
    std::vector<std::int64_t> const sizes = {8, 128, 10000};
    register_sizes("nurb_render", "tvmath", render, sizes);
    register_sizes("nurb_render", "recursion", render_by_recursion, sizes);
    register_sizes("nurb_evaluate", "tvmath", evaluate, sizes);
    register_sizes("nurb_length", "tvmath", length, sizes);
    register_sizes("nurb_area", "tvmath", area, sizes);
    register_sizes("nurb_insert_knots", "tvmath", insert_knots, sizes);
    return 0;
}();

}  // namespace
}  // namespace tvmath
