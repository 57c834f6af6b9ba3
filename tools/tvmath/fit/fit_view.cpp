#include "fit_view.h"

#include <algorithm>
#include <cmath>
#include <map>

#include "plot/drawing.h"
#include "tvmath/geometry_queries.h"
#include "tvmath/scalar.h"

inline namespace tvmath {
namespace {

constexpr int circle_vertices = 720;
constexpr std::size_t most_joined = 12;

spot direction_of(point const& p) {
    double const length = p.length2d();
    return length > 0 ? spot{p.x() / length, p.y() / length} : spot{};
}

void number(fit_view& view) {
    for (std::size_t i = 0; i < view.points.size(); ++i) view.points[i].along = static_cast<double>(i + 1);
    view.along_label = "point";
    view.along_is_angle = false;
}

outline circle_about(spot center, double radius) {
    std::vector<spot> places;
    for (int i = 0; i < circle_vertices; ++i) {
        double const a = 2 * pi * i / circle_vertices;
        places.push_back(center + radius * spot{std::cos(a), std::sin(a)});
    }
    return make_outline(places, true);
}

fit_view point_view(fit_result const& result, point const& origin) {
    point const center = static_cast<Point_Description const&>(*result.feature).position;
    fit_view view;
    view.origin = {origin.x(), origin.y()};
    spot const c = {center.x() - origin.x(), center.y() - origin.y()};
    view.marks.push_back(c);
    for (point const& p : result.points) view.points.push_back({c, direction_of(p - center), 0});
    for (double const r : {result.lowest.residual, result.highest.residual}) {
        if (r > 0) view.guides.push_back(circle_about(c, r));
    }
    number(view);
    view.above = "distance from the centroid";
    view.below.clear();
    return view;
}

fit_view transform_view(fit_result const& result, point const& origin) {
    transform const& t = static_cast<Transform_Description const&>(*result.feature).geometry;
    fit_view view;
    view.origin = {origin.x(), origin.y()};
    view_extent extent;
    for (std::size_t i = 0; i < result.points.size(); ++i) {
        point const &target = result.targets[i], away = result.points[i] * t - target;
        spot const foot = {target.x() - origin.x(), target.y() - origin.y()};
        extent.include(foot);
        view.points.push_back({foot, direction_of(away), 0});
    }
    number(view);
    view.room = 0.1 * std::max(extent.width(), extent.height());
    view.above = "led point, from its target";
    view.below.clear();
    return view;
}

// The parts at their places, each with its own points.
fit_view composite_view(fit_result const& result, point const& origin) {
    fit_view whole;
    whole.origin = {origin.x(), origin.y()};
    std::size_t first = 0;
    double room = infinity;
    view_extent extent;
    for (std::size_t k = 0; k < result.parts.size(); ++k) {
        auto const from = result.points.begin() + static_cast<std::ptrdiff_t>(first);
        std::vector<point> const points(from, from + static_cast<std::ptrdiff_t>(result.part_sizes[k]));
        first += points.size();
        fit_view part;
        if (planar_view_of(*result.parts[k], points, origin, part)) {
            for (outline const& o : part.outlines) whole.outlines.push_back(o);
            for (view_point const& p : part.points) whole.points.push_back(p);
            for (outline const& o : part.outlines) extent.include(o);
            room = std::min(room, part.room);
            continue;
        }
        drawing drawn;
        draw_record(*result.parts[k], {}, drawn);
        for (stroke const& s : drawn.strokes) {
            if (s.role == stroke_role::outline)
                whole.guides.push_back(make_outline(s.path, s.closed, origin));
        }
        std::vector<point> nearest;
        calc_nearest_points(*result.parts[k], points, nearest);
        for (std::size_t i = 0; i < points.size(); ++i) {
            point const foot = i < nearest.size() ? nearest[i] : points[i];
            spot out = direction_of(points[i] - foot);
            if (result.residuals[whole.points.size()] < 0) out = -1.0 * out;
            whole.points.push_back({{foot.x() - origin.x(), foot.y() - origin.y()}, out, 0});
            extent.include(whole.points.back().foot);
        }
    }
    number(whole);
    whole.is_sequence = false;
    whole.along_label = "point, of all files in turn";
    whole.room = std::min(room, 0.06 * std::max(extent.width(), extent.height()));
    return whole;
}

// Joins the contacts of each boundary, in their order about their middle: the polygon that holds the centre,
// or crosses the other one, shows that nothing better is near.
void join_contacts(fit_result const& result, fit_view& view) {
    std::map<std::string, std::vector<spot>> sides;
    for (contact_point const& c : result.contacts) sides[c.side].push_back(view.points[c.at.index].foot);
    bool const is_plane = result.kind->record == Plane_Description::type_value;
    if (view.style == view_style::map ? !is_plane : sides.size() > 1) return;
    for (auto& [side, places] : sides) {
        if (places.size() < 2 || places.size() > most_joined) continue;
        spot middle;
        for (spot const p : places) middle = middle + (1.0 / static_cast<double>(places.size())) * p;
        std::sort(places.begin(), places.end(), [middle](spot a, spot b) {
            return std::atan2(a.y - middle.y, a.x - middle.x) < std::atan2(b.y - middle.y, b.x - middle.x);
        });
        view.guides.push_back(make_outline(places, places.size() > 2));
    }
}

fit_view plain_view_of(fit_result const& result) {
    if (result.kind->in_space) return solid_view_of(result);
    point const origin = result.targets.empty() ? result.points.front() : result.targets.front();
    switch (result.kind->record) {
        case Point_Description::type_value:
            return point_view(result, origin);
        case Transform_Description::type_value:
            return transform_view(result, origin);
        case Composite_Description::type_value:
            return composite_view(result, origin);
        default: {
            fit_view view;
            planar_view_of(*result.feature, result.points, origin, view);
            return view;
        }
    }
}

}  // namespace

void view_extent::include(spot p) {
    if (is_empty()) {
        low = high = p;
        return;
    }
    low = {std::min(low.x, p.x), std::min(low.y, p.y)};
    high = {std::max(high.x, p.x), std::max(high.y, p.y)};
}

fit_view view_of(fit_result const& result) {
    fit_view view = plain_view_of(result);
    join_contacts(result, view);
    return view;
}

}  // namespace tvmath
