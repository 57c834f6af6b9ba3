#include "circle_answers.h"

inline namespace tvmath {

void circle_answers::add(double radius, xy const& at, double height) {
    xyz const center = origin_ + xyz(at.x, at.y, height);
    if (center.is_finite() && std::isfinite(radius) && radius > 0) {
        found_.push_back(circle(radius, center.location(solid_)));
    }
}

void circle_answers::fill(std::vector<Circle_Description>& circles) const {
    circles.clear();
    for (circle const& c : found_) circles.emplace_back().geometry = c;
}

}  // namespace tvmath
