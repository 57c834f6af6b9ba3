#include "tvmath/array.h"

#include "support/bench_name.h"
#include "tvmath/point.h"

inline namespace tvmath {
namespace {

void copy_handle(benchmark::State& state) {
    idioms::array<double> const a(static_cast<unsigned int>(state.range(0)));
    for (auto _ : state) {
        idioms::array<double> b = a;
        benchmark::DoNotOptimize(b);
    }
}

// The yardstick: what the same copy costs where every value owns its elements.
void copy_elements(benchmark::State& state) {
    std::vector<double> const a(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state) {
        std::vector<double> b = a;
        benchmark::DoNotOptimize(b);
    }
}

void write_to_own_block(benchmark::State& state) {
    idioms::array<double> a(static_cast<unsigned int>(state.range(0)));
    for (auto _ : state) {
        a(0) += 1;
        benchmark::ClobberMemory();
    }
}

void write_to_shared_block(benchmark::State& state) {
    idioms::array<double> const a(static_cast<unsigned int>(state.range(0)));
    for (auto _ : state) {
        idioms::array<double> b = a;
        b(0) = 1;
        benchmark::DoNotOptimize(b.begin());
    }
}

void make_points(benchmark::State& state) {
    for (auto _ : state) {
        idioms::array<point> const points(static_cast<unsigned int>(state.range(0)));
        benchmark::DoNotOptimize(points.begin());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void make_standard_points(benchmark::State& state) {
    for (auto _ : state) {
        std::vector<point> const points(static_cast<std::size_t>(state.range(0)));
        benchmark::DoNotOptimize(points.data());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

int const registered = [] {
    // 12: a 2D transform; 1000: a profile.
    register_sizes("handle_copy", "tvmath", copy_handle, {12, 1000});
    register_sizes("handle_copy", "std_vector", copy_elements, {12, 1000});
    register_sizes("write_unique", "tvmath", write_to_own_block, {12});
    register_sizes("write_shared", "tvmath", write_to_shared_block, {12, 1000});
    register_sizes("write_shared", "std_vector", copy_elements, {12, 1000});
    register_sizes("array_of_points", "tvmath", make_points, {1000, 1000000});
    register_sizes("array_of_points", "std_vector", make_standard_points, {1000, 1000000});
    return 0;
}();

}  // namespace
}  // namespace tvmath
