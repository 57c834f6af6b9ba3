#include <cmath>

#include "correction/chebyshev.h"
#include "correction/text_parts.h"
#include "persistence/text_items.h"
#include "tvmath/corrector_text.h"

inline namespace tvmath {
namespace Persistence {

wide_string to_ascii(screen_corrector const& c, int precision) {
    if (c.is_trivial() || rows(c.coefficients) < 2) return as_wide(u"()");
    // %g stands for 6 digits. The rows need no blank between them: their brackets part them.
    return as_wide(u"(") + to_ascii(1000 * c.residual, precision) + as_wide(u" ") +
           to_ascii(c.coefficients[0], precision) + to_ascii(c.coefficients[1], precision) + as_wide(u" ") +
           to_ascii(2 / c.x_scale, 6) + as_wide(u" ") + to_ascii(2 / c.y_scale, 6) + as_wide(u")");
}

screen_corrector to_screen_corrector(unsigned short const* text, screen_corrector fallback) {
    wide_string_view parts[5];
    if (!first_parts(token_reader::whole(text), parts)) return fallback;
    screen_corrector c;
    vector const dx = read_vector(parts[1], vector()), dy = read_vector(parts[2], vector());
    int const order = chebyshev::order_of(dim(dx));
    c.residual = read_real(parts[0], 0) / 1000;
    c.x_scale = 2 / read_real(parts[3], 0);
    c.y_scale = 2 / read_real(parts[4], 0);
    // No writer leaves a field that could not be evaluated.
    if (order < 1 || dim(dx) != dim(dy) || !std::isfinite(c.x_scale) || !std::isfinite(c.y_scale))
        return fallback;
    c.order = static_cast<std::uint32_t>(order);
    c.coefficients = matrix(2, dx);
    c.coefficients.row(1, dy);
    return c;
}

}  // namespace Persistence
}  // namespace tvmath
