#pragma once

#include <string>
#include <vector>

#include "canvas.h"
#include "drawing.h"

inline namespace tvmath {

/// The bytes of a picture of that suffix with the drawings in rows of `columns`, each in a cell of its own
/// scale with its title, the numbers of its extent and the same colours for the same roles. Empty when the
/// picture cannot be made.
std::string picture_bytes(std::vector<drawing> const& drawings, int columns, std::string const& suffix);

}  // namespace tvmath
