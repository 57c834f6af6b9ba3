#include <array>

#include "tvmath/scalar.h"

inline namespace tvmath {

namespace {

template <class integer, unsigned int count>
constexpr std::array<integer, count> factorials() {
    std::array<integer, count> table{};
    table[0] = 1;
    for (unsigned int n = 1; n < count; ++n)
        table[n] = static_cast<integer>(table[n - 1] * static_cast<integer>(n));
    return table;
}

// Rows of Pascal's triangle one behind the other: row n has n + 1 values and starts at n (n + 1) / 2.
constexpr unsigned int row_start(unsigned int n) {
    return n * (n + 1) / 2;
}

constexpr unsigned int last_row_32 = 33;  // the row of 34 holds values above 2^31
constexpr unsigned int last_row_64 = 66;  // the row of 67 holds values above 2^63

template <class integer, unsigned int last_row>
constexpr std::array<integer, row_start(last_row + 1)> pascal_rows() {
    std::array<integer, row_start(last_row + 1)> table{};
    for (unsigned int n = 0; n <= last_row; ++n) {
        integer* const row = &table[row_start(n)];
        row[0] = row[n] = 1;
        for (unsigned int k = 1; k < n; ++k) {
            integer const* const above = &table[row_start(n - 1)];
            row[k] = static_cast<integer>(above[k - 1] + above[k]);
        }
    }
    return table;
}

constexpr auto factorial_table_32 = factorials<std::int32_t, 13>();
constexpr auto factorial_table_64 = factorials<std::int64_t, 21>();
constexpr auto binomial_table_32 = pascal_rows<std::int32_t, last_row_32>();
constexpr auto binomial_table_64 = pascal_rows<std::int64_t, last_row_64>();

}  // namespace

std::int32_t factorial32(unsigned int n) {
    return factorial_table_32[n];
}

std::int64_t factorial64(unsigned int n) {
    return factorial_table_64[n];
}

std::int32_t binomial32(unsigned int n, unsigned int k) {
    return binomial_table_32[row_start(n) + k];
}

std::int64_t binomial64(unsigned int n, unsigned int k) {
    return binomial_table_64[row_start(n) + k];
}

}  // namespace tvmath
