#include "number_text.h"

#include <charconv>

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

}  // namespace tvmath
