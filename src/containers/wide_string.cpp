#include "tvmath/wide_string.h"

#include <utf8.h>
#include <iterator>

inline namespace tvmath {

namespace {

constexpr char32_t replacement = 0xFFFD;

wide_string_view view(wide_char const* text) {
    return text ? wide_string_view(text) : wide_string_view();
}

bool is_high_surrogate(char32_t unit) {
    return unit >= 0xD800 && unit < 0xDC00;
}

bool is_low_surrogate(char32_t unit) {
    return unit >= 0xDC00 && unit < 0xE000;
}

}  // namespace

wide_string to_wide(std::string_view utf8) {
    wide_string result;
    result.reserve(utf8.size());
    char const* at = utf8.data();
    char const* const end = at + utf8.size();
    while (at != end) {
        char const* const valid_end = utf8::find_invalid(at, end);
        utf8::unchecked::utf8to16(at, valid_end, std::back_inserter(result));
        at = valid_end;
        if (at == end) break;
        result.push_back(static_cast<wide_char>(replacement));
        ++at;
    }
    return result;
}

std::string to_utf8(wide_string_view text) {
    std::string result;
    result.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        char32_t code = text[i];
        if (is_high_surrogate(code) && i + 1 < text.size() && is_low_surrogate(text[i + 1])) {
            code = 0x10000 + ((code - 0xD800) << 10) + (text[++i] - 0xDC00u);
        } else if (is_high_surrogate(code) || is_low_surrogate(code)) {
            code = replacement;
        }
        utf8::unchecked::append(code, std::back_inserter(result));
    }
    return result;
}

std::string to_utf8(wide_char const* text) {
    return to_utf8(view(text));
}

std::size_t wide_length(wide_char const* text) {
    return view(text).size();
}

int wide_compare(wide_char const* a, wide_char const* b) {
    return view(a).compare(view(b));
}

std::size_t wide_find(wide_char const* text, wide_char const* part) {
    return view(text).find(view(part));
}

}  // namespace tvmath
