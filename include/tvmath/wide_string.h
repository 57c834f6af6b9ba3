#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "tvmath/export.h"

inline namespace tvmath {

/// One unit of the interface's 16-bit text, UTF-16.
using wide_char = unsigned short;
using wide_string = std::basic_string<wide_char>;
using wide_string_view = std::basic_string_view<wide_char>;

/// Position that `find` gives when there is none.
inline constexpr std::size_t wide_npos = wide_string::npos;

/// UTF-16 text of UTF-8 text. Each byte that belongs to no valid sequence becomes U+FFFD.
TVMATH_API wide_string to_wide(std::string_view utf8);

/// UTF-8 text of UTF-16 text. Each lone surrogate becomes U+FFFD. A null pointer gives an empty text.
TVMATH_API std::string to_utf8(wide_string_view text);
TVMATH_API std::string to_utf8(wide_char const* text);
inline std::string to_utf8(wide_string const& text) {
    return to_utf8(wide_string_view(text));
}

/// Number of units before the terminating zero; 0 for a null pointer.
TVMATH_API std::size_t wide_length(wide_char const* text);

/// Order of two zero-terminated texts by unit value: negative, 0 or positive. A null pointer counts as empty.
TVMATH_API int wide_compare(wide_char const* a, wide_char const* b);

/// Position of the first `part` in `text`, or `wide_npos`. Both are zero-terminated; null counts as empty.
TVMATH_API std::size_t wide_find(wide_char const* text, wide_char const* part);

/// The same 16 bits under the interface's name, for literals: `f(as_wide(u"text"))`.
inline wide_string as_wide(std::u16string_view text) {
    return wide_string(text.begin(), text.end());
}
inline std::size_t wide_length(char16_t const* text) {
    return text ? std::u16string_view(text).size() : 0;
}
inline int wide_compare(wide_char const* a, char16_t const* b) {
    return wide_compare(a, b ? as_wide(b).c_str() : nullptr);
}
inline std::size_t wide_find(wide_char const* text, char16_t const* part) {
    return wide_find(text, part ? as_wide(part).c_str() : nullptr);
}

/// `u"text"_w` is a `wide_string`.
inline wide_string operator""_w(char16_t const* text, std::size_t length) {
    return as_wide({text, length});
}

}  // namespace tvmath
