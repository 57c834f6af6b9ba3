#pragma once

#include <iosfwd>
#include <string>
#include <vector>

#include "measure/edges/measure_result.h"

inline namespace tvmath {

/// What a report is about.
struct measure_report {
    std::string image;  ///< as it is shown
    unsigned int width = 0, height = 0;
    measure_job const* job = nullptr;
    std::vector<measured_tool> tools;

    bool passed() const;
};

/// Tables for people: of each feature what was measured, what it should be, the deviation, its tolerance, and
/// whether it passes; at the end how many did.
void write_text(std::ostream& out, measure_report const& report);

/// One table for people: of each feature only what has a limit or, where nothing has, its figures.
void write_summary(std::ostream& out, measure_report const& report);

/// A document of schema tvmath.measure/1 for programs.
void write_json(std::ostream& out, measure_report const& report);

/// A row for each edge point: tool, index from 1, place in the image, place in the results, residual,
/// contrast, kept (1 or 0). Places in the results are 3D when the job says a height.
std::string edge_table(measure_report const& report);

/// A line for each feature that was found: its name, a tab, and the text form of its record, as `tvmath show`
/// reads it.
std::string record_table(measure_report const& report);

/// A row x, y or x, y, z for the place of each feature, in the order of the job: a list of points, as fits
/// and calibrations read them. Returns true and sets `table`; false, with the name in `reason`, when a
/// feature was not found, since the rows after it would stand for others.
bool center_table(measure_report const& report, std::string& table, std::string& reason);

}  // namespace tvmath
