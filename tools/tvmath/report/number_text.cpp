#include "number_text.h"

#include <algorithm>
#include <charconv>
#include <cmath>

inline namespace tvmath {

std::string number_text(double x) {
    char buffer[32];  // the longest, -2.2250738585072014e-308, has 24 characters
    auto const end = std::to_chars(buffer, buffer + sizeof buffer, x).ptr;
    std::string text(buffer, end);
    // A number without a point would be taken for an integer by readers that tell the two apart.
    if (text.find('.') == std::string::npos) {
        std::size_t const exponent = text.find('e');
        text.insert(exponent == std::string::npos ? text.size() : exponent, ".0");
    }
    return text;
}

std::string fixed_number(double x, int decimals) {
    double const size = std::fabs(x);
    if (!(size < 1e15)) return short_number(x, 15);
    int const whole = size >= 1 ? static_cast<int>(std::floor(std::log10(size))) : 0;
    char buffer[40];
    auto const end = std::to_chars(buffer, buffer + sizeof buffer, x, std::chars_format::fixed,
                                   std::clamp(decimals, 0, 16 - whole))
                         .ptr;
    std::string const text(buffer, end);
    bool const is_zero = text.find_first_of("123456789") == std::string::npos;
    return is_zero && text[0] == '-' ? text.substr(1) : text;
}

std::string short_number(double x, int digits) {
    char buffer[40];
    return {buffer, std::to_chars(buffer, buffer + sizeof buffer, x, std::chars_format::general, digits).ptr};
}

}  // namespace tvmath
