#include <algorithm>
#include <array>
#include <bit>
#include <climits>
#include <cstdint>
#include <cstring>

#include "persistence/number_text.h"
#include "tvmath/scalar.h"

inline namespace tvmath {
namespace number_text {
namespace {

// How a text of unknown length ends.
struct terminator {
    friend bool operator==(wide_char const* at, terminator) { return *at == 0; }
};

// White space of the Unicode standard.
bool is_space(wide_char unit) {
    if (unit <= 0x20) return unit == 0x20 || (unit >= 0x09 && unit <= 0x0d);
    return unit == 0x85 || unit == 0xa0 || unit == 0x1680 || (unit >= 0x2000 && unit <= 0x200a) ||
           unit == 0x2028 || unit == 0x2029 || unit == 0x202f || unit == 0x205f || unit == 0x3000;
}

unsigned int digit_of(wide_char unit) {
    return unit - unsigned{'0'};  // above 9 for anything else
}

template <class limit>
void skip_spaces(wide_char const*& at, limit end) {
    while (at != end && is_space(*at)) ++at;
}

// Takes an optional sign; true for a minus.
template <class limit>
bool take_sign(wide_char const*& at, limit end) {
    if (at == end || (*at != '+' && *at != '-')) return false;
    return *at++ == '-';
}

// v = 10 v + digit in double, from digit to digit. While v stays within 2^53 this has no rounding, so that it
// can be done in whole numbers, and four digits at a time.
class accumulator {
public:
    void take_digits(wide_char const*& at, terminator end) { take_each(at, end); }
    void take_digits(wide_char const*& at, wide_char const* end) {
        if constexpr (std::endian::native == std::endian::little) {
            while (end - at >= 4 && whole_ <= most_before_four) {
                int const taken = take_up_to_four(at);
                at += taken;
                if (taken < 4) return;
            }
        }
        take_each(at, end);
    }
    double value() const { return in_double_ ? rounded_ : static_cast<double>(whole_); }

private:
    static constexpr std::uint64_t exact = std::uint64_t{1} << 53;
    static constexpr std::uint64_t most_before_one = (exact - 9) / 10,
                                   most_before_four = (exact - 9999) / 10000;

    template <class limit>
    void take_each(wide_char const*& at, limit end) {
        for (; at != end && whole_ <= most_before_one; ++at) {
            unsigned int const digit = digit_of(*at);
            if (digit > 9) return;
            whole_ = 10 * whole_ + digit;
        }
        for (; at != end; ++at) {
            unsigned int const digit = digit_of(*at);
            if (digit > 9) return;
            if (!in_double_) rounded_ = static_cast<double>(whole_);
            in_double_ = true;
            rounded_ = 10 * rounded_ + digit;
        }
    }
    // Takes the digits among the next four units, without a branch on how many there are, which cannot be
    // foreseen; returns their number.
    int take_up_to_four(wide_char const* at) {
        std::uint64_t lanes;  // the first unit lowest
        std::memcpy(&lanes, at, sizeof lanes);
        lanes -= 0x0030003000300030;
        // What is no digit has a high bit, or gets bit 7 from the sum; what it borrows from or carries into
        // the lanes above it, behind the last digit, does not matter.
        std::uint64_t const others = (lanes | (lanes + 0x0076007600760076)) & 0xff80ff80ff80ff80;
        int const count = std::countr_zero(others) / 16;
        lanes = lanes << 8 * (4 - count) << 8 * (4 - count);  // a shift by 64 is not defined
        // The highest lane of the product is the sum of 1000, 100, 10 and 1 times the lanes.
        static constexpr std::uint64_t scale[] = {1, 10, 100, 1000, 10000};
        whole_ = scale[count] * whole_ + ((lanes * 0x03e80064000a0001) >> 48);
        return count;
    }

    std::uint64_t whole_ = 0;  // no longer followed once in_double_
    double rounded_ = 0;
    bool in_double_ = false;
};

// Powers of ten by repeated squaring. Beyond 10^22 they are rounded, and how often is part of what a number
// reads as: a table of the nearest powers would give other last bits.
constexpr int most_power = 308;
constexpr auto powers_of_ten = [] {
    std::array<double, most_power + 1> powers{};
    for (int n = 0; n <= most_power; ++n) {
        double power = 1, square = 10;
        for (int bits = n; bits != 0;) {
            if (bits & 1) power *= square;
            if ((bits >>= 1) != 0) square *= square;
        }
        powers[static_cast<std::size_t>(n)] = power;
    }
    return powers;
}();

double power_of_ten(std::uint64_t n) {
    return n <= most_power ? powers_of_ten[n] : infinity;
}

// More is as good as infinite, also beside the longest fraction that memory can hold.
constexpr std::int64_t most_exponent = std::int64_t{1} << 60;

template <class limit>
std::int64_t take_exponent(wide_char const*& at, limit end) {
    if (at == end || (*at != 'e' && *at != 'E')) return 0;
    ++at;
    bool const negative = take_sign(at, end);
    std::int64_t exponent = 0;
    for (; at != end && digit_of(*at) <= 9; ++at) {
        if (exponent < most_exponent / 16) exponent = 10 * exponent + digit_of(*at);
    }
    return negative ? -exponent : exponent;
}

template <class limit>
bool starts_with(wide_char const* at, limit end, char const* word) {
    for (; *word != '\0'; ++word, ++at) {
        if (at == end || *at != static_cast<unsigned char>(*word)) return false;
    }
    return true;
}

// What a `#` and the word at `at` make of the value in front of them.
template <class limit>
double special_value(wide_char const* at, limit end, double value) {
    if (starts_with(at, end, "INF")) return value < 0 ? -infinity : infinity;
    if (starts_with(at, end, "IND")) return domain_error_value;
    if (starts_with(at, end, "QNAN")) return -domain_error_value;
    return value;
}

template <class limit>
double take(wide_char const*& at, limit end) {
    skip_spaces(at, end);
    bool const negative = take_sign(at, end);

    accumulator digits;
    digits.take_digits(at, end);
    std::int64_t exponent = 0;
    if (at != end && *at == '.') {
        wide_char const* const fraction = ++at;
        digits.take_digits(at, end);
        exponent = fraction - at;
    }
    exponent += take_exponent(at, end);

    double value = digits.value();
    if (exponent < 0) value /= power_of_ten(static_cast<std::uint64_t>(-exponent));
    if (exponent > 0) value *= power_of_ten(static_cast<std::uint64_t>(exponent));
    if (negative) value = -value;
    return at != end && *at == '#' ? special_value(at + 1, end, value) : value;
}

}  // namespace

double take_number(wide_char const*& at, wide_char const* end) {
    return take(at, end);
}

double read_number(wide_char const* at, wide_char const* end) {
    return take(at, end);
}

double read_number(wide_char const* at) {
    return take(at, terminator());
}

wide_char const* behind_spaces(wide_char const* at, wide_char const* end) {
    skip_spaces(at, end);
    return at;
}

int read_integer(wide_string_view text) {
    wide_char const* at = text.data();
    wide_char const* const end = at + text.size();
    skip_spaces(at, end);
    bool const negative = take_sign(at, end);
    std::int64_t value = 0;
    for (; at != end && digit_of(*at) <= 9; ++at) {
        value = std::min<std::int64_t>(10 * value + digit_of(*at), std::int64_t{INT_MAX} + 1);
    }
    return static_cast<int>(negative ? -value : std::min<std::int64_t>(value, INT_MAX));
}

}  // namespace number_text
}  // namespace tvmath
