#include "fit/fit_json.h"
#include "measure/report/measure_record.h"
#include "measure/report/measure_report.h"
#include "measure/report/measure_verdict.h"
#include "report/figure_json.h"

inline namespace tvmath {
namespace {

json_value or_null(std::optional<bool> const& value) {
    return value ? json_value(*value) : json_value();
}

json_value or_null(std::string const& text) {
    return text.empty() ? json_value() : json_value(text);
}

json_value checks_of(measured_tool const& tool) {
    json_value list = json_value::array();
    for (tolerance_check const& c : tool.checks) {
        list.push_back({{"figure", c.limit.figure},
                        {"value", c.value},
                        {"lower", c.limit.lower},
                        {"upper", c.limit.upper},
                        {"passed", c.passed}});
    }
    return list;
}

json_value object_of(measured_tool const& measured) {
    measure_tool const& tool = *measured.tool;
    json_value object;
    object["name"] = tool.name;
    object["kind"] = tool.kind->name;
    object["words"] = tool.words;
    object["passed"] = or_null(has_passed(measured));
    object["reason"] = or_null(measured.reason);
    object["places"] = measured.stations;
    object["edge_points"] = measured.edges.size();
    object["dropped"] = measured.dropped();
    object["farthest_dropped"] = measured.farthest_dropped();
    if (measured.fit) {
        put_fit(object, *measured.fit);
        // Counts the points that were kept, not all of the table of edge points.
        object["highest"].erase("index");
        object["lowest"].erase("index");
    } else {
        object["feature"] = nullptr;
    }
    if (tool.nominal) {
        object["nominal"]["feature"] = tool.nominal_words;
        object["nominal"]["figures"] = figures_object(figures_of(*tool.nominal));
    } else {
        object["nominal"] = nullptr;
    }
    object["checks"] = checks_of(measured);
    object["record"] = or_null(record_line(measured));
    return object;
}

json_value counts_of(measure_tally const& tally, std::size_t features) {
    return {{"features", features},
            {"passed", tally.passing.size()},
            {"failed", tally.failing.size()},
            {"without_limits", tally.without_limits.size()},
            {"not_measured", tally.not_measured.size()}};
}

}  // namespace

void write_json(std::ostream& out, measure_report const& report) {
    measure_job const& job = *report.job;
    measure_tally const tally(report);
    json_value document;
    document["schema"] = "tvmath.measure/1";
    document["image"] = report.image;
    document["size"] = {report.width, report.height};
    document["unit"] = or_null(job.unit);
    document["pixel_length"] = job.pixel_length();
    document["corrections"] = json_value::array();
    if (!job.screen.is_trivial()) document["corrections"].push_back("screen");
    if (!job.flatness.is_trivial()) document["corrections"].push_back("flatness");
    document["z"] = job.z ? json_value(*job.z) : json_value();
    bool const is_asked = tally.without_limits.size() < report.tools.size();
    document["passed"] = is_asked ? json_value(report.passed()) : json_value();
    document["counts"] = counts_of(tally, report.tools.size());
    document["tools"] = json_value::array();
    for (measured_tool const& tool : report.tools) document["tools"].push_back(object_of(tool));
    write_json_text(out, document);
}

}  // namespace tvmath
