#include "record_parameters.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <iterator>
#include <sstream>

#include "files/point_file.h"
#include "tvmath/distance.h"

inline namespace tvmath {
namespace {

using numbers = std::vector<double>;
using made_record = std::unique_ptr<Geometry_Description>;

// Numbers that are left out count as 0.
double at(numbers const& v, std::size_t i) {
    return i < v.size() ? v[i] : 0.0;
}

point location2d(numbers const& v, std::size_t i) {
    return point(true, at(v, i), at(v, i + 1));
}

point location3d(numbers const& v, std::size_t i) {
    return point(true, at(v, i), at(v, i + 1), at(v, i + 2));
}

std::vector<point> point_list(numbers const& v) {
    std::vector<point> points;
    for (std::size_t i = 0; i + 1 < v.size(); i += 2) points.push_back(location2d(v, i));
    return points;
}

curve path_of(numbers const& v) {
    std::vector<point> const points = point_list(v);
    return curve(idioms::array<point>(static_cast<unsigned int>(points.size()), points.data()));
}

template <class kind, class shape>
made_record with_geometry(shape const& geometry) {
    auto record = std::make_unique<kind>();
    record->geometry = geometry;
    return record;
}

transform placement(numbers const& v) {
    double const sx = v.size() > 3 ? v[3] : 1, sy = v.size() > 4 ? v[4] : sx;
    return transform::dilation(sx, sy).rotate(at(v, 2)).translate(at(v, 0), at(v, 1));
}

template <class kind>
made_record with_placement(numbers const& v) {
    auto record = std::make_unique<kind>();
    record->placement = placement(v);
    return record;
}

template <class kind>
made_record with_points(numbers const& v) {
    auto record = std::make_unique<kind>();
    record->points = point_list(v);
    return record;
}

made_record make_point(numbers const& v) {
    auto record = std::make_unique<Point_Description>();
    record->position = v.size() == 3 ? location3d(v, 0) : location2d(v, 0);
    return record;
}

made_record make_segment(numbers const& v) {
    // The constructor would flatten the direction of a line in space.
    return with_geometry<Segment_Description>(v.size() == 6 ? distance_fit(location3d(v, 0), location3d(v, 3))
                                                            : line(location2d(v, 0), location2d(v, 2)));
}

made_record make_arc(numbers const& v) {
    auto record = std::make_unique<Arc_Description>();
    ellipse const e(v[0], v[0], v[1] + v[2] / 2, location2d(v, 3));
    record->circle = circle(e);
    record->included_angle = v[2];
    return record;
}

made_record make_angle(numbers const& v) {
    auto record = std::make_unique<Angle_Description>();
    record->arc = circle(v[0], location2d(v, 3));
    record->start_angle = v[1];
    record->included_angle = v[2];
    record->start_line_near = at(v, 5);
    record->start_line_far = at(v, 6);
    record->end_line_near = at(v, 7);
    record->end_line_far = at(v, 8);
    return record;
}

made_record make_oring(numbers const& v) {
    auto record = std::make_unique<ORing_Description>();
    record->placement = transform(at(v, 2), at(v, 3));
    record->inner = ring(v[0]);
    record->outer = ring(v[1]);
    return record;
}

made_record make_ring(numbers const& v) {
    auto record = std::make_unique<ORing_Description>();
    record->outer = ring(idioms::array<double>(static_cast<unsigned int>(v.size()), v.data()));
    return record;
}

made_record make_open_spline(numbers const& v) {
    auto record = std::make_unique<OpenSpline_Description>();
    record->path = path_of(v);
    calculate_bezier_length(record->path, record->length);
    return record;
}

made_record make_closed_spline(numbers const& v) {
    auto record = std::make_unique<ClosedSpline_Description>();
    record->path = path_of(v);
    calculate_bezier_length(record->path, record->length);
    calculate_closed_bezier_moments(record->path, record->area, record->centroid);
    return record;
}

bool is_count(double x) {
    return x >= 1 && x <= 1000 && x == std::floor(x);
}

made_record make_nurb(numbers const& v) {
    if (!is_count(v[0]) || !is_count(v[1])) return nullptr;
    auto const order = static_cast<std::uint32_t>(v[0]), count = static_cast<std::uint32_t>(v[1]);
    if (count < order || v.size() != 2 + order + std::size_t{4} * count) return nullptr;
    nurb n(order, count);
    for (std::uint32_t i = 0; i < n.knots(); ++i) n.set_knot(i, v[2 + i]);
    if (!std::is_sorted(v.begin() + 2, v.begin() + 2 + n.knots())) return nullptr;
    for (std::uint32_t i = 0; i < count; ++i) {
        double const* const p = v.data() + 2 + n.knots() + 3 * i;
        n.set_control_point(i, {p[0] * p[2], p[1] * p[2], 0, p[2]});
    }
    return with_geometry<Nurb_Description>(n);
}

// How many numbers a kind takes.
template <std::size_t... counts>
bool one_of(std::size_t n) {
    return ((n == counts) || ...);
}
template <std::size_t least, std::size_t step>
bool list_of(std::size_t n) {
    return n >= least && (n - least) % step == 0;
}

struct record_rule {
    record_form form;
    bool (*takes)(std::size_t count);
    made_record (*make)(numbers const&);
};

record_rule const rules[] = {
    {{"point", "X Y [Z]"}, one_of<2, 3>, make_point},
    {{"segment", "X1 Y1 X2 Y2, or X1 Y1 Z1 X2 Y2 Z2"}, one_of<4, 6>, make_segment},
    {{"circle", "RADIUS [X Y]"},
     one_of<1, 3>,
     [](numbers const& v) { return with_geometry<Circle_Description>(circle(v[0], location2d(v, 1))); }},
    {{"arc", "RADIUS START INCLUDED [X Y]"}, one_of<3, 5>, make_arc},
    {{"ellipse", "A B [ANGLE X Y]"},
     one_of<2, 5>,
     [](numbers const& v) {
         return with_geometry<Ellipse_Description>(ellipse(v[0], v[1], at(v, 2), location2d(v, 3)));
     }},
    {{"rectangle", "WIDTH HEIGHT [ANGLE X Y]"},
     one_of<2, 5>,
     [](numbers const& v) {
         return with_geometry<Rectangle_Description>(rectangle(v[0], v[1], at(v, 2), location2d(v, 3)));
     }},
    {{"slot", "HALF-LENGTH HALF-WIDTH [ANGLE X Y]"},
     one_of<2, 5>,
     [](numbers const& v) {
         return with_geometry<Slot_Description>(slot(v[0], v[1], at(v, 2), location2d(v, 3)));
     }},
    {{"gap", "LENGTH DISTANCE [ANGLE X Y]"},
     one_of<2, 5>,
     [](numbers const& v) {
         return with_geometry<Gap_Description>(gap(v[0], v[1], at(v, 2), location2d(v, 3)));
     }},
    {{"oring", "INNER-RADIUS OUTER-RADIUS [X Y]"}, one_of<2, 4>, make_oring},
    {{"ring", "R C1 S1 [C2 S2 ...], the series r + c1 cos a + s1 sin a + ..."}, list_of<3, 2>, make_ring},
    {{"angle", "RADIUS START INCLUDED [X Y [NEAR1 FAR1 NEAR2 FAR2]]"}, one_of<3, 5, 9>, make_angle},
    {{"open-spline", "X Y ..., 3n + 1 control points"}, list_of<8, 6>, make_open_spline},
    {{"closed-spline", "X Y ..., 3n + 1 control points"}, list_of<8, 6>, make_closed_spline},
    {{"nurb", "ORDER COUNT, then ORDER + COUNT ascending knots, then COUNT times X Y WEIGHT"},
     list_of<7, 1>,
     make_nurb},
    {{"open-data", "X Y ..."}, list_of<2, 2>, with_points<OpenData_Description>},
    {{"closed-data", "X Y ..."}, list_of<2, 2>, with_points<ClosedData_Description>},
    {{"point-cloud", "X Y ..."}, list_of<2, 2>, with_points<PointCloud_Description>},
    {{"plane", "X Y Z NX NY NZ"},
     one_of<6>,
     [](numbers const& v) {
         return with_geometry<Plane_Description>(plane(location3d(v, 0), location3d(v, 3)));
     }},
    {{"sphere", "RADIUS [X Y Z]"},
     one_of<1, 4>,
     [](numbers const& v) { return with_geometry<Sphere_Description>(sphere(v[0], location3d(v, 1))); }},
    {{"cylinder", "RADIUS HEIGHT X Y Z AX AY AZ"},
     one_of<8>,
     [](numbers const& v) {
         return with_geometry<Cylinder_Description>(cylinder(v[0], v[1], location3d(v, 2), location3d(v, 5)));
     }},
    {{"cone", "X1 Y1 Z1 X2 Y2 Z2 RADIUS1 RADIUS2"},
     one_of<8>,
     [](numbers const& v) {
         return with_geometry<Cone_Description>(cone(location3d(v, 0), location3d(v, 3), v[6], v[7]));
     }},
    {{"transform", "X Y [ANGLE [SX [SY]]]"},
     one_of<2, 3, 4, 5>,
     [](numbers const& v) { return with_geometry<Transform_Description>(placement(v)); }},
    {{"composite", "X Y [ANGLE [SX [SY]]]"},
     one_of<2, 3, 4, 5>,
     [](numbers const& v) { return with_geometry<Composite_Description>(placement(v)); }},
    {{"text", "X Y [ANGLE [SX [SY]]]"}, one_of<2, 3, 4, 5>, with_placement<Text_Description>},
};

bool parse_words(std::vector<std::string> const& words, numbers& values, std::string& reason) {
    values.assign(words.size(), 0);
    for (std::size_t i = 0; i < values.size(); ++i) {
        if (!parse_parameter(words[i], values[i], reason)) return false;
    }
    return true;
}

}  // namespace

std::vector<record_form> record_forms() {
    std::vector<record_form> forms;
    for (record_rule const& rule : rules) forms.push_back(rule.form);
    return forms;
}

std::vector<std::string> split_words(std::string text) {
    std::replace(text.begin(), text.end(), ',', ' ');
    std::istringstream in(text);
    return {std::istream_iterator<std::string>(in), {}};
}

bool parse_parameter(std::string const& text, double& value, std::string& reason) {
    char const* first = text.data();
    char const* const last = first + text.size();
    if (first != last && *first == '+') ++first;
    double x = 0;
    auto const [end, error] = std::from_chars(first, last, x);
    std::string const unit(end, last);
    if (end == first || error != std::errc() || !std::isfinite(x) || (!unit.empty() && unit != "deg")) {
        reason = "'" + shown_name(text) + "' is not a number";
        return false;
    }
    value = unit.empty() ? x : x * (pi / 180);
    return true;
}

bool parse_parameters(std::string const& text, std::vector<double>& values, std::string& reason) {
    return parse_words(split_words(text), values, reason);
}

bool make_record(std::string const& kind, std::vector<std::string> const& parameters,
                 std::unique_ptr<Geometry_Description>& record, std::string& reason) {
    auto const rule = std::find_if(std::begin(rules), std::end(rules), [&kind](record_rule const& r) {
        return (kind == "line" ? "segment" : kind) == r.form.kind;
    });
    if (rule == std::end(rules)) {
        reason = "there is no kind '" + shown_name(kind) + "'";
        return false;
    }
    numbers values;
    if (!parse_words(parameters, values, reason)) return false;
    made_record made = rule->takes(values.size()) ? rule->make(values) : nullptr;
    if (!made) {
        reason = kind + " takes " + rule->form.parameters + "; these are " + std::to_string(values.size()) +
                 " numbers";
        return false;
    }
    record = std::move(made);
    return true;
}

}  // namespace tvmath
