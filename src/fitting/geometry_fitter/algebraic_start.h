#pragma once

#include <vector>

#include "tvmath/point.h"

inline namespace tvmath {
namespace geometry_fitter {

/// The circle (`dimension` 2, in XY) or sphere (3) that minimises the sum of (distance² - radius²)² and
/// passes exactly through all points of `through`, of which there must be one: the constrained form of
/// `circle_quick_fit`. False for an exactly singular system.
bool algebraic_fit_through(std::vector<point> const& fit, std::vector<point> const& through,
                           unsigned int dimension, point& center, double& radius);

}  // namespace geometry_fitter
}  // namespace tvmath
