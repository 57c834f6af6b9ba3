#include "tvmath/vector.h"

#include <algorithm>
#include <cmath>

inline namespace tvmath {

// A value operand is copied first: it may refer to an element that the loop overwrites, as in `v *= v[0]`.

vector& vector::operator=(double const& value) {
    if (is_trivial()) return *this;
    double const x = value;
    std::fill_n(lazycopy_begin(), capacity(), x);
    return *this;
}

vector& vector::operator*=(double const& factor) {
    double const f = factor;
    if (f == 1.0 || is_trivial()) return *this;
    double* const a = lazycopy_begin();
    for (unsigned int i = 0, n = capacity(); i < n; ++i) a[i] *= f;
    return *this;
}

vector& vector::operator/=(double const& value) {
    return *this *= 1 / value;
}

vector& vector::operator+=(double const& value) {
    double const x = value;
    if (x == 0.0 || is_trivial()) return *this;
    double* const a = lazycopy_begin();
    for (unsigned int i = 0, n = capacity(); i < n; ++i) a[i] += x;
    return *this;
}

vector& vector::operator-=(double const& value) {
    return *this += -value;
}

// In the binary forms this block is unshared before the other is looked up, since both may be one handle.

vector& vector::operator+=(vector const& other) {
    if (is_trivial()) return *this;
    double* const a = lazycopy_begin();
    double const* const b = other.begin();
    for (unsigned int i = 0, n = capacity(); i < n; ++i) a[i] += b[i];
    return *this;
}

vector& vector::operator-=(vector const& other) {
    if (is_trivial()) return *this;
    double* const a = lazycopy_begin();
    double const* const b = other.begin();
    for (unsigned int i = 0, n = capacity(); i < n; ++i) a[i] -= b[i];
    return *this;
}

vector operator*(vector a, vector const& b) {
    if (a.is_trivial()) return a;
    double* const x = a.lazycopy_begin();
    double const* const y = b.begin();
    for (unsigned int i = 0, n = dim(a); i < n; ++i) x[i] *= y[i];
    return a;
}

vector abs(vector v) {
    if (v.is_trivial()) return v;
    for (double *x = v.lazycopy_begin(), *end = x + dim(v); x != end; ++x) *x = std::fabs(*x);
    return v;
}

bool operator==(vector const& a, vector const& b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end());
}

double dot(vector const& a, vector const& b) {
    double const *x = a.begin(), *y = b.begin();
    double s = 0;
    for (unsigned int i = 0, n = dim(a); i < n; ++i) s += x[i] * y[i];
    return s;
}

double euclidean_norm(vector const& v) {
    return std::sqrt(dot(v, v));
}

double manhatten_norm(vector const& v) {
    double s = 0;
    for (double x : v) s += std::fabs(x);
    return s;
}

double maximum_norm(vector const& v) {
    double m = 0;
    for (double x : v) m = std::max(m, std::fabs(x));
    return m;
}

double norm(vector const& v) {
    double const m = maximum_norm(v);
    if (!(m > 0)) return m;
    // Quotients, not products with 1/m: the reciprocal of a denormal m is infinite.
    double s = 0;
    for (double x : v) {
        double const q = x / m;
        s += q * q;
    }
    return m * std::sqrt(s);
}

vector normalize(vector v) {
    double const n = norm(v);
    if (!(n > 0)) return v;
    double const scale = 1 / n;
    if (std::isfinite(scale)) return v *= scale;
    for (double *x = v.lazycopy_begin(), *end = x + dim(v); x != end; ++x) *x /= n;
    return v;
}

double angle(vector const& a, vector const& b) {
    return std::acos(dot(normalize(a), normalize(b)));
}

double sum(vector const& v) {
    double s = 0;
    for (double x : v) s += x;
    return s;
}

double sqr(vector const& v) {
    return dot(v, v);
}

double min_value(vector const& v) {
    double value = 0;
    unsigned int index = 0;
    min_index_value(v, index, value);
    return value;
}

double max_value(vector const& v) {
    double value = 0;
    unsigned int index = 0;
    max_index_value(v, index, value);
    return value;
}

void minmax_value(vector const& v, double& min, double& max) {
    unsigned int low = 0, high = 0;
    minmax_index_value(v, low, min, high, max);
}

bool min_index_value(vector const& v, unsigned int& index, double& value) {
    if (v.is_trivial()) return false;
    double const* const found = std::min_element(v.begin(), v.end());
    index = static_cast<unsigned int>(found - v.begin());
    value = *found;
    return true;
}

bool max_index_value(vector const& v, unsigned int& index, double& value) {
    if (v.is_trivial()) return false;
    double const* const found = std::max_element(v.begin(), v.end());
    index = static_cast<unsigned int>(found - v.begin());
    value = *found;
    return true;
}

bool minmax_index_value(vector const& v, unsigned int& min_index, double& min_value, unsigned int& max_index,
                        double& max_value) {
    return min_index_value(v, min_index, min_value) && max_index_value(v, max_index, max_value);
}

}  // namespace tvmath
