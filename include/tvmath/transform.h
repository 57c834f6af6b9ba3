#pragma once

#include "tvmath/array.h"
#include "tvmath/export.h"
#include "tvmath/point.h"

inline namespace tvmath {

/// An affine map in 2D or 3D, stored with its inverse beside it.
///
/// Every operation updates both blocks by a closed formula and none inverts a matrix, so after a long chain
/// the inverse is as exact as the forward map, and dividing by a transform costs no more than multiplying by
/// it.
///
/// A copy-on-write handle. The block holds nothing (trivial: the identity in any dimension, the default, free
/// of cost), 12 numbers (2D) or 24 (3D): the forward map, then the inverse map, row by row with the offset
/// first: `tx a11 a12`, `ty a21 a22`, or `tx a11 a12 a13` and two more rows. A block of any other size counts
/// as trivial wherever a size decides. `a * b` is a first, then b.
///
/// Column 0 of a block is the image of the origin, columns 1 to 3 are the images of the axes. Lengths are in
/// the caller's units, angles in radians, anticlockwise from +X. Nothing is refused: a scale of 0 leaves
/// infinities in the inverse map. Only a handle that was moved from raises, `pointer_exception`.
class TVMATH_API transform : public idioms::array<double> {
public:
    /// The trivial transform.
    transform() = default;
    /// 2D translation.
    transform(double dx, double dy);
    /// 3D translation.
    transform(double dx, double dy, double dz);
    /// Translation by the coordinates of `p`, whatever its weight, in its dimension; trivial for a trivial
    /// `p`.
    explicit transform(point const& p);
    /// Adopts a block as it is, without checks: forward map and inverse map must fit each other.
    explicit transform(idioms::array<double> const& block) : idioms::array<double>(block) {}

    /// The same as `transform(p)`.
    static transform translation(point const& p) { return transform(p); }
    /// 2D scaling about the origin.
    static transform dilation(double s) { return dilation(s, s); }
    static transform dilation(double sx, double sy);
    /// 3D scaling about the origin.
    static transform dilation(double sx, double sy, double sz);
    /// 2D rotation about the origin; the 2D identity, not the trivial transform, for an angle of exactly 0.
    static transform rotation(double angle);
    // 2D quarter turns, exact.
    static transform rotation_90();
    static transform rotation_180();
    static transform rotation_270();
    /// 3D rotation: by `c` about +X, then by -`b` about +Y, then by `a` about +Z. The image of the X axis
    /// thus has yaw `a` and elevation `b`. The 3D identity when all three are exactly 0.
    static transform rotation(double a, double b, double c);
    /// 3D rotation, right-handed about an axis through the origin. A trivial axis, or one of length 0, is the
    /// X axis. The 3D identity for an angle of exactly 0. Source: Rodrigues' rotation formula.
    static transform rotation(point const& axis, double angle);
    /// 3D map of the X, Y and Z axes to `u`, `v`, `w`, which must be orthonormal: the inverse is the
    /// transpose.
    static transform extrusion(point u, point v, point w);
    /// 3D right-handed rotation of the Z axis to the direction of `normal`, whose length and weight do not
    /// matter. The image of the X axis lies in the XY plane, unless `normal` is within about a degree of the
    /// Z axis: then it lies in the XZ plane.
    static transform extrusion(point normal);

    /// The affine map that carries the points of `from` nearest to those of equal index in `to`: least
    /// squares of the distances in XY, each square times its weight. No `weights` count all pairs alike.
    ///
    /// Locations go with locations. A pair of directions takes part too, through the linear part alone; a
    /// pair of one of each says nothing and is passed over, as is one with a trivial point or a weight that
    /// is not above 0. Returns the trivial transform for lists of different sizes, for fewer than 3 pairs,
    /// for points of `from` that lie on one line, or within 1e-7 of their extent of one, and where no map
    /// with an inverse comes out.
    ///
    /// Source: normal equations about the centroids, refined by their residuals as in A. Bjorck, Numerical
    /// Methods for Least Squares Problems, SIAM 1996, 2.9.
    static transform fit2d(idioms::array<point> from, idioms::array<point> to, idioms::array<double> weights);
    /// The same in space, a 3D map: of at least 4 pairs, whose points in `from` do not lie in one plane. 2D
    /// points lie in z = 0.
    static transform fit3d(idioms::array<point> from, idioms::array<point> to, idioms::array<double> weights);

    bool is_2d() const { return capacity() == 12; }
    bool is_3d() const { return capacity() == 24; }

    /// Column i of the forward map: the origin's image, a location, for 0, the image of axis i, a direction,
    /// for the others. An axis beyond the dimension of the transform is its own image: (1, 0), (0, 1), (0, 0,
    /// 1). The trivial point for any other i, and for 0 of the trivial transform.
    point basis(int i) const;
    /// The same of the inverse map.
    point inverse_basis(int i) const;
    point center() const { return basis(0); }
    point inverse_center() const { return inverse_basis(0); }
    /// `basis(i)` scaled to length 1.
    point direction(int i) const { return basis(i).normalize(); }
    point inverse_direction(int i) const { return inverse_basis(i).normalize(); }
    /// Scalar product of columns i and j of the forward map, in squared units; 0 when the transform does not
    /// hold both columns.
    double dot(int i, int j) const;
    /// The same of the inverse map.
    double inverse_dot(int i, int j) const;
    /// Length of column i; 0 when the transform does not hold it.
    double size(int i) const { return std::sqrt(dot(i, i)); }
    double inverse_size(int i) const { return std::sqrt(inverse_dot(i, i)); }

    /// True when the forward map is the identity to the last bit; -0.0 is not 0.0 here.
    bool is_identity() const;
    /// True when the determinant of the linear part is below 0.
    bool is_left_handed() const;
    /// Angle of the image of the X axis above the XY plane, from -pi / 2 to pi / 2.
    double pitch() const;
    /// Angle of the image of the X axis in the XY plane; 0 when that image points along Z (x and y below
    /// 1e-10).
    double yaw() const;
    /// Angle of the image of the Y axis about that of the X axis; 0 unless the transform is 3D.
    double roll() const;

    // Operations in place: the elementary map is applied after the present one. The trivial transform becomes
    // the elementary map itself. The neutral argument, exactly compared, changes nothing and leaves the block
    // shared.

    /// Moves in XY; a 3D transform stays 3D.
    transform& translate(double dx, double dy);
    /// Moves in space; the result is 3D.
    transform& translate(double dx, double dy, double dz);
    /// Moves by the coordinates of `p`, whatever its weight, in its dimension; nothing for a trivial `p`.
    transform& translate(point const& p);
    /// Turns in XY about the origin; a 3D transform stays 3D.
    transform& rotate(double angle);
    /// The same as `*= rotation(a, b, c)`; the result is 3D.
    transform& rotate(double a, double b, double c) { return *this *= rotation(a, b, c); }
    /// The same as `*= rotation(axis, angle)`; the result is 3D.
    transform& rotate(point const& axis, double angle) { return *this *= rotation(axis, angle); }
    // Quarter turns in XY, exact. The trivial transform stays trivial.
    transform& rotate_90();
    transform& rotate_180();
    transform& rotate_270();
    /// Scales x and y; a 3D transform keeps its z.
    transform& dilate(double s) { return dilate(s, s); }
    transform& dilate(double sx, double sy);
    /// Scales x, y and z; the result is 3D.
    transform& dilate(double sx, double sy, double sz);
    transform& shear_x(double a);            ///< x += a y
    transform& shear_y(double a);            ///< y += a x
    transform& shear_x(double a, double b);  ///< x += a y + b z, in 3D
    transform& shear_y(double a, double b);  ///< y += a x + b z, in 3D
    transform& shear_z(double a, double b);  ///< z += a x + b y, in 3D
    /// Reverses the image of axis i, in 3D for i = 3; for i = 0 the offsets of both maps. Other i change
    /// nothing.
    transform& flip_axis(int i);
    /// Exchanges the images of two different axes of 1 to 3, in 3D when one is 3. Other arguments change
    /// nothing.
    transform& exchange_axes(int i, int j);
    /// Reverses the image of axis i when the transform is left-handed; i = 0 changes nothing.
    transform& make_right_handed(int i);
    /// Lets the axes change places cyclically n times, in 3D: each time the image of X becomes the old image
    /// of Z, that of Y the old one of X, that of Z the old one of Y. A multiple of 3, also a negative one,
    /// changes nothing.
    transform& permute3d(int n);
    /// Exchanges the forward and the inverse map, without arithmetic.
    transform& inverse();
    /// Makes the images of the axes orthogonal by shears (Gram-Schmidt): the X axis keeps its image, the Y
    /// axis stays in the plane of both, the centre stays. Columns after one of length 0 are left as they are.
    transform& orthogonalize();
    /// The same, and makes the images of the axes unit vectors.
    transform& orthonormalize();
    /// Makes the transform at least 2D: only a trivial one changes, it becomes the 2D identity.
    transform& promote2d();
    /// Makes the transform 3D; z of a 2D transform is its own image.
    transform& promote3d();
    /// Makes the transform 2D by dropping z and the image of the Z axis; the inverse is computed afresh and
    /// holds infinities or NaN when the remaining map is singular. A trivial transform becomes the 2D
    /// identity.
    transform& project2d();
    /// Lays the images of this transform into the XY plane of `t`, along Z: z = p x + q y + r for that plane.
    /// The forward map then is singular; the inverse map takes points of that plane back as far as x and y
    /// tell, and is no inverse off it. Without a 3D `t`, a 3D transform is projected to 2D and others stay as
    /// they are.
    transform& protrude(transform const& t);
    transform& operator*=(transform const& t);
    transform& operator/=(transform const& t);

    /// Computes the inverse map from the forward map, by cofactors. Returns false when the determinant is 0:
    /// the inverse map then holds infinities or NaN. True, and nothing changes, for the trivial transform.
    bool fill_in_inverse();
};

/// 2D map of the origin to `center` and of the axes to `u` and `v`; of 3D points only x and y count, trivial
/// points count as the origin. The inverse map holds infinities or NaN when u and v are parallel.
TVMATH_API transform make_transform(point center, point u, point v);
/// The same in 3D; 2D points lie in the plane z = 0.
TVMATH_API transform make_transform(point center, point u, point v, point w);

/// a first, then b; 3D when either is 3D. When one is trivial the result shares the block of the other.
TVMATH_API transform operator*(transform const& a, transform const& b);
/// a first, then the inverse of b, without an inversion.
TVMATH_API transform operator/(transform const& a, transform const& b);
/// Each element of a new list followed by `t`.
TVMATH_API idioms::array<transform> operator*(idioms::array<transform> const& list, transform const& t);
/// Each element of a new list followed by the inverse of `t`.
TVMATH_API idioms::array<transform> operator/(idioms::array<transform> const& list, transform const& t);

/// True when both maps of both transforms are equal to the last bit, or the block is shared. The 2D identity
/// and the trivial transform differ, and so do equal maps whose inverses were rounded differently.
TVMATH_API bool operator==(transform const& a, transform const& b);
inline bool operator!=(transform const& a, transform const& b) {
    return !(a == b);
}

/// A changed copy; see the member of the same name. Over a list: a new list of changed copies.
TVMATH_API transform inverse(transform t);
TVMATH_API idioms::array<transform> inverse(idioms::array<transform> list);
TVMATH_API transform orthogonalize(transform t);
TVMATH_API idioms::array<transform> orthogonalize(idioms::array<transform> list);
TVMATH_API transform orthonormalize(transform t);
TVMATH_API idioms::array<transform> orthonormalize(idioms::array<transform> list);
/// A copy of `subject` laid into the XY plane of `t`.
TVMATH_API transform protrude(transform subject, transform const& t);

/// The point of the XY plane of `t` above or below `p`: x and y stay, z = p x + q y + r (a direction takes no
/// r). The result is 3D; a trivial `p` counts as the origin. When `t` is not 3D the result is `p` projected
/// to 2D. A `t` whose plane is parallel to Z gives infinities or NaN.
TVMATH_API point protrude(transform const& t, point p);

/// 2D transform with the projected centre of `t` and perpendicular unit axes of the handedness of its
/// projected axes: their sum, after one is turned by a quarter, gives both, so that equally long axes share
/// the angular error evenly and of unequal ones the longer moves less. A trivial `t` comes back as it is.
TVMATH_API transform orthonormalize_2d_projection(transform const& t);

/// True when the forward map, or with `inverse_too` either map, holds a NaN.
TVMATH_API bool _isnan(transform const& t, bool inverse_too = false);

// Points through transforms stand here and not in a source file because they are the inner loop of every
// measurement path: a call costs as much as the arithmetic.
namespace transform_detail {

// Carries a point that is not trivial through one map.
inline void carry2d(point& p, double const* m) {
    double const x = m[1] * p.x() + m[2] * p.y(), y = m[4] * p.x() + m[5] * p.y();
    bool const moved = p[0] != 0.0;
    p.x() = moved ? x + m[0] : x;
    p.y() = moved ? y + m[3] : y;
}

inline void carry3d(point& p, double const* m) {
    double x = m[1] * p.x() + m[2] * p.y(), y = m[5] * p.x() + m[6] * p.y(), z = m[9] * p.x() + m[10] * p.y();
    if (p.is_3d()) {  // z of a 2D point is undefined
        x += m[3] * p.z();
        y += m[7] * p.z();
        z += m[11] * p.z();
    }
    p = p[0] != 0.0 ? point(true, x + m[0], y + m[4], z + m[8]) : point(false, x, y, z);
}

}  // namespace transform_detail

inline point& point::operator*=(transform const& t) {
    unsigned int const size = t.capacity();
    if (size != 12 && size != 24) return *this;
    if (is_trivial()) return *this = t.basis(0);
    if (size == 12) {
        transform_detail::carry2d(*this, t.begin());
    } else {
        transform_detail::carry3d(*this, t.begin());
    }
    return *this;
}

inline point& point::operator/=(transform const& t) {
    unsigned int const size = t.capacity();
    if (size != 12 && size != 24) return *this;
    if (is_trivial()) return *this = t.inverse_basis(0);
    if (size == 12) {
        transform_detail::carry2d(*this, t.begin() + 6);
    } else {
        transform_detail::carry3d(*this, t.begin() + 12);
    }
    return *this;
}

/// The point carried through the transform, or through its inverse; see `point::operator*=`.
inline point operator*(point p, transform const& t) {
    return p *= t;
}
inline point operator/(point p, transform const& t) {
    return p /= t;
}

/// Every point of a list through the transform, or through its inverse, with the bits that
/// `point::operator*=` gives; several times as fast as one by one. A trivial transform leaves the block
/// shared.
TVMATH_API idioms::array<point>& operator*=(idioms::array<point>& list, transform const& t);
TVMATH_API idioms::array<point>& operator/=(idioms::array<point>& list, transform const& t);
inline idioms::array<point> operator*(idioms::array<point> list, transform const& t) {
    return list *= t;
}
inline idioms::array<point> operator/(idioms::array<point> list, transform const& t) {
    return list /= t;
}

}  // namespace tvmath
