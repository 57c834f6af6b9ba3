#include "measure/report/measure_verdict.h"

#include <algorithm>

inline namespace tvmath {

verdict verdict_of(measured_tool const& tool) {
    if (!tool.fit) return verdict::not_measured;
    if (tool.checks.empty()) return verdict::without_limits;
    return tool.passed() ? verdict::pass : verdict::fail;
}

std::optional<bool> has_passed(measured_tool const& tool) {
    if (verdict_of(tool) == verdict::without_limits) return std::nullopt;
    return tool.passed();
}

measure_tally::measure_tally(measure_report const& report) {
    for (measured_tool const& tool : report.tools) {
        switch (verdict_of(tool)) {
            case verdict::pass:
                passing.push_back(&tool);
                break;
            case verdict::fail:
                failing.push_back(&tool);
                break;
            case verdict::without_limits:
                without_limits.push_back(&tool);
                break;
            case verdict::not_measured:
                not_measured.push_back(&tool);
        }
    }
}

bool measure_report::passed() const {
    return std::all_of(tools.begin(), tools.end(), [](measured_tool const& tool) { return tool.passed(); });
}

}  // namespace tvmath
