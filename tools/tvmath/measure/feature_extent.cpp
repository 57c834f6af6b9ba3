#include "measure/feature_extent.h"

#include <cmath>

#include "tvmath/scalar.h"

inline namespace tvmath {
namespace {

point on_circle(circle const& c, double angle) {
    return c.basis(0) + point(false, std::cos(angle), std::sin(angle)) * c.radius();
}

// Where a line or an arc begins, has its middle and ends.
struct span {
    point start, middle, end;
};

span span_of(Segment_Description const& r) {
    line const& l = r.geometry;
    return {l.basis(0) - l.basis(1), l.basis(0), l.basis(0) + l.basis(1)};
}

span span_of(Arc_Description const& r) {
    double const middle = r.circle.basis(1).angle2d(), half = r.included_angle / 2;
    return {on_circle(r.circle, middle - half), on_circle(r.circle, middle),
            on_circle(r.circle, middle + half)};
}

// In the frame of the results.
template <class kind>
span span_of_tool(measure_frame const& frame, measure_tool const& tool) {
    if (tool.nominal) return span_of(static_cast<kind const&>(*tool.nominal));
    span const seen = span_of(static_cast<kind const&>(*tool.place));
    return {frame.to_result(seen.start), frame.to_result(seen.middle), frame.to_result(seen.end)};
}

std::shared_ptr<Geometry_Description> between(Segment_Description const& fitted, span const& s) {
    line const& l = fitted.geometry;
    point const direction = l.direction();
    auto const foot = [&](point const& p) {
        return l.basis(0) + direction * dot2d(p - l.basis(0), direction);
    };
    auto record = std::make_shared<Segment_Description>();
    record->geometry = line(foot(s.start), foot(s.end));
    return record;
}

std::shared_ptr<Geometry_Description> between(Arc_Description const& fitted, span const& s) {
    point const center = fitted.circle.basis(0);
    double const start = (s.start - center).angle2d(), middle = (s.middle - center).angle2d(),
                 end = (s.end - center).angle2d();
    double const first = std::remainder(middle - start, 2 * pi),
                 second = std::remainder(end - middle, 2 * pi);
    double const radius = fitted.circle.radius();
    auto record = std::make_shared<Arc_Description>();
    record->included_angle = first + second;
    record->circle = circle(ellipse(radius, radius, start + record->included_angle / 2, center));
    return record;
}

}  // namespace

void set_extent(measure_frame const& frame, measure_tool const& tool, fit_result& fit) {
    std::shared_ptr<Geometry_Description> whole;
    if (auto const* l = dynamic_cast<Segment_Description const*>(fit.feature.get())) {
        whole = between(*l, span_of_tool<Segment_Description>(frame, tool));
    } else if (auto const* a = dynamic_cast<Arc_Description const*>(fit.feature.get())) {
        whole = between(*a, span_of_tool<Arc_Description>(frame, tool));
    }
    if (!whole) return;
    fit.feature = whole;
    fit.figures = figures_of(*whole);
    if (fit.nominal) fit.nominal->deviations = deviations(fit.figures, figures_of(*tool.nominal));
}

}  // namespace tvmath
