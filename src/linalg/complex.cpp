#include "tvmath/complex.h"

#include <limits>

inline namespace tvmath {
namespace {

// sin and cos times cosh and sinh, where 0 times an overflown factor is 0: the exact factor is finite.
double times(double circular, double hyperbolic) {
    return circular == 0 ? circular : circular * hyperbolic;
}

complex exchanged(complex const& z) {
    return complex(z.im, z.re);
}

}  // namespace

complex cis(double x) {
    return complex(cos(x), sin(x));
}

complex cish(double x) {
    // Below it the second terms, x² / 2 and x² / 6, are beyond the last digit.
    static double const tiny = sqrt(std::numeric_limits<double>::epsilon());
    constexpr double e = 2.718281828459045;
    double const m = fabs(x);
    if (m < tiny) return complex(1, x);
    if (m < 0.5) return complex(cosh(x), sinh(x));  // e^x - e^-x would cancel
    if (m < 20) {
        double const grown = exp(m), shrunk = 1 / grown;
        return complex((grown + shrunk) / 2, std::copysign((grown - shrunk) / 2, x));
    }
    // e^-m is beyond the last digit. e^m / 2 overflows later than e^m does: with a unit of the exponent moved
    // into the factor, e / 2 > 1, the intermediate value is always below the result.
    double const t = e / 2 * exp(m - 1);
    return complex(t, std::copysign(t, x));
}

complex exp(complex const& z) {
    // In two factors where e^re overflows, since the cosine or the sine may bring it back.
    constexpr double safe = 709;
    if (!(z.re > safe)) return exp(z.re) * cis(z.im);
    complex const direction = cis(z.im);
    double const rest = exp(z.re - safe), most = exp(safe);
    return complex(times(direction.re * most, rest), times(direction.im * most, rest));
}

complex log(complex const& z) {
    // Near |z| = 1 the logarithm of the rounded magnitude keeps no digit of a small result. There
    //     ln|z| = log1p(|z|² - 1) / 2,    |z|² - 1 = (a - 1) (a + 1) + b²,    a >= b the parts' magnitudes,
    // is exact to some units of 1e-16 b², so it loses digits only where the two terms cancel.
    double const m = abs(z);
    if (!(m > 0.5 && m < 2)) return complex(log(m), arg(z));
    double const x = fabs(z.re), y = fabs(z.im), a = x > y ? x : y, b = x > y ? y : x;
    return complex(0.5 * std::log1p((a - 1) * (a + 1) + b * b), arg(z));
}

complex log(double base, complex const& z) {
    return log(z) / log(base);
}

complex log10(complex const& z) {
    constexpr double ln_10 = 2.302585092994046;
    return log(z) / ln_10;
}

complex sqrt(complex const& z) {
    // |z| + |re| overflows beyond this bound, and below the other one |z| lacks digits. 4^k scales exactly.
    constexpr double large = 0x1p+1022, small = 0x1p-960;
    double const size = fmax(fabs(z.re), fabs(z.im));
    if (std::isinf(z.im)) return complex(infinity, z.im);
    if (size >= large && size < infinity) return 2 * sqrt(0.25 * z);
    if (size < small && size > 0) return 0x1p-54 * sqrt(0x1p+108 * z);

    // The parts are sqrt((|z| + re) / 2) and sqrt((|z| - re) / 2). The difference under one of the roots
    // cancels when |im| is small beside |re|; since the product of the parts is im / 2, that part is then
    // |im| / (2 times the other), the same value with all digits.
    double const m = abs(z);
    double const larger = sqrt((m + fabs(z.re)) / 2);
    double smaller = 0;
    if (fabs(z.im) >= fabs(z.re)) {
        smaller = sqrt((m - fabs(z.re)) / 2);
    } else if (larger != 0) {
        smaller = fabs(z.im) / (2 * larger);
    }
    if (std::isnan(z.im)) smaller = z.im;
    double const sign = z.im < 0 ? -1 : 1;  // a comparison, so that an im of -0.0 counts as 0
    return z.re < 0 ? complex(smaller, sign * larger) : complex(larger, sign * smaller);
}

// Powers. The angle n arg z is off by n ulp of arg z, so that a power of many turns keeps fewer digits of its
// direction; its magnitude keeps them.

complex pow(complex const& z, int n) {
    bool const odd = n % 2 != 0;
    double const magnitude =
        odd ? tvmath::pow(abs(z), static_cast<long>(n)) : tvmath::pow(abs2(z), static_cast<long>(n / 2));
    return n == 0 ? complex(magnitude, 0) : magnitude * cis(n * arg(z));
}

complex pow(complex const& z, double x) {
    return std::pow(abs(z), x) * cis(x * arg(z));
}

namespace {

// (r e^(i t))^w. A real exponent takes no logarithm, and 0 to a power of positive real part is 0, although
// its angle w.im ln 0 is undefined.
complex power_of_polar(double r, double t, complex const& w) {
    if (r == 0 && w.re > 0) return complex(0, 0);
    double const turn = w.im == 0 ? 0 : w.im * log(r);
    return std::pow(r, w.re) * exp(-w.im * t) * cis(w.re * t + turn);
}

}  // namespace

complex pow(complex const& z, complex const& w) {
    return power_of_polar(abs(z), arg(z), w);
}

complex pow(double x, complex const& w) {
    return power_of_polar(fabs(x), x < 0 ? pi : 0, w);
}

complex sin(complex const& z) {
    complex const c = cis(z.re), h = cish(z.im);
    return complex(times(c.im, h.re), times(c.re, h.im));
}

complex cos(complex const& z) {
    complex const c = cis(z.re), h = cish(z.im);
    return complex(times(c.re, h.re), -times(c.im, h.im));
}

// The hyperbolic functions are the circular ones of i z; with f odd and real on the real axis, f(i z) / i is
// f of the exchanged parts, with its parts exchanged.

complex sinh(complex const& z) {
    return exchanged(sin(exchanged(z)));
}

complex cosh(complex const& z) {
    return cos(complex(-z.im, z.re));
}

complex tan(complex const& z) {
    double const m = fabs(z.im);
    if (m < 1) {
        complex const c = cis(z.re), h = cish(z.im);
        return complex(c.im * h.re, c.re * h.im) * reciprocal(complex(c.re * h.re, -c.im * h.im));
    }
    // tanh(18.3685) = 1 - 2.2e-16. What is left of the real part is the first term of its series.
    if (m > 18.3685) return complex(2 * exp(-2 * m) * sin(2 * z.re), std::copysign(1.0, z.im));
    // tan z = (sin 2x + i sinh 2y) / (cos 2x + cosh 2y): nothing cancels, as cosh 2y is 3.7 or more.
    complex const c = cis(2 * z.re), h = cish(2 * z.im);
    double const d = c.re + h.re;
    return complex(c.im / d, h.im / d);
}

complex cot(complex const& z) {
    return reciprocal(tan(z));
}

complex tanh(complex const& z) {
    return exchanged(tan(exchanged(z)));
}

complex coth(complex const& z) {
    return reciprocal(tanh(z));
}

}  // namespace tvmath
