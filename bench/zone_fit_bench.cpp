#include "tvmath/zone_fit.h"

#include "support/bench_name.h"
#include "support/seeded_points.h"

#ifdef TVMATH_HAS_CGAL
#include <CGAL/Exact_predicates_inexact_constructions_kernel.h>
#include <CGAL/Min_sphere_of_points_d_traits_3.h>
#include <CGAL/Min_sphere_of_spheres_d.h>
#include <CGAL/Polygon_2.h>
#include <CGAL/Surface_mesh.h>
#include <CGAL/convex_hull_2.h>
#include <CGAL/convex_hull_3.h>
#include <CGAL/min_quadrilateral_2.h>
#endif

inline namespace tvmath {
namespace {

idioms::array<point> as_array(std::vector<point> const& points) {
    return idioms::array<point>(static_cast<unsigned int>(points.size()), points.data());
}

// A straight edge of 40 with 1e-3 of form error.
std::vector<point> measured_edge(std::int64_t n) {
    seeded_random random(3);
    std::vector<point> points;
    for (std::int64_t i = 0; i < n; ++i) {
        double const along = random.uniform(-20, 20), off = 1e-3 * random.normal();
        points.emplace_back(true, 100 + 0.8 * along - 0.6 * off, 50 + 0.6 * along + 0.8 * off);
    }
    return points;
}

// A tilted surface of 40 by 40 with `form_error`.
std::vector<point> measured_surface(std::int64_t n, double form_error) {
    seeded_random random(4);
    std::vector<point> points;
    for (std::int64_t i = 0; i < n; ++i) {
        double const x = random.uniform(-20, 20), y = random.uniform(-20, 20);
        points.emplace_back(true, x, y, 0.1 * x - 0.2 * y + form_error * random.normal());
    }
    return points;
}

// All on the hull: the worst that a list without structure can be.
std::vector<point> spherical_points(std::int64_t n) {
    seeded_random random(5);
    std::vector<point> points;
    for (std::int64_t i = 0; i < n; ++i) {
        double const z = random.uniform(-1, 1), angle = random.uniform(0, 6.283185307179586),
                     r = std::sqrt(1 - z * z);
        points.emplace_back(true, 20 * r * std::cos(angle), 20 * r * std::sin(angle), 20 * z);
    }
    return points;
}

template <class fit>
void run(benchmark::State& state, fit const& once) {
    for (auto _ : state) benchmark::DoNotOptimize(once());
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void line_zone(benchmark::State& state) {
    auto const points = measured_edge(state.range(0));
    run(state, [&] { return line_zone_fit(points); });
}

void plane_zone_of(benchmark::State& state, std::vector<point> const& list) {
    auto const points = as_array(list);
    run(state, [&] { return plane_zone_fit(points); });
}
void surface_zone(benchmark::State& state) {
    plane_zone_of(state, measured_surface(state.range(0), 1e-3));
}
// Without form error all sides are decided by the last digits.
void flat_zone(benchmark::State& state) {
    plane_zone_of(state, measured_surface(state.range(0), 0));
}
void cloud_zone(benchmark::State& state) {
    plane_zone_of(state, space_cloud(state.range(0)));
}
void sphere_zone(benchmark::State& state) {
    plane_zone_of(state, spherical_points(state.range(0)));
}

void seating(benchmark::State& state) {
    auto const points = as_array(measured_surface(state.range(0), 1e-3));
    idioms::array<point> contacts;
    run(state, [&] { return seating_plane_fit(points, true, contacts); });
}

void cloud_in_sphere(benchmark::State& state) {
    auto const points = space_cloud(state.range(0));
    run(state, [&] { return minimum_circumscribed_sphere(points); });
}
void sphere_in_sphere(benchmark::State& state) {
    auto const points = spherical_points(state.range(0));
    run(state, [&] { return minimum_circumscribed_sphere(points); });
}

#ifdef TVMATH_HAS_CGAL
using kernel = CGAL::Exact_predicates_inexact_constructions_kernel;

std::vector<kernel::Point_3> as_cgal(std::vector<point> const& points) {
    std::vector<kernel::Point_3> list;
    for (point const& p : points) list.emplace_back(p.x(), p.y(), p.z());
    return list;
}

void cgal_line_zone(benchmark::State& state) {
    std::vector<kernel::Point_2> points;
    for (point const& p : measured_edge(state.range(0))) points.emplace_back(p.x(), p.y());
    run(state, [&] {
        std::vector<kernel::Point_2> hull;
        CGAL::convex_hull_2(points.begin(), points.end(), std::back_inserter(hull));
        std::vector<kernel::Line_2> strip;
        CGAL::min_strip_2(hull.begin(), hull.end(), std::back_inserter(strip));
        return strip;
    });
}

// Of the plane zone the hull alone: CGAL's width of a hull needs a number type of unlimited length.
void cgal_hull_of(benchmark::State& state, std::vector<point> const& list) {
    auto const points = as_cgal(list);
    run(state, [&] {
        CGAL::Surface_mesh<kernel::Point_3> hull;
        CGAL::convex_hull_3(points.begin(), points.end(), hull);
        return hull.number_of_vertices();
    });
}
void cgal_surface_hull(benchmark::State& state) {
    cgal_hull_of(state, measured_surface(state.range(0), 1e-3));
}
void cgal_flat_hull(benchmark::State& state) {
    cgal_hull_of(state, measured_surface(state.range(0), 0));
}
void cgal_cloud_hull(benchmark::State& state) {
    cgal_hull_of(state, space_cloud(state.range(0)));
}
void cgal_sphere_hull(benchmark::State& state) {
    cgal_hull_of(state, spherical_points(state.range(0)));
}

void cgal_ball_of(benchmark::State& state, std::vector<point> const& list) {
    auto const points = as_cgal(list);
    using traits = CGAL::Min_sphere_of_points_d_traits_3<kernel, double>;
    run(state, [&] { return CGAL::Min_sphere_of_spheres_d<traits>(points.begin(), points.end()).radius(); });
}
void cgal_cloud_in_sphere(benchmark::State& state) {
    cgal_ball_of(state, space_cloud(state.range(0)));
}
void cgal_sphere_in_sphere(benchmark::State& state) {
    cgal_ball_of(state, spherical_points(state.range(0)));
}
#endif

int const registered = [] {
    std::vector<std::int64_t> const sizes = {100, 1000, 10000, 100000, 1000000};
    register_sizes("line_zone", "tvmath", line_zone, sizes);
    register_sizes("plane_zone_surface", "tvmath", surface_zone, sizes);
    register_sizes("plane_zone_flat", "tvmath", flat_zone, sizes);
    register_sizes("plane_zone_cloud", "tvmath", cloud_zone, sizes);
    register_sizes("plane_zone_sphere", "tvmath", sphere_zone, sizes);
    register_sizes("seating_plane", "tvmath", seating, sizes);
    register_sizes("enclosing_sphere_cloud", "tvmath", cloud_in_sphere, sizes);
    register_sizes("enclosing_sphere_sphere", "tvmath", sphere_in_sphere, sizes);
#ifdef TVMATH_HAS_CGAL
    register_sizes("line_zone", "cgal", cgal_line_zone, sizes);
    register_sizes("plane_zone_surface", "cgal_hull", cgal_surface_hull, sizes);
    register_sizes("plane_zone_flat", "cgal_hull", cgal_flat_hull, sizes);
    register_sizes("plane_zone_cloud", "cgal_hull", cgal_cloud_hull, sizes);
    register_sizes("plane_zone_sphere", "cgal_hull", cgal_sphere_hull, sizes);
    register_sizes("enclosing_sphere_cloud", "cgal", cgal_cloud_in_sphere, sizes);
    register_sizes("enclosing_sphere_sphere", "cgal", cgal_sphere_in_sphere, sizes);
#endif
    return 0;
}();

}  // namespace
}  // namespace tvmath
