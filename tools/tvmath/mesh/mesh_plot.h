#pragma once

#include <string>

#include "mesh_result.h"

inline namespace tvmath {

/// The bytes of a picture of that suffix: the triangles, the hull, the points and the counts. Empty when it
/// cannot be made.
std::string mesh_plot(mesh_result const& mesh, std::string const& suffix);

}  // namespace tvmath
