#pragma once

#include "calibrate/calibrate_result.h"
#include "fit/fit_plot_parts.h"
#include "plot/canvas.h"

inline namespace tvmath {

/// "pixels" or "machine units": that of the displacements.
char const* error_unit(corrector_kind kind);

/// The displacements of the corrector over the screen, of telecentricity over what was seen.
void draw_field(canvas& c, calibrate_result const& result, spot corner, double width, double height);

/// A small dot at the place of each observation.
void draw_places(canvas& c, plot_panel const& panel, std::vector<observation> const& observations);

/// The errors of the observations, without the corrector and with it, one below the other.
void draw_errors(canvas& c, calibrate_result const& result, spot corner, double width, double height);

}  // namespace tvmath
