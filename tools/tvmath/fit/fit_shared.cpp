#include "fit_shared.h"

inline namespace tvmath {
namespace {

point in_space(point p) {
    p.promote3d();
    return p;
}

// A direction of 2 or 3 numbers or the ends of a line, as a line.
line line_of(std::vector<double> const& v) {
    if (v.size() == 4) return line(point(true, v[0], v[1], 0), point(true, v[2], v[3], 0));
    return line(point(true, 0, 0, 0), point(false, v[0], v[1], 0));
}

}  // namespace

point in_dimension(point p, std::vector<point> const& points) {
    if (points.front().is_2d()) {
        p.project2d();
    } else if (p.is_2d()) {
        double sum = 0;
        for (point const& q : points) sum += q.z() - points.front().z();
        p.promote3d();
        p.z() = points.front().z() + sum / static_cast<double>(points.size());
    }
    return p;
}

void measure_ring(ORing_Description const& ring, std::vector<point> const& points,
                  std::vector<double>& residuals) {
    residuals.clear();
    residuals.reserve(points.size());
    for (point const& p : points) residuals.push_back(ring.outer.distance(p / ring.placement));
}

bool fill_fitter(geometry_fitter::fitter& fitter, fit_input const& in, fitted_feature& fitted) {
    fit_conditions const& known = in.known;
    bool has_room = true;
    auto const give = [&](std::type_info const& key, auto make) {
        has_room = has_room && fitter.can_add(key);
        if (has_room) fitter.add(make());
    };
    using namespace geometry_fitter;
    if (known.center) give(centered(), [&] { return centered(in_space(*known.center)); });
    for (point const& p : known.through) give(through(), [&] { return through(in_space(p)); });
    for (std::vector<double> const& v : known.tangent) {
        give(tangent(), [&] {
            return v.size() == 4
                       ? tangent(line_of(v))
                       : tangent(plane(point(true, v[0], v[1], v[2]), point(false, v[3], v[4], v[5])));
        });
    }
    if (!known.parallel.empty()) give(parallel(), [&] { return parallel(line_of(known.parallel)); });
    if (!known.perpendicular.empty())
        give(perpendicular(), [&] { return perpendicular(line_of(known.perpendicular)); });
    if (!has_room) {
        fitted.reason = "these conditions are more than the feature can meet";
        fitted.is_usage = true;
        return false;
    }
    // Conditions that settle the feature by themselves leave the points to be measured against it.
    if (!fitter.can_add(fit())) {
        fitted.unknowns = 0;
        fitted.method = "settled by the conditions, the points are measured only";
        return true;
    }
    std::vector<point> points = in.points;
    for (point& p : points) p.promote3d();
    fitter.add(fit(points));
    fitted.unknowns = static_cast<long>(points.size()) - fitter.degrees_of_freedom();
    fitted.method = "least squares under conditions";
    return true;
}

void project(Geometry_Description& record) {
    if (auto* const segment = dynamic_cast<Segment_Description*>(&record)) segment->geometry.project2d();
    if (auto* const round = dynamic_cast<Circle_Description*>(&record)) round->geometry.project2d();
    if (auto* const arc = dynamic_cast<Arc_Description*>(&record)) arc->circle.project2d();
}

}  // namespace tvmath
