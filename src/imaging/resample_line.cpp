#include "imaging/resample_line.h"

#include <algorithm>
#include <cmath>

#include "geometry/point_lanes.h"

inline namespace tvmath {
namespace {

// The pixel in which a position lies, one of 0 to `last`.
std::size_t pixel_at(double position, double last) {
    return static_cast<std::size_t>(std::min(std::max(position, 0.0), last));
}

// All samples lie at the same fraction between two pixels: no index but a running one.
void shift_line(double const* line, std::size_t last, double first_place, double* samples,
                std::size_t count) {
    double const whole = std::floor(first_place), f = first_place - whole;
    std::size_t const skipped = whole < 0 ? std::min(count, static_cast<std::size_t>(-whole)) : 0;
    std::size_t const from = whole < 0 ? 0 : std::min(last, static_cast<std::size_t>(whole));
    std::size_t const between = std::min(count - skipped, last - from);

    std::fill_n(samples, skipped, line[0]);
    if (f == 0.0) {  // exact on purpose: whole pixels stay as they are, also beside one that is not finite
        std::copy_n(line + from, between, samples + skipped);
    } else {
        for (std::size_t i = 0; i < between; ++i) {
            double const left = line[from + i];
            samples[skipped + i] = left + f * (line[from + i + 1] - left);
        }
    }
    std::fill(samples + skipped + between, samples + count, line[last]);
}

// The number of samples, from the first one on, whose place lies below a limit. The quotient may be off by
// one sample, which the comparison with the place as it is computed puts right.
std::size_t count_below(double limit, double first_place, double step, std::size_t count) {
    if (!(step > 0)) return first_place < limit ? count : 0;
    double const estimate = std::ceil((limit - first_place) / step);
    auto n = static_cast<std::size_t>(std::min(std::max(estimate, 0.0), static_cast<double>(count)));
    while (n > 0 && !(first_place + static_cast<double>(n - 1) * step < limit)) --n;
    while (n < count && first_place + static_cast<double>(n) * step < limit) ++n;
    return n;
}

// Samples `from` to `to` - 1, all between two pixels. Indices of 32 bits, which wider registers can look up.
TVMATH_WIDE_LOOP void interpolate_between(double const* __restrict line, double first_place, double step,
                                          double* __restrict samples, int from, int to) {
    for (int i = from; i < to; ++i) {
        double const place = first_place + i * step;
        int const k = static_cast<int>(place);
        samples[i] = line[k] + (place - k) * (line[k + 1] - line[k]);
    }
}

// Places count from the centre of pixel 0.
void interpolate_line(double const* line, std::size_t last, double first_place, double step, double* samples,
                      std::size_t count) {
    std::size_t const from = count_below(0, first_place, step, count);
    std::size_t const to = count_below(static_cast<double>(last), first_place, step, count);
    std::fill_n(samples, from, line[0]);
    interpolate_between(line, first_place, step, samples, static_cast<int>(from), static_cast<int>(to));
    std::fill(samples + to, samples + count, line[last]);
}

// A sample is the difference of the integral of the line, which is linear within a pixel, at its two ends.
void average_line(double const* line, std::size_t length, double start, double step, double* samples,
                  std::size_t count, std::vector<double>& work) {
    work.resize(length);
    double sum = 0;
    for (std::size_t k = 0; k < length; ++k) {
        work[k] = sum;
        sum += line[k];
    }
    double const* const sums = work.data();
    double const last = static_cast<double>(length - 1);
    auto const integral_to = [=](double position) {
        std::size_t const k = pixel_at(position, last);
        return sums[k] + (position - static_cast<double>(k)) * line[k];
    };
    double const scale = 1 / step;
    double before = integral_to(start);
    for (std::size_t i = 0; i < count; ++i) {
        double const after = integral_to(start + static_cast<double>(i + 1) * step);
        samples[i] = (after - before) * scale;
        before = after;
    }
}

}  // namespace

void resample_line(double const* line, std::size_t length, double start, double step, bool reduced,
                   double* samples, std::size_t count, std::vector<double>& work) {
    // Only the pixels that take part, since a window is often a small piece of a row: half a pixel more than
    // the stretches at either end, for the interpolation.
    double const end = start + static_cast<double>(count) * step, last = static_cast<double>(length - 1);
    std::size_t const from = pixel_at(start - 0.5, last), to = pixel_at(end + 0.5, last);
    line += from;
    length = to - from + 1;
    start -= static_cast<double>(from);

    // The middle of the first stretch, counted from the centre of pixel 0.
    double const first_place = start + 0.5 * (step - 1);
    if (step == 1.0) {  // exact on purpose: a step close to 1 moves the fraction along the line
        shift_line(line, length - 1, first_place, samples, count);
    } else if (reduced) {
        average_line(line, length, start, step, samples, count, work);
    } else {
        interpolate_line(line, length - 1, first_place, step, samples, count);
    }
}

}  // namespace tvmath
