#include <algorithm>
#include <cmath>
#include <cstddef>

#include "correction/chebyshev.h"
#include "correction/term_reduction.h"
#include "tvmath/feature_fit.h"
#include "tvmath/flatness_corrector.h"

inline namespace tvmath {
namespace {

// The highest even order up to `max_order` with fewer terms than points; 0 when there is none.
unsigned int highest_order(unsigned int max_order, std::size_t points) {
    unsigned int const most = std::min(max_order, term_reduction::most_order);
    unsigned int order = 0;
    while (order + 2 <= most && chebyshev::term_count(order + 2) < points) order += 2;
    return order;
}

// Sets residual, order and coefficients to those of the best order; without one all stay as they are.
void fit_best_order(flatness_corrector& c, std::vector<point> const& points, double z_nominal,
                    unsigned int highest) {
    term_reduction terms(highest, 1);
    double largest = std::fabs(z_nominal);
    for (point const& p : points) {
        double const z = p.is_3d() ? p.z() : 0.0, e = z_nominal - z;
        terms.add(p.x() * c.x_scale, p.y() * c.y_scale, &e);
        largest = std::max(largest, std::fabs(z));
    }
    terms.finish();

    auto const n = static_cast<double>(points.size());
    double const rounding = term_reduction::rounding(points.size(), largest);
    double best = infinity;
    for (unsigned int order = 2; order <= highest && terms.determines(order); order += 2) {
        double const squares = terms.sum_of_squares(order, 0);
        double const sigma = squares <= n * rounding * rounding
                                 ? 0.0
                                 : std::sqrt(squares / (n - chebyshev::term_count(order)));
        if (!(sigma < best)) continue;  // strictly: the lower of equals stays, and NaN is no better
        best = sigma;
        c.order = order;
    }
    if (c.order == 0) return;
    c.residual = best;
    c.coefficients = vector(chebyshev::term_count(c.order));
    terms.solve(c.order, 0, c.coefficients.lazycopy_begin());
}

// Mean of the second derivatives along both axes of the machine, for order 2: T2(u) = 2 u² - 1 has 4 in u.
double mean_curvature(flatness_corrector const& c, transform const& screen_to_machine) {
    // The trivial transform is the identity, but holds no axes.
    bool const same = screen_to_machine.is_trivial();
    double const sx = c.x_scale / (same ? 1.0 : screen_to_machine.size(1));
    double const sy = c.y_scale / (same ? 1.0 : screen_to_machine.size(2));
    return (sx * sx * c.coefficients[3] + sy * sy * c.coefficients[5]) * 2.0;
}

}  // namespace

flatness_corrector flatness_corrector::fit(unsigned int width, unsigned int height,
                                           std::vector<point> const& points, double z_nominal,
                                           transform screen_to_machine, screen_corrector screen,
                                           unsigned int max_order) {
    unsigned int const highest = highest_order(max_order, points.size());
    if (highest == 0) return {};
    flatness_corrector result;
    result.x_scale = 2.0 / width;
    result.y_scale = 2.0 / height;
    fit_best_order(result, points, z_nominal, highest);
    if (result.is_trivial()) return {};
    if (result.order == 2) result.curvature = mean_curvature(result, screen_to_machine);

    std::vector<point> surface;
    surface.reserve(points.size());
    for (point p : points) {
        p.promote3d();
        surface.push_back(p * screen * screen_to_machine);
    }
    sphere const found = sphere_fit(surface);
    if (!found.is_trivial()) {
        double const sign = z_nominal - found.center().z() >= 0.0 ? 1.0 : -1.0;
        result.curvature = 1.0 / found.radius() * sign;
    }
    return result;
}

}  // namespace tvmath
