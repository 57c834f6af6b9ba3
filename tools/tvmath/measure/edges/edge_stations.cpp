#include "measure/edges/edge_stations.h"

#include <algorithm>
#include <cmath>

#include "tvmath/resample.h"

inline namespace tvmath {
namespace {

constexpr double widest_window = 16, narrowest_window = 3;
constexpr double reach_in_half_width = 0.75;  // inward, to keep away from the other side

point unit(double angle) {
    return point(false, std::cos(angle), std::sin(angle));
}

// A quarter turn from +x towards +y.
point turned(point const& direction) {
    return point(false, -direction.y(), direction.x());
}

point direction_of(point p) {
    p.to_direction();
    return p.normalize();
}

class station_list {
public:
    explicit station_list(measure_tool const& tool) : settings_(tool.edges) {}

    std::vector<edge_window> windows;

    void list(Segment_Description const& r) {
        add_side(r.geometry.basis(0), r.geometry.basis(1), turned(r.geometry.direction()), 0, 5,
                 settings_.search);
    }
    void list(Circle_Description const& r) {
        add_round(r.geometry.basis(0), r.geometry.radius(), 0, 2 * pi, 8);
    }
    void list(Arc_Description const& r) {
        double const start = r.circle.basis(1).angle2d() - r.included_angle / 2;
        add_round(r.circle.basis(0), r.circle.radius(), start, r.included_angle, 6);
    }
    void list(Rectangle_Description const& r) {
        point const c = r.geometry.basis(0), u = r.geometry.basis(1), v = r.geometry.basis(2);
        double const margin = settings_.search + narrowest_window;
        double const in_u = inward_of(u.length2d()), in_v = inward_of(v.length2d());
        add_side(c + u, v, direction_of(u), margin, 3, in_u);
        add_side(c + v, -u, direction_of(v), margin, 3, in_v);
        add_side(c - u, -v, direction_of(-u), margin, 3, in_u);
        add_side(c - v, u, direction_of(-v), margin, 3, in_v);
    }
    void list(Slot_Description const& r) {
        double const radius = r.geometry.semiminor(), straight = r.geometry.semimajor() - radius;
        point const c = r.geometry.basis(0), u = direction_of(r.geometry.basis(1)), v = turned(u);
        double const angle = u.angle2d();
        add_round(c + u * straight, radius, angle - pi / 2, pi, 5);
        if (straight > 0)
            add_side(c + v * radius, u * -straight, v, settings_.search / 2, 3, inward_of(radius));
        add_round(c - u * straight, radius, angle + pi / 2, pi, 5);
        if (straight > 0)
            add_side(c - v * radius, u * straight, -v, settings_.search / 2, 3, inward_of(radius));
    }

private:
    // As many windows as the spacing asks for on a piece of that length.
    int count_on(double length, int least) const {
        double const most = std::max(3.0, std::floor(length / narrowest_window));
        return static_cast<int>(
            std::clamp<double>(std::round(length / settings_.spacing), std::min<double>(least, most), most));
    }
    double width_on(double length, int count) const {
        return std::clamp(std::floor(length / count), narrowest_window, widest_window);
    }

    double inward_of(double half_width) const {
        return std::min(settings_.search, reach_in_half_width * half_width);
    }

    // Along a straight piece from `middle` - `half` to `middle` + `half`, less a margin of a quarter at most.
    void add_side(point const& middle, point const& half, point const& normal, double margin, int least,
                  double inward) {
        double const whole = 2 * half.length2d();
        double const length = whole - 2 * std::min(margin, whole / 4);
        int const count = count_on(length, least);
        for (int i = 0; i < count; ++i) {
            double const share = (2 * i + 1.0) / count - 1;
            windows.push_back({middle + half * (share * length / whole), normal, width_on(length, count),
                               inward, settings_.search, 0, 0});
        }
    }

    void add_round(point const& center, double radius, double start, double sweep, int least) {
        double const length = std::fabs(sweep) * radius;
        int const count = count_on(length, least);
        for (int i = 0; i < count; ++i) {
            point const normal = unit(start + sweep * (i + 0.5) / count);
            windows.push_back({center + normal * radius, normal, width_on(length, count), inward_of(radius),
                               settings_.search, 0, 1 / radius});
        }
    }

    edge_settings const& settings_;
};

// Direction across the edge that is about a place; the trivial point when there is none.
point normal_in(image const& scene, point const& place, double reach) {
    auto const side = static_cast<unsigned int>(2 * std::ceil(std::max(reach, 8.0)));
    image const patch =
        rotate(scene, place.x() - side / 2.0, place.y() - side / 2.0, 0, side, side, side, side);
    double const angle = patch.find_normal_angle(3, 2);
    return std::isfinite(angle) ? unit(angle) : point();
}

}  // namespace

std::vector<edge_window> edge_stations(measure_tool const& tool, image const& scene) {
    Geometry_Description const& r = *tool.place;
    station_list stations(tool);
    if (auto const* p = dynamic_cast<Point_Description const*>(&r)) {
        point const normal =
            tool.angle ? unit(*tool.angle) : normal_in(scene, p->position, tool.edges.search);
        if (normal.is_trivial()) return {};
        return {{p->position, normal, widest_window, tool.edges.search, tool.edges.search, 0, 0}};
    }
    if (auto const* s = dynamic_cast<Segment_Description const*>(&r)) stations.list(*s);
    if (auto const* c = dynamic_cast<Circle_Description const*>(&r)) stations.list(*c);
    if (auto const* a = dynamic_cast<Arc_Description const*>(&r)) stations.list(*a);
    if (auto const* q = dynamic_cast<Rectangle_Description const*>(&r)) stations.list(*q);
    if (auto const* o = dynamic_cast<Slot_Description const*>(&r)) stations.list(*o);
    return stations.windows;
}

edge_window aligned_window(Geometry_Description const& feature, point const& edge, edge_window window) {
    window.place = edge;
    // The axis, on the side of the window's normal.
    auto const lie_along = [&window](point const& axis) {
        point const d = direction_of(axis);
        window.normal = dot2d(d, window.normal) < 0 ? -d : d;
        window.bend = 0;
    };
    auto const lie_about = [&](point const& center) {
        point const way = edge - center;
        if (!(way.length2d() > 0)) return;
        window.normal = direction_of(way);
        window.bend = 1 / way.length2d();
        window.inward = std::min(window.inward, reach_in_half_width * way.length2d());
    };
    if (auto const* s = dynamic_cast<Segment_Description const*>(&feature)) {
        lie_along(turned(s->geometry.basis(1)));
    } else if (auto const* c = dynamic_cast<Circle_Description const*>(&feature)) {
        lie_about(c->geometry.basis(0));
    } else if (auto const* a = dynamic_cast<Arc_Description const*>(&feature)) {
        lie_about(a->circle.basis(0));
    } else if (auto const* r = dynamic_cast<Rectangle_Description const*>(&feature)) {
        point const u = direction_of(r->geometry.basis(1)), v = direction_of(r->geometry.basis(2));
        bool const is_end = std::fabs(dot2d(u, window.normal)) > std::fabs(dot2d(v, window.normal));
        lie_along(is_end ? u : v);
    } else if (auto const* o = dynamic_cast<Slot_Description const*>(&feature)) {
        point const u = direction_of(o->geometry.basis(1));
        double const straight = o->geometry.semimajor() - o->geometry.semiminor();
        double const x = dot2d(edge - o->geometry.basis(0), u);
        if (std::fabs(x) <= straight) {
            lie_along(turned(u));
        } else {
            lie_about(o->geometry.basis(0) + u * std::copysign(straight, x));
        }
    }
    return window;
}

}  // namespace tvmath
