#include "tvmath/telecentricity_corrector.h"

inline namespace tvmath {
namespace {

// The point moved by the correction at (x, y) times `factor`.
point moved(point p, telecentricity_corrector const& c, double factor) {
    point d(false, p.x() * c.magnification + c.tilt_x, p.y() * c.magnification + c.tilt_y);
    d *= factor;
    return p += d;
}

// Exactly 0 on purpose: the correction vanishes there, whatever the fields hold. NaN is no 0.
bool has_correction(point const& p, telecentricity_corrector const& c) {
    return p.is_3d() && p.z() != 0.0 && !c.is_trivial();
}

}  // namespace

point telecentricity_corrector::apply_correction(point const& p) const {
    return has_correction(p, *this) ? moved(p, *this, p.z()) : p;
}

point telecentricity_corrector::remove_correction(point const& p) const {
    return has_correction(p, *this) ? moved(p, *this, -p.z() / (p.z() * magnification + 1.0)) : p;
}

}  // namespace tvmath
