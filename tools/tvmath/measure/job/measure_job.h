#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "exit_status.h"
#include "fit/fit_kinds.h"
#include "measure/measure_request.h"
#include "tvmath/flatness_corrector.h"
#include "tvmath/geometry_description.h"
#include "tvmath/screen_corrector.h"
#include "tvmath/transform.h"

inline namespace tvmath {

/// How the grey changes across an edge along the outward normal, which points to the right of a line as one
/// looks at the screen.
enum class edge_sense { any, rising, falling };

/// How edges are looked for. Lengths in pixels.
struct edge_settings {
    double search = 10;      ///< to either side of the nominal place
    double spacing = 12;     ///< of the places along the outline
    double contrast = 0.03;  ///< least change of the grey across an edge; white is 1
    double outliers = 3.5;   ///< in robust standard deviations; 0 keeps all points
    edge_sense sense = edge_sense::any;
};

/// What a number of the result may be.
struct tolerance_limit {
    /// "form", "profile", "standard_deviation"; else the `figure_key` of a figure that the nominal feature
    /// has: "radius", "end_radius", of angles "angle_deg", in degrees.
    std::string figure;
    /// Of the deviation from nominal. Of errors, and of a location such as "center", whose deviation is its
    /// distance to the nominal one, `lower` is 0.
    double lower = 0, upper = 0;
};

/// One feature to be measured.
struct measure_tool {
    std::string name;  ///< "circle 2", the second circle of the job, when the user gave none
    fit_kind const* kind = nullptr;
    std::string words;  ///< as the user wrote the feature
    /// Its nominal place and size in pixels of the image's plane.
    std::shared_ptr<Geometry_Description const> place;
    std::optional<double> angle;  ///< of the normal at a point; found in the image when it is not given
    edge_settings edges;
    /// What it should be, in the frame of the results; null when that was not said.
    std::shared_ptr<Geometry_Description const> nominal;
    std::string nominal_words;
    std::vector<tolerance_limit> limits;
};

/// All that is to be measured in an image, and where its pixels lie.
struct measure_job {
    /// Of the results. Unless the user gave one "px" without a transform, else empty.
    std::string unit;
    /// From places on the screen, in pixels from the middle of the image, to those of the results. Without
    /// one results are in the plane of the image.
    std::optional<transform> from_screen;
    screen_corrector screen;
    flatness_corrector flatness;
    std::optional<double> z;  ///< height at which the image was taken; makes the points 3D
    std::vector<measure_tool> tools;

    /// Length of a pixel in the results: the side of a square of its area; 1 without a transform.
    double pixel_length() const;
};

/// Reads the job of the request: its file, or the words of the short form. On `done` sets `job`. Otherwise
/// says in one line, which begins with the program or the file, what is wrong.
exit_status read_job(measure_request const& request, measure_job& job, std::string& reason);

}  // namespace tvmath
