#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "fit/fit_result.h"
#include "measure/edges/measure_frame.h"
#include "measure/job/measure_job.h"
#include "tvmath/image.h"

inline namespace tvmath {

/// An edge point.
struct edge_mark {
    point seen;           ///< in the plane of the image
    point place;          ///< in the frame of the results
    double residual = 0;  ///< from the fitted feature, in the units of the results, positive outside
    double contrast = 0;  ///< change of the grey along the outward normal
    bool kept = true;     ///< Took part in the fit.
};

/// A limit and how the result stands to it.
struct tolerance_check {
    tolerance_limit limit;
    double value = 0;  ///< the deviation or the error that the limit speaks of
    bool passed = false;
};

/// A measured feature.
struct measured_tool {
    measure_tool const* tool = nullptr;  ///< of the job
    std::string reason;                  ///< why there is no feature; else empty
    /// The feature through the points that were kept, with its errors and its deviations from nominal.
    std::optional<fit_result> fit;
    std::vector<edge_mark> edges;
    std::size_t stations = 0;  ///< places where an edge was looked for
    std::vector<tolerance_check> checks;

    std::size_t dropped() const;
    /// The largest magnitude of a residual among the points that were dropped; 0 for none. A form error that
    /// is too small to be true shows here: a dent of the part, or dust on it, is beside the outline too.
    double farthest_dropped() const;
    /// True for a feature that was found and keeps all its limits.
    bool passed() const;
};

/// Measures one tool. The image is only read.
measured_tool measure(image const& scene, measure_frame const& frame, measure_tool const& tool);

}  // namespace tvmath
