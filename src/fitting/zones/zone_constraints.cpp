#include "zone_constraints.h"

#include <charconv>
#include <cmath>
#include <string>
#include <typeinfo>

inline namespace tvmath {
namespace {

// As %g writes it, in every locale.
std::string short_text(double value) {
    char text[32];
    return {text, std::to_chars(text, text + sizeof text, value, std::chars_format::general, 6).ptr};
}

CircleModel const& circle_model(Model& model) {
    return static_cast<CircleModel const&>(model);
}

}  // namespace

CircleModel::CircleModel(tvmath::circle const& c)
    : x(c.basis(0).x()), y(c.basis(0).y()), z(c.is_3d() ? c.basis(0).z() : 0.0), radius(c.radius()) {}

wide_string CircleModel::parameter_name(unsigned int index) {
    switch (index) {
        case 0:
            return u"radius"_w;
        case 1:
            return u"x"_w;
        case 2:
            return u"y"_w;
        default:
            return wide_string();
    }
}

wide_string CircleModel::name() {
    return u"circle"_w;
}

unsigned int CircleModel::parameter_count() {
    return 3;
}

double CircleModel::parameter(unsigned int index) {
    switch (index) {
        case 0:
            return radius;
        case 1:
            return x;
        case 2:
            return y;
        default:
            return 0.0;
    }
}

void CircleModel::set_parameter(unsigned int index, double value) {
    if (index == 0) radius = value;
    if (index == 1) x = value;
    if (index == 2) y = value;
}

Model* CircleModel::clone() {
    return new CircleModel(*this);
}

circle CircleModel::circle() {
    return tvmath::circle(radius, point(true, x, y, z));
}

wide_string ZoneCircleModel::parameter_name(unsigned int index) {
    return index == 3 ? u"zone"_w : CircleModel::parameter_name(index);
}

wide_string ZoneCircleModel::name() {
    return u"zone circle"_w;
}

unsigned int ZoneCircleModel::parameter_count() {
    return 4;
}

double ZoneCircleModel::parameter(unsigned int index) {
    return index == 3 ? zone : CircleModel::parameter(index);
}

void ZoneCircleModel::set_parameter(unsigned int index, double value) {
    if (index == 3) zone = value;
    CircleModel::set_parameter(index, value);
}

Model* ZoneCircleModel::clone() {
    return new ZoneCircleModel(*this);
}

bool ZoneCircleConstraint::less(Constraint const& other) const {
    std::type_info const &mine = typeid(*this), &its = typeid(other);
    if (mine != its) return mine.before(its);
    auto const& that = static_cast<ZoneCircleConstraint const&>(other);
    return x < that.x || (x == that.x && y < that.y);
}

wide_string ZoneCircleConstraint::described(char const* kind) const {
    return to_wide(std::string(kind) + " zone circle constraint, (" + short_text(x) + " " + short_text(y) +
                   ")");
}

double ZoneCircleConstraint::distance(CircleModel const& model) const {
    double const dx = x - model.x, dy = y - model.y;
    return std::sqrt(dx * dx + dy * dy);
}

vector ZoneCircleConstraint::signed_gradient(CircleModel const& model, double sign) const {
    double const d = distance(model);
    double const slopes[] = {sign, sign * (x - model.x) / d, sign * (y - model.y) / d, 0.5};
    return vector(4, slopes);
}

wide_string InnerZoneCircleConstraint::name() {
    return described("inner");
}

double InnerZoneCircleConstraint::value(Model& model) {
    return distance(circle_model(model)) - model.parameter(0) + model.parameter(3) / 2;
}

vector InnerZoneCircleConstraint::gradient(Model& model) {
    return signed_gradient(circle_model(model), -1.0);
}

wide_string OuterZoneCircleConstraint::name() {
    return described("outer");
}

double OuterZoneCircleConstraint::value(Model& model) {
    return model.parameter(0) + model.parameter(3) / 2 - distance(circle_model(model));
}

vector OuterZoneCircleConstraint::gradient(Model& model) {
    return signed_gradient(circle_model(model), 1.0);
}

wide_string ZoneCircleObjectiveFunction::name() {
    return u"form"_w;
}

double ZoneCircleObjectiveFunction::value(Model& model) {
    return model.parameter(3);
}

vector ZoneCircleObjectiveFunction::gradient(Model& model) {
    vector slope(model.parameter_count());
    slope(3) = 1.0;
    return slope;
}

}  // namespace tvmath
