#include "fit_view.h"

#include <algorithm>
#include <cmath>

#include "drawing.h"
#include "tvmath/geometry_queries.h"
#include "tvmath/scalar.h"

inline namespace tvmath {
namespace {

constexpr int circle_vertices = 720;

double degrees(double radians) {
    return radians * (180 / pi);
}

spot direction_of(point const& p) {
    double const length = p.length2d();
    return length > 0 ? spot{p.x() / length, p.y() / length} : spot{};
}

// Builds the view of a feature in the plane.
class planar_view {
public:
    planar_view(std::vector<point> const& points, point const& origin) : points_(points), origin_(origin) {
        view.origin = {origin.x(), origin.y()};
    }

    fit_view view;

    void add(Segment_Description const& r) {
        add_outline(r.geometry.render_line(1), false);
        place(r.geometry.basis(0), r.geometry.direction());
        view.along_label = "length along the line";
        view.above = "left of the direction";
        view.below = "right of the direction";
        view.room = 0.1 * r.geometry.length();
    }
    void add(Circle_Description const& r) { round(r.geometry, -pi, pi, true); }
    void add(Arc_Description const& r) {
        double const half = std::fabs(r.included_angle) / 2;
        round(r.circle, -half, half, false);
        mark(r.circle.basis(0));
    }
    void add(Ellipse_Description const& r) {
        add_outline(r.geometry.render_ellipse(circle_vertices), true);
        angles(r.geometry.basis(0));
        view.room = std::min(0.13 * std::max(r.geometry.size(1), r.geometry.size(2)),
                             0.4 * std::min(r.geometry.size(1), r.geometry.size(2)));
    }
    void add(Rectangle_Description const& r) {
        add_outline(r.geometry.render_rectangle(), true);
        lengths(std::min(r.geometry.width(), r.geometry.height()));
    }
    void add(Slot_Description const& r) {
        add_outline(render(r.geometry.render_bezier(), true, 60), true);
        lengths(2 * r.geometry.semiminor());
    }
    void add(Gap_Description const& r) {
        idioms::array<point> lower, upper;
        r.geometry.render_gap(lower, upper);
        // Each runs with the inside on its right: positive is beyond it.
        add_outline(curve(lower).reverse_copy(), false);
        add_outline(curve(upper), false);
        lengths(r.geometry.distance());
        view.above = "beyond the sides";
        view.below = "between the sides";
        view.along_label = "length along one side, then the other";
        view.is_sequence = false;
    }
    void add(ORing_Description const& r) {
        for (ring const& outline : {r.inner, r.outer}) {
            if (!outline.is_trivial()) add_outline(outline.render_ring(circle_vertices) * r.placement, true);
        }
        point center = r.placement.basis(0);
        center.promote2d();
        angles(center);
        view.is_sequence = r.inner.is_trivial();
        view.room = 0.13 * r.outer[0];
        if (!r.inner.is_trivial()) view.room = std::min(view.room, 0.4 * (r.outer[0] - r.inner[0]));
    }
    void add(OpenSpline_Description const& r) { path(render(r.path, false, 16), false); }
    void add(ClosedSpline_Description const& r) { path(render(r.path, true, 16), true); }
    void add(Nurb_Description const& r) {
        curve const line = r.geometry.render(16, false);
        bool const closed =
            line.capacity() > 2 && distance2d(line[0], line[line.capacity() - 1]) <= 1e-9 * size_of(line);
        path(line, closed);
    }

private:
    static double size_of(curve const& c) {
        CRealRect const r = c.get_bounding_rect();
        return std::max(r.Width(), r.Height());
    }

    spot local(point const& p) const { return {p.x() - origin_.x(), p.y() - origin_.y()}; }
    void mark(point const& p) { view.marks.push_back(local(p)); }
    void add_outline(curve const& path, bool closed) {
        view.outlines.push_back(make_outline(path, closed, origin_));
    }

    // The feet of all points, on the outlines that there are.
    std::vector<outline_foot> feet() const {
        outline_finder const finder(view.outlines);
        std::vector<double> before = {0};
        std::vector<outline_foot> all;
        for (point const& p : points_) all.push_back(finder.nearest(local(p)));
        return all;
    }

    void place(point const& middle, point const& direction) {
        spot const u = direction_of(direction), m = local(middle);
        for (point const& p : points_) {
            spot const d = local(p) - m;
            double const t = d.x * u.x + d.y * u.y;
            view.points.push_back({m + t * u, {-u.y, u.x}, t});
        }
    }

    void round(circle const& c, double low, double high, bool closed) {
        double const middle = closed ? 0 : c.basis(1).angle2d(), radius = c.radius();
        curve const outline = closed ? c.render_ellipse(circle_vertices)
                                     : c.render_ellipse(circle_vertices, low, high).reverse_copy();
        add_outline(outline, closed);
        if (closed) mark(c.basis(0));
        spot const center = local(c.basis(0));
        for (point const& p : points_) {
            spot const d = local(p) - center;
            double angle = std::atan2(d.y, d.x);
            spot const out = {std::cos(angle), std::sin(angle)};
            angle = middle + std::remainder(angle - middle, 2 * pi);
            if (closed && angle < 0) angle += 2 * pi;
            view.points.push_back({center + radius * out, out, degrees(angle)});
        }
        view.along_label = "angle about the center, degrees";
        view.along_is_angle = true;
        view.room = closed ? 0.25 * radius : 0.13 * std::min(2 * radius, radius * (high - low));
    }

    // Feet on the outline, over the angle about the centre.
    void angles(point const& center) {
        mark(center);
        spot const c = local(center);
        std::size_t i = 0;
        for (outline_foot const& foot : feet()) {
            spot const d = local(points_[i++]) - c;
            double const angle = degrees(std::atan2(d.y, d.x));
            view.points.push_back({foot.at, foot.out, angle < 0 ? angle + 360 : angle});
        }
        view.along_label = "angle about the center, degrees";
        view.along_is_angle = true;
    }

    void lengths(double narrowest) {
        double largest = 0;
        view_extent extent;
        for (outline const& o : view.outlines) extent.include(o);
        largest = std::max(extent.width(), extent.height());
        for (outline_foot const& foot : feet()) view.points.push_back({foot.at, foot.out, foot.along});
        view.along_label = "length along the outline";
        view.room = std::min(0.12 * largest, 0.3 * narrowest);
    }

    void path(curve const& line, bool closed) {
        add_outline(line, closed);
        lengths(size_of(line));
        view.along_label = "length along the path";
        if (!closed) {
            view.above = "left of the path";
            view.below = "right of the path";
        }
        if (!points_.empty() && points_[0].is_3d()) {
            view.above = "distance in space";
            view.below.clear();
        }
    }

    std::vector<point> const& points_;
    point origin_;
};

// Whether the kind is one of those that have an outline in the plane; then its view is added.
template <class... kinds>
bool add_one_of(Geometry_Description const& record, planar_view& builder) {
    return ((record.type() == kinds::type_value && (builder.add(static_cast<kinds const&>(record)), true)) ||
            ...);
}

bool add_planar(Geometry_Description const& record, planar_view& builder) {
    return add_one_of<Segment_Description, Circle_Description, Arc_Description, Ellipse_Description,
                      Rectangle_Description, Slot_Description, Gap_Description, ORing_Description,
                      OpenSpline_Description, ClosedSpline_Description, Nurb_Description>(record, builder);
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
        planar_view part(points, origin);
        if (add_planar(*result.parts[k], part)) {
            for (outline const& o : part.view.outlines) whole.outlines.push_back(o);
            for (view_point const& p : part.view.points) whole.points.push_back(p);
            for (outline const& o : part.view.outlines) extent.include(o);
            room = std::min(room, part.view.room);
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
            planar_view builder(result.points, origin);
            add_planar(*result.feature, builder);
            return builder.view;
        }
    }
}

}  // namespace tvmath
