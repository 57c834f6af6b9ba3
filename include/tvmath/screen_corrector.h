#pragma once

#include <cstdint>

#include "tvmath/array.h"
#include "tvmath/curve.h"
#include "tvmath/export.h"
#include "tvmath/matrix.h"
#include "tvmath/point.h"
#include "tvmath/vector.h"

inline namespace tvmath {

/// The distortion of a camera image: a field over the screen that tells for a seen point (x, y) the
/// displacement (dx, dy) to where it truly lies. `p * corrector` applies it, `p / corrector` removes it.
///
/// Two polynomials of total degree `order` in u = x `x_scale` and v = y `y_scale`, which run from -1 to 1
/// over the screen: sums of the terms T(d - j, u) T(j, v), T being the Chebyshev polynomials of the first
/// kind, by rising degree d and in it by rising j. Term (d, j) has the index d (d + 1) / 2 + j, and there are
/// n = (order + 1)(order + 2) / 2. Screen points are in pixels from the middle of the screen.
///
/// The default does nothing (`is_trivial()`), by which the fit reports failure. Copies share the
/// coefficients. An object whose coefficients are not 2 rows of n at least, such as those of a failed `fit`,
/// does nothing either.
class TVMATH_API screen_corrector {
public:
    double residual = 0;                    ///< Standard error of the fit in pixels.
    std::uint32_t order = 0;                ///< Total degree; 0 does nothing.
    double x_scale = 0.003125;              ///< 2 / width; that of 640 pixels.
    double y_scale = 0.004166666666666667;  ///< 2 / height; that of 480 pixels.
    matrix coefficients;                    ///< Row 0 gives dx, row 1 dy, n each; empty for order 0.

    screen_corrector();
    /// Least-squares field from `measured` to `nominal` points, equal indices belonging together, on a screen
    /// of `width` by `height` pixels. Of the orders from 1 to `max_order` that have fewer terms than there
    /// are points, the one with the smallest residual is taken, the lowest of equals; the time for N points
    /// grows with N n². A residual that the rounding of the coordinates explains counts as 0, so that exact
    /// data keep the lowest order that describes them.
    ///
    /// The default corrector, scales included, when that is order 1, which alone is no distortion; for 6
    /// points or fewer; and when no order could be solved (see `fit`).
    screen_corrector(unsigned int width, unsigned int height, idioms::array<point> measured,
                     idioms::array<point> nominal, unsigned int max_order);
    // Copies only: a corrector that was moved from would be left without its empty matrix.
    screen_corrector(screen_corrector const& other) = default;
    screen_corrector& operator=(screen_corrector const& other) = default;
    virtual ~screen_corrector();

    /// True for order 0.
    virtual bool is_trivial() const;

    /// The field c' of the part of the screen whose middle lies at `origin`: c'(p) = c(p + origin), in the
    /// scales of the whole screen. A copy when this is trivial or `origin` is the trivial point. An `origin`
    /// that is not finite leaves coefficients that are not.
    ///
    /// Source: three-term recurrence of the Chebyshev polynomials in a shifted argument.
    screen_corrector sub_grab(point const& origin) const;

    // For lists of correctors, whose elements are built, copied and destroyed one by one.
    static constexpr bool optimize_ctor() { return false; }
    static constexpr bool optimize_copyctor() { return false; }
    static constexpr bool optimize_dtor() { return false; }

protected:
    /// The n terms at `p`, in pixels; empty for an `order` beyond the range of an int or of memory.
    vector f(point p) const;

    /// Sets `order`, `coefficients` and `residual` to the least-squares field of that order in the present
    /// scales. `residual` is the root of the sum of squares in both coordinates over N - n, an unsigned
    /// difference, N being the number of points; NaN for N = n. Order 0, as which a negative one counts, has
    /// no coefficients and the residual 0.
    ///
    /// No coefficients and an infinite residual are left by points that do not determine the terms (fewer
    /// than n, all on one line or conic, a grid of no more lines than the order), by a number that is not
    /// finite, by lists of different length and by orders above 127. Only x and y count; a trivial point lies
    /// at the origin.
    ///
    /// The terms themselves are reduced, without normal equations. These square the condition: with points on
    /// a tenth of the screen no digit of a coefficient is left at order 6.
    ///
    /// Source: A. Bjorck, Numerical Methods for Least Squares Problems, SIAM 1996, 2.4, on Householder's
    /// reduction.
    void fit(int order_wanted, idioms::array<point> measured, idioms::array<point> nominal);
};

/// Adds the displacement at `p`; dimension and z stay. `p` itself when it or the corrector is trivial. An
/// x or y that is not finite stays without use.
TVMATH_API point operator*(point p, screen_corrector const& c);
/// Takes off the displacement at `p`: the inverse of `*` in first order only, since the displacement where
/// the point came from is another one. Without iteration on purpose: stored coordinates were made so.
TVMATH_API point operator/(point p, screen_corrector const& c);
/// The same for every point of a path, control points included; the path keeps their number.
TVMATH_API curve operator*(curve path, screen_corrector const& c);
TVMATH_API curve operator/(curve path, screen_corrector const& c);

}  // namespace tvmath
