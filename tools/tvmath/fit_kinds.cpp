#include "fit_kinds.h"

#include <algorithm>

#include "record_names.h"

inline namespace tvmath {
namespace {

constexpr form_names no_name = {nullptr, nullptr, nullptr};
constexpr form_names roundness = {"roundness", "RON", "ISO 12181"};
constexpr unsigned held = option_center | option_through | option_tangent | option_quick;

std::vector<fit_kind> make_kinds() {
    constexpr unsigned nominal = option_nominal;
    return {
        {"point", nullptr, 1, false, false, nominal | option_quick, Point_Description::type_value, no_name,
         "the points have no centroid", fit_point},
        {"line",
         "segment",
         2,
         false,
         false,
         nominal | option_quick | option_center | option_through | option_parallel | option_perpendicular,
         Segment_Description::type_value,
         {"straightness", "STR", "ISO 12780"},
         "the points scatter equally in every direction, or are all equal",
         fit_line},
        {"circle", nullptr, 3, false, false, nominal | held | option_diameter, Circle_Description::type_value,
         roundness, "the points lie on one line, or are fewer than 3 different ones", fit_circle},
        {"arc", nullptr, 3, false, false, nominal | held, Arc_Description::type_value, roundness,
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
        {"plane",
         nullptr,
         3,
         true,
         false,
         nominal | option_center | option_parallel,
         Plane_Description::type_value,
         {"flatness", "FLT", "ISO 12781"},
         "the points lie on one line, or are fewer than 3 different ones",
         fit_plane},
        {"sphere", nullptr, 4, true, false, nominal | held, Sphere_Description::type_value, no_name,
         "the points lie in one plane, or are fewer than 4 different ones", fit_sphere},
        {"cylinder",
         nullptr,
         5,
         true,
         false,
         nominal | option_center | option_parallel,
         Cylinder_Description::type_value,
         {"cylindricity", "CYL", "ISO 12180"},
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

}  // namespace

std::string fit_kind::named() const {
    return with_article(name);
}

std::vector<fit_kind> const& fit_kinds() {
    static std::vector<fit_kind> const kinds = make_kinds();
    return kinds;
}

fit_kind const* find_fit_kind(std::string const& name) {
    for (fit_kind const& kind : fit_kinds()) {
        if (name == kind.name || (kind.alias && name == kind.alias)) return &kind;
    }
    return nullptr;
}

std::string fit_kinds_help() {
    std::string text = "Kinds, the points they need, and the options on what is known of them:\n";
    for (fit_kind const& kind : fit_kinds()) {
        std::string const name = kind.name, least = std::to_string(kind.least_points);
        text += "  " + name + std::string(15 - name.size(), ' ') + least +
                (kind.in_space ? " in space  " : "           ") + option_names(kind.options) + '\n';
    }
    return text;
}

}  // namespace tvmath
