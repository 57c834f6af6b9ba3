#pragma once

#include "measure/job/measure_job.h"
#include "tvmath/point.h"

inline namespace tvmath {

/// Where places of the image's plane lie in the frame of the results. The seen place gets its height from the
/// flatness correction, then the screen correction moves it, then the transform of the job carries it.
class measure_frame {
public:
    /// Of an image of that size.
    measure_frame(measure_job const& job, unsigned int width, unsigned int height);

    /// The place in the results of a 2D place of the image; 3D when the job says a height.
    point to_result(point const& seen) const;
    /// The way back, to drawing accuracy: 2D. Source: fixed-point iteration, which converges where the
    /// distortion changes by less than a pixel per pixel.
    point to_image(point const& place) const;

    double pixel_length() const { return pixel_length_; }

private:
    measure_job const& job_;
    point middle_;  // a direction, so that subtracting it leaves locations
    double pixel_length_;
};

}  // namespace tvmath
