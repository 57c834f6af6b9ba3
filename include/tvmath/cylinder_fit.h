#pragma once

#include <vector>

#include "tvmath/array.h"
#include "tvmath/cylinder.h"
#include "tvmath/export.h"
#include "tvmath/point.h"

inline namespace tvmath {

// Least-squares cylinders of measured points: minima of the sum of squared orthogonal distances from the
// lateral surface. Lengths are in the caller's units. The order of the points does not matter, nor does it
// when each of them is repeated.
//
// The cylinder returned spans the points along its axis; its centre is the middle of that extent, its axes
// are right-handed.
//
// Each returns the null cylinder (`is_trivial()`) when it fails, and rather than a cylinder that the
// points do not show: for fewer points than it needs, for a point that is not a finite 3D one, for an axis
// without direction, for points that do not determine the cylinder (on one plane or line, some of them
// equal), that a plane fits as well within their scatter, or all at one place along the axis, and for a
// radius of more than 1e5 times the points' size. Nothing raises.
//
// Weak points: the radius of a short arc and the axis of a short cylinder carry the noise of the points
// many times over; the fit is then still the minimum.

/// The cylinder of at least 5 points, the component of its axis with the largest magnitude positive.
/// Through exactly five points there may be several cylinders, of which the one of least radius that was
/// found is returned, or none; then the result is a minimum that passes by them, or null.
///
/// Starts from 13 fixed axis directions, those through the faces, edges and corners of a cube. From each
/// the algebraic distance is minimised on the matrix of moments of nine terms that one pass over the
/// points leaves; its minima, and the principal axes of the points, which serve wires and short arcs, are
/// then refined by at most 20 rounds of Newton's method each, damped as by Levenberg and Marquardt, and
/// the best one is kept. Lists of more than 300 points are sampled to choose among the starts.
///
/// Sources: D. Eberly, Fitting 3D Data with a Cylinder, Geometric Tools, 2003; G. Lukacs, R. Martin, D.
/// Marshall, Faithful least-squares fitting of spheres, cylinders, cones and tori for reliable
/// segmentation, ECCV 1998, LNCS 1406, 671-686; normalised as by G. Taubin, IEEE Trans. PAMI 13 (1991)
/// 1115-1138.
TVMATH_API cylinder cylinder_fit(idioms::array<point> points);
/// The cylinder whose axis has the direction of `axis`, a point of any length and weight; at least 3
/// points.
TVMATH_API cylinder cylinder_parallel_fit(point axis, std::vector<point> const& points);
TVMATH_API cylinder cylinder_parallel_fit(point axis, idioms::array<point> points);
/// The cylinder about the line through `center` along `axis`: its radius is the mean distance from that
/// line. At least 2 points, at different places along it.
TVMATH_API cylinder cylinder_parallel_centered_fit(point center, point axis,
                                                   std::vector<point> const& points);
TVMATH_API cylinder cylinder_parallel_centered_fit(point center, point axis, idioms::array<point> points);

}  // namespace tvmath
