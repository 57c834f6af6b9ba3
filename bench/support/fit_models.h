#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>

inline namespace tvmath {

// Features as the peers fit them. A model is made for one set of unknowns `q`; its row is the residual of a
// point `p`, of which `coordinates` take part, and the derivatives `g` by the unknowns.

/// Unknowns: centre, radius.
template <int dimension>
class radial_model {
public:
    static constexpr int coordinates = dimension, unknowns = dimension + 1;

    explicit radial_model(double const* q) { std::copy_n(q, unknowns, q_); }
    double row(double const* p, double* g) const {
        double squares = 0;
        for (int i = 0; i < dimension; ++i) {
            g[i] = q_[i] - p[i];
            squares += g[i] * g[i];
        }
        double const distance = std::sqrt(squares);
        for (int i = 0; i < dimension; ++i) g[i] /= distance;
        g[dimension] = -1;
        return distance - q_[dimension];
    }

private:
    double q_[std::size_t{unknowns}];
};
using circle_model = radial_model<2>;
using sphere_model = radial_model<3>;

/// Unknowns: centre, half-axes a and b, angle of a. The distance is the orthogonal one; its foot is found by
/// Newton's method, and need not move for the derivatives, since it moves along the ellipse.
class ellipse_model {
public:
    static constexpr int coordinates = 2, unknowns = 5;

    explicit ellipse_model(double const* q)
        : x_(q[0]), y_(q[1]), a_(q[2]), b_(q[3]), cos_(std::cos(q[4])), sin_(std::sin(q[4])) {}
    double row(double const* p, double* g) const {
        double const dx = p[0] - x_, dy = p[1] - y_, u = cos_ * dx + sin_ * dy, v = cos_ * dy - sin_ * dx,
                     squares = a_ * a_ - b_ * b_;
        double c = u / a_, s = v / b_;
        normalize(c, s);
        for (int round = 0; round < 20; ++round) {
            double const f = squares * c * s - u * a_ * s + v * b_ * c,
                         slope = squares * (c * c - s * s) - u * a_ * c - v * b_ * s, turn = -f / slope,
                         turned = c - s * turn;
            s += c * turn;
            c = turned;
            normalize(c, s);
            if (std::fabs(turn) < 1e-8) break;  // the next one would be its square
        }
        double nu = b_ * c, nv = a_ * s;
        normalize(nu, nv);
        g[0] = sin_ * nv - cos_ * nu;
        g[1] = -(sin_ * nu + cos_ * nv);
        g[2] = -c * nu;
        g[3] = -s * nv;
        g[4] = nu * b_ * s - nv * a_ * c;
        return (u - a_ * c) * nu + (v - b_ * s) * nv;
    }

private:
    static void normalize(double& x, double& y) {
        double const scale = 1 / std::sqrt(x * x + y * y);
        x *= scale;
        y *= scale;
    }

    double x_, y_, a_, b_, cos_, sin_;
};

/// Unknowns: a, b and d of the plane with normal n = (a, b, 1), scaled to unit length, and n p = d.
class plane_model {
public:
    static constexpr int coordinates = 3, unknowns = 3;

    explicit plane_model(double const* q)
        : a_(q[0]), b_(q[1]), d_(q[2]), scale_(1 / std::sqrt(a_ * a_ + b_ * b_ + 1)) {}
    double row(double const* p, double* g) const {
        double const along = scale_ * (a_ * p[0] + b_ * p[1] + p[2]);
        g[0] = scale_ * (p[0] - along * scale_ * a_);
        g[1] = scale_ * (p[1] - along * scale_ * b_);
        g[2] = -1;
        return along - d_;
    }

private:
    double a_, b_, d_, scale_;
};

}  // namespace tvmath
