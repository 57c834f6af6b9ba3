#include "persistence/text_items.h"
#include "persistence/token_reader.h"
#include "tvmath/corrector_text.h"

inline namespace tvmath {
namespace Persistence {

wide_string to_ascii(telecentricity_corrector const& c, int precision) {
    if (c.is_trivial()) return u"()"_w;
    wide_string text = u"("_w + to_ascii(c.residual * 1000, precision);
    for (double const x : {c.magnification / 1000, c.tilt_x, c.tilt_y, c.magnification_error / 1000,
                           c.tilt_x_error, c.tilt_y_error}) {
        text += u" "_w + to_ascii(x, precision);
    }
    return text + u")"_w;
}

telecentricity_corrector to_telecentricity_corrector(unsigned short const* text,
                                                     telecentricity_corrector fallback) {
    wide_string_view part[7];
    if (!token_reader::split(token_reader::whole(text), part)) return fallback;
    double number[7];
    for (int i = 0; i < 7; ++i) number[i] = read_real(part[i], 0.0);
    telecentricity_corrector c;
    c.residual = number[0] / 1000;
    c.magnification = number[1] * 1000;
    c.tilt_x = number[2];
    c.tilt_y = number[3];
    c.magnification_error = number[4] * 1000;
    c.tilt_x_error = number[5];
    c.tilt_y_error = number[6];
    return c;
}

}  // namespace Persistence
}  // namespace tvmath
