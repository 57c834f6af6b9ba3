#include <algorithm>
#include <cmath>
#include <set>

#include "calibrate/calibrate_plot_parts.h"
#include "fit/fit_plot_parts.h"

inline namespace tvmath {
namespace {

// One dot for each place of the page that can be told apart.
std::vector<spot> told_apart(plot_panel const& panel, std::vector<spot> const& places, double apart) {
    std::set<std::pair<long, long>> taken;
    std::vector<spot> dots;
    for (spot const& p : places) {
        spot const at = panel.at(p);
        if (!std::isfinite(at.x) || !std::isfinite(at.y)) continue;
        // Far beyond the panel there is nothing to be seen.
        if (std::fabs(at.x) > 1e4 || std::fabs(at.y) > 1e4) continue;
        if (taken.insert({std::lround(at.x / apart), std::lround(at.y / apart)}).second) dots.push_back(at);
    }
    return dots;
}

void draw_cross(canvas& c, plot_panel const& panel, bool is_upright) {
    canvas_path lines;
    lines.move_to(panel.at({panel.low.x, 0}));
    lines.line_to(panel.at({panel.high.x, 0}));
    if (is_upright) {
        lines.move_to(panel.at({0, panel.low.y}));
        lines.line_to(panel.at({0, panel.high.y}));
    }
    c.stroke(lines, {feature_ink, 0.6});
}

std::string capital_words(char const* when, spread const& s) {
    return std::string(when) + ": rms " + short_text(s.rms, 3) + ", largest " + short_text(s.largest, 3);
}

// The errors in both coordinates, or those in height over the distance from the middle of the screen.
void draw_cloud(canvas& c, calibrate_result const& result, spot observation::*error, char const* when,
                spread const& s, spot corner, double side, double height) {
    bool const are_heights = result.kind() == corrector_kind::flatness;
    double const range = s.largest > 0 ? 1.12 * s.largest : 1;
    std::vector<spot> places;
    double farthest = 0;
    for (observation const& o : result.observations) {
        double const distance = std::hypot(o.at.x, o.at.y);
        places.push_back(are_heights ? spot{distance, (o.*error).y} : o.*error);
        farthest = std::max(farthest, distance);
    }
    plot_panel const panel = {corner,
                              side,
                              height,
                              {are_heights ? 0 : -range, -range},
                              {are_heights ? 1.06 * farthest : range, range}};
    std::string const unit = std::string(", ") + error_unit(result.kind());
    double const width = panel.high.x - panel.low.x;
    draw_axes(c, panel, make_axis(0, panel.low.x, panel.high.x, round_above(width / 5)),
              s.largest > 0 ? make_axis(0, -range, range, round_above(range / 3)) : plot_axis{},
              are_heights ? "from the middle, pixels" : "dx" + unit, are_heights ? "dz" + unit : "dy" + unit);
    c.text({corner.x, corner.y - 6}, capital_words(when, s), {.size = 8, .ink = text_ink, .bold = true});
    c.begin_clip(panel.corner, panel.width, panel.height);
    draw_cross(c, panel, !are_heights);
    std::vector<spot> const dots = told_apart(panel, places, 0.6);
    c.dots(dots, dots.size() < 300 ? 1.5 : 0.9, below_ink);
    c.end_clip();
}

}  // namespace

void draw_places(canvas& c, plot_panel const& panel, std::vector<observation> const& observations) {
    std::vector<spot> places;
    for (observation const& o : observations) places.push_back(o.at);
    c.dots(told_apart(panel, places, 3), 0.9, zone_edge_ink);
}

void draw_errors(canvas& c, calibrate_result const& result, spot corner, double width, double height) {
    constexpr double title = 12, labels = 46;
    double const side = height / 2 - title - labels;
    draw_cloud(c, result, &observation::before, "Before", result.before(), corner + spot{0, title}, width,
               side);
    draw_cloud(c, result, &observation::after, "After", result.after(), corner + spot{0, height / 2 + title},
               width, side);
}

}  // namespace tvmath
