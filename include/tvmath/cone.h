#pragma once

#include <vector>

#include "tvmath/circle.h"
#include "tvmath/curve.h"
#include "tvmath/export.h"
#include "tvmath/point.h"
#include "tvmath/real_rect.h"
#include "tvmath/transform.h"

inline namespace tvmath {

/// A frustum of a cone between two circular ends. A plain record and no transform, because no linear map of
/// one unit shape has two radii.
///
/// Lengths are in the caller's units, angles in radians. The default is the null cone (`is_trivial()`).
class TVMATH_API cone {
public:
    point base;              ///< Centre of the first end.
    point top;               ///< Centre of the second end.
    double base_radius = 0;  ///< Radius at `base`.
    double top_radius = 0;   ///< Radius at `top`.
    point axis;              ///< Unit direction from `base` to `top`.

    cone() = default;
    cone(point a, point b, double ra, double rb);

    bool is_trivial() const { return base.is_trivial(); }
    /// Midpoint of both ends; trivial for the null cone.
    point center() const;
    /// Angle between the axis and the surface, positive when the cone widens towards the top, from -pi / 2 to
    /// pi / 2. `domain_error_value` for the null cone.
    double angle() const;
    /// Change of the radius for each unit along the axis. `domain_error_value` for the null cone and for ends
    /// that are equal points.
    double slope() const;
    /// The tip; trivial for equal radii, and for the null cone.
    point vertex() const;
    /// Angle of the axis above the XY plane; that of Z for the null cone.
    double pitch() const;
    /// Angle of the axis in the XY plane; 0 when it points along Z (x and y below 1e-10).
    double yaw() const;
    /// The circles at `base` and at `top`, in planes normal to the axis. Both null for the null cone.
    void get_ends(circle& at_base, circle& at_top) const;
    /// Exact extent in XY; the null rectangle for the null cone.
    CRealRect get_bounding_rect() const;
    /// Right-handed frame with its origin at `base` and Z along the axis. Trivial for the null cone.
    transform make_transform() const;

    /// Carries both ends and the axis through the transform. The radii are scaled by the length of the image
    /// of its first axis, so a transform that scales unevenly is followed only as far as a frustum can.
    cone& operator*=(transform const& t);
    /// The same through the inverse of the transform.
    cone& operator/=(transform const& t);
    /// Moves both ends by the coordinates of `p`.
    cone& operator+=(point const& p);
    cone& operator-=(point const& p);

    /// Appends Bezier paths for a drawing as seen along -Z: both ends (13 control points each), then the two
    /// silhouette lines from base to top (4 each), left and right of the axis, left out when one end hides
    /// the other. Nothing for the null cone.
    void render_cone(std::vector<curve>& paths) const;
};

}  // namespace tvmath
