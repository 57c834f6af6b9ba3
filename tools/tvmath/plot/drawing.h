#pragma once

#include <string>
#include <vector>

#include "tvmath/curve.h"
#include "tvmath/geometry_description.h"
#include "tvmath/real_rect.h"

inline namespace tvmath {

/// What a stroke of a drawing stands for.
enum class stroke_role {
    outline,      ///< the shape itself, as a polyline
    bezier,       ///< the shape itself, as a Bezier path
    parallel,     ///< a copy at an offset
    bounds,       ///< the bounding rectangle of the shape
    wide_bounds,  ///< the bounding rectangle of the shape with its widest offset
    axis,         ///< a basis vector, a witness line, a hidden circle
    control,      ///< the polygon of control points
    mark          ///< single points: centre, foci, measured points
};

/// The name of a role, as it stands in CSV: "outline", "wide bounds", ...
char const* role_name(stroke_role role);

struct stroke {
    stroke_role role;
    curve path;           ///< Control points when the role is `bezier`, else vertices.
    bool closed = false;  ///< The last point is joined to the first.
};

/// One shape as strokes in its own coordinates, seen along -Z.
struct drawing {
    std::string title;
    std::vector<stroke> strokes;
};

/// Extent of all strokes in XY, without points that are not finite. The null rectangle when there is none.
CRealRect extent_of(drawing const& d);

/// Draws the record: outline, Bezier form, parallels at the offsets, bounding rectangles, axes. Returns true
/// and sets the strokes of `d`; returns false, `d` untouched, for a kind that has no shape and for a null
/// shape.
bool draw_record(Geometry_Description const& record, std::vector<double> const& offsets, drawing& d);

/// A table of all strokes: a header, then a row for each point: number of the stroke, role, closed (1 or 0),
/// x, y and, for a 3D point, z. Bezier strokes list their control points.
std::string csv_text(drawing const& d);

}  // namespace tvmath
