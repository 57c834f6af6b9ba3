#pragma once

#include <functional>
#include <iosfwd>
#include <string>
#include <vector>

#include "fit_result.h"

inline namespace tvmath {

/// A table for people: labels on the left, decimal points below each other.
void write_text(std::ostream& out, fit_result const& result);

/// A document of schema tvmath.fit/2 for programs.
void write_json(std::ostream& out, std::vector<fit_result> const& results);

/// A row for each point: index from 1, coordinates, residual.
std::string residual_table(fit_result const& result);

/// One row of a table: a label, a number, and a few words behind it.
struct report_row {
    std::string label, number, note;
};

/// The name of the form error and its short form: "roundness RONt", or just "form error".
std::string form_label(fit_result const& result);

/// The figures as rows of their own for each coordinate; angles in degrees and, with `radians`, in radians
/// too. Rows of lists are left out. Numbers by `text`.
std::vector<report_row> rows_of(std::vector<figure> const& figures, bool radians,
                                std::function<std::string(double)> const& text);

/// Writes the rows indented by two blanks: labels on the left, decimal points below each other.
void write_rows(std::ostream& out, std::vector<report_row> const& rows);

}  // namespace tvmath
