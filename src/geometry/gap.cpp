#include "tvmath/gap.h"

#include "planar_shape.h"
#include "tvmath/curve.h"

inline namespace tvmath {

gap::gap(double length, double distance, double angle, point center)
    : transform(dilation(length / 2, distance / 2).rotate(angle).translate(center)) {}

CRealRect gap::get_bounding_rect() const {
    return carried_square_rect(*this);
}

void gap::render_unit_gap(idioms::array<point>& lower, idioms::array<point>& upper) {
    lower = curve(point(true, -1, -1), point(true, 1, -1));
    upper = curve(point(true, -1, 1), point(true, 1, 1));
}

void gap::render_gap(idioms::array<point>& lower, idioms::array<point>& upper) const {
    render_unit_gap(lower, upper);
    lower *= *this;
    upper *= *this;
}

}  // namespace tvmath
