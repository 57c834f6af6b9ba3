#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>

#include "tvmath/wide_string.h"

inline namespace tvmath {

/// What an argument of a log message is to a printf-style format.
enum class log_kind : unsigned char { integer, real, narrow_text, wide_text, address };

template <class T>
consteval log_kind log_kind_of() {
    using plain = std::remove_cvref_t<T>;
    if constexpr (std::is_integral_v<plain> || std::is_enum_v<plain>) {
        return log_kind::integer;
    } else if constexpr (std::is_floating_point_v<plain>) {
        return log_kind::real;
    } else if constexpr (std::is_null_pointer_v<plain>) {
        return log_kind::address;
    } else if constexpr (std::is_convertible_v<plain const&, std::string_view>) {
        return log_kind::narrow_text;
    } else if constexpr (std::is_convertible_v<plain const&, wide_string_view> ||
                         std::is_convertible_v<plain const&, std::u16string_view>) {
        return log_kind::wide_text;
    } else {
        static_assert(std::is_pointer_v<std::decay_t<T>>, "a log message takes numbers, texts and pointers");
        return log_kind::address;
    }
}

/// One argument of a log message. Texts are referred to, not copied; a null text is empty.
struct log_argument {
    log_kind kind = log_kind::integer;
    bool is_signed = true;
    unsigned char size = 4;  ///< Bytes of an integer after the usual promotion.
    std::uint64_t integer = 0;
    double real = 0;
    std::string_view narrow;
    wide_string_view wide;
    std::u16string_view literal;  ///< Wide text of that type.

    log_argument() = default;
    template <class T>
    explicit log_argument(T const& value) : kind(log_kind_of<T>()) {
        constexpr log_kind meant = log_kind_of<T>();
        if constexpr (meant == log_kind::integer) {
            is_signed = std::is_enum_v<T> || std::is_signed_v<T> || sizeof(T) < sizeof(int);
            size = sizeof(T) < sizeof(int) ? sizeof(int) : sizeof(T);
            integer = static_cast<std::uint64_t>(static_cast<std::int64_t>(value));
        } else if constexpr (meant == log_kind::real) {
            real = static_cast<double>(value);
        } else if constexpr (meant == log_kind::address) {
            integer = reinterpret_cast<std::uintptr_t>(static_cast<void const*>(value));
        } else if constexpr (meant == log_kind::narrow_text) {
            narrow = view<std::string_view>(value);
        } else if constexpr (std::is_convertible_v<T const&, wide_string_view>) {
            wide = view<wide_string_view>(value);
        } else {
            literal = view<std::u16string_view>(value);
        }
    }

private:
    template <class text, class T>
    static text view(T const& value) {
        if constexpr (std::is_pointer_v<T>) return value ? text(value) : text();
        return text(value);
    }
};

/// One conversion of a printf-style format: %[flags][width][.precision][size]letter.
struct log_conversion {
    bool left = false, plus = false, blank = false, alternate = false, zeros = false;
    bool width_from_argument = false, precision_from_argument = false;
    int width = 0;
    int precision = -1;     ///< -1 when there is none.
    char size = 0;          ///< 'h', 'H' for hh, 'w' for l or w before a text, 0 otherwise.
    char letter = 0;        ///< 0 when it is no conversion.
    std::size_t units = 0;  ///< Of the format, from the percent sign on.

    constexpr bool is_text() const { return letter == 's' || letter == 'S'; }
};

/// Reads the conversion at the start of `format`, which is a percent sign.
template <class character>
constexpr log_conversion parse_log_conversion(std::basic_string_view<character> format) {
    log_conversion c;
    std::size_t at = 1;
    auto const next = [&] { return at < format.size() ? static_cast<char32_t>(format[at]) : U'\0'; };
    auto const number = [&] {
        int value = 0;
        for (; next() >= '0' && next() <= '9'; ++at) {
            if (value < 100000) value = value * 10 + static_cast<int>(next() - '0');
        }
        return value;
    };
    auto const star = [&] { return next() == '*' && ++at != 0; };

    for (bool flags = true; flags; at += flags) {
        switch (next()) {
            case '-':
                c.left = true;
                break;
            case '+':
                c.plus = true;
                break;
            case ' ':
                c.blank = true;
                break;
            case '#':
                c.alternate = true;
                break;
            case '0':
                c.zeros = true;
                break;
            default:
                flags = false;
        }
    }
    if (star()) {
        c.width_from_argument = true;
    } else {
        c.width = number();
    }
    if (next() == '.') {
        ++at;
        c.precision = 0;
        if (star()) {
            c.precision_from_argument = true;
        } else {
            c.precision = number();
        }
    }
    for (; next() != 0 && std::string_view("hlwLqjzt").find(static_cast<char>(next())) != wide_npos; ++at) {
        if (next() == 'h') {
            c.size = c.size == 'h' ? 'H' : 'h';
        } else {
            c.size = 'w';
        }
    }
    if (next() != 0 && next() < 128 &&
        std::string_view("diouxXcsSpaAeEfFgG%").find(static_cast<char>(next())) != wide_npos) {
        c.letter = static_cast<char>(next());
        ++at;
    }
    c.units = at;
    return c;
}

/// What a conversion asks for.
constexpr log_kind log_kind_wanted(log_conversion const& c) {
    bool const narrow = c.size == 'h' || c.size == 'H' || (c.letter == 'S' && c.size != 'w');
    if (c.is_text()) return narrow ? log_kind::narrow_text : log_kind::wide_text;
    if (c.letter == 'p') return log_kind::address;
    return std::string_view("aAeEfFgG").find(c.letter) != wide_npos ? log_kind::real : log_kind::integer;
}

/// Has no definition: the compiler names it when the arguments of a message do not fit its format.
void arguments_do_not_fit_the_format_of_this_log_message();

/// A message format that was compared with the types of its arguments.
///
/// Formats are those of a wide printf: %s is 16-bit text, %hs narrow (UTF-8) text, %d %i %u %x %X %o %c any
/// integer, %f %e %g %a any floating number, %p a pointer. A literal that does not fit does not compile; in a
/// text made at run time, arguments that do not fit are written in the form of their own type.
template <class... arguments>
class log_format {
public:
    template <std::size_t n>
    consteval log_format(char16_t const (&format)[n]) : literal_(format, n - 1) {
        log_kind const given[] = {log_kind_of<arguments>()..., log_kind::integer};
        if (!fits(given)) arguments_do_not_fit_the_format_of_this_log_message();
    }
    template <class text>
    requires std::is_same_v<text, char16_t const*> || std::is_same_v<text, char16_t*> log_format(
        text const& format)
        : literal_(format ? format : u"") {}
    log_format(wide_char const* format) : wide_(format, wide_length(format)) {}
    log_format(wide_string const& format) : wide_(format) {}

    // The format is one of the two; the other is empty.
    std::u16string_view literal() const { return literal_; }
    wide_string_view wide() const { return wide_; }

private:
    consteval bool fits(log_kind const* given) const {
        std::size_t used = 0;
        auto const take = [&](log_kind wanted) {
            return used < sizeof...(arguments) && given[used++] == wanted;
        };
        for (std::size_t at = 0; at < literal_.size(); ++at) {
            if (literal_[at] != u'%') continue;
            log_conversion const c = parse_log_conversion(literal_.substr(at));
            if (c.letter == 0) return false;
            if (c.width_from_argument && !take(log_kind::integer)) return false;
            if (c.precision_from_argument && !take(log_kind::integer)) return false;
            if (c.letter != '%' && !take(log_kind_wanted(c))) return false;
            at += c.units - 1;
        }
        return used == sizeof...(arguments);
    }

    std::u16string_view literal_;
    wide_string_view wide_;
};

}  // namespace tvmath
