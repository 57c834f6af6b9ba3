#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

#include "tvmath/matrix.h"

inline namespace tvmath {
namespace {

constexpr double tiny = 1e-100, huge = 1e+100;  // stand in for a divisor of 0 and for the reciprocal of one
constexpr int step_limit = 30;                  // per value; two or three are usual

// Columns never overlap. Saying so spares the small systems the test for it at every call.
double inner(double const* __restrict a, double const* __restrict b, std::size_t n) {
    double s = 0;
    for (std::size_t k = 0; k < n; ++k) s += a[k] * b[k];
    return s;
}

void add_multiple(double* __restrict to, double const* __restrict from, double factor, std::size_t n) {
    for (std::size_t k = 0; k < n; ++k) to[k] += factor * from[k];
}

void rotate(double* __restrict a, double* __restrict b, double c, double s, std::size_t n) {
    for (std::size_t k = 0; k < n; ++k) {
        double const x = a[k], y = b[k];
        a[k] = x * c + y * s;
        b[k] = y * c - x * s;
    }
}

// Householder reflection I + x xᵀ / h that carries a vector to (value, 0, 0, ...).
struct reflection {
    double value = 0;
    double h = 0;  // 0: the vector is zero and nothing is done
};

// Turns the n elements at `x`, `stride` apart, into the x of their reflection. x is left divided by the
// scale: its squares then neither overflow nor vanish, and h, a ratio within one reflection, does not see the
// scale.
reflection reflect(double* x, std::size_t n, std::size_t stride) {
    double scale = 0, squares = 0;
    for (std::size_t k = 0; k < n; ++k) scale += std::fabs(x[k * stride]);
    if (scale == 0.0) return {};
    for (std::size_t k = 0; k < n; ++k) {
        double& e = x[k * stride];
        e /= scale;
        squares += e * e;
    }
    double const f = x[0],
                 g = -std::copysign(std::sqrt(squares), f);  // the sign that adds magnitudes in f - g
    double h = f * g - squares;
    if (h == 0.0) h = tiny;
    x[0] = f - g;
    return {scale * g, h};
}

// The work of one decomposition, in one block. Matrices lie by columns, on which most of the work is done.
class decomposition {
public:
    decomposition(matrix const& a, std::size_t rows, std::size_t cols)
        : m(rows),
          n(cols),
          block_(m * n + n * n + 4 * n + m),
          u(block_.data()),
          v(u + m * n),
          w(v + n * n),
          e(w + n),
          left(e + n),
          right(left + n),
          temporary(right + n) {
        for (std::size_t i = 0; i < m; ++i) {
            double const* const row = a[static_cast<unsigned int>(i)].begin();
            for (std::size_t j = 0; j < n; ++j) u[j * m + i] = row[j];
        }
    }

    void run() {
        // Brought near 1 by a power of two, exact, so that products of entries stay in range; by two factors,
        // as the power itself may be out of range.
        double magnitude = 0;
        for (std::size_t k = 0; k < m * n; ++k) magnitude = std::max(magnitude, std::fabs(u[k]));
        bool const scaled = magnitude > 0 && std::isfinite(magnitude);
        int const exponent = scaled ? std::ilogb(magnitude) : 0;
        scale(u, m * n, -exponent);
        bidiagonalise();
        accumulate_right();
        accumulate_left();
        for (std::size_t k = n; k-- > 0;) diagonalise(k);
        scale(w, n, exponent);
    }

private:
    std::size_t const m, n;
    std::vector<double> block_;

public:
    double *const u, *const v, *const w;

private:
    double* const e;                   // e[i] stands above the diagonal value w[i]; e[0] is 0
    double *const left, *const right;  // h of the reflections of columns and of rows
    double* const temporary;
    double norm_ = 0;  // of the bidiagonal form; what is lost when added to it counts as 0

    static void scale(double* x, std::size_t count, int exponent) {
        if (exponent == 0) return;
        double const first = std::ldexp(1.0, exponent / 2), second = std::ldexp(1.0, exponent - exponent / 2);
        for (std::size_t k = 0; k < count; ++k) x[k] = x[k] * first * second;
    }

    bool negligible(double x) const { return std::fabs(x) + norm_ == norm_; }

    // Reflections from the left and the right in turn. The x of the left ones stay in u below the diagonal,
    // those of the right ones in u above it.
    void bidiagonalise() {
        for (std::size_t i = 0; i < n; ++i) {
            if (i < m) {
                double* const x = u + i * m + i;
                reflection const r = reflect(x, m - i, 1);
                w[i] = r.value;
                left[i] = r.h;
                if (r.h != 0.0) {
                    for (std::size_t j = i + 1; j < n; ++j) {
                        double* const y = u + j * m + i;
                        add_multiple(y, x, inner(x, y, m - i) / r.h, m - i);
                    }
                }
                if (i + 1 < n) reflect_row(i);
            }
            norm_ = std::max(norm_, std::fabs(w[i]) + std::fabs(e[i]));
        }
    }

    void reflect_row(std::size_t i) {
        std::size_t const l = i + 1, below = m - l;
        reflection const r = reflect(u + l * m + i, n - l, m);
        e[l] = r.value;
        right[i] = r.h;
        if (r.h == 0.0 || below == 0) return;
        std::fill_n(temporary, below, 0.0);
        for (std::size_t j = l; j < n; ++j) add_multiple(temporary, u + j * m + l, u[j * m + i], below);
        for (std::size_t j = l; j < n; ++j) add_multiple(u + j * m + l, temporary, u[j * m + i] / r.h, below);
    }

    void accumulate_right() {
        for (std::size_t i = n; i-- > 0;) {
            v[i * n + i] = 1.0;
            if (right[i] == 0.0) continue;
            std::size_t const l = i + 1, count = n - l;
            double* const x = v + i * n + l;  // column i of v is still free below the diagonal
            for (std::size_t k = 0; k < count; ++k) x[k] = u[(l + k) * m + i];
            for (std::size_t j = l; j < n; ++j) {
                double* const y = v + j * n + l;
                add_multiple(y, x, inner(x, y, count) / right[i], count);
            }
            std::fill_n(x, count, 0.0);
        }
    }

    void accumulate_left() {
        for (std::size_t i = std::min(m, n); i-- > 0;) {
            std::size_t const count = m - i;
            double* const x = u + i * m + i;
            for (std::size_t j = i + 1; j < n; ++j) u[j * m + i] = 0.0;
            // A zero column takes a unit vector, so that u stays orthonormal when the rank is short.
            if (left[i] == 0.0) {
                std::fill_n(x, count, 0.0);
            } else {
                for (std::size_t j = i + 1; j < n; ++j) {
                    double* const y = u + j * m + i;
                    add_multiple(y, x, inner(x, y, count) / left[i], count);
                }
                double const factor = x[0] / left[i];
                for (std::size_t k = 0; k < count; ++k) x[k] *= factor;
            }
            x[0] += 1.0;
        }
    }

    // Steps of the implicit-shift QR method until value k stands alone. At the limit the present values
    // stand.
    void diagonalise(std::size_t k) {
        for (int step = 0; step < step_limit; ++step) {
            // The tests are exact: what does not change the norm is beyond its last digit. Row 0 ends the
            // search by its index, because NaN passes no test.
            std::size_t l = k;
            while (l > 0 && !negligible(e[l])) {
                if (negligible(w[l - 1])) {
                    cancel(l, k);
                    break;
                }
                --l;
            }
            if (l == k) {
                if (w[k] < 0) {
                    w[k] = -w[k];
                    for (std::size_t i = 0; i < n; ++i) v[k * n + i] = -v[k * n + i];
                }
                return;
            }
            sweep(l, k);
        }
    }

    // w[l - 1] counts as 0: e[l] is rotated out of its row.
    void cancel(std::size_t l, std::size_t k) {
        // In a wide matrix its zero column of u may end here, and inverse_svd must find the value exactly 0
        // beside it.
        if (m < n) w[l - 1] = 0.0;
        double c = 0, s = 1;
        for (std::size_t i = l; i <= k; ++i) {
            double const f = s * e[i];
            e[i] *= c;
            if (negligible(f)) return;
            double const g = w[i], h = std::hypot(f, g);
            w[i] = h;
            c = g / h;
            s = -f / h;
            rotate(u + (l - 1) * m, u + i * m, c, s, m);
        }
    }

    // First element of the shifted column, the shift being the eigenvalue of the bottom 2 by 2 that is nearer
    // its last entry.
    double shifted(std::size_t l, std::size_t k) const {
        double const x = w[l], y = w[k - 1], z = w[k], g = e[k - 1], h = e[k];
        double const denominator = 2 * h * y;
        double const f = denominator == 0.0 ? huge : ((y - z) * (y + z) + (g - h) * (g + h)) / denominator;
        double const r = std::copysign(std::hypot(f, 1.0), f);
        return ((x - z) * (x + z) + h * (y / (f + r) - h)) / x;
    }

    void sweep(std::size_t l, std::size_t k) {
        double f = shifted(l, k), x = w[l], c = 1, s = 1;
        for (std::size_t j = l; j < k; ++j) {
            std::size_t const i = j + 1;
            double g = c * e[i], h = s * e[i], y = w[i];
            double z = std::hypot(f, h);
            e[j] = z;
            c = z == 0.0 ? 1.0 : f / z;
            s = z == 0.0 ? 0.0 : h / z;
            f = x * c + g * s;
            g = g * c - x * s;
            h = y * s;
            y *= c;
            rotate(v + j * n, v + i * n, c, s, n);
            z = std::hypot(f, h);
            w[j] = z;
            c = z == 0.0 ? 1.0 : f / z;  // any rotation would do for 0
            s = z == 0.0 ? 0.0 : h / z;
            f = c * g + s * y;
            x = c * y - s * g;
            rotate(u + j * m, u + i * m, c, s, m);
        }
        e[l] = 0.0;
        e[k] = f;
        w[k] = x;
    }
};

// Writes into the blocks that `to` already owns where the shape fits: a fit decomposes a matrix of the same
// shape in every round, and for 3 by 3 a new block for each row would cost as much as the decomposition.
void put_columns(matrix& to, double const* columns, std::size_t row_count, std::size_t col_count) {
    auto const r = static_cast<unsigned int>(row_count), c = static_cast<unsigned int>(col_count);
    if (rows(to) != r || cols(to) != c) to = matrix(r, c);
    vector* const row = to.lazycopy_begin();
    for (std::size_t i = 0; i < row_count; ++i) {
        if (dim(row[i]) != c) row[i] = vector(c);  // a row of another length than the first
        double* const element = row[i].lazycopy_begin();
        for (std::size_t j = 0; j < col_count; ++j) element[j] = columns[j * row_count + i];
    }
}

}  // namespace

vector singular_value_decomposition(matrix const& a, matrix& u, matrix& v) {
    std::size_t const m = rows(a), n = cols(a);
    if (m == 0) {
        u = v = matrix(0, 0);
        return vector();
    }
    decomposition d(a, m, n);
    d.run();
    vector const w(static_cast<unsigned int>(n), d.w);
    put_columns(u, d.u, m, n);  // a, which may be u or v, has been read
    put_columns(v, d.v, n, n);
    return w;
}

}  // namespace tvmath
