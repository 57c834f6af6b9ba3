#include "tvmath/sphere.h"

#include "tvmath/ellipse.h"
#include "tvmath/scalar.h"

inline namespace tvmath {
namespace {

// Half of a great circle: that above the horizontal plane through the centre, from end to end.
curve front_half_of_equator(point const& center, double radius, point const& normal) {
    point const z_axis(false, 0, 0, 1);
    point level = normalize(cross(z_axis, normal));
    // The equator normal to Z is the outline, where no half is the front one.
    if (level.length2d() == 0.0) level = point(false, 1, 0, 0);
    point const rising = cross(normal, level);
    return ellipse(make_transform(center, radius * level, radius * rising, radius * normal))
        .render_bezier(0, pi);
}

}  // namespace

sphere::sphere(double radius) : transform(dilation(radius, radius, radius)) {}

sphere::sphere(double radius, point center) : sphere(radius) {
    center.promote3d();
    translate(center);
}

double sphere::surface_area() const {
    return 4 * pi * dot(1, 1);
}

double sphere::volume() const {
    double const r = radius();
    return 4.0 / 3 * pi * r * r * r;
}

CRealRect sphere::get_bounding_rect() const {
    point const c = basis(0);
    double const r = radius();
    return CRealRect(c.x() - r, c.y() - r, c.x() + r, c.y() + r);
}

void sphere::render_bezier_equators(std::vector<curve>& paths) const {
    point const c = basis(0);
    double const r = radius();
    paths.push_back(ellipse(r, c).render_bezier());
    for (int axis = 1; axis <= 3; ++axis) paths.push_back(front_half_of_equator(c, r, direction(axis)));
}

}  // namespace tvmath
