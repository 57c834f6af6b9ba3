#include "constrained_minimizer.h"

inline namespace tvmath {
namespace {

template <class function>
vector central_gradient(function& f, Model& model) {
    vector gradient(model.parameter_count());
    for (unsigned int i = 0; i < gradient.capacity(); ++i) {
        double const x = model.parameter(i), step = model.gradient_step(i);
        model.set_parameter(i, x + step);
        double const ahead = f.value(model);
        model.set_parameter(i, x - step);
        gradient(i) = (ahead - f.value(model)) / (2 * step);
        model.set_parameter(i, x);
    }
    return gradient;
}

template <class function>
matrix stepped_hessian(function& f, Model& model) {
    unsigned int const n = model.parameter_count();
    matrix hessian(n, n);
    if (f.is_linear()) return hessian;
    vector const here = f.gradient(model);
    for (unsigned int i = 0; i < n; ++i) {
        double const x = model.parameter(i), step = model.hessian_step(i);
        model.set_parameter(i, x - step);
        hessian.row(i, (here - f.gradient(model)) / step);
        model.set_parameter(i, x);
    }
    return hessian;
}

}  // namespace

double Model::gradient_step(unsigned int) {
    return 1e-7;
}

double Model::hessian_step(unsigned int) {
    return 0.0001;
}

std::list<Constraint*> Model::own_constraints() {
    return {};
}

double Constraint::tolerance() {
    return 1e-8;
}

vector Constraint::gradient(Model& model) {
    return central_gradient(*this, model);
}

matrix Constraint::hessian(Model& model) {
    return stepped_hessian(*this, model);
}

vector ObjectiveFunction::gradient(Model& model) {
    return central_gradient(*this, model);
}

matrix ObjectiveFunction::hessian(Model& model) {
    return stepped_hessian(*this, model);
}

double ObjectiveFunction::tolerance() {
    return 1e-12;
}

void ConstrainedMinimizer::add_constraint(Constraint* constraint) {
    constraints_.push_back(constraint);
}

void ConstrainedMinimizer::clear_constraints() {
    constraints_.clear();
}

double ConstrainedMinimizer::maximum_violation() {
    return 0.0;
}

vector parameters_of(Model& model) {
    vector parameters(model.parameter_count());
    for (unsigned int i = 0; i < parameters.capacity(); ++i) parameters(i) = model.parameter(i);
    return parameters;
}

void set_parameters(Model& model, vector const& parameters) {
    for (unsigned int i = 0; i < parameters.capacity(); ++i) model.set_parameter(i, parameters[i]);
}

}  // namespace tvmath
