#pragma once

#include <vector>

#include "fit/fit_kinds.h"
#include "tvmath/point.h"

inline namespace tvmath {

/// Fits the kind to the points without outliers and sets `kept` and `residuals` for each point. False, with
/// the reason, when no such feature goes through the points.
///
/// First the fit is drawn to the seven tenths of the points that lie closest to it, until these stay the
/// same; where half of the points lie clearly closer to a fit that begins at one half of the outline, along
/// which the points must follow each other, it is that one. Then a point is an outlier whose residual is more
/// than `threshold` robust standard deviations, 1.4826 times the median of the magnitudes of all residuals,
/// and more than `least`; the fit through the others is repeated until these stay the same. A `threshold` of
/// 0 keeps all points.
///
/// Source: P. J. Rousseeuw, K. Van Driessen, Computing LTS regression for large data sets, Data Mining and
/// Knowledge Discovery 12 (2006) 29-45, on the concentration steps; F. R. Hampel, The influence curve and its
/// role in robust estimation, J. Amer. Statist. Assoc. 69 (1974) 383-393, on the scale.
bool fit_without_outliers(fit_kind const& kind, std::vector<point> const& points, double threshold,
                          double least, fitted_feature& fitted, std::vector<bool>& kept,
                          std::vector<double>& residuals, std::string& reason);

}  // namespace tvmath
