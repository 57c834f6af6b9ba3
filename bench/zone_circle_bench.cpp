#include "tvmath/zone_circle.h"

#include <algorithm>
#include <cmath>

#include "support/bench_name.h"
#include "support/seeded_points.h"

#ifdef TVMATH_HAS_CGAL
#include <CGAL/Cartesian.h>
#include <CGAL/Min_sphere_of_points_d_traits_2.h>
#include <CGAL/Min_sphere_of_spheres_d.h>
#endif

inline namespace tvmath {
namespace {

// A disc full of points: what is no contour, and the worst that a search for empty circles can meet.
std::vector<point> filled_disc(std::int64_t n) {
    seeded_random random(4);
    std::vector<point> points;
    while (points.size() < static_cast<std::size_t>(n)) {
        double const x = random.uniform(-20, 20), y = random.uniform(-20, 20);
        if (x * x + y * y < 400) points.emplace_back(true, x, y);
    }
    return points;
}

template <circle (*fit)(std::vector<point> const&), std::vector<point> (*make)(std::int64_t)>
void run(benchmark::State& state) {
    auto const points = make(state.range(0));
    for (auto _ : state) {
        if (fit(points).is_trivial()) state.SkipWithError("no result");
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

// The yardstick: one pass that a method cannot do without, the least and greatest distance from a centre.
template <std::vector<point> (*make)(std::int64_t)>
void one_pass(benchmark::State& state) {
    auto const points = make(state.range(0));
    for (auto _ : state) {
        double least = infinity, greatest = 0;
        for (point const& p : points) {
            double const dx = p.x() - 100, dy = p.y() - 50, d = std::sqrt(dx * dx + dy * dy);
            least = std::min(least, d);
            greatest = std::max(greatest, d);
        }
        benchmark::DoNotOptimize(least);
        benchmark::DoNotOptimize(greatest);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

#ifdef TVMATH_HAS_CGAL
// From its own points, so that no conversion is counted.
template <std::vector<point> (*make)(std::int64_t)>
void cgal_circle(benchmark::State& state) {
    using kernel = CGAL::Cartesian<double>;
    using traits = CGAL::Min_sphere_of_points_d_traits_2<kernel, double>;
    std::vector<kernel::Point_2> points;
    for (point const& p : make(state.range(0))) points.emplace_back(p.x(), p.y());
    for (auto _ : state) {
        CGAL::Min_sphere_of_spheres_d<traits> smallest(points.begin(), points.end());
        benchmark::DoNotOptimize(smallest.radius());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
#endif

int const registered = [] {
    // From a touched hole to a scan beyond every cache.
    std::vector<std::int64_t> const sizes = {100, 1000, 10000, 100000, 1000000};
    register_sizes("zone_circle", "tvmath", run<minimum_zone_circle, rippled_circle>, sizes);
    register_sizes("zone_circle", "one_pass", one_pass<rippled_circle>, sizes);
    register_sizes("inscribed_circle", "tvmath", run<maximum_inscribed_circle, rippled_circle>, sizes);
    register_sizes("inscribed_circle", "one_pass", one_pass<rippled_circle>, sizes);
    register_sizes("inscribed_disc", "tvmath", run<maximum_inscribed_circle, filled_disc>, sizes);
    register_sizes("circumscribed_circle", "tvmath", run<minimum_circumscribed_circle, rippled_circle>,
                   sizes);
    register_sizes("circumscribed_disc", "tvmath", run<minimum_circumscribed_circle, filled_disc>, sizes);
#ifdef TVMATH_HAS_CGAL
    register_sizes("circumscribed_circle", "cgal", cgal_circle<rippled_circle>, sizes);
    register_sizes("circumscribed_disc", "cgal", cgal_circle<filled_disc>, sizes);
#endif
    register_sizes("circumscribed_circle", "one_pass", one_pass<rippled_circle>, sizes);
    return 0;
}();

}  // namespace
}  // namespace tvmath
