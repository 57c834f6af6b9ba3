#include <cmath>

#include "algebraic_start.h"
#include "constraint_list.h"
#include "fitting/iterative_solve.h"
#include "fitting/point_lists.h"
#include "geometry/xyz.h"
#include "mean_distance.h"
#include "radial_sums.h"
#include "sphere_lsf.h"
#include "tvmath/quick_fit.h"

inline namespace tvmath {
namespace geometry_fitter {
namespace {

constexpr counting_rules rules = {
    .unknowns = 4, .centered = {3, any_number}, .through = {1, any_number}, .tangent = {1, any_number}};

TVMATH_WIDE_LOOP void sum_sphere(point_span points, double const* start, double const* offset, double radius,
                                 double* sums) {
    radial_sums<3> rows(start, offset, radius);
    rows.add(points);
    rows.write(points.size(), sums);
}

// Unknowns: centre, relative to the starting one, and radius.
class sphereLSF : public IterativeLSF {
public:
    sphereLSF(point_span fit, std::vector<point> const& through, point const& start, double radius)
        : fit_(fit), through_(through), start_{start.x(), start.y(), start.z()} {
        double const values[] = {0.0, 0.0, 0.0, radius};
        parameters = vector(4, values);
        for (point& p : through_) p -= point(false, start.x(), start.y(), start.z());
    }

    // A point on the centre itself gives NaN, and the iteration fails.
    double residual(point p, vector& gradient) override {
        gradient.redim(4);
        double const dx = p.x() - parameters[0], dy = p.y() - parameters[1], dz = p.z() - parameters[2];
        double const d = std::sqrt(dx * dx + dy * dy + dz * dz);
        double* const g = gradient.lazycopy_begin();
        g[0] = -dx / d;
        g[1] = -dy / d;
        g[2] = -dz / d;
        g[3] = -1.0;
        return d - parameters[3];
    }

    vector constraints(matrix& jacobian) override {
        vector values(static_cast<unsigned int>(through_.size()));
        if (through_.empty()) return values;
        jacobian = matrix(dim(values), 4);
        for (unsigned int i = 0; i < dim(values); ++i) values(i) = residual(through_[i], jacobian(i));
        return values;
    }

    bool solve_all() {
        auto const sum = [this](double* sums) {
            sum_sphere(fit_, start_, parameters.begin(), parameters[3], sums);
        };
        return solve_model(*this, sum, !through_.empty());
    }

private:
    point_span fit_;
    std::vector<point> through_;
    double start_[3];
};

bool is_usable(point const& center, double radius) {
    return xyz(center).is_finite() && std::isfinite(radius) && radius > 0;
}

// The sphere of least squares in place of one that is near it.
bool iterate(point_span fit, std::vector<point> const& through, point& center, double& radius) {
    sphereLSF model(fit, through, center, radius);
    if (!model.solve_all()) return false;
    vector const& found = model.parameters;
    point const moved = center + point(false, found[0], found[1], found[2]);
    if (!is_usable(moved, found[3])) return false;
    center = moved;
    radius = found[3];
    return true;
}

double radius_about(point const& center, constraint* list) {
    if (auto const* c = next_of<through_cnst>(list)) return distance3d(center, c->place);
    if (auto const* c = next_of<tangent_cnst>(list)) {
        // The normal from the axes of the plane, which need not be orthogonal.
        xyz const normal = unit(cross(xyz(c->touched.basis(1)), xyz(c->touched.basis(2))));
        return std::fabs(dot(xyz(center) - xyz(c->touched.basis(0)), normal));
    }
    return mean_distance(fit_points(list), [&](point const& p) { return distance3d(p, center); });
}

}  // namespace

bool least_squares_sphere(std::vector<point> const& fit, std::vector<point> const& through, sphere& result) {
    std::size_t const conditions = fit.size() + through.size();
    if (conditions < 4) return false;
    bool const exact = conditions == 4;
    if (exact && !through.empty()) {
        // Nothing is left to be squared, so all points are alike.
        std::vector<point> all = fit;
        all.insert(all.end(), through.begin(), through.end());
        return least_squares_sphere(all, {}, result);
    }
    // Three points, repeated, would leave the choice of a sphere to rounding.
    if (through.empty() && count_distinct(fit, 4) < 4) return false;
    point center;
    double radius = 0;
    bool const started = through.empty() ? sphere_quick_fit(fit, center, radius)
                                         : algebraic_fit_through(fit, through, 3, center, radius);
    if (!started) return false;
    if (exact ? !is_usable(center, radius) : !iterate(fit, through, center, radius)) return false;
    result = sphere(radius, center);
    return true;
}

bool refine_sphere(point_span points, point& center, double& radius) {
    return iterate(points, {}, center, radius);
}

bool sphere_fitter::can_add(std::type_info const& kind) const {
    return has_room(rules, first_, kind);
}

int sphere_fitter::degrees_of_freedom() const {
    return redundancy(rules, first_);
}

bool sphere_fitter::result(Geometry_Description& description) {
    if (degrees_of_freedom() < 0 || !prepare(first_)) return false;
    Sphere_Description found;
    if (auto const* c = next_of<centered_cnst>(first_)) {
        found.geometry = sphere(radius_about(c->center, first_), c->center);
    } else if (next_of<tangent_cnst>(first_) ||
               !least_squares_sphere(fit_points(first_), through_points(first_), found.geometry)) {
        return false;
    }
    return std::isfinite(found.geometry.radius()) && !_isnan(found.geometry) && description.assign(found);
}

}  // namespace geometry_fitter
}  // namespace tvmath
