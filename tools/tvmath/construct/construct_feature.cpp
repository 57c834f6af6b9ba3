#include "construct/construct_feature.h"

#include <algorithm>
#include <iterator>

#include "files/point_file.h"
#include "record/record_file.h"
#include "record/record_names.h"
#include "record/record_parameters.h"
#include "tvmath/path_fit.h"

inline namespace tvmath {
namespace {

struct kind_row {
    unsigned long long type;
    feature_kind kind;
};

kind_row const kinds[] = {
    {Point_Description::type_value, feature_kind::point},
    {PointCloud_Description::type_value, feature_kind::list},
    {OpenData_Description::type_value, feature_kind::list},
    {ClosedData_Description::type_value, feature_kind::list},
    {Segment_Description::type_value, feature_kind::line},
    {Plane_Description::type_value, feature_kind::plane},
    {Sphere_Description::type_value, feature_kind::sphere},
    {Cylinder_Description::type_value, feature_kind::cylinder},
    {Cone_Description::type_value, feature_kind::cone},
    {Circle_Description::type_value, feature_kind::ellipse},
    {Arc_Description::type_value, feature_kind::ellipse},
    {Ellipse_Description::type_value, feature_kind::ellipse},
    {OpenSpline_Description::type_value, feature_kind::path},
    {ClosedSpline_Description::type_value, feature_kind::path},
    {Nurb_Description::type_value, feature_kind::path},
    {Rectangle_Description::type_value, feature_kind::rectangle},
};

bool is_spline(unsigned long long type) {
    return type == OpenSpline_Description::type_value || type == ClosedSpline_Description::type_value;
}

// Null for another kind of record.
template <class kind>
kind const* as(construct_feature const& feature) {
    return dynamic_cast<kind const*>(feature.record.get());
}

template <class kind>
auto const& geometry_in(construct_feature const& feature) {
    return static_cast<kind const&>(*feature.record).geometry;
}

bool is_in_space(construct_feature const& feature) {
    switch (feature.kind) {
        case feature_kind::point:
            return shape_of<point>(feature).is_3d();
        case feature_kind::list: {
            auto const& points = *points_in(*feature.record);
            return std::all_of(points.begin(), points.end(), [](point const& p) { return p.is_3d(); });
        }
        case feature_kind::line:
            return shape_of<line>(feature).is_3d();
        case feature_kind::ellipse:
            return shape_of<ellipse>(feature).is_3d();
        case feature_kind::rectangle:
            return shape_of<rectangle>(feature).is_3d();
        case feature_kind::path: {
            auto const* const open = as<OpenSpline_Description>(feature);
            auto const* const closed = as<ClosedSpline_Description>(feature);
            return open ? open->path[0].is_3d() : closed ? closed->path[0].is_3d() : false;
        }
        default:
            return true;
    }
}

bool is_number(std::string const& word) {
    double ignored = 0;
    std::string reason;
    return parse_parameter(word, ignored, reason);
}

// The path through the points of a file, as `tvmath fit` draws it with its first method.
bool join(std::vector<point> const& points, unsigned long long type,
          std::shared_ptr<Geometry_Description>& record) {
    bool const closed = type == ClosedSpline_Description::type_value;
    curve const path = bezier_fit(points, closed);
    if (path.capacity() < 4) return false;
    if (closed) {
        auto const spline = std::make_shared<ClosedSpline_Description>();
        spline->path = path;
        record = spline;
    } else {
        auto const spline = std::make_shared<OpenSpline_Description>();
        spline->path = path;
        record = spline;
    }
    return true;
}

// The form by the suffix, or else the one that was given.
bool form_of_file(std::string const& file, std::string const& form, file_form& found, std::string& reason) {
    return find_form("", file, found, reason) || (!form.empty() && find_form(form, file, found, reason));
}

exit_status read_from_file(std::string const& file, std::string const& form, unsigned long long type,
                           std::shared_ptr<Geometry_Description>& record, std::string& reason) {
    file_form found = file_form::text;
    if (!form_of_file(file, form, found, reason)) return exit_status::wrong_usage;
    bool const is_list = found == file_form::csv || found == file_form::hexadecimal;
    if (!is_spline(type) || !is_list) return read_record(file, found, type, record, reason);
    exit_status const status = read_record(file, found, 0, record, reason);
    if (status != exit_status::done || join(*points_in(*record), type, record)) return status;
    reason = shown_name(file) + ": these points determine no path";
    return exit_status::no_answer;
}

exit_status make_from_words(std::vector<std::string> words, std::shared_ptr<Geometry_Description>& record,
                            std::string& reason) {
    std::string const kind = words.front();
    words.erase(words.begin());
    std::unique_ptr<Geometry_Description> made;
    if (!make_record(kind, words, made, reason)) return exit_status::wrong_usage;
    record = std::move(made);
    return exit_status::done;
}

// A kind with its numbers, a kind with a file, or a file, whose name may have blanks too.
exit_status read_any(std::string const& text, std::string const& form,
                     std::shared_ptr<Geometry_Description>& record, std::string& reason) {
    std::vector<std::string> const words = split_words(text);
    unsigned long long const type = words.empty() ? 0 : record_type(words.front());
    bool const has_numbers = words.size() > 1 && is_number(words[1]);
    file_form found = file_form::text;
    std::string ignored;
    if (type == 0 && (!has_numbers || find_form("", text, found, ignored)))
        return read_from_file(text, form, 0, record, reason);
    if (words.size() == 1) {
        exit_status const status = make_from_words(words, record, reason);
        reason += "; a feature is one word, in quotes";
        return status;
    }
    std::string const rest = text.substr(text.find(words[1], text.find(words[0]) + words[0].size()));
    if (!has_numbers && form_of_file(rest, form, found, ignored))
        return read_from_file(rest, form, type, record, reason);
    return make_from_words(words, record, reason);
}

}  // namespace

char const* kind_name(feature_kind kind) {
    static char const* const names[] = {"point",    "list", "line",    "plane", "sphere",
                                        "cylinder", "cone", "ellipse", "path",  "rectangle"};
    return names[static_cast<int>(kind)];
}

exit_status read_feature(std::string const& words, std::string const& form, construct_feature& feature,
                         std::string& reason) {
    construct_feature fresh;
    exit_status const status = read_any(words, form, fresh.record, reason);
    if (status != exit_status::done) return status;
    fresh.words = shown_name(words);
    unsigned long long const type = fresh.record->type();
    auto const row = std::find_if(std::begin(kinds), std::end(kinds),
                                  [type](kind_row const& r) { return r.type == type; });
    if (row == std::end(kinds)) {
        reason = fresh.words + ": no construction takes " + with_article(record_name(type));
        return exit_status::wrong_usage;
    }
    fresh.kind = row->kind;
    fresh.in_space = is_in_space(fresh);
    feature = fresh;
    return exit_status::done;
}

template <>
point shape_of(construct_feature const& feature) {
    return static_cast<Point_Description const&>(*feature.record).position;
}

template <>
std::vector<point> shape_of(construct_feature const& feature) {
    return *points_in(*feature.record);
}

template <>
ellipse shape_of(construct_feature const& feature) {
    if (auto const* const arc = as<Arc_Description>(feature)) return arc->circle;
    if (auto const* const whole = as<Circle_Description>(feature)) return whole->geometry;
    return geometry_in<Ellipse_Description>(feature);
}

template <>
curve shape_of(construct_feature const& feature) {
    curve path;
    if (auto const* const open = as<OpenSpline_Description>(feature)) path = open->path;
    if (auto const* const closed = as<ClosedSpline_Description>(feature)) path = closed->path;
    if (auto const* const nurbs = as<Nurb_Description>(feature)) path = nurbs->geometry.render_bezier();
    return path.promote3d();
}

template <>
line shape_of(construct_feature const& feature) {
    return geometry_in<Segment_Description>(feature);
}

template <>
plane shape_of(construct_feature const& feature) {
    return geometry_in<Plane_Description>(feature);
}

template <>
sphere shape_of(construct_feature const& feature) {
    return geometry_in<Sphere_Description>(feature);
}

template <>
cylinder shape_of(construct_feature const& feature) {
    return geometry_in<Cylinder_Description>(feature);
}

template <>
cone shape_of(construct_feature const& feature) {
    return geometry_in<Cone_Description>(feature);
}

template <>
rectangle shape_of(construct_feature const& feature) {
    return geometry_in<Rectangle_Description>(feature);
}

}  // namespace tvmath
