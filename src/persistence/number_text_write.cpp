#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>

#include "persistence/number_text.h"

inline namespace tvmath {
namespace number_text {
namespace {

// No double has more significant decimal digits, and %g prints no zeros behind the last one.
constexpr int most_digits = 767;

int significant_digits(int precision) {
    return precision < 0 ? 6 : std::clamp(precision, 1, most_digits);
}

char* write_text(char* to, char const* text) {
    return std::copy_n(text, std::strlen(text), to);
}

char* write_non_finite(char* to, double value) {
    bool const negative = std::signbit(value);
    if (std::isinf(value)) return write_text(to, negative ? "-1.#INF" : "1.#INF");
    return write_text(to, negative ? "-1.#IND" : "1.#QNAN");
}

// The common numbers, of 17 digits or fewer and from 1e-20 to 1e17, are printed from an exact product: for a
// number x = m 2^e and q from 0 to 27, m 5^q is a whole number below 2^116, and x 10^q is that number
// shifted. So the rounding, half to even, is exact as well, at a fraction of the cost of the general
// algorithm.
constexpr int most_product_digits = 17;
constexpr int most_scale = 27;  // 5^27 < 2^63

constexpr auto powers_of_five = [] {
    std::array<std::uint64_t, most_scale + 1> powers{1};
    for (std::size_t i = 1; i < powers.size(); ++i) powers[i] = 5 * powers[i - 1];
    return powers;
}();

constexpr auto powers_of_ten = [] {
    std::array<std::uint64_t, most_product_digits + 1> powers{1};
    for (std::size_t i = 1; i < powers.size(); ++i) powers[i] = 10 * powers[i - 1];
    return powers;
}();

// The doubles nearest to 10^k: both operands of the quotient are exact.
constexpr int lowest_decade = -20;
constexpr auto decades = [] {
    std::array<double, most_product_digits - lowest_decade + 1> values{};
    double power = 1;
    for (int k = 0; k <= -lowest_decade; ++k, power *= 10) {
        if (k <= most_product_digits) values[static_cast<std::size_t>(k - lowest_decade)] = power;
        values[static_cast<std::size_t>(-k - lowest_decade)] = 1 / power;
    }
    return values;
}();

// Of a number, the whole part and what decides the rounding.
struct rounded_number {
    std::uint64_t whole;
    std::uint64_t half;  // 1 when at least a half is left
    std::uint64_t rest;  // 1 when there is something besides the half

    // Without branches: which way a number is rounded cannot be foreseen.
    std::uint64_t to_nearest_even() const { return whole + (half & (rest | (whole & 1))); }
};

// m f / 2^shift for m < 2^53, f < 2^63 and a shift below 128, whose whole part is below 2^64.
rounded_number scaled_product(std::uint64_t m, std::uint64_t f, int shift) {
    std::uint64_t const m1 = m >> 32, m0 = m & 0xffffffff, f1 = f >> 32, f0 = f & 0xffffffff;
    std::uint64_t const bottom = m0 * f0;
    std::uint64_t const middle = m1 * f0 + m0 * f1 + (bottom >> 32);  // < 2^53 + 2^63 + 2^32
    std::uint64_t const high = m1 * f1 + (middle >> 32), low = (middle << 32) | (bottom & 0xffffffff);
    if (shift <= 0) return {low << -shift, 0, 0};
    if (shift < 64) {
        std::uint64_t const below = low << (64 - shift);
        return {(high << (64 - shift)) | (low >> shift), below >> 63, (below << 1) != 0};
    }
    if (shift == 64) return {high, low >> 63, (low << 1) != 0};
    std::uint64_t const below = high << (128 - shift);
    return {high >> (shift - 64), below >> 63, ((below << 1) | low) != 0};
}

// Removes the zeros that end a fraction, and its point when nothing is left of it.
char* without_zeros(char* end) {
    while (end[-1] == '0') --end;
    return end[-1] == '.' ? end - 1 : end;
}

// The common numbers have exponents of two digits.
char* write_exponent(char* to, int exponent) {
    int const magnitude = std::abs(exponent);
    char const text[] = {'e', exponent < 0 ? '-' : '+', static_cast<char>('0' + magnitude / 10),
                         static_cast<char>('0' + magnitude % 10)};
    std::memcpy(to, text, sizeof text);
    return to + sizeof text;
}

// Sets `n` of `digits` decimal digits as %g does: n / 10^(digits - 1) times 10^decade.
char* lay_out(char* to, std::uint64_t n, int digits, int decade) {
    if (decade >= 0 && decade < digits) {
        std::to_chars(to + 1, to + 1 + digits, n);
        for (int i = 0; i <= decade; ++i) to[i] = to[i + 1];
        to[decade + 1] = '.';
        return without_zeros(to + digits + 1);
    }
    if (decade < 0 && decade >= -4) {
        std::copy_n("0.000", 5, to);
        to += 1 - decade;
        std::to_chars(to, to + digits, n);
        return without_zeros(to + digits);
    }
    std::to_chars(to + 1, to + 1 + digits, n);
    to[0] = to[1];
    to[1] = '.';
    to = without_zeros(to + digits + 1);
    return write_exponent(to, decade);
}

// The same for up to eight digits, which are held in one number, the first one lowest, so that no step
// depends on where the point falls.
constexpr int most_packed_digits = std::endian::native == std::endian::little ? 8 : 0;

// The digits of n < 10^8 as values from 0 to 9, one in each byte. Halves are split off in all lanes at once;
// the factors stand for exact divisions by 100 below 43690 and by 10 below 179.
std::uint64_t packed_digits(std::uint64_t n) {
    std::uint64_t const fours = n / 10000 | (n % 10000) << 32;
    std::uint64_t const hundreds = (fours * 10486 >> 20) & 0x0000007f0000007f;
    std::uint64_t const twos = hundreds | (fours - 100 * hundreds) << 16;
    std::uint64_t const tens = (twos * 103 >> 10) & 0x000f000f000f000f;
    return tens | (twos - 10 * tens) << 8;
}

char* lay_out_packed(char* to, std::uint64_t n, int digits, int decade) {
    std::uint64_t const values = packed_digits(n * powers_of_ten[static_cast<std::size_t>(8 - digits)]);
    std::uint64_t const text = values | 0x3030303030303030;
    int const count = 8 - std::countl_zero(values) / 8;  // without the zeros at the end
    if (decade < 0 && decade >= -4) {
        std::copy_n("0.000", 5, to);
        std::memcpy(to + 1 - decade, &text, 8);
        return to + 1 - decade + count;
    }
    bool const fixed = decade >= 0 && decade < digits;
    int const whole = fixed ? decade + 1 : 1;
    std::uint64_t const fraction = text >> 8 * (whole - 1) >> 8;  // a shift by 64 is not defined
    std::memcpy(to, &text, 8);
    to[whole] = '.';
    std::memcpy(to + whole + 1, &fraction, 8);
    to += count > whole ? count + 1 : whole;
    return fixed ? to : write_exponent(to, decade);
}

// The positive number of these bits; null when it is not one of the common ones.
char* write_common(char* to, std::uint64_t bits, int digits) {
    int const exponent = static_cast<int>(bits >> 52) - 1023;
    if (exponent < -66 || exponent > 55 || digits > most_product_digits) return nullptr;

    // floor(exponent log10(2)) is the decade of x or the one below it.
    int const estimate = exponent * 78913 >> 18;
    bool const above =
        std::bit_cast<double>(bits) >= decades[static_cast<std::size_t>(estimate + 1 - lowest_decade)];
    int const decade = estimate + above, scale = digits - 1 - decade;
    if (scale < 0 || scale > most_scale) return nullptr;

    std::uint64_t const m = (bits & 0xfffffffffffff) | 0x10000000000000;
    rounded_number const x =
        scaled_product(m, powers_of_five[static_cast<std::size_t>(scale)], 52 - exponent - scale);
    // The double nearest to a negative power of ten may be just below it, in the lower decade.
    std::uint64_t const end = powers_of_ten[static_cast<std::size_t>(digits)];
    if (x.whole < end / 10) return nullptr;
    std::uint64_t n = x.to_nearest_even();
    bool const carried = n == end;
    if (carried) n /= 10;
    auto const set = digits <= most_packed_digits ? lay_out_packed : lay_out;
    return set(to, n, digits, decade + carried);
}

}  // namespace

std::size_t slot_size(int precision) {
    // Sign, digits, point, exponent of five characters, separator.
    return static_cast<std::size_t>(std::max(significant_digits(precision), 17)) + 8;
}

char* write_number(char* to, double value, int precision) {
    std::uint64_t bits = std::bit_cast<std::uint64_t>(value);
    if (!std::isfinite(value)) return write_non_finite(to, value);
    *to = '-';
    to += std::signbit(value);
    bits &= ~(std::uint64_t{1} << 63);
    if (bits == 0) {
        *to = '0';
        return to + 1;
    }
    int const digits = significant_digits(precision);
    if (char* const end = write_common(to, bits, digits)) return end;
    // The sign stands already, and the separator is not ours.
    char* const limit = to + slot_size(precision) - 2;
    return std::to_chars(to, limit, std::fabs(value), std::chars_format::general, digits).ptr;
}

}  // namespace number_text
}  // namespace tvmath
