#pragma once

#include <span>
#include <vector>

#include "axial_points.h"
#include "axial_surface.h"

inline namespace tvmath {

/// What a fit of a cylinder or cone is told about its axis.
struct axial_task {
    axial_freedom free;
    xyz axis;    ///< unit direction; meant when the tilt is not free
    xyz center;  ///< a point of the axis, in local coordinates; meant when the shift is not free
    std::vector<axial_surface> starts;  ///< given ones, tried before those that the points suggest
};

/// Holds the axis to pass through `center` and to have the direction of `axis`; what is no pointer to a
/// point leaves it free. False for no points, for a center that is not finite, and for an axis without
/// direction.
bool hold_axis(axial_task& task, local_points const& local, point const* center, point const* axis);

/// The part of the axis beside the points, by places along w from the origin.
struct axial_fit_result {
    bool found = false;
    axial_surface surface;
    double low = 0, high = 0;
};

/// The surface of least squares of orthogonal distances, of all starts the best. Not found when the points
/// are too few, leave the surface undetermined or are as well fitted by a plane, when no start settles,
/// and when the surface has no extent along its axis or its tip lies amidst the points.
axial_fit_result fit_axial_surface(local_points const& local, axial_task const& task);

}  // namespace tvmath
