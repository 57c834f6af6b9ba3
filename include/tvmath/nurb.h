#pragma once

#include <cstdint>

#include "tvmath/array.h"
#include "tvmath/curve.h"
#include "tvmath/export.h"
#include "tvmath/point.h"
#include "tvmath/quadrature.h"
#include "tvmath/ref.h"
#include "tvmath/storage.h"
#include "tvmath/transform.h"
#include "tvmath/vector.h"

inline namespace tvmath {

/// A rational point in space: x, y and z are already multiplied by the weight w.
struct TQ3RationalPoint4D {
    double x, y, z, w;

    /// The 3D location (x, y, z) / w; a weight of 0 gives infinities or NaN.
    operator point() const { return point(true, x / w, y / w, z / w); }
};

/// One curve as plain numbers: `point_count` control points and `order` + `point_count` knots, ascending.
struct TQ3NURBCurveData {
    std::uint32_t order;  ///< Degree + 1.
    std::uint32_t point_count;
    TQ3RationalPoint4D* control_points;
    double* knot_values;
};

namespace idioms {

/// Counted block of one curve: the record, then the points and the knots behind it in the same allocation.
/// Its `size` is the order.
class TVMATH_API nurb_storage : public container {
public:
    /// Room for a curve, with all numbers 0. Null when there is no memory.
    static nurb_storage* allocate(std::uint32_t order, std::uint32_t point_count);
    /// A new block with the same contents. Null when there is no memory.
    nurb_storage* clone() const;

    TQ3NURBCurveData data;

private:
    nurb_storage(std::uint32_t order, std::uint32_t point_count);
};

}  // namespace idioms

/// A non-uniform rational B-spline curve in space, of any degree.
///
/// A copy-on-write handle. The parameter runs from knot `order` - 1 to knot `point_count`, both counted from
/// 0; knots must not descend. Lengths are in the caller's units. Indices are not tested. The default is the
/// null curve, of order 0 (`is_trivial()`). A handle that was moved from raises `pointer_exception`, as does
/// a curve for which there was no memory. Numbers that are no curve (knots out of order, fewer points than
/// the order, NaN) give answers without meaning, but never more than that.
///
/// A span is the parameters between two neighbouring knots of that range; an empty one, between equal knots,
/// does not count. Spans are rendered and measured as polynomials about their middles: at degree 40 that
/// costs a digit against `evaluate`, and beyond order 256 a curve counts as one without spans.
///
/// Source of the methods: L. Piegl, W. Tiller, The NURBS Book, 2nd ed., Springer 1997, chapters 2 to 5.
class TVMATH_API nurb {
public:
    nurb();
    /// Room for a curve; all numbers are 0 until they are set.
    nurb(std::uint32_t order, std::uint32_t point_count);
    /// Copies the points and the knots.
    explicit nurb(TQ3NURBCurveData const& data);

    /// The record in the block of this handle alone, to be changed through its pointers.
    operator TQ3NURBCurveData&();
    operator TQ3NURBCurveData const&() const;

    bool is_trivial() const { return order() == 0; }
    std::uint32_t order() const { return data().order; }
    std::uint32_t degree() const { return order() == 0 ? 0 : order() - 1; }
    std::uint32_t control_points() const { return data().point_count; }  ///< Their number.
    std::uint32_t knots() const { return order() + control_points(); }   ///< Their number.

    double get_knot(unsigned int i) const { return data().knot_values[i]; }
    void set_knot(unsigned int i, double value);
    TQ3RationalPoint4D const& get_control_point(unsigned int i) const { return data().control_points[i]; }
    void set_control_point(unsigned int i, TQ3RationalPoint4D const& p);
    /// Changes the size; the first points and the first knots stay as far as they fit, new ones are 0.
    void redim(std::uint32_t order, std::uint32_t point_count);

    /// The rational point at parameter `t`: the control points times their functions of the Cox-de Boor
    /// recursion. At the last knot the end of the curve; outside the knots, for a NaN and for the null curve
    /// all zero. Between the knots and the parameter range, where a curve with single end knots has some of
    /// its functions only, the sum of those: its w is below the weights.
    TQ3RationalPoint4D evaluate(double t) const;
    /// Coefficients, in ascending powers of (u - t), of the basis functions that are not zero on the span
    /// from knot `span` to knot `span` + 1: `order` rows of `order` numbers, row r for control point `span` -
    /// `degree()` + r. `span` lies between `degree()` and `control_points()` - 1; any other one, and an empty
    /// one, gives zeros.
    void calc_poly(unsigned int span, double* table, double t) const;
    /// Coefficients, likewise, of the curve itself on that span: `order` rational points.
    void calc_poly(unsigned int span, TQ3RationalPoint4D* coefficients, double t) const;

    /// The same path from its end to its start; each knot k becomes last knot - k.
    void reverse();
    /// Inserts `n` knots, in any order, without changing the curve; the cost grows nearly with the sum of old
    /// and new knots. Values outside the parameter range, NaN, and those that would occur more than `order`
    /// times are left out.
    ///
    /// Source: W. Boehm, Inserting new knots into B-spline curves, Computer-Aided Design 12 (1980) 199-201.
    void insert_knots(double const* values, unsigned int n);
    /// Cuts the curve down to the parameters from `a` to `b`, as far as it has them; what stays keeps its
    /// parameters. The new ends are knots that occur `order` times, so that the curve starts and ends in a
    /// control point and is nothing outside. Nothing changes unless a < b and the range is met.
    void clip_evaluation_range(double a, double b);

    /// Carries the control points through the transform, weights kept; the curve moves with them.
    nurb& operator*=(transform const& t);
    nurb& operator/=(transform const& t);
    /// Moves the curve by the coordinates of `p`, whatever its weight.
    nurb& operator+=(point const& p);
    nurb& operator-=(point const& p);

    /// Length in space, by Romberg's quadrature over each span. 0 for the null curve.
    void compute_moments(double& length) const;
    /// Signed area (positive anticlockwise) and centroid of the region that the curve encloses in XY, and the
    /// length in space, span by span as above. Where the curve jumps, and from its end to its start, a
    /// straight line closes the region and adds nothing to the perimeter. The centroid is 2D; trivial for an
    /// area of 0, and for one that is no more than the rounding of the squared perimeter.
    void compute_moments(double& area, double& perimeter, point& centroid) const;

    /// Polyline: the start of the curve unless `closed`, and for each span `n` points at equal steps of the
    /// parameter, the last one its end. 3D locations. An `n` below 1 counts as 1. Empty for a curve without
    /// spans, and when the points were too many to be counted in 32 bits.
    curve render(int n, bool closed) const;
    /// Cubic Bezier path along the curve, of 3D locations; where the curve jumps, a straight piece leads on.
    /// Empty for a curve without spans.
    ///
    /// A curve of degree 1 to 3 with equal weights is such a path itself. Any other is followed by Hermite
    /// pieces, which have its points and derivatives at their ends, halved until they lie, at the seven
    /// samples between their ends, within 0.5e-6 of the largest extent of the control points; that keeps them
    /// within 1e-6 between the samples, unless the most pieces for a span, 1024, do not suffice.
    curve render_bezier() const;
    /// Polyline that stays within `tolerance` of the curve: `n` pieces for each span at equal steps of the
    /// parameter, halved until the curve at a quarter, half and three quarters of a piece is within 0.9 of
    /// the tolerance of its chord. What `n` pieces cannot tell from a straight line stays unseen.
    ///
    /// 3D locations relative to `origin`, so that a drawing keeps its digits far from the machine's zero; a
    /// trivial `origin` moves nothing. The tolerance is at least 1e-9 of the largest extent of the control
    /// points, which is also what 0, a negative one and NaN ask for; `n` counts as 1 to 65536, which is the
    /// most pieces that a span gets. Empty for a curve without spans.
    curve render_polyline(point origin, double tolerance, unsigned int n) const;

    friend void swap(nurb& a, nurb& b) noexcept {
        idioms::ref<idioms::nurb_storage>::swap(a.block_, b.block_);
    }

private:
    TQ3NURBCurveData const& data() const { return block_.element().data; }
    TQ3NURBCurveData& own_data();  // after the copy-on-write step

    idioms::ref<idioms::nurb_storage> block_;
};

inline nurb operator*(nurb n, transform const& t) {
    return n *= t;
}
inline nurb operator/(nurb n, transform const& t) {
    return n /= t;
}
inline nurb operator+(nurb n, point const& p) {
    return n += p;
}
inline nurb operator-(nurb n, point const& p) {
    return n -= p;
}

// The same over curves that follow each other along one outline.
TVMATH_API void compute_moments(idioms::array<nurb> const& outline, double& length);
TVMATH_API void compute_moments(idioms::array<nurb> const& outline, double& area, double& perimeter,
                                point& centroid);

/// A Bezier path of any degree (cubic: 3) as one curve with weights of 1 and the knots 0, 1, ... of its
/// joints, each `degree` times, the ends once more. Trivial unless the degree is at least 1 and the path has
/// a size of `degree` n + 1 and more than `degree` points.
TVMATH_API nurb bezier_to_nurb(curve const& c, unsigned int degree);
/// The points as the control points of a B-spline with the knots 0, 1, 2, ...: the curve does not reach the
/// end points. Trivial unless there are more than `degree` points.
TVMATH_API nurb uniform_bspline_to_nurb(curve const& c, unsigned int degree);

/// What is integrated along a curve, over one span: a few numbers for each parameter. As an `integrand` it is
/// the first of them, the length of the derivative, so its integral is the length of the span. A span that is
/// empty, or that `calc_poly` does not take, gives zeros between the bounds 0 and 0.
class TVMATH_API nurb_integrand : public integrand {
public:
    /// `span` as in `calc_poly`; the bounds are its two knots.
    nurb_integrand(nurb const& n, unsigned int span);
    double operator()(double t) const override;
    double lower_bound() const override { return lower_; }
    double upper_bound() const override { return upper_; }
    virtual vector value(double t) const = 0;

protected:
    /// The same with positions relative to `origin`; for a trivial `origin`, to some point near the span.
    nurb_integrand(nurb const& n, unsigned int span, point const& origin);
    /// Position, relative to the origin, and derivative at `t`, both in space as x, y, z.
    void evaluate(double t, double (&position)[3], double (&derivative)[3]) const;

private:
    idioms::array<TQ3RationalPoint4D> coefficients_;  // of the powers of (t - middle)
    double lower_ = 0, upper_ = 0, middle_ = 0;
};

/// Arc length alone.
class TVMATH_API open_nurb_integrand : public nurb_integrand {
public:
    using nurb_integrand::nurb_integrand;
    vector value(double t) const override;
};

/// Arc length, area, and the integrals of x and of y over that area, all by Green's theorem about `origin`:
/// the region is the one that the radius from there sweeps, anticlockwise positive.
class TVMATH_API closed_nurb_integrand : public nurb_integrand {
public:
    closed_nurb_integrand(nurb const& n, unsigned int span, point const& origin);
    vector value(double t) const override;
};

}  // namespace tvmath
