#include "circle_lsf.h"

#include <algorithm>
#include <cmath>

#include "algebraic_start.h"
#include "fitting/iterative_solve.h"
#include "fitting/point_lists.h"
#include "planar.h"
#include "radial_sums.h"
#include "tvmath/quick_fit.h"

inline namespace tvmath {
namespace geometry_fitter {
namespace {

TVMATH_WIDE_LOOP void sum_circle(point_span points, double const* start, double const* offset, double radius,
                                 double* sums) {
    radial_sums<2> rows(start, offset, radius);
    rows.add(points);
    rows.write(points.size(), sums);
}

// Unknowns: centre, relative to the starting one, and radius.
class circleLSF : public IterativeLSF {
public:
    circleLSF(point_span fit, std::vector<point> const& through, std::vector<transform> const& touched,
              planar_circle const& start)
        : fit_(fit), through_(through), touched_(touched), start_{start.x, start.y} {
        double const values[] = {0.0, 0.0, start.radius};
        parameters = vector(3, values);
        // The lines and points move with the coordinates.
        for (point& p : through_) p -= point(false, start.x, start.y);
        for (transform& l : touched_) l.translate(-start.x, -start.y);
    }

    double residual(point p, vector& gradient) override {
        gradient.redim(3);
        return distance_row(p.x() - parameters[0], p.y() - parameters[1], gradient);
    }

    vector constraints(matrix& jacobian) override {
        std::size_t const m = through_.size() + touched_.size();
        vector values(static_cast<unsigned int>(m));
        if (m == 0) return values;
        jacobian = matrix(dim(values), 3);
        point const centre(true, parameters[0], parameters[1]);
        unsigned int i = 0;
        for (point const& p : through_) {
            values(i) = distance_row(p.x() - centre.x(), p.y() - centre.y(), jacobian(i));
            ++i;
        }
        for (transform const& l : touched_) {
            // The foot counts as fixed during the step: it moves along the line, across the distance.
            point const d = foot_on_line(centre, l) - centre;
            values(i) = distance_row(d.x(), d.y(), jacobian(i));
            ++i;
        }
        return values;
    }

    bool solve_all() {
        auto const sum = [this](double* sums) {
            sum_circle(fit_, start_, parameters.begin(), parameters[2], sums);
        };
        return solve_model(*this, sum, !through_.empty());
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

    point_span fit_;
    std::vector<point> through_;
    std::vector<transform> touched_;
    double start_[2];
};

// The circle of least squares in place of one that is near it.
bool iterate(point_span fit, std::vector<point> const& through, std::vector<transform> const& touched,
             planar_circle& circle) {
    circleLSF model(fit, through, touched, circle);
    if (!model.solve_all()) return false;
    planar_circle found = model.present();
    found.x += circle.x;
    found.y += circle.y;
    if (!found.is_usable()) return false;
    circle = found;
    return true;
}

bool circle_of_points(std::vector<point> const& points, circle& result) {
    point center;
    double radius = 0;
    // Two points, repeated, would leave the choice of a circle to rounding.
    if (count_distinct(points, 3) < 3 || !circle_quick_fit(points, center, radius)) return false;
    if (points.size() == 3 ? !planar_circle{center.x(), center.y(), radius}.is_usable()
                           : !refine_circle(points, center, radius)) {
        return false;
    }
    result = circle(radius, center);
    return true;
}

bool starting_circle(circle_conditions const& known, planar_circle& start) {
    if (!known.touched.empty()) return starting_tangent_circle(known, start);
    point center;
    double radius = 0;
    bool const found = algebraic_fit_through(known.fit, known.through, 2, center, radius);
    start = {center.x(), center.y(), radius};
    return found && start.is_usable();
}

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

bool refine_circle(point_span points, point& center, double& radius) {
    planar_circle found = {center.x(), center.y(), radius};
    if (!found.is_usable() || !iterate(points, {}, {}, found)) return false;
    center.x() = found.x;
    center.y() = found.y;
    radius = found.radius;
    return true;
}

bool least_squares_circle(circle_conditions const& known, circle& result) {
    std::size_t const conditions = known.fit.size() + known.through.size() + known.touched.size();
    if (conditions < 3) return false;
    if (known.through.empty() && known.touched.empty()) return circle_of_points(known.fit, result);
    bool const exact = conditions == 3;
    if (exact && !known.through.empty()) {
        // Nothing is left to be squared, so all points are alike.
        std::vector<point> all = known.fit;
        all.insert(all.end(), known.through.begin(), known.through.end());
        return least_squares_circle({all, {}, known.touched}, result);
    }
    planar_circle found;
    if (!starting_circle(known, found)) return false;
    if (!exact && !iterate(known.fit, known.through, known.touched, found)) return false;
    point const centre(true, found.x, found.y);
    result = circle(found.radius, point(true, found.x, found.y, mean_height(known, centre)));
    return true;
}

}  // namespace geometry_fitter
}  // namespace tvmath
