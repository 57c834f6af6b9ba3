#pragma once

#include <concepts>

#include "tvmath/export.h"
#include "tvmath/flatness_corrector.h"
#include "tvmath/persistence.h"
#include "tvmath/screen_corrector.h"
#include "tvmath/telecentricity_corrector.h"
#include "tvmath/wide_string.h"

inline namespace tvmath {
namespace Persistence {

// Correctors as text and back, in the items of tvmath/persistence.h. A text holds the lengths of the
// correction in thousandths of the units in memory and the size of the screen in place of the scales. A
// corrector that does nothing is `()`. `precision` is that of the numbers named first; screen sizes, and the
// curvature, have 6 digits.

/// `(residual (coefficients) width height curvature)`, residual and coefficients times 1000, curvature
/// divided by 1000.
TVMATH_API wide_string to_ascii(flatness_corrector const& c, int precision);
/// `(residual (dx coefficients)(dy coefficients) width height)`, the residual times 1000.
TVMATH_API wide_string to_ascii(screen_corrector const& c, int precision);
/// The seven fields in their order, all with `precision`: the residual times 1000, magnification and its
/// error divided by 1000.
TVMATH_API wide_string to_ascii(telecentricity_corrector const& c, int precision);

// Readers, of the inside of what the writers write. The order follows from the number of coefficients. No
// text raises; time and memory grow linearly with its length.

/// `fallback` for fewer than five items, items behind the fifth being ignored, and where the coefficients
/// are not as many as an order has.
TVMATH_API flatness_corrector to_flatness_corrector(unsigned short const* text, flatness_corrector fallback);
/// `fallback` for fewer than five items, items behind the fifth being ignored, and where the text is no
/// corrector in use: both rows as long as an order of 1 or more asks for, and sizes that have a scale.
TVMATH_API screen_corrector to_screen_corrector(unsigned short const* text, screen_corrector fallback);
/// `fallback` unless there are exactly seven items.
TVMATH_API telecentricity_corrector to_telecentricity_corrector(unsigned short const* text,
                                                                telecentricity_corrector fallback);

// The same for literals.

template <std::same_as<char16_t> unit>
flatness_corrector to_flatness_corrector(unit const* text, flatness_corrector fallback) {
    return to_flatness_corrector(literal_text(text).get(), fallback);
}
template <std::same_as<char16_t> unit>
screen_corrector to_screen_corrector(unit const* text, screen_corrector fallback) {
    return to_screen_corrector(literal_text(text).get(), fallback);
}
template <std::same_as<char16_t> unit>
telecentricity_corrector to_telecentricity_corrector(unit const* text, telecentricity_corrector fallback) {
    return to_telecentricity_corrector(literal_text(text).get(), fallback);
}

}  // namespace Persistence
}  // namespace tvmath
