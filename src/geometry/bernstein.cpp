#include "bernstein.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "bracketed_root.h"

inline namespace tvmath {
namespace {

// A part of [0, 1] with the coefficients over it.
struct piece {
    double from, width;
    std::vector<double> coefficients;
};

struct sign_changes {
    int count = 0;
    bool rises = false;  // the last one
};

sign_changes count_sign_changes(std::vector<double> const& c) {
    sign_changes found;
    double last = 0;
    for (double const value : c) {
        if (value == 0) continue;
        if (last != 0 && (last < 0) != (value < 0)) {
            ++found.count;
            found.rises = value > 0;
        }
        last = value;
    }
    return found;
}

// De Casteljau's scheme: the left half goes to `left`, the right half stays in `c`.
void halve(std::vector<double>& c, std::vector<double>& left) {
    std::size_t const n = c.size();
    left.resize(n);
    for (std::size_t level = 0; level < n; ++level) {
        left[level] = c[0];
        for (std::size_t i = 0; i + 1 < n - level; ++i) c[i] = (c[i] + c[i + 1]) / 2;
    }
}

// Value and slope by the same scheme; `work` holds the coefficients' copy.
value_and_slope evaluate(std::vector<double> const& c, std::vector<double>& work, double t) {
    work = c;
    std::size_t const degree = c.size() - 1;
    for (std::size_t left = degree; left > 1; --left) {
        for (std::size_t i = 0; i < left; ++i) work[i] += t * (work[i + 1] - work[i]);
    }
    double const slope = work[1] - work[0];
    return {work[0] + t * slope, static_cast<double>(degree) * slope};
}

}  // namespace

std::vector<double> binomial_row(unsigned int n) {
    std::vector<double> row(n + 1, 1.0);
    for (unsigned int k = 1; k <= n; ++k) row[k] = row[k - 1] * (n - k + 1) / k;
    return row;
}

void add_product(std::vector<double>& sum, double factor, std::vector<double> const& a,
                 std::vector<double> const& b) {
    for (std::size_t i = 0; i < a.size(); ++i) {
        double const scaled = factor * a[i];
        for (std::size_t j = 0; j < b.size(); ++j) sum[i + j] += scaled * b[j];
    }
}

std::vector<double> rising_zeros(std::vector<double> const& coefficients, double noise) {
    std::vector<double> zeros, work;
    if (coefficients.size() < 2) return zeros;
    std::vector<piece> pieces = {{0, 1, coefficients}};
    while (!pieces.empty()) {
        piece part = std::move(pieces.back());
        pieces.pop_back();
        sign_changes const changes = count_sign_changes(part.coefficients);
        if (changes.count == 0 || (changes.count == 1 && !changes.rises)) continue;
        if (changes.count == 1) {
            auto const f = [&](double t) { return evaluate(part.coefficients, work, t); };
            zeros.push_back(part.from + part.width * bracketed_root(f, 0, 1, 0.5));
            continue;
        }
        // At a multiple zero, and where the distance is constant, halving would never end. The limit of width
        // stands for coefficients that are not finite.
        bool const is_noise = std::all_of(part.coefficients.begin(), part.coefficients.end(),
                                          [noise](double c) { return std::fabs(c) <= noise; });
        if (is_noise || part.width < 0x1p-50) {
            zeros.push_back(part.from + part.width / 2);
            continue;
        }
        piece left = {part.from, part.width / 2, {}};
        halve(part.coefficients, left.coefficients);
        part.from += left.width;
        if (part.coefficients[0] == 0) zeros.push_back(part.from);  // neither half counts its ends
        part.width = left.width;
        pieces.push_back(std::move(part));
        pieces.push_back(std::move(left));
    }
    return zeros;
}

}  // namespace tvmath
