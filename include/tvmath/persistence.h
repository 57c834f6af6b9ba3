#pragma once

#include <concepts>
#include <cstddef>
#include <vector>

#include "tvmath/cone.h"
#include "tvmath/curve.h"
#include "tvmath/export.h"
#include "tvmath/geometry_description.h"
#include "tvmath/nurb.h"
#include "tvmath/point.h"
#include "tvmath/transform.h"
#include "tvmath/vector.h"
#include "tvmath/wide_string.h"

inline namespace tvmath {

/// Values as text and back.
///
/// A text is a row of items between blanks (32 alone: tabs and line ends do not separate). An item that opens
/// with `(`, `[`, `{` or `"` runs to its close, the same kind nested, and may hold blanks; without a close it
/// runs to the end of the text. Any other item runs to the next blank.
///
/// Every writer puts one pair of brackets around its text; every reader expects what is inside, because to a
/// reader the items are the parts. `token` takes the pair off: `to_vector(token(0, text).c_str(), {})`. The
/// items inside a text are written by the same writers, and the readers take their brackets off themselves.
///
/// A location is written `(x y)` or `(x y z)`, a direction `{x y}` or `{x y z}`, a trivial point, an empty
/// list and any other trivial value `()`.
///
/// Nothing here raises for a text, whatever it holds; a reader tells its failure value. The time and the
/// memory that a text takes grow linearly with its length. A null pointer counts as an empty text. Writers
/// raise `pointer_exception` for a handle that was moved from.
namespace Persistence {

/// The items of a text, found once, so that any of them is read at the cost of its own length.
class TVMATH_API tokens {
public:
    explicit tokens(unsigned short const* text);
    template <std::same_as<char16_t> unit>
    explicit tokens(unit const* text);

    std::size_t size() const { return starts_.size(); }
    /// Item `i` of `text`, which must be the text that these items were found in: without blanks at its ends
    /// and without the pair of brackets or quotes around it, if there is one. Empty beyond the last item.
    wide_string token(std::size_t i, unsigned short const* text) const;

private:
    std::vector<std::size_t> starts_;
    std::size_t length_ = 0;
};

/// Item `i` of the text, as `tokens::token` gives it. Reads the text from its start; for many items of one
/// text, keep the `tokens`.
TVMATH_API wide_string token(std::size_t i, unsigned short const* text);

// Writers. A number is what `%.*lg` prints in the C locale, with that precision: significant digits, a
// negative precision counting as 6. Any precision will do; from 17 on a text tells every bit. Infinities and
// NaN are 1.#INF, -1.#INF, 1.#QNAN and, with the sign bit set, -1.#IND. Long lists are written by several
// threads at a time; the text does not depend on their number.

TVMATH_API wide_string to_ascii(double value, int precision);
TVMATH_API wide_string to_ascii(point p, int precision);
/// `(` the points `)`, with a blank between neighbours.
TVMATH_API wide_string to_ascii(std::vector<point> const& points, int precision);
TVMATH_API wide_string to_ascii(curve c, int precision);
/// `(` the numbers `)`, with a blank between neighbours.
TVMATH_API wide_string to_ascii(vector v, int precision);
/// `(` the rows `)`, of the forward and then the inverse map, each `(offset a1 a2)` in 2D and `(offset a1 a2
/// a3)` in 3D; without the offsets when all of them, of both maps, are 0. One blank between rows, two between
/// the maps. `()` for a block of any other size.
TVMATH_API wide_string to_ascii(transform t, int precision);
/// `(order count`, x y z w of each control point as they are stored, and the knots `)`.
TVMATH_API wide_string to_ascii(nurb n, int precision);
/// `(` base x y z, top x y z, both radii, axis x y z `)`.
TVMATH_API wide_string to_ascii(cone const& c, int precision);
/// The record's geometry with 8 significant digits; what can be computed from it, such as the length of a
/// spline, is left out. Empty for open and closed data, for a text and for a class that is none of ours.
///
/// Shapes that are a transform of a unit shape are written as that transform; a cone, a number, a rotation, a
/// point and a point cloud as such. Arc: `(transform angle)`. O-ring: `(placement radius radius)`, the
/// outlines becoming circles. Splines: `(Bez (points))`. Nurb: `(center (nurb))`. Angle: `(arc` start,
/// included angle, near and far end of the start line, of the end line, and 1 or 0 for `sign_changed` `)`.
TVMATH_API wide_string to_ascii(Geometry_Description const& record);

// Readers, of the inside of what the writers write.

/// The number that the text starts with; what follows it does not matter, and a text that starts with none is
/// 0. `fallback` for an empty text only.
///
/// White space, a sign, decimal digits with a point, an exponent after e or E. The digits are gathered in
/// double, v = 10 v + digit, and then multiplied or divided by a power of ten that was squared together in
/// double. So the last bits may differ from the nearest double; a power beyond 10^308 is infinite, which
/// makes 0 of a number such as 2.5e-308 (25 / 10^309), and NaN of 0e309. Behind `#`, INF makes an infinity
/// with the sign of the value before it, IND is `domain_error_value` and QNAN its negation.
TVMATH_API double to_real(unsigned short const* text, double fallback);
/// A location or a direction from two or three numbers with blanks between them; what follows the third
/// number is ignored. `fallback` for fewer than two.
TVMATH_API point to_point(bool location, unsigned short const* text, point fallback);
/// Sets the list to one point for each item: a location when the item opens with `(`, a direction otherwise,
/// the trivial point when it is no point. False, the list untouched, for an empty text.
TVMATH_API bool from_ascii(unsigned short const* text, std::vector<point>& points);
/// The same as a path. `fallback` for an empty text.
TVMATH_API curve to_curve(unsigned short const* text, curve fallback);
/// The number at the start of each item, 0 for one that opens with a bracket. `fallback` for an empty text.
TVMATH_API vector to_vector(unsigned short const* text, vector fallback);
/// 2D from four rows, 3D from six. A row of two (2D) or three (3D) numbers has the offset 0, one with a
/// number more starts with it, any other is all zeros. Both maps are taken as they are. `fallback` for any
/// other number of items.
TVMATH_API transform to_transform(unsigned short const* text, transform fallback);
/// `fallback` unless there are exactly as many items as the order and the number of points ask for, and at
/// least 3.
TVMATH_API nurb to_nurb(unsigned short const* text, nurb fallback);
/// An older form of 12 items: item 4 is the degree, item 7 the 3D control points, item 8 their weights, item
/// 9 the knots; the others are ignored. `fallback` for another number of items, for a point that is not 3D,
/// and unless there is a weight for each point and the number of knots is degree + 1 + points.
TVMATH_API nurb to_spline_to_nurb(unsigned short const* text, nurb fallback);
/// `fallback` unless there are exactly 11 items.
TVMATH_API cone to_cone(unsigned short const* text, cone fallback);
/// Sets the record from the text of a record of its class. Returns false, the record untouched, when the text
/// is none, and for records that have no text.
///
/// Shapes must be 3D transforms and a point must be 3D; the centre of a nurb is read as a direction. A spline
/// gets its length, and a closed one its area and centroid, from its path; a text without the word `Bez` is
/// an older form, the inside of a nurb of order 32 at most. A number and a rotation take any text.
TVMATH_API bool to_description(unsigned short const* text, Geometry_Description& record);

// The same for literals. As templates they leave `nullptr` to the functions above.

/// A copy of a literal in the interface's 16-bit units; null stays null.
class literal_text {
public:
    explicit literal_text(char16_t const* text) : null_(!text), text_(as_wide(text ? text : u"")) {}
    unsigned short const* get() const { return null_ ? nullptr : text_.c_str(); }

private:
    bool null_;
    wide_string text_;
};

template <std::same_as<char16_t> unit>
tokens::tokens(unit const* text) : tokens(literal_text(text).get()) {}
template <std::same_as<char16_t> unit>
wide_string token(std::size_t i, unit const* text) {
    return token(i, literal_text(text).get());
}
template <std::same_as<char16_t> unit>
double to_real(unit const* text, double fallback) {
    return to_real(literal_text(text).get(), fallback);
}
template <std::same_as<char16_t> unit>
point to_point(bool location, unit const* text, point fallback) {
    return to_point(location, literal_text(text).get(), fallback);
}
template <std::same_as<char16_t> unit>
bool from_ascii(unit const* text, std::vector<point>& points) {
    return from_ascii(literal_text(text).get(), points);
}
template <std::same_as<char16_t> unit>
curve to_curve(unit const* text, curve fallback) {
    return to_curve(literal_text(text).get(), fallback);
}
template <std::same_as<char16_t> unit>
vector to_vector(unit const* text, vector fallback) {
    return to_vector(literal_text(text).get(), fallback);
}
template <std::same_as<char16_t> unit>
transform to_transform(unit const* text, transform fallback) {
    return to_transform(literal_text(text).get(), fallback);
}
template <std::same_as<char16_t> unit>
nurb to_nurb(unit const* text, nurb fallback) {
    return to_nurb(literal_text(text).get(), fallback);
}
template <std::same_as<char16_t> unit>
nurb to_spline_to_nurb(unit const* text, nurb fallback) {
    return to_spline_to_nurb(literal_text(text).get(), fallback);
}
template <std::same_as<char16_t> unit>
cone to_cone(unit const* text, cone fallback) {
    return to_cone(literal_text(text).get(), fallback);
}
template <std::same_as<char16_t> unit>
bool to_description(unit const* text, Geometry_Description& record) {
    return to_description(literal_text(text).get(), record);
}

}  // namespace Persistence
}  // namespace tvmath
