#pragma once

#include <typeinfo>
#include <vector>

#include "tvmath/array.h"
#include "tvmath/circle.h"
#include "tvmath/cone.h"
#include "tvmath/ctl_ref.h"
#include "tvmath/curve.h"
#include "tvmath/cylinder.h"
#include "tvmath/ellipse.h"
#include "tvmath/export.h"
#include "tvmath/gap.h"
#include "tvmath/line.h"
#include "tvmath/nurb.h"
#include "tvmath/plane.h"
#include "tvmath/point.h"
#include "tvmath/real_rect.h"
#include "tvmath/rectangle.h"
#include "tvmath/ring.h"
#include "tvmath/slot.h"
#include "tvmath/sphere.h"
#include "tvmath/transform.h"
#include "tvmath/wide_string.h"

inline namespace tvmath {

/// A feature as the application holds it: any kind behind one interface, copied, moved and created by a
/// 64-bit type value. Each kind owns one bit of that value, so values combine into masks.
///
/// Records are values for one thread at a time; the handles in them share storage. Lengths are in the
/// caller's units, angles in radians.
struct TVMATH_API Geometry_Description {
    virtual ~Geometry_Description();
    /// The bit of this kind.
    virtual unsigned long long type() const = 0;
    /// A new record of the same kind with the same contents, owned by the caller.
    virtual Geometry_Description* create_copy() const = 0;
    /// Takes over the contents of a record of the same kind. False, with nothing changed, for another kind.
    virtual bool assign(Geometry_Description const& other) = 0;
    /// Moves the record. Shapes stay right-handed: a mirroring transform reverses their second axis, and the
    /// sense of an arc's or an angle's angles with it. Measured lengths and areas that are stored beside a
    /// shape stay as they are, also under a scaling.
    virtual void apply_transform(transform t) = 0;
    /// Adds to the value of a number or rotation; does nothing to other kinds.
    virtual void apply_scalar_translation(double d);

    /// A new default record of the kind of exactly that bit, owned by the caller; null for any other value.
    static Geometry_Description* create(unsigned long long type);
    /// The same as a counted handle; empty for any other value.
    static ctl::ref<Geometry_Description> create_ref(unsigned long long type);
};

/// The kind of a short text such as "Cir", exactly spelled; 0 when there is none of that name.
TVMATH_API unsigned long long Geometry_ID_to_Type(unsigned short const* id);
TVMATH_API unsigned long long Geometry_ID_to_Type(char16_t const* id);
/// The short text of a kind; the empty text for a value that has none, such as a sphere's. Constant storage.
TVMATH_API unsigned short const* Geometry_Type_to_ID(unsigned long long type);

/// What every kind has in the same form; `kind` is the record itself, which copies by its own copy
/// operations.
template <class kind, unsigned long long bit>
struct Description_Of : Geometry_Description {
    static constexpr unsigned long long type_value = bit;
    unsigned long long type() const override { return bit; }
    Geometry_Description* create_copy() const override { return new kind(static_cast<kind const&>(*this)); }
    bool assign(Geometry_Description const& other) override {
        // By the exact type: a user's class derived from a record is another kind.
        if (typeid(*this) != typeid(other)) return false;
        static_cast<kind&>(*this) = static_cast<kind const&>(other);
        return true;
    }
};

/// A record around one shape that is a transform of a unit shape.
template <class kind, unsigned long long bit, class shape>
struct Shape_Description_Of : Description_Of<kind, bit> {
    shape geometry;
    void apply_transform(transform t) override {
        geometry *= t;
        geometry.make_right_handed(2);
    }
};

// The transform family: each holds `geometry`.

/// A coordinate system.
struct TVMATH_API Transform_Description : Shape_Description_Of<Transform_Description, 0x2, transform> {};
struct TVMATH_API Segment_Description : Shape_Description_Of<Segment_Description, 0x4, line> {};
struct TVMATH_API Circle_Description : Shape_Description_Of<Circle_Description, 0x8, circle> {};
struct TVMATH_API Ellipse_Description : Shape_Description_Of<Ellipse_Description, 0x20, ellipse> {};
struct TVMATH_API Rectangle_Description : Shape_Description_Of<Rectangle_Description, 0x80, rectangle> {};
struct TVMATH_API Gap_Description : Shape_Description_Of<Gap_Description, 0x100, gap> {};
struct TVMATH_API Slot_Description : Shape_Description_Of<Slot_Description, 0x200, slot> {};
struct TVMATH_API Plane_Description : Shape_Description_Of<Plane_Description, 0x800, plane> {};
struct TVMATH_API Sphere_Description : Shape_Description_Of<Sphere_Description, 0x10000, sphere> {};
struct TVMATH_API Cylinder_Description : Shape_Description_Of<Cylinder_Description, 0x20000, cylinder> {};
/// The placement of a composite alignment.
struct TVMATH_API Composite_Description : Shape_Description_Of<Composite_Description, 0x100000, transform> {};

struct TVMATH_API Point_Description : Description_Of<Point_Description, 0x1> {
    point position;
    void apply_transform(transform t) override;
};

struct TVMATH_API Arc_Description : Description_Of<Arc_Description, 0x10> {
    tvmath::circle circle;      ///< Its first axis points along the bisector of the arc.
    double included_angle = 0;  ///< Signed; half of it lies on either side of the first axis.
    void apply_transform(transform t) override;
};

/// The two outlines of an O-ring, in the frame of `placement`, whose origin is the centre.
struct TVMATH_API ORing_Description : Description_Of<ORing_Description, 0x40> {
    transform placement;
    ring inner;
    ring outer;
    /// Moves the placement, which may become left-handed: the outlines do not know a reversed angle.
    void apply_transform(transform t) override;
};

struct TVMATH_API OpenSpline_Description : Description_Of<OpenSpline_Description, 0x400> {
    curve path;  ///< Bezier path.
    double length = 0;
    void apply_transform(transform t) override;
};

struct TVMATH_API ClosedSpline_Description : Description_Of<ClosedSpline_Description, 0x2000> {
    curve path;  ///< Bezier path.
    double length = 0;
    double area = 0;
    point centroid;
    void apply_transform(transform t) override;
};

/// The dimension of an angle: an arc between two witness lines.
struct TVMATH_API Angle_Description : Description_Of<Angle_Description, 0x1000> {
    circle arc;              ///< Origin at the vertex; its first axis has the length of the dimension radius.
    double start_angle = 0;  ///< In the arc's own frame.
    double included_angle = 0;  ///< Signed; the arc ends at `start_angle` + `included_angle`.
    // Ends of the witness lines, as multiples of the dimension radius.
    double start_line_near = 0;
    double start_line_far = 0;
    double end_line_near = 0;
    double end_line_far = 0;
    bool sign_changed = false;

    void apply_transform(transform t) override;
    /// Extent, in XY, of the arc and both witness lines.
    CRealRect get_bounding_rect() const;
    /// The arc as a Bezier path, from start to end.
    idioms::array<point> render_bezier() const;
    /// Ends of a witness line: at or before the vertex, and at or beyond the arc.
    void render_start_line(point& p, point& q) const;
    void render_end_line(point& p, point& q) const;
    /// Tip and barb ends of the arrow head at the end of the arc; it grows with the arc, between bounds.
    void render_arrow_head(point& tip, point& left, point& right) const;
};

struct TVMATH_API Nurb_Description : Description_Of<Nurb_Description, 0x80000> {
    nurb geometry;
    point center;
    void apply_transform(transform t) override;
};

/// Any frustum, also one that a transform of a unit shape cannot hold.
struct TVMATH_API Cone_Description : Description_Of<Cone_Description, 0x40000> {
    cone geometry;
    void apply_transform(transform t) override;
};

/// Measured points, in order along an open path.
struct TVMATH_API OpenData_Description : Description_Of<OpenData_Description, 0x4000> {
    std::vector<point> points;
    void apply_transform(transform t) override;
};

/// Measured points, in order along a closed path.
struct TVMATH_API ClosedData_Description : Description_Of<ClosedData_Description, 0x8000> {
    std::vector<point> points;
    void apply_transform(transform t) override;
};

/// Measured points without an order.
struct TVMATH_API PointCloud_Description : Description_Of<PointCloud_Description, 0x2000000> {
    std::vector<point> points;
    void apply_transform(transform t) override;
};

struct TVMATH_API Number_Description : Description_Of<Number_Description, 0x800000> {
    double value = 0;
    void apply_transform(transform t) override;
    void apply_scalar_translation(double d) override;
};

struct TVMATH_API Rotation_Description : Description_Of<Rotation_Description, 0x1000000> {
    double value = 0;  ///< An angle.
    void apply_transform(transform t) override;
    void apply_scalar_translation(double d) override;
};

/// A text with its place. What the strings and the value mean is the application's business.
struct TVMATH_API Text_Description : Description_Of<Text_Description, 0x4000000> {
    transform placement;
    wide_string text1;
    wide_string text2;
    unsigned long long value = 0;
    wide_string text3;
    wide_string text4;
    /// Moves the placement, which may become left-handed.
    void apply_transform(transform t) override;
};

}  // namespace tvmath
