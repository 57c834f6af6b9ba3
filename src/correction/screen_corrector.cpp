#include "tvmath/screen_corrector.h"

#include <cstddef>
#include <vector>

#include "correction/chebyshev.h"

inline namespace tvmath {
namespace {

// Both rows of the field of a corrector in use.
class displacement_field {
public:
    explicit displacement_field(screen_corrector const& c)
        : order_(c.order), x_scale_(c.x_scale), y_scale_(c.y_scale) {
        unsigned int const n = chebyshev::term_count(c.order);
        if (c.is_trivial() || n == 0 || rows(c.coefficients) < 2) return;
        vector const* const row = c.coefficients.begin();
        if (dim(row[0]) < n || dim(row[1]) < n) return;  // left by a failed fit, or put there by a caller
        dx_ = row[0].begin();
        dy_ = row[1].begin();
    }

    bool is_in_use() const { return dx_ != nullptr; }

    // The products and sums are those of `coefficients` times the term values, in their order, without a list
    // of the terms.
    point operator()(point const& p) const {
        chebyshev::scratch<2> room(order_);
        double *const u = room[0], *const v = room[1];
        chebyshev::values(p.x() * x_scale_, order_, u);
        chebyshev::values(p.y() * y_scale_, order_, v);
        double const *x = dx_, *y = dy_;
        double dx = 0, dy = 0;
        chebyshev::for_each_term(order_, [&](unsigned int i, unsigned int j) {
            double const term = u[i] * v[j];
            dx += *x++ * term;
            dy += *y++ * term;
        });
        return point(false, dx, dy);
    }

private:
    unsigned int order_;
    double x_scale_, y_scale_;
    double const *dx_ = nullptr, *dy_ = nullptr;
};

// Re-expands what `coefficient(k)`, k = 0 ... n, refers to under t = s + offset.
template <class access>
void shift_series(unsigned int n, double offset, std::vector<double>& series, access const& coefficient) {
    for (unsigned int k = 0; k <= n; ++k) series[k] = coefficient(k);
    chebyshev::re_expand(series.data(), n, 1.0, offset);
    for (unsigned int k = 0; k <= n; ++k) coefficient(k) = series[k];
}

}  // namespace

screen_corrector::~screen_corrector() = default;

bool screen_corrector::is_trivial() const {
    return order == 0;
}

vector screen_corrector::f(point p) const {
    vector terms(chebyshev::term_count(order));
    if (terms.is_trivial()) return terms;
    chebyshev::scratch<2> room(order);
    double *const u = room[0], *const v = room[1], *to = terms.lazycopy_begin();
    chebyshev::values(p.x() * x_scale, order, u);
    chebyshev::values(p.y() * y_scale, order, v);
    chebyshev::for_each_term(order, [&](unsigned int i, unsigned int j) { *to++ = u[i] * v[j]; });
    return terms;
}

screen_corrector screen_corrector::sub_grab(point const& origin) const {
    screen_corrector result = *this;
    if (!displacement_field(*this).is_in_use() || origin.is_trivial()) return result;
    double const a = origin.x() * x_scale, b = origin.y() * y_scale;
    std::vector<double> series(std::size_t{order} + 1);
    for (unsigned int r = 0; r < 2; ++r) {
        double* const c = result.coefficients(r).lazycopy_begin();
        auto const term = [c](unsigned int i, unsigned int j) -> double& {
            std::size_t const d = std::size_t{i} + j;
            return c[d * (d + 1) / 2 + j];
        };
        for (unsigned int i = 0; i <= order; ++i) {
            shift_series(order - i, b, series, [&](unsigned int j) -> double& { return term(i, j); });
        }
        for (unsigned int j = 0; j <= order; ++j) {
            shift_series(order - j, a, series, [&](unsigned int i) -> double& { return term(i, j); });
        }
    }
    return result;
}

point operator*(point p, screen_corrector const& c) {
    displacement_field const field(c);
    if (field.is_in_use() && !p.is_trivial()) p += field(p);
    return p;
}

point operator/(point p, screen_corrector const& c) {
    displacement_field const field(c);
    if (field.is_in_use() && !p.is_trivial()) p -= field(p);
    return p;
}

curve operator*(curve path, screen_corrector const& c) {
    displacement_field const field(c);
    if (!field.is_in_use() || path.is_trivial()) return path;
    for (point *p = path.lazycopy_begin(), *end = p + path.capacity(); p != end; ++p) {
        if (!p->is_trivial()) *p += field(*p);
    }
    return path;
}

curve operator/(curve path, screen_corrector const& c) {
    displacement_field const field(c);
    if (!field.is_in_use() || path.is_trivial()) return path;
    for (point *p = path.lazycopy_begin(), *end = p + path.capacity(); p != end; ++p) {
        if (!p->is_trivial()) *p -= field(*p);
    }
    return path;
}

}  // namespace tvmath
