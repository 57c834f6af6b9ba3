#include <concepts>
#include <initializer_list>

#include "descriptions/record_kinds.h"
#include "tvmath/persistence.h"

inline namespace tvmath {
namespace Persistence {
namespace {

// More would tell the rounding of the measurement, and is not promised to come back.
constexpr int digits = 8;

wide_string group(std::initializer_list<wide_string> parts) {
    wide_string text;
    for (wide_string const& part : parts) {
        text.push_back(text.empty() ? '(' : ' ');
        text += part;
    }
    text.push_back(')');
    return text;
}

template <shape_record kind>
wide_string write(kind const& record) {
    return to_ascii(static_cast<transform const&>(record.geometry), digits);
}

template <class kind>
requires std::same_as<decltype(kind::path), curve> wide_string write(kind const& record) {
    return group({as_wide(u"Bez"), to_ascii(record.path, digits)});
}

template <class kind>
requires std::same_as<decltype(kind::value), double> wide_string write(kind const& record) {
    return to_ascii(record.value, digits);
}

wide_string write(Point_Description const& record) {
    return to_ascii(record.position, digits);
}
wide_string write(Arc_Description const& record) {
    return group({to_ascii(record.circle, digits), to_ascii(record.included_angle, digits)});
}
wide_string write(ORing_Description const& record) {
    return group({to_ascii(record.placement, digits), to_ascii(record.inner.radius(), digits),
                  to_ascii(record.outer.radius(), digits)});
}
wide_string write(Nurb_Description const& record) {
    return group({to_ascii(record.center, digits), to_ascii(record.geometry, digits)});
}
wide_string write(Angle_Description const& record) {
    return group({to_ascii(record.arc, digits), to_ascii(record.start_angle, digits),
                  to_ascii(record.included_angle, digits), to_ascii(record.start_line_near, digits),
                  to_ascii(record.start_line_far, digits), to_ascii(record.end_line_near, digits),
                  to_ascii(record.end_line_far, digits), as_wide(record.sign_changed ? u"1" : u"0")});
}
wide_string write(Cone_Description const& record) {
    return to_ascii(record.geometry, digits);
}
wide_string write(PointCloud_Description const& record) {
    return to_ascii(record.points, digits);
}
// These have no text: measured points are kept apart from the features, and what a text says is not geometry.
wide_string write(OpenData_Description const&) {
    return {};
}
wide_string write(ClosedData_Description const&) {
    return {};
}
wide_string write(Text_Description const&) {
    return {};
}

}  // namespace

wide_string to_ascii(Geometry_Description const& record) {
    return ask_record(record, [](auto const& known) { return write(known); });
}

}  // namespace Persistence
}  // namespace tvmath
