#pragma once

#include <vector>

#include "tvmath/array.h"
#include "tvmath/ellipse.h"
#include "tvmath/export.h"
#include "tvmath/point.h"

inline namespace tvmath {

// Ellipses in XY through measured points. Both list forms give the same bits. Lengths are in the caller's
// units. A trivial point in the list, or a coordinate that is not finite, makes every fit fail; nothing
// raises.

/// Algebraic ellipse, without starting values: the conic with the least mean square of its values over that
/// of its gradients at the points, which is nearly that of the distances. Where noise on a short arc makes
/// that no ellipse, the one with the least sum of squares of a x² + b x y + c y² + d x + e y + f under 4 a c
/// - b² = 1, which always is one, though too small. Of the points of an ellipse both are that ellipse.
///
/// Returns true and sets `center`, at the mean z of a 3D list, and the half-axes, `major` the longer one, as
/// 2D directions at a right angle. Needs 5 different points, no 4 of them on a line. Returns false, outputs
/// untouched, for fewer, for points on one line, and when the points lie on a hyperbola or a pair of lines to
/// the last digit, as 5 points may. Where they merely scatter about one, the answer is an ellipse, a long
/// one.
///
/// Sources: G. Taubin, IEEE Trans. PAMI 13 (1991) 1115-1138; A. Fitzgibbon, M. Pilu, R. B. Fisher, Direct
/// least square fitting of ellipses, IEEE Trans. PAMI 21 (1999) 476-480, reduced as by R. Halir, J. Flusser,
/// Numerically stable direct least squares fitting of ellipses, WSCG 1998. By orthogonal steps in affinely
/// normalised coordinates, which change nothing but the rounding.
TVMATH_API bool ellipse_quick_fit(std::vector<point> const& points, point& center, point& major,
                                  point& minor);
TVMATH_API bool ellipse_quick_fit(idioms::array<point> points, point& center, point& major, point& minor);

/// The same about a given centre, of which `center_out` becomes a copy. Needs 3 points of different
/// directions from the centre; opposite points count as one.
TVMATH_API bool ellipse_quick_centered_fit(point center, std::vector<point> const& points, point& center_out,
                                           point& major, point& minor);
TVMATH_API bool ellipse_quick_centered_fit(point center, idioms::array<point> points, point& center_out,
                                           point& major, point& minor);

/// Ellipse of least squares of the distances from the nearest points, started by `ellipse_quick_fit` and, for
/// points on an arc, by the algebraic circle too. In a plane parallel to XY at the mean z; 2D when the first
/// point is. `basis(1)` is the longer half-axis.
///
/// Of exactly 5 points the ellipse through them. Null (`is_trivial()`) when the quick fit fails; when the sum
/// of squares has no minimum, as for noisy arcs below about a third of a turn, whose best conic may be a
/// parabola or a hyperbola; and when the shorter half-axis is less than three times the scatter, as of a
/// noisy line. `geometry_fitter::ellipse_fitter` differs where scatter is large: see there.
///
/// Source: Newton's method for the distance function; S. J. Ahn, W. Rauh, H.-J. Warnecke, Least-squares
/// orthogonal distances fitting of circle, sphere, ellipse, hyperbola, and parabola, Pattern Recognition 34
/// (2001) 2283-2303, with its second derivatives.
TVMATH_API ellipse ellipse_fit(std::vector<point> const& points);
TVMATH_API ellipse ellipse_fit(idioms::array<point> points);

/// The same about a given centre, at its z; 2D when the centre is. 3 points are enough.
TVMATH_API ellipse ellipse_centered_fit(point center, std::vector<point> const& points);
TVMATH_API ellipse ellipse_centered_fit(point center, idioms::array<point> points);

}  // namespace tvmath
