#pragma once

#include <cstddef>

#include "tvmath/wide_string.h"

inline namespace tvmath {
namespace TVXML {

/// A name in XML: a constant text that lives as long as the program.
class XmlToken {
public:
    explicit constexpr XmlToken(wide_char const* text) : text_(text) {}
    constexpr wide_char const* c_str() const { return text_; }
    wide_string text() const { return text_; }
    bool operator==(XmlToken const& other) const { return wide_compare(text_, other.text_) == 0; }
    bool operator==(wide_string const& other) const { return other == text_; }

private:
    wide_char const* text_;
};

namespace token_detail {

template <std::size_t n>
struct constant {
    wide_char units[n]{};
    consteval constant(char16_t const (&text)[n]) {
        for (std::size_t i = 0; i < n; ++i) units[i] = text[i];
    }
};
template <constant text>
constexpr XmlToken token() {
    return XmlToken(text.units);
}

}  // namespace token_detail

/// The vocabulary: names of scalars are lower case, those of parts capitalised with hyphens.
namespace tokens {
using token_detail::token;
inline constexpr XmlToken Angle = token<u"Angle">();
inline constexpr XmlToken Arc = token<u"Arc">();
inline constexpr XmlToken Bezier_Curve = token<u"Bezier-Curve">();
inline constexpr XmlToken Bisector_Direction = token<u"Bisector-Direction">();
inline constexpr XmlToken Center = token<u"Center">();
inline constexpr XmlToken Circle = token<u"Circle">();
inline constexpr XmlToken Closed_Spline = token<u"Closed-Spline">();
inline constexpr XmlToken Composite = token<u"Composite">();
inline constexpr XmlToken Cone = token<u"Cone">();
inline constexpr XmlToken Cylinder = token<u"Cylinder">();
inline constexpr XmlToken Direction = token<u"Direction">();
inline constexpr XmlToken Distance = token<u"Distance">();
inline constexpr XmlToken Ellipse = token<u"Ellipse">();
inline constexpr XmlToken End_Angle = token<u"End-Angle">();
inline constexpr XmlToken End_Point = token<u"End-Point">();
inline constexpr XmlToken Gap = token<u"Gap">();
inline constexpr XmlToken height = token<u"height">();
inline constexpr XmlToken Included_Angle = token<u"Included-Angle">();
inline constexpr XmlToken Inner_Radius = token<u"Inner-Radius">();
inline constexpr XmlToken Line = token<u"Line">();
inline constexpr XmlToken Normal = token<u"Normal">();
inline constexpr XmlToken ORing = token<u"ORing">();
inline constexpr XmlToken Open_Spline = token<u"Open-Spline">();
inline constexpr XmlToken orientation = token<u"orientation">();
inline constexpr XmlToken Outer_Radius = token<u"Outer-Radius">();
inline constexpr XmlToken pitch = token<u"pitch">();
inline constexpr XmlToken Plane = token<u"Plane">();
inline constexpr XmlToken Point0 = token<u"Point0">();
inline constexpr XmlToken Point1 = token<u"Point1">();
inline constexpr XmlToken Point = token<u"Point">();
inline constexpr XmlToken Position = token<u"Position">();
inline constexpr XmlToken Radius0 = token<u"Radius0">();
inline constexpr XmlToken Radius1 = token<u"Radius1">();
inline constexpr XmlToken radius = token<u"radius">();
inline constexpr XmlToken Rectangle = token<u"Rectangle">();
inline constexpr XmlToken roll = token<u"roll">();
inline constexpr XmlToken Major_Radius = token<u"Major-Radius">();
inline constexpr XmlToken Minor_Radius = token<u"Minor-Radius">();
inline constexpr XmlToken Slot = token<u"Slot">();
inline constexpr XmlToken Sphere = token<u"Sphere">();
inline constexpr XmlToken Start_Angle = token<u"Start-Angle">();
inline constexpr XmlToken Start_Point = token<u"Start-Point">();
inline constexpr XmlToken System = token<u"System">();
inline constexpr XmlToken Vertex = token<u"Vertex">();
inline constexpr XmlToken width = token<u"width">();
inline constexpr XmlToken XAxis = token<u"XAxis">();
inline constexpr XmlToken YAxis = token<u"YAxis">();
inline constexpr XmlToken yaw = token<u"yaw">();
inline constexpr XmlToken ZAxis = token<u"ZAxis">();
}  // namespace tokens

}  // namespace TVXML
}  // namespace tvmath
