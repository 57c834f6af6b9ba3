#include "tvmath/feature_fit.h"

#include "support/bench_name.h"
#include "support/seeded_points.h"
#include "tvmath/residuals.h"

inline namespace tvmath {
namespace {

idioms::array<point> as_array(std::vector<point> const& points) {
    return idioms::array<point>(static_cast<unsigned int>(points.size()), points.data());
}

// The yardstick: one plain pass over the same memory.
void plain_sum(benchmark::State& state) {
    auto const points = space_cloud(state.range(0));
    for (auto _ : state) {
        double x = 0, y = 0, z = 0;
        for (point const& p : points) {
            x += p.x();
            y += p.y();
            z += p.z();
        }
        benchmark::DoNotOptimize(x + y + z);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void count_points(benchmark::State& state) {
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

// A fit of the points of a cloud, circle, sphere or plane.
template <auto points_of, auto fit>
void run(benchmark::State& state) {
    auto const points = as_array(points_of(state.range(0)));
    for (auto _ : state) benchmark::DoNotOptimize(fit(points));
    count_points(state);
}

using point_array = idioms::array<point>;
point const circle_center(true, 100, 50), plane_center(true, 0, 0, 5);

circle fit_array(point_array const& points) {
    return circle_fit(points);
}
circle fit_about(point_array const& points) {
    return circle_centered_fit(circle_center, points);
}
circle fit_arc(point_array const& points) {
    double sweep = 0;
    return arc_fit(points, sweep);
}
plane fit_plane_about(point_array const& points) {
    return plane_centered_fit(plane_center, points);
}
plane fit_parallel_plane(point_array const& points) {
    return plane_parallel_fit(plane(plane_center, point(false, -0.3, 0.2, 1)), points);
}

void fit_sphere_about(benchmark::State& state) {
    auto const points = rippled_sphere(state.range(0));
    for (auto _ : state) benchmark::DoNotOptimize(sphere_centered_fit(point(true, 1, 2, 3), points));
    count_points(state);
}

template <class record, auto make>
void residuals(benchmark::State& state) {
    record feature;
    make(feature);
    auto const points = space_cloud(state.range(0));
    std::vector<double> errors;
    for (auto _ : state) {
        calculate_errors(feature, points, errors);
        benchmark::DoNotOptimize(errors.data());
    }
    count_points(state);
}

constexpr double half_length = 15, half_width = 9;
point const middle(true, 1, 2), middle_in_space(true, 1, 2, 3), axis(false, 1, 2, 9);

void set_point(Point_Description& d) {
    d.position = middle_in_space;
}
void set_line(Segment_Description& d) {
    d.geometry = line(middle, point(true, 9, 7));
}
void set_circle(Circle_Description& d) {
    d.geometry = circle(half_length, middle);
}
void set_ellipse(Ellipse_Description& d) {
    d.geometry = ellipse(half_length, half_width, 0.3, middle);
}
void set_plane(Plane_Description& d) {
    d.geometry = plane(middle_in_space, axis);
}
void set_sphere(Sphere_Description& d) {
    d.geometry = sphere(half_length, middle_in_space);
}
void set_cylinder(Cylinder_Description& d) {
    d.geometry = cylinder(half_length, 40, middle_in_space, axis);
}
void set_cone(Cone_Description& d) {
    d.geometry = cone(middle_in_space, middle_in_space + axis, 5, 9);
}
void set_rectangle(Rectangle_Description& d) {
    d.geometry = rectangle(2 * half_length, 2 * half_width, 0.3, middle);
}
void set_gap(Gap_Description& d) {
    d.geometry = gap(2 * half_length, 2 * half_width, 0.3, middle);
}
void set_slot(Slot_Description& d) {
    d.geometry = slot(half_length, half_width, 0.3, middle);
}

void figures(benchmark::State& state) {
    seeded_random random(5);
    std::vector<double> errors(static_cast<std::size_t>(state.range(0)));
    for (double& e : errors) e = random.normal();
    for (auto _ : state) {
        benchmark::DoNotOptimize(get_form(errors) + get_profile_error(errors) + get_stdev(errors, 3));
    }
    count_points(state);
}

int const registered = [] {
    // 1e2: a touched feature; 1e4: an edge tool; 1e6: beyond every cache.
    std::vector<std::int64_t> const sizes = {100, 10000, 1000000};
    register_sizes("line_fit", "tvmath", run<space_cloud, line_fit>, sizes);
    register_sizes("circle_array_fit", "tvmath", run<rippled_circle, fit_array>, sizes);
    register_sizes("circle_centered_fit", "tvmath", run<rippled_circle, fit_about>, sizes);
    register_sizes("arc_fit", "tvmath", run<rippled_circle, fit_arc>, sizes);
    register_sizes("sphere_centered_fit", "tvmath", fit_sphere_about, sizes);
    register_sizes("plane_centered_fit", "tvmath", run<rippled_plane, fit_plane_about>, sizes);
    register_sizes("plane_parallel_fit", "tvmath", run<rippled_plane, fit_parallel_plane>, sizes);
    register_sizes("residuals_point", "tvmath", residuals<Point_Description, set_point>, sizes);
    register_sizes("residuals_line", "tvmath", residuals<Segment_Description, set_line>, sizes);
    register_sizes("residuals_circle", "tvmath", residuals<Circle_Description, set_circle>, sizes);
    register_sizes("residuals_ellipse", "tvmath", residuals<Ellipse_Description, set_ellipse>, sizes);
    register_sizes("residuals_rectangle", "tvmath", residuals<Rectangle_Description, set_rectangle>, sizes);
    register_sizes("residuals_gap", "tvmath", residuals<Gap_Description, set_gap>, sizes);
    register_sizes("residuals_slot", "tvmath", residuals<Slot_Description, set_slot>, sizes);
    register_sizes("residuals_plane", "tvmath", residuals<Plane_Description, set_plane>, sizes);
    register_sizes("residuals_sphere", "tvmath", residuals<Sphere_Description, set_sphere>, sizes);
    register_sizes("residuals_cylinder", "tvmath", residuals<Cylinder_Description, set_cylinder>, sizes);
    register_sizes("residuals_cone", "tvmath", residuals<Cone_Description, set_cone>, sizes);
    register_sizes("residual_figures", "tvmath", figures, sizes);
    for (char const* const family : {"line_fit", "plane_parallel_fit", "residuals_circle"}) {
        register_sizes(family, "plain_sum", plain_sum, sizes);
    }
    return 0;
}();

}  // namespace
}  // namespace tvmath
