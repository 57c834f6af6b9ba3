#include <cmath>
#include <cstdint>

#include "correction/chebyshev.h"
#include "correction/text_parts.h"
#include "persistence/text_items.h"
#include "tvmath/corrector_text.h"

inline namespace tvmath {
namespace Persistence {

wide_string to_ascii(flatness_corrector const& c, int precision) {
    if (c.is_trivial()) return u"()"_w;
    wide_string text = u"("_w + to_ascii(c.residual * 1000, precision);
    text += u" "_w + to_ascii(c.coefficients * 1000.0, precision);
    // %g stands for 6 digits.
    for (double const x : {2 / c.x_scale, 2 / c.y_scale, c.curvature / 1000}) {
        text += u" "_w + to_ascii(x, 6);
    }
    return text + u")"_w;
}

flatness_corrector to_flatness_corrector(unsigned short const* text, flatness_corrector fallback) {
    wide_string_view parts[5];
    if (!first_parts(token_reader::whole(text), parts)) return fallback;
    flatness_corrector c;
    c.coefficients = read_vector(parts[1], c.coefficients);
    int const order = chebyshev::order_of(c.coefficients.capacity());
    c.x_scale = 2 / read_real(parts[2], 0);
    c.y_scale = 2 / read_real(parts[3], 0);
    if (order < 0 || !std::isfinite(c.x_scale) || !std::isfinite(c.y_scale)) return fallback;
    c.order = static_cast<std::uint32_t>(order);
    // Quotients, because 1/1000 is no double and a product with it would be rounded twice.
    for (double *x = c.coefficients.lazycopy_begin(), *end = x + dim(c.coefficients); x != end; ++x)
        *x /= 1000;
    c.residual = read_real(parts[0], 0) / 1000;
    c.curvature = read_real(parts[4], 0) * 1000;
    return c;
}

}  // namespace Persistence
}  // namespace tvmath
