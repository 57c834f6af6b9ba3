#include "tvmath/screen_corrector.h"

#include <vector>

#include "support/bench_name.h"
#include "support/seeded_random.h"

inline namespace tvmath {
namespace {

using list = idioms::array<point>;

list random_screen(std::int64_t n) {
    seeded_random random(1);
    std::vector<point> points;
    for (std::int64_t i = 0; i < n; ++i) {
        points.emplace_back(true, random.uniform(-320, 320), random.uniform(-240, 240));
    }
    return list(static_cast<unsigned int>(n), points.data());
}

// Radial distortion of the fifth order, and the noise of an edge tool.
list nominal_of(list const& seen) {
    seeded_random random(2);
    list result = seen;
    for (point *p = result.lazycopy_begin(), *end = p + result.capacity(); p != end; ++p) {
        double const r2 = sqr(*p) / (320 * 320);
        *p = *p * (1 + 0.03 * r2 - 0.02 * r2 * r2) +
             point(false, 0.02 * random.normal(), 0.02 * random.normal());
    }
    return result;
}

struct fixed_order : screen_corrector {
    explicit fixed_order(std::int64_t wanted) {
        list const seen = random_screen(2000);
        fit(static_cast<int>(wanted), seen, nominal_of(seen));
    }
};

// The size is the order.
void one_point(benchmark::State& state) {
    fixed_order const c(state.range(0));
    list const points = random_screen(256);
    unsigned int i = 0;
    for (auto _ : state) benchmark::DoNotOptimize(points[i++ % 256] * c);
}

// The same by the terms as a list and the product of matrix and vector.
struct by_matrix : fixed_order {
    using fixed_order::fixed_order;
    point moved(point p) const { return p + point(false, coefficients * f(p)); }
};
void one_point_by_matrix(benchmark::State& state) {
    by_matrix const c(state.range(0));
    list const points = random_screen(256);
    unsigned int i = 0;
    for (auto _ : state) benchmark::DoNotOptimize(c.moved(points[i++ % 256]));
}

void path_of_order_5(benchmark::State& state) {
    fixed_order const c(5);
    curve const path = random_screen(state.range(0));
    for (auto _ : state) benchmark::DoNotOptimize(path * c);
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void search_to_order_10(benchmark::State& state) {
    list const seen = random_screen(state.range(0)), nominal = nominal_of(seen);
    for (auto _ : state) benchmark::DoNotOptimize(screen_corrector(640, 480, seen, nominal, 10));
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

int const registered = [] {
    // 5: a lens with distortion of the fifth order; 10: the highest that a calibration tries.
    register_sizes("screen_correct_point", "tvmath", one_point, {3, 5, 10});
    register_sizes("screen_correct_point", "term_list", one_point_by_matrix, {3, 5, 10});
    // 1e2: an edge; 1e6: all that a long program measures.
    register_sizes("screen_correct_path", "tvmath", path_of_order_5, {100, 10000, 1000000});
    // 400: a grid plate in one image; 2000: a fine one.
    register_sizes("screen_order_search", "tvmath", search_to_order_10, {100, 400, 2000});
    return 0;
}();

}  // namespace
}  // namespace tvmath
