#pragma once

#include <vector>

#include "feature_figures.h"
#include "json_text.h"

inline namespace tvmath {

/// The figures as members of an object, by their labels with `_` for blanks: angles in radians and, with
/// `_deg`, in degrees; coordinates and rows as lists.
json_value figures_object(std::vector<figure> const& figures);

}  // namespace tvmath
