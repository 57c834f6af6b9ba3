#include <algorithm>

#include "transform_block.h"
#include "tvmath/transform.h"

inline namespace tvmath {

using namespace transform_detail;

namespace {

// p first, then q; the result has the rows of the larger one. A 2D map leaves z alone: a 2D p sends no z
// into q, a 2D q hands row z of p on.
template <int np, int nq>
void compose(double const* p, double const* q, double* result) {
    constexpr int n = std::max(np, nq), shared = std::min(np, nq);
    for (int r = 0; r < n; ++r) {
        double const* const q_row = q + r * (nq + 1);
        for (int c = 0; c <= n; ++c) {
            double& out = result[r * (n + 1) + c];
            if (r >= nq) {
                out = p[r * (np + 1) + c];
            } else if (c > np) {
                out = q_row[c];
            } else {
                double sum = q_row[1] * p[c];
                for (int k = 1; k < shared; ++k) sum += q_row[k + 1] * p[k * (np + 1) + c];
                out = c == 0 ? sum + q_row[0] : sum;
            }
        }
    }
}

// Both maps of a, then b, or a, then the inverse of b: the blocks of b then change their parts.
template <int na, int nb>
transform compose_both(transform const& a, transform const& b, bool invert_b) {
    constexpr int n = std::max(na, nb);
    double const* const forward_b = b.begin() + (invert_b ? map_size(nb) : 0);
    double const* const inverse_b = b.begin() + (invert_b ? 0 : map_size(nb));
    idioms::array<double> block(static_cast<unsigned int>(2 * map_size(n)));
    double* const result = block.lazycopy_begin();
    compose<na, nb>(a.begin(), forward_b, result);
    compose<nb, na>(inverse_b, a.begin() + map_size(na), result + map_size(n));
    return transform(block);
}

transform compose_any(transform const& a, transform const& b, bool invert_b) {
    if (a.is_2d()) return b.is_2d() ? compose_both<2, 2>(a, b, invert_b) : compose_both<2, 3>(a, b, invert_b);
    return b.is_2d() ? compose_both<3, 2>(a, b, invert_b) : compose_both<3, 3>(a, b, invert_b);
}

template <class change>
idioms::array<transform> changed(idioms::array<transform> list, change apply) {
    if (list.is_trivial()) return list;
    transform* const elements = list.lazycopy_begin();
    for (unsigned int i = 0; i < list.capacity(); ++i) apply(elements[i]);
    return list;
}

}  // namespace

transform operator*(transform const& a, transform const& b) {
    if (rows_of(a) == 0) return b;
    if (rows_of(b) == 0) return a;
    return compose_any(a, b, false);
}

transform operator/(transform const& a, transform const& b) {
    if (rows_of(a) == 0) return inverse(b);
    if (rows_of(b) == 0) return a;
    return compose_any(a, b, true);
}

transform& transform::operator*=(transform const& t) {
    if (rows_of(t) != 0) *this = *this * t;
    return *this;
}

transform& transform::operator/=(transform const& t) {
    if (rows_of(t) != 0) *this = *this / t;
    return *this;
}

idioms::array<transform> operator*(idioms::array<transform> const& list, transform const& t) {
    return changed(list, [&t](transform& element) { element *= t; });
}

idioms::array<transform> operator/(idioms::array<transform> const& list, transform const& t) {
    return changed(list, [&t](transform& element) { element /= t; });
}

transform inverse(transform t) {
    return t.inverse();
}

transform orthogonalize(transform t) {
    return t.orthogonalize();
}

transform orthonormalize(transform t) {
    return t.orthonormalize();
}

idioms::array<transform> inverse(idioms::array<transform> list) {
    return changed(list, [](transform& element) { element.inverse(); });
}

idioms::array<transform> orthogonalize(idioms::array<transform> list) {
    return changed(list, [](transform& element) { element.orthogonalize(); });
}

idioms::array<transform> orthonormalize(idioms::array<transform> list) {
    return changed(list, [](transform& element) { element.orthonormalize(); });
}

}  // namespace tvmath
