#pragma once

#include <vector>

#include "tvmath/array.h"
#include "tvmath/export.h"
#include "tvmath/point.h"
#include "tvmath/ring.h"
#include "tvmath/transform.h"

inline namespace tvmath {

// Closed outlines in XY that are no circle by intention or by fault: the radius as a Fourier series of the
// angle about a centre, by least squares of the radii. Points come in any order. Lengths are in the caller's
// units. A placement is the translation to the centre, 3D at the mean z for a 3D list, otherwise 2D;
// a point divided by it is what `ring::distance` measures.
//
// As many harmonics are taken as the points carry: at most 50, the customary limit of a roundness
// measurement; at most (n - 1) / 3 of n points, so that a third of the points is left to smooth the others;
// and fewer than pi over the largest gap between the angles, which no shorter wave could bridge. A gap of pi
// or more, as of points on one side, is no outline: the fit fails. So do fewer than 4 points, a trivial point
// and a coordinate that is not finite. Then outputs stay untouched; nothing raises.
//
// Source: ISO 12181-1 (harmonics about the centre of the least-squares circle); K. Grochenig, Reconstruction
// algorithms in irregular sampling, Math. Comp. 59 (1992) 181-194 (the bound by the largest gap).

/// The outline, about the centre of its least-squares circle. Returns the empty ring when it fails.
TVMATH_API ring ring_fit(idioms::array<point> points, transform& placement);

// An o-ring: two outlines about one centre, midway between the centres of their least-squares circles. Each
// returns the placement and fills the outlines; the trivial transform when one of them fails.

/// The points of the inner and of the outer outline given apart.
TVMATH_API transform oring_fit(std::vector<point> const& inner_points, std::vector<point> const& outer_points,
                               ring& inner, ring& outer);
TVMATH_API transform oring_fit(idioms::array<point> inner_points, idioms::array<point> outer_points,
                               ring& inner, ring& outer);
/// The points of both outlines in one list. They are parted at the widest gap between their distances from
/// the centre, which must be wider than the outlines are out of round. Fails when they do not part so.
TVMATH_API transform oring_fit(std::vector<point> const& points, ring& inner, ring& outer);
TVMATH_API transform oring_fit(idioms::array<point> points, ring& inner, ring& outer);

}  // namespace tvmath
