#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <vector>

#include "tvmath/point.h"

inline namespace tvmath {

/// The Delaunay triangulation of points in XY. Points are named by their index from 0.
struct mesh_result {
    std::string file;  ///< as it is shown
    std::vector<point> points;
    std::vector<std::array<std::size_t, 2>> edges;
    std::vector<std::array<std::size_t, 3>> triangles;  ///< corners anticlockwise
    std::vector<std::array<std::size_t, 2>> hull;  ///< its edges, anticlockwise, the next from where one ends
    std::size_t repeated = 0;                      ///< points at the place of an earlier one
    double area = 0, perimeter = 0;                ///< of the hull
};

/// Triangulates the points. Returns true and sets all of `mesh` but its file; returns false, `mesh`
/// untouched, and says in `reason` why there is no triangle.
bool triangulate(std::vector<point> points, mesh_result& mesh, std::string& reason);

}  // namespace tvmath
