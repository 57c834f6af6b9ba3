#pragma once

#include <cmath>
#include <cstddef>

inline namespace tvmath {

// Exact as long as nothing overflows and no error falls below the smallest double. They rely on every
// operation being rounded by itself: no fused or wider arithmetic.

struct rounded_value {
    double value, error;  // their sum is exact
};

/// a + b. Source: D. Knuth, The Art of Computer Programming 2, 4.2.2.
inline rounded_value exact_plus(double a, double b) {
    double const sum = a + b, from_b = sum - a, from_a = sum - from_b;
    return {sum, (a - from_a) + (b - from_b)};
}

/// a b. Source: T. Dekker, A floating-point technique for extending the available precision, Numer. Math. 18
/// (1971) 224-242.
inline rounded_value exact_times(double a, double b) {
    double const product = a * b, split = 0x1p27 + 1;
    double const wide_a = split * a, high_a = wide_a - (wide_a - a), low_a = a - high_a;
    double const wide_b = split * b, high_b = wide_b - (wide_b - b), low_b = b - high_b;
    return {product, low_a * low_b - (((product - high_a * high_b) - low_a * high_b) - high_a * low_b)};
}

/// An exact number: a sum of at most `capacity` doubles that do not overlap, from small to large, without
/// zeros.
///
/// Source: J. Shewchuk, Adaptive precision floating-point arithmetic and fast robust geometric predicates,
/// Discrete Comput. Geom. 18 (1997) 305-363: expansions with zero elimination.
template <std::size_t capacity>
class exact_sum {
public:
    exact_sum() = default;
    /// a + b
    exact_sum(double a, double b) {
        rounded_value const sum = exact_plus(a, b);
        append(sum.error);
        append(sum.value);
    }

    std::size_t size() const { return size_; }
    double operator[](std::size_t i) const { return terms_[i]; }
    void append(double term) {
        if (term != 0.0) terms_[size_++] = term;
    }
    /// The largest term, which has the sign of the sum.
    double sign() const { return size_ == 0 ? 0.0 : terms_[size_ - 1]; }

    exact_sum operator-() const {
        exact_sum result;
        for (std::size_t i = 0; i < size_; ++i) result.append(-terms_[i]);
        return result;
    }

    /// The product with one double, a term more for each.
    exact_sum<2 * capacity> times(double factor) const {
        exact_sum<2 * capacity> result;
        double carry = 0;
        for (std::size_t i = 0; i < size_; ++i) {
            rounded_value const product = exact_times(terms_[i], factor);
            rounded_value const low = exact_plus(carry, product.error);
            result.append(low.error);
            rounded_value const high = exact_plus(product.value, low.value);
            result.append(high.error);
            carry = high.value;
        }
        result.append(carry);
        return result;
    }

private:
    double terms_[capacity];  // the first size_ are set
    std::size_t size_ = 0;
};

/// Merges the terms by magnitude and adds them up.
template <std::size_t m, std::size_t n>
exact_sum<m + n> operator+(exact_sum<m> const& e, exact_sum<n> const& f) {
    exact_sum<m + n> result;
    std::size_t i = 0, j = 0;
    double carry = 0;
    while (i < e.size() || j < f.size()) {
        bool const from_e = j == f.size() || (i < e.size() && std::fabs(e[i]) < std::fabs(f[j]));
        rounded_value const sum = exact_plus(carry, from_e ? e[i++] : f[j++]);
        result.append(sum.error);
        carry = sum.value;
    }
    result.append(carry);
    return result;
}

template <std::size_t m, std::size_t n>
exact_sum<2 * m * n> operator*(exact_sum<m> const& e, exact_sum<n> const& f) {
    if constexpr (n == 1) {
        return f.size() == 0 ? exact_sum<2 * m>() : e.times(f[0]);
    } else {
        // By halves, so that sums of like length meet.
        exact_sum<n / 2> low;
        exact_sum<n - n / 2> high;
        std::size_t const middle = f.size() / 2;
        for (std::size_t j = 0; j < middle; ++j) low.append(f[j]);
        for (std::size_t j = middle; j < f.size(); ++j) high.append(f[j]);
        return e * low + e * high;
    }
}

}  // namespace tvmath
