#include <cmath>

#include "geometry/xyz.h"
#include "tvmath/nearest_point.h"
#include "tvmath/scalar.h"

inline namespace tvmath {
namespace {

// The first point of the list for which the measure is least, or greatest. NaN never wins; nor does infinity
// as the least.
template <class measure>
point least_of(std::vector<point> const& list, measure const& of) {
    point const* best = nullptr;
    double least = infinity;
    for (point const& q : list) {
        if (q.is_trivial()) continue;
        double const value = of(q);
        if (!(value < least)) continue;
        least = value;
        best = &q;
    }
    return best ? *best : point();
}

template <class measure>
point greatest_of(std::vector<point> const& list, measure const& of) {
    point const* best = nullptr;
    double greatest = -infinity;
    for (point const& q : list) {
        if (q.is_trivial()) continue;
        double const value = of(q);
        if (!(value > greatest)) continue;
        greatest = value;
        best = &q;
    }
    return best ? *best : point();
}

struct squared_distance_2d {
    double x, y;
    explicit squared_distance_2d(point const& p) : x(p.x()), y(p.y()) {}
    double operator()(point const& q) const { return sqr(q.x() - x) + sqr(q.y() - y); }
};

struct squared_distance_3d {
    xyz p;
    explicit squared_distance_3d(point const& at) : p(at) {}
    double operator()(point const& q) const {
        xyz const d = xyz(q) - p;
        return dot(d, d);
    }
};

// Distances from a line or a plane stay multiplied by the length of the direction or normal, the same for
// all: points on a grid that are equally far then compare as equal.

struct scaled_distance_2d {
    double x, y, nx, ny;
    explicit scaled_distance_2d(line const& l)
        : x(l.basis(0).x()), y(l.basis(0).y()), nx(-l.basis(1).y()), ny(l.basis(1).x()) {}
    bool is_valid() const { return (nx != 0 || ny != 0) && std::isfinite(nx) && std::isfinite(ny); }
    double operator()(point const& q) const { return std::fabs(nx * (q.x() - x) + ny * (q.y() - y)); }
};

struct scaled_distance_3d {
    xyz center, along;
    explicit scaled_distance_3d(line const& l) : center(l.basis(0)), along(l.basis(1)) {}
    bool is_valid() const { return dot(along, along) > 0 && along.is_finite(); }
    double operator()(point const& q) const {
        xyz const across = cross(xyz(q) - center, along);
        return dot(across, across);
    }
};

struct scaled_distance_to_plane {
    xyz center, normal;
    explicit scaled_distance_to_plane(plane const& s)
        : center(s.basis(0)), normal(cross(xyz(s.basis(1)), xyz(s.basis(2)))) {}
    bool is_valid() const { return dot(normal, normal) > 0 && normal.is_finite(); }
    double operator()(point const& q) const { return std::fabs(dot(xyz(q) - center, normal)); }
};

template <class measure, class shape>
point nearest_to(shape const& s, std::vector<point> const& list) {
    if (s.is_trivial()) return point();
    measure const distance(s);
    return distance.is_valid() ? least_of(list, distance) : point();
}

template <class measure, class shape>
point farthest_from(shape const& s, std::vector<point> const& list) {
    if (s.is_trivial()) return point();
    measure const distance(s);
    return distance.is_valid() ? greatest_of(list, distance) : point();
}

}  // namespace

point point_nearest_on_2d(point const& p, std::vector<point> const& list) {
    return p.is_trivial() ? point() : least_of(list, squared_distance_2d(p));
}

point point_farthest_on_2d(point const& p, std::vector<point> const& list) {
    return p.is_trivial() ? point() : greatest_of(list, squared_distance_2d(p));
}

point point_nearest_on_3d(point const& p, std::vector<point> const& list) {
    return p.is_trivial() ? point() : least_of(list, squared_distance_3d(p));
}

point point_farthest_on_3d(point const& p, std::vector<point> const& list) {
    return p.is_trivial() ? point() : greatest_of(list, squared_distance_3d(p));
}

point point_nearest_on_2d(line l, std::vector<point> const& list) {
    return nearest_to<scaled_distance_2d>(l, list);
}

point point_farthest_on_2d(line l, std::vector<point> const& list) {
    return farthest_from<scaled_distance_2d>(l, list);
}

point point_nearest_on_3d(line l, std::vector<point> const& list) {
    return nearest_to<scaled_distance_3d>(l, list);
}

point point_farthest_on_3d(line l, std::vector<point> const& list) {
    return farthest_from<scaled_distance_3d>(l, list);
}

point point_nearest_on_3d(plane s, std::vector<point> const& list) {
    return nearest_to<scaled_distance_to_plane>(s, list);
}

point point_farthest_on_3d(plane s, std::vector<point> const& list) {
    return farthest_from<scaled_distance_to_plane>(s, list);
}

}  // namespace tvmath
