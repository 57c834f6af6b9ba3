#pragma once

#include <concepts>

#include "tvmath/array.h"
#include "tvmath/export.h"
#include "tvmath/scalar.h"

inline namespace tvmath {

class matrix;
class point;

/// A copy-on-write list of numbers: for linear algebra, and for signals such as an intensity profile.
///
/// Copying is one counter. Operations of two vectors run over the length of the first and read the second
/// without a check, so the second must not be shorter. An operation by its neutral value (times 1, plus 0) is
/// skipped and leaves the block shared. Nothing raises.
class TVMATH_API vector : public idioms::array<double> {
public:
    vector() = default;
    /// `n` zeros.
    explicit vector(unsigned int n) : array(n) {}
    /// `n` copies of `value`.
    vector(unsigned int n, double const& value) : array(n, value) {}
    /// `n` elements copied from `source`. A template, so that `vector(3, 0)` is three zeros and no null
    /// pointer.
    template <std::same_as<double> S>
    vector(unsigned int n, S const* source) : array(n, source) {}
    /// `n` elements, element i copied from `source[i * stride]`; `stride` may be negative.
    template <std::same_as<double> S>
    vector(unsigned int n, S const* source, int stride) : array(n, source, stride) {}
    /// Shares the block of `list`.
    explicit vector(idioms::array<double> const& list) : array(list) {}
    /// x and y, and z of a 3D point; empty for the trivial point. The weight is dropped.
    explicit vector(point const& p);

    /// Number of elements.
    static unsigned int dim(vector const& v) { return v.capacity(); }
    /// Number of elements of the first operand, over which an operation of both runs; the second is ignored.
    static unsigned int dim(vector const& a, vector const&) { return a.capacity(); }

    /// Sets every element; the size stays.
    vector& operator=(double const& value);
    vector& operator*=(double const& factor);
    /// Multiplies by 1 / value, so that the rounding is that of a product.
    vector& operator/=(double const& value);
    vector& operator+=(double const& value);
    vector& operator-=(double const& value);
    vector& operator+=(vector const& other);
    vector& operator-=(vector const& other);

    /// Moving average in place over `width` samples, an even width counting as the next odd one. At the ends
    /// the window is cut, and the mean is of the samples left in it. A width below 2 changes nothing.
    vector& boxcar(int width);

    /// Sets the black point of a profile of values from 0 to 1, in place: of the samples above the two lowest
    /// of 1024 levels, `fraction` (0 to 1) become 0, to the resolution of a level, and the rest is stretched
    /// so that 1 stays 1.
    vector& threshold(double fraction);

    /// Replaces this row vector x by the solution y of y m = x, without forming an inverse. True on success;
    /// false, with nothing changed, unless `m` is square and of this size, and false, with undefined
    /// contents, for an exactly singular `m`. An empty vector and an empty matrix give true.
    bool times_inverse_of(matrix m);
};

inline unsigned int dim(vector const& v) {
    return v.capacity();
}
inline unsigned int dim(vector const& a, vector const&) {
    return a.capacity();
}

inline vector operator+(vector a, vector const& b) {
    return a += b;
}
inline vector operator+(vector v, double value) {
    return v += value;
}
inline vector operator+(double value, vector v) {
    return v += value;
}
inline vector operator-(vector a, vector const& b) {
    return a -= b;
}
inline vector operator-(vector v, double value) {
    return v -= value;
}
inline vector operator-(vector v) {
    return v *= -1.0;
}
/// The negated vector plus the value.
inline vector operator-(double value, vector v) {
    v *= -1.0;
    return v += value;
}
inline vector operator*(vector v, double factor) {
    return v *= factor;
}
inline vector operator*(double factor, vector v) {
    return v *= factor;
}
/// Times 1 / value.
inline vector operator/(vector v, double value) {
    return v /= value;
}
/// Products of the elements, of the length of `a`; the scalar product is `dot`.
TVMATH_API vector operator*(vector a, vector const& b);
/// Magnitudes of the elements.
TVMATH_API vector abs(vector v);

/// Exact and of the contents: equal sizes and equal elements.
TVMATH_API bool operator==(vector const& a, vector const& b);
inline bool operator!=(vector const& a, vector const& b) {
    return !(a == b);
}

// Measures. Each is 0 for an empty vector.

/// Sum of products over the length of `a`, in index order.
TVMATH_API double dot(vector const& a, vector const& b);
/// Length as sqrt(dot(v, v)): overflows beyond 1e154; `norm` does not.
TVMATH_API double euclidean_norm(vector const& v);
/// Sum of magnitudes.
TVMATH_API double manhatten_norm(vector const& v);
/// Largest magnitude.
TVMATH_API double maximum_norm(vector const& v);
/// Euclidean length, free of overflow and underflow: scaled by the largest magnitude.
TVMATH_API double norm(vector const& v);
/// `v` at length 1; unchanged when its norm is 0.
TVMATH_API vector normalize(vector v);
/// Angle between two vectors in radians, 0 to pi. NaN when rounding carries the cosine beyond 1, as it may
/// for parallel vectors.
TVMATH_API double angle(vector const& a, vector const& b);
TVMATH_API double sum(vector const& v);
/// Sum of squares.
TVMATH_API double sqr(vector const& v);
TVMATH_API double min_value(vector const& v);
TVMATH_API double max_value(vector const& v);
/// Both extremes; an empty vector leaves the outputs alone.
TVMATH_API void minmax_value(vector const& v, double& min, double& max);
/// Extreme and its index, the lowest one of equals. False, outputs untouched, for an empty vector.
TVMATH_API bool min_index_value(vector const& v, unsigned int& index, double& value);
TVMATH_API bool max_index_value(vector const& v, unsigned int& index, double& value);
TVMATH_API bool minmax_index_value(vector const& v, unsigned int& min_index, double& min_value,
                                   unsigned int& max_index, double& max_value);

// Signals: samples at the positions 0, 1, 2, ...

/// Forward differences, one element fewer; empty for fewer than 2 elements.
TVMATH_API vector differentiate(vector const& v);
/// Derivative of the polynomial v[0] + v[1] x + ..., one element fewer; empty for fewer than 2 elements.
TVMATH_API vector derivative(vector const& v);
/// Running sum, one element more: element i is the sum of the i elements before position i.
TVMATH_API vector integrate(vector const& v);
/// Value at position `x`, linear between samples, the end samples beyond the ends. 0 for an empty vector; NaN
/// for a NaN position.
TVMATH_API double interpolate(vector const& v, double x);
inline double sample(vector const& v, double x) {
    return interpolate(v, x);
}
/// `interpolate` at each of the positions.
TVMATH_API vector sample(vector const& v, vector positions);
/// `n` samples of `v` at `scale` times its sampling rate: by interpolation for a scale above 1, by averages
/// over 1 / scale samples, the last one repeated beyond the end, for a scale below 1.
///
/// An `n` below 2 gives n times the mean of `v`, whatever the scale; otherwise a scale of exactly 1 gives `v`
/// as it is, whatever n. The mean of an empty vector counts as 0. A scale of 0 or less is no valid input and
/// gives no useful values.
TVMATH_API vector resample(vector v, double scale, unsigned int n);
/// 1, x, x², ...: `n` elements.
TVMATH_API vector powvec(double x, unsigned int n);

}  // namespace tvmath
