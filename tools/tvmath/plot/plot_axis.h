#pragma once

#include <string>
#include <vector>

inline namespace tvmath {

/// The largest of 1, 1.5, 2, 3, 4, 5, 6 and 8 times a power of ten that is no more than `x`, which is above
/// 0.
double round_below(double x);
/// The least of 1, 2 and 5 times a power of ten that is no less than `x`, which is above 0.
double round_above(double x);

// Numbers as pictures show them: with a minus sign as wide as a digit, and powers of ten raised.

/// `x` with that many decimals, or as a power of ten where it would be all zeros or too long.
std::string decimal_text(double x, int decimals);
/// `x` with that many decimals, 0 where they are all zeros, but no more digits than a double has.
std::string fixed_text(double x, int decimals);
/// So many significant digits or fewer, for a value that stands alone.
std::string short_text(double x, int digits = 6);

/// Marks at round numbers along one axis of a picture.
struct plot_axis {
    struct tick {
        double at;  ///< in the coordinates of the view
        std::string text;
    };
    std::vector<tick> ticks;
    /// What has to be said beside the name of the axis: " - 1000000", " in 1e-6"; empty as a rule.
    std::string remark;
};

/// Ticks at multiples of `step`, as of `round_above`, from `low` to `high`, which count from `origin`.
/// Numbers that would need more than six digits are given as differences from a round one, very small and
/// large ones in a unit of a power of ten.
plot_axis make_axis(double origin, double low, double high, double step);
/// Ticks of an angle in degrees.
plot_axis make_angle_axis(double low, double high);

}  // namespace tvmath
