// Shapes through measured points. They are fits, so they stand above the shapes that declare them.

#include <initializer_list>
#include <vector>

#include "tvmath/circle.h"
#include "tvmath/cylinder.h"
#include "tvmath/cylinder_fit.h"
#include "tvmath/ellipse_fit.h"
#include "tvmath/feature_fit.h"
#include "tvmath/shape_fit.h"
#include "tvmath/sphere.h"

inline namespace tvmath {
namespace {

idioms::array<point> listed(std::initializer_list<point> points) {
    return idioms::array<point>(static_cast<unsigned int>(points.size()), points.begin());
}

}  // namespace

circle::circle(point a, point b, point c) : circle(circle_fit(listed({a, b, c}))) {}

ellipse::ellipse(point a, point b, point c) : ellipse(circle_fit(listed({a, b, c}))) {}

ellipse::ellipse(point a, point b, point c, point d, point e)
    : ellipse(ellipse_fit(listed({a, b, c, d, e}))) {}

sphere::sphere(point a, point b, point c, point d) : sphere(sphere_fit({a, b, c, d})) {}

rectangle::rectangle(point a, point b, point c, point d, point e)
    : rectangle(rectangle_fit(listed({a, b, c, d, e}), rectangle())) {}

slot::slot(point a, point b, point c, point d, point e) : slot(slot_fit(listed({a, b, c, d, e}))) {}

gap::gap(point a, point b, point c) : gap(gap_fit(listed({a, b, c}))) {}

cylinder::cylinder(point a, point b, point c, point d, point e)
    : cylinder(cylinder_fit(listed({a, b, c, d, e}))) {}

}  // namespace tvmath
