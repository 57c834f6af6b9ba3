#pragma once

#include <memory>
#include <vector>

#include "fit_kinds.h"
#include "tvmath/array.h"
#include "tvmath/geometry_fitter.h"

inline namespace tvmath {

inline idioms::array<point> list_of(std::vector<point> const& points) {
    return idioms::array<point>(static_cast<unsigned int>(points.size()), points.data());
}

/// `p` with as many coordinates as the points have; a missing z is theirs.
point in_dimension(point p, std::vector<point> const& points);

/// Keeps a shape as the record of a fit. False for one without extent, which is none for anybody who asked.
template <class kind, class shape>
bool keep(shape const& geometry, fitted_feature& fitted) {
    if (geometry.is_trivial() || !(geometry.size(1) > 0)) return false;
    auto record = std::make_shared<kind>();
    record->geometry = geometry;
    fitted.record = std::move(record);
    return true;
}

/// Distances from the one outline of a ring, positive outside.
void measure_ring(ORing_Description const& ring, std::vector<point> const& points,
                  std::vector<double>& residuals);

/// Gives the fitter all conditions and, unless these settle the feature, the points. False, with the reason,
/// when there are too many conditions.
bool fill_fitter(geometry_fitter::fitter& fitter, fit_input const& in, fitted_feature& fitted);
/// Makes a feature in the plane two-dimensional again.
void project(Geometry_Description& record);

/// The fit under conditions. The fitter knows only points in space: those of 2D data go there and back.
template <class fitter_kind, class record_kind>
bool fit_constrained(fit_input const& in, fitted_feature& fitted) {
    fitter_kind fitter;
    if (!fill_fitter(fitter, in, fitted)) return false;
    auto record = std::make_shared<record_kind>();
    fitted.record = record;
    if (!fitter.result(*record)) return false;
    if (in.points.front().is_2d()) project(*record);
    return true;
}

}  // namespace tvmath
