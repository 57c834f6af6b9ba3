#include "circle_lsf.h"

#include <algorithm>
#include <cmath>

#include "algebraic_start.h"
#include "fitting/iterative_solve.h"
#include "planar.h"
#include "row_block.h"
#include "tvmath/quick_fit.h"

inline namespace tvmath {
namespace geometry_fitter {
namespace {

struct plane_vector {
    double x, y;
};

// Products of the rows (-dx / d, -dy / d, -1, d - radius) of all points about `start`.
TVMATH_WIDE_LOOP void sum_circle(std::vector<point> const& points, plane_vector start,
                                 planar_circle const& at, double* sums) {
    row_block<4> rows;
    auto& [gx, gy, minus_one, residual] = rows.column;
    std::fill(std::begin(minus_one), std::end(minus_one), -1.0);
    std::fill(std::begin(gx), std::end(gx), 0.0);
    std::fill(std::begin(gy), std::end(gy), 0.0);
    for (std::size_t first = 0; first < points.size(); first += rows.size) {
        std::size_t const count = std::min(rows.size, points.size() - first);
        point const* const p = points.data() + first;
        for (std::size_t i = 0; i < count; ++i) {
            gx[i] = p[i].x();
            gy[i] = p[i].y();
        }
        for (std::size_t i = 0; i < rows.size; ++i) {
            double const dx = (gx[i] - start.x) - at.x, dy = (gy[i] - start.y) - at.y;
            double const d = std::sqrt(dx * dx + dy * dy);
            gx[i] = -dx / d;
            gy[i] = -dy / d;
            residual[i] = d - at.radius;
        }
        rows.add_products(sums, count);
    }
}

// Unknowns: centre, relative to the starting one, and radius.
class circleLSF : public IterativeLSF {
public:
    circleLSF(circle_conditions const& known, planar_circle const& start)
        : known_(known), start_{start.x, start.y} {
        double const values[] = {0.0, 0.0, start.radius};
        parameters = vector(3, values);
        // The lines and points move with the coordinates.
        for (point& p : known_.through) p -= point(false, start.x, start.y);
        for (transform& l : known_.touched) l.translate(-start.x, -start.y);
    }

    double residual(point p, vector& gradient) override {
        gradient.redim(3);
        return distance_row(p.x() - parameters[0], p.y() - parameters[1], gradient);
    }

    vector constraints(matrix& jacobian) override {
        std::size_t const m = known_.through.size() + known_.touched.size();
        vector values(static_cast<unsigned int>(m));
        if (m == 0) return values;
        jacobian = matrix(dim(values), 3);
        point const centre(true, parameters[0], parameters[1]);
        unsigned int i = 0;
        for (point const& p : known_.through) {
            values(i) = distance_row(p.x() - centre.x(), p.y() - centre.y(), jacobian(i));
            ++i;
        }
        for (transform const& l : known_.touched) {
            // The foot counts as fixed during the step: it moves along the line, across the distance.
            point const d = foot_on_line(centre, l) - centre;
            values(i) = distance_row(d.x(), d.y(), jacobian(i));
            ++i;
        }
        return values;
    }

    bool solve_all() {
        auto const sum = [this](double* sums) { sum_circle(known_.fit, start_, present(), sums); };
        return solve_model(*this, sum, !known_.through.empty());
    }

    planar_circle present() const { return {parameters[0], parameters[1], parameters[2]}; }

private:
    // A point at (dx, dy) from the centre; on the centre itself the row is NaN, and the iteration fails.
    double distance_row(double dx, double dy, vector& gradient) const {
        double const d = std::sqrt(dx * dx + dy * dy);
        double* const g = gradient.lazycopy_begin();
        g[0] = -dx / d;
        g[1] = -dy / d;
        g[2] = -1.0;
        return d - parameters[2];
    }

    circle_conditions known_;
    plane_vector start_;
};

double mean_height(circle_conditions const& known, point const& centre) {
    std::vector<point> others = known.through;
    for (transform const& l : known.touched) others.push_back(foot_on_line(centre, l));
    if (known.fit.empty()) return point_fit(others).z();
    double const z = point_fit(known.fit).z();
    double above = 0;
    for (point const& p : others) above += p.z() - z;
    return z + above / static_cast<double>(known.fit.size() + others.size());
}

}  // namespace

bool planar_circle::is_usable() const {
    return std::isfinite(x) && std::isfinite(y) && std::isfinite(radius) && radius > 0;
}

bool starting_circle(circle_conditions const& known, planar_circle& start) {
    if (!known.touched.empty()) return starting_tangent_circle(known, start);
    point center;
    double radius = 0;
    bool const found = known.through.empty()
                           ? circle_quick_fit(known.fit, center, radius)
                           : algebraic_fit_through(known.fit, known.through, 2, center, radius);
    start = {center.x(), center.y(), radius};
    return found && start.is_usable();
}

bool least_squares_circle(circle_conditions const& known, circle& result) {
    std::size_t const conditions = known.fit.size() + known.through.size() + known.touched.size();
    if (conditions < 3) return false;
    bool const exact = conditions == 3;
    if (exact && !known.through.empty()) {
        // Nothing is left to be squared, so all points are alike.
        std::vector<point> all = known.fit;
        all.insert(all.end(), known.through.begin(), known.through.end());
        return least_squares_circle({all, {}, known.touched}, result);
    }
    planar_circle start;
    if (!starting_circle(known, start)) return false;
    planar_circle found = {0.0, 0.0, start.radius};
    if (!exact) {
        circleLSF model(known, start);
        if (!model.solve_all()) return false;
        found = model.present();
    }
    found.x += start.x;
    found.y += start.y;
    if (!found.is_usable()) return false;
    point const centre(true, found.x, found.y);
    result = circle(found.radius, point(true, found.x, found.y, mean_height(known, centre)));
    return true;
}

}  // namespace geometry_fitter
}  // namespace tvmath
