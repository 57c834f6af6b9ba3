#pragma once

#include <cstddef>

#include "tvmath/wide_string.h"

inline namespace tvmath {
namespace number_text {

/// Bytes that hold any number printed by `write_number`, a separator behind it included: 25 up to a precision
/// of 17, the most digits that a double needs, and more above.
std::size_t slot_size(int precision);

/// Prints what `%.*lg` prints in the C locale, whatever the process's locale is, for any precision: a
/// negative one counts as 6, 0 as 1. Infinities and NaN become 1.#INF, -1.#INF, 1.#QNAN and, with the sign
/// bit set, -1.#IND. No zero is added behind the text. Returns its end.
char* write_number(char* to, double value, int precision);

/// The number at the start of the text from `at` to `end`, by the steps that `Persistence::to_real` promises;
/// 0 when there is none.
double read_number(wide_char const* at, wide_char const* end);
/// The same for a text that ends with a zero.
double read_number(wide_char const* at);
/// The number at `at`, which is set to the first unit behind it.
double take_number(wide_char const*& at, wide_char const* end);

/// Where the white space that starts at `at` ends: that of the Unicode standard, which a number may have in
/// front.
wide_char const* behind_spaces(wide_char const* at, wide_char const* end);

/// The whole number at the start of the text: white space, a sign, decimal digits. 0 when there is none;
/// beyond the range of an int, the nearer end of it.
int read_integer(wide_string_view text);

}  // namespace number_text
}  // namespace tvmath
