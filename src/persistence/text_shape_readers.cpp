#include <cstdint>

#include "persistence/number_text.h"
#include "persistence/text_items.h"
#include "persistence/token_reader.h"
#include "tvmath/persistence.h"

inline namespace tvmath {
namespace Persistence {

using namespace token_reader;

double read_real(wide_string_view text, double fallback) {
    return text.empty() ? fallback : number_text::read_number(text.data(), text.data() + text.size());
}

nurb read_nurb(wide_string_view text, nurb const& fallback) {
    std::int64_t count = 0;
    for (item_walk items(text); !items.at_end(); items.next()) ++count;
    if (count <= 2) return fallback;

    item_walk items(text);
    // In 64 bits, so that no sum of two numbers from outside overflows. The room for the curve is taken after
    // the text has shown that it holds all of it.
    std::int64_t const order = number_text::read_integer(interior(items.next()));
    std::int64_t const points = number_text::read_integer(interior(items.next()));
    if (order < 0 || points < 0 || count != order + points + 4 * points + 2) return fallback;

    nurb result(static_cast<std::uint32_t>(order), static_cast<std::uint32_t>(points));
    TQ3NURBCurveData const& data = static_cast<TQ3NURBCurveData&>(result);
    auto const number = [&] { return read_real(interior(items.next()), 0.0); };
    for (std::uint32_t i = 0; i < data.point_count; ++i) {
        TQ3RationalPoint4D& p = data.control_points[i];
        for (double* const coordinate : {&p.x, &p.y, &p.z, &p.w}) *coordinate = number();
    }
    for (std::uint32_t i = 0; i < data.order + data.point_count; ++i) data.knot_values[i] = number();
    return result;
}

cone read_cone(wide_string_view text, cone const& fallback) {
    wide_string_view parts[11];
    if (!split(text, parts)) return fallback;
    double n[11];
    for (int i = 0; i < 11; ++i) n[i] = read_real(parts[i], 0.0);
    cone result;
    result.base = point(true, n[0], n[1], n[2]);
    result.top = point(true, n[3], n[4], n[5]);
    result.base_radius = n[6];
    result.top_radius = n[7];
    result.axis = point(false, n[8], n[9], n[10]);
    return result;
}

nurb to_nurb(unsigned short const* text, nurb fallback) {
    return read_nurb(whole(text), fallback);
}

nurb to_spline_to_nurb(unsigned short const* text, nurb fallback) {
    wide_string_view parts[12];
    if (!split(whole(text), parts)) return fallback;
    std::int64_t const order = std::int64_t{number_text::read_integer(parts[4])} + 1;
    curve const points = read_curve(parts[7], curve());
    vector const weights = read_vector(parts[8], vector()), knots = read_vector(parts[9], vector());
    unsigned int const n = points.capacity();
    if (order < 1 || n == 0 || weights.capacity() != n || order + n != knots.capacity()) return fallback;

    nurb result(static_cast<std::uint32_t>(order), n);
    TQ3NURBCurveData const& data = static_cast<TQ3NURBCurveData&>(result);
    for (unsigned int i = 0; i < n; ++i) {
        point const& p = points[i];
        if (!p.is_3d()) return fallback;
        double const w = weights[i];
        data.control_points[i] = {w * p.x(), w * p.y(), w * p.z(), w};
    }
    for (unsigned int i = 0; i < knots.capacity(); ++i) data.knot_values[i] = knots[i];
    return result;
}

cone to_cone(unsigned short const* text, cone fallback) {
    return read_cone(whole(text), fallback);
}

}  // namespace Persistence
}  // namespace tvmath
