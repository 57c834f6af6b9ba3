#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "fit_options.h"
#include "tvmath/geometry_description.h"
#include "tvmath/point.h"

inline namespace tvmath {

struct fit_input {
    std::vector<point> const& points;
    fit_conditions const& known;
    std::vector<std::size_t> sizes;  ///< of the parts of `points` that came from one file each
};

/// What the boundaries of a zone are called on which the highest and the lowest residuals lie. Null for one
/// that settles nothing.
struct boundary_names {
    char const* high = nullptr;
    char const* low = nullptr;
};

/// What a fit gives.
struct fitted_feature {
    std::shared_ptr<Geometry_Description> record;
    std::string method;
    /// Unknowns that the points decide; below 0 where the word has no meaning, as for a path.
    long unknowns = -1;
    /// Equations that a point gives.
    long equations = 1;
    /// Parameters of the feature; 0 until they are known.
    unsigned int parameters = 0;
    /// Left empty by a fit whose record `calculate_errors` measures.
    std::vector<double> residuals;
    boundary_names boundaries;         ///< of a zone
    std::optional<double> zone_width;  ///< where the fit tells it to more digits than the residuals do
    std::vector<std::shared_ptr<Geometry_Description>> parts;  ///< of a composite, at their places
    /// A reason of its own, where the kind's general one does not serve; a usage error if `is_usage`.
    std::string reason;
    bool is_usage = false;
};

/// The names of form errors in the standards.
struct form_names {
    char const* word;       ///< "roundness"; null for a kind without a name of its own
    char const* symbol;     ///< "RON", before t, p, v and q
    char const* standard;   ///< "ISO 12181"
    char const* reference;  ///< the standard's code of the feature that the kind fits: "LSCI", "MZCI"
};

/// One row of the table of all kinds.
struct fit_kind {
    char const* name;
    char const* alias;  ///< another spelling, or null
    std::size_t least_points;
    bool in_space;         ///< Needs points with x, y and z.
    bool takes_all_files;  ///< One fit of all files together.
    unsigned options;
    unsigned long long record;  ///< type value of what comes out
    form_names form;
    char const* when_singular;
    bool (*fit)(fit_input const&, fitted_feature&);

    /// "a circle", "an ellipse".
    std::string named() const;
};

std::vector<fit_kind> const& fit_kinds();
/// The kinds of `tvmath zone`, which have contact points.
std::vector<fit_kind> const& zone_kinds();
/// Null when there is none of that name.
fit_kind const* find_fit_kind(std::string const& name);
fit_kind const* find_zone_kind(std::string const& name);
/// For the help.
std::string fit_kinds_help();
std::string zone_kinds_help();

// The fits of the table. Each sets `fitted` but for what follows from its record; false when the points
// determine no such feature.
bool fit_point(fit_input const& in, fitted_feature& fitted);
bool fit_line(fit_input const& in, fitted_feature& fitted);
bool fit_circle(fit_input const& in, fitted_feature& fitted);
bool fit_arc(fit_input const& in, fitted_feature& fitted);
bool fit_ellipse(fit_input const& in, fitted_feature& fitted);
bool fit_rectangle(fit_input const& in, fitted_feature& fitted);
bool fit_slot(fit_input const& in, fitted_feature& fitted);
bool fit_gap(fit_input const& in, fitted_feature& fitted);
bool fit_ring(fit_input const& in, fitted_feature& fitted);
bool fit_oring(fit_input const& in, fitted_feature& fitted);
bool fit_plane(fit_input const& in, fitted_feature& fitted);
bool fit_sphere(fit_input const& in, fitted_feature& fitted);
bool fit_cylinder(fit_input const& in, fitted_feature& fitted);
bool fit_cone(fit_input const& in, fitted_feature& fitted);
bool fit_open_spline(fit_input const& in, fitted_feature& fitted);
bool fit_closed_spline(fit_input const& in, fitted_feature& fitted);
bool fit_open_nurb(fit_input const& in, fitted_feature& fitted);
bool fit_closed_nurb(fit_input const& in, fitted_feature& fitted);
bool fit_transform(fit_input const& in, fitted_feature& fitted);
bool fit_whole_composite(fit_input const& in, fitted_feature& fitted);
bool fit_zone_line(fit_input const& in, fitted_feature& fitted);
bool fit_zone_circle(fit_input const& in, fitted_feature& fitted);
bool fit_inscribed_circle(fit_input const& in, fitted_feature& fitted);
bool fit_circumscribed_circle(fit_input const& in, fitted_feature& fitted);
bool fit_zone_plane(fit_input const& in, fitted_feature& fitted);
bool fit_seating_plane(fit_input const& in, fitted_feature& fitted);
bool fit_circumscribed_sphere(fit_input const& in, fitted_feature& fitted);

}  // namespace tvmath
