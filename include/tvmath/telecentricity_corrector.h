#pragma once

#include <cmath>
#include <vector>

#include "tvmath/export.h"
#include "tvmath/point.h"
#include "tvmath/scalar.h"
#include "tvmath/screen_corrector.h"
#include "tvmath/transform.h"

inline namespace tvmath {

/// The sideways error of a lens that is not quite telecentric, linear in the height: a point at (x, y, z) is
/// moved by z times (k x + t_x, k y + t_y).
///
/// Heights are relative to the reference height of the fit, lengths in machine units, k per unit of length.
/// Plain numbers. Nothing here raises.
class TVMATH_API telecentricity_corrector {
public:
    double residual = domain_error_value;  ///< Standard error of the fit in x and y combined; finite if used.
    double magnification = 0.0;            ///< k, relative change of scale per unit of z.
    double tilt_x = 0.0;                   ///< t_x, shift per unit of z.
    double tilt_y = 0.0;                   ///< t_y
    // Standard uncertainties of the three.
    double magnification_error = 0.0;
    double tilt_x_error = 0.0;
    double tilt_y_error = 0.0;

    /// The correction from observations of one fixed artefact: `image_points[i]` is where the camera saw it,
    /// on the screen, while the stage stood at `stage_points[i]`, whose z is the height.
    ///
    /// An image point corrected by `screen` and carried by `screen_to_machine` is c, the stage's way from its
    /// first position is d, with its height above `z_reference`. Least squares over k, t_x, t_y and the place
    /// o of the artefact in c + d = d.z (k c + t) + o, in x and y together. Each axis has a variance of its
    /// own, of dof = N - P / 2 for N observations and P unknowns, and both are carried through the common
    /// solution to the uncertainties.
    ///
    /// Returns the default object for lists of different lengths, for fewer than 3 observations, for
    /// observations that do not determine the unknowns, such as those at one height, and for a number among
    /// the data that is not finite.
    ///
    /// Source: for the places, which are taken out beforehand, R. Frisch, F. V. Waugh, Partial time
    /// regressions as compared with individual trends, Econometrica 1 (1933) 387-401; for the rest W.
    /// M. Gentleman, Least squares computations by Givens transformations without square roots, J. Inst.
    /// Maths Applics 12 (1973) 329-336.
    static telecentricity_corrector fit(std::vector<point> const& image_points,
                                        std::vector<point> const& stage_points, double z_reference,
                                        screen_corrector screen, transform screen_to_machine);
    /// The same with several artefacts: observation i is of artefact `artefact_ids[i]`, from 0 on, each with
    /// a place of its own, so that P is 2 G + 3, G being one more than the greatest id.
    ///
    /// Returns the default object also unless 2 N is above P and for an id below the greatest that is never
    /// used. Time and memory grow with N alone.
    static telecentricity_corrector fit(std::vector<point> const& image_points,
                                        std::vector<point> const& stage_points,
                                        std::vector<unsigned int> const& artefact_ids, double z_reference,
                                        screen_corrector screen, transform screen_to_machine);

    /// True when `residual` is not finite: no fit.
    bool is_trivial() const { return !std::isfinite(residual); }

    /// The point moved by the correction; z stays. A point that is not 3D, or whose z is exactly 0, and any
    /// point under a trivial corrector come back as they are.
    point apply_correction(point const& p) const;
    /// The inverse of `apply_correction`, exact but for rounding, as long as 1 + k z is not 0.
    point remove_correction(point const& p) const;

    static constexpr bool optimize_ctor() { return false; }
    static constexpr bool optimize_copyctor() { return true; }
    static constexpr bool optimize_dtor() { return true; }
};

inline point operator*(point const& p, telecentricity_corrector const& corrector) {
    return corrector.apply_correction(p);
}
inline point operator/(point const& p, telecentricity_corrector const& corrector) {
    return corrector.remove_correction(p);
}

}  // namespace tvmath
