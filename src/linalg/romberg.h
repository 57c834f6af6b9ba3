#pragma once

#include <cstdint>

inline namespace tvmath {

/// Romberg's triangle over `f`, whose value is a number, or several with the operators of one: at most 12
/// rows, of which the last two are kept. It ends when `settled(now, before)` says so of the last two entries
/// of the diagonal; the result is the last one. A row doubles the samples: row i has 2^i + 1.
template <class function, class test>
auto romberg(function const& f, double lower, double upper, test const& settled) {
    using value = decltype(f(lower));
    constexpr int row_count = 12;
    value rows[2][row_count];
    double h = upper - lower;
    value sum = (f(lower) + f(upper)) / 2;
    rows[0][0] = sum * h;
    value result = rows[0][0];
    for (int i = 1; i < row_count; ++i) {
        value const* const last = rows[(i - 1) & 1];
        value* const row = rows[i & 1];
        h /= 2;
        for (int k = 1; k < 1 << i; k += 2) sum += f(k * h + lower);
        row[0] = sum * h;
        // Column j removes the error term in h^(2j + 2).
        for (int j = 0; j < i; ++j) {
            row[j + 1] = row[j] + (row[j] - last[j]) / static_cast<double>((std::int64_t{4} << (2 * j)) - 1);
        }
        result = row[i];
        if (settled(result, last[i - 1])) break;
    }
    return result;
}

}  // namespace tvmath
