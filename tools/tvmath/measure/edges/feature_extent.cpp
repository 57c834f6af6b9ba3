#include "measure/edges/feature_extent.h"

#include <array>
#include <cmath>

#include "tvmath/scalar.h"

inline namespace tvmath {
namespace {

point on_circle(circle const& c, double angle) {
    return c.basis(0) + point(false, std::cos(angle), std::sin(angle)) * c.radius();
}

// Places along a line or an arc, from its start to its end. Two that follow each other are less than half a
// turn apart, which tells the sense of an arc and a whole turn from none.
constexpr int steps = 4;
using places = std::array<point, steps + 1>;

places places_on(Segment_Description const& r) {
    places list;
    for (int i = 0; i <= steps; ++i)
        list[static_cast<std::size_t>(i)] = r.geometry.basis(0) + r.geometry.basis(1) * (2.0 * i / steps - 1);
    return list;
}

places places_on(Arc_Description const& r) {
    places list;
    double const middle = r.circle.basis(1).angle2d();
    for (int i = 0; i <= steps; ++i)
        list[static_cast<std::size_t>(i)] =
            on_circle(r.circle, middle + r.included_angle * (static_cast<double>(i) / steps - 0.5));
    return list;
}

// In the frame of the results.
template <class kind>
places places_of_tool(measure_frame const& frame, measure_tool const& tool) {
    if (tool.nominal) return places_on(static_cast<kind const&>(*tool.nominal));
    places list = places_on(static_cast<kind const&>(*tool.place));
    for (point& p : list) p = frame.to_result(p);
    return list;
}

std::shared_ptr<Geometry_Description> between(Segment_Description const& fitted, places const& list) {
    line const& l = fitted.geometry;
    point const direction = l.direction();
    auto const foot = [&](point const& p) {
        return l.basis(0) + direction * dot2d(p - l.basis(0), direction);
    };
    auto record = std::make_shared<Segment_Description>();
    record->geometry = line(foot(list.front()), foot(list.back()));
    return record;
}

std::shared_ptr<Geometry_Description> between(Arc_Description const& fitted, places const& list) {
    point const center = fitted.circle.basis(0);
    auto const angle_of = [&center](point const& p) { return (p - center).angle2d(); };
    double const start = angle_of(list.front());
    double included = 0;
    for (std::size_t i = 1; i < list.size(); ++i)
        included += std::remainder(angle_of(list[i]) - angle_of(list[i - 1]), 2 * pi);
    double const radius = fitted.circle.radius();
    auto record = std::make_shared<Arc_Description>();
    record->included_angle = included;
    record->circle = circle(ellipse(radius, radius, start + included / 2, center));
    return record;
}

// With its width along the side that the tool calls so; null where that is as it should be.
std::shared_ptr<Geometry_Description> turned(Rectangle_Description const& fitted, measure_frame const& frame,
                                             measure_tool const& tool) {
    auto const& seen = static_cast<Rectangle_Description const&>(*tool.place).geometry;
    rectangle const& r = fitted.geometry;
    point const width = frame.to_result(seen.basis(0) + seen.basis(1)) - frame.to_result(seen.basis(0));
    auto const share = [&width](point const& axis) {
        return std::fabs(dot2d(width, axis)) / axis.length2d();
    };
    if (tool.nominal || share(r.basis(1)) >= share(r.basis(2))) return nullptr;
    auto record = std::make_shared<Rectangle_Description>();
    record->geometry = rotate_rectangle(r, 1);
    return record;
}

}  // namespace

void set_extent(measure_frame const& frame, measure_tool const& tool, fit_result& fit) {
    std::shared_ptr<Geometry_Description> whole;
    if (auto const* l = dynamic_cast<Segment_Description const*>(fit.feature.get())) {
        whole = between(*l, places_of_tool<Segment_Description>(frame, tool));
    } else if (auto const* a = dynamic_cast<Arc_Description const*>(fit.feature.get())) {
        whole = between(*a, places_of_tool<Arc_Description>(frame, tool));
    } else if (auto const* r = dynamic_cast<Rectangle_Description const*>(fit.feature.get())) {
        whole = turned(*r, frame, tool);
    }
    if (!whole) return;
    fit.feature = whole;
    fit.figures = figures_of(*whole);
    if (fit.nominal) fit.nominal->deviations = deviations(fit.figures, figures_of(*tool.nominal));
}

}  // namespace tvmath
