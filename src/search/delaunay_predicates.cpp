#include "delaunay_predicates.h"

#include "linalg/exact_sum.h"

inline namespace tvmath {
namespace Delaunay {
namespace {

// Twice the digits of a double, by high and low part. Sums and products are off by less than 2^-102 of their
// parts.
struct twofold {
    double high, low;
};

twofold operator-(twofold a) {
    return {-a.high, -a.low};
}

twofold operator+(twofold a, twofold b) {
    rounded_value const high = exact_plus(a.high, b.high), low = exact_plus(a.low, b.low);
    double const carry = high.error + low.value, value = high.value + carry;
    double const rest = (carry - (value - high.value)) + low.error, sum = value + rest;
    return {sum, rest - (sum - value)};
}

twofold operator*(twofold a, twofold b) {
    rounded_value const high = exact_times(a.high, b.high);
    double const low = high.error + (a.high * b.low + a.low * b.high), value = high.value + low;
    return {value, low - (value - high.value)};
}

twofold difference(double a, double b) {
    rounded_value const d = exact_plus(a, -b);
    return {d.value, d.error};
}

// The formulas for both kinds of numbers.
template <class number>
auto determinant(number const& ax, number const& ay, number const& bx, number const& by) {
    return ax * by + -(ay * bx);
}

template <class number>
auto power_of(number const& ax, number const& ay, number const& bx, number const& by, number const& cx,
              number const& cy) {
    return (ax * ax + ay * ay) * determinant(bx, by, cx, cy) +
           (bx * bx + by * by) * determinant(cx, cy, ax, ay) +
           (cx * cx + cy * cy) * determinant(ax, ay, bx, by);
}

// The diagonals p q and r s have the same box: corners of a rectangle along the axes, the most frequent way
// to lie on one circle without the digits to show it, as on a grid of step 0.1.
bool same_box(double const* p, double const* q, double const* r, double const* s) {
    auto const same = [&](int i) { return (p[i] == r[i] && q[i] == s[i]) || (p[i] == s[i] && q[i] == r[i]); };
    return same(0) && same(1);
}

double exact_power(double const* a, double const* b, double const* c, double const* d, double size) {
    if (same_box(a, b, c, d) || same_box(a, c, b, d) || same_box(b, c, a, d)) return 0;
    twofold const power = power_of(difference(a[0], d[0]), difference(a[1], d[1]), difference(b[0], d[0]),
                                   difference(b[1], d[1]), difference(c[0], d[0]), difference(c[1], d[1]));
    // A dozen roundings of at most 2^-102 of the size each.
    if (std::fabs(power.high) > 0x1p-96 * size) return power.high;
    using delta = exact_sum<2>;
    return power_of(delta{a[0], -d[0]}, delta{a[1], -d[1]}, delta{b[0], -d[0]}, delta{b[1], -d[1]},
                    delta{c[0], -d[0]}, delta{c[1], -d[1]})
        .sign();
}

}  // namespace

predicates::predicates(double quantum, double largest) {
    // A difference needs the 53 bits too.
    double const counts = largest <= 0x1p52 * quantum ? 0x1p53 : 0;
    exact_area_ = counts * quantum * quantum;
    exact_power_ = exact_area_ * quantum * quantum;
}

double predicates::exact_turn(double const* a, double const* b, double const* c) {
    exact_sum<2> const ax = {a[0], -c[0]}, ay = {a[1], -c[1]}, bx = {b[0], -c[0]}, by = {b[1], -c[1]};
    return determinant(ax, ay, bx, by).sign();
}

double predicates::near_circle(double const* a, double const* b, double const* c, double const* d,
                               double power, double size) const {
    if (!(size <= exact_power_)) power = exact_power(a, b, c, d, size);
    if (power != 0.0 || d == a || d == b || d == c) return power;
    // The power grows with the distance of a, b and c from the centre by the areas of the other three, and
    // falls with that of d.
    double const *const ab = precedes<0>(a, b) ? b : a, *const cd = precedes<0>(c, d) ? d : c;
    double const* const last = precedes<0>(ab, cd) ? cd : ab;
    if (last == a) return turn(b, c, d);
    if (last == b) return turn(c, a, d);
    return last == c ? turn(a, b, d) : -turn(a, b, c);
}

}  // namespace Delaunay
}  // namespace tvmath
