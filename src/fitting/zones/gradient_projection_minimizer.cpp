#include "gradient_projection_minimizer.h"

#include <algorithm>
#include <cmath>

#include "tvmath/scalar.h"

inline namespace tvmath {
namespace {

// Each step ends at another constraint; a few dozen are enough where it ends at all.
constexpr int most_steps = 100;
constexpr int most_secants = 100;
// The cosine between the direction and a gradient below which that gradient depends on the active ones but
// for rounding: the projector would lose half of its digits to it.
constexpr double least_cosine = 1e-8;

}  // namespace

double GradientProjectionMinimizer::maximum_violation() {
    double most = 0;
    for (Constraint* c : active_) most = std::max(most, std::fabs(c->value(*model_)));
    return most;
}

bool GradientProjectionMinimizer::minimize() {
    if (!model_ || !objective_ || !reset()) return false;
    for (int k = 0; k < most_steps; ++k) {
        bracket turn;
        switch (step(turn)) {
            case outcome::go_on:
                break;
            case outcome::minimum:
                return true;
            case outcome::failure:
                return false;
            case outcome::turned:
                return secant_search(turn);
        }
    }
    return false;
}

bool GradientProjectionMinimizer::reset() {
    reference_.reset(model_->clone());
    p_ = matrix::identity(model_->parameter_count());
    n_ = matrix();
    b_ = matrix();
    active_.clear();
    inactive_.clear();
    last_activated_ = nullptr;
    return activate_all(model_->own_constraints(), true) && activate_all(constraints_, false);
}

bool GradientProjectionMinimizer::activate_all(std::list<Constraint*> const& constraints,
                                               bool equalities_only) {
    for (Constraint* c : constraints) {
        if (c->is_equality()) {
            if (active_.size() >= model_->parameter_count() || !activate(c)) return false;
        } else if (!equalities_only) {
            inactive_.insert(c);
        }
    }
    return true;
}

GradientProjectionMinimizer::outcome GradientProjectionMinimizer::step(bracket& turn) {
    restore_active();
    vector const g = -objective_->gradient(*model_);
    vector d;
    bool finished = false;
    if (!choose_direction(g, d, finished)) return finished ? outcome::minimum : outcome::failure;

    double best = infinity;
    Constraint* const blocker = find_blocker(d, best);
    if (!blocker) return outcome::failure;  // unbounded
    vector const x0 = parameters_of(*model_);
    set_parameters(*model_, x0 + best * d);
    double const slope = dot(-objective_->gradient(*model_), d);
    if (slope < 0.0) {
        turn = {x0, d, 0.0, dot(g, d), best, slope};
        return outcome::turned;
    }
    if (!activate(blocker)) return outcome::failure;
    last_activated_ = blocker;
    return outcome::go_on;
}

// Lambda = B N g are the multipliers; a constraint with a positive one holds the model back and is let go.
bool GradientProjectionMinimizer::choose_direction(vector const& g, vector& direction, bool& finished) {
    double most = -1.0;
    unsigned int index = 0;
    bool any = false;
    if (!active_.empty()) {
        vector const lambda = (b_ * n_) * g;
        for (unsigned int i = 0; i < lambda.capacity(); ++i) {
            if (!(lambda[i] > most)) continue;
            most = lambda[i];
            index = i;
            any = true;
        }
    }
    if (norm(p_ * g) >= objective_->tolerance()) {
        double row_sum = 0;
        for (unsigned int i = 0; i < rows(b_); ++i) row_sum = std::max(row_sum, manhatten_norm(b_[i]));
        if (any && row_sum < most) deactivate(index);
    } else {
        finished = !any || most <= 0.0 || active_[index] == last_activated_;
        if (finished) return false;
        deactivate(index);
    }
    direction = normalize(p_ * g);
    return std::isfinite(norm(direction));
}

Constraint* GradientProjectionMinimizer::find_blocker(vector const& direction, double& distance) {
    vector const moved = parameters_of(*model_) - parameters_of(*reference_);
    Constraint* blocker = nullptr;
    for (Constraint* c : inactive_) {
        vector const gradient = c->gradient(*reference_);
        double const a = dot(gradient, direction);
        if (!(a < -least_cosine * norm(gradient))) continue;
        double const value = c->value(*reference_) + dot(gradient, moved);
        // On the constraint but below 0 by rounding, as are all points of a perfect circle: it blocks at
        // once.
        double const s = value < 0.0 && value >= -c->tolerance() ? 0.0 : -value / a;
        if (!(s >= 0.0 && s < distance)) continue;
        distance = s;
        blocker = c;
    }
    return blocker;
}

bool GradientProjectionMinimizer::secant_search(bracket turn) {
    auto const slope_at = [&](double s) {
        set_parameters(*model_, turn.origin + s * turn.direction);
        return dot(-objective_->gradient(*model_), turn.direction);
    };
    for (int k = 0; k < most_secants && turn.low_slope != turn.high_slope && turn.low != turn.high; ++k) {
        double const s =
            (turn.high_slope * turn.low - turn.low_slope * turn.high) / (turn.high_slope - turn.low_slope);
        double const t = slope_at(s);
        if (std::fabs(t) < objective_->tolerance()) return true;
        bool const before = t * turn.low_slope >= 0.0;
        (before ? turn.low : turn.high) = s;
        (before ? turn.low_slope : turn.high_slope) = t;
    }
    set_parameters(*model_, turn.origin + (turn.low + turn.high) * 0.5 * turn.direction);
    return true;
}

// Bordering: with p = P n and w = 1 / (n . p),
//     B becomes  B + w r transpose(r)  bordered by -w r and w, r = B N n;    P becomes P - w p transpose(p).
bool GradientProjectionMinimizer::activate(Constraint* constraint) {
    vector const n = normalize(constraint->gradient(*reference_));
    vector const p = p_ * n;
    double const np = dot(n, p);
    if (!(np > 0.0)) return false;  // depends on the active ones
    double const w = 1 / np;
    unsigned int const k = static_cast<unsigned int>(active_.size());
    vector const r = k == 0 ? vector() : b_ * (n_ * n);
    matrix bordered(k + 1, k + 1);
    for (unsigned int i = 0; i < k; ++i) {
        for (unsigned int j = 0; j < k; ++j) bordered(i)(j) = b_[i][j] + w * r[i] * r[j];
        bordered(i)(k) = bordered(k)(i) = -w * r[i];
    }
    bordered(k)(k) = w;
    b_ = bordered;
    n_.redim(k + 1, n.capacity());
    n_.row(k, n);
    p_ -= outer_product(p, p) *= w;
    if (k + 1 == n.capacity()) p_ = 0.0;  // nothing is left free, not even by rounding
    active_.push_back(constraint);
    inactive_.erase(constraint);
    return true;
}

// The reverse. What the removed row n had taken from the projector is the part of it that the remaining ones
// do not span: p = n - transpose(N) B N n, with N and B as they are without it.
void GradientProjectionMinimizer::deactivate(unsigned int index) {
    unsigned int const last = static_cast<unsigned int>(active_.size()) - 1;
    inactive_.insert(active_[index]);
    vector const removed = n_[index];
    active_[index] = active_[last];
    active_.pop_back();
    n_.row(index, n_.row(last));
    if (index != last) {
        vector const row = b_.row(index);
        b_.row(index, b_.row(last));
        b_.row(last, row);
        vector const column = b_.col(index);
        b_.col(index, b_.col(last));
        b_.col(last, column);
    }
    double const pivot = b_[last][last];
    matrix shrunk(last, last);
    for (unsigned int i = 0; i < last; ++i) {
        for (unsigned int j = 0; j < last; ++j) shrunk(i)(j) = b_[i][j] - b_[i][last] * b_[last][j] / pivot;
    }
    b_ = shrunk;
    n_.redim(last, removed.capacity());
    vector p = removed;
    if (last > 0) p -= transpose(n_) * (b_ * (n_ * removed));
    p_ += outer_product(p, p) *= pivot;  // pivot = 1 / (n . p)
}

void GradientProjectionMinimizer::restore_active() {
    auto const is_off = [this](Constraint* c) { return std::fabs(c->value(*model_)) > c->tolerance(); };
    if (std::none_of(active_.begin(), active_.end(), is_off)) return;
    unsigned int const n = model_->parameter_count(), k = static_cast<unsigned int>(active_.size());
    for (int round = 0; round < 10; ++round) {
        // The shortest step onto the linearised constraints: I, transpose(G); G, 0.
        matrix system(n + k, n + k);
        vector right(n + k);
        for (unsigned int i = 0; i < n; ++i) system(i)(i) = 1;
        for (unsigned int i = 0; i < k; ++i) {
            vector const gradient = active_[i]->gradient(*model_);
            for (unsigned int j = 0; j < n; ++j) system(n + i)(j) = system(j)(n + i) = gradient[j];
            right(n + i) = -active_[i]->value(*model_);
        }
        if (!right.times_inverse_of(system)) break;  // symmetric, so row or column is the same
        set_parameters(*model_, parameters_of(*model_) + vector(n, right.begin()));
        if (std::none_of(active_.begin(), active_.end(), is_off)) break;
    }
    rebuild();
}

void GradientProjectionMinimizer::rebuild() {
    reference_.reset(model_->clone());
    unsigned int const n = model_->parameter_count(), k = static_cast<unsigned int>(active_.size());
    n_ = matrix(k, n);
    for (unsigned int i = 0; i < k; ++i) n_.row(i, normalize(active_[i]->gradient(*model_)));
    b_ = inverse_gj(n_ * transpose(n_));
    p_ = matrix::identity(n) - transpose(n_) * (b_ * n_);
}

}  // namespace tvmath
