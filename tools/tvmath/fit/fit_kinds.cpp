#include "fit_kinds.h"

#include <algorithm>

#include "record/record_names.h"

inline namespace tvmath {
namespace {

constexpr form_names no_name = {nullptr, nullptr, nullptr, nullptr};
constexpr form_names roundness(char const* reference) {
    return {"roundness", "RON", "ISO 12181", reference};
}
constexpr form_names straightness(char const* reference) {
    return {"straightness", "STR", "ISO 12780", reference};
}
constexpr form_names flatness(char const* reference) {
    return {"flatness", "FLT", "ISO 12781", reference};
}
constexpr unsigned held = option_center | option_through | option_tangent | option_quick;

std::vector<fit_kind> make_kinds() {
    constexpr unsigned nominal = option_nominal;
    return {
        {"point", nullptr, 1, false, false, nominal | option_quick, Point_Description::type_value, no_name,
         "the points have no centroid", fit_point},
        {"line", "segment", 2, false, false,
         nominal | option_quick | option_zone | option_center | option_through | option_parallel |
             option_perpendicular,
         Segment_Description::type_value, straightness("LSLI"),
         "the points scatter equally in every direction, or are all equal", fit_line},
        {"circle", nullptr, 3, false, false, nominal | held | option_zone | option_diameter,
         Circle_Description::type_value, roundness("LSCI"),
         "the points lie on one line, or are fewer than 3 different ones", fit_circle},
        {"arc", nullptr, 3, false, false, nominal | held, Arc_Description::type_value, roundness("LSCI"),
         "the points lie on one line, or are fewer than 3 different ones", fit_arc},
        {"ellipse", nullptr, 5, false, false, nominal | option_center | option_quick,
         Ellipse_Description::type_value, no_name,
         "the points lie on a line or a hyperbola, are fewer than 5 different ones, or leave it open as a "
         "short arc does",
         fit_ellipse},
        {"rectangle", nullptr, 5, false, false, nominal, Rectangle_Description::type_value, no_name,
         "each side needs a point of its own, one of them two, clear of the scatter", fit_rectangle},
        {"slot", nullptr, 5, false, false, nominal, Slot_Description::type_value, no_name,
         "both sides and both ends need points, clear of the scatter", fit_slot},
        {"gap", nullptr, 3, false, false, nominal, Gap_Description::type_value, no_name,
         "both sides need points, one of them two, clear of the scatter", fit_gap},
        {"ring", nullptr, 4, false, false, nominal, ORing_Description::type_value, no_name,
         "the points leave a gap of half a turn or more about their centre", fit_ring},
        {"o-ring", "oring", 8, false, false, nominal, ORing_Description::type_value, no_name,
         "the points do not part into two outlines, each without a gap of half a turn", fit_oring},
        {"plane", nullptr, 3, true, false, nominal | option_zone | option_center | option_parallel,
         Plane_Description::type_value, flatness("LSPL"),
         "the points lie on one line, or are fewer than 3 different ones", fit_plane},
        {"sphere", nullptr, 4, true, false, nominal | held, Sphere_Description::type_value, no_name,
         "the points lie in one plane, or are fewer than 4 different ones", fit_sphere},
        {"cylinder",
         nullptr,
         5,
         true,
         false,
         nominal | option_center | option_parallel,
         Cylinder_Description::type_value,
         {"cylindricity", "CYL", "ISO 12180", "LSCY"},
         "the points lie in one plane or at one place along the axis, or a plane fits them as well",
         fit_cylinder},
        {"cone", nullptr, 6, true, false, nominal | option_center | option_parallel,
         Cone_Description::type_value, no_name,
         "the points lie in one plane or at one place along the axis, or a plane fits them as well",
         fit_cone},
        {"open-spline", nullptr, 2, false, false, nominal | option_method | option_sort,
         OpenSpline_Description::type_value, no_name, "the points are fewer than 2 different ones",
         fit_open_spline},
        {"closed-spline", nullptr, 3, false, false, nominal | option_method | option_sort,
         ClosedSpline_Description::type_value, no_name, "the points are fewer than 3 different ones",
         fit_closed_spline},
        {"open-nurb", nullptr, 2, false, false, nominal | option_sort, Nurb_Description::type_value, no_name,
         "the points are fewer than 2 different ones", fit_open_nurb},
        {"closed-nurb", nullptr, 3, false, false, nominal | option_sort, Nurb_Description::type_value,
         no_name, "the points are fewer than 3 different ones", fit_closed_nurb},
        {"transform", nullptr, 3, false, false, option_onto, Transform_Description::type_value, no_name,
         "the points lie on one line, or, in space, in one plane", fit_transform},
        {"composite", nullptr, 1, false, true, nominal, Composite_Description::type_value, no_name,
         "the search for the placement does not settle", fit_whole_composite},
    };
}

// The names are phrases for people; the alias is what is typed.
std::vector<fit_kind> make_zone_kinds() {
    constexpr unsigned nominal = option_nominal;
    return {
        {"minimum zone circle", "circle", 3, false, false, nominal, Circle_Description::type_value,
         roundness("MZCI"),
         "rings get ever narrower the farther off their centre is, as for points on a line, or the points "
         "are all equal, or fill an area",
         fit_zone_circle},
        {"minimum zone line", "line", 2, false, false, nominal, Segment_Description::type_value,
         straightness("MZLI"), "the points are all equal", fit_zone_line},
        {"minimum zone plane", "plane", 3, true, false, nominal | option_parallel,
         Plane_Description::type_value, flatness("MZPL"),
         "the points lie on one line, or are fewer than 3 different ones", fit_zone_plane},
        {"inscribed circle", "inscribed", 3, false, false, nominal, Circle_Description::type_value,
         roundness("MICI"),
         "the points enclose no centre, as those of a smooth arc of less than a half circle",
         fit_inscribed_circle},
        {"circumscribed circle", "circumscribed", 2, false, false, nominal, Circle_Description::type_value,
         roundness("MCCI"), "the points are all equal", fit_circumscribed_circle},
        {"circumscribed sphere", "sphere", 2, true, false, nominal, Sphere_Description::type_value, no_name,
         "the points are all equal", fit_circumscribed_sphere},
        {"seating plane", "seating", 3, true, false, nominal | option_flip, Plane_Description::type_value,
         no_name, "the points lie on one line as seen along Z", fit_seating_plane},
    };
}

fit_kind const* find_kind(std::vector<fit_kind> const& kinds, std::string const& name) {
    for (fit_kind const& kind : kinds) {
        if (name == kind.name || (kind.alias && name == kind.alias)) return &kind;
    }
    return nullptr;
}

std::string row_of_help(std::string const& name, fit_kind const& kind) {
    std::string const least = std::to_string(kind.least_points);
    return "  " + name + std::string(15 - name.size(), ' ') + least +
           (kind.in_space ? " in space  " : "           ") + option_names(kind.options) + '\n';
}

}  // namespace

std::string fit_kind::named() const {
    return with_article(name);
}

std::vector<fit_kind> const& fit_kinds() {
    static std::vector<fit_kind> const kinds = make_kinds();
    return kinds;
}

std::vector<fit_kind> const& zone_kinds() {
    static std::vector<fit_kind> const kinds = make_zone_kinds();
    return kinds;
}

fit_kind const* find_fit_kind(std::string const& name) {
    return find_kind(fit_kinds(), name);
}

fit_kind const* find_zone_kind(std::string const& name) {
    return find_kind(zone_kinds(), name);
}

std::string fit_kinds_help() {
    std::string text = "Kinds, the points they need, and the options on what is known of them:\n";
    for (fit_kind const& kind : fit_kinds()) text += row_of_help(kind.name, kind);
    return text;
}

std::string zone_kinds_help() {
    std::string text = "Kinds, the points they need, and the options of each:\n";
    for (fit_kind const& kind : zone_kinds()) text += row_of_help(kind.alias, kind);
    return text;
}

}  // namespace tvmath
