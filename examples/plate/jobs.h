#pragma once

#include <string>

namespace plate {

/// The job of the chart: a circle for each dot, row by row from the upper left, results in pixels from the
/// middle.
std::string chart_job();
/// Where the dots truly lie, in the order of the tools: x,y in pixels from the middle, y downward.
std::string chart_nominal();

/// What a picture of the plate demands of its job.
struct plate_picture {
    bool openings_are_bright;
    bool is_truth;  ///< The nominal features are those that were made, not those that were drawn.
    // Tolerances in mm and degrees: sizes and places, forms, profiles of lines, directions. None of form and
    // profile for 0.
    double size, form, profile, direction;
};
/// The job of the plate: results in mm from the middle, y upward, corrected by "lens.txt".
std::string plate_job(plate_picture const& picture);

}  // namespace plate
