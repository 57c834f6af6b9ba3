#include "feature_figures.h"

#include <algorithm>
#include <cmath>

#include "tvmath/quick_fit.h"
#include "tvmath/scalar.h"

inline namespace tvmath {
namespace {

// Collects the figures of one record. An overload of `list` for each kind.
class figure_list {
public:
    std::vector<figure> figures;

    void list(Point_Description const& r) { location("center", r.position); }
    void list(Segment_Description const& r) {
        line const& l = r.geometry;
        location("center", l.basis(0));
        direction("direction", l.direction(), figure_kind::direction);
        add("angle", figure_kind::angle, l.basis(1).angle2d());
        add("length", figure_kind::length, l.length());
        location("start", l.basis(0) - l.basis(1));
        location("end", l.basis(0) + l.basis(1));
    }
    void list(Circle_Description const& r) { round(r.geometry.basis(0), r.geometry.radius()); }
    void list(Sphere_Description const& r) { round(r.geometry.basis(0), r.geometry.radius()); }
    void list(Arc_Description const& r) {
        round(r.circle.basis(0), r.circle.radius());
        double const middle = r.circle.basis(1).angle2d();
        add("start angle", figure_kind::angle, std::remainder(middle - r.included_angle / 2, 2 * pi));
        add("end angle", figure_kind::angle, std::remainder(middle + r.included_angle / 2, 2 * pi));
        add("included angle", figure_kind::angle, r.included_angle);
        add("length", figure_kind::length, std::fabs(r.included_angle) * r.circle.radius());
    }
    void list(Ellipse_Description const& r) {
        point u = r.geometry.basis(1), v = r.geometry.basis(2);
        orthogonalize_ellipse(u, v);
        if (u.length3d() < v.length3d()) std::swap(u, v);
        location("center", r.geometry.basis(0));
        add("major half axis", figure_kind::length, u.length3d());
        add("minor half axis", figure_kind::length, v.length3d());
        add_axis_angle("angle", u);
        add("area", figure_kind::length, r.geometry.area());
    }
    void list(Rectangle_Description const& r) {
        location("center", r.geometry.basis(0));
        add("width", figure_kind::length, r.geometry.width());
        add("height", figure_kind::length, r.geometry.height());
        add_axis_angle("angle", r.geometry.basis(1));
    }
    void list(Slot_Description const& r) {
        location("center", r.geometry.basis(0));
        add("length", figure_kind::length, 2 * r.geometry.semimajor());
        add("width", figure_kind::length, 2 * r.geometry.semiminor());
        add("end radius", figure_kind::length, r.geometry.semiminor());
        add_axis_angle("angle", r.geometry.basis(1));
    }
    void list(Gap_Description const& r) {
        location("center", r.geometry.basis(0));
        add("distance", figure_kind::length, r.geometry.distance());
        add("length", figure_kind::length, r.geometry.length());
        add_axis_angle("angle", r.geometry.basis(1));
    }
    void list(ORing_Description const& r) {
        point center = r.placement.basis(0);
        center.promote2d();
        location("center", center);
        bool const single = r.inner.is_trivial();
        if (!single) outline("inner ", r.inner);
        outline(single ? "" : "outer ", r.outer);
        if (!single) add("wall", figure_kind::length, r.outer.radius() - r.inner.radius());
    }
    void list(Plane_Description const& r) {
        location("center", r.geometry.basis(0));
        direction("normal", r.geometry.normal(), figure_kind::axis);
    }
    void list(Cylinder_Description const& r) {
        location("center", r.geometry.basis(0));
        direction("axis", r.geometry.direction(3), figure_kind::axis);
        add("radius", figure_kind::length, r.geometry.radius());
        add("diameter", figure_kind::length, 2 * r.geometry.radius());
        add("height", figure_kind::length, r.geometry.height());
    }
    void list(Cone_Description const& r) {
        cone const& c = r.geometry;
        location("apex", c.vertex());
        direction("axis", c.axis, figure_kind::direction);
        add("half angle", figure_kind::angle, std::fabs(c.angle()));
        location("base", c.base);
        add("base radius", figure_kind::length, c.base_radius);
        location("top", c.top);
        add("top radius", figure_kind::length, c.top_radius);
        add("height", figure_kind::length, distance3d(c.base, c.top));
    }
    void list(OpenSpline_Description const& r) { path(r.path, r.length); }
    void list(ClosedSpline_Description const& r) {
        location("centroid", r.centroid);
        add("area", figure_kind::length, r.area);
        path(r.path, r.length);
    }
    void list(Nurb_Description const& r) {
        nurb const& n = r.geometry;
        double length = 0;
        n.compute_moments(length);
        location("centroid", r.center);
        add("length", figure_kind::length, length);
        add("order", figure_kind::count, n.order());
        add("control points", figure_kind::count, n.control_points());
        figure knots{"knots", figure_kind::rows, {}, 1},
            points{"control point list", figure_kind::rows, {}, 3};
        for (unsigned int i = 0; i < n.knots(); ++i) knots.values.push_back(n.get_knot(i));
        for (unsigned int i = 0; i < n.control_points(); ++i) {
            point const p = n.get_control_point(i);
            points.values.insert(points.values.end(), {p.x(), p.y(), p.z()});
        }
        figures.push_back(knots);
        figures.push_back(points);
    }
    void list(Transform_Description const& r) { placement(r.geometry, true); }
    void list(Composite_Description const& r) { placement(r.geometry, false); }
    void list(Angle_Description const& r) {
        location("vertex", r.arc.basis(0));
        add("radius", figure_kind::length, r.arc.size(1));
        double const direction = r.arc.basis(1).angle2d() + r.start_angle;
        add("start angle", figure_kind::angle, std::remainder(direction, 2 * pi));
        add("included angle", figure_kind::angle, r.included_angle);
    }
    void list(Number_Description const& r) { add("value", figure_kind::number, r.value); }
    void list(Rotation_Description const& r) { add("angle", figure_kind::angle, r.value); }
    void list(OpenData_Description const& r) { data(r.points); }
    void list(ClosedData_Description const& r) { data(r.points); }
    void list(PointCloud_Description const& r) { data(r.points); }

private:
    static void widen(double& low, double& high, double x) {
        low = std::min(low, x);
        high = std::max(high, x);
    }

    void data(std::vector<point> const& points) {
        add("points", figure_kind::count, static_cast<double>(points.size()));
        if (points.empty()) return;
        point low = points.front(), high = low;
        for (point const& p : points) {
            widen(low.x(), high.x(), p.x());
            widen(low.y(), high.y(), p.y());
            if (low.is_3d()) widen(low.z(), high.z(), p.z());
        }
        location("centroid", point_fit(points));
        location("lowest", low);
        location("highest", high);
    }

    void add(char const* label, figure_kind kind, double value) { figures.push_back({label, kind, {value}}); }

    void add_axis_angle(char const* label, point const& direction) {
        // Half a turn changes nothing, so it stands for the angle above -90 and up to 90 degrees.
        double angle = std::remainder(direction.angle2d(), pi);
        if (angle == -pi / 2) angle = pi / 2;
        add(label, figure_kind::axis_angle, angle);
    }

    void location(char const* label, point const& p) { add_point(label, p, figure_kind::location); }
    void direction(char const* label, point const& p, figure_kind kind) { add_point(label, p, kind); }
    void add_point(char const* label, point const& p, figure_kind kind) {
        if (p.is_trivial()) return;
        figure f{label, kind, {p.x(), p.y()}};
        if (p.is_3d()) f.values.push_back(p.z());
        figures.push_back(f);
    }

    void round(point const& center, double radius) {
        location("center", center);
        add("radius", figure_kind::length, radius);
        add("diameter", figure_kind::length, 2 * radius);
    }

    void outline(std::string const& which, ring const& r) {
        figures.push_back({which + "radius", figure_kind::length, {r.radius()}});
        figures.push_back({which + "mean radius", figure_kind::length, {r[0]}});
        figures.push_back({which + "harmonics", figure_kind::count, {(r.capacity() - 1) / 2.0}});
        figures.push_back({which + "coefficients", figure_kind::rows, {r.begin(), r.end()}, 1});
    }

    void path(curve const& c, double length) {
        add("length", figure_kind::length, length);
        add("segments", figure_kind::count, (c.capacity() - 1) / 3);
        std::size_t const columns = c.is_trivial() ? 2 : c[0].dimension();
        figure points{"control point list", figure_kind::rows, {}, columns};
        for (point const& p : c) {
            points.values.insert(points.values.end(), {p.x(), p.y()});
            if (columns == 3) points.values.push_back(p.z());
        }
        figures.push_back(points);
    }

    void placement(transform const& t, bool affine) {
        location("offset", t.basis(0));
        if (t.is_2d()) {
            add("angle", figure_kind::angle, t.basis(1).angle2d());
        } else {
            add("yaw", figure_kind::angle, t.yaw());
            add("pitch", figure_kind::angle, t.pitch());
            add("roll", figure_kind::angle, t.roll());
        }
        int const n = t.is_2d() ? 2 : 3;
        static char const* const scales[] = {"scale x", "scale y", "scale z"};
        static char const* const images[] = {"first axis", "second axis", "third axis"};
        for (int i = 1; affine && i <= n; ++i) add(scales[i - 1], figure_kind::number, t.size(i));
        if (affine && n == 2)
            add("shear", figure_kind::angle,
                pi / 2 - std::atan2(cross2d(t.basis(1), t.basis(2)), t.dot(1, 2)));
        for (int i = 1; affine && i <= n; ++i) add_point(images[i - 1], t.basis(i), figure_kind::location);
    }
};

template <class... kinds>
void list_one_of(Geometry_Description const& record, figure_list& figures) {
    (void)((record.type() == kinds::type_value && (figures.list(static_cast<kinds const&>(record)), true)) ||
           ...);
}

double angle_between(std::vector<double> const& a, std::vector<double> const& b, bool without_sense) {
    auto const at = [](std::vector<double> const& v) {
        return point(false, v[0], v[1], v.size() > 2 ? v[2] : 0.0);
    };
    double const sine = cross(at(a), at(b)).length3d(), cosine = dot(at(a), at(b));
    return std::atan2(sine, without_sense ? std::fabs(cosine) : cosine);
}

}  // namespace

std::vector<figure> figures_of(Geometry_Description const& record) {
    figure_list figures;
    list_one_of<Point_Description, Segment_Description, Circle_Description, Arc_Description,
                Ellipse_Description, Rectangle_Description, Slot_Description, Gap_Description,
                ORing_Description, Plane_Description, Sphere_Description, Cylinder_Description,
                Cone_Description, OpenSpline_Description, ClosedSpline_Description, Nurb_Description,
                Transform_Description, Composite_Description, Angle_Description, Number_Description,
                Rotation_Description, OpenData_Description, ClosedData_Description, PointCloud_Description>(
        record, figures);
    return figures.figures;
}

std::vector<figure> deviations(std::vector<figure> const& fitted, std::vector<figure> const& nominal) {
    std::vector<figure> differences;
    for (figure const& f : fitted) {
        auto const n = std::find_if(nominal.begin(), nominal.end(),
                                    [&f](figure const& other) { return other.label == f.label; });
        if (n == nominal.end() || f.kind == figure_kind::rows || f.kind == figure_kind::count) continue;
        figure d = f;
        if (f.kind == figure_kind::direction || f.kind == figure_kind::axis) {
            d.kind = figure_kind::angle;
            d.values = {angle_between(f.values, n->values, f.kind == figure_kind::axis)};
        } else {
            d.values.resize(std::min(f.values.size(), n->values.size()));
            for (std::size_t i = 0; i < d.values.size(); ++i) d.values[i] = f.values[i] - n->values[i];
            double const turn = f.kind == figure_kind::angle        ? 2 * pi
                                : f.kind == figure_kind::axis_angle ? pi
                                                                    : 0;
            if (turn > 0) d.values[0] = std::remainder(d.values[0], turn);
        }
        differences.push_back(d);
    }
    return differences;
}

}  // namespace tvmath
