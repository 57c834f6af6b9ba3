#pragma once

#include <vector>

#include "tvmath/curve.h"
#include "tvmath/export.h"
#include "tvmath/real_rect.h"
#include "tvmath/transform.h"

inline namespace tvmath {

/// A sphere: the unit sphere carried by the transform it derives from.
///
/// `basis(0)` is the centre, `basis(1)` to `basis(3)` are the radii along X, Y and Z. Lengths are in the
/// caller's units. The default is the null sphere (`is_trivial()`).
class TVMATH_API sphere : public transform {
public:
    sphere() = default;
    explicit sphere(transform const& t) : transform(t) {}
    /// A sphere about the origin; a radius of 0 leaves infinities in the inverse map.
    explicit sphere(double radius);
    sphere(double radius, point center);
    /// The sphere through four points, by `sphere_fit`.
    sphere(point a, point b, point c, point d);

    double radius() const { return size(1); }
    double surface_area() const;
    double volume() const;
    /// Exact extent in XY.
    CRealRect get_bounding_rect() const;
    /// Appends four Bezier paths in space for a drawing as seen along -Z: first the outline circle (13
    /// control points), then, for each axis of the sphere, the half of the great circle normal to it that
    /// lies above the centre (7 control points each). For an axis along Z that circle is the outline, and
    /// half of it is repeated, so that every sphere has as many paths.
    void render_bezier_equators(std::vector<curve>& paths) const;
};

}  // namespace tvmath
