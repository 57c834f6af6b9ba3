#pragma once

#include "tvmath/wide_string.h"

inline namespace tvmath {

inline bool is_line_end(wide_char unit) {
    return unit == '\r' || unit == '\n';
}

/// The first line end at or behind `at`, or `end`.
template <class unit>
unit* find_line_end(unit* at, wide_char const* end) {
    while (at != end && !is_line_end(*at)) ++at;
    return at;
}

/// Behind the line end at `at`: past one CR and one LF at most, in either order.
template <class unit>
unit* past_line_end(unit* at, wide_char const* end) {
    if (at == end || !is_line_end(*at)) return at;
    unit const first = *at++;
    return at != end && is_line_end(*at) && *at != first ? at + 1 : at;
}

/// Calls `visit(line)` for the lines of a section, without their ends, until it returns true. A section ends
/// where a line starts with a bracket.
template <class function>
void visit_section_lines(wide_char const* at, wide_char const* end, function&& visit) {
    while (at != end && *at != '[') {
        wide_char const* const stop = find_line_end(at, end);
        if (stop != at && visit(wide_string_view(at, static_cast<std::size_t>(stop - at)))) return;
        at = past_line_end(stop, end);
    }
}

}  // namespace tvmath
