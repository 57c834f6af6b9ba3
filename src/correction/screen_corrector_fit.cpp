#include <algorithm>
#include <cmath>

#include "correction/chebyshev.h"
#include "correction/term_reduction.h"
#include "tvmath/screen_corrector.h"

inline namespace tvmath {
namespace {

// The displacements from measured to nominal points, reduced for every order up to one.
class displacement_fit {
public:
    displacement_fit(screen_corrector const& scales, idioms::array<point> const& measured,
                     idioms::array<point> const& nominal, unsigned int order)
        : points_(measured.capacity()), terms_(within_reach(order) ? order : 0, 2) {
        if (!within_reach(order) || nominal.capacity() != points_) return;
        point const *m = measured.begin(), *n = nominal.begin();
        for (unsigned int i = 0; i < points_; ++i, ++m, ++n) {
            point const e = *n - *m;
            double const u = m->x() * scales.x_scale, v = m->y() * scales.y_scale, d[] = {e.x(), e.y()};
            if (!std::isfinite(u) || !std::isfinite(v) || !std::isfinite(d[0]) || !std::isfinite(d[1]))
                return;
            terms_.add(u, v, d);
            largest_ = std::max(
                {largest_, std::fabs(m->x()), std::fabs(m->y()), std::fabs(n->x()), std::fabs(n->y())});
        }
        terms_.finish();
    }

    bool determines(unsigned int order) const { return terms_.determines(order); }

    // Standard error; infinite when the order is not determined.
    double residual(unsigned int order) const {
        if (!terms_.determines(order)) return infinity;
        double const squares = terms_.sum_of_squares(order, 0) + terms_.sum_of_squares(order, 1);
        double const rounding = term_reduction::rounding(points_, largest_);
        bool const is_exact = std::sqrt(squares) <= rounding * std::sqrt(2.0 * points_);
        return std::sqrt((is_exact ? 0.0 : squares) / (points_ - chebyshev::term_count(order)));
    }

    matrix coefficients(unsigned int order) const {
        matrix result(2, chebyshev::term_count(order));
        for (unsigned int row = 0; row < 2; ++row) terms_.solve(order, row, result(row).lazycopy_begin());
        return result;
    }

private:
    // Not with fewer points than terms; that also keeps a huge order from asking for huge memory.
    bool within_reach(unsigned int order) const {
        return order <= term_reduction::most_order && chebyshev::term_count(order) <= points_;
    }

    unsigned int points_;
    term_reduction terms_;
    double largest_ = 0;
};

}  // namespace

screen_corrector::screen_corrector(unsigned int width, unsigned int height, idioms::array<point> measured,
                                   idioms::array<point> nominal, unsigned int max_order)
    : x_scale(2.0 / width), y_scale(2.0 / height) {
    unsigned int highest = 0;
    while (highest < std::min(max_order, term_reduction::most_order) &&
           chebyshev::term_count(highest + 1) < measured.capacity()) {
        ++highest;
    }
    // One reduction serves all orders.
    displacement_fit const all(*this, measured, nominal, highest);
    residual = infinity;
    for (unsigned int tried = 1; tried <= highest; ++tried) {
        double const its_residual = all.residual(tried);
        if (!(residual > its_residual))
            continue;  // strictly: the lower of equals stays, and NaN is no better
        residual = its_residual;
        order = tried;
    }
    if (order < 2) {
        *this = screen_corrector();
    } else {
        coefficients = all.coefficients(order);
    }
}

void screen_corrector::fit(int order_wanted, idioms::array<point> measured, idioms::array<point> nominal) {
    order = static_cast<std::uint32_t>(std::max(order_wanted, 0));
    coefficients = matrix();
    residual = 0;
    if (order == 0) return;
    displacement_fit const one(*this, measured, nominal, order);
    residual = one.residual(order);
    if (one.determines(order)) coefficients = one.coefficients(order);
}

}  // namespace tvmath
