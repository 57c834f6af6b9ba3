#pragma once

#include <array>
#include <cmath>
#include <cstddef>

#include "geometry/bracketed_root.h"

inline namespace tvmath {

/// Zeros of a polynomial over [0, 1] by its Bernstein coefficients, ascending: all of them, each once where
/// the polynomial changes sign and twice where it only touches 0.
///
/// The zeros number at most as many as the coefficients' changes of sign, so that halving until there is one
/// change finds all (J. M. Lane, R. F. Riesenfeld, Bounds on a polynomial, BIT 21 (1981) 112-117). Each is
/// then polished by Newton's iteration within its bracket on `function`, which gives value and slope directly
/// and so has digits that the coefficients may have lost. Coefficients that are all within `noise` of 0
/// cannot be told from 0: a piece of that kind is a touch, and neighbouring pieces are one. No allocation.
template <std::size_t size, class function>
class bernstein_zeros {
public:
    using coefficients = std::array<double, size>;

    /// `ends`: whether a value within `noise` of 0 at 0 or at 1 is a zero. If not, only an exact one at 0 is,
    /// so that the pieces of a closed curve do not report their joints twice.
    bernstein_zeros(coefficients const& c, double noise, bool ends, function const& f)
        : noise_(noise), f_(f) {
        double total = 0, most = 0;
        for (double const value : c) {
            total += std::fabs(value);
            most = std::max(most, std::fabs(value));
        }
        if (!std::isfinite(total) || most <= 4 * noise) return;  // 0 everywhere has no zeros to tell
        bool const at_0 = ends ? std::fabs(c.front()) <= noise : c.front() == 0;
        bool const at_1 = ends && std::fabs(c.back()) <= noise;
        if (at_0) add(0, 0);
        isolate(c, 0, 1);
        if (at_1) add(1, 0);
        merge(at_0, at_1);
    }

    double const* begin() const { return zeros_.data(); }
    double const* end() const { return zeros_.data() + count_; }

private:
    static constexpr std::size_t most_raw = 8 * size;
    struct raw_zero {
        double at, reach;  // reach is 0 for a change of sign, else some widths of the piece that touches
    };

    void add(double at, double reach) {
        if (raw_count_ < most_raw) raw_[raw_count_++] = {at, reach};
    }

    static int sign_changes(coefficients const& c) {
        int count = 0;
        double last = 0;
        for (double const value : c) {
            if (value == 0) continue;
            if (last != 0 && (last < 0) != (value < 0)) ++count;
            last = value;
        }
        return count;
    }

    void isolate(coefficients c, double from, double width) {
        int const changes = sign_changes(c);
        if (changes == 0) return;
        if (changes == 1) return add(polished(c, from, width), 0);
        bool is_noise = width < 0x1p-46;
        if (!is_noise) {
            is_noise = true;
            for (double const value : c) is_noise = is_noise && std::fabs(value) <= noise_;
        }
        if (is_noise) return add(from + width / 2, 4 * width);
        coefficients left;  // by de Casteljau's scheme; the right half stays in c
        for (std::size_t level = 0; level < size; ++level) {
            left[level] = c[0];
            for (std::size_t i = 0; i + 1 < size - level; ++i) c[i] = (c[i] + c[i + 1]) / 2;
        }
        isolate(left, from, width / 2);
        if (c[0] == 0) add(from + width / 2, 0);  // neither half counts its ends
        isolate(c, from + width / 2, width / 2);
    }

    double polished(coefficients const& c, double from, double width) const {
        double first = 0;
        for (double const value : c) {
            if (first == 0) first = value;
        }
        double const sign = first < 0 ? 1 : -1;
        auto const rising = [&](double t) {
            value_and_slope const at = f_(t);
            return value_and_slope{sign * at.value, sign * at.slope};
        };
        return bracketed_root(rising, from, from + width, from + width / 2);
    }

    // Neighbouring raw zeros of which one touches are one zero: of even order, reported twice, when the sign
    // is the same on both sides, else of odd order.
    void merge(bool at_0, bool at_1) {
        for (std::size_t i = 0; i < raw_count_;) {
            std::size_t last = i;
            bool touches = raw_[i].reach > 0 || is_end(raw_[i], at_0, at_1);
            double reach = raw_[i].reach;
            while (last + 1 < raw_count_ &&
                   raw_[last + 1].at - raw_[last].at <= 1e-7 + raw_[last].reach + raw_[last + 1].reach) {
                ++last;
                touches = touches || raw_[last].reach > 0 || is_end(raw_[last], at_0, at_1);
                reach = std::max(reach, raw_[last].reach);
            }
            keep(i, last, reach + 1e-7, touches, at_0, at_1);
            i = last + 1;
        }
    }

    static bool is_end(raw_zero const& z, bool at_0, bool at_1) {
        return (at_0 && z.at == 0) || (at_1 && z.at == 1);
    }

    void keep(std::size_t first, std::size_t last, double reach, bool touches, bool at_0, bool at_1) {
        if (!touches) {
            for (std::size_t i = first; i <= last; ++i) store(raw_[i].at);
            return;
        }
        if (at_0 && raw_[first].at == 0) return store(0);
        if (at_1 && raw_[last].at == 1) return store(1);
        double const before = std::max(raw_[first].at - reach, 0.0),
                     after = std::min(raw_[last].at + reach, 1.0);
        value_and_slope const low = f_(before), high = f_(after);
        double middle = (raw_[first].at + raw_[last].at) / 2;
        if ((low.value < 0) != (high.value < 0)) return store(middle);
        // A touch keeps half of its digits in the value, but all of them in the slope.
        double const flat = before + (after - before) * (low.slope / (low.slope - high.slope));
        if (flat >= before && flat <= after) middle = flat;
        store(middle);
        store(middle);
    }

    void store(double at) {
        if (count_ < size) zeros_[count_++] = at;
    }

    double noise_;
    function const& f_;
    std::array<raw_zero, most_raw> raw_;
    std::array<double, size> zeros_;
    std::size_t raw_count_ = 0, count_ = 0;
};

}  // namespace tvmath
