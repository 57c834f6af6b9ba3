#include "tvmath/transform.h"

#include <cmath>
#include <cstring>

#include "direction_angles.h"
#include "transform_block.h"

inline namespace tvmath {

using namespace transform_detail;

namespace {

constexpr double identity2d[] = {0, 1, 0, 0, 0, 1, 0, 1, 0, 0, 0, 1};
constexpr double identity3d[] = {0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};

transform make_identity(int n) {
    return transform(n == 2 ? idioms::array<double>(12, identity2d) : idioms::array<double>(24, identity3d));
}

// Zero offsets and the given linear part, row by row; the inverse map is the transpose.
transform make_rotation3d(double const (&a)[9]) {
    idioms::array<double> block(24);
    double* const m = block.lazycopy_begin();
    for (int r = 0; r < 3; ++r) {
        for (int c = 0; c < 3; ++c) m[r * 4 + c + 1] = m[12 + c * 4 + r + 1] = a[r * 3 + c];
    }
    return transform(block);
}

transform make_rotation2d(double cosine, double sine) {
    double const block[] = {0, cosine, -sine, 0, sine, cosine, 0, cosine, sine, 0, -sine, cosine};
    return transform(idioms::array<double>(12, block));
}

point map_column(double const* map, int n, int i) {
    if (n != 0 && i >= 0 && i <= n) return column_of(map, n, i);
    switch (i) {
        case 1:
            return point(false, 1, 0);
        case 2:
            return point(false, 0, 1);
        case 3:
            return point(false, 0, 0, 1);
        default:
            return point();
    }
}

double map_dot(double const* map, int n, int i, int j) {
    if (n == 0 || i < 0 || j < 0 || i > n || j > n) return 0.0;
    return dot(column_of(map, n, i), column_of(map, n, j));
}

}  // namespace

transform::transform(double dx, double dy) : transform(make_identity(2)) {
    double* const m = lazycopy_begin();
    m[0] = dx;
    m[3] = dy;
    m[6] = 0 - dx;  // not -dx: the inverse of the translation by (0, 0) is then the identity to the last bit
    m[9] = 0 - dy;
}

transform::transform(double dx, double dy, double dz) : transform(make_identity(3)) {
    double* const m = lazycopy_begin();
    m[0] = dx;
    m[4] = dy;
    m[8] = dz;
    m[12] = 0 - dx;
    m[16] = 0 - dy;
    m[20] = 0 - dz;
}

transform::transform(point const& p)
    : transform(p.is_2d()   ? transform(p.x(), p.y())
                : p.is_3d() ? transform(p.x(), p.y(), p.z())
                            : transform()) {}

transform transform::dilation(double sx, double sy) {
    double const block[] = {0, sx, 0, 0, 0, sy, 0, 1 / sx, 0, 0, 0, 1 / sy};
    return transform(idioms::array<double>(12, block));
}

transform transform::dilation(double sx, double sy, double sz) {
    double const block[] = {0, sx,     0, 0, 0, 0, sy,     0, 0, 0, 0, sz,
                            0, 1 / sx, 0, 0, 0, 0, 1 / sy, 0, 0, 0, 0, 1 / sz};
    return transform(idioms::array<double>(24, block));
}

transform transform::rotation(double angle) {
    if (angle == 0.0) return make_identity(2);
    return make_rotation2d(std::cos(angle), std::sin(angle));
}

transform transform::rotation_90() {
    constexpr double block[] = {0, 0, -1, 0, 1, 0, 0, 0, 1, 0, -1, 0};
    return transform(idioms::array<double>(12, block));
}

transform transform::rotation_180() {
    constexpr double block[] = {0, -1, 0, 0, 0, -1, 0, -1, 0, 0, 0, -1};
    return transform(idioms::array<double>(12, block));
}

transform transform::rotation_270() {
    constexpr double block[] = {0, 0, 1, 0, -1, 0, 0, 0, -1, 0, 1, 0};
    return transform(idioms::array<double>(12, block));
}

transform transform::rotation(double a, double b, double c) {
    if (a == 0.0 && b == 0.0 && c == 0.0) return make_identity(3);
    double const ca = std::cos(a), sa = std::sin(a), cb = std::cos(b), sb = std::sin(b);
    double const cc = std::cos(c), sc = std::sin(c);
    return make_rotation3d({ca * cb, -sa * cc - ca * sb * sc, sa * sc - ca * sb * cc,  //
                            sa * cb, ca * cc - sa * sb * sc, -ca * sc - sa * sb * cc,  //
                            sb, cb * sc, cb * cc});
}

transform transform::rotation(point const& axis, double angle) {
    if (angle == 0.0) return make_identity(3);
    double const c = std::cos(angle), s = std::sin(angle), t = 1 - c;
    double const n = axis.length3d();
    if (n == 0.0) return make_rotation3d({1, 0, 0, 0, c, -s, 0, s, c});
    point unit = axis;
    unit /= n;
    unit.promote3d();
    double const x = unit.x(), y = unit.y(), z = unit.z();
    return make_rotation3d({t * x * x + c, t * x * y - s * z, t * x * z + s * y,  //
                            t * x * y + s * z, t * y * y + c, t * y * z - s * x,  //
                            t * x * z - s * y, t * y * z + s * x, t * z * z + c});
}

transform transform::extrusion(point u, point v, point w) {
    u.promote3d();
    v.promote3d();
    w.promote3d();
    return make_rotation3d({u.x(), v.x(), w.x(), u.y(), v.y(), w.y(), u.z(), v.z(), w.z()});
}

transform transform::extrusion(point normal) {
    normal.to_direction();
    normal.normalize();
    // Close to Z, the product with Z would lose its digits; 1/64 keeps all but six bits of them.
    bool const along_z = std::fabs(normal.x()) < 1.0 / 64 && std::fabs(normal.y()) < 1.0 / 64;
    point const u = ::normalize(cross(along_z ? point(false, 0, 1, 0) : point(false, 0, 0, 1), normal));
    return extrusion(u, ::normalize(cross(normal, u)), normal);
}

transform& transform::promote2d() {
    if (rows_of(*this) == 0) *this = make_identity(2);
    return *this;
}

transform& transform::promote3d() {
    if (is_3d()) return *this;
    transform raised = make_identity(3);
    if (is_2d()) {
        double* const to = raised.lazycopy_begin();
        double const* const from = begin();
        for (int r = 0; r < 2; ++r) {
            for (int c = 0; c < 3; ++c) {
                to[r * 4 + c] = from[r * 3 + c];
                to[12 + r * 4 + c] = from[6 + r * 3 + c];
            }
        }
    }
    return *this = raised;
}

transform& transform::project2d() {
    if (!is_3d()) return promote2d();
    idioms::array<double> block(12);
    double* const to = block.lazycopy_begin();
    for (int r = 0; r < 2; ++r) std::memcpy(to + r * 3, begin() + r * 4, 3 * sizeof(double));
    *this = transform(block);
    fill_in_inverse();
    return *this;
}

point transform::basis(int i) const {
    return map_column(begin(), rows_of(*this), i);
}

point transform::inverse_basis(int i) const {
    int const n = rows_of(*this);
    return map_column(begin() + map_size(n), n, i);
}

double transform::dot(int i, int j) const {
    return map_dot(begin(), rows_of(*this), i, j);
}

double transform::inverse_dot(int i, int j) const {
    int const n = rows_of(*this);
    return map_dot(begin() + map_size(n), n, i, j);
}

bool transform::is_identity() const {
    // By bytes, exact on purpose: a map that is only close to the identity still moves points.
    if (is_2d()) return std::memcmp(begin(), identity2d, 6 * sizeof(double)) == 0;
    if (is_3d()) return std::memcmp(begin(), identity3d, 12 * sizeof(double)) == 0;
    return true;
}

bool transform::is_left_handed() const {
    double const* const m = begin();
    if (is_2d()) return m[1] * m[5] - m[4] * m[2] < 0;
    return is_3d() && ::dot(basis(1), cross(basis(2), basis(3))) < 0;
}

double transform::pitch() const {
    return pitch_of(basis(1));
}

double transform::yaw() const {
    return yaw_of(basis(1));
}

double transform::roll() const {
    if (!is_3d()) return 0.0;
    return std::atan2(direction(2).z(), direction(3).z());
}

bool operator==(transform const& a, transform const& b) {
    if (a.address() == b.address()) return true;
    return a.capacity() == b.capacity() &&
           std::memcmp(a.begin(), b.begin(), a.capacity() * sizeof(double)) == 0;
}

bool _isnan(transform const& t, bool inverse_too) {
    int const n = rows_of(t), count = map_size(n) * (inverse_too ? 2 : 1);
    double const* const m = t.begin();
    for (int i = 0; i < count; ++i) {
        if (std::isnan(m[i])) return true;
    }
    return false;
}

}  // namespace tvmath
