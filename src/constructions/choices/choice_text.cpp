#include "choice_text.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <string>

#include "persistence/number_text.h"
#include "persistence/text_items.h"
#include "persistence/token_reader.h"
#include "tvmath/persistence.h"

inline namespace tvmath {
namespace {

bool is_digit(wide_char unit) {
    return unit >= '0' && unit <= '9';
}

// Whether an item that opens with a bracket is closed as often as it opens: a text that was cut off is not.
bool is_closed_list(wide_string_view item) {
    return item.front() == '(' && item.back() == ')' &&
           std::count(item.begin(), item.end(), '(') == std::count(item.begin(), item.end(), ')');
}

wide_char const* behind_sign(wide_char const* at, wide_char const* end) {
    return at != end && (*at == '+' || *at == '-') ? at + 1 : at;
}

}  // namespace

bool choice_reader::take_index(unsigned int& index) {
    constexpr std::int64_t least = std::numeric_limits<std::int32_t>::min(), most = -(least + 1);
    wide_char const* const start = number_text::behind_spaces(at_, end_);
    wide_char const* const digits = behind_sign(start, end_);
    wide_char const* at = digits;
    std::int64_t value = 0;
    for (; at != end_ && is_digit(*at); ++at) value = std::min(10 * value + (*at - '0'), most + 2);
    if (digits != start && *start == '-') value = -value;
    if (at == digits || value < least || value > most) return false;
    at_ = at;
    index = static_cast<unsigned int>(value);
    return true;
}

bool choice_reader::take_number(double& number) {
    wide_char const* const start = number_text::behind_spaces(at_, end_);
    wide_char const* first = behind_sign(start, end_);
    if (first != end_ && *first == '.') ++first;
    if (first == end_ || !is_digit(*first)) return false;
    at_ = start;
    number = number_text::take_number(at_, end_);
    // The word of an infinity or a NaN belongs to its number.
    if (at_ != end_ && *at_ == '#') at_ = std::find(at_, end_, wide_char{' '});
    return true;
}

bool choice_reader::at_end() const {
    return number_text::behind_spaces(at_, end_) == end_;
}

wide_string index_text(unsigned int index) {
    return to_wide(std::to_string(static_cast<std::int32_t>(index)));
}

wide_string number_item(double number) {
    return as_wide(u" ") + Persistence::to_ascii(number, 6);
}

bool read_index_and_numbers(wide_char const* text, unsigned int step, unsigned int& index,
                            std::vector<double>& numbers) {
    choice_reader reader(token_reader::whole(text));
    unsigned int found = 0;
    if (!reader.take_index(found)) return false;
    std::vector<double> list;
    for (double number; reader.take_number(number);) list.push_back(number);
    if (list.size() % step != 0 || !reader.at_end()) return false;
    index = found;
    numbers = std::move(list);
    return true;
}

bool read_index_and_points(wide_char const* text, unsigned int& index, std::vector<point>& points) {
    token_reader::item_walk items(token_reader::whole(text));
    if (items.at_end()) return false;
    choice_reader reader(items.next());
    if (items.at_end()) return false;
    wide_string_view const list = items.next();
    unsigned int found = 0;
    if (!reader.take_index(found) || !reader.at_end()) return false;
    if (!items.at_end() || !is_closed_list(list)) return false;
    index = found;
    Persistence::read_points(token_reader::interior(list), points);
    return true;
}

}  // namespace tvmath
