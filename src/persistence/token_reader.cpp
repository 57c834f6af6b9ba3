#include "persistence/token_reader.h"

#include <algorithm>

#include "persistence/number_text.h"
#include "tvmath/persistence.h"

inline namespace tvmath {
namespace token_reader {
namespace {

constexpr wide_char blank = ' ';

// The delimiter that closes what `opening` opens; 0 for a unit that opens nothing.
wide_char closing_of(wide_char opening) {
    switch (opening) {
        case '"':
            return '"';
        case '(':
            return ')';
        case '[':
            return ']';
        case '{':
            return '}';
        default:
            return 0;
    }
}

wide_char const* skip_blanks(wide_char const* at, wide_char const* end) {
    while (at != end && *at == blank) ++at;
    return at;
}

// Behind the close that matches the opening at `at`, or the end of the text. Counts where nothing nests: a
// text may open a million brackets. A quote has no nested ones, it is closed by the next.
wide_char const* behind_close(wide_char const* at, wide_char const* end, wide_char closing) {
    wide_char const opening = *at;
    std::size_t depth = 1;
    for (++at; at != end; ++at) {
        if (*at == closing) {
            if (--depth == 0) return at + 1;
        } else if (*at == opening) {
            ++depth;
        }
    }
    return end;
}

// A number that starts so holds no white space.
bool starts_number(wide_char unit) {
    return (unit >= '0' && unit <= '9') || unit == '-' || unit == '+' || unit == '.';
}

wide_char const* behind_item(wide_char const* at, wide_char const* end) {
    if (wide_char const closing = closing_of(*at)) return behind_close(at, end, closing);
    return std::find(at, end, blank);
}

}  // namespace

item_walk::item_walk(wide_string_view text)
    : at_(skip_blanks(text.data(), text.data() + text.size())),
      end_(text.data() + text.size()),
      spaces_end_(at_) {}

void item_walk::go_behind(wide_char const* item_end) {
    at_ = skip_blanks(item_end, end_);
}

wide_string_view item_walk::next() {
    wide_char const* const start = at_;
    wide_char const* const behind = behind_item(at_, end_);
    go_behind(behind);
    return {start, behind};
}

double item_walk::next_number() {
    if (!starts_number(*at_)) {
        // White space that is no blank may lead over any number of items to one and the same number.
        if (at_ >= spaces_end_) {
            spaces_end_ = number_text::behind_spaces(at_, end_);
            behind_spaces_ = number_text::read_number(spaces_end_, end_);
        }
        next();
        return behind_spaces_;
    }
    wide_char const* behind = at_;
    double const number = number_text::take_number(behind, end_);
    go_behind(std::find(behind, end_, blank));
    return number;
}

// Most items are brackets around numbers with single blanks between them: what is read then also tells where
// the item ends. False, with nothing done, for any other.
bool item_walk::take_plain_numbers(double* numbers, int most, int& count) {
    wide_char const closing = closing_of(*at_);
    wide_char const* at = at_ + 1;
    for (count = 0; closing != 0 && count < most; ++at) {
        if (at == end_ || !starts_number(*at)) return false;
        numbers[count++] = number_text::take_number(at, end_);
        if (at == end_) return false;
        if (*at == closing) {
            go_behind(at + 1);
            return true;
        }
        if (*at != blank) return false;
    }
    return false;
}

int item_walk::next_numbers(double* numbers, int most) {
    int count = 0;
    if (take_plain_numbers(numbers, most, count)) return count;
    return read_numbers(interior(next()), numbers, most);
}

wide_string_view interior(wide_string_view item) {
    item.remove_prefix(std::min(item.find_first_not_of(blank), item.size()));
    item.remove_suffix(item.size() - (item.find_last_not_of(blank) + 1));
    if (item.empty()) return item;
    if (wide_char const closing = closing_of(item.front())) {
        item.remove_prefix(1);
        if (!item.empty() && item.back() == closing) item.remove_suffix(1);
    }
    return item;
}

bool split(wide_string_view text, wide_string_view* parts, std::size_t n) {
    item_walk items(text);
    for (std::size_t i = 0; i < n; ++i) {
        if (items.at_end()) return false;
        parts[i] = interior(items.next());
    }
    return items.at_end();
}

int read_numbers(wide_string_view text, double* numbers, int most) {
    wide_char const* at = text.data();
    wide_char const* const end = at + text.size();
    int count = 0;
    for (at = skip_blanks(at, end); at != end && count < most; at = skip_blanks(at, end)) {
        wide_char const* behind = at;
        numbers[count++] = number_text::take_number(behind, end);
        // Only white space in front of a number can have led over a blank.
        at = std::find(starts_number(*at) ? behind : at, end, blank);
    }
    return count;
}

}  // namespace token_reader

namespace Persistence {

using token_reader::interior, token_reader::item_walk, token_reader::whole;

tokens::tokens(unsigned short const* text) : length_(wide_length(text)) {
    for (item_walk items(whole(text)); !items.at_end(); items.next()) {
        starts_.push_back(static_cast<std::size_t>(items.position() - text));
    }
}

wide_string tokens::token(std::size_t i, unsigned short const* text) const {
    if (i >= starts_.size()) return {};
    return wide_string(interior(item_walk({text + starts_[i], length_ - starts_[i]}).next()));
}

wide_string token(std::size_t i, unsigned short const* text) {
    item_walk items(whole(text));
    for (; i > 0 && !items.at_end(); --i) items.next();
    return items.at_end() ? wide_string() : wide_string(interior(items.next()));
}

}  // namespace Persistence
}  // namespace tvmath
