#pragma once

#include <ceres/ceres.h>
#include <ceres/tiny_solver.h>

#include <algorithm>
#include <cstddef>
#include <vector>

#include "support/fit_models.h"

inline namespace tvmath {

/// Points as users of Ceres hold them: the coordinates of one after those of the other.
struct flat_points {
    std::vector<double> numbers;
    int count = 0;
};

/// All points as one residual block with analytic derivatives: the way that costs Ceres least.
template <class model>
class whole_cost : public ceres::CostFunction {
public:
    explicit whole_cost(flat_points const& points) : points_(points) {
        set_num_residuals(points.count);
        mutable_parameter_block_sizes()->push_back(model::unknowns);
    }
    bool Evaluate(double const* const* q, double* residuals, double** jacobians) const override {
        double unused[model::unknowns];
        double const* p = points_.numbers.data();
        double* const j = jacobians ? jacobians[0] : nullptr;
        model const present(q[0]);
        for (int i = 0; i < points_.count; ++i, p += model::coordinates) {
            residuals[i] = present.row(p, j ? j + std::ptrdiff_t{i} * model::unknowns : unused);
        }
        return true;
    }

private:
    flat_points const& points_;
};

/// One point as a residual block of its own: the way of Ceres' examples.
template <class model>
class point_cost : public ceres::SizedCostFunction<1, model::unknowns> {
public:
    explicit point_cost(double const* p) : p_(p) {}
    bool Evaluate(double const* const* q, double* residuals, double** jacobians) const override {
        double unused[model::unknowns];
        residuals[0] = model(q[0]).row(p_, jacobians && jacobians[0] ? jacobians[0] : unused);
        return true;
    }

private:
    double const* p_;
};

/// A problem that is built once, outside the time that is measured, and solved from any start.
template <class model>
class ceres_peer {
public:
    ceres_peer(flat_points const& points, bool one_block) {
        if (one_block) {
            problem_.AddResidualBlock(new whole_cost<model>(points), nullptr, unknowns_);
        } else {
            for (int i = 0; i < points.count; ++i) {
                double const* const p = points.numbers.data() + std::ptrdiff_t{i} * model::coordinates;
                problem_.AddResidualBlock(new point_cost<model>(p), nullptr, unknowns_);
            }
        }
        options_.linear_solver_type = ceres::DENSE_NORMAL_CHOLESKY;
        options_.jacobi_scaling = false;  // nothing that these features need, and a pass over the points
        options_.logging_type = ceres::SILENT;
        // The stopping rule of tvmath, a step below 1e-8 of the unknowns. By default Ceres would already stop
        // where the sum of squares falls by less than 1e-6, digits short of the answer.
        options_.parameter_tolerance = 1e-8;
        options_.function_tolerance = 0;
        options_.gradient_tolerance = 0;
    }

    bool solve(double const* start) {
        std::copy_n(start, model::unknowns, unknowns_);
        ceres::Solver::Summary summary;
        ceres::Solve(options_, &problem_, &summary);
        return summary.IsSolutionUsable();
    }

    double const* unknowns() const { return unknowns_; }

private:
    double unknowns_[model::unknowns] = {};
    ceres::Problem problem_;
    ceres::Solver::Options options_;
};

/// The solver that Ceres offers for small problems: its evaluation is inlined, its Jacobian one matrix.
template <class model>
class tiny_ceres_peer {
public:
    using unknowns = Eigen::Matrix<double, model::unknowns, 1>;

    explicit tiny_ceres_peer(flat_points const& points) : cost_{points} {
        solver_.options.parameter_tolerance = 1e-8;
        solver_.options.function_tolerance = 0;
        solver_.options.gradient_tolerance = 0;
    }
    void solve(unknowns& q) { solver_.Solve(cost_, &q); }

private:
    struct whole {
        using Scalar = double;
        enum { NUM_RESIDUALS = Eigen::Dynamic, NUM_PARAMETERS = model::unknowns };
        flat_points const& points;

        int NumResiduals() const { return points.count; }
        bool operator()(double const* q, double* residuals, double* jacobian) const {
            double const* p = points.numbers.data();
            double g[model::unknowns];
            model const present(q);
            for (std::ptrdiff_t i = 0, n = points.count; i < n; ++i, p += model::coordinates) {
                residuals[i] = present.row(p, g);
                if (!jacobian) continue;
                for (int k = 0; k < model::unknowns; ++k) jacobian[k * n + i] = g[k];
            }
            return true;
        }
    };

    whole cost_;
    ceres::TinySolver<whole> solver_;
};

}  // namespace tvmath
