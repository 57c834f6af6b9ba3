#include <cmath>

#include "transform_block.h"
#include "tvmath/transform.h"

inline namespace tvmath {

using namespace transform_detail;

namespace {

// The XY plane of a 3D transform as z = p x + q y + r: where the third row of the inverse map gives 0.
struct plane_heights {
    double p, q, r;
};

plane_heights plane_of(transform const& t) {
    double const* const row = t.begin() + map_size(3) + 8;
    return {-row[1] / row[3], -row[2] / row[3], -row[0] / row[3]};
}

// Columns 0 to n of the forward map; the inverse map is computed.
transform from_columns(int n, point const (&columns)[4]) {
    idioms::array<double> block(static_cast<unsigned int>(2 * map_size(n)));
    double* const m = block.lazycopy_begin();
    for (int r = 0; r < n; ++r) {
        for (int c = 0; c <= n; ++c) m[r * (n + 1) + c] = columns[c][static_cast<unsigned int>(r + 1)];
    }
    transform t(block);
    // The handle is released first, so that the block need not be copied to be written.
    block = idioms::array<double>();
    t.fill_in_inverse();
    return t;
}

}  // namespace

transform make_transform(point center, point u, point v) {
    center.promote2d();
    u.promote2d();
    v.promote2d();
    return from_columns(2, {center, u, v, point()});
}

transform make_transform(point center, point u, point v, point w) {
    center.promote3d();
    u.promote3d();
    v.promote3d();
    w.promote3d();
    return from_columns(3, {center, u, v, w});
}

// Gram-Schmidt by shears of the inverse transform: a shear subtracts a multiple of one column of its inverse
// map from another, and that map is the present forward map.
transform& transform::orthogonalize() {
    if (rows_of(*this) == 0) return *this;
    inverse();
    double const d1 = inverse_dot(1, 1);
    if (d1 > 0) {
        shear_x(inverse_dot(1, 2) / d1);
        double const d2 = inverse_dot(2, 2);
        if (is_3d() && d2 > 0) {
            shear_x(0, inverse_dot(1, 3) / d1);
            shear_y(0, inverse_dot(2, 3) / d2);
        }
    }
    return inverse();
}

transform& transform::orthonormalize() {
    if (rows_of(*this) == 0) return *this;
    inverse();
    double const d1 = inverse_dot(1, 1);
    if (d1 > 0) {
        dilate(std::sqrt(d1), 1.0);
        shear_x(inverse_dot(1, 2));
        double const d2 = inverse_dot(2, 2);
        if (d2 > 0) {
            dilate(1.0, std::sqrt(d2));
            if (is_3d()) {
                shear_x(0, inverse_dot(1, 3));
                shear_y(0, inverse_dot(2, 3));
                double const d3 = inverse_dot(3, 3);
                if (d3 > 0) dilate(1, 1, std::sqrt(d3));
            }
        }
    }
    return inverse();
}

transform orthonormalize_2d_projection(transform const& t) {
    if (rows_of(t) == 0) return t;
    point center = t.basis(0), u = t.basis(1), v = t.basis(2);
    center.project2d();
    u.project2d();
    v.project2d();
    if (cross2d(u, v) < 0) {
        v.rotate_90();
        u = ::normalize(u + v);
        v = u;
        v.rotate_270();
    } else {
        v.rotate_270();
        u = ::normalize(u + v);
        v = u;
        v.rotate_90();
    }
    return make_transform(center, u, v);
}

transform& transform::protrude(transform const& t) {
    if (!t.is_3d()) return is_3d() ? project2d() : *this;
    auto const [p, q, r] = plane_of(t);
    double* const m = promote3d().lazycopy_begin();
    for (int c = 0; c < 4; ++c) m[8 + c] = p * m[c] + q * m[4 + c];
    m[8] += r;
    double* const g = m + map_size(3);
    add_column(g, 3, 1, -p, 3);
    add_column(g, 3, 2, -q, 3);
    for (int row = 0; row < 12; row += 4) {
        g[row + 3] *= 2;
        g[row] -= r * g[row + 3];
    }
    return *this;
}

transform protrude(transform subject, transform const& t) {
    return subject.protrude(t);
}

point protrude(transform const& t, point p) {
    if (!t.is_3d()) {
        p.project2d();
        return p;
    }
    auto const [slope_x, slope_y, height] = plane_of(t);
    p.promote3d();
    p.z() = slope_x * p.x() + slope_y * p.y() + (p.is_location() ? height : 0.0);
    return p;
}

}  // namespace tvmath
