#pragma once

#include <vector>

#include "zone_circle_points.h"

inline namespace tvmath {

/// The centre of a ring that holds some points, and its width.
struct zone_ring {
    zone_center center;
    double width = infinity;
};

/// The narrowest ring that holds the points, about any centre of the plane: no other is narrower by more than
/// some 1e-15. The points' coordinates are at most 1. A centre with t = 0 tells that the width has no
/// minimum, but falls to that of a strip between two parallel lines. `start` is a centre to begin with.
///
/// `budget` is the number of triangles that may be divided, and becomes what is left of it. False when it is
/// used up: then the ring is one that holds the points, not known to be the narrowest.
///
/// Branch and bound over triangles of homogeneous centres y = (u, v, t), of which ten cover the plane, its
/// far parts included. With R and r the distances of the farthest and the nearest point and
///     A(y) = max a(p) - min a(p) = (R² - r²) t,   B(y) = R t,
/// a ring of a width below w exists about y when
///     F(y) = A(y) - 2 w B(y) + w² t < 0,      because R² - r² = w' (2 R - w'), which grows with w' <= R.
/// A is a maximum of linear functions of y, a(p) - a(q); B is convex, and within a triangle at most the
/// linear function through its corners. So F has a lower bound that is convex and piecewise linear, and its
/// minimum in the triangle is that of a linear program, solved with cutting planes. A triangle where it is
/// not negative holds no ring narrower than the best so far; another one is divided. The bound is short by
/// the curvature of B times w, so that for the small w of a measured circle few triangles are needed.
///
/// Cutting planes: J. E. Kelley, J. SIAM 8 (1960) 703-712. Other ways to the global optimum: the overlay of
/// the nearest- and the farthest-point Voronoi diagram, H. Ebara et al., Roundness algorithms using the
/// Voronoi diagrams, 1st Canadian Conf. Comput. Geom. (1989).
bool narrowest_ring(std::vector<xy> const& points, zone_center const& start, int& budget, zone_ring& ring);

/// The ring about `c` that holds the points.
zone_ring ring_about(zone_center const& c, std::vector<xy> const& points);

}  // namespace tvmath
