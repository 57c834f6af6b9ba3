#include "tvmath/plane.h"

#include <cmath>

#include "geometry/direction_angles.h"

inline namespace tvmath {
namespace {

// Beyond this of the Z axis an angle in XY means something; within, rounding has made it.
bool has_direction_in_xy(point const& p) {
    return std::fabs(p.x()) > 1e-10 || std::fabs(p.y()) > 1e-10;
}

// The coordinate axis that is most nearly perpendicular to n. The bias keeps the choice, and with it the
// frame of the plane, steady when rounding stirs components that are meant to be equal.
point most_perpendicular_axis(point const& n) {
    constexpr double bias = 1e-6;
    unsigned int i = 3;
    if (std::fabs(n[i]) - bias > std::fabs(n[2])) i = 2;
    if (std::fabs(n[i]) - bias > std::fabs(n[1])) i = 1;
    return point(false, i == 1, i == 2, i == 3);
}

}  // namespace

plane::plane(point center, point normal) {
    point n = normalize(normal);
    n.promote3d();
    point const v = normalize(cross(n, most_perpendicular_axis(n))), u = cross(v, n);
    static_cast<transform&>(*this) = make_transform(center, u, v, n);
}

double plane::pitch() const {
    return pitch_of(basis(3));
}

double plane::yaw() const {
    for (point const& axis : {basis(3), basis(1)}) {
        if (has_direction_in_xy(axis)) return axis.angle2d();
    }
    return 0.0;
}

}  // namespace tvmath
