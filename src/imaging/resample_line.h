#pragma once

#include <cstddef>
#include <vector>

inline namespace tvmath {

/// Resamples a line of `length` pixels, at least 1, of which pixel k covers the stretch from k to k + 1:
/// sample i is the grey over the stretch from `start` + i `step` on, `step` long and not negative. Beyond
/// the line its end pixels count as repeated.
///
/// A sample is the mean over its stretch when the line is to be `reduced`, otherwise the linear
/// interpolation at its middle; at a step of 1 both are the same. `work` is room that calls may share. All
/// numbers finite; length and count below 2^31.
void resample_line(double const* line, std::size_t length, double start, double step, bool reduced,
                   double* samples, std::size_t count, std::vector<double>& work);

}  // namespace tvmath
