#include <algorithm>
#include <cmath>

#include "transform_block.h"
#include "tvmath/transform.h"

// An elementary map E after the present map F changes rows of F and, since the inverse of the chain is
// F^-1 E^-1, the columns of the inverse. An elementary map of the axes before F changes columns of F and rows
// of the inverse. Each writer unshares once and then works on the block where it is.

inline namespace tvmath {

using namespace transform_detail;

namespace {

// The offsets of both maps after a translation by the first `k` of `d`.
void move_offsets(double* m, int n, double const* d, int k) {
    double* const inverse_map = m + map_size(n);
    for (int r = 0; r < k; ++r) m[r * (n + 1)] += d[r];
    for (int r = 0; r < n; ++r) {
        double* const row = inverse_map + r * (n + 1);
        double sum = row[1] * d[0];
        for (int c = 1; c < k; ++c) sum += row[c + 1] * d[c];
        row[0] -= sum;
    }
}

void scale_axes(double* m, int n, double const* s, int k) {
    double* const inverse_map = m + map_size(n);
    for (int axis = 0; axis < k; ++axis) {
        for (int c = 0; c <= n; ++c) m[axis * (n + 1) + c] *= s[axis];
        for (int r = 0; r < n; ++r) inverse_map[r * (n + 1) + axis + 1] /= s[axis];
    }
}

// Row `to` += factor * row `from`, axes counted from 0.
void shear_axis(double* m, int n, int to, double factor, int from) {
    add_row(m, n, to, factor, from);
    add_column(m + map_size(n), n, from + 1, -factor, to + 1);
}

void shear_by_both(transform& t, int to, double a, int first, double b, int second) {
    if (a == 0.0 && b == 0.0) return;
    double* const m = t.promote3d().lazycopy_begin();
    shear_axis(m, 3, to, a, first);
    shear_axis(m, 3, to, b, second);
}

// Quarter turn: the row `negated` of 0 and 1 changes its sign after the exchange. Exact: only moves and
// signs.
void turn_by_quarter(transform& t, int negated) {
    int const n = rows_of(t);
    if (n == 0) return;
    double* const m = t.lazycopy_begin();
    double* const inverse_map = m + map_size(n);
    std::swap_ranges(m, m + n + 1, m + n + 1);
    for (int c = 0; c <= n; ++c) m[negated * (n + 1) + c] = -m[negated * (n + 1) + c];
    for (int r = 0; r < n; ++r) {
        double* const row = inverse_map + r * (n + 1);
        std::swap(row[1], row[2]);
        row[negated + 1] = -row[negated + 1];
    }
}

}  // namespace

transform& transform::translate(double dx, double dy) {
    if (dx == 0.0 && dy == 0.0) return *this;
    int const n = rows_of(*this);
    if (n == 0) return *this = transform(dx, dy);
    double const d[] = {dx, dy};
    move_offsets(lazycopy_begin(), n, d, 2);
    return *this;
}

transform& transform::translate(double dx, double dy, double dz) {
    if (dx == 0.0 && dy == 0.0 && dz == 0.0) return *this;
    if (rows_of(*this) == 0) return *this = transform(dx, dy, dz);
    double const d[] = {dx, dy, dz};
    move_offsets(promote3d().lazycopy_begin(), 3, d, 3);
    return *this;
}

transform& transform::translate(point const& p) {
    if (p.is_2d()) return translate(p.x(), p.y());
    if (p.is_3d()) return translate(p.x(), p.y(), p.z());
    return *this;
}

transform& transform::rotate(double angle) {
    if (angle == 0.0) return *this;
    int const n = rows_of(*this);
    if (n == 0) return *this = rotation(angle);
    double const c = std::cos(angle), s = std::sin(angle);
    double* const m = lazycopy_begin();
    for (int i = 0; i <= n; ++i) {
        double const x = m[i], y = m[n + 1 + i];
        m[i] = c * x - s * y;
        m[n + 1 + i] = c * y + s * x;
    }
    double* const inverse_map = m + map_size(n);
    for (int r = 0; r < n; ++r) {
        double* const row = inverse_map + r * (n + 1);
        double const x = row[1], y = row[2];
        row[1] = c * x - s * y;
        row[2] = c * y + s * x;
    }
    return *this;
}

transform& transform::rotate_90() {
    turn_by_quarter(*this, 0);
    return *this;
}

transform& transform::rotate_270() {
    turn_by_quarter(*this, 1);
    return *this;
}

transform& transform::rotate_180() {
    int const n = rows_of(*this);
    if (n == 0) return *this;
    double* const m = lazycopy_begin();
    for (int i = 0; i < 2 * (n + 1); ++i) m[i] = -m[i];
    double* const inverse_map = m + map_size(n);
    for (int r = 0; r < n; ++r) {
        double* const row = inverse_map + r * (n + 1);
        row[1] = -row[1];
        row[2] = -row[2];
    }
    return *this;
}

transform& transform::dilate(double sx, double sy) {
    if (sx == 1.0 && sy == 1.0) return *this;
    int const n = rows_of(*this);
    if (n == 0) return *this = dilation(sx, sy);
    double const s[] = {sx, sy};
    scale_axes(lazycopy_begin(), n, s, 2);
    return *this;
}

transform& transform::dilate(double sx, double sy, double sz) {
    if (sx == 1.0 && sy == 1.0 && sz == 1.0) return *this;
    if (rows_of(*this) == 0) return *this = dilation(sx, sy, sz);
    double const s[] = {sx, sy, sz};
    scale_axes(promote3d().lazycopy_begin(), 3, s, 3);
    return *this;
}

transform& transform::shear_x(double a) {
    if (a == 0.0) return *this;
    int const n = rows_of(promote2d());
    shear_axis(lazycopy_begin(), n, 0, a, 1);
    return *this;
}

transform& transform::shear_y(double a) {
    if (a == 0.0) return *this;
    int const n = rows_of(promote2d());
    shear_axis(lazycopy_begin(), n, 1, a, 0);
    return *this;
}

transform& transform::shear_x(double a, double b) {
    shear_by_both(*this, 0, a, 1, b, 2);
    return *this;
}

transform& transform::shear_y(double a, double b) {
    shear_by_both(*this, 1, a, 0, b, 2);
    return *this;
}

transform& transform::shear_z(double a, double b) {
    shear_by_both(*this, 2, a, 0, b, 1);
    return *this;
}

transform& transform::flip_axis(int i) {
    if (i < 0 || i > 3) return *this;
    int const n = rows_of(i == 3 ? promote3d() : promote2d());
    double* const m = lazycopy_begin();
    double* const inverse_map = m + map_size(n);
    for (int r = 0; r < n; ++r) m[r * (n + 1) + i] = -m[r * (n + 1) + i];
    if (i == 0) {
        for (int r = 0; r < n; ++r) inverse_map[r * (n + 1)] = -inverse_map[r * (n + 1)];
    } else {
        double* const row = inverse_map + (i - 1) * (n + 1);
        for (int c = 0; c <= n; ++c) row[c] = -row[c];
    }
    return *this;
}

transform& transform::exchange_axes(int i, int j) {
    if (i < 1 || i > 3 || j < 1 || j > 3 || i == j) return *this;
    int const n = rows_of(i == 3 || j == 3 ? promote3d() : promote2d());
    double* const m = lazycopy_begin();
    double* const inverse_map = m + map_size(n);
    for (int r = 0; r < n; ++r) std::swap(m[r * (n + 1) + i], m[r * (n + 1) + j]);
    double* const row = inverse_map + (i - 1) * (n + 1);
    std::swap_ranges(row, row + n + 1, inverse_map + (j - 1) * (n + 1));
    return *this;
}

transform& transform::make_right_handed(int i) {
    return i != 0 && is_left_handed() ? flip_axis(i) : *this;
}

transform& transform::permute3d(int n) {
    int const k = (n % 3 + 3) % 3;
    if (k == 0) return *this;
    double* const m = promote3d().lazycopy_begin();
    double* const rows = m + map_size(3);
    // std::rotate makes its second argument the first element: once cyclically is the last one to the front.
    for (int r = 0; r < 3; ++r) std::rotate(m + r * 4 + 1, m + r * 4 + 4 - k, m + r * 4 + 4);
    std::rotate(rows, rows + (3 - k) * 4, rows + 12);
    return *this;
}

transform& transform::inverse() {
    int const n = rows_of(*this);
    if (n == 0) return *this;
    double* const m = lazycopy_begin();
    std::swap_ranges(m, m + map_size(n), m + map_size(n));
    return *this;
}

namespace {

// Inverse of a 2D or 3D map into g; returns the determinant. The division is carried out whatever it is.
double invert2d(double const* m, double* g) {
    double const det = m[1] * m[5] - m[4] * m[2];
    g[1] = m[5] / det;
    g[2] = -m[2] / det;
    g[4] = -m[4] / det;
    g[5] = m[1] / det;
    for (int r = 0; r < 6; r += 3) g[r] = -(g[r + 1] * m[0] + g[r + 2] * m[3]);
    return det;
}

double invert3d(double const* m, double* g) {
    auto const cofactor = [m](int row, int column) {
        int const r1 = (row + 1) % 3 * 4, r2 = (row + 2) % 3 * 4;
        int const c1 = (column + 1) % 3 + 1, c2 = (column + 2) % 3 + 1;
        return m[r1 + c1] * m[r2 + c2] - m[r1 + c2] * m[r2 + c1];
    };
    double const det = cofactor(0, 0) * m[1] + cofactor(1, 0) * m[5] + cofactor(2, 0) * m[9];
    for (int r = 0; r < 3; ++r) {
        double* const row = g + r * 4;
        for (int c = 0; c < 3; ++c) row[c + 1] = cofactor(c, r) / det;
        row[0] = -(row[1] * m[0] + row[2] * m[4] + row[3] * m[8]);
    }
    return det;
}

}  // namespace

bool transform::fill_in_inverse() {
    int const n = rows_of(*this);
    if (n == 0) return true;
    double* const m = lazycopy_begin();
    // Exact on purpose: a tolerance would need a scale that the caller's units do not give.
    return (n == 2 ? invert2d(m, m + 6) : invert3d(m, m + 12)) != 0.0;
}

}  // namespace tvmath
