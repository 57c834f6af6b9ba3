#include "plot_axis.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

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

}  // namespace

double round_below(double x) {
    double const power = std::pow(10, std::floor(std::log10(x)));
    double const digit = x / power * (1 + 1e-12);  // 0.5 / 0.1 is below 5 by a rounding
    return (digit >= 5 ? 5 : digit >= 2 ? 2 : 1) * power;
}

std::string decimal_text(double x, int decimals) {
    char text[64];
    double const size = std::fabs(x);
    if (size >= 1e15 || decimals > 15 || (size > 0 && size < std::pow(10, -decimals))) {
        std::snprintf(text, sizeof text, "%.4g", x);
    } else {
        std::snprintf(text, sizeof text, "%.*f", std::max(decimals, 0), x);
    }
    return text;
}

std::string short_text(double x) {
    char text[32];
    std::snprintf(text, sizeof text, "%.6g", x);
    return text;
}

plot_axis make_axis(double origin, double low, double high, int count) {
    plot_axis axis;
    if (!(high > low)) return axis;
    double step = round_below((high - low) / count);
    if ((high - low) / step > 2 * count) step *= 2;
    double const largest = std::max(std::fabs(origin + low), std::fabs(origin + high));
    // A round number near the range, so that what is left has few digits.
    double offset = 0;
    if (largest / step >= 1e5) {
        double const unit = std::pow(10, std::ceil(std::log10(high - low)) + 1);
        offset = std::round((origin + (low + high) / 2) / unit) * unit;
        axis.remark = (offset < 0 ? " + " : " \u2212 ") + decimal_text(std::fabs(offset), 0);
        if (std::fabs(offset) < 1e3)
            axis.remark = (offset < 0 ? " + " : " \u2212 ") + short_text(std::fabs(offset));
    }
    double const rest = std::max(std::fabs(origin - offset + low), std::fabs(origin - offset + high));
    double unit = 1;
    if (rest >= 1e5 || rest < 0.01) {
        unit = std::pow(10, 3 * std::floor(std::log10(rest) / 3));
        axis.remark += " in " + short_text(unit);
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
    if ((high - low) / step < 3) return make_axis(0, low, high, 6);
    plot_axis axis;
    add_ticks(axis, 0, low, high, step, [](double, double at) { return decimal_text(at, 0) + "\u00b0"; });
    return axis;
}

}  // namespace tvmath
