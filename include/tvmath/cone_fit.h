#pragma once

#include <vector>

#include "tvmath/array.h"
#include "tvmath/cone.h"
#include "tvmath/export.h"
#include "tvmath/point.h"

inline namespace tvmath {

// Least-squares cones of measured points: minima of the sum of squared orthogonal distances, that is of
// cos(a) rho - sin(a) z - c, where rho is a point's distance from the axis, z its place along it and a the
// angle between axis and surface. Lengths are in the caller's units. The order of the points does not matter,
// nor does it when each of them is repeated.
//
// The cone returned spans the points along its axis: `base` and `top` are the ends of their extent. Its
// axis points the way the nominal cone's, or the given axis, does; without either the base is the wider
// end. A cylinder is a cone of equal radii, and points of a cylinder give one. Where noise carries points
// of a full cone beyond its tip, the end is the tip, with radius 0.
//
// Each returns the null cone (`is_trivial()`) when it fails, and rather than a cone that the points do not
// show: for fewer points than it needs, for a point that is not a finite 3D one, for an axis without
// direction, for points that do not determine the cone (some of them equal or in special places, as on one
// circle), that a plane fits as well within their scatter, or all at one place along the axis, for a
// radius of more than 1e5 times the points' size, and for a tip amidst the points. Nothing raises.
//
// Weak points: the angle of a narrow strip of surface and of a short cone is known poorly, the tip of a
// slender cone far worse than radius and axis beside the points; the fit is then still the minimum, but
// its parameters carry the noise of the points many times over.
//
// Method: Newton's, with Gauss-Newton steps damped after Levenberg and Marquardt where the model is not
// convex, in parameters local to the present axis; starts by an algebraic fit of a quadric of revolution
// from the thirteen axes of a cube and the principal axes of the points. Sources: G. Lukacs, R. Martin, D.
// Marshall, Faithful least-squares fitting of spheres, cylinders, cones and tori, ECCV 1998, LNCS 1406,
// 671-686; G. Taubin, IEEE Trans. PAMI 13 (1991) 1115-1138.

/// The cone of at least 6 points. `nominal`, unless it is null, gives a further start and the sense of the
/// axis; the best minimum found counts, whatever start led to it.
TVMATH_API cone cone_fit(std::vector<point> const& points, cone nominal);
TVMATH_API cone cone_fit(idioms::array<point> points, cone nominal);
/// The same with an axis that passes through `center`, of at least 4 points.
TVMATH_API cone cone_centered_fit(point center, std::vector<point> const& points, cone nominal);
TVMATH_API cone cone_centered_fit(point center, idioms::array<point> points, cone nominal);
/// The cone with this direction of the axis, of any length, of at least 4 points.
TVMATH_API cone cone_parallel_fit(point axis, std::vector<point> const& points);
TVMATH_API cone cone_parallel_fit(point axis, idioms::array<point> points);
/// The cone about the line through `center` along `axis`, of at least 2 points.
TVMATH_API cone cone_parallel_centered_fit(point center, point axis, std::vector<point> const& points);
TVMATH_API cone cone_parallel_centered_fit(point center, point axis, idioms::array<point> points);

}  // namespace tvmath
