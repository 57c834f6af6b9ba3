#include "tvmath/screen_corrector.h"

#include <cstddef>
#include <cstring>
#include <vector>

#include "correction/chebyshev.h"
#include "geometry/point_lanes.h"

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

    point operator()(point const& p) const {
        double dx = 0, dy = 0;
        add_at(p.x() * x_scale_, p.y() * y_scale_, dx, dy);
        return point(false, dx, dy);
    }

    // Lets `move` carry each point by its displacement, trivial points left out.
    template <class mover>
    void carry(curve& path, mover const& move) const {
        point *p = path.lazycopy_begin(), *const end = p + path.capacity();
        for (; end - p >= wide; p += wide) {
            double dx[wide], dy[wide];
            displace_block(p, dx, dy);
            for (int i = 0; i < wide; ++i) {
                if (!p[i].is_trivial()) move(p[i], point(false, dx[i], dy[i]));
            }
        }
        for (; p != end; ++p) {
            if (!p->is_trivial()) move(*p, (*this)(*p));
        }
    }

private:
    static constexpr int wide = 4;
    using lanes = double __attribute__((vector_size(wide * sizeof(double))));

    // The products and sums are those of `coefficients` times the term values, in their order, without a list
    // of the terms; several points at once have the same. In line, to have the registers of the loop around
    // it.
    template <class real>
    [[gnu::always_inline]] inline void add_at(real const& x, real const& y, real& dx, real& dy) const {
        chebyshev::scratch<2, real> room(order_);
        real *const u = room[0], *const v = room[1];
        chebyshev::values(x, order_, u);
        chebyshev::values(y, order_, v);
        double const *row_x = dx_, *row_y = dy_;
        real sum_x = dx, sum_y = dy;
        chebyshev::for_each_term(order_, [&](unsigned int i, unsigned int j) {
            real const term = u[i] * v[j];
            sum_x += *row_x++ * term;
            sum_y += *row_y++ * term;
        });
        dx = sum_x;
        dy = sum_y;
    }

    TVMATH_WIDE_LOOP void displace_block(point const* p, double* to_x, double* to_y) const {
        lanes x, y, dx{}, dy{};
        for (int i = 0; i < wide; ++i) {
            x[i] = p[i].x() * x_scale_;
            y[i] = p[i].y() * y_scale_;
        }
        add_at(x, y, dx, dy);
        std::memcpy(to_x, &dx, sizeof dx);
        std::memcpy(to_y, &dy, sizeof dy);
    }

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

screen_corrector::screen_corrector() = default;
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
    if (field.is_in_use() && !path.is_trivial()) field.carry(path, [](point& p, point const& d) { p += d; });
    return path;
}

curve operator/(curve path, screen_corrector const& c) {
    displacement_field const field(c);
    if (field.is_in_use() && !path.is_trivial()) field.carry(path, [](point& p, point const& d) { p -= d; });
    return path;
}

}  // namespace tvmath
