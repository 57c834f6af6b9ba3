#include "tvmath/delaunay.h"

#include <vector>

#include "support/bench_name.h"
#include "support/seeded_random.h"

#ifdef TVMATH_HAS_CGAL
#include <CGAL/Delaunay_triangulation_2.h>
#include <CGAL/Exact_predicates_inexact_constructions_kernel.h>
#endif

inline namespace tvmath {
namespace {

struct place {
    double x, y;
};
using places = std::vector<place>;
using family = places (*)(std::int64_t n);

places square(std::int64_t n) {
    seeded_random random(1);
    places p;
    for (std::int64_t i = 0; i < n; ++i) p.push_back({random.uniform(0, 100), random.uniform(0, 100)});
    return p;
}

// Pixels: every four neighbours on one circle, every row on one line.
places grid(std::int64_t n) {
    auto const side = static_cast<std::int64_t>(std::ceil(std::sqrt(static_cast<double>(n))));
    places p;
    for (std::int64_t i = 0; i < n; ++i) {
        p.push_back({static_cast<double>(i % side), static_cast<double>(i / side)});
    }
    return p;
}

// The same in millimetres, so that no circle of four shows in the digits.
places grid_of_tenths(std::int64_t n) {
    places p = grid(n);
    for (place& q : p) q = {0.1 * q.x, 0.1 * q.y};
    return p;
}

// Points on a circle but for their rounding.
places circle(std::int64_t n) {
    places p;
    for (std::int64_t i = 0; i < n; ++i) {
        double const angle = 6.283185307179586 * static_cast<double>(i) / static_cast<double>(n);
        p.push_back({100 + 20 * std::cos(angle), 50 + 20 * std::sin(angle)});
    }
    return p;
}

// A scanned edge: sorted along a line, 1e-3 of it off.
places scanned_line(std::int64_t n) {
    seeded_random random(2);
    places p;
    for (std::int64_t i = 0; i < n; ++i) {
        double const t = 100 * static_cast<double>(i) / static_cast<double>(n);
        p.push_back({t - 1e-3 * random.normal(), t + 1e-3 * random.normal()});
    }
    return p;
}

// The sides of a slot: where points are added in the order of x, each of the second side's takes over all
// edges of the one before it.
places two_lines(std::int64_t n) {
    places p;
    for (std::int64_t i = 0; i < n; ++i) p.push_back({i % 2 ? 1.0 : 0.0, static_cast<double>(i / 2)});
    return p;
}

places clusters(std::int64_t n) {
    seeded_random random(3);
    places centers = square(20), p;
    for (std::int64_t i = 0; i < n; ++i) {
        place const c = centers[random.below(20)];
        p.push_back({c.x + 0.01 * random.normal(), c.y + 0.01 * random.normal()});
    }
    return p;
}

template <family points>
void triangulate(benchmark::State& state) {
    places const p = points(state.range(0));
    auto const n = static_cast<unsigned int>(p.size());
    std::vector<Delaunay::Edge> edges(Delaunay::delaunay_triangulation__edge_buffer_count(n));
    for (auto _ : state) {
        benchmark::DoNotOptimize(Delaunay::delaunay_triangulation(&p[0].x, n, sizeof(place), edges.data()));
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void list_triangles(benchmark::State& state) {
    places const p = square(state.range(0));
    auto const n = static_cast<unsigned int>(p.size());
    std::vector<Delaunay::Edge> edges(Delaunay::delaunay_triangulation__edge_buffer_count(n));
    auto const count = Delaunay::delaunay_triangulation(&p[0].x, n, sizeof(place), edges.data());
    std::vector<Delaunay::Triad> triads(Delaunay::make_mesh__triad_count(n, count));
    for (auto _ : state) {
        Delaunay::make_mesh(edges.data(), count, triads.data());
        benchmark::DoNotOptimize(triads.data());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

#ifdef TVMATH_HAS_CGAL
// The insertion of a whole range, which sorts it along a space-filling curve.
template <family points>
void triangulate_cgal(benchmark::State& state) {
    using kernel = CGAL::Exact_predicates_inexact_constructions_kernel;
    std::vector<kernel::Point_2> list;
    for (place const& p : points(state.range(0))) list.emplace_back(p.x, p.y);
    for (auto _ : state) {
        CGAL::Delaunay_triangulation_2<kernel> triangulation(list.begin(), list.end());
        benchmark::DoNotOptimize(triangulation.number_of_faces());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
#endif

template <family points>
void register_family(std::string const& name) {
    // 100: a few features; 1e4: a contour or a grid of a plate; 1e6: a scanned surface.
    std::vector<std::int64_t> const sizes = {100, 1000, 10000, 100000, 1000000};
    register_sizes("delaunay_" + name, "tvmath", triangulate<points>, sizes);
#ifdef TVMATH_HAS_CGAL
    register_sizes("delaunay_" + name, "cgal", triangulate_cgal<points>, sizes);
#endif
}

int const registered = [] {
    register_family<square>("square");
    register_family<grid>("grid");
    register_family<grid_of_tenths>("grid_of_tenths");
    register_family<circle>("circle");
    register_family<scanned_line>("scanned_line");
    register_family<two_lines>("two_lines");
    register_family<clusters>("clusters");
    register_sizes("make_mesh", "tvmath", list_triangles, {100, 10000, 1000000});
    return 0;
}();

}  // namespace
}  // namespace tvmath
