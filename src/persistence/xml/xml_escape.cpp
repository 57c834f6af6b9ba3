#include "persistence/xml/xml_escape.h"

#include <algorithm>

inline namespace tvmath {

namespace {

constexpr char const* replacement = "\xEF\xBF\xBD";  // U+FFFD

// What stands for a unit that cannot stand for itself; null for one that can.
char const* escape_of(wide_char c, xml_place place) {
    bool const attribute = place == xml_place::attribute;
    switch (c) {
        case '<':
            return "&lt;";
        case '>':  // for the sake of ]]>
            return "&gt;";
        case '&':
            return "&amp;";
        case '"':
            return attribute ? "&quot;" : nullptr;
        case '\r':  // a parser makes a line feed of it
            return "&#13;";
        case '\t':  // and blanks of these two
            return attribute ? "&#9;" : nullptr;
        case '\n':
            return attribute ? "&#10;" : nullptr;
        default:
            return c < 0x20 || c >= 0xFFFE ? replacement : nullptr;
    }
}

void append_utf8(std::string& to, wide_string_view text) {
    if (std::any_of(text.begin(), text.end(), [](wide_char c) { return c >= 0x80; })) {
        to += to_utf8(text);  // which has U+FFFD for a lone surrogate
        return;
    }
    std::size_t const before = to.size();
    to.resize(before + text.size());
    std::transform(text.begin(), text.end(), to.data() + before,
                   [](wide_char c) { return static_cast<char>(c); });
}

}  // namespace

void append_escaped(std::string& to, wide_string_view text, xml_place place) {
    for (std::size_t at = 0; at < text.size(); ++at) {
        std::size_t const run = at;
        char const* escape = nullptr;
        while (at < text.size() && !(escape = escape_of(text[at], place))) ++at;
        append_utf8(to, text.substr(run, at - run));
        if (escape) to += escape;
    }
}

}  // namespace tvmath
