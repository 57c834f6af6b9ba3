#pragma once

#include <vector>

#include "measure/edges/measure_frame.h"
#include "measure/report/measure_verdict.h"
#include "plot/outline.h"

inline namespace tvmath {

/// An edge point in the plane of the image.
struct drawn_edge {
    spot at;
    bool kept = true;
    spot foot;  ///< on the feature
    spot away;  ///< from the foot to the point, not enlarged; 0 where there is no feature to start from
};

/// A tool as it is drawn over the image, in the image's plane: y downward.
struct drawn_feature {
    measured_tool const* tool = nullptr;
    verdict state = verdict::pass;
    std::vector<outline> outlines;  ///< of the fitted feature; where it was looked for when there is none
    std::vector<spot> marks;        ///< points, and the middle of round features
    std::vector<drawn_edge> edges;

    /// Green: Also without limits there is nothing to complain of.
    bool is_good() const { return state == verdict::pass || state == verdict::without_limits; }
};

/// All that is drawn over an image.
struct measure_drawing {
    std::vector<drawn_feature> features;
    /// How many times the residuals are enlarged: 1, 2 or 5 times a power of ten. 0 when they are no more
    /// than rounding.
    double factor = 0;
    /// The longest of them would then be so many pixels long.
    double longest = 0;

    spot tip(drawn_edge const& e) const { return e.foot + factor * e.away; }
    bool has_dropped() const;
};

/// The features in the image, their residuals up to `room` pixels long, but less where features are small.
measure_drawing make_measure_drawing(measure_frame const& frame, measure_report const& report, double room);

/// The largest of 1, 2 and 5 times a power of ten that is no more than `x`, which is above 0.
double round_125_below(double x);

}  // namespace tvmath
