#pragma once

#include "tvmath/array.h"
#include "tvmath/circle.h"
#include "tvmath/export.h"
#include "tvmath/point.h"
#include "tvmath/real_rect.h"
#include "tvmath/transform.h"

inline namespace tvmath {

/// A cylinder: the unit cylinder, radius 1 about Z from z = -1 to z = 1, carried by the transform it derives
/// from.
///
/// `basis(0)` is the middle of the axis, `basis(1)` and `basis(2)` are radial, `basis(3)` is half the axis.
/// Lengths are in the caller's units, angles in radians. The default is the null cylinder (`is_trivial()`).
class TVMATH_API cylinder : public transform {
public:
    cylinder() = default;
    explicit cylinder(transform const& t) : transform(t) {}
    /// `axis` may have any length but 0, which leaves a cylinder of no extent with NaN in its inverse map.
    /// The first radial vector is the image, across the axis, of the coordinate axis most nearly
    /// perpendicular to it. A 2D `center` lies at z = 0.
    cylinder(double radius, double height, point center, point axis);
    /// A cylinder through five points, by `cylinder_fit`.
    cylinder(point a, point b, point c, point d, point e);

    double radius() const { return size(1); }
    double height() const { return 2 * size(3); }
    double perimeter() const { return 2 * pi * radius(); }  ///< Of one end.
    double area() const;                                    ///< Of the lateral surface, without the ends.
    double volume() const;
    /// Angle of the axis above the XY plane, from -pi / 2 to pi / 2.
    double pitch() const;
    /// Angle of the axis in the XY plane; 0 when it points along Z (x and y below 1e-10).
    double yaw() const;
    /// The end circles at `basis(0)` + `basis(3)` and `basis(0)` - `basis(3)`, in planes normal to the axis.
    /// Null for the null cylinder.
    circle get_top() const;
    circle get_bottom() const;
    /// Exact extent in XY.
    CRealRect get_bounding_rect() const;

    /// Outlines for a drawing as seen along -Z, as polylines: the top end and the bottom end (each closed,
    /// its first point repeated at the end) and the two silhouette lines from bottom to top, left and right
    /// of the axis. With `visible_only` the end that faces away keeps only the half that the body does not
    /// hide, from left to right. When the axis points along Z there are no silhouette lines and, with
    /// `visible_only`, no hidden end.
    void render_cylinder(idioms::array<point>& top, idioms::array<point>& bottom, idioms::array<point>& left,
                         idioms::array<point>& right, bool visible_only) const;
};

}  // namespace tvmath
