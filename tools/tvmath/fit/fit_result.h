#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "fit_kinds.h"
#include "report/feature_figures.h"
#include "tvmath/geometry_description.h"
#include "tvmath/point.h"

inline namespace tvmath {

/// The point with the greatest or the least residual.
struct extreme_point {
    std::size_t index = 0;  ///< from 0
    point at;
    double residual = 0;
};

/// A point that touches a boundary of the zone.
struct contact_point {
    std::string side;  ///< the name of the boundary
    extreme_point at;
};

/// How the points stand to the nominal feature.
struct nominal_comparison {
    std::string words;
    std::vector<figure> deviations;       ///< of the fitted parameters from the nominal ones
    std::optional<double> profile_error;  ///< of the points about the nominal feature, where there is one
};

/// A fitted feature, with what the reports and pictures show of it. All numbers are finite.
struct fit_result {
    std::string file;  ///< as it is shown
    fit_kind const* kind = nullptr;
    std::string method;
    std::vector<std::string> conditions;
    unsigned int dimension = 0;  ///< of the points
    std::size_t count = 0;       ///< of the points
    std::shared_ptr<Geometry_Description const> feature;
    std::vector<figure> figures;
    unsigned int parameters = 0;             ///< 0 for a path
    std::optional<long> degrees_of_freedom;  ///< none for a path
    double form_error = 0, profile_error = 0, rms = 0;
    std::optional<double> standard_deviation;
    extreme_point highest, lowest;
    std::vector<contact_point> contacts;  ///< of a zone, by boundary and index; else empty
    bool has_standard_names = false;      ///< The reference feature is the one that the standard means.
    std::optional<double> tolerance;
    std::optional<nominal_comparison> nominal;

    // For pictures and tables only; the reports do without.
    std::vector<point> points;
    std::vector<double> residuals;
    std::vector<std::shared_ptr<Geometry_Description>> parts;  ///< of a composite
    std::vector<std::size_t> part_sizes;
    std::vector<point> targets;  ///< of a transform

    bool is_zone() const { return !contacts.empty(); }
    bool is_in_tolerance() const { return !tolerance || form_error <= *tolerance; }
    /// Features of the XY plane, though the points are in space.
    bool forgets_z() const;
};

/// Residuals of that size are what rounding of the coordinates leaves.
double rounding_of(std::vector<point> const& points);

/// Fits the kind to the points, which `sizes` parts by file. Returns true and sets all of `result` but its
/// file; returns false, `result` untouched, and says in `reason` why. `is_usage` then tells whether the
/// options are to blame and not the points.
bool fit_feature(fit_kind const& kind, std::vector<point> const& points,
                 std::vector<std::size_t> const& sizes, fit_conditions const& known, fit_result& result,
                 std::string& reason, bool& is_usage);

}  // namespace tvmath
