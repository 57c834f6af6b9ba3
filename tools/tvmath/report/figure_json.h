#pragma once

#include <string>
#include <vector>

#include "feature_figures.h"
#include "json_text.h"

inline namespace tvmath {

/// Its name there, by which limits name it too: "end_radius", of angles that in degrees, "angle_deg".
std::string figure_key(figure const& f);

/// The figures as members of an object, by their labels with `_` for blanks: angles in radians and, with
/// `_deg`, in degrees; coordinates and rows as lists.
json_value figures_object(std::vector<figure> const& figures);

}  // namespace tvmath
