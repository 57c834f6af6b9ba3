#pragma once

#include "fit/fit_result.h"
#include "measure/edges/measure_frame.h"
#include "measure/job/measure_job.h"

inline namespace tvmath {

/// Gives a fitted line or arc the ends of its nominal feature or, without one, of its tool: the points on it
/// that are closest to these. The edge points end somewhere within, which says nothing about the part. A
/// rectangle without a nominal one gets the width and height that the tool calls so. Other kinds stay.
void set_extent(measure_frame const& frame, measure_tool const& tool, fit_result& fit);

}  // namespace tvmath
