#include "correction/chebyshev.h"

#include <algorithm>
#include <utility>
#include <vector>

inline namespace tvmath {
namespace chebyshev {
namespace {

// The coefficients of T(k, slope s + offset) in T(j, s), k = 0, 1, ... in turn, by
//     T(k) = 2 (slope s + offset) T(k - 1) - T(k - 2)        and       2 s T(j) = T(j + 1) + T(|j - 1|).
class expansion_rows {
public:
    expansion_rows(unsigned int n, double slope, double offset)
        : slope_(slope), offset_(offset), row_(n + 2), before_(n + 2), earlier_(n + 2) {}

    std::vector<double> const& next() {
        if (k_ == 0) row_[0] = 1;
        if (k_ == 1) {
            before_.swap(row_);
            row_[0] = offset_;
            row_[1] = slope_;
        }
        if (k_ > 1) advance();
        ++k_;
        return row_;
    }

private:
    void advance() {
        earlier_.swap(before_);
        before_.swap(row_);
        for (unsigned int j = 0; j <= k_; ++j) {
            double sum = 0;
            if (j == 1) sum += 2 * slope_ * before_[0];
            if (j >= 2) sum += slope_ * before_[j - 1];
            if (j + 2 <= k_) sum += slope_ * before_[j + 1] - earlier_[j];
            if (j + 1 <= k_) sum += 2 * offset_ * before_[j];
            row_[j] = sum;
        }
    }

    double slope_, offset_;
    std::vector<double> row_, before_, earlier_;  // of k, k - 1 and k - 2
    unsigned int k_ = 0;
};

}  // namespace

int order_of(unsigned int terms) {
    int order = 0;
    while (term_count(static_cast<std::uint32_t>(order)) < terms) {
        if (term_count(static_cast<std::uint32_t>(++order)) == 0) return -1;
    }
    return term_count(static_cast<std::uint32_t>(order)) == terms ? order : -1;
}

void re_expand(double* coefficients, unsigned int n, double slope, double offset) {
    expansion_rows rows(n, slope, offset);
    for (unsigned int k = 0; k <= n; ++k) {
        double const kept = std::exchange(coefficients[k], 0.0);
        std::vector<double> const& row = rows.next();
        for (unsigned int j = 0; j <= k; ++j) coefficients[j] += row[j] * kept;
    }
}

}  // namespace chebyshev
}  // namespace tvmath
