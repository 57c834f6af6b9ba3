#include <memory>

#include "support/bench_name.h"
#include "support/seeded_points.h"
#include "tvmath/point_finder.h"

#if __has_include(<nanoflann.hpp>)
#define TVMATH_HAS_NANOFLANN
#include <nanoflann.hpp>
#endif

inline namespace tvmath {
namespace {

template <unsigned int dimension>
using finder_of = std::conditional_t<dimension == 2, PointFinder2D, PointFinder3D>;

std::size_t constexpr queries_in_a_round = 1 << 18;

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

template <unsigned int>
std::vector<point> random_queries(std::int64_t) {
    std::vector<point> queries;
    seeded_random random(4);
    for (std::size_t i = 0; i < queries_in_a_round; ++i) {
        queries.emplace_back(true, random.uniform(-20, 20), random.uniform(-20, 20), random.uniform(-20, 20));
    }
    return queries;
}

template <unsigned int dimension>
void build(benchmark::State& state) {
    auto const points = space_cloud(state.range(0));
    finder_of<dimension> finder;
    for (auto _ : state) {
        finder_of<dimension> fresh;
        fresh.construct(points);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

// Time per query, going round in the list of queries.
template <class ask>
void time_queries(benchmark::State& state, std::vector<point> const& queries, ask one) {
    std::size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(one(queries[i]));
        if (++i == queries.size()) i = 0;
    }
}

template <unsigned int dimension, std::vector<point> (*queries)(std::int64_t)>
void nearest(benchmark::State& state) {
    finder_of<dimension> finder;
    finder.construct(space_cloud(state.range(0)));
    time_queries(state, queries(state.range(0)), [&](point const& q) {
        unsigned int index = 0;
        finder.find_closest(q, index);
        return index;
    });
}

template <unsigned int dimension, std::vector<point> (*queries)(std::int64_t)>
void farthest(benchmark::State& state) {
    finder_of<dimension> finder;
    finder.construct(space_cloud(state.range(0)));
    time_queries(state, queries(state.range(0)), [&](point const& q) {
        unsigned int index = 0;
        finder.find_farthest(q, index);
        return index;
    });
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
    dimension, std::uint32_t>;

template <unsigned int dimension>
void nanoflann_build(benchmark::State& state) {
    flat_cloud<dimension> const cloud(space_cloud(state.range(0)));
    for (auto _ : state) {
        nanoflann_tree<dimension> tree(dimension, cloud);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

template <unsigned int dimension, std::vector<point> (*queries)(std::int64_t)>
void nanoflann_nearest(benchmark::State& state) {
    flat_cloud<dimension> const cloud(space_cloud(state.range(0)));
    nanoflann_tree<dimension> tree(dimension, cloud);
    time_queries(state, queries(state.range(0)), [&](point const& q) {
        std::array<double, 3> const at = {q.x(), q.y(), q.z()};
        std::uint32_t index = 0;
        double distance = 0;
        tree.knnSearch(at.data(), 1, &index, &distance);
        return index;
    });
}
#endif

int const registered = [] {
    // 100: the points of a bolt circle; 1e4: a scanned contour; 1e6: a surface, beyond the inner caches.
    std::vector<std::int64_t> const sizes = {100, 10000, 1000000};
    register_sizes("finder2d_build", "tvmath", build<2>, sizes);
    register_sizes("finder3d_build", "tvmath", build<3>, sizes);
    register_sizes("finder2d_nearest_coherent", "tvmath", nearest<2, coherent_queries<2>>, sizes);
    register_sizes("finder3d_nearest_coherent", "tvmath", nearest<3, coherent_queries<3>>, sizes);
    register_sizes("finder2d_nearest_random", "tvmath", nearest<2, random_queries<2>>, sizes);
    register_sizes("finder3d_nearest_random", "tvmath", nearest<3, random_queries<3>>, sizes);
    register_sizes("finder2d_farthest_random", "tvmath", farthest<2, random_queries<2>>, sizes);
    register_sizes("finder3d_farthest_random", "tvmath", farthest<3, random_queries<3>>, sizes);
#ifdef TVMATH_HAS_NANOFLANN
    register_sizes("finder2d_build", "nanoflann", nanoflann_build<2>, sizes);
    register_sizes("finder3d_build", "nanoflann", nanoflann_build<3>, sizes);
    register_sizes("finder2d_nearest_coherent", "nanoflann", nanoflann_nearest<2, coherent_queries<2>>,
                   sizes);
    register_sizes("finder3d_nearest_coherent", "nanoflann", nanoflann_nearest<3, coherent_queries<3>>,
                   sizes);
    register_sizes("finder2d_nearest_random", "nanoflann", nanoflann_nearest<2, random_queries<2>>, sizes);
    register_sizes("finder3d_nearest_random", "nanoflann", nanoflann_nearest<3, random_queries<3>>, sizes);
#endif
    return 0;
}();

}  // namespace
}  // namespace tvmath
