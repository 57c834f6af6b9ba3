#pragma once

#include <array>
#include <string>
#include <vector>

#include "measure/edges/measure_result.h"

inline namespace tvmath {

/// The columns of numbers in the table of a feature.
enum measure_column { column_measured, column_nominal, column_deviation, column_lower, column_upper };
constexpr std::size_t measure_columns = 5;

/// One row of the table: numbers as text, empty where there is none, and "pass", "FAIL" or nothing.
struct measure_row {
    std::string label;
    std::array<std::string, measure_columns> cells;
    std::string verdict;
};

/// Decimals of angles in degrees.
constexpr int angle_decimals = 4;

/// So many decimals that the last one is less than a 500th of a pixel of that length, the least that edges
/// tell; 0 to 12.
int decimals_for(double pixel_length);

/// The number that decides, with so many decimals, and more where it would seem to contradict its verdict;
/// "-" where there is none.
std::string number_of(tolerance_check const& check, int decimals);

/// The rows of a tool that was measured: its figures, without those that only repeat the nominal feature or
/// another figure, its errors, and each of its limits.
std::vector<measure_row> rows_of(measured_tool const& measured, int decimals);

}  // namespace tvmath
