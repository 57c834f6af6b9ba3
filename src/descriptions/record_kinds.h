#pragma once

#include <bit>
#include <concepts>
#include <memory>
#include <type_traits>
#include <vector>

#include "tvmath/geometry_description.h"
#include "tvmath/geometry_queries.h"

inline namespace tvmath {

/// A list of record classes, for code that must not forget a kind.
template <class... kind>
struct record_kinds {
    static constexpr unsigned int count = sizeof...(kind);
    static constexpr unsigned long long mask = (kind::type_value | ...);

    /// Calls `action` with a `std::type_identity` of the class of that type value. False when there is none.
    template <class action>
    static bool with_class(unsigned long long type, action const& act) {
        return ((type == kind::type_value && (act(std::type_identity<kind>()), true)) || ...);
    }

    static_assert((std::has_single_bit(kind::type_value) && ...));
    static_assert(std::popcount(mask) == count, "two kinds share a bit");
};

using all_record_kinds =
    record_kinds<Point_Description, Transform_Description, Segment_Description, Circle_Description,
                 Arc_Description, Ellipse_Description, ORing_Description, Rectangle_Description,
                 Gap_Description, Slot_Description, OpenSpline_Description, Plane_Description,
                 Angle_Description, ClosedSpline_Description, OpenData_Description, ClosedData_Description,
                 Sphere_Description, Cylinder_Description, Cone_Description, Nurb_Description,
                 Composite_Description, Number_Description, Rotation_Description, PointCloud_Description,
                 Text_Description>;

// All bits up to the highest one, but for the two segmented splines, which are only names.
static_assert(all_record_kinds::mask == (0x7ffffff & ~0x600000));

/// What `query` answers for the record as its own class; it must answer the same type for every kind. An
/// empty answer for a record that is none of ours: a class of the user's own may have any type value, so the
/// value alone proves nothing about the class.
template <class action>
auto ask_record(Geometry_Description const& feature, action const& query) {
    decltype(query(Point_Description())) answer{};
    all_record_kinds::with_class(feature.type(), [&]<class kind>(std::type_identity<kind>) {
        if (auto const* const record = dynamic_cast<kind const*>(&feature)) answer = query(*record);
    });
    return answer;
}

/// The record that a getter hands out; null when it gives none.
inline std::unique_ptr<Geometry_Description> held_record(GeometryGetter const& getter) {
    std::unique_ptr<Geometry_Description> record(Geometry_Description::create(getter.type()));
    if (record && !getter.get(*record)) record.reset();
    return record;
}

/// Records around one shape that is a transform of a unit shape.
template <class kind>
concept shape_record = std::derived_from<decltype(kind::geometry), transform>;

/// Records of measured points.
template <class kind>
concept data_record = std::same_as<decltype(kind::points), std::vector<point>>;

}  // namespace tvmath
