#pragma once

#include "tvmath/ellipse.h"

inline namespace tvmath {

/// What the points of an ellipse and of its parallels are made of, for the parameter t with c = cos t and s =
/// sin t: the point center + c u + s v and the outward normal, not of unit length, c normal_v + s normal_u.
struct ellipse_frame {
    point center, u, v;
    point plane_normal;        ///< Unit vector, or of length 0 when u and v are parallel.
    point normal_u, normal_v;  ///< 3D directions.

    explicit ellipse_frame(ellipse const& e) : center(e.basis(0)), u(e.basis(1)), v(e.basis(2)) {
        center.promote2d();  // the null ellipse stands at the origin
        // Unit vectors first, so that the products of very small or large axes keep their digits.
        plane_normal = normalize(cross(normalize(u), normalize(v)));
        // The tangent c v - s u times the plane's normal, which is linear in c and s.
        normal_u = cross(plane_normal, u);
        normal_v = cross(v, plane_normal);
    }
};

}  // namespace tvmath
