#include <concepts>

#include "descriptions/record_kinds.h"
#include "persistence/number_text.h"
#include "persistence/text_items.h"
#include "persistence/token_reader.h"
#include "tvmath/persistence.h"

inline namespace tvmath {
namespace Persistence {
namespace {

using namespace token_reader;

// Sets the placement of a shape, which must be 3D.
bool read_shape(wide_string_view text, transform& shape) {
    transform const placement = read_transform(text, transform());
    if (!placement.is_3d()) return false;
    shape = placement;
    return true;
}

template <shape_record kind>
bool read(wide_string_view text, kind& record) {
    return read_shape(text, record.geometry);
}

void measure(OpenSpline_Description& record) {
    record.length = 0;
    calculate_bezier_length(record.path, record.length);
}

void measure(ClosedSpline_Description& record) {
    record.length = record.area = 0;
    record.centroid = point();
    calculate_bezier_length(record.path, record.length);
    calculate_closed_bezier_moments(record.path, record.area, record.centroid);
}

// The older form of a path. The cost of a path grows with the square of the order, and a text from outside
// must not take minutes: far above what any curve is made with, there is none.
curve path_of(nurb const& n) {
    constexpr unsigned int largest_order = 32;
    return n.order() <= largest_order ? n.render_bezier() : curve();
}

curve read_path(wide_string_view text) {
    constexpr wide_char word[] = {'B', 'e', 'z'};
    if (!text.starts_with(wide_string_view(word, 3))) return path_of(read_nurb(text, nurb()));
    wide_string_view parts[1];
    return split(text.substr(3), parts) ? read_curve(parts[0], curve()) : curve();
}

template <class kind>
requires std::same_as<decltype(kind::path), curve>
bool read(wide_string_view text, kind& record) {
    curve const path = read_path(text);
    if (path.is_trivial()) return false;
    record.path = path;
    measure(record);
    return true;
}

template <class kind>
requires std::same_as<decltype(kind::value), double>
bool read(wide_string_view text, kind& record) {
    record.value = read_real(text, 0.0);
    return true;
}

bool read(wide_string_view text, Point_Description& record) {
    point const p = read_point(true, text, point());
    if (!p.is_3d()) return false;
    record.position = p;
    return true;
}

bool read(wide_string_view text, Arc_Description& record) {
    wide_string_view parts[2];
    if (!split(text, parts) || !read_shape(parts[0], record.circle)) return false;
    record.included_angle = read_real(parts[1], 0.0);
    return true;
}

bool read(wide_string_view text, ORing_Description& record) {
    wide_string_view parts[3];
    if (!split(text, parts) || !read_shape(parts[0], record.placement)) return false;
    record.inner = ring(read_real(parts[1], 0.0));
    record.outer = ring(read_real(parts[2], 0.0));
    return true;
}

bool read(wide_string_view text, Angle_Description& record) {
    wide_string_view parts[8];
    if (!split(text, parts) || !read_shape(parts[0], record.arc)) return false;
    double* const numbers[] = {&record.start_angle,    &record.included_angle, &record.start_line_near,
                               &record.start_line_far, &record.end_line_near,  &record.end_line_far};
    for (int i = 0; i < 6; ++i) *numbers[i] = read_real(parts[i + 1], 0.0);
    record.sign_changed = number_text::read_integer(parts[7]) != 0;
    return true;
}

bool read(wide_string_view text, Nurb_Description& record) {
    wide_string_view parts[2];
    if (!split(text, parts)) return false;
    nurb const geometry = read_nurb(parts[1], nurb());
    if (geometry.is_trivial()) return false;
    record.center = read_point(false, parts[0], point());
    record.geometry = geometry;
    return true;
}

bool read(wide_string_view text, Cone_Description& record) {
    cone const geometry = read_cone(text, cone());
    if (geometry.is_trivial()) return false;
    record.geometry = geometry;
    return true;
}

bool read(wide_string_view text, PointCloud_Description& record) {
    if (text.empty()) return false;
    read_points(text, record.points);
    return true;
}

bool read(wide_string_view, OpenData_Description&) {
    return false;
}
bool read(wide_string_view, ClosedData_Description&) {
    return false;
}
bool read(wide_string_view, Text_Description&) {
    return false;
}

}  // namespace

bool to_description(unsigned short const* text, Geometry_Description& record) {
    bool done = false;
    all_record_kinds::with_class(record.type(), [&]<class kind>(std::type_identity<kind>) {
        if (auto* const known = dynamic_cast<kind*>(&record)) done = read(whole(text), *known);
    });
    return done;
}

}  // namespace Persistence
}  // namespace tvmath
