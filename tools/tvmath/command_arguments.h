#pragma once

#include <CLI/CLI.hpp>

#include "calibrate/calibrate_command.h"
#include "construct/construct_command.h"
#include "fit/fit_command.h"
#include "measure/measure_command.h"
#include "mesh/mesh_command.h"
#include "record/convert_command.h"
#include "record/render_command.h"
#include "record/show_command.h"

inline namespace tvmath {

// The arguments of each command, which the parser writes into its request.

CLI::App* add_fit(CLI::App& app, fit_request& request);
CLI::App* add_zone(CLI::App& app, fit_request& request);
CLI::App* add_mesh(CLI::App& app, mesh_request& request);
CLI::App* add_render(CLI::App& app, render_request& request);
CLI::App* add_convert(CLI::App& app, convert_request& request);
CLI::App* add_show(CLI::App& app, show_request& request);
CLI::App* add_construct(CLI::App& app, construct_request& request);
CLI::App* add_calibrate(CLI::App& app, calibrate_request& request);
CLI::App* add_correct(CLI::App& app, correct_request& request);
CLI::App* add_measure(CLI::App& app, measure_request& request);

inline constexpr char const* file_help = "Points as CSV or XYZ text, 2 or 3 columns; - is standard input";

void add_decimal(CLI::App& command, bool& decimal_comma);

}  // namespace tvmath
