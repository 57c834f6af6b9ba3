#pragma once

#include <vector>

#include "tvmath/export.h"
#include "tvmath/geometry_description.h"
#include "tvmath/plane.h"
#include "tvmath/point.h"

inline namespace tvmath {

/// A feature that some part of the application holds and hands out as a record.
struct TVMATH_API GeometryGetter {
    virtual ~GeometryGetter();
    /// Assigns the feature to `record`; false, with nothing changed, when it is of another kind.
    virtual bool get(Geometry_Description& record) const = 0;
    /// The kind of the feature.
    virtual unsigned long long type() const = 0;
};

// Queries over a record of any kind. Each returns true and sets its output; it returns false, output
// untouched, for a kind that has no such thing, for a null feature (a trivial shape, an empty list) and when
// the answer would not be finite. The forms that take a `GeometryGetter` ask it for its record first, and are
// false when it gives none. A class of the user's own that is derived from a record counts as that record.

/// The points by which a feature takes part in the construction of another:
/// - Point: its position. Open data, closed data, point cloud: the points that are not trivial.
/// - Segment, Arc, open spline, NURBS curve: both ends, from start to end.
/// - Every other kind: its centre point.
TVMATH_API bool construct_points(Geometry_Description const& feature, std::vector<point>& points);
TVMATH_API bool construct_points(GeometryGetter const& feature, std::vector<point>& points);

/// The one point that stands for the feature:
/// - Point: its position.
/// - Shapes of the transform family, and the placement of an O-ring or a text: the origin.
/// - Arc: the centre of its circle. Angle: the vertex. Cone: the middle of its axis.
/// - Closed spline, NURBS curve: the stored `centroid` or `center`. Where that is trivial, and for an open
///   spline: the centre of the extent in XY of the path, at the mean z of its control points when it is 3D.
/// - Open data, closed data, point cloud: the mean of the points.
/// - Number, Rotation: none (false).
TVMATH_API bool get_center_point(Geometry_Description const& feature, point& center);
TVMATH_API bool get_center_point(GeometryGetter const& feature, point& center);

/// The direction of the feature, of length 1:
/// - Segment, Ellipse, Rectangle, Gap, Slot, Transform, Composite, Text: along its first axis.
/// - Plane: the normal. Cylinder, Cone: along the axis. Arc, Angle: the bisector.
/// - Every other kind, and an axis of length 0: none (false).
TVMATH_API bool get_direction(Geometry_Description const& feature, point& direction);
TVMATH_API bool get_direction(GeometryGetter const& feature, point& direction);

/// The plane in which the feature lies, through its centre:
/// - Plane: itself.
/// - Circle, Arc, Ellipse, Rectangle, Gap, Slot, O-ring, Angle, Transform, Composite, Text: the plane of the
///   first and the second axis; for a 2D one the plane z = 0, with its normal along +Z.
/// - Cylinder, Cone: the plane across the axis through its middle.
/// - Every other kind, and axes that span no plane: none (false).
TVMATH_API bool get_plane(Geometry_Description const& feature, plane& through);
TVMATH_API bool get_plane(GeometryGetter const& feature, plane& through);

/// For each of the points the nearest point of the feature, in order: a location, in the dimension of the
/// feature; the trivial point where a point is trivial or not finite. What is near is measured in space, a 2D
/// point or feature lying in the plane z = 0; of several nearest points the answer is one.
/// - Point, Transform, Composite, Text: the position or origin. Angle: the vertex.
/// - Segment: the segment between its ends. Arc: the arc between its ends.
/// - Circle, Ellipse, Rectangle, Slot: the outline. Gap: its two sides.
/// - Plane: the infinite plane. Sphere: the surface. Cylinder, Cone: the lateral surface between the ends.
///   All of these are 3D, and those with a radius are round, as their `radius` says.
/// - O-ring: the nearer of both outlines, along the ray from the centre in the plane of the placement.
/// - Open spline, closed spline, NURBS curve: the path. Weights of a NURBS curve must be above 0.
/// - Open data, closed data: the polyline, closed for the latter; trivial points break it. Point cloud: the
///   nearest of its points.
/// - Number, Rotation: none (false).
///
/// `nearest` may be the list of the points itself.
TVMATH_API bool calc_nearest_points(Geometry_Description const& feature, std::vector<point> const& points,
                                    std::vector<point>& nearest);
TVMATH_API bool calc_nearest_points(GeometryGetter const& feature, std::vector<point> const& points,
                                    std::vector<point>& nearest);

}  // namespace tvmath
