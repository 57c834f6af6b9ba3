#include <algorithm>
#include <cmath>
#include <memory>

#include "plot/drawing.h"

inline namespace tvmath {
namespace {

// Polygons stay this close to the curve, as a part of its size; on paper it is less than a hair.
constexpr double polygon_tolerance = 1e-4;

curve two_points(point const& a, point const& b) {
    return curve(a, b);
}

curve corners(CRealRect const& r) {
    curve c(4);
    point* const p = c.lazycopy_begin();
    p[0] = r.BottomLeft();
    p[1] = r.BottomRight();
    p[2] = r.TopRight();
    p[3] = r.TopLeft();
    return c;
}

// Collects the strokes of one record. An overload of `draw` for each kind.
class record_drawer {
public:
    record_drawer(std::vector<double> const& offsets, std::vector<stroke>& strokes)
        : offsets_(offsets), strokes_(strokes) {
        for (double d : offsets) widest_ = std::max(widest_, std::fabs(d));
    }

    void draw(Point_Description const& r) { mark(r.position); }
    void draw(Transform_Description const& r) { axes(r.geometry); }
    void draw(Composite_Description const& r) { axes(r.geometry); }
    void draw(Text_Description const& r) { axes(r.placement); }

    void draw(Segment_Description const& r) {
        line const& l = r.geometry;
        add(stroke_role::outline, l.render_line(1));
        for (curve const& c : l.render_line(2, offset_vector())) add(stroke_role::parallel, c);
        bounds(l.get_bounding_rect());
        if (!offsets_.empty()) wide_bounds(l.get_bounding_rect(transform(), widest_));
        mark(l.basis(0));
    }

    void draw(Circle_Description const& r) { full_ellipse(r.geometry); }
    void draw(Ellipse_Description const& r) {
        full_ellipse(r.geometry);
        point f1, f2;
        double a = 0, b = 0;
        r.geometry.calc_ellipse_foci(f1, f2, a, b);
        mark(f1);
        mark(f2);
    }
    void draw(Arc_Description const& r) {
        ellipse const& e = r.circle;
        // Turns on top of each other take time and show nothing.
        double const a2 = std::clamp(r.included_angle / 2, -pi, pi), a1 = -a2;
        int const n = e.rendering_density(polygon_tolerance * size_of(e), a1, a2);
        add(stroke_role::outline, e.render_ellipse(n, a1, a2));
        add(stroke_role::bezier, e.render_bezier(a1, a2));
        for (curve const& c : e.render_ellipse(n, offset_vector(), a1, a2)) add(stroke_role::parallel, c);
        bounds(e.get_bounding_rect(a1, a2));
        if (!offsets_.empty()) wide_bounds(e.get_bounding_rect(a1, a2, transform(), widest_));
        axes(e);
    }

    void draw(Rectangle_Description const& r) {
        rectangle const& q = r.geometry;
        add(stroke_role::outline, q.render_rectangle(), true);
        for (curve const& c : q.render_rectangle(1, offset_vector(), 1)) add(stroke_role::parallel, c, true);
        bounds(q.get_bounding_rect());
        if (!offsets_.empty()) wide_bounds(q.get_bounding_rect(transform(), widest_));
        axes(q);
    }
    void draw(Gap_Description const& r) {
        idioms::array<point> lower, upper;
        r.geometry.render_gap(lower, upper);
        add(stroke_role::outline, lower);
        add(stroke_role::outline, upper);
        bounds(r.geometry.get_bounding_rect());
        axes(r.geometry);
    }
    void draw(Slot_Description const& r) {
        add_bezier(r.geometry.render_bezier(), true);
        for (circle const& end : {r.geometry.get_left_end(), r.geometry.get_right_end()}) {
            add(stroke_role::axis, end.render_ellipse(polygon_size(end)), true);
        }
        bounds(r.geometry.get_bounding_rect());
        axes(r.geometry);
    }
    void draw(ORing_Description const& r) {
        for (ring const& outline : {r.inner, r.outer}) {
            if (outline.is_trivial()) continue;
            double const tolerance = polygon_tolerance * std::fabs(outline[0]);
            add(stroke_role::outline, outline.render_ring(outline.rendering_density(tolerance)) * r.placement,
                true);
        }
        axes(r.placement);
    }

    void draw(Plane_Description const& r) {
        // A plane has no border: the patch of its unit axes stands for it.
        add(stroke_role::outline, rectangle(r.geometry).render_rectangle(), true);
        axes(r.geometry);
    }
    void draw(Sphere_Description const& r) {
        std::vector<curve> paths;
        r.geometry.render_bezier_equators(paths);
        for (curve const& path : paths) add_bezier(path, false);
        bounds(r.geometry.get_bounding_rect());
        mark(r.geometry.basis(0));
    }
    void draw(Cylinder_Description const& r) {
        idioms::array<point> top, bottom, left, right;
        r.geometry.render_cylinder(top, bottom, left, right, true);
        for (curve const& c : {curve(top), curve(bottom), curve(left), curve(right)})
            add(stroke_role::outline, c);
        bounds(r.geometry.get_bounding_rect());
        axes(r.geometry);
    }
    void draw(Cone_Description const& r) {
        std::vector<curve> paths;
        r.geometry.render_cone(paths);
        for (curve const& path : paths) add_bezier(path, false);
        bounds(r.geometry.get_bounding_rect());
        add(stroke_role::axis, two_points(r.geometry.base, r.geometry.top));
        mark(r.geometry.vertex());
    }

    void draw(Angle_Description const& r) {
        add_bezier(r.render_bezier(), false);
        point p, q, left;
        r.render_start_line(p, q);
        add(stroke_role::axis, two_points(p, q));
        r.render_end_line(p, q);
        add(stroke_role::axis, two_points(p, q));
        r.render_arrow_head(p, left, q);
        add(stroke_role::outline, curve(left, p, q));
        bounds(r.get_bounding_rect());
        mark(r.arc.basis(0));
    }

    void draw(OpenSpline_Description const& r) { spline(r.path, false); }
    void draw(ClosedSpline_Description const& r) {
        spline(r.path, true);
        mark(r.centroid);
    }
    void draw(Nurb_Description const& r) {
        nurb const& n = r.geometry;
        curve polygon(n.control_points());
        point* const p = polygon.lazycopy_begin();
        for (unsigned int i = 0; i < n.control_points(); ++i) p[i] = n.get_control_point(i);
        curve const path = n.render(32, false);
        add(stroke_role::outline, path);
        add(stroke_role::bezier, n.render_bezier());
        add(stroke_role::control, polygon);
        bounds(path.get_bounding_rect());
        mark(r.center);
    }

    void draw(OpenData_Description const& r) { data(r.points, false); }
    void draw(ClosedData_Description const& r) { data(r.points, true); }
    void draw(PointCloud_Description const& r) {
        for (point const& p : r.points) mark(p);
    }
    // A number has no place.
    void draw(Number_Description const&) {}
    void draw(Rotation_Description const&) {}

private:
    void add(stroke_role role, curve const& path, bool closed = false) {
        if (!path.is_trivial()) strokes_.push_back({role, path, closed});
    }
    // The control points, and the polyline that the library makes of them.
    void add_bezier(curve const& path, bool closed) {
        add(stroke_role::outline, render(path, closed, 32), closed);
        add(stroke_role::bezier, path);
    }
    void mark(point const& p) {
        if (!p.is_trivial()) add(stroke_role::mark, curve(p));
    }
    void bounds(CRealRect const& r) { add(stroke_role::bounds, corners(r), true); }
    void wide_bounds(CRealRect const& r) { add(stroke_role::wide_bounds, corners(r), true); }

    void axes(transform const& t) {
        point origin = t.basis(0);
        origin.promote2d();
        mark(origin);
        for (int i = 1; i <= (t.is_3d() ? 3 : 2); ++i) {
            add(stroke_role::axis, two_points(origin, origin + t.basis(i)));
        }
    }

    vector offset_vector() const {
        return vector(static_cast<unsigned int>(offsets_.size()), offsets_.data());
    }
    static double size_of(ellipse const& e) { return std::max(e.size(1), e.size(2)); }
    static int polygon_size(ellipse const& e) { return e.rendering_density(polygon_tolerance * size_of(e)); }

    void full_ellipse(ellipse const& e) {
        int const n = polygon_size(e);
        add(stroke_role::outline, e.render_ellipse(n), true);
        add(stroke_role::bezier, e.render_bezier());
        for (curve const& c : e.render_ellipse(n, offset_vector())) add(stroke_role::parallel, c, true);
        bounds(e.get_bounding_rect());
        if (!offsets_.empty()) wide_bounds(e.get_bounding_rect(transform(), widest_));
        axes(e);
    }

    void spline(curve const& path, bool closed) {
        add_bezier(path, closed);
        add(stroke_role::control, path);
        bounds(bezier_bounding_rect(path));
    }

    void data(std::vector<point> const& points, bool closed) {
        curve path(static_cast<unsigned int>(points.size()));
        std::copy(points.begin(), points.end(), path.lazycopy_begin());
        add(stroke_role::outline, path, closed);
        bounds(path.get_bounding_rect());
    }

    std::vector<double> const& offsets_;
    std::vector<stroke>& strokes_;
    double widest_ = 0;
};

template <class... kinds>
void draw_one_of(Geometry_Description const& record, record_drawer& drawer) {
    (void)((record.type() == kinds::type_value && (drawer.draw(static_cast<kinds const&>(record)), true)) ||
           ...);
}

}  // namespace

bool draw_record(Geometry_Description const& record, std::vector<double> const& offsets, drawing& d) {
    std::vector<stroke> strokes;
    record_drawer drawer(offsets, strokes);
    draw_one_of<Point_Description, Transform_Description, Segment_Description, Circle_Description,
                Arc_Description, Ellipse_Description, ORing_Description, Rectangle_Description,
                Gap_Description, Slot_Description, OpenSpline_Description, Plane_Description,
                Angle_Description, ClosedSpline_Description, OpenData_Description, ClosedData_Description,
                Sphere_Description, Cylinder_Description, Cone_Description, Nurb_Description,
                Composite_Description, Number_Description, Rotation_Description, PointCloud_Description,
                Text_Description>(record, drawer);
    if (strokes.empty()) return false;
    d.strokes = strokes;
    return true;
}

}  // namespace tvmath
