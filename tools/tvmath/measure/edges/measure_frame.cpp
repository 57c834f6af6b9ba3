#include "measure/edges/measure_frame.h"

#include <cmath>

inline namespace tvmath {

measure_frame::measure_frame(measure_job const& job, unsigned int width, unsigned int height)
    : job_(job), middle_(false, width / 2.0, height / 2.0), pixel_length_(job.pixel_length()) {}

point measure_frame::to_result(point const& seen) const {
    point const on_screen = seen - middle_;
    point place = on_screen * job_.screen;
    if (job_.z) {
        place.promote3d();
        place.z() = *job_.z + job_.flatness.get_focus_correction(on_screen);
    }
    place = job_.from_screen ? place * *job_.from_screen : place + middle_;
    if (!job_.z) place.project2d();
    return place;
}

point measure_frame::to_image(point const& place) const {
    point target = job_.from_screen ? place / *job_.from_screen : place - middle_;
    target.project2d();
    point seen = target;
    // Each round leaves of the error the share by which the distortion changes over a pixel.
    for (int round = 0; round < 30; ++round) {
        point const next = seen + (target - seen * job_.screen);
        bool const is_near = distance2d(next, seen) < 1e-6;
        seen = next;
        if (is_near || !std::isfinite(seen.x()) || !std::isfinite(seen.y())) break;
    }
    return seen + middle_;
}

}  // namespace tvmath
