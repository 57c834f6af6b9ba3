#include "composite_model.h"

#include <algorithm>
#include <cmath>

#include "tvmath/residuals.h"

inline namespace tvmath {
namespace {

// The deviations of a part whose squares add up to the sum. Those of a point are the coordinates of its
// offset: the distance, which `calculate_errors` gives, has no derivative where it is 0.
void append_rows(Geometry_Description const& feature, std::vector<point> const& points,
                 std::vector<double>& rows) {
    auto const* const nominal = dynamic_cast<Point_Description const*>(&feature);
    if (!nominal) {
        calculate_errors(feature, feature.type(), points, rows);
        return;
    }
    rows.clear();
    for (point const& p : points) {
        xyz const d = xyz(p) - xyz(nominal->position);
        rows.insert(rows.end(), {d.x, d.y, d.z});
    }
}

std::vector<point> carried(std::vector<point> points, transform const& t) {
    for (point& p : points) p *= t;
    return points;
}

bool is_solid_kind(Geometry_Description const& feature) {
    unsigned long long const kinds = Plane_Description::type_value | Sphere_Description::type_value |
                                     Cylinder_Description::type_value | Cone_Description::type_value;
    return (feature.type() & kinds) != 0;
}

bool is_solid_point(Geometry_Description const& feature) {
    auto const* const p = dynamic_cast<Point_Description const*>(&feature);
    return p && p->position.is_3d();
}

xyz mean_of(std::vector<point> const& points) {
    xyz sum;
    for (point const& p : points) sum = sum + xyz(p);
    return 1 / static_cast<double>(points.size()) * sum;
}

double size_about(xyz const& center, std::vector<point> const& points) {
    double sum = 0;
    for (point const& p : points) sum += dot(xyz(p) - center, xyz(p) - center);
    return std::sqrt(sum / static_cast<double>(points.size()));
}

}  // namespace

composite_model::composite_model(std::vector<ctl::ref<Geometry_Description>> const& features,
                                 std::vector<std::vector<point>> const& points) {
    if (features.size() != points.size()) return;
    std::vector<point> all;
    std::vector<double> errors;
    bool solid_points = true;
    for (std::size_t i = 0; i < features.size(); ++i) {
        if (points[i].empty()) continue;
        if (!features[i] || calculate_errors(*features[i], features[i]->type(), {}, errors) == 0) return;
        parts.push_back({features[i].address(), points[i], 0});
        for (point& p : parts.back().points) {
            if (p.is_trivial() || !xyz(p).is_finite()) return;
            p.to_location();
        }
        all.insert(all.end(), points[i].begin(), points[i].end());
        solid = solid || is_solid_kind(*features[i]);
        solid_points = solid_points && is_solid_point(*features[i]);
    }
    if (all.empty()) return;
    solid = solid || solid_points;
    pivot = mean_of(all);
    double const extent = size_about(pivot, all);
    if (extent > 0) size = extent;
    // The cube root of the rounding balances the errors of a central difference. A single point has no size
    // of its own.
    for (part& each : parts) {
        double const own = size_about(mean_of(each.points), each.points);
        each.shift = 6e-6 * (own > 0 ? own : size);
    }
    is_valid = std::isfinite(size);
}

composite_pose composite_model::nominal_pose() const {
    return {solid ? transform::rotation(0, 0, 0) : transform::rotation(0), pivot};
}

transform composite_model::to_nominal(composite_pose const& pose) const {
    point const from = (-1 * pivot).location(solid), to = pose.center.location(solid);
    return transform::translation(from) * pose.turn * transform::translation(to);
}

composite_pose composite_model::moved(composite_pose const& pose, double const (&step)[6]) const {
    if (!solid) {
        return {pose.turn * transform::rotation(step[2] / size), pose.center + xyz(step[0], step[1], 0)};
    }
    point const axis(false, step[3], step[4], step[5]);
    return {pose.turn * transform::rotation(axis, axis.length3d() / size),
            pose.center + xyz(step[0], step[1], step[2])};
}

double composite_model::sum_of_squares(composite_pose const& pose) const {
    transform const t = to_nominal(pose);
    std::vector<double> rows;
    double sum = 0;
    for (part const& each : parts) {
        append_rows(*each.feature, carried(each.points, t), rows);
        for (double const r : rows) sum += r * r;
    }
    return sum;
}

// The gradients by the points of the deviations of a part, by central differences, which holds for every kind
// of feature. `rows` becomes the deviations; without z the gradient has none.
std::vector<xyz> composite_model::slopes_of(part const& each, std::vector<point> const& places,
                                            std::vector<double>& rows) const {
    append_rows(*each.feature, places, rows);
    std::size_t const per_point = rows.size() / places.size();
    std::vector<xyz> slopes(rows.size());
    double xyz::*const coordinate[] = {&xyz::x, &xyz::y, &xyz::z};
    std::vector<double> ahead, behind;
    for (unsigned int k = 0; k < (solid ? 3 : 2); ++k) {
        std::vector<point> forward = places, backward = places;
        for (point& p : forward) p[k + 1] += each.shift;
        for (point& p : backward) p[k + 1] -= each.shift;
        append_rows(*each.feature, forward, ahead);
        append_rows(*each.feature, backward, behind);
        for (std::size_t i = 0; i < rows.size(); ++i) {
            // The difference that the coordinates have, which far from the origin is not quite the wanted
            // one.
            double const wide = forward[i / per_point][k + 1] - backward[i / per_point][k + 1];
            slopes[i].*coordinate[k] = (ahead[i] - behind[i]) / wide;
        }
    }
    return slopes;
}

// A motion of the point by t and w x a, with `a` the place of the point seen from the centre, changes its
// deviation by n t + (a x n) w, where n is the gradient of the deviation by the point.
normal_equations composite_model::linearize(composite_pose const& pose) const {
    normal_equations system;
    transform const t = to_nominal(pose);
    std::vector<double> rows;
    for (part const& each : parts) {
        std::vector<point> const places = carried(each.points, t);
        std::vector<xyz> const slopes = slopes_of(each, places, rows);
        std::size_t const per_point = rows.size() / places.size();
        for (std::size_t i = 0; i < rows.size(); ++i) {
            xyz const n = slopes[i], w = 1 / size * cross(xyz(places[i / per_point]) - pose.center, n);
            double const in_space[] = {n.x, n.y, n.z, w.x, w.y, w.z}, in_plane[] = {n.x, n.y, w.z};
            double const* const row = solid ? in_space : in_plane;
            for (unsigned int r = 0; r < unknowns(); ++r) {
                for (unsigned int c = 0; c < unknowns(); ++c) system.normal[r][c] += row[r] * row[c];
                system.gradient[r] += row[r] * rows[i];
            }
        }
    }
    return system;
}

}  // namespace tvmath
