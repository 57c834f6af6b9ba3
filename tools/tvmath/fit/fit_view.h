#pragma once

#include <string>
#include <vector>

#include "fit_result.h"
#include "plot/canvas.h"
#include "plot/outline.h"

inline namespace tvmath {

/// What the main panel of a picture shows of the points.
enum class view_style {
    whiskers,  ///< residuals as lines from the outline, enlarged
    map        ///< residuals as colours of the points, where these cover a surface
};

/// One measured point in a view: the place of the feature below it and the way to the positive side.
struct view_point {
    spot foot, out;    ///< `out` has length 1, or 0 where there is no way
    double along = 0;  ///< the natural coordinate of the feature: an angle in degrees, a length, an index
};

/// A fitted feature in the plane of a picture. Places count from `origin`, so that a feature far from the
/// machine's zero keeps its digits.
struct fit_view {
    view_style style = view_style::whiskers;
    bool is_even = true;  ///< Both axes have the same scale.
    spot origin;
    std::string x_label = "x", y_label = "y";
    std::vector<outline> outlines;   ///< of the feature; each carries a zone
    std::vector<outline> guides;     ///< centre lines and other lines, thin
    std::vector<spot> marks;         ///< centres
    std::vector<view_point> points;  ///< in the order of the residuals
    std::string along_label;
    bool along_is_angle = false;  ///< In degrees.
    bool is_sequence = true;      ///< Neighbours along are neighbours on the feature: the profile is a line.
    double room = 0;              ///< Greatest length that an enlarged residual may have; 0: drawn true.
    std::string above = "outside", below = "inside";  ///< what positive and negative residuals mean
};

fit_view view_of(fit_result const& result);

/// Of a feature in the plane with its points. False, `view` untouched, for a kind without an outline there.
bool planar_view_of(Geometry_Description const& record, std::vector<point> const& points, point const& origin,
                    fit_view& view);
/// Of the kinds in space.
fit_view solid_view_of(fit_result const& result);

/// Extent of places; begins empty.
struct view_extent {
    spot low = {1, 1}, high = {0, 0};

    bool is_empty() const { return low.x > high.x; }
    void include(spot p);
    void include(outline const& o) {
        for (spot const& p : o.at) include(p);
    }
    double width() const { return is_empty() ? 0 : high.x - low.x; }
    double height() const { return is_empty() ? 0 : high.y - low.y; }
};

}  // namespace tvmath
