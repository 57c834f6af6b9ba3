#include "tvmath/polynomial.h"

// Closed forms for complex coefficients. They lose digits where roots are close to each other or of very
// different size: a double root keeps half of its digits, a triple one a third, and a root that is small
// beside the others an absolute error of some 1e-16 of the largest. `solve_nr` does better on the latter.

inline namespace tvmath {
namespace {

constexpr double third = 0.3333333333333333;

// A coefficient or a cube root of this size counts as 0.
bool vanishes(complex const& z) {
    return fabs(z.re) < 1e-60 && fabs(z.im) < 1e-60;
}

int solve_linear(complex const& c0, complex const& c1, complex* roots) {
    if (!c1) return 0;
    roots[0] = -c0 / c1;
    return 1;
}

int solve_quadratic(complex const& c0, complex c1, complex const& c2, complex* roots) {
    if (vanishes(c2)) return solve_linear(c0, c1, roots);
    complex const b = c1 / (2 * c2), root = sqrt(sqr(b) - c0 / c2);
    roots[0] = -b - root;
    roots[1] = -b + root;
    return 2;
}

// Cardano: with x = y - c/3, y³ + p y + q = 0 has the roots u + v, where u³ and v³ are -q/2 ± sqrt D and
// u v = -p/3.
int solve_cubic(complex const& c0, complex const& c1, complex const& c2, complex const& c3, complex* roots) {
    if (vanishes(c3)) return solve_quadratic(c0, c1, c2, roots);
    complex const a = c0 / c3, b = c1 / c3, c = c2 / c3;
    complex const p = b - third * sqr(c);
    complex const q = 2.0 / 27 * (sqr(c) * c) - third * (c * b) + a;
    complex const p3 = sqr(p) * p * (1.0 / 27), root = sqrt(0.25 * sqr(q) + p3);
    complex first = -0.5 * q + root, second = -0.5 * q - root;
    // The product of the two is -p³/27. The smaller one, a difference, may have no digit left: a wrong u
    // would then spoil v too.
    if (abs2(first) < abs2(second)) {
        first = -p3 / second;
    } else if (abs2(second) < abs2(first)) {
        second = -p3 / first;
    }
    complex u = pow(first, third);
    if (abs(u) < 1e-60) u = pow(second, third);
    // Both vanish at a triple root, where p is 0 too.
    complex const v = abs(u) < 1e-60 ? complex(0) : -p * reciprocal(3 * u);
    complex const shift = third * c, mean = -0.5 * (u + v), spread = complex(0, sqrt(3.0) / 2) * (u - v);
    roots[0] = u + v - shift;
    roots[1] = mean - spread - shift;
    roots[2] = mean + spread - shift;
    return 3;
}

// The root of largest magnitude of the resolvent 8 m³ + 8 p m² + (2 p² - 8 r) m - q² of Ferrari's method: the
// one that divides by the largest number.
complex resolvent_root(complex const& p, complex const& q, complex const& r) {
    complex roots[3];
    int const count = solve_cubic(-sqr(q), 2 * sqr(p) - 8 * r, 8 * p, 8, roots);
    complex largest = roots[0];
    for (int i = 1; i < count; ++i) {
        if (abs2(roots[i]) > abs2(largest)) largest = roots[i];
    }
    return largest;
}

// Ferrari: with x = y - d/4, y⁴ + p y² + q y + r = (y² + p/2 + m)² - (s y - q/(2 s))², s = sqrt(2 m).
int solve_quartic(complex const& c0, complex const& c1, complex const& c2, complex const& c3,
                  complex const& c4, complex* roots) {
    if (vanishes(c4)) return solve_cubic(c0, c1, c2, c3, roots);
    complex const a = c0 / c4, b = c1 / c4, c = c2 / c4, d = c3 / c4, shift = 0.25 * d, d2 = sqr(d);
    complex const p = c - 0.375 * d2;
    complex const q = b - 0.5 * (c * d) + 0.125 * (d2 * d);
    complex const r = a - shift * (b - shift * (c - 0.1875 * d2));
    complex const m = resolvent_root(p, q, r), s = sqrt(2 * m);
    // All three roots of the resolvent are 0 for a quadruple root alone.
    complex const t = !s ? complex(0) : q / (2 * s), middle = 0.5 * p + m;
    solve_quadratic(middle - t, s, 1, roots);
    solve_quadratic(middle + t, -s, 1, roots + 2);
    for (int i = 0; i < 4; ++i) roots[i] -= shift;
    return 4;
}

idioms::array<complex> list_of(int count, complex const* roots) {
    return idioms::array<complex>(static_cast<unsigned int>(count), roots);
}

}  // namespace

idioms::array<complex> linear(complex c0, complex c1) {
    complex roots[1];
    return list_of(solve_linear(c0, c1, roots), roots);
}

idioms::array<complex> quadratic(complex c0, complex c1, complex c2) {
    complex roots[2];
    return list_of(solve_quadratic(c0, c1, c2, roots), roots);
}

idioms::array<complex> cubic(complex c0, complex c1, complex c2, complex c3) {
    complex roots[3];
    return list_of(solve_cubic(c0, c1, c2, c3, roots), roots);
}

idioms::array<complex> quartic(complex c0, complex c1, complex c2, complex c3, complex c4) {
    complex roots[4];
    return list_of(solve_quartic(c0, c1, c2, c3, c4, roots), roots);
}

}  // namespace tvmath
