#include "tvmath/matrix.h"

#include <algorithm>
#include <cmath>
#include <utility>

inline namespace tvmath {

matrix matrix::identity(unsigned int n) {
    matrix m(n, n);
    vector* const row = m.lazycopy_begin();
    for (unsigned int i = 0; i < n; ++i) row[i](i) = 1.0;
    return m;
}

matrix& matrix::operator=(double const& value) {
    if (!is_trivial()) *this = matrix(rows(*this), cols(*this), value);
    return *this;
}

// A neutral value is caught here, before the list of rows is unshared; a value operand is copied first, since
// it may refer to an element of this matrix.

matrix& matrix::operator*=(double const& factor) {
    double const f = factor;
    if (f == 1.0 || is_trivial()) return *this;
    for (vector *row = lazycopy_begin(), *end = row + capacity(); row != end; ++row) *row *= f;
    return *this;
}

matrix& matrix::operator/=(double const& value) {
    return *this *= 1 / value;
}

matrix& matrix::operator+=(double const& value) {
    double const x = value;
    if (x == 0.0 || is_trivial()) return *this;
    for (vector *row = lazycopy_begin(), *end = row + capacity(); row != end; ++row) *row += x;
    return *this;
}

matrix& matrix::operator-=(double const& value) {
    return *this += -value;
}

matrix& matrix::operator+=(matrix const& other) {
    if (is_trivial()) return *this;
    vector* const a = lazycopy_begin();
    for (unsigned int i = 0, n = capacity(); i < n; ++i) a[i] += other[i];
    return *this;
}

matrix& matrix::operator-=(matrix const& other) {
    if (is_trivial()) return *this;
    vector* const a = lazycopy_begin();
    for (unsigned int i = 0, n = capacity(); i < n; ++i) a[i] -= other[i];
    return *this;
}

matrix& matrix::operator*=(matrix const& other) {
    return *this = *this * other;
}

vector matrix::col(unsigned int i) const {
    unsigned int const n = capacity();
    vector result(n);
    double* const to = result.lazycopy_begin();
    vector const* const row = begin();
    for (unsigned int r = 0; r < n; ++r) to[r] = row[r][i];
    return result;
}

void matrix::col(unsigned int i, vector const& v) {
    if (is_trivial()) return;
    vector const source = v;  // v may be a row of this matrix
    vector* const row = lazycopy_begin();
    for (unsigned int r = 0, n = capacity(); r < n; ++r) row[r](i) = source[r];
}

void matrix::redim(unsigned int r, unsigned int c, double const& value) {
    double const x = value;
    unsigned int const old_rows = rows(*this), old_cols = cols(*this);
    if (old_cols == c) {
        if (r < old_rows) redim(r);
        if (r > old_rows) redim(r, vector(c, x));
        return;
    }
    matrix fresh(r, c, x);
    unsigned int const kept_rows = std::min(r, old_rows), kept_cols = std::min(c, old_cols);
    vector* const to = fresh.lazycopy_begin();
    for (unsigned int i = 0; i < kept_rows; ++i)
        std::copy_n((*this)[i].begin(), kept_cols, to[i].lazycopy_begin());
    *this = std::move(fresh);
}

// The sum of weight[k] row k of m, in the order of k.
static vector combine_rows(double const* weight, matrix const& m) {
    unsigned int const n = rows(m), c = cols(m);
    vector result(c);
    double* const to = result.lazycopy_begin();
    for (unsigned int k = 0; k < n; ++k) {
        double const* const row = m[k].begin();
        double const w = weight[k];
        for (unsigned int j = 0; j < c; ++j) to[j] += w * row[j];
    }
    return result;
}

matrix operator*(matrix const& a, matrix const& b) {
    unsigned int const n = rows(a);
    if (n == 0 || rows(b) == 0 || cols(b) == 0) return matrix(n, cols(b));
    matrix result(n, vector());
    vector* const to = result.lazycopy_begin();
    for (unsigned int i = 0; i < n; ++i) to[i] = combine_rows(a[i].begin(), b);
    return result;
}

vector operator*(vector const& v, matrix const& m) {
    return combine_rows(v.begin(), m);
}

vector operator*(matrix const& m, vector const& v) {
    unsigned int const n = rows(m);
    vector result(n);
    double* const to = result.lazycopy_begin();
    for (unsigned int i = 0; i < n; ++i) to[i] = dot(m[i], v);
    return result;
}

matrix outer_product(vector const& a, vector const& b) {
    unsigned int const n = dim(a);
    matrix result(n, b);
    vector* const row = result.lazycopy_begin();
    for (unsigned int i = 0; i < n; ++i) row[i] *= a[i];
    return result;
}

matrix abs(matrix m) {
    if (m.is_trivial()) return m;
    for (vector *row = m.lazycopy_begin(), *end = row + rows(m); row != end; ++row) *row = abs(*row);
    return m;
}

matrix transpose(matrix const& m) {
    unsigned int const n = cols(m);
    matrix result(n, vector());
    vector* const row = result.lazycopy_begin();
    for (unsigned int i = 0; i < n; ++i) row[i] = m.col(i);
    return result;
}

// `count` cut to what remains of `size` from `first` on; written so that first + count cannot wrap.
static unsigned int remaining(unsigned int size, unsigned int first, unsigned int count) {
    return first >= size ? 0 : std::min(count, size - first);
}

matrix keep_rows(matrix const& m, unsigned int first, unsigned int count) {
    unsigned int const n = remaining(rows(m), first, count);
    return n == 0 ? matrix() : matrix(n, m.begin() + first);
}

matrix keep_cols(matrix const& m, unsigned int first, unsigned int count) {
    unsigned int const r = rows(m), n = remaining(cols(m), first, count);
    if (n == 0) return matrix(r, 0);
    matrix result(r, vector());
    vector* const row = result.lazycopy_begin();
    for (unsigned int i = 0; i < r; ++i) row[i] = vector(n, m[i].begin() + first);
    return result;
}

matrix keep_matrix(matrix const& m, unsigned int first_row, unsigned int row_count, unsigned int first_col,
                   unsigned int col_count) {
    return keep_cols(keep_rows(m, first_row, row_count), first_col, col_count);
}

double max_value(matrix const& m) {
    double min = 0, max = 0;
    minmax_value(m, min, max);
    return max;
}

double min_value(matrix const& m) {
    double min = 0, max = 0;
    minmax_value(m, min, max);
    return min;
}

void minmax_value(matrix const& m, double& min, double& max) {
    min = infinity;
    max = -infinity;
    for (vector const& row : m) {
        for (double x : row) {
            if (x < min) min = x;
            if (x > max) max = x;
        }
    }
}

}  // namespace tvmath
