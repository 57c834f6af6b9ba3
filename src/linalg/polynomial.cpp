#include "tvmath/polynomial.h"

inline namespace tvmath {
namespace {

template <class number>
number horner(number const& x, idioms::array<number> const& c) {
    number const* const first = c.begin();
    number value = 0;
    for (unsigned int i = c.capacity(); i-- > 0;) value = value * x + first[i];
    return value;
}

// Horner's rule once more: its intermediate values are the coefficients of the quotient, the last one is the
// remainder.
template <class number>
number divide(idioms::array<number>& c, number const& root) {
    unsigned int const n = c.capacity();
    if (n == 0) return 0;
    number* const first = c.lazycopy_begin();
    number carried = first[n - 1];
    for (unsigned int i = n - 1; i-- > 0;) {
        number const next = carried * root + first[i];
        first[i] = carried;
        carried = next;
    }
    c.redim(n - 1);
    return carried;
}

}  // namespace

double poly(double x, vector const& c) {
    return horner<double>(x, c);
}

complex poly(complex const& x, idioms::array<complex> const& c) {
    return horner(x, c);
}

idioms::array<complex> derivative(idioms::array<complex> const& c) {
    unsigned int const n = c.capacity();
    if (n < 2) return {};
    idioms::array<complex> result(n - 1);
    complex* const to = result.lazycopy_begin();
    complex const* const from = c.begin();
    for (unsigned int i = 1; i < n; ++i) to[i - 1] = static_cast<double>(i) * from[i];
    return result;
}

double factor(vector& c, double root) {
    return divide<double>(c, root);
}

complex factor(idioms::array<complex>& c, complex const& root) {
    return divide(c, root);
}

}  // namespace tvmath
