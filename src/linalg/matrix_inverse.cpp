#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include "tvmath/matrix.h"

inline namespace tvmath {
namespace {

// One writable pointer per row, so that the loops below test no counter. Valid until rows are resized or
// shared.
std::vector<double*> row_pointers(matrix& m) {
    std::vector<double*> pointers;
    pointers.reserve(rows(m));
    if (m.is_trivial()) return pointers;
    for (vector *row = m.lazycopy_begin(), *end = row + rows(m); row != end; ++row) {
        pointers.push_back(row->lazycopy_begin());
    }
    return pointers;
}

// Index from `first` on of the largest magnitude, the first of equals. NaN is never larger.
unsigned int largest(double const* row, unsigned int first, unsigned int n) {
    unsigned int found = first;
    for (unsigned int j = first + 1; j < n; ++j) {
        if (std::fabs(row[j]) > std::fabs(row[found])) found = j;
    }
    return found;
}

// to[j] += factor from[j] over [first, last).
void add_multiple(double* to, double const* from, double factor, unsigned int first, unsigned int last) {
    for (unsigned int j = first; j < last; ++j) to[j] += factor * from[j];
}

void exchange_columns(std::vector<double*> const& row, unsigned int j, unsigned int k) {
    if (j == k) return;
    for (double* r : row) std::swap(r[j], r[k]);
}

// Solves y b = x for every row x, in place. Column operations turn b into a lower triangle L and carry x
// along; y L = x is then solved from its last column back.
bool solve_rows(std::vector<double*> const& x, matrix b) {
    unsigned int const n = rows(b);
    std::vector<double*> const l = row_pointers(b);
    for (unsigned int k = 0; k + 1 < n; ++k) {
        unsigned int const j = largest(l[k], k, n);
        double const pivot = l[k][j];
        if (pivot == 0.0) return false;
        exchange_columns(l, j, k);
        exchange_columns(x, j, k);
        for (unsigned int c = k + 1; c < n; ++c) l[k][c] /= -pivot;
        for (unsigned int r = k + 1; r < n; ++r) add_multiple(l[r], l[k], l[r][k], k + 1, n);
        for (double* row : x) add_multiple(row, l[k], row[k], k + 1, n);
    }
    for (unsigned int k = n; k-- > 0;) {
        double const diagonal = l[k][k];
        if (diagonal == 0.0) return false;
        for (double* row : x) {
            row[k] /= diagonal;
            if (row[k] != 0.0) add_multiple(row, l[k], -row[k], 0, k);
        }
    }
    return true;
}

// Sets the pivot aside, divides its row by it and clears its column from all other rows, the column then
// holding the inverse's.
void eliminate(std::vector<double*> const& a, unsigned int p, unsigned int n) {
    double const pivot = a[p][p];
    a[p][p] = 1.0;
    for (unsigned int j = 0; j < n; ++j) a[p][j] /= pivot;
    for (double* row : a) {
        if (row == a[p]) continue;
        double const t = row[p];
        row[p] = 0.0;
        add_multiple(row, a[p], -t, 0, n);
    }
}

}  // namespace

double determinant(matrix m) {
    unsigned int const n = rows(m);
    if (n == 0 || cols(m) != n) return 0.0;
    std::vector<double*> const a = row_pointers(m);
    double d = 1.0;
    for (unsigned int k = 0; k + 1 < n; ++k) {
        unsigned int const j = largest(a[k], k, n);
        double const pivot = a[k][j];
        if (pivot == 0.0) return 0.0;  // exact: a tolerance would need the scale of the entries
        d *= pivot;
        if (j != k) {
            d = -d;
            for (unsigned int r = k; r < n; ++r) std::swap(a[r][j], a[r][k]);
        }
        for (unsigned int r = k + 1; r < n; ++r) {
            if (a[r][k] != 0.0) add_multiple(a[r], a[k], -(a[r][k] / pivot), k + 1, n);
        }
    }
    return d * a[n - 1][n - 1];
}

matrix inverse_gj(matrix m) {
    unsigned int const n = rows(m);
    if (n == 0 || cols(m) != n) return matrix(0, 0);
    std::vector<double*> const a = row_pointers(m);
    std::vector<unsigned int> pivoted(n), row_index(n), col_index(n);
    for (unsigned int pass = 0; pass < n; ++pass) {
        // Where nothing compares, as among NaN, the first free place serves.
        unsigned int row = 0;
        while (pivoted[row]) ++row;
        unsigned int col = row;
        double best = 0.0;
        for (unsigned int r = 0; r < n; ++r) {
            if (pivoted[r]) continue;
            for (unsigned int c = 0; c < n; ++c) {
                if (pivoted[c] || !(std::fabs(a[r][c]) >= best)) continue;
                best = std::fabs(a[r][c]);
                row = r;
                col = c;
            }
        }
        pivoted[col] = 1;
        if (row != col) std::swap_ranges(a[row], a[row] + n, a[col]);
        row_index[pass] = row;
        col_index[pass] = col;
        eliminate(a, col, n);
    }
    for (unsigned int pass = n; pass-- > 0;) exchange_columns(a, row_index[pass], col_index[pass]);
    return m;
}

matrix inverse_svd(matrix m) {
    if (m.is_trivial()) return matrix(0, 0);
    matrix u, v;
    vector const w = singular_value_decomposition(m, u, v);
    for (double* row : row_pointers(v)) {
        for (unsigned int j = 0; j < dim(w); ++j) row[j] = w[j] == 0.0 ? 0.0 : row[j] / w[j];
    }
    return v * transpose(u);
}

bool matrix::times_inverse_of(matrix b) {
    unsigned int const n = cols(*this);
    if (rows(b) != n || cols(b) != n) return false;
    return n == 0 || solve_rows(row_pointers(*this), std::move(b));
}

bool vector::times_inverse_of(matrix m) {
    unsigned int const n = capacity();
    if (rows(m) != n || cols(m) != n) return false;
    return n == 0 || solve_rows({lazycopy_begin()}, std::move(m));
}

bool matrix::under_constrained_inverse() {
    unsigned int const r = rows(*this), c = cols(*this);
    if (r == 0 || c == 0 || r > c) return false;

    // Columns are exchanged so that A = [A1 A2] with A1 regular; A becomes [inverse(A1), B], B = inverse(A1)
    // A2.
    std::vector<unsigned int> exchanged(r);
    std::vector<double*> a = row_pointers(*this);
    for (unsigned int i = 0; i < r; ++i) {
        unsigned int const j = largest(a[i], i, c);
        if (a[i][j] == 0.0) return false;
        exchange_columns(a, i, j);
        exchanged[i] = j;
        eliminate(a, i, c);
    }

    // A x = y is solved by [inverse(A1) y - B z; z] for any z. Each free z in turn is chosen to make x
    // shortest: the part along its null vector [-B column; 1] is taken off, from y's columns and from those
    // of the z to come.
    redim(c, c);
    a = row_pointers(*this);
    for (unsigned int i = r; i < c; ++i) {
        double d = 1.0;
        for (unsigned int k = 0; k < i; ++k) d += a[k][i] * a[k][i];
        if (d == 0.0) return false;
        for (unsigned int k = 0; k < i; ++k) add_multiple(a[i], a[k], a[k][i] / d, 0, c);
        for (unsigned int k = 0; k < i; ++k) add_multiple(a[k], a[i], -a[k][i], 0, c);
    }

    // The columns exchanged in A are rows of its inverse.
    redim(c, r);
    vector* const row = lazycopy_begin();
    for (unsigned int i = r; i-- > 0;) vector::swap(row[i], row[exchanged[i]]);
    return true;
}

}  // namespace tvmath
