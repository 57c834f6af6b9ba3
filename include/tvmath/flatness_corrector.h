#pragma once

#include <cstdint>
#include <vector>

#include "tvmath/export.h"
#include "tvmath/point.h"
#include "tvmath/screen_corrector.h"
#include "tvmath/transform.h"
#include "tvmath/vector.h"

inline namespace tvmath {

/// A flatness correction cut at a fixed y: the Chebyshev series in x that a scan along a line evaluates.
class TVMATH_API flatness_row_corrector {
public:
    std::uint32_t order = 0;
    double x_scale = 0.0;  ///< Takes x on the screen to u.
    vector coefficients;   ///< Of T(k, u) for k = 0 to `order`.

    flatness_row_corrector();
    // Copies only: a corrector that was moved from would be left without its empty list.
    flatness_row_corrector(flatness_row_corrector const& other) = default;
    flatness_row_corrector& operator=(flatness_row_corrector const& other) = default;
    ~flatness_row_corrector() = default;

    /// True without coefficients, when every correction is 0.
    bool is_trivial() const { return coefficients.is_trivial(); }

    /// The correction at `x`, in the units of z; 0 for the trivial row.
    ///
    /// Source: C. W. Clenshaw, A note on the summation of Chebyshev series, Math. Comp. 9 (1955) 118-120.
    double get_focus_correction_at_x(double x) const;

    static constexpr bool optimize_ctor() { return false; }
    static constexpr bool optimize_copyctor() { return false; }
    static constexpr bool optimize_dtor() { return false; }
};

/// How far the height at which the camera focuses lies off over its field of view: curvature and tilt of the
/// surface of focus, as a polynomial over the screen whose value is added to z.
///
/// With u = x `x_scale` and v = y `y_scale`, -1 to 1 over the screen about its centre, the terms are T(d - j,
/// u) T(j, v) in the order of d = 0 to `order` and, within each, j = 0 to d, as in `screen_corrector`; T(k,
/// t) is the Chebyshev polynomial. Screen coordinates are in pixels, heights in the caller's units. Outside
/// the screen the polynomial is extrapolated as it is. Nothing here raises.
///
/// An `order` that asks for more coefficients than there are, as only fields set by hand can have it, makes
/// every correction 0. Memory is allocated by the cut at a y, for what it returns, and for orders above 31.
class TVMATH_API flatness_corrector {
public:
    double residual = 0.0;    ///< Standard error of the fit, in the units of z.
    std::uint32_t order = 0;  ///< Total degree; even after a fit.
    double x_scale = 0.0;
    double y_scale = 0.0;
    vector coefficients;     ///< (order + 1) (order + 2) / 2 of them.
    double curvature = 0.0;  ///< Reciprocal radius of the surface of focus, in machine units; see `fit`.

    flatness_corrector();
    flatness_corrector(flatness_corrector const& other) = default;
    flatness_corrector& operator=(flatness_corrector const& other) = default;
    ~flatness_corrector() = default;

    /// The correction that brings measured heights of focus on a flat artefact to `z_nominal`: least squares
    /// over the points, x and y on a screen of `width` by `height` pixels as seen, z the height. 2D points
    /// have the height 0.
    ///
    /// Even orders from 2 on are tried up to `max_order`, 126 at most, as long as there are more points than
    /// terms. The one with the least standard error is kept, the lowest of equals. Residuals within the
    /// rounding of the heights count as 0, so that exact data keep their own order.
    ///
    /// `screen` and `screen_to_machine` serve the curvature alone: it is that of the sphere through the
    /// points corrected by the first and carried by the second, which should be 3D; positive when the centre
    /// of the sphere is not above `z_nominal`. Where no sphere comes out, as for points in a plane, it is
    /// the mean second derivative of the correction if order 2 was kept, otherwise 0.
    ///
    /// Returns the default object for fewer than 7 points, for a `max_order` below 2, for points that
    /// determine no order, as on a conic section, and for a number among the data that is not finite.
    ///
    /// Source: A. Bjorck, Numerical Methods for Least Squares Problems, SIAM 1996, 2.4: reflections of the
    /// terms, because normal equations would square the condition.
    static flatness_corrector fit(unsigned int width, unsigned int height, std::vector<point> const& points,
                                  double z_nominal, transform screen_to_machine, screen_corrector screen,
                                  unsigned int max_order);

    /// True without coefficients, when every correction is 0.
    bool is_trivial() const { return coefficients.is_trivial(); }

    /// The correction at x and y of `p`, in the units of z; 0 for a trivial corrector or point.
    double get_focus_correction(point const& p) const;

    /// Its derivatives by x and y on the screen, a 2D direction; (0, 0) for a trivial corrector or point.
    point get_focus_correction_derivative(point const& p) const;

    /// The correction along the line at `y`; trivial for a trivial corrector.
    flatness_row_corrector get_focus_correction_at_y(double y) const;

    /// Moves the surface of focus by `dz`; a trivial corrector stays trivial.
    void translate_correction(double dz);

    static constexpr bool optimize_ctor() { return false; }
    static constexpr bool optimize_copyctor() { return false; }
    static constexpr bool optimize_dtor() { return false; }
};

/// The point with the correction at its x and y added to its z. The result is 3D: a 2D point starts from z =
/// 0, a trivial point from the origin. A trivial corrector leaves any point as it is.
TVMATH_API point operator*(point p, flatness_corrector const& corrector);
/// The same with the correction subtracted: the exact inverse but for rounding, since x and y stay.
TVMATH_API point operator/(point p, flatness_corrector const& corrector);

}  // namespace tvmath
