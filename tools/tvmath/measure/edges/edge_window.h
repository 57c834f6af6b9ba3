#pragma once

#include "measure/job/measure_job.h"
#include "tvmath/image.h"
#include "tvmath/point.h"

inline namespace tvmath {

/// Where an edge is looked for: a window about `place` whose columns run along `normal`, the direction from
/// the inside of a feature to its outside. All in pixels of the image's plane.
struct edge_window {
    point place;
    point normal;                      ///< a unit direction
    double width = 16;                 ///< along the edge
    double inward = 10, outward = 10;  ///< how far from the place the edge may lie, to either side
    /// Rows that an edge across the normal climbs over the width of the window. Two rows even out the error
    /// that depends on where the edge lies between the rows, as the slanted edge does in ISO 12233: what is
    /// left is a tenth of it.
    double climb = 0;
    /// Curvature of the edge, positive where its centre is inside. The window is bent with it, because the
    /// edge strength is a mean over several columns.
    double bend = 0;
};

/// An edge in a window.
struct found_edge {
    point place;          ///< on the middle column, in the plane of the image
    double contrast = 0;  ///< change of the grey along the normal
    double bend = 0;      ///< curvature of the edge, as that of a window
};

/// Finds the strongest edge of that sense and contrast to a fraction of a pixel. False, `found` untouched,
/// when there is none, and when the window leaves the image: it looks somewhat farther than the edge may lie,
/// to see all of the edge's profile, but less far at the border of the image.
///
/// Means of the edge strength along the rows tell the row, a maximum of them, the quadratic of `lsf_edge2`
/// the place on it.
bool find_edge(image const& scene, edge_window const& window, edge_settings const& settings,
               found_edge& found);

}  // namespace tvmath
