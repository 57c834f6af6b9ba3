#pragma once

#include <span>
#include <string>
#include <vector>

#include "measure/job/measure_job.h"

inline namespace tvmath {

// What a job says of one tool, whether in a file or on the command line. Each function is false, with the
// reason in one line and its target as it was, when that is not possible.

/// A number of `edge_settings` by its name.
struct edge_setting {
    char const* name;
    double edge_settings::*value;
    double least, most;
    bool or_none;  ///< 0 is possible too.
};

std::span<edge_setting const> edge_setting_list();
bool set_edge_setting(edge_setting const& which, double x, edge_settings& edges, std::string& reason);

/// "any", "rising" or "falling".
bool set_edge_sense(std::string const& word, edge_settings& edges, std::string& reason);

/// Kind, words, place and angle, from "circle 80 320 240".
bool set_place(std::string const& words, measure_tool& tool, std::string& reason);

/// The same of the nominal feature, which is of the tool's kind.
bool set_nominal(std::string const& words, measure_tool& tool, std::string& reason);

/// Adds a limit: one number, or two for a `lower` and an `upper` one. The nominal feature is known before.
bool add_limit(std::string const& figure, std::vector<double> const& numbers, measure_tool& tool,
               std::string& reason);

}  // namespace tvmath
