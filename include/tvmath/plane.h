#pragma once

#include "tvmath/export.h"
#include "tvmath/transform.h"

inline namespace tvmath {

/// A plane: the XY plane, with Z as its normal, carried by the transform it derives from.
///
/// `basis(0)` is a point of the plane, `basis(1)` and `basis(2)` are unit axes in it, `basis(3)` is the unit
/// normal. Angles in radians. The default is the null plane (`is_trivial()`).
class TVMATH_API plane : public transform {
public:
    plane() = default;
    explicit plane(transform const& t) : transform(t) {}
    /// The plane through `center` with that normal, of any length but 0. The axes are right-handed; the first
    /// one is the image, in the plane, of the coordinate axis that is most nearly perpendicular to the
    /// normal, Z before Y before X when their components in the normal differ by less than 1e-6. A 2D
    /// `center` lies in z = 0. A normal of length 0 gives axes of length 0 and NaN in the inverse map.
    plane(point center, point normal);

    point normal() const { return normalize(basis(3)); }
    /// Angle of the normal above the XY plane, from -pi / 2 to pi / 2.
    double pitch() const;
    /// Angle of the normal in the XY plane; when the normal is within 1e-10 of Z that of the first axis, and
    /// 0 when that has no direction in XY either.
    double yaw() const;
};

}  // namespace tvmath
