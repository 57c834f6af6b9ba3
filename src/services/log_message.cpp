#include "services/log_message.h"

#include <algorithm>
#include <charconv>
#include <cmath>

inline namespace tvmath {

namespace {

constexpr int longest_field = 4096;  // no message means more, and a damaged width is not to cost memory

// Numbers are written by to_chars, which knows no locale: a log reads the same on every machine.
std::string digits_of(std::uint64_t value, int base, bool capitals) {
    char buffer[24];
    char* const end = std::to_chars(buffer, buffer + sizeof buffer, value, base).ptr;
    std::string digits(buffer, end);
    if (capitals)
        std::transform(digits.begin(), digits.end(), digits.begin(),
                       [](char c) { return c >= 'a' ? static_cast<char>(c - 'a' + 'A') : c; });
    return digits;
}

std::uint64_t cut_to_bytes(std::uint64_t value, int bytes) {
    return bytes >= 8 ? value : value & ((std::uint64_t{1} << (8 * bytes)) - 1);
}

// A number in parts, between which the zeros of a width may stand.
struct number_text {
    std::string sign;  // and the prefix of hexadecimal digits
    std::string digits;
};

std::string sign_of(bool negative, log_conversion const& c) {
    return negative ? "-" : c.plus ? "+" : c.blank ? " " : "";
}

number_text integer_text(log_argument const& value, log_conversion const& c) {
    int const bytes = c.size == 'H' ? 1 : c.size == 'h' ? 2 : value.size;
    std::uint64_t number = cut_to_bytes(value.integer, bytes);
    bool const is_decimal = c.letter == 'd' || c.letter == 'i';
    bool const negative = is_decimal && value.is_signed && (number >> (8 * bytes - 1)) != 0;
    if (negative) number = cut_to_bytes(0 - number, bytes);

    int const base = c.letter == 'x' || c.letter == 'X' ? 16 : c.letter == 'o' ? 8 : 10;
    number_text text{is_decimal ? sign_of(negative, c) : "", digits_of(number, base, c.letter == 'X')};
    if (c.precision == 0 && number == 0) text.digits.clear();
    std::size_t const least = static_cast<std::size_t>(std::clamp(c.precision, 0, longest_field));
    if (text.digits.size() < least) text.digits.insert(0, least - text.digits.size(), '0');
    if (c.alternate && base == 16 && number != 0) text.sign = c.letter == 'X' ? "0X" : "0x";
    if (c.alternate && base == 8 && !text.digits.starts_with('0')) text.digits.insert(0, 1, '0');
    return text;
}

number_text real_text(double value, log_conversion const& c) {
    number_text text{sign_of(std::signbit(value), c), {}};
    double const size = std::fabs(value);
    char const letter = static_cast<char>(c.letter | 0x20);
    int const precision = std::min(c.precision < 0 ? 6 : c.precision, longest_field);
    auto const style = letter == 'f'   ? std::chars_format::fixed
                       : letter == 'e' ? std::chars_format::scientific
                       : letter == 'a' ? std::chars_format::hex
                                       : std::chars_format::general;
    std::string buffer(static_cast<std::size_t>(precision) + 400, '\0');  // 309 digits, sign, point, exponent
    char* const end = buffer.data() + buffer.size();
    bool const shortest = letter == 'a' && c.precision < 0;
    std::to_chars_result const done = shortest ? std::to_chars(buffer.data(), end, size, style)
                                               : std::to_chars(buffer.data(), end, size, style, precision);
    text.digits.assign(buffer.data(), done.ptr);
    if (letter == 'a' && std::isfinite(size)) text.sign += "0x";
    if (c.letter < 'a') {
        for (std::string* part : {&text.sign, &text.digits}) {
            for (char& unit : *part)
                unit = unit >= 'a' && unit <= 'z' ? static_cast<char>(unit - 0x20) : unit;
        }
    }
    return text;
}

wide_string text_of(log_argument const& value, int precision) {
    wide_string text;
    if (value.kind == log_kind::narrow_text) text = to_wide(value.narrow);
    if (!value.wide.empty()) text = value.wide;
    if (!value.literal.empty()) text = as_wide(value.literal);
    if (precision >= 0 && static_cast<std::size_t>(precision) < text.size()) {
        text.resize(static_cast<std::size_t>(precision));
    }
    return text;
}

wide_string padded(wide_string text, log_conversion const& c) {
    std::size_t const width = static_cast<std::size_t>(std::min(c.width, longest_field));
    if (text.size() < width) text.insert(c.left ? text.size() : 0, width - text.size(), ' ');
    return text;
}

wide_string padded(number_text text, log_conversion const& c, bool zeros) {
    std::size_t const width = static_cast<std::size_t>(std::min(c.width, longest_field));
    std::size_t const size = text.sign.size() + text.digits.size();
    if (zeros && c.zeros && !c.left && size < width) text.digits.insert(0, width - size, '0');
    return padded(to_wide(text.sign + text.digits), c);
}

// The letter for an argument that the conversion does not fit.
char letter_for(log_kind kind) {
    switch (kind) {
        case log_kind::integer:
            return 'd';
        case log_kind::real:
            return 'g';
        case log_kind::address:
            return 'p';
        default:
            return 's';
    }
}

bool letter_fits(log_conversion const& c, log_kind kind) {
    log_kind const wanted = log_kind_wanted(c);
    bool const both_text = c.is_text() && (kind == log_kind::narrow_text || kind == log_kind::wide_text);
    return wanted == kind || both_text;
}

wide_string converted(log_argument const& value, log_conversion c) {
    if (!letter_fits(c, value.kind)) c.letter = letter_for(value.kind);
    if (c.is_text()) return padded(text_of(value, c.precision), c);
    if (c.letter == 'c') return padded(wide_string(1, static_cast<wide_char>(value.integer)), c);
    if (value.kind == log_kind::real) return padded(real_text(value.real, c), c, std::isfinite(value.real));
    if (c.letter == 'p') return padded(number_text{"0x", digits_of(value.integer, 16, false)}, c, false);
    return padded(integer_text(value, c), c, c.precision < 0);
}

// The arguments, taken one after the other.
class argument_list {
public:
    argument_list(log_argument const* values, std::size_t count) : next_(values), left_(count) {}

    log_argument const* take() {
        if (left_ == 0) return nullptr;
        --left_;
        return next_++;
    }
    // An argument for a width or a precision; `none` where there is none.
    int take_size(int none) {
        log_argument const* const value = take();
        if (!value || value->kind != log_kind::integer) return none;
        auto const number = static_cast<std::int64_t>(value->integer);
        return static_cast<int>(std::clamp<std::int64_t>(number, -longest_field, longest_field));
    }

private:
    log_argument const* next_;
    std::size_t left_;
};

}  // namespace

wide_string format_log_message(wide_string_view format, log_argument const* values, std::size_t count) {
    argument_list arguments(values, count);
    wide_string message;
    for (std::size_t at = 0; at < format.size(); ++at) {
        if (format[at] != '%') {
            message += format[at];
            continue;
        }
        log_conversion c = parse_log_conversion(format.substr(at));
        if (c.width_from_argument) c.width = arguments.take_size(0);
        if (c.width < 0) {
            c.left = true;
            c.width = -c.width;
        }
        if (c.precision_from_argument) c.precision = std::max(arguments.take_size(-1), -1);
        log_argument const* const value = c.letter == 0 || c.letter == '%' ? nullptr : arguments.take();
        if (value) {
            message += converted(*value, c);
        } else if (c.letter == '%') {
            message += '%';
        } else {
            message.append(format.substr(at, c.units));
        }
        at += c.units - 1;
    }
    return message;
}

}  // namespace tvmath
