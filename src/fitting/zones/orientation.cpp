#include "orientation.h"

#include <cmath>

#include "linalg/exact_sum.h"

inline namespace tvmath {
namespace {

constexpr double rounding = 0x1p-53;

// A number as the sum of two doubles, about 104 bits: what most sides near to 0 need, and ten times as fast.
// Source: T. J. Dekker, A floating-point technique for extending the available precision, Numer. Math. 18
// (1971) 224-242.
struct twofold {
    double high, low;

    static twofold difference(double a, double b) {
        rounded_value const d = exact_plus(a, -b);
        return {d.value, d.error};
    }
    twofold operator*(twofold const& b) const {
        double const product = high * b.high;
        double const rest = std::fma(high, b.high, -product) + (high * b.low + low * b.high),
                     sum = product + rest;
        return {sum, rest - (sum - product)};
    }
    twofold operator+(twofold const& b) const {
        double const s = high + b.high, of_b = s - high;
        double const rest = (high - (s - of_b)) + (b.high - of_b) + (low + b.low), sum = s + rest;
        return {sum, rest - (sum - s)};
    }
    twofold operator-(twofold const& b) const { return *this + twofold{-b.high, -b.low}; }
};

struct planar {
    double x, y;
};

exact_sum<2> exact_difference(double a, double b) {
    return {a, -b};
}

exact_sum<16> exact_determinant(planar a, planar b, planar c, planar d) {
    return exact_difference(b.x, a.x) * exact_difference(d.y, c.y) +
           exact_difference(a.y, b.y) * exact_difference(d.x, c.x);
}

int sign_of(double x) {
    return x > 0 ? 1 : x < 0 ? -1 : 0;
}

planar along_z(xyz const& a) {
    return {a.x, a.y};
}
planar along_x(xyz const& a) {
    return {a.y, a.z};
}
planar along_y(xyz const& a) {
    return {a.z, a.x};
}

template <class view>
bool are_collinear_in(view seen, xyz const& a, xyz const& b, xyz const& c) {
    return exact_determinant(seen(a), seen(b), seen(a), seen(c)).sign() == 0.0;
}

// One component of (b - a) x (c - a), times (p - a) along it.
template <class view>
exact_sum<64> exact_term(view seen, xyz const& a, xyz const& b, xyz const& c, exact_sum<2> const& along) {
    return exact_determinant(seen(a), seen(b), seen(a), seen(c)) * along;
}

struct twofold_vector {
    twofold x, y, z;

    static twofold_vector difference(xyz const& a, xyz const& b) {
        return {twofold::difference(a.x, b.x), twofold::difference(a.y, b.y), twofold::difference(a.z, b.z)};
    }
};

twofold dot(twofold_vector const& a, twofold_vector const& b) {
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

twofold_vector cross(twofold_vector const& a, twofold_vector const& b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

}  // namespace

int exact_turn_xy(xyz const& a, xyz const& b, xyz const& c, xyz const& d) {
    return sign_of(exact_determinant(along_z(a), along_z(b), along_z(c), along_z(d)).sign());
}

bool are_collinear(xyz const& a, xyz const& b, xyz const& c) {
    return are_collinear_in(along_x, a, b, c) && are_collinear_in(along_y, a, b, c) &&
           are_collinear_in(along_z, a, b, c);
}

int orientation(xyz const& a, xyz const& b, xyz const& c, xyz const& p) {
    xyz const u = b - a, v = c - a, d = p - a;
    double const yz = u.y * v.z, zy = u.z * v.y, zx = u.z * v.x, xz = u.x * v.z, xy = u.x * v.y,
                 yx = u.y * v.x;
    double const determinant = d.x * (yz - zy) + d.y * (zx - xz) + d.z * (xy - yx);
    double const terms = std::fabs(d.x) * (std::fabs(yz) + std::fabs(zy)) +
                         std::fabs(d.y) * (std::fabs(zx) + std::fabs(xz)) +
                         std::fabs(d.z) * (std::fabs(xy) + std::fabs(yx));
    if (std::fabs(determinant) > 8 * rounding * terms) return determinant > 0 ? 1 : -1;
    twofold_vector const normal = cross(twofold_vector::difference(b, a), twofold_vector::difference(c, a));
    double const closer = dot(normal, twofold_vector::difference(p, a)).high;
    if (std::fabs(closer) > 0x1p-97 * terms) return closer > 0 ? 1 : -1;
    return sign_of((exact_term(along_x, a, b, c, exact_difference(p.x, a.x)) +
                    exact_term(along_y, a, b, c, exact_difference(p.y, a.y)) +
                    exact_term(along_z, a, b, c, exact_difference(p.z, a.z)))
                       .sign());
}

xyz exact_cross(xyz const& a, xyz const& b, xyz const& c, xyz const& d) {
    twofold_vector const n = cross(twofold_vector::difference(b, a), twofold_vector::difference(d, c));
    return {n.x.high, n.y.high, n.z.high};
}

}  // namespace tvmath
