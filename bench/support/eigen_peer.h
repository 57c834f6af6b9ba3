#pragma once

#include <Eigen/Dense>
#include <concepts>

#include "support/fit_models.h"

inline namespace tvmath {

/// Points as users of Eigen hold them: one column for each coordinate.
using eigen_points = Eigen::Matrix<double, Eigen::Dynamic, Eigen::Dynamic>;

/// Gauss-Newton with normal equations over whole columns, by the stopping rule of tvmath: a step below 1e-8
/// of the unknowns. The columns are allocated once, outside the time that is measured.
template <class model>
class eigen_peer {
public:
    using unknowns = Eigen::Matrix<double, model::unknowns, 1>;

    explicit eigen_peer(eigen_points const& points)
        : points_(points), jacobian_(points.rows(), model::unknowns), residual_(points.rows()) {}

    bool solve(unknowns& q) {
        for (int round = 0; round < 30; ++round) {
            fill<model>(q);
            unknowns const step =
                (jacobian_.transpose() * jacobian_).ldlt().solve(jacobian_.transpose() * residual_);
            q -= step;
            if (step.squaredNorm() < 1e-16 * q.squaredNorm()) return true;
        }
        return false;
    }

private:
    template <class radial>
    void fill(unknowns const& q) {
        constexpr int dimension = radial::coordinates;
        auto u = jacobian_.template leftCols<dimension>().array();
        for (int i = 0; i < dimension; ++i) u.col(i) = q[i] - points_.col(i).array();
        residual_ = jacobian_.template leftCols<dimension>().rowwise().norm();
        u.colwise() /= residual_.array();
        jacobian_.col(dimension).setConstant(-1);
        residual_.array() -= q[dimension];
    }

    // No expression of whole columns finds the foot of a point.
    template <std::same_as<ellipse_model>>
    void fill(unknowns const& q) {
        ellipse_model const present(q.data());
        for (Eigen::Index i = 0; i < points_.rows(); ++i) {
            double const p[] = {points_(i, 0), points_(i, 1)};
            double g[ellipse_model::unknowns];
            residual_[i] = present.row(p, g);
            for (int k = 0; k < ellipse_model::unknowns; ++k) jacobian_(i, k) = g[k];
        }
    }

    eigen_points const& points_;
    Eigen::Matrix<double, Eigen::Dynamic, model::unknowns> jacobian_;
    Eigen::VectorXd residual_;
};

/// Centroid and normal of the plane of least squares, by the eigenvectors of the scatter matrix.
inline void eigen_plane(Eigen::Matrix3Xd const& points, Eigen::Vector3d& center, Eigen::Vector3d& normal) {
    center = points.rowwise().mean();
    Eigen::Matrix3Xd const about = points.colwise() - center;
    Eigen::SelfAdjointEigenSolver<Eigen::Matrix3d> const axes(about * about.transpose());
    normal = axes.eigenvectors().col(0);
}

}  // namespace tvmath
