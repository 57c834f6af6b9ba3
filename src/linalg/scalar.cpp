#include "tvmath/scalar.h"

#include <bit>
#include <cstddef>

inline namespace tvmath {

double const domain_error_value = std::bit_cast<double>(std::uint64_t{0xFFF8000000000000u});

namespace {

constexpr double ln_2 = 0.6931471805599453;
// Below 2^-31 the second term of each series is beyond the last digit.
constexpr double tiny = 4.65661287308e-10;

template <std::size_t p_size, std::size_t q_size>
double rational(double x, double const (&p)[p_size], double const (&q)[q_size]) {
    return poly(x, static_cast<int>(p_size), p) / poly(x, static_cast<int>(q_size), q);
}

}  // namespace

double poly(double x, int n, double const* c) {
    if (n < 1) return 0.0;
    double value = c[n - 1];
    for (int i = n - 2; i >= 0; --i) value = value * x + c[i];
    return value;
}

double arccosh(double x) {
    // Minimax quotient of arccosh(x) / sqrt(2 (x - 1)) on [1, 1.5].
    static constexpr double p[] = {1.110720670229621,   1.6625582473810652,    0.7419955187885396,
                                   0.10394316401314324, 0.0028363261514599497, -1.4651415589483999e-05};
    static constexpr double q[] = {1.0, 1.633447490129144, 0.8345047245427262, 0.14731775033225428,
                                   0.006769310144114903};
    if (x < 1) return domain_error_value;
    if (x < 1.5) return sqrt(2 * (x - 1)) * rational(x, p, q);
    if (x < 8192) return log(sqrt((x + 1) * (x - 1)) + x);
    if (x < 1073741824) return log(x) + ln_2 - 0.24999999982536902 / ((x - 4.577671655662521e-5) * x);
    return log(x) + ln_2;
}

double arcsinh(double x) {
    static constexpr double p[] = {1.0,
                                   2.7188404150831555,
                                   2.7719270153617526,
                                   1.3142466913182582,
                                   0.29112598625091557,
                                   0.026318215355896627,
                                   0.0006439611039524181};
    static constexpr double q[] = {1.0,
                                   2.885507081749822,
                                   3.1778448623200624,
                                   1.6721173277163344,
                                   0.4299091788578761,
                                   0.04913386299064218,
                                   0.0018909981942391843,
                                   8.893060270103773e-06};
    if (x < 0) return -arcsinh(-x);
    if (x <= 1) return x <= tiny ? x : x * rational(x * x, p, q);
    if (x <= 8192) return log(sqrt(x * x + 1) + x);
    if (x <= 1073741824) return log(x) + ln_2 + 0.250000000174631 / ((x + 4.577671631030575e-5) * x);
    return log(x) + ln_2;
}

double arctanh(double x) {
    static constexpr double p[] = {1.0,
                                   -2.3848787741796005,
                                   1.989384069954604,
                                   -0.6779483874123793,
                                   0.08121566923816118,
                                   -0.001576835140171594};
    static constexpr double q[] = {1.0,
                                   -2.7182121075129335,
                                   2.695454772458892,
                                   -1.1756480329186452,
                                   0.21121229659865645,
                                   -0.01080181775783384};
    if (x >= 1 || x <= -1) return domain_error_value;
    if (x < 0) return -arctanh(-x);
    if (x >= 0.5) return 0.5 * log((1 + x) / (1 - x));
    return x < tiny ? x : x * rational(x * x, p, q);
}

double sinc(double x) {
    static constexpr double p[] = {1.0, -0.14050909373819148, 0.004323740901643451, -3.578437107650887e-05};
    static constexpr double q[] = {1.0, 0.02615757292847518, 0.000350003056389679, 2.982395660948026e-06,
                                   1.4636524495806947e-08};
    double const a = abs(x);
    if (a >= 1) return sin(a) / a;
    return a < tiny ? 1.0 : rational(a * a, p, q);
}

int quadrant(double angle) {
    double f = angle / (2 * pi);
    f -= floor(f);
    return f < 0.25 ? 0 : f < 0.5 ? 1 : f < 0.75 ? 2 : 3;
}

int quadrant(double x, double y) {
    if (y > 0) return x > 0 ? 0 : 1;
    if (y < 0) return x < 0 ? 2 : 3;
    return x < 0 ? 2 : 0;
}

int quadrant(int x, int y) {
    return quadrant(static_cast<double>(x), static_cast<double>(y));
}

double mantissa(double x) {
    int exponent_of_two;
    return std::frexp(x, &exponent_of_two);
}

int exponent(double x) {
    int exponent_of_two = 0;
    std::frexp(x, &exponent_of_two);
    return exponent_of_two;
}

double pow(double x, unsigned long n) {
    if (n == 0) return 1.0;
    for (; (n & 1) == 0; n >>= 1) x *= x;
    double result = x;
    while ((n >>= 1) != 0) {
        x *= x;
        if (n & 1) result *= x;
    }
    return result;
}

double pow(double x, long n) {
    // Negated as unsigned, so that the lowest long has its magnitude too.
    unsigned long const magnitude = static_cast<unsigned long>(n);
    return n < 0 ? 1 / tvmath::pow(x, 0 - magnitude) : tvmath::pow(x, magnitude);
}

}  // namespace tvmath
