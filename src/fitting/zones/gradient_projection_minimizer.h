#pragma once

#include <memory>
#include <set>
#include <vector>

#include "constrained_minimizer.h"

inline namespace tvmath {

/// Gradient projection with a variable set of active constraints: walks along the objective's gradient,
/// projected onto what the active constraints leave free, from one blocking constraint to the next. Curved
/// constraints are taken as linear about the model as it was at the last rebuild, and the model is brought
/// back onto the active ones by Newton steps.
///
/// Source: J. B. Rosen, The gradient projection method for nonlinear programming, J. SIAM 8 (1960) 181-217
/// and 9 (1961) 514-532.
class GradientProjectionMinimizer : public ConstrainedMinimizer {
public:
    using ConstrainedMinimizer::ConstrainedMinimizer;

    bool minimize() override;
    /// The greatest |value| over the active constraints, at the model.
    double maximum_violation() override;

private:
    struct order {
        bool operator()(Constraint const* a, Constraint const* b) const { return a->less(*b); }
    };
    /// What the main loop does next.
    enum class outcome { go_on, minimum, failure, turned };
    /// A step along `direction` that went past the least value: slopes at both ends of it.
    struct bracket {
        vector origin, direction;
        double low = 0, low_slope = 0, high = 0, high_slope = 0;
    };

    std::vector<Constraint*> active_;
    std::set<Constraint*, order> inactive_;
    std::unique_ptr<Model> reference_;
    matrix n_;  // a row for each active constraint: its gradient of length 1
    matrix b_;  // (N transpose(N))^-1
    matrix p_;  // the projector I - transpose(N) B N
    Constraint* last_activated_ = nullptr;

    bool reset();
    bool activate_all(std::list<Constraint*> const& constraints, bool equalities_only);
    bool activate(Constraint* constraint);
    void deactivate(unsigned int index);
    void restore_active();
    void rebuild();
    outcome step(bracket& turn);
    bool choose_direction(vector const& g, vector& direction, bool& finished);
    Constraint* find_blocker(vector const& direction, double& distance);
    bool secant_search(bracket turn);
};

}  // namespace tvmath
