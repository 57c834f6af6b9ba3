#pragma once

#include <cmath>

inline namespace tvmath {

// Features as the peers fit them: the residual of a point `p` and its derivatives `g` by the unknowns `q`.
// `coordinates` of a point take part.

/// Unknowns: centre, radius.
template <int dimension>
struct radial_model {
    static constexpr int coordinates = dimension, unknowns = dimension + 1;

    static double row(double const* p, double const* q, double* g) {
        double squares = 0;
        for (int i = 0; i < dimension; ++i) {
            g[i] = q[i] - p[i];
            squares += g[i] * g[i];
        }
        double const distance = std::sqrt(squares);
        for (int i = 0; i < dimension; ++i) g[i] /= distance;
        g[dimension] = -1;
        return distance - q[dimension];
    }
};
using circle_model = radial_model<2>;
using sphere_model = radial_model<3>;

/// Unknowns: centre, half-axes a and b, angle of a. The distance is the orthogonal one; its foot is found by
/// Newton's method, and need not move for the derivatives, since it moves along the ellipse.
struct ellipse_model {
    static constexpr int coordinates = 2, unknowns = 5;

    static double row(double const* p, double const* q, double* g) {
        double const a = q[2], b = q[3], cos = std::cos(q[4]), sin = std::sin(q[4]);
        double const dx = p[0] - q[0], dy = p[1] - q[1], u = cos * dx + sin * dy, v = cos * dy - sin * dx;
        double c = u / a, s = v / b;
        normalize(c, s);
        for (int round = 0; round < 20; ++round) {
            double const f = (a * a - b * b) * c * s - u * a * s + v * b * c,
                         slope = (a * a - b * b) * (c * c - s * s) - u * a * c - v * b * s, turn = -f / slope;
            double const turned = c - s * turn;
            s += c * turn;
            c = turned;
            normalize(c, s);
            if (std::fabs(turn) < 1e-8) break;  // the next one would be its square
        }
        double nu = b * c, nv = a * s;
        normalize(nu, nv);
        g[0] = -(cos * nu - sin * nv);
        g[1] = -(sin * nu + cos * nv);
        g[2] = -c * nu;
        g[3] = -s * nv;
        g[4] = nu * b * s - nv * a * c;
        return (u - a * c) * nu + (v - b * s) * nv;
    }

private:
    static void normalize(double& x, double& y) {
        double const scale = 1 / std::sqrt(x * x + y * y);
        x *= scale;
        y *= scale;
    }
};

/// Unknowns: a, b and d of the plane with normal n = (a, b, 1), scaled to unit length, and n p = d.
struct plane_model {
    static constexpr int coordinates = 3, unknowns = 3;

    static double row(double const* p, double const* q, double* g) {
        double const scale = 1 / std::sqrt(q[0] * q[0] + q[1] * q[1] + 1),
                     along = scale * (q[0] * p[0] + q[1] * p[1] + p[2]);
        g[0] = scale * (p[0] - along * scale * q[0]);
        g[1] = scale * (p[1] - along * scale * q[1]);
        g[2] = -1;
        return along - q[2];
    }
};

}  // namespace tvmath
