#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>

inline namespace tvmath {

/// Polynomials of two variables as sums of the terms T(d - j, u) T(j, v), T being the Chebyshev polynomials
/// of the first kind: by rising total degree d = 0 ... order, and in it by rising j = 0 ... d. Term (d, j)
/// has the index d (d + 1) / 2 + j.
namespace chebyshev {

/// (order + 1)(order + 2) / 2; 0 for an order beyond the range of an int, and when there were more terms
/// than a list can hold.
constexpr unsigned int term_count(std::uint32_t order) {
    if (order > std::uint32_t{std::numeric_limits<std::int32_t>::max()}) return 0;
    std::uint64_t const n = (std::uint64_t{order} + 1) * (std::uint64_t{order} + 2) / 2;
    return n > std::numeric_limits<std::uint32_t>::max() ? 0 : static_cast<unsigned int>(n);
}

/// The order that has exactly `terms` terms; -1 when there is none.
int order_of(unsigned int terms);

/// T(0, t) ... T(order, t), `order` + 1 numbers; `real` is double or several at once.
template <class real>
void values(real const& t, unsigned int order, real* to) {
    to[0] = real{} + 1.0;
    if (order > 0) to[1] = t;
    for (unsigned int k = 2; k <= order; ++k) to[k] = 2.0 * t * to[k - 1] - to[k - 2];
}

/// T'(0, t) ... T'(order, t) from the `values` at t.
inline void derivatives(double t, unsigned int order, double const* value, double* to) {
    to[0] = 0;
    if (order > 0) to[1] = 1;
    for (unsigned int k = 2; k <= order; ++k) to[k] = 2 * value[k - 1] + 2 * t * to[k - 1] - to[k - 2];
}

/// Calls `visit(i, j)` for every term T(i, u) T(j, v), in order.
template <class visitor>
void for_each_term(unsigned int order, visitor const& visit) {
    for (unsigned int d = 0; d <= order; ++d) {
        for (unsigned int j = 0; j <= d; ++j) visit(d - j, j);
    }
}

/// The sum of coefficient times x[i] y[j] over all terms (i, j), in order: with `values` for x and y that of
/// the polynomial, with `derivatives` for one of them that of its slope.
inline double combine(double const* coefficients, double const* x, double const* y, unsigned int order) {
    double sum = 0;
    for_each_term(order, [&](unsigned int i, unsigned int j) { sum += *coefficients++ * (x[i] * y[j]); });
    return sum;
}

/// Room for `parts` lists of `order` + 1 numbers: in the caller's frame for any order that a lens asks for
/// (31 at most), on the heap above, which only a text or a caller's own fields can ask for.
template <unsigned int parts, class real = double>
class scratch {
public:
    explicit scratch(unsigned int order) : length_(std::size_t{order} + 1) {
        if (length_ > room_) on_heap_.reset(new real[parts * length_]);
    }
    real* operator[](unsigned int part) {
        return on_heap_ ? on_heap_.get() + part * length_ : here_ + part * room_;
    }

private:
    static constexpr std::size_t room_ = 32;
    std::size_t length_;
    std::unique_ptr<real[]> on_heap_;
    real here_[parts * room_];  // left as it is: clearing it would take longer than the values
};

/// Turns the coefficients of the n + 1 terms T(k, t), k = 0 ... n, into those of the same polynomial in s
/// with t = `slope` s + `offset`, in place.
void re_expand(double* coefficients, unsigned int n, double slope, double offset);

}  // namespace chebyshev
}  // namespace tvmath
