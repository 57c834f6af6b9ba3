#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "measure/report/measure_report.h"

inline namespace tvmath {

/// How a tool came out. `without_limits` is a feature that was found and of which nothing was asked.
enum class verdict { pass, fail, without_limits, not_measured };

verdict verdict_of(measured_tool const& tool);

/// Whether the tool passed; none where there is nothing to pass.
std::optional<bool> has_passed(measured_tool const& tool);

/// The tools of each verdict, in the order of the report.
struct measure_tally {
    explicit measure_tally(measure_report const& report);

    std::vector<measured_tool const*> passing, failing, without_limits, not_measured;
};

}  // namespace tvmath
