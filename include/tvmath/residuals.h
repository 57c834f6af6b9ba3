#pragma once

#include <vector>

#include "tvmath/export.h"
#include "tvmath/geometry_description.h"
#include "tvmath/point.h"

inline namespace tvmath {

// How well a feature matches its measured points. Each `calculate_errors` makes `errors` the signed deviation
// of each point, in order, positive outside the feature, and returns the number of parameters of the feature,
// to be passed on to `get_stdev`. Lengths are in the caller's units.

TVMATH_API unsigned int calculate_errors(Point_Description const& feature, std::vector<point> const& points,
                                         std::vector<double>& errors);
TVMATH_API unsigned int calculate_errors(Segment_Description const& feature, std::vector<point> const& points,
                                         std::vector<double>& errors);
TVMATH_API unsigned int calculate_errors(Circle_Description const& feature, std::vector<point> const& points,
                                         std::vector<double>& errors);
TVMATH_API unsigned int calculate_errors(Arc_Description const& feature, std::vector<point> const& points,
                                         std::vector<double>& errors);
TVMATH_API unsigned int calculate_errors(Ellipse_Description const& feature, std::vector<point> const& points,
                                         std::vector<double>& errors);
TVMATH_API unsigned int calculate_errors(ORing_Description const& feature, std::vector<point> const& points,
                                         std::vector<double>& errors);
TVMATH_API unsigned int calculate_errors(Rectangle_Description const& feature,
                                         std::vector<point> const& points, std::vector<double>& errors);
TVMATH_API unsigned int calculate_errors(Gap_Description const& feature, std::vector<point> const& points,
                                         std::vector<double>& errors);
TVMATH_API unsigned int calculate_errors(Slot_Description const& feature, std::vector<point> const& points,
                                         std::vector<double>& errors);
TVMATH_API unsigned int calculate_errors(Plane_Description const& feature, std::vector<point> const& points,
                                         std::vector<double>& errors);
TVMATH_API unsigned int calculate_errors(Angle_Description const& feature, std::vector<point> const& points,
                                         std::vector<double>& errors);
TVMATH_API unsigned int calculate_errors(Sphere_Description const& feature, std::vector<point> const& points,
                                         std::vector<double>& errors);
TVMATH_API unsigned int calculate_errors(Cylinder_Description const& feature,
                                         std::vector<point> const& points, std::vector<double>& errors);
TVMATH_API unsigned int calculate_errors(Cone_Description const& feature, std::vector<point> const& points,
                                         std::vector<double>& errors);
/// The same for the kind of that type value; 0, with `errors` untouched, for a kind without residuals.
TVMATH_API unsigned int calculate_errors(Geometry_Description const& feature, unsigned long long type,
                                         std::vector<point> const& points, std::vector<double>& errors);

/// Width of the zone that holds all deviations, the form error: greatest less least. 0 for an empty list.
TVMATH_API double get_form(std::vector<double> const& errors);
/// Width of the zone, symmetric about the feature, that holds all deviations: twice the largest magnitude. 0
/// for an empty list.
TVMATH_API double get_profile_error(std::vector<double> const& errors);
/// Standard deviation about the feature: the root of the sum of squares over the number of deviations less
/// that of the parameters. `domain_error_value` when nothing is left over.
TVMATH_API double get_stdev(std::vector<double> const& errors, unsigned int degrees_of_freedom);

}  // namespace tvmath
