#include <algorithm>
#include <limits>

#include "tvmath/polynomial.h"

// Real roots of a real quartic by Ferrari's method: each real root of a cubic resolvent splits the quartic
// into two quadratics, whose roots are candidates. A candidate is polished by Newton steps and must then pass
// a test of its residual, so that an inaccurate split costs no digits.
//
// All of it runs in units of a power of two near the size of the largest root: the resolvent squares sixth
// powers of the roots, and a tolerance of 1e-10 has a meaning only beside a size of 1. The results keep to
// the documented tolerances in the caller's units.

inline namespace tvmath {
namespace {

constexpr double tolerance = 1e-10;
constexpr double epsilon = std::numeric_limits<double>::epsilon();

// x⁴ + d x³ + c x² + b x + a, in units of `unit` of the caller.
struct monic {
    double a, b, c, d, unit;
    double residual_limit, duplicate_limit;
};

// The quartic and its derivatives at x. `noise` bounds what rounding of the coefficients and of Horner's
// rule, 2 * 4 roundings, makes of a value of 0; `slope_noise` does so for the first derivative.
struct sample {
    double value, slope, curvature, noise, slope_noise;
};

sample at(monic const& m, double x) {
    double const z = fabs(x);
    double const value = (((x + m.d) * x + m.c) * x + m.b) * x + m.a;
    double const slope = ((4 * x + 3 * m.d) * x + 2 * m.c) * x + m.b;
    double const curvature = (12 * x + 6 * m.d) * x + 2 * m.c;
    double const d = fabs(m.d), c = fabs(m.c), b = fabs(m.b);
    double const size = (((z + d) * z + c) * z + b) * z + fabs(m.a);
    double const slope_size = ((4 * z + 3 * d) * z + 2 * c) * z + b;
    return {value, slope, curvature, 4 * epsilon * size, 4 * epsilon * slope_size};
}

// Exponent of the power of two just below the largest of |d|, |c|^(1/2), |b|^(1/3), |a|^(1/4), which bounds
// the roots to a factor of 4; `none` when all are 0.
constexpr int none = -2000;
int size_exponent(double a, double b, double c, double d) {
    double const coefficients[] = {d, c, b, a};
    int result = none;
    for (int i = 0; i < 4; ++i) {
        if (coefficients[i] == 0) continue;
        int const e = std::ilogb(coefficients[i]), n = i + 1;
        result = std::max(result, (e >= 0 ? e : e - n + 1) / n);
    }
    return result == none ? none : std::max(result, -1000);  // whose reciprocal is finite
}

// In units of 2^exponent; multiplied one by one, as the fourth power may overflow.
void scale(int exponent, double& a, double& b, double& c, double& d) {
    double const u = std::ldexp(1.0, -exponent);
    d *= u;
    c = c * u * u;
    b = b * u * u * u;
    a = a * u * u * u * u;
}

// Normalised, in units in which the largest root is between 1/4 and 4. False when a quotient overflows or is
// NaN, or when all are 0.
bool normalize(double c0, double c1, double c2, double c3, double c4, monic& m) {
    m.a = c0 / c4, m.b = c1 / c4, m.c = c2 / c4, m.d = c3 / c4;
    if (!std::isfinite(m.a) || !std::isfinite(m.b) || !std::isfinite(m.c) || !std::isfinite(m.d))
        return false;
    int const e = size_exponent(m.a, m.b, m.c, m.d);
    if (e == none) return false;
    scale(e, m.a, m.b, m.c, m.d);
    m.unit = std::ldexp(1.0, e);
    // A quartic of small roots is small everywhere near them: a fixed limit would accept any number.
    m.residual_limit = tolerance * std::min(1.0, std::ldexp(1.0, std::max(-4 * e, -1000)));
    m.duplicate_limit = tolerance * std::ldexp(1.0, -e);
    return true;
}

// The roots found, ascending, each with the distance within which it cannot be told from another one.
struct root_list {
    double x[4], radius[4];
    int count = 0;

    void insert(double candidate, double candidate_radius) {
        for (int i = 0; i < count; ++i) {
            if (fabs(x[i] - candidate) <= std::max(radius[i], candidate_radius)) return;
        }
        if (count == 4) return;
        int i = count++;
        x[i] = candidate, radius[i] = candidate_radius;
        for (; i > 0 && x[i - 1] > x[i]; --i) {
            std::swap(x[i - 1], x[i]);
            std::swap(radius[i - 1], radius[i]);
        }
    }
};

// A root of multiplicity 2 or 3 is ill-determined as a root (to the square or cube root of the noise), but
// well as the root of a derivative, and there the quartic must be 0 to rounding. True, with `x` moved there,
// when such a point is near.
bool settle_on_multiple_root(monic const& m, double& x, double& radius) {
    constexpr double near = 1e-3;
    double triple = x, pair = x;
    for (int i = 0; i < 4; ++i) {
        triple -= ((12 * triple + 6 * m.d) * triple + 2 * m.c) / (24 * triple + 6 * m.d);
        sample const s = at(m, pair);
        pair -= s.slope / s.curvature;
    }
    sample s = at(m, triple);
    if (fabs(triple - x) < near && fabs(s.value) <= s.noise && fabs(s.slope) <= s.slope_noise) {
        x = triple;
        radius = 4 * std::cbrt(s.noise / fabs(4 * triple + m.d));
        return true;
    }
    s = at(m, pair);
    if (fabs(pair - x) < near && fabs(s.value) <= s.noise) {
        x = pair;
        radius = 4 * sqrt(s.noise / fabs(s.curvature));
        return true;
    }
    return false;
}

// Newton's iteration from the candidate `x`, at most 12 steps, each shortened until the residual falls, so
// that a start near an extremum does not leave for another root; then the test.
void polish_and_insert(monic const& m, double x, root_list& roots) {
    sample s = at(m, x);
    for (int i = 0; i < 12 && s.value != 0; ++i) {
        double step = s.value / s.slope;
        sample t = at(m, x - step);
        for (int j = 0; j < 4 && !(fabs(t.value) < fabs(s.value)) && fabs(s.value) > s.noise; ++j) {
            step /= 4;
            t = at(m, x - step);
        }
        if (!(fabs(t.value) < fabs(s.value))) break;
        x -= step, s = t;
        if (fabs(step) <= epsilon * fabs(x)) break;
    }
    // Beside a multiple root value and slope vanish together: slope² = 2 value curvature at a double one.
    double radius = 0;
    if (sqr(s.slope) <= 4 * fabs(s.curvature) * (fabs(s.value) + 2 * s.noise) &&
        settle_on_multiple_root(m, x, radius)) {
        roots.insert(x, std::max(radius, m.duplicate_limit));
        return;
    }
    // Also accepted is a residual that is all rounding: at roots of size 1e3 an ulp of x makes one of 1e-4.
    if (!(fabs(s.value) < m.residual_limit || fabs(s.value) <= s.noise)) return;
    radius = s.slope == 0 ? 0 : 4 * s.noise / fabs(s.slope);
    roots.insert(x, std::max({m.duplicate_limit, std::min(radius, 1e-6), 4 * epsilon * fabs(x)}));
}

// The quartic in which the resolvent is formed, with z = (x - origin) / unit. It is the one above, or, for
// roots that lie close to each other, the one about their mean, in units of their distance. `noise` is what
// is to be treated as 0 in it.
struct frame {
    double a, b, c, d, origin, unit, noise;
};

// Candidates z² + p z + q. A discriminant within the noise of 0, on either side, may be the rounding of a
// double root: then its middle is the candidate.
void try_quadratic(monic const& m, frame const& f, double p, double q, root_list& roots) {
    double const middle = -0.5 * p, discriminant = sqr(middle) - q;
    if (!(discriminant >= -f.noise)) return;
    if (discriminant <= f.noise) {
        double x = f.origin + f.unit * middle, radius = 0;
        if (settle_on_multiple_root(m, x, radius))
            return roots.insert(x, std::max(radius, m.duplicate_limit));
    }
    if (discriminant < 0) return polish_and_insert(m, f.origin + f.unit * middle, roots);
    double const root = sqrt(discriminant);
    double const larger = middle < 0 ? middle - root : middle + root;
    double const smaller = larger == 0 ? 0 : q / larger;  // does not cancel
    polish_and_insert(m, f.origin + f.unit * larger, roots);
    polish_and_insert(m, f.origin + f.unit * smaller, roots);
}

// Two numbers from their sum (both halves given as mean and half difference) and their product: the larger by
// the sum, the smaller by the product, where the difference would cancel.
void from_mean(double mean, double spread, double product, double& plus, double& minus) {
    plus = mean + spread;
    minus = mean - spread;
    double& larger = fabs(plus) > fabs(minus) ? plus : minus;
    double& smaller = fabs(plus) > fabs(minus) ? minus : plus;
    double const quotient = product / larger;
    if (fabs(quotient) < fabs(larger)) smaller = quotient;
}

// With y a root of the resolvent the quartic is (z² + d/2 z + y/2)² - (s z + t)², where s² = d²/4 + y - c,
// t² = y²/4 - a and 2 s t = y d/2 - b. Of the four pairs of signs the product leaves two.
void try_split(monic const& m, frame const& f, double y, root_list& roots) {
    double const s2 = sqr(f.d) / 4 + y - f.c, t2 = sqr(y) / 4 - f.a;
    if (!(s2 > -f.noise && t2 > -f.noise)) return;
    // The root of the smaller one, which may be all rounding, comes from the product.
    double s = sqrt(std::max(s2, 0.0)), t = sqrt(std::max(t2, 0.0));
    double const product = y * f.d / 2 - f.b;
    if (s > t) {
        t = product / (2 * s);
    } else if (t > 0) {
        s = product / (2 * t);
    }
    double linear[2], constant[2];
    from_mean(f.d / 2, s, f.c - y, linear[0], linear[1]);
    from_mean(y / 2, t, f.a, constant[0], constant[1]);
    for (int i = 0; i < 2; ++i) try_quadratic(m, f, linear[i], constant[i], roots);
}

// Newton's iteration on y³ - c y² + p y - q, as long as it leaves less.
double polished_resolvent_root(double c, double p, double q, double y) {
    double value = ((y - c) * y + p) * y - q;
    for (int i = 0; i < 3; ++i) {
        double const next = y - value / ((3 * y - 2 * c) * y + p);
        double const rest = ((next - c) * next + p) * next - q;
        if (!(fabs(rest) < fabs(value))) break;
        y = next, value = rest;
    }
    return y;
}

void try_frame(monic const& m, frame const& f, root_list& roots) {
    double const p = f.b * f.d - 4 * f.a, q = sqr(f.b) + f.a * sqr(f.d) - 4 * f.a * f.c;
    double resolvent_roots[3];
    int const count = cubic(-q, p, -f.c, 1, resolvent_roots);
    // All have the absolute error of the largest one, which therefore gives the best split.
    std::iter_swap(resolvent_roots, std::max_element(resolvent_roots, resolvent_roots + count,
                                                     [](double y, double z) { return fabs(y) < fabs(z); }));
    for (int i = 0; i < count && roots.count < 4; ++i)
        try_split(m, f, polished_resolvent_root(f.c, p, q, resolvent_roots[i]), roots);
}

root_list solve(monic const& m) {
    root_list roots;
    double const mean = -m.d / 4;
    sample const s = at(m, mean);
    double const curvature_noise = 4 * epsilon * (2.25 * sqr(m.d) + 2 * fabs(m.c));
    if (fabs(s.value) <= s.noise && fabs(s.slope) <= s.slope_noise && fabs(s.curvature) <= curvature_noise) {
        roots.insert(mean, m.duplicate_limit);
        return roots;
    }
    // About the mean of roots that lie close to each other nothing cancels any more. Roots of different size
    // stay where they are: the small ones would be lost in the sum.
    frame f = {s.value, s.slope, s.curvature / 2, 0, mean, 1, tolerance};
    int const e = size_exponent(f.a, f.b, f.c, 0);
    if (e > -3) {
        try_frame(m, {m.a, m.b, m.c, m.d, 0, 1, tolerance}, roots);
        return roots;
    }
    scale(e, f.a, f.b, f.c, f.d);
    f.unit = std::ldexp(1.0, e);
    f.noise = std::max(tolerance, 4 * std::ldexp(s.noise, -4 * e));
    try_frame(m, f, roots);
    return roots;
}

}  // namespace

vector quartic(double c0, double c1, double c2, double c3, double c4) {
    root_list roots;
    double unit = 1;
    if (c4 == 0) {
        double cubic_roots[3];
        int const count = cubic(c0, c1, c2, c3, cubic_roots);
        for (int i = 0; i < count; ++i) roots.insert(cubic_roots[i], tolerance);
    } else if (monic m; normalize(c0, c1, c2, c3, c4, m)) {
        roots = solve(m);
        unit = m.unit;
    } else if (c0 == 0 && c1 == 0 && c2 == 0 && c3 == 0) {
        roots.insert(0, 0);
    }
    vector result(static_cast<unsigned int>(roots.count), roots.x);
    double* const x = result.lazycopy_begin();
    for (int i = 0; i < roots.count; ++i) x[i] *= unit;
    return result;
}

}  // namespace tvmath
