#include "algebraic_start.h"

#include <cmath>
#include <utility>

#include "geometry/xyz.h"
#include "tvmath/matrix.h"

inline namespace tvmath {
namespace geometry_fitter {
namespace {

// Coordinates 0 to 2.
double coordinate(xyz const& a, unsigned int i) {
    return i == 0 ? a.x : i == 1 ? a.y : a.z;
}

xyz relative(point const& p, point const& origin, unsigned int dimension) {
    return {p.x() - origin.x(), p.y() - origin.y(), dimension == 3 ? p.z() - origin.z() : 0.0};
}

// Moments about the first through point: of q transpose(q) / size², and of q |q|² / (2 size³).
struct moments {
    double second[3][3] = {}, third[3] = {};
    double size = 0;  // root mean square of the distance

    moments(std::vector<point> const& fit, point const& origin, unsigned int dimension) {
        for (point const& p : fit) {
            xyz const q = relative(p, origin, dimension);
            double const s = dot(q, q);
            size += s;
            for (unsigned int i = 0; i < dimension; ++i) {
                for (unsigned int j = i; j < dimension; ++j) {
                    second[i][j] += coordinate(q, i) * coordinate(q, j);
                }
                third[i] += s * coordinate(q, i) / 2;
            }
        }
        double const n = static_cast<double>(fit.size());
        size = std::sqrt(size / n);
        for (unsigned int i = 0; i < dimension; ++i) {
            for (unsigned int j = i; j < dimension; ++j) {
                second[j][i] = second[i][j] /= n * size * size;
            }
            third[i] /= n * size * size * size;
        }
    }
};

}  // namespace

bool algebraic_fit_through(std::vector<point> const& fit, std::vector<point> const& through,
                           unsigned int dimension, point& center, double& radius) {
    // About the first point to pass through, every circle through it is |q|² = 2 a q, a being its centre: the
    // squared deviations from that are least, and the same holds exactly at the other points.
    //     | M  Ct | | a           |   | b |
    //     | C  0  | | multipliers | = | d |        in units of the size of the data
    moments const m(fit, through[0], dimension);
    if (!(m.size > 0) || !std::isfinite(m.size)) return false;
    unsigned int const others = static_cast<unsigned int>(through.size()) - 1, n = dimension + others;
    matrix system(n, n);
    vector a(n);
    for (unsigned int i = 0; i < dimension; ++i) {
        for (unsigned int j = 0; j < dimension; ++j) system(i)(j) = m.second[i][j];
        a(i) = m.third[i];
    }
    for (unsigned int k = 0; k < others; ++k) {
        xyz const q = (1 / m.size) * relative(through[k + 1], through[0], dimension);
        for (unsigned int j = 0; j < dimension; ++j) {
            system(dimension + k)(j) = system(j)(dimension + k) = coordinate(q, j);
        }
        a(dimension + k) = dot(q, q) / 2;
    }
    if (!a.times_inverse_of(std::move(system))) return false;
    xyz const offset = m.size * xyz(a[0], a[1], dimension == 3 ? a[2] : 0.0);
    radius = length(offset);
    center = through[0] + point(false, offset.x, offset.y, offset.z);
    return true;
}

}  // namespace geometry_fitter
}  // namespace tvmath
