#include <algorithm>
#include <cmath>

#include "algebraic_start.h"
#include "constraint_list.h"
#include "fitting/iterative_solve.h"
#include "geometry/xyz.h"
#include "mean_distance.h"
#include "row_block.h"
#include "sphere_lsf.h"
#include "tvmath/quick_fit.h"

inline namespace tvmath {
namespace geometry_fitter {
namespace {

constexpr counting_rules rules = {
    .unknowns = 4, .centered = {3, any_number}, .through = {1, any_number}, .tangent = {1, any_number}};

// Products of the rows (-dx / d, -dy / d, -dz / d, -1, d - radius) of all points about `start`.
TVMATH_WIDE_LOOP void sum_sphere(std::vector<point> const& points, xyz const start, xyz const at,
                                 double radius, double* sums) {
    row_block<5> rows;
    auto& [gx, gy, gz, minus_one, residual] = rows.column;
    for (auto& column : rows.column) std::fill(std::begin(column), std::end(column), 0.0);
    std::fill(std::begin(minus_one), std::end(minus_one), -1.0);
    for (std::size_t first = 0; first < points.size(); first += rows.size) {
        std::size_t const count = std::min(rows.size, points.size() - first);
        point const* const p = points.data() + first;
        for (std::size_t i = 0; i < count; ++i) {
            gx[i] = p[i].x();
            gy[i] = p[i].y();
            gz[i] = p[i].z();
        }
        for (std::size_t i = 0; i < rows.size; ++i) {
            double const dx = (gx[i] - start.x) - at.x, dy = (gy[i] - start.y) - at.y,
                         dz = (gz[i] - start.z) - at.z;
            double const d = std::sqrt(dx * dx + dy * dy + dz * dz);
            gx[i] = -dx / d;
            gy[i] = -dy / d;
            gz[i] = -dz / d;
            residual[i] = d - radius;
        }
        rows.add_products(sums, count);
    }
}

// Unknowns: centre, relative to the starting one, and radius.
class sphereLSF : public IterativeLSF {
public:
    sphereLSF(std::vector<point> const& fit, std::vector<point> const& through, point const& start,
              double radius)
        : fit_(fit), through_(through), start_(start) {
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
            xyz const at(parameters[0], parameters[1], parameters[2]);
            sum_sphere(fit_, start_, at, parameters[3], sums);
        };
        return solve_model(*this, sum, !through_.empty());
    }

private:
    std::vector<point> const& fit_;
    std::vector<point> through_;
    xyz start_;
};

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
    point start;
    double radius = 0;
    if (!(through.empty() ? sphere_quick_fit(fit, start, radius)
                          : algebraic_fit_through(fit, through, 3, start, radius))) {
        return false;
    }
    point center = start;
    if (!exact) {
        sphereLSF model(fit, through, start, radius);
        if (!model.solve_all()) return false;
        vector const& found = model.parameters;
        center += point(false, found[0], found[1], found[2]);
        radius = found[3];
    }
    if (!xyz(center).is_finite() || !std::isfinite(radius) || !(radius > 0)) return false;
    result = sphere(radius, center);
    return true;
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
