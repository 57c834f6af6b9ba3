#pragma once

#include <string>

inline namespace tvmath {

/// The shortest text that reads back to the same double, always with a decimal point: "2.0", "0.1",
/// "1.0e+20". Independent of the locale. `x` is finite.
std::string number_text(double x);

/// `x` with that many decimals, without a sign where they are all zeros. No more digits than a double has,
/// and as a power of ten from 1e15 on. Independent of the locale.
std::string fixed_number(double x, int decimals);

/// `x` with that many significant digits or fewer, as short as it can be: "0.01", "1e-07".
std::string short_number(double x, int digits);

}  // namespace tvmath
