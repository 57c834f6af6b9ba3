#pragma once

#include "tvmath/export.h"
#include "tvmath/point.h"

inline namespace tvmath {

/// Axis-aligned rectangle in measurement space, where y grows upward; lengths in the caller's units.
///
/// The normal form has `left` at most `right` and `bottom` at most `top`. Functions keep the order left,
/// bottom, right, top; the fields stand in another, so name them. The default is the null rectangle, all four
/// 0.
class TVMATH_API CRealRect {
public:
    double left = 0, top = 0, right = 0, bottom = 0;

    CRealRect() = default;
    /// Sides in any order; the result is in normal form.
    CRealRect(double left_side, double bottom_side, double right_side, double top_side);
    void SetRect(double left_side, double bottom_side, double right_side, double top_side);
    void SetRectEmpty() { *this = CRealRect(); }
    void CopyRect(CRealRect const& r) { *this = r; }

    /// Exact comparison of the four sides.
    bool EqualRect(CRealRect const& r) const { return *this == r; }
    bool operator==(CRealRect const& r) const = default;

    double Width() const;   ///< Never negative.
    double Height() const;  ///< Never negative.
    /// Width and height as a 2D direction.
    point Size() const { return point(false, Width(), Height()); }
    point TopLeft() const { return point(true, left, top); }
    point TopRight() const { return point(true, right, top); }
    point BottomLeft() const { return point(true, left, bottom); }
    point BottomRight() const { return point(true, right, bottom); }
    point CenterPoint() const;

    /// True only when neither width nor height is above 0: a segment is not empty, a single point is.
    bool IsRectEmpty() const { return left >= right && bottom >= top; }
    /// True when all four sides are exactly 0.
    bool IsRectNull() const { return left == 0 && top == 0 && right == 0 && bottom == 0; }
    void NormalizeRect();

    void OffsetRect(double dx, double dy);
    // Moved by x and y; a trivial point moves nothing.
    CRealRect& operator+=(point const& p);
    CRealRect& operator-=(point const& p);
    /// Scales all four sides about the origin.
    void ScaleRect(double s);
    /// Moves the sides outward.
    void InflateRect(double dx, double dy) { InflateRect(dx, dy, dx, dy); }
    void InflateRect(double at_left, double at_bottom, double at_right, double at_top);
    void InflateRect(point const& p);
    /// Moves the sides inward.
    void DeflateRect(double dx, double dy) { InflateRect(-dx, -dy); }
    void DeflateRect(double at_left, double at_bottom, double at_right, double at_top) {
        InflateRect(-at_left, -at_bottom, -at_right, -at_top);
    }
    void DeflateRect(point const& p);

    /// True strictly inside: a point on a side is out, and so is a trivial point.
    bool PtInRect(point const& p) const;

    /// Becomes the common part of both, or the null rectangle when there is none. Returns whether it is not
    /// empty.
    bool IntersectRect(CRealRect a, CRealRect b);
    /// Becomes the extent of both; a null rectangle adds nothing. Returns whether it is not empty.
    bool UnionRect(CRealRect a, CRealRect b);
    /// Becomes a without b where what is left is a rectangle: b must span a's full width or height and reach
    /// from inside over one side. Otherwise it becomes a, also when b covers strictly more than a on all
    /// sides. Returns whether it is not empty; false when either is null.
    bool SubtractRect(CRealRect a, CRealRect b);
    CRealRect& operator&=(CRealRect const& r);
    CRealRect& operator|=(CRealRect const& r);
};

inline CRealRect operator+(CRealRect r, point const& p) {
    return r += p;
}
inline CRealRect operator-(CRealRect r, point const& p) {
    return r -= p;
}
inline CRealRect operator&(CRealRect a, CRealRect const& b) {
    return a &= b;
}
inline CRealRect operator|(CRealRect a, CRealRect const& b) {
    return a |= b;
}

}  // namespace tvmath
