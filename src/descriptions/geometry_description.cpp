#include "tvmath/geometry_description.h"

#include "record_kinds.h"

inline namespace tvmath {
namespace {

void move_points(std::vector<point>& points, transform const& t) {
    for (point& p : points) p *= t;
}

}  // namespace

Geometry_Description::~Geometry_Description() = default;

void Geometry_Description::apply_scalar_translation(double) {}

Geometry_Description* Geometry_Description::create(unsigned long long type) {
    Geometry_Description* fresh = nullptr;
    all_record_kinds::with_class(type, [&]<class kind>(std::type_identity<kind>) { fresh = new kind; });
    return fresh;
}

ctl::ref<Geometry_Description> Geometry_Description::create_ref(unsigned long long type) {
    ctl::ref<Geometry_Description> fresh;
    all_record_kinds::with_class(
        type, [&]<class kind>(std::type_identity<kind>) { fresh = ctl::make_ref<kind>(); });
    return fresh;
}

void Point_Description::apply_transform(transform t) {
    position *= t;
}

void Arc_Description::apply_transform(transform t) {
    circle *= t;
    if (!circle.is_left_handed()) return;
    included_angle = -included_angle;
    circle.make_right_handed(2);
}

void ORing_Description::apply_transform(transform t) {
    placement *= t;
}

void OpenSpline_Description::apply_transform(transform t) {
    path *= t;
}

void ClosedSpline_Description::apply_transform(transform t) {
    path *= t;
    centroid *= t;
}

void Nurb_Description::apply_transform(transform t) {
    geometry *= t;
    center *= t;
}

void Cone_Description::apply_transform(transform t) {
    geometry *= t;
}

void OpenData_Description::apply_transform(transform t) {
    move_points(points, t);
}

void ClosedData_Description::apply_transform(transform t) {
    move_points(points, t);
}

void PointCloud_Description::apply_transform(transform t) {
    move_points(points, t);
}

void Number_Description::apply_transform(transform) {}

void Number_Description::apply_scalar_translation(double d) {
    value += d;
}

void Rotation_Description::apply_transform(transform) {}

void Rotation_Description::apply_scalar_translation(double d) {
    value += d;
}

void Text_Description::apply_transform(transform t) {
    placement *= t;
}

}  // namespace tvmath
