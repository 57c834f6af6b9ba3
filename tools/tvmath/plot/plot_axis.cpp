#include "plot_axis.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "report/number_text.h"

inline namespace tvmath {
namespace {

constexpr int most_ticks = 40;

// Where the ticks are, in steps, when the range is not empty.
template <class labeller>
void add_ticks(plot_axis& axis, double origin, double low, double high, double step, labeller label) {
    // The multiples of the step beside a large origin: only their distance from it is small.
    double const base = std::floor(origin / step) * step, shift = base - origin;
    double const first = std::ceil((low - shift) / step - 1e-6);
    for (int i = 0; i < most_ticks; ++i) {
        double const multiple = (first + i) * step, at = multiple + shift;
        if (!(at <= high + 1e-6 * step)) return;
        axis.ticks.push_back({at, label(base, multiple)});
    }
}

// The language's "-1.5e-07" as it is printed: the minus sign as wide as a digit, the power raised.
std::string printed(std::string const& plain) {
    static char const* const raised[] = {"\u2070", "\u00b9", "\u00b2", "\u00b3", "\u2074",
                                         "\u2075", "\u2076", "\u2077", "\u2078", "\u2079"};
    std::size_t const power = plain.find('e');
    std::string text;
    for (char const c : plain.substr(0, power)) text += c == '-' ? "\u2212" : std::string(1, c);
    if (power == std::string::npos) return text;
    text = text == "1" ? "10" : text + " \u00d7 10";
    int const exponent = std::stoi(plain.substr(power + 1));
    if (exponent < 0) text += "\u207b";
    for (char const c : std::to_string(std::abs(exponent))) text += raised[c - '0'];
    return text;
}

// The digit before the power of ten, and that power.
double power_below(double x) {
    return std::pow(10, std::floor(std::log10(x)));
}

}  // namespace

double round_below(double x) {
    double const power = power_below(x),
                 digit = x / power * (1 + 1e-12);  // 0.5 / 0.1 is below 5 by a rounding
    for (double const round : {8.0, 6.0, 5.0, 4.0, 3.0, 2.0, 1.5}) {
        if (digit >= round) return round * power;
    }
    return power;
}

double round_above(double x) {
    double const power = power_below(x), digit = x / power * (1 - 1e-12);
    return (digit <= 1 ? 1 : digit <= 2 ? 2 : digit <= 5 ? 5 : 10) * power;
}

std::string decimal_text(double x, int decimals) {
    char text[64];
    double const size = std::fabs(x);
    if (size >= 1e15 || decimals > 15 || (size > 0 && size < std::pow(10, -decimals))) {
        std::snprintf(text, sizeof text, "%.4g", x);
    } else {
        std::snprintf(text, sizeof text, "%.*f", std::max(decimals, 0), x);
    }
    return printed(text);
}

std::string fixed_text(double x, int decimals) {
    return printed(fixed_number(x, decimals));
}

std::string short_text(double x, int digits) {
    return printed(short_number(x, digits));
}

plot_axis make_axis(double origin, double low, double high, double step) {
    plot_axis axis;
    if (!(high > low)) return axis;
    double const largest = std::max(std::fabs(origin + low), std::fabs(origin + high));
    // A round number near the range, so that what is left has few digits.
    double offset = 0;
    if (largest / step >= 1e5) {
        int const power = static_cast<int>(std::ceil(std::log10(high - low))) + 1;
        double const unit = std::pow(10, power);
        offset = std::round((origin + (low + high) / 2) / unit) * unit;
        if (offset != 0.0)
            axis.remark = (offset < 0 ? " + " : " \u2212 ") + fixed_text(std::fabs(offset), -power);
    }
    double const rest = std::max(std::fabs(origin - offset + low), std::fabs(origin - offset + high));
    double unit = 1;
    if (rest >= 1e5 || rest < 1e-3) {
        unit = std::pow(10, 3 * std::floor(std::log10(rest) / 3));
        axis.remark += ", in " + short_text(unit);
    }
    int const decimals = static_cast<int>(std::max(0.0, -std::floor(std::log10(step / unit) + 1e-9)));
    add_ticks(axis, origin, low, high, step, [=](double base, double multiple) {
        double value = ((base - offset) + multiple) / unit;
        if (std::fabs(value) < 1e-6 * step / unit) value = 0;
        return decimal_text(value, decimals);
    });
    return axis;
}

plot_axis make_angle_axis(double low, double high) {
    double step = 0;
    for (double const s : {90.0, 60.0, 45.0, 30.0, 15.0, 10.0, 5.0, 2.0, 1.0}) {
        step = s;
        if ((high - low) / s >= 6) break;
    }
    if ((high - low) / step < 3) return make_axis(0, low, high, round_above((high - low) / 8));
    plot_axis axis;
    add_ticks(axis, 0, low, high, step, [](double, double at) { return decimal_text(at, 0) + "\u00b0"; });
    return axis;
}

}  // namespace tvmath
