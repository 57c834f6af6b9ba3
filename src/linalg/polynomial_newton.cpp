#include "tvmath/polynomial.h"

inline namespace tvmath {
namespace {

// Magnitudes are compared squared. Below `vanishing` a derivative gives no step, and a step no change.
constexpr double vanishing = 1e-150;
constexpr int most_steps = 1000;

idioms::array<complex> without_leading_zeros(idioms::array<complex> c) {
    unsigned int n = c.capacity();
    while (n > 0 && !c[n - 1]) --n;
    c.redim(n);
    return c;
}

// One root of c, by Newton's iteration from i: off the real axis, on which a real polynomial would keep the
// iteration, so that complex roots can be reached. False when it does not settle.
//
// It stops when a step is below 3e-16 of z. A step that comes near that (3e-14, 1e-12) is about to go under
// in rounding and may never get there, so it leaves only 15, or 30, more steps; a multiple root, approached
// linearly until its derivative is all rounding, mostly runs through all of them.
bool find_root(idioms::array<complex> const& c, complex& z) {
    idioms::array<complex> const d = derivative(c);
    z = complex(0, 1);
    complex step;
    for (int i = 0; i < most_steps; ++i) {
        complex const slope = poly(z, d);
        if (abs2(slope) < vanishing) return false;
        step = poly(z, c) * reciprocal(slope);
        z -= step;
        double const m = abs2(step);
        if (m <= vanishing) return true;
        double const r = abs2(z) / m;
        if (r >= 1e31) return true;
        if (r >= 1e28) {
            i = i < 985 ? 985 : i;
        } else if (r >= 1e24) {
            i = i < 970 ? 970 : i;
        }
    }
    return abs2(step) <= sqr(1e-11) * abs2(z);
}

}  // namespace

idioms::array<complex> solve_nr(idioms::array<complex> c) {
    c = without_leading_zeros(c);
    unsigned int const n = c.capacity();
    idioms::array<complex> roots(n > 0 ? n - 1 : 0);
    complex* const to = roots.lazycopy_begin();
    unsigned int found = 0;
    complex z;
    while (c.capacity() > 1 && find_root(c, z)) {
        factor(c, z);
        to[found++] = z;
    }
    roots.redim(found);
    return roots;
}

vector solve_nr(vector const& c) {
    unsigned int const n = dim(c);
    idioms::array<complex> coefficients(n);
    complex* const to = coefficients.lazycopy_begin();
    for (unsigned int i = 0; i < n; ++i) to[i] = c[i];

    idioms::array<complex> const roots = solve_nr(coefficients);
    vector result(roots.capacity());
    double* const kept = result.lazycopy_begin();
    unsigned int count = 0;
    // Relative to the real part alone, so that a root near 0 is taken only when it is exactly real.
    for (complex const& z : roots) {
        if (fabs(1e-10 * z.re) >= fabs(z.im)) kept[count++] = z.re;
    }
    result.redim(count);
    return result;
}

}  // namespace tvmath
