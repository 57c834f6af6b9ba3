#pragma once

#include "constrained_minimizer.h"
#include "tvmath/circle.h"

inline namespace tvmath {

/// A circle with the parameters radius, x, y.
class CircleModel : public Model {
public:
    explicit CircleModel(tvmath::circle const& c);

    wide_string parameter_name(unsigned int index) override;
    wide_string name() override;
    unsigned int parameter_count() override;
    double parameter(unsigned int index) override;
    void set_parameter(unsigned int index, double value) override;
    Model* clone() override;
    virtual tvmath::circle circle();

    double x = 0, y = 0, z = 0;
    double radius = 0;
};

/// A circle amid a ring of the width `zone`, the fourth parameter.
class ZoneCircleModel : public CircleModel {
public:
    using CircleModel::CircleModel;

    wide_string parameter_name(unsigned int index) override;
    wide_string name() override;
    unsigned int parameter_count() override;
    double parameter(unsigned int index) override;
    void set_parameter(unsigned int index, double value) override;
    Model* clone() override;

    double zone = 0;
};

/// One measured point and a side of the ring.
class ZoneCircleConstraint : public Constraint {
public:
    bool is_equality() override { return false; }
    bool is_linear() override { return false; }
    /// By type, then by x, then by y.
    bool less(Constraint const& other) const override;

    double x = 0, y = 0;

protected:
    wide_string described(char const* kind) const;
    double distance(CircleModel const& model) const;
    /// (sign, sign dx / d, sign dy / d, 1/2).
    vector signed_gradient(CircleModel const& model, double sign) const;
};

/// The point is not inside the ring: d - radius + zone / 2, d its distance from the centre.
class InnerZoneCircleConstraint : public ZoneCircleConstraint {
public:
    wide_string name() override;
    double value(Model& model) override;
    vector gradient(Model& model) override;
};

/// The point is not outside the ring: radius + zone / 2 - d.
class OuterZoneCircleConstraint : public ZoneCircleConstraint {
public:
    wide_string name() override;
    double value(Model& model) override;
    vector gradient(Model& model) override;
};

/// The width of the ring.
class ZoneCircleObjectiveFunction : public ObjectiveFunction {
public:
    wide_string name() override;
    bool is_linear() override { return true; }
    double value(Model& model) override;
    vector gradient(Model& model) override;
    double tolerance() override { return 1e-9; }
};

}  // namespace tvmath
