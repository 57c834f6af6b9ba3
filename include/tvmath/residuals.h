#pragma once

#include <vector>

#include "tvmath/export.h"
#include "tvmath/geometry_description.h"
#include "tvmath/point.h"

inline namespace tvmath {

// How well a feature matches its measured points. Each `calculate_errors` makes `errors` the signed deviation
// of each point, in order, positive outside the feature, and returns the number of parameters of the feature,
// to be passed on to `get_stdev`. Lengths are in the caller's units; 2D points lie in z = 0, trivial ones at
// the origin.
//
// - Point (1): the distance in space, never negative.
// - Segment (2): the distance from the infinite line along its second axis, positive on that side.
// - Circle, Arc (3): the distance in XY from the whole circle.
// - Plane (3): the distance from the infinite plane, positive on the side of its normal.
// - Gap (3): the distance from the nearer of its two infinite sides, positive beyond them.
// - Sphere (4), Cylinder (5), Cone (6): the distance from the surface, of the last two without their
//   ends. A point on the axis of a cylinder gives minus its radius; the apex of a cone gives 0.
// - Slot (4): the distance from the outline.
// - Rectangle (5): beyond a corner the distance from it, elsewhere that from the pair of sides, as infinite
//   lines, which is nearer.
// - Ellipse (5): the distance from the ellipse in its plane, by two rounds of the walk to the foot that the
//   fit makes: exact for points near the ellipse, an approximation for points far from it.
// - O-ring (as many as both outlines have coefficients): the distance along the ray from the centre, from the
//   nearer outline.
// - Angle (4): the distance from the nearer of the two infinite legs, positive inside the angle.
//
// A null feature is measured as its unit shape with lengths of 0.

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

/// Width of the zone that holds all deviations, the form error: greatest less least. 0 for an empty list, NaN
/// when a deviation is.
TVMATH_API double get_form(std::vector<double> const& errors);
/// Width of the zone, symmetric about the feature, that holds all deviations: twice the largest magnitude. 0
/// for an empty list.
TVMATH_API double get_profile_error(std::vector<double> const& errors);
/// Standard deviation about the feature: the root of the sum of squares over the number of deviations less
/// that of the parameters. `domain_error_value` when nothing is left over.
TVMATH_API double get_stdev(std::vector<double> const& errors, unsigned int degrees_of_freedom);

}  // namespace tvmath
