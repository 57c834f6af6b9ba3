#pragma once

#include <cmath>
#include <cstdint>

inline namespace tvmath {

/// Random numbers that are the same with every standard library and on every machine: integer steps, exact
/// scalings and no library function whose last digit may differ.
///
/// Generator: S. Vigna, splitmix64.
class seeded_random {
public:
    explicit seeded_random(std::uint64_t seed) : state_(seed) {}

    std::uint64_t bits() {
        std::uint64_t z = (state_ += 0x9E3779B97F4A7C15u);
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9u;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBu;
        return z ^ (z >> 31);
    }

    /// In [0, 1), a multiple of 2^-53.
    double unit() { return static_cast<double>(bits() >> 11) * 0x1p-53; }
    double uniform(double lo, double hi) { return lo + (hi - lo) * unit(); }
    /// 0 to n - 1.
    unsigned int below(unsigned int n) { return static_cast<unsigned int>(bits() % n); }
    bool coin() { return (bits() >> 63) != 0; }

    /// In [lo, hi), every decade as likely as the next; lo above 0. By rejection, so that no logarithm is
    /// taken: an octave is drawn, a mantissa m in it with density 1/m, and what falls outside is drawn again.
    double log_uniform(double lo, double hi) {
        int const first = std::ilogb(lo), last = std::ilogb(hi);
        for (;;) {
            int const octave = first + static_cast<int>(below(static_cast<unsigned int>(last - first + 1)));
            double const m = 1 + unit();
            double const x = std::ldexp(m, octave);
            if (unit() * m < 1 && x >= lo && x < hi) return x;
        }
    }

    /// Mean 0, standard deviation 1, never beyond 6: the sum of twelve uniform numbers less 6.
    double normal() {
        double sum = -6;
        for (int i = 0; i < 12; ++i) sum += unit();
        return sum;
    }

private:
    std::uint64_t state_;
};

}  // namespace tvmath
