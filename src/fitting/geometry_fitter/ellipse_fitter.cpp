#include <algorithm>
#include <cmath>

#include "constraint_list.h"
#include "fitting/ellipse/ellipse_walk.h"
#include "fitting/iterative_solve.h"
#include "row_block.h"
#include "tvmath/ellipse_fit.h"
#include "tvmath/quick_fit.h"

inline namespace tvmath {
namespace geometry_fitter {
namespace {

constexpr counting_rules rules = {.unknowns = 5, .centered = {2, 1}};

// Depth of a point, and its gradient by centre, half-axes and angle.
struct ellipse_row {
    double gradient[5], depth;
};

[[gnu::always_inline]] inline ellipse_row row_at(walked_ellipse const& e, ellipse_place const& at, double x,
                                                 double y) {
    ellipse_foot const f = foot_at(e, at, x, y);
    double const nu = e.cosine * f.normal_x + e.sine * f.normal_y;
    double const nv = -e.sine * f.normal_x + e.cosine * f.normal_y;
    return {{f.normal_x, f.normal_y, at.u * nu, at.v * nv, (at.u * nv) * e.a - (at.v * nu) * e.b}, f.depth};
}

// Products of the rows of all points about the start. Every point goes both ways, outside and inside, and
// keeps one: that is less work than a choice for each point.
TVMATH_WIDE_LOOP void sum_ellipse(std::vector<point> const& points, double start_x, double start_y,
                                  walked_ellipse const e, double* sums) {
    row_block<6> rows;
    constexpr std::size_t size = rows.size;
    alignas(32) double px[size] = {}, py[size] = {}, x[size], y[size], distance[size];
    alignas(32) double u[size], v[size], inner_u[size], inner_v[size];
    auto& column = rows.column;
    for (std::size_t first = 0; first < points.size(); first += size) {
        std::size_t const count = std::min(size, points.size() - first);
        point const* const p = points.data() + first;
        for (std::size_t i = 0; i < count; ++i) {
            px[i] = p[i].x() - start_x;
            py[i] = p[i].y() - start_y;
        }
        for (std::size_t i = 0; i < size; ++i) {
            ellipse_walk_start const s = start_walk(e, px[i], py[i]);
            x[i] = s.x;
            y[i] = s.y;
            u[i] = s.place.u;
            v[i] = s.place.v;
            distance[i] = s.distance;
        }
        for (std::size_t i = 0; i < size; ++i) {
            ellipse_place const inside = walk_inside(e, x[i], y[i], walk_inside(e, x[i], y[i], {u[i], v[i]}));
            inner_u[i] = inside.u;
            inner_v[i] = inside.v;
        }
        for (std::size_t i = 0; i < size; ++i) {
            ellipse_place const outside =
                walk_outside(e, x[i], y[i], walk_outside(e, x[i], y[i], {u[i], v[i]}));
            u[i] = outside.u;
            v[i] = outside.v;
        }
        for (std::size_t i = 0; i < size; ++i) {
            bool const outside = distance[i] > 1.0;
            u[i] = outside ? u[i] : inner_u[i];
            v[i] = outside ? v[i] : inner_v[i];
        }
        for (std::size_t i = 0; i < size; ++i) {
            ellipse_row const row = row_at(e, {u[i], v[i]}, px[i], py[i]);
#pragma GCC unroll 5
            for (std::size_t k = 0; k < 5; ++k) column[k][i] = row.gradient[k];
            column[5][i] = row.depth;
        }
        rows.add_products(sums, count);
    }
}

// Unknowns: centre, relative to the starting one, half-axes and angle. Residuals are positive inside.
class ellipseLSF : public IterativeLSF {
public:
    ellipseLSF(std::vector<point> const& fit, centered_cnst const* centered, point const& start, double a,
               double b, double angle)
        : fit_(fit), centered_(centered), start_(start) {
        double const values[] = {0.0, 0.0, a, b, angle};
        parameters = vector(5, values);
    }

    double residual(point p, vector& gradient) override {
        walked_ellipse const e = present();
        ellipse_row const row = row_at(e, walk_to_foot(e, p.x(), p.y()), p.x(), p.y());
        gradient = vector(5, row.gradient);
        return row.depth;
    }

    vector constraints(matrix& jacobian) override {
        if (!centered_) return vector();
        jacobian = matrix(2, 5);
        jacobian(0)(0) = jacobian(1)(1) = -1.0;
        double const off[] = {centered_->center.x() - start_.x() - parameters[0],
                              centered_->center.y() - start_.y() - parameters[1]};
        return vector(2, off);
    }

    // Keeps the system regular where the angle means nothing, on a circle.
    double damping(unsigned int index) override {
        double const a = parameters[2], b = parameters[3];
        return index == 4 ? (a * a + b * b) * 1e-9 : 0.0;
    }

    bool solve_all() {
        auto const sum = [this](double* sums) { sum_ellipse(fit_, start_.x(), start_.y(), present(), sums); };
        return solve_model(*this, sum);
    }

    walked_ellipse present() const {
        return {parameters[0], parameters[1], parameters[2], parameters[3], parameters[4]};
    }

private:
    std::vector<point> const& fit_;
    centered_cnst const* centered_;
    point start_;
};

bool least_squares_ellipse(std::vector<point> const& fit, centered_cnst const* centered, ellipse& result) {
    point start, major, minor;
    if (!(centered ? ellipse_quick_centered_fit(centered->center, fit, start, major, minor)
                   : ellipse_quick_fit(fit, start, major, minor))) {
        return false;
    }
    ellipseLSF model(fit, centered, start, major.length2d(), minor.length2d(), major.angle2d());
    bool const exact = fit.size() + (centered ? 2 : 0) == 5;
    if (!exact && !model.solve_all()) return false;
    vector const& found = model.parameters;
    double const a = std::fabs(found[2]), b = std::fabs(found[3]);
    if (!(a > 0) || !(b > 0)) return false;
    double const z = centered ? centered->center.z() : point_fit(fit).z();
    result = ellipse(a, b, found[4], point(true, found[0] + start.x(), found[1] + start.y(), z));
    return !_isnan(result, true);
}

}  // namespace

bool ellipse_fitter::can_add(std::type_info const& kind) const {
    return has_room(rules, first_, kind);
}

int ellipse_fitter::degrees_of_freedom() const {
    return redundancy(rules, first_);
}

bool ellipse_fitter::result(Geometry_Description& description) {
    if (degrees_of_freedom() < 0 || !prepare(first_)) return false;
    Ellipse_Description found;
    return least_squares_ellipse(fit_points(first_), next_of<centered_cnst>(first_), found.geometry) &&
           description.assign(found);
}

}  // namespace geometry_fitter
}  // namespace tvmath
