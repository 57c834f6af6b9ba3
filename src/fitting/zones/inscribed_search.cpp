#include "inscribed_search.h"

#include <algorithm>

#include "inscribed_walk.h"
#include "tvmath/delaunay.h"

inline namespace tvmath {
namespace {

// Distances of coordinates up to 1 are rounded by some 1e-16, a centre by a few more.
constexpr double rounding = 1e-14;
// Along a ragged arc the walk drops point after point, each at the cost of a pass.
constexpr std::size_t most_walked = 256;
// A right angle by rounding counts as one: on a grid the centre lies on the hypotenuse.
constexpr double least_cosine = -1e-13;

bool encloses_center(contact_circle const& c) {
    return c.contacts == 3 && !(largest_angle(c.contact).cosine < least_cosine);
}

bool is_empty(contact_circle const& c, std::vector<xy> const& points) {
    double const least = c.radius > rounding ? c.radius - rounding : 0;
    return std::none_of(points.begin(), points.end(),
                        [&](xy p) { return dot(p - c.center, p - c.center) < least * least; });
}

std::vector<Delaunay::Triad> triangles_of(std::vector<xy> const& points) {
    auto const n = static_cast<unsigned int>(points.size());
    std::vector<Delaunay::Edge> edges(Delaunay::delaunay_triangulation__edge_buffer_count(n));
    unsigned int const count = Delaunay::delaunay_triangulation(&points[0].x, n, sizeof(xy), edges.data());
    std::vector<Delaunay::Triad> triangles(Delaunay::make_mesh__triad_count(n, count));
    Delaunay::make_mesh(edges.data(), count, triangles.data());
    return triangles;
}

}  // namespace

contact_circle inscribed_search(std::vector<xy> const& points) {
    if (points.size() < 3) return {};
    contact_circle best;
    if (points.size() <= most_walked) {
        contact_circle const walked = inscribed_walk(points);
        if (encloses_center(walked) && is_empty(walked, points)) best = walked;
    }
    for (Delaunay::Triad const& t : triangles_of(points)) {
        contact_circle const c = circle_through({t.a[0], t.a[1]}, {t.b[0], t.b[1]}, {t.c[0], t.c[1]});
        double const least = best.contacts == 0 ? 0 : best.radius + rounding;
        if (c.radius > least && encloses_center(c)) best = c;
    }
    return best;
}

}  // namespace tvmath
