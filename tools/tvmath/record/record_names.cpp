#include "record_names.h"

inline namespace tvmath {
namespace {

struct name_row {
    char const* name;
    unsigned long long type;
};

// The first word of a kind is the one that is written.
name_row const names[] = {
    {"point", Point_Description::type_value},
    {"segment", Segment_Description::type_value},
    {"circle", Circle_Description::type_value},
    {"arc", Arc_Description::type_value},
    {"ellipse", Ellipse_Description::type_value},
    {"rectangle", Rectangle_Description::type_value},
    {"slot", Slot_Description::type_value},
    {"gap", Gap_Description::type_value},
    {"oring", ORing_Description::type_value},
    {"angle", Angle_Description::type_value},
    {"open-spline", OpenSpline_Description::type_value},
    {"closed-spline", ClosedSpline_Description::type_value},
    {"nurb", Nurb_Description::type_value},
    {"open-data", OpenData_Description::type_value},
    {"closed-data", ClosedData_Description::type_value},
    {"point-cloud", PointCloud_Description::type_value},
    {"plane", Plane_Description::type_value},
    {"sphere", Sphere_Description::type_value},
    {"cylinder", Cylinder_Description::type_value},
    {"cone", Cone_Description::type_value},
    {"transform", Transform_Description::type_value},
    {"composite", Composite_Description::type_value},
    {"number", Number_Description::type_value},
    {"rotation", Rotation_Description::type_value},
    {"text", Text_Description::type_value},
    {"line", Segment_Description::type_value},
    {"ring", ORing_Description::type_value},
    {"o-ring", ORing_Description::type_value},
    {"open-nurb", Nurb_Description::type_value},
    {"closed-nurb", Nurb_Description::type_value},
};

}  // namespace

std::string record_name(unsigned long long type) {
    for (name_row const& row : names) {
        if (row.type == type) return row.name;
    }
    return {};
}

unsigned long long record_type(std::string const& name) {
    for (name_row const& row : names) {
        if (row.name == name) return row.type;
    }
    return 0;
}

std::shared_ptr<Geometry_Description> new_record(unsigned long long type) {
    return std::shared_ptr<Geometry_Description>(Geometry_Description::create(type));
}

std::string with_article(std::string const& name) {
    bool const vowel = !name.empty() && std::string("aeio").find(name.front()) != std::string::npos;
    return (vowel ? "an " : "a ") + name;
}

std::vector<point>* points_in(Geometry_Description& record) {
    if (auto* const cloud = dynamic_cast<PointCloud_Description*>(&record)) return &cloud->points;
    if (auto* const open = dynamic_cast<OpenData_Description*>(&record)) return &open->points;
    auto* const closed = dynamic_cast<ClosedData_Description*>(&record);
    return closed ? &closed->points : nullptr;
}

std::vector<point> const* points_in(Geometry_Description const& record) {
    return points_in(const_cast<Geometry_Description&>(record));
}

}  // namespace tvmath
