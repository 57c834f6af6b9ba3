#pragma once

#include <list>
#include <vector>

#include "tvmath/matrix.h"
#include "tvmath/vector.h"
#include "tvmath/wide_string.h"

inline namespace tvmath {

class Constraint;

/// What a minimiser varies: some named numbers.
class Model {
public:
    virtual wide_string parameter_name(unsigned int index) = 0;
    virtual wide_string name() = 0;
    virtual unsigned int parameter_count() = 0;
    virtual double parameter(unsigned int index) = 0;
    virtual void set_parameter(unsigned int index, double value) = 0;
    /// Step of a numeric first derivative.
    virtual double gradient_step(unsigned int index);
    /// Step of a numeric second derivative.
    virtual double hessian_step(unsigned int index);
    /// Constraints that are part of the model and active from the start; none here.
    virtual std::list<Constraint*> own_constraints();
    /// A new copy, which the caller deletes.
    virtual Model* clone() = 0;
    virtual ~Model() = default;
};

/// A condition on a model, met when its value is at or above 0.
class Constraint {
public:
    virtual wide_string name() = 0;
    virtual bool is_equality() = 0;
    virtual bool is_linear() = 0;
    virtual double value(Model& model) = 0;
    /// The value that counts as 0 on an active constraint.
    virtual double tolerance();
    /// Derivatives by the parameters; by central differences here.
    virtual vector gradient(Model& model);
    /// Second derivatives; 0 for a linear constraint, by differences of the gradient otherwise.
    virtual matrix hessian(Model& model);
    /// A strict order of constraints, also of different types.
    virtual bool less(Constraint const& other) const = 0;
    virtual ~Constraint() = default;
};

/// What is minimised.
class ObjectiveFunction {
public:
    virtual wide_string name() = 0;
    virtual bool is_linear() = 0;
    virtual double value(Model& model) = 0;
    virtual vector gradient(Model& model);
    virtual matrix hessian(Model& model);
    /// A projected gradient or a slope below it counts as 0.
    virtual double tolerance();
    virtual ~ObjectiveFunction() = default;
};

/// Minimises an objective of a model under constraints; owns none of the three.
class ConstrainedMinimizer {
public:
    ConstrainedMinimizer(Model* model, ObjectiveFunction* objective) : model_(model), objective_(objective) {}
    ConstrainedMinimizer(ConstrainedMinimizer const&) = delete;
    ConstrainedMinimizer& operator=(ConstrainedMinimizer const&) = delete;

    virtual ~ConstrainedMinimizer() = default;
    /// True when the model is at a minimum; false when there is none, and when something is missing.
    virtual bool minimize() = 0;
    virtual void add_constraint(Constraint* constraint);
    virtual void clear_constraints();
    /// How far the model is off its active constraints, where a minimiser knows them; 0 here.
    virtual double maximum_violation();

protected:
    Model* model_;
    ObjectiveFunction* objective_;
    std::list<Constraint*> constraints_;
};

/// All parameters, and the way back.
vector parameters_of(Model& model);
void set_parameters(Model& model, vector const& parameters);

}  // namespace tvmath
