#pragma once

#include <vector>

#include "tvmath/ctl_ref.h"
#include "tvmath/export.h"
#include "tvmath/geometry_description.h"
#include "tvmath/scalar.h"
#include "tvmath/xml_binding.h"

inline namespace tvmath {

/// Features by the parameters that people and other programs give them, for exchange as XML.
///
/// Each class converts from the record and the class of its feature and back, by a cast and by
/// `GetDescription`. Lengths are in the caller's units, angles in radians, anticlockwise from +X. Numbers
/// that are not set are NaN, and are not written; a new value has no position and is 0 in all else. Numbers
/// have 8 significant digits in XML.
///
/// What the parameters cannot say is lost: the tilt of a flat feature in space, the scales and the handedness
/// of a system, the witness lines and the radius of an angle's dimension. Flat features in space lie parallel
/// to XY.
///
/// A value made of a null feature is trivial, a trivial value gives a null feature.
namespace TVXML {

struct TVMATH_API XmlPosition : Xml_Of<XmlPosition, tokens::Position> {
    double x = domain_error_value, y = domain_error_value, z = domain_error_value;

    XmlPosition() = default;
    /// The coordinates of a location or direction in its dimension.
    explicit XmlPosition(point const& p);
    static BindingTables const& bindings();

    point get_position() const override { return get_point(); }
    /// A location of 2 or 3 dimensions; trivial unless X and Y are set.
    virtual point get_point() const { return make_point(true); }
    operator point() const { return get_point(); }

    bool is_2d() const { return has_xy() && std::isnan(z); }
    bool is_3d() const { return has_xy() && !std::isnan(z); }

protected:
    bool has_xy() const { return !std::isnan(x) && !std::isnan(y); }
    point make_point(bool location) const;
};

struct TVMATH_API XmlPoint : Xml_Of<XmlPoint, tokens::Point, Point_Description, XmlPosition> {
    XmlPoint() = default;
    explicit XmlPoint(point const& p) { static_cast<XmlPosition&>(*this) = XmlPosition(p); }
    explicit XmlPoint(Point_Description const& d) : XmlPoint(d.position) {}
    void fill(Point_Description& d) const { d.position = get_point(); }
};

struct TVMATH_API XmlDirection : Xml_Of<XmlDirection, tokens::Direction, no_record, XmlPosition> {
    XmlDirection() = default;
    explicit XmlDirection(point const& p) { static_cast<XmlPosition&>(*this) = XmlPosition(p); }
    /// A direction.
    point get_point() const override { return make_point(false); }
};

struct TVMATH_API XmlLine : Xml_Of<XmlLine, tokens::Line, Segment_Description> {
    XmlPoint start, end;

    XmlLine() = default;
    explicit XmlLine(line const& l);
    explicit XmlLine(Segment_Description const& d) : XmlLine(d.geometry) {}
    static BindingTables const& bindings();

    /// The midpoint; trivial unless both ends are set.
    point get_position() const override;
    /// A slope in space is kept: the second axis is horizontal and the third one normal to both.
    explicit operator line() const;
};

/// A line that tells a distance.
struct TVMATH_API XmlDistance : Xml_Of<XmlDistance, tokens::Distance, Segment_Description, XmlLine> {
    XmlDistance() = default;
    explicit XmlDistance(line const& l) { static_cast<XmlLine&>(*this) = XmlLine(l); }
    explicit XmlDistance(Segment_Description const& d) : XmlDistance(d.geometry) {}
};

// Members that several classes have in common.

/// A long hole or an ellipse.
struct TVMATH_API XmlOval {
    XmlPoint center;
    double major_radius = 0, minor_radius = 0;  ///< Along the orientation, and across.
    double orientation = 0;
};

/// A rectangle or a gap.
struct TVMATH_API XmlBox {
    XmlPoint center;
    double width = 0, height = 0;  ///< Along the orientation, and across.
    double orientation = 0;
};

/// A placement without scale.
struct TVMATH_API XmlPlacement {
    XmlPosition position;
    double yaw = 0, pitch = 0, roll = 0;

    XmlPlacement() = default;
    /// Angles as `transform::yaw`, `pitch` and `roll` tell them; where the X axis is upright, so that its yaw
    /// counts as 0, the roll is the one that leaves the other axes as they are.
    explicit XmlPlacement(transform const& t);
    /// 2D for a 2D position without pitch and roll; trivial for a trivial position.
    transform placement() const;
};

struct TVMATH_API XmlCircle : Xml_Of<XmlCircle, tokens::Circle, Circle_Description> {
    XmlPoint center;
    double radius = 0;

    XmlCircle() = default;
    explicit XmlCircle(circle const& c);
    explicit XmlCircle(Circle_Description const& d) : XmlCircle(d.geometry) {}
    static BindingTables const& bindings();

    explicit operator circle() const;
};

/// An arc, anticlockwise from start to end. Both angles are within [-pi, pi).
struct TVMATH_API XmlArc : Xml_Of<XmlArc, tokens::Arc, Arc_Description, XmlCircle> {
    double start_angle = 0, end_angle = 0;

    XmlArc() = default;
    /// A clockwise arc, of a negative included angle, is taken from its end to its start: the same points.
    explicit XmlArc(Arc_Description const& d);
    static BindingTables const& bindings();

    /// The included angle is above 0 and at most 2 pi: equal angles, within the 1e-7 that the digits tell,
    /// are those of a full circle.
    void fill(Arc_Description& d) const;
};

struct TVMATH_API XmlEllipse : Xml_Of<XmlEllipse, tokens::Ellipse, Ellipse_Description>, XmlOval {
    XmlEllipse() = default;
    /// Oblique half-diameters are replaced by the true axes.
    explicit XmlEllipse(ellipse const& e);
    explicit XmlEllipse(Ellipse_Description const& d) : XmlEllipse(d.geometry) {}
    static BindingTables const& bindings();
    explicit operator ellipse() const;
};

/// Half the overall length and half the width.
struct TVMATH_API XmlSlot : Xml_Of<XmlSlot, tokens::Slot, Slot_Description>, XmlOval {
    XmlSlot() = default;
    explicit XmlSlot(slot const& s);
    explicit XmlSlot(Slot_Description const& d) : XmlSlot(d.geometry) {}
    static BindingTables const& bindings();
    explicit operator slot() const;
};

struct TVMATH_API XmlRectangle : Xml_Of<XmlRectangle, tokens::Rectangle, Rectangle_Description>, XmlBox {
    XmlRectangle() = default;
    explicit XmlRectangle(rectangle const& r);
    explicit XmlRectangle(Rectangle_Description const& d) : XmlRectangle(d.geometry) {}
    static BindingTables const& bindings();
    explicit operator rectangle() const;
};

/// The width is the length of the sides, the height their distance.
struct TVMATH_API XmlGap : Xml_Of<XmlGap, tokens::Gap, Gap_Description>, XmlBox {
    XmlGap() = default;
    explicit XmlGap(gap const& g);
    explicit XmlGap(Gap_Description const& d) : XmlGap(d.geometry) {}
    static BindingTables const& bindings();
    explicit operator gap() const;
};

struct TVMATH_API XmlAngle : Xml_Of<XmlAngle, tokens::Angle, Angle_Description> {
    XmlPoint vertex;
    double start_angle = 0, included_angle = 0;  ///< As in the record, from the first axis of its arc.
    double bisector_direction = 0;               ///< Of that axis.

    XmlAngle() = default;
    explicit XmlAngle(Angle_Description const& d);
    static BindingTables const& bindings();
    /// The dimension has the radius 1 and no witness lines.
    void fill(Angle_Description& d) const;
};

struct TVMATH_API XmlSystem : Xml_Of<XmlSystem, tokens::System, Transform_Description>, XmlPlacement {
    XmlSystem() = default;
    explicit XmlSystem(transform const& t) : XmlPlacement(t) {}
    explicit XmlSystem(Transform_Description const& d) : XmlSystem(d.geometry) {}
    static BindingTables const& bindings();
    explicit operator transform() const { return placement(); }
};

struct TVMATH_API XmlComposite : Xml_Of<XmlComposite, tokens::Composite, Composite_Description>,
                                 XmlPlacement {
    XmlComposite() = default;
    explicit XmlComposite(transform const& t) : XmlPlacement(t) {}
    explicit XmlComposite(Composite_Description const& d) : XmlComposite(d.geometry) {}
    static BindingTables const& bindings();
    explicit operator transform() const { return placement(); }
};

/// Two circles about one centre, of the radii of the outlines.
struct TVMATH_API XmlORing : Xml_Of<XmlORing, tokens::ORing, ORing_Description> {
    XmlPoint center;
    double inner_radius = 0, outer_radius = 0;

    XmlORing() = default;
    explicit XmlORing(ORing_Description const& d);
    static BindingTables const& bindings();
    void fill(ORing_Description& d) const;
};

/// The control points of a Bezier path. One without a value stands for a trivial point.
struct TVMATH_API XmlCurve : Xml_Of<XmlCurve, tokens::Open_Spline> {
    std::vector<XmlPoint> points;

    XmlCurve() = default;
    explicit XmlCurve(curve const& c);
    static BindingTables const& bindings();
    /// The mean of the points.
    point get_position() const override;
    explicit operator curve() const;
};

struct TVMATH_API XmlOpenSpline : Xml_Of<XmlOpenSpline, tokens::Open_Spline, OpenSpline_Description> {
    XmlCurve path;

    XmlOpenSpline() = default;
    explicit XmlOpenSpline(curve const& c) : path(c) {}
    explicit XmlOpenSpline(OpenSpline_Description const& d) : XmlOpenSpline(d.path) {}
    static BindingTables const& bindings();
    point get_position() const override { return path.get_position(); }
    explicit operator curve() const { return curve(path); }
    /// The length is computed afresh.
    void fill(OpenSpline_Description& d) const;
};

struct TVMATH_API XmlClosedSpline : Xml_Of<XmlClosedSpline, tokens::Closed_Spline, ClosedSpline_Description> {
    XmlCurve path;

    XmlClosedSpline() = default;
    explicit XmlClosedSpline(curve const& c) : path(c) {}
    explicit XmlClosedSpline(ClosedSpline_Description const& d) : XmlClosedSpline(d.path) {}
    static BindingTables const& bindings();
    point get_position() const override { return path.get_position(); }
    explicit operator curve() const { return curve(path); }
    /// Length, area and centroid are computed afresh.
    void fill(ClosedSpline_Description& d) const;
};

struct TVMATH_API XmlPlane : Xml_Of<XmlPlane, tokens::Plane, Plane_Description> {
    XmlPoint center;
    XmlDirection normal;
    double width = 0, height = 0;  ///< Of the part that is meant; 0 for a plane of ours, which has no bounds.

    XmlPlane() = default;
    explicit XmlPlane(plane const& p);
    explicit XmlPlane(Plane_Description const& d) : XmlPlane(d.geometry) {}
    static BindingTables const& bindings();
    /// Null without a normal.
    explicit operator plane() const;
};

struct TVMATH_API XmlSphere : Xml_Of<XmlSphere, tokens::Sphere, Sphere_Description> {
    XmlPoint center;
    double radius = 0;

    XmlSphere() = default;
    explicit XmlSphere(sphere const& s);
    explicit XmlSphere(Sphere_Description const& d) : XmlSphere(d.geometry) {}
    static BindingTables const& bindings();
    explicit operator sphere() const;
};

struct TVMATH_API XmlCylinder : Xml_Of<XmlCylinder, tokens::Cylinder, Cylinder_Description> {
    XmlPoint center;
    XmlDirection direction;  ///< Of the axis.
    double radius = 0, height = 0;

    XmlCylinder() = default;
    explicit XmlCylinder(cylinder const& c);
    explicit XmlCylinder(Cylinder_Description const& d) : XmlCylinder(d.geometry) {}
    static BindingTables const& bindings();
    /// Null without a direction.
    explicit operator cylinder() const;
};

struct TVMATH_API XmlCone : Xml_Of<XmlCone, tokens::Cone, Cone_Description> {
    XmlPoint point0, point1;
    double radius0 = 0, radius1 = 0;

    XmlCone() = default;
    explicit XmlCone(cone const& c);
    explicit XmlCone(Cone_Description const& d) : XmlCone(d.geometry) {}
    static BindingTables const& bindings();
    /// Null unless both ends are set.
    explicit operator cone() const;
};

/// The value of a record; the empty handle for a kind that has no XML: a NURBS, a number, a rotation,
/// measured points and a text.
TVMATH_API ctl::ref<XmlGeometry> make_xml(Geometry_Description const& record);
/// The record of a value, of the kind that the class stands for; the empty handle for a trivial value, one of
/// missing parts and a class without a record.
TVMATH_API ctl::ref<Geometry_Description> make_record(XmlGeometry const& value);

/// Writes the value as an element of its name: the attributes that are set, in the order of the tables, and
/// then the parts that are set. False when the writer refuses, or the class is none of those above.
TVMATH_API bool write_xml(kvxml::ISAXWriter& writer, XmlGeometry const& value);
/// The value as such an element; the empty handle for a class that is none of those above.
TVMATH_API ctl::ref<kv::XmlElement> make_element(XmlGeometry const& value);

/// The value that an element of one of the names above holds; the empty handle for another name. Members that
/// are missing keep their defaults, what has no place is passed over. A scalar may also stand as the text of
/// an element of its name. An "Open-Spline" is an `XmlOpenSpline`, unless it can only be an `XmlCurve`.
TVMATH_API ctl::ref<XmlGeometry> read_xml(kv::XmlElement const& element);
/// Reads the members of `value` from an element, whatever its name. False for a class that is none of those
/// above.
TVMATH_API bool read_xml(kv::XmlElement const& element, XmlGeometry& value);

}  // namespace TVXML
}  // namespace tvmath
