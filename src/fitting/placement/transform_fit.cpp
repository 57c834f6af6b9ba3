#include <algorithm>
#include <cmath>
#include <vector>

#include "fitting/point_lists.h"
#include "geometry/xyz.h"
#include "tvmath/matrix.h"
#include "tvmath/transform.h"

inline namespace tvmath {
namespace {

// One pair of points as plain numbers.
struct weighted_pair {
    double from[3], to[3];
    double weight;
    bool located;  // directions know nothing of the offset
};

struct pair_list {
    std::vector<weighted_pair> pairs;
    double weight = 0, located_weight = 0;
};

void store(double (&slots)[3], point const& p) {
    xyz const q(p);
    slots[0] = q.x;
    slots[1] = q.y;
    slots[2] = q.z;
}

pair_list usable_pairs(idioms::array<point> const& from, idioms::array<point> const& to,
                       idioms::array<double> const& weights) {
    pair_list list;
    point const *const p = from.begin(), *const q = to.begin();
    for (unsigned int i = 0; i < from.capacity(); ++i) {
        double const weight = weights.is_trivial() ? 1.0 : weights[i];
        bool const located = p[i].is_location();
        if (!(weight > 0) || located != q[i].is_location() || p[i].is_trivial() || q[i].is_trivial())
            continue;
        weighted_pair& pair = list.pairs.emplace_back();
        store(pair.from, p[i]);
        store(pair.to, q[i]);
        pair.weight = weight;
        pair.located = located;
        list.weight += weight;
        if (located) list.located_weight += weight;
    }
    return list;
}

// Moves the locations so that their weighted centroid is the origin, and returns where it was. The second
// round takes away what the rounding of the first sum has left.
template <unsigned int n>
point center_locations(pair_list& list, double (weighted_pair::*side)[3]) {
    double center[3] = {};
    for (int round = 0; round < 2; ++round) {
        double sum[3] = {};
        for (weighted_pair const& pair : list.pairs) {
            for (unsigned int k = 0; pair.located && k < n; ++k)
                sum[k] += pair.weight * ((pair.*side)[k] - center[k]);
        }
        for (unsigned int k = 0; k < n; ++k) center[k] += sum[k] / list.located_weight;
    }
    for (weighted_pair& pair : list.pairs) {
        for (unsigned int k = 0; pair.located && k < n; ++k) (pair.*side)[k] -= center[k];
    }
    return n == 2 ? point(true, center[0], center[1]) : point(true, center[0], center[1], center[2]);
}

// Adds to `normal` the weighted products of the coordinates before the map, and to `right` those with what
// the map `linear` still leaves of the coordinates after it.
template <unsigned int n>
void accumulate(pair_list const& list, double const (&linear)[n][n], double (&normal)[n][n],
                double (&right)[n][n]) {
    for (weighted_pair const& pair : list.pairs) {
        for (unsigned int r = 0; r < n; ++r) {
            double left = pair.to[r];
            for (unsigned int k = 0; k < n; ++k) left -= linear[r][k] * pair.from[k];
            for (unsigned int k = 0; k < n; ++k) {
                normal[r][k] += pair.weight * pair.from[r] * pair.from[k];
                right[r][k] += pair.weight * left * pair.from[k];
            }
        }
    }
}

template <unsigned int n>
matrix as_matrix(double const (&a)[n][n]) {
    matrix m(n, n);
    for (unsigned int r = 0; r < n; ++r) m.row(r, vector(n, a[r]));
    return m;
}

// Whether the points span the plane, or space, as far as their coordinates can tell and the normal equations,
// in which the ratio of the extents stands squared, can see.
bool spans_all(matrix const& normal, double least_square) {
    double trace = 0;
    for (unsigned int i = 0; i < rows(normal); ++i) trace += normal[i][i];
    if (!std::isfinite(trace)) return false;
    matrix u, v;
    vector const squares = singular_value_decomposition(normal, u, v);
    return min_value(squares) > std::max(1e-14 * max_value(squares), least_square);
}

// With the offset eliminated, which carries one centroid to the other. The error of the normal equations, the
// condition squared times the rounding, shrinks by that factor in each round on the residuals.
template <unsigned int n>
bool fit_linear(pair_list const& list, double rounding, double (&linear)[n][n]) {
    for (int round = 0; round < 3; ++round) {
        double normal[n][n] = {}, right[n][n] = {};
        accumulate<n>(list, linear, normal, right);
        matrix const squares = as_matrix<n>(normal);
        matrix change = as_matrix<n>(right);
        if (round == 0 && !spans_all(squares, rounding * rounding * list.weight)) return false;
        if (!change.times_inverse_of(squares)) return false;
        for (unsigned int r = 0; r < n; ++r) {
            for (unsigned int k = 0; k < n; ++k) linear[r][k] += change[r][k];
        }
    }
    return true;
}

template <unsigned int n>
transform fit_affine(idioms::array<point> const& from, idioms::array<point> const& to,
                     idioms::array<double> const& weights) {
    unsigned int const size = from.capacity();
    if (to.capacity() != size || (!weights.is_trivial() && weights.capacity() != size)) return transform();
    pair_list list = usable_pairs(from, to, weights);
    if (list.pairs.size() < n + 1 || !(list.located_weight > 0)) return transform();
    point const center = center_locations<n>(list, &weighted_pair::from);
    point const image = center_locations<n>(list, &weighted_pair::to);

    double linear[n][n] = {};
    if (!fit_linear<n>(list, coordinate_rounding({from.begin(), from.end()}), linear)) return transform();
    idioms::array<double> block(2 * n * (n + 1));
    double* const m = block.lazycopy_begin();
    for (unsigned int r = 0; r < n; ++r) {
        for (unsigned int k = 0; k < n; ++k) m[r * (n + 1) + k + 1] = linear[r][k];
    }
    transform about_centroids(block);
    if (!about_centroids.fill_in_inverse()) return transform();
    transform const result =
        transform::translation(-center) * about_centroids * transform::translation(image);
    return std::all_of(result.begin(), result.end(), [](double x) { return std::isfinite(x); }) ? result
                                                                                                : transform();
}

}  // namespace

transform transform::fit2d(idioms::array<point> from, idioms::array<point> to,
                           idioms::array<double> weights) {
    return fit_affine<2>(from, to, weights);
}

transform transform::fit3d(idioms::array<point> from, idioms::array<point> to,
                           idioms::array<double> weights) {
    return fit_affine<3>(from, to, weights);
}

}  // namespace tvmath
