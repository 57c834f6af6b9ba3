#pragma once

#include <vector>

#include "tvmath/point.h"
#include "tvmath/wide_string.h"

inline namespace tvmath {

/// Takes the values of a text one after another, each with white space in front, as `scanf` does: up to the
/// first that is none.
class choice_reader {
public:
    explicit choice_reader(wide_string_view text) : at_(text.data()), end_(text.data() + text.size()) {}

    /// A decimal number of 32 bits with a sign, taken as its bits.
    bool take_index(unsigned int& index);
    bool take_number(double& number);
    /// True when nothing but white space is left.
    bool at_end() const;

private:
    wide_char const* at_;
    wide_char const* end_;
};

/// The decimal form that `choice_reader::take_index` takes.
wide_string index_text(unsigned int index);
/// The number with 6 significant digits and a blank in front.
wide_string number_item(double number);

/// An index and numbers, a multiple of `step` of them, and nothing else. False, with the outputs untouched,
/// for any other text.
bool read_index_and_numbers(wide_char const* text, unsigned int step, unsigned int& index,
                            std::vector<double>& numbers);
/// Two items, an index and a whole list of points in brackets, of which each may be trivial. False as above.
bool read_index_and_points(wide_char const* text, unsigned int& index, std::vector<point>& points);

}  // namespace tvmath
