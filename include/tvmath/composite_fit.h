#pragma once

#include <vector>

#include "tvmath/ctl_ref.h"
#include "tvmath/export.h"
#include "tvmath/geometry_description.h"
#include "tvmath/point.h"
#include "tvmath/transform.h"

inline namespace tvmath {

/// The rigid motion that carries the nominal features, as one body, to their measured points: least squares
/// of the deviations that `calculate_errors` gives. `points` holds one list for each feature, in the same
/// order; an empty list leaves its feature out.
///
/// A 2D motion, in XY, unless a plane, sphere, cylinder or cone takes part, or nothing but 3D points: then a
/// 3D one. What the features leave open, as one circle does its rotation, stays as it was. The search starts
/// from the nominal placement and from the one that brings the centres of the features to the centroids of
/// their points, and takes the better end; a symmetric composite may thus come back turned by its symmetry.
///
/// Returns the trivial transform when the numbers of features and lists differ, when there is no point at
/// all, for an empty handle, a kind without deviations, a trivial or non-finite point, and when the search
/// does not end within 200 steps.
///
/// Source: D. W. Marquardt, An algorithm for least-squares estimation of nonlinear parameters, J. SIAM 11
/// (1963) 431-441; for the start W. Kabsch, A solution for the best rotation to relate two sets of vectors,
/// Acta Cryst. A32 (1976) 922-923.
TVMATH_API transform fit_composite(std::vector<ctl::ref<Geometry_Description>> const& features,
                                   std::vector<std::vector<point>> const& points);

/// Profile error of the whole composite in that placement, a rigid motion (trivial: the nominal one): twice
/// the largest magnitude of all deviations. `domain_error_value` where `fit_composite` could not use the
/// data.
TVMATH_API double calc_composite_profile_error(std::vector<ctl::ref<Geometry_Description>> const& features,
                                               std::vector<std::vector<point>> const& points,
                                               transform const& placement);

}  // namespace tvmath
