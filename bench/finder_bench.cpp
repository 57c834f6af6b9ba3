#include <array>
#include <cmath>
#include <type_traits>

#include "support/bench_name.h"
#include "support/seeded_points.h"
#include "tvmath/point_finder.h"
#include "tvmath/polyline_finder.h"

#if __has_include(<nanoflann.hpp>)
#define TVMATH_HAS_NANOFLANN
#include <nanoflann.hpp>
#endif

inline namespace tvmath {
namespace {

template <unsigned int dimension>
using finder_of = std::conditional_t<dimension == 2, PointFinder2D, PointFinder3D>;
template <unsigned int dimension>
using line_finder_of = std::conditional_t<dimension == 2, PolyLineFinder2D, PolyLineFinder3D>;

using list_of_size = std::vector<point> (*)(std::int64_t);

std::size_t constexpr queries_in_a_round = 1 << 18;

// A scan of `n` points along a spiral of eight turns, with noise of a tenth of their distance.
std::vector<point> spiral(std::int64_t n, std::uint64_t seed) {
    seeded_random random(seed);
    double const noise = 75 / static_cast<double>(n);
    std::vector<point> points;
    for (std::int64_t i = 0; i < n; ++i) {
        double const part = static_cast<double>(i) / static_cast<double>(n), angle = 16 * 3.14159265 * part;
        double const r = 10 + 10 * part;
        points.emplace_back(true, r * std::cos(angle) + noise * random.normal(),
                            r * std::sin(angle) + noise * random.normal(), std::sin(3 * angle));
    }
    return points;
}
std::vector<point> scan(std::int64_t n) {
    return spiral(n, 5);
}
// The same path once more: one by one the queries are close to the points, and to the one before.
std::vector<point> second_scan(std::int64_t) {
    return spiral(queries_in_a_round, 6);
}

// A smooth way through the cloud in steps of a quarter of the distance between neighbours, as a measuring run
// asks.
template <unsigned int dimension>
std::vector<point> coherent_queries(std::int64_t points) {
    double const step = 0.5 / std::pow(static_cast<double>(points), 1.0 / dimension);
    std::vector<point> queries;
    for (std::size_t i = 0; i < queries_in_a_round; ++i) {
        double const t = step * static_cast<double>(i);
        queries.emplace_back(true, 18 * std::sin(t + 0.3), 17 * std::cos(0.7 * t),
                             16 * std::sin(0.4 * t - 1));
    }
    return queries;
}

std::vector<point> random_queries(std::int64_t) {
    std::vector<point> queries;
    seeded_random random(4);
    for (std::size_t i = 0; i < queries_in_a_round; ++i) {
        queries.emplace_back(true, random.uniform(-20, 20), random.uniform(-20, 20), random.uniform(-20, 20));
    }
    return queries;
}

template <class finder, list_of_size cloud>
void build(benchmark::State& state) {
    auto const points = cloud(state.range(0));
    for (auto _ : state) {
        finder fresh;
        fresh.construct(points);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

// Time per query, going round in the list of queries.
template <class function>
void time_queries(benchmark::State& state, std::vector<point> const& queries, function const& ask) {
    std::size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(ask(queries[i]));
        if (++i == queries.size()) i = 0;
    }
}

template <unsigned int dimension, list_of_size cloud, list_of_size queries>
void nearest(benchmark::State& state) {
    finder_of<dimension> finder;
    finder.construct(cloud(state.range(0)));
    time_queries(state, queries(state.range(0)), [&](point const& q) {
        unsigned int index = 0;
        finder.find_closest(q, index);
        return index;
    });
}

template <unsigned int dimension, list_of_size cloud, list_of_size queries>
void farthest(benchmark::State& state) {
    finder_of<dimension> finder;
    finder.construct(cloud(state.range(0)));
    time_queries(state, queries(state.range(0)), [&](point const& q) {
        unsigned int index = 0;
        finder.find_farthest(q, index);
        return index;
    });
}

template <unsigned int dimension, list_of_size queries>
void nearest_on_polyline(benchmark::State& state) {
    line_finder_of<dimension> finder;
    finder.construct(scan(state.range(0)));
    time_queries(state, queries(state.range(0)), [&](point const& q) { return finder.find_closest(q).x(); });
}

#ifdef TVMATH_HAS_NANOFLANN
// The coordinates side by side, as nanoflann likes them best.
template <unsigned int dimension>
struct flat_cloud {
    explicit flat_cloud(std::vector<point> const& points) {
        for (point const& p : points) {
            coordinates.push_back({p.x(), p.y()});
            if constexpr (dimension == 3) coordinates.back()[2] = p.z();
        }
    }
    std::size_t kdtree_get_point_count() const { return coordinates.size(); }
    double kdtree_get_pt(std::uint32_t i, std::size_t axis) const { return coordinates[i][axis]; }
    template <class box>
    bool kdtree_get_bbox(box&) const {
        return false;
    }

    std::vector<std::array<double, dimension>> coordinates;
};

template <unsigned int dimension>
using nanoflann_tree = nanoflann::KDTreeSingleIndexAdaptor<
    nanoflann::L2_Simple_Adaptor<double, flat_cloud<dimension>, double, std::uint32_t>, flat_cloud<dimension>,
    int{dimension}, std::uint32_t>;

template <unsigned int dimension>
void nanoflann_build(benchmark::State& state) {
    flat_cloud<dimension> const cloud(space_cloud(state.range(0)));
    for (auto _ : state) {
        nanoflann_tree<dimension> tree(dimension, cloud);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

template <unsigned int dimension, list_of_size cloud, list_of_size queries>
void nanoflann_nearest(benchmark::State& state) {
    flat_cloud<dimension> const flat(cloud(state.range(0)));
    nanoflann_tree<dimension> tree(dimension, flat);
    time_queries(state, queries(state.range(0)), [&](point const& q) {
        std::array<double, 3> const at = {q.x(), q.y(), q.z()};
        std::uint32_t index = 0;
        double distance = 0;
        tree.knnSearch(at.data(), 1, &index, &distance);
        return index;
    });
}
#endif

template <unsigned int dimension>
void register_all() {
    std::string const name = dimension == 2 ? "finder2d_" : "finder3d_";
    // 100: the points of a bolt circle; 1e4: a scanned contour; 1e6: a surface, beyond the inner caches.
    std::vector<std::int64_t> const sizes = {100, 10000, 1000000};
    auto constexpr coherent = coherent_queries<dimension>;
    register_sizes(name + "build", "tvmath", build<finder_of<dimension>, space_cloud>, sizes);
    register_sizes(name + "scan", "tvmath", nearest<dimension, scan, second_scan>, sizes);
    register_sizes(name + "coherent", "tvmath", nearest<dimension, space_cloud, coherent>, sizes);
    register_sizes(name + "random", "tvmath", nearest<dimension, space_cloud, random_queries>, sizes);
    register_sizes(name + "farthest", "tvmath", farthest<dimension, space_cloud, random_queries>, sizes);
    register_sizes(name + "line_build", "tvmath", build<line_finder_of<dimension>, scan>, sizes);
    register_sizes(name + "line_scan", "tvmath", nearest_on_polyline<dimension, second_scan>, sizes);
    register_sizes(name + "line_random", "tvmath", nearest_on_polyline<dimension, random_queries>, sizes);
#ifdef TVMATH_HAS_NANOFLANN
    register_sizes(name + "build", "nanoflann", nanoflann_build<dimension>, sizes);
    register_sizes(name + "scan", "nanoflann", nanoflann_nearest<dimension, scan, second_scan>, sizes);
    register_sizes(name + "coherent", "nanoflann", nanoflann_nearest<dimension, space_cloud, coherent>,
                   sizes);
    register_sizes(name + "random", "nanoflann", nanoflann_nearest<dimension, space_cloud, random_queries>,
                   sizes);
#endif
}

int const registered = [] {
    register_all<2>();
    register_all<3>();
    return 0;
}();

}  // namespace
}  // namespace tvmath
