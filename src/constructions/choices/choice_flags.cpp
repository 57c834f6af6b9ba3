#include <cmath>
#include <typeinfo>

#include "choice_text.h"
#include "geometry/xy.h"
#include "geometry/xyz.h"
#include "persistence/token_reader.h"
#include "tvmath/construction_choice.h"

inline namespace tvmath {
namespace {

constexpr unsigned int chosen_bit = 1, second_is_larger = 2, first_is_negative = 4, second_is_negative = 8;

// As directions in space turn, their components change sign one at a time, as long as they stay clear of the
// one direction that has none. A unit vector, so that products of tiny and huge ones keep their sign.
xy two_components(point const& direction) {
    xyz const d = unit(xyz(direction));
    return {d.x + 0.62 * d.z, d.y + 0.38 * d.z};
}

xy at_twice_the_angle(xy const& d) {
    return {(d.x - d.y) * (d.x + d.y), 2 * d.x * d.y};
}

}  // namespace

solution_flags::solution_flags(double first, double second) {
    if (std::fabs(second) > std::fabs(first)) flags_ |= second_is_larger;
    if (first < 0) flags_ |= first_is_negative;
    if (second < 0) flags_ |= second_is_negative;
}

void solution_flags::select(unsigned int index) {
    flags_ = static_cast<unsigned char>((flags_ & ~chosen_bit) | (index & chosen_bit));
}

void solution_flags::selected(unsigned int& index) const {
    index = flags_ & chosen_bit;
}

bool solution_flags::update_from(multi_solution const* previous) {
    if (!previous || typeid(*previous) != typeid(*this)) return false;
    unsigned int const old = static_cast<solution_flags const*>(previous)->flags_;
    unsigned int const sign = (old | flags_) & second_is_larger ? second_is_negative : first_is_negative;
    select(((old ^ flags_) & sign) != 0 ? ~old : old);
    return true;
}

wide_string solution_flags::to_text() const {
    return as_wide(u"(") + as_wide(key()) + as_wide(u" ") + index_text(flags_) + as_wide(u")");
}

bool solution_flags::from_text(unsigned short const* text) {
    unsigned int flags = 0;
    if (!choice_reader(token_reader::whole(text)).take_index(flags) || flags > 15) return false;
    flags_ = static_cast<unsigned char>(flags);
    return true;
}

bisect_line_line::bisect_line_line(point const& first)
    : solution_flags(at_twice_the_angle(two_components(first)).x,
                     at_twice_the_angle(two_components(first)).y) {}

intersect_line_ellipse::intersect_line_ellipse(point const& direction)
    : solution_flags(two_components(direction).x, two_components(direction).y) {}

}  // namespace tvmath
