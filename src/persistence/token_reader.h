#pragma once

#include <cstddef>

#include "tvmath/wide_string.h"

inline namespace tvmath {
namespace token_reader {

/// The items of a text, in order, as views of the text itself.
class item_walk {
public:
    /// `text` and what it views must outlive the walk and its items.
    explicit item_walk(wide_string_view text);

    bool at_end() const { return at_ == end_; }
    /// Where the next item starts.
    wide_char const* position() const { return at_; }
    /// Steps over the next item and returns it, its brackets included; only when there is one.
    wide_string_view next();
    /// Steps over the next item, likewise, and reads the numbers inside it as `read_numbers` does.
    int next_numbers(double* numbers, int most);
    /// Steps over the next item, likewise, and reads the number that stands at its place in the text.
    double next_number();

private:
    void go_behind(wide_char const* item_end);
    bool take_plain_numbers(double* numbers, int most, int& count);

    wide_char const* at_;
    wide_char const* end_;
    wide_char const* spaces_end_;  // of the white space in which an item has started last
    double behind_spaces_ = 0;     // the number there
};

/// What an item holds: the item without blanks at its ends, the bracket or quote that it opens with, and the
/// matching one, if it ends with that.
wide_string_view interior(wide_string_view item);

/// Sets `parts` to the interiors of the items when there are exactly `n` of them.
bool split(wide_string_view text, wide_string_view* parts, std::size_t n);
template <std::size_t n>
bool split(wide_string_view text, wide_string_view (&parts)[n]) {
    return split(text, parts, n);
}

/// Reads numbers with blanks between them, `most` at most, and returns how many there were.
int read_numbers(wide_string_view text, double* numbers, int most);

/// The zero-terminated text as a view; empty for a null pointer.
inline wide_string_view whole(wide_char const* text) {
    return text ? wide_string_view(text) : wide_string_view();
}

}  // namespace token_reader
}  // namespace tvmath
