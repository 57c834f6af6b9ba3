#pragma once

#include <string>

inline namespace tvmath {

/// The shortest text that reads back to the same double, always with a decimal point: "2.0", "0.1",
/// "1.0e+20". Independent of the locale. `x` is finite.
std::string number_text(double x);

}  // namespace tvmath
