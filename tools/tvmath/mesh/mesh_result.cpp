#include "mesh_result.h"

#include <cmath>
#include <new>

#include "tvmath/delaunay.h"

inline namespace tvmath {
namespace {

// Twice the area of the triangle at the origin, with the coordinates about `o`.
double doubled_area(point const& o, point const& a, point const& b) {
    return (a.x() - o.x()) * (b.y() - o.y()) - (b.x() - o.x()) * (a.y() - o.y());
}

// What the edges say but for the triangles.
class edge_reader {
public:
    edge_reader(mesh_result& mesh, double const* first) : mesh_(mesh), first_(first) {}

    std::size_t index(double const* at) const {
        auto const bytes = reinterpret_cast<char const*>(at) - reinterpret_cast<char const*>(first_);
        return static_cast<std::size_t>(bytes) / sizeof(point);
    }

    void read(std::vector<Delaunay::Edge> const& edges) {
        Delaunay::Edge const* start = nullptr;
        for (Delaunay::Edge const& e : edges) {
            std::size_t const a = index(e.a), b = index(e.b);
            if (e.left_next == &e) {
                ++mesh_.repeated;  // no triangle on either side: a point upon another
                continue;
            }
            mesh_.edges.push_back({a, b});
            if (e.on_hull) start = &e;
        }
        if (start) walk_hull(start);
    }

private:
    void walk_hull(Delaunay::Edge const* const start) {
        point const& o = mesh_.points[index(start->a)];
        Delaunay::Edge const* e = start;
        do {
            std::size_t const a = index(e->a), b = index(e->b);
            mesh_.hull.push_back({a, b});
            mesh_.area += doubled_area(o, mesh_.points[a], mesh_.points[b]) / 2;
            mesh_.perimeter += distance2d(mesh_.points[a], mesh_.points[b]);
            e = e->right_prev;  // the right is walked clockwise by the next ones
        } while (e != start);
    }

    mesh_result& mesh_;
    double const* first_;
};

}  // namespace

bool triangulate(std::vector<point> points, mesh_result& mesh, std::string& reason) {
    if (points.size() < 3) {
        reason = "a mesh needs at least 3 points, not " + std::to_string(points.size());
        return false;
    }
    mesh_result fresh;
    fresh.points = std::move(points);
    auto const n = static_cast<unsigned int>(fresh.points.size());
    double const* const first = &fresh.points.front().x();
    std::vector<Delaunay::Edge> edges(Delaunay::delaunay_triangulation__edge_buffer_count(n));
    edges.resize(Delaunay::delaunay_triangulation(first, n, sizeof(point), edges.data()));
    if (edges.empty()) throw std::bad_alloc();
    std::vector<Delaunay::Triad> triads(
        Delaunay::make_mesh__triad_count(n, static_cast<unsigned int>(edges.size())));
    if (triads.empty()) {
        reason = "there is no mesh: the points lie on one line, or are fewer than 3 different ones";
        return false;
    }
    Delaunay::make_mesh(edges.data(), static_cast<unsigned int>(edges.size()), triads.data());
    edge_reader reader(fresh, first);
    reader.read(edges);
    if (!std::isfinite(fresh.area) || !std::isfinite(fresh.perimeter)) {
        reason = "there is no mesh: the coordinates are too large to calculate with";
        return false;
    }
    for (Delaunay::Triad const& t : triads)
        fresh.triangles.push_back({reader.index(t.a), reader.index(t.b), reader.index(t.c)});
    mesh = std::move(fresh);
    return true;
}

}  // namespace tvmath
