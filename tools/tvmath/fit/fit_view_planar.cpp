#include <algorithm>
#include <cmath>

#include "fit_view.h"
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

}  // namespace

bool planar_view_of(Geometry_Description const& record, std::vector<point> const& points, point const& origin,
                    fit_view& view) {
    planar_view builder(points, origin);
    if (!add_planar(record, builder)) return false;
    view = builder.view;
    return true;
}

}  // namespace tvmath
