#include "tvmath/flatness_corrector.h"

#include "correction/chebyshev.h"

inline namespace tvmath {
namespace {

// False for the trivial corrector, and for fields set by hand whose order asks for more coefficients than
// there are.
bool has_all_terms(flatness_corrector const& c) {
    unsigned int const terms = chebyshev::term_count(c.order);
    return terms != 0 && terms <= c.coefficients.capacity();
}

}  // namespace

flatness_row_corrector::flatness_row_corrector() = default;
flatness_corrector::flatness_corrector() = default;

double flatness_row_corrector::get_focus_correction_at_x(double x) const {
    if (coefficients.capacity() <= order) return 0.0;
    double const* const c = coefficients.begin();
    if (order == 0) return c[0];
    double const u = x * x_scale;
    double a = c[order], b = c[order - 1];
    for (std::uint32_t k = order - 1; k-- > 0;) {
        double const next = 2 * u * a + b;
        b = c[k] - a;
        a = next;
    }
    return u * a + b;
}

double flatness_corrector::get_focus_correction(point const& p) const {
    if (p.is_trivial() || !has_all_terms(*this)) return 0.0;
    chebyshev::scratch<2> t(order);
    chebyshev::values(p.x() * x_scale, order, t[0]);
    chebyshev::values(p.y() * y_scale, order, t[1]);
    return chebyshev::combine(coefficients.begin(), t[0], t[1], order);
}

point flatness_corrector::get_focus_correction_derivative(point const& p) const {
    if (p.is_trivial() || !has_all_terms(*this)) return point(false, 0.0, 0.0);
    double const u = p.x() * x_scale, v = p.y() * y_scale;
    chebyshev::scratch<4> t(order);
    chebyshev::values(u, order, t[0]);
    chebyshev::values(v, order, t[1]);
    chebyshev::derivatives(u, order, t[0], t[2]);
    chebyshev::derivatives(v, order, t[1], t[3]);
    double const* const c = coefficients.begin();
    return point(false, chebyshev::combine(c, t[2], t[1], order) * x_scale,
                 chebyshev::combine(c, t[0], t[3], order) * y_scale);
}

flatness_row_corrector flatness_corrector::get_focus_correction_at_y(double y) const {
    flatness_row_corrector row;
    if (!has_all_terms(*this)) return row;
    row.order = order;
    row.x_scale = x_scale;
    row.coefficients = vector(order + 1);
    chebyshev::scratch<1> t(order);
    chebyshev::values(y * y_scale, order, t[0]);
    double const *c = coefficients.begin(), *const v = t[0];
    double* const to = row.coefficients.lazycopy_begin();
    chebyshev::for_each_term(order, [&](unsigned int i, unsigned int j) { to[i] += *c++ * v[j]; });
    return row;
}

void flatness_corrector::translate_correction(double dz) {
    if (!coefficients.is_trivial()) coefficients(0) += dz;
}

point operator*(point p, flatness_corrector const& corrector) {
    if (corrector.is_trivial()) return p;
    p.promote3d();
    p.z() += corrector.get_focus_correction(p);
    return p;
}

point operator/(point p, flatness_corrector const& corrector) {
    if (corrector.is_trivial()) return p;
    p.promote3d();
    p.z() -= corrector.get_focus_correction(p);
    return p;
}

}  // namespace tvmath
