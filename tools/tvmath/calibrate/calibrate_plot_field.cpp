#include <algorithm>
#include <cmath>

#include "calibrate/calibrate_plot_parts.h"
#include "fit/fit_plot_parts.h"

inline namespace tvmath {
namespace {

constexpr int steps_across = 13;    // of the grid along the longer side
constexpr double longest = 0.95;    // arrow, in steps: It does not reach its neighbour.
constexpr double least_head = 0.7;  // Below that many page points an arrow is a dot.

struct arrow {
    spot from, by;
};

view_extent extent_of(calibrate_result const& result) {
    view_extent extent;
    if (result.kind() == corrector_kind::telecentricity) {
        for (observation const& o : result.observations) extent.include(o.at);
    } else {
        spot const corner = {0.5 * result.setup.width, 0.5 * result.setup.height};
        extent.include(corner);
        extent.include(-1.0 * corner);
    }
    return extent;
}

// The places along one side, in steps of about the same length on both.
int places_along(double side, double step) {
    return step > 0 ? std::clamp(static_cast<int>(std::lround(side / step)) + 1, 2, steps_across + 1) : 1;
}

std::vector<arrow> arrows_over(calibrate_result const& result, view_extent const& extent, double step) {
    std::vector<arrow> arrows;
    int const columns = places_along(extent.width(), step), rows = places_along(extent.height(), step);
    auto const part = [](int i, int n) { return n > 1 ? static_cast<double>(i) / (n - 1) : 0.5; };
    for (int row = 0; row < rows; ++row) {
        for (int column = 0; column < columns; ++column) {
            spot const at =
                extent.low + spot{part(column, columns) * extent.width(), part(row, rows) * extent.height()};
            spot const by = displacement(result.corrector, at, result.height);
            if (std::isfinite(by.x) && std::isfinite(by.y)) arrows.push_back({at, by});
        }
    }
    return arrows;
}

// The line of an arrow into `lines`, its head into `heads`.
void add_arrow(canvas_path& lines, canvas_path& heads, spot from, spot to) {
    spot const way = to - from;
    double const length = std::hypot(way.x, way.y), head = std::min(4.6, 0.5 * length);
    spot const along = (1 / length) * way, across = {-along.y, along.x}, neck = to - head * along;
    lines.move_to(from);
    lines.line_to(neck);
    heads.move_to(to);
    heads.line_to(neck + 0.36 * head * across);
    heads.line_to(neck - 0.36 * head * across);
    heads.close();
}

void draw_arrows(canvas& c, plot_panel const& panel, std::vector<arrow> const& arrows, double factor,
                 bool are_heights) {
    struct colour_group {
        canvas_path lines, heads;
        std::vector<spot> dots;
    } groups[2];
    for (arrow const& a : arrows) {
        spot const from = panel.at(a.from), to = panel.at(a.from + factor * a.by), way = to - from;
        colour_group& group = groups[are_heights && a.by.y > 0 ? 1 : 0];
        if (std::hypot(way.x, way.y) > least_head) {
            add_arrow(group.lines, group.heads, from, to);
        } else {
            group.dots.push_back(from);
        }
    }
    for (int i = 0; i < 2; ++i) {
        color const ink = i == 1 ? above_ink : below_ink;
        c.stroke(groups[i].lines, {ink, 0.9});
        c.fill(groups[i].heads, ink);
        c.dots(groups[i].dots, 0.8, ink);
    }
}

void draw_frame(canvas& c, plot_panel const& panel, view_extent const& extent) {
    spot const a = panel.at(extent.low), b = panel.at(extent.high);
    canvas_path frame;
    frame.move_to(a);
    frame.line_to({b.x, a.y});
    frame.line_to(b);
    frame.line_to({a.x, b.y});
    frame.close();
    c.stroke(frame, {faint_ink, 0.8, 4});
}

// How much the arrows are enlarged, in words and as a bar of a round length.
void draw_scale(canvas& c, calibrate_result const& result, plot_panel const& panel, double factor,
                double largest) {
    text_style const words = {.size = 8.5, .ink = text_ink};
    bool const are_heights = result.kind() == corrector_kind::flatness;
    double const y = panel.corner.y + panel.height + 44, bar = round_below(largest);
    spot const from = {panel.corner.x, y - 3}, to = from + spot{bar * factor * panel.scale_x(), 0};
    canvas_path lines, heads;
    add_arrow(lines, heads, from, to);
    c.stroke(lines, {text_ink, 0.9});
    c.fill(heads, text_ink);
    std::string const size = short_text(bar) + ' ' + error_unit(result.kind());
    c.text({to.x + 6, y}, size, words);
    std::string text = are_heights ? "corrections of z, up in red: a unit as long as " + factor_text(factor) +
                                         (factor == 1 ? " pixel" : " pixels")
                                   : "displacements, " + factor_text(factor) + " times enlarged";
    if (result.kind() == corrector_kind::telecentricity)
        text += ", " + short_text(result.height) + " above the reference";
    c.text({panel.corner.x + panel.width, y}, text, {.size = 8.5, .ink = text_ink, .across = 1});
}

}  // namespace

void draw_field(canvas& c, calibrate_result const& result, spot corner, double width, double height) {
    bool const on_screen = result.kind() != corrector_kind::telecentricity;
    view_extent const extent = extent_of(result);
    plot_panel const panel = panel_for(extent, true, corner, width, height);
    double const step = std::max(extent.width(), extent.height()) / steps_across;
    std::vector<arrow> const arrows = arrows_over(result, extent, step);
    double largest = 0;
    for (arrow const& a : arrows) largest = std::max(largest, std::hypot(a.by.x, a.by.y));
    std::string const unit = on_screen ? ", pixels" : ", machine units";
    draw_grid(c, panel, true, {}, "x" + unit, "y" + unit);
    c.begin_clip(panel.corner, panel.width, panel.height);
    if (on_screen) draw_frame(c, panel, extent);
    draw_places(c, panel, result.observations);
    // In one place there is no step to draw to.
    double const room = longest * (step > 0 ? step : (panel.high.x - panel.low.x) / 4);
    double const factor = largest > 0 ? round_below(room / largest) : 1;
    draw_arrows(c, panel, arrows, factor, result.kind() == corrector_kind::flatness);
    c.end_clip();
    if (largest > 0) {
        draw_scale(c, result, panel, factor, largest);
    } else {
        c.text({corner.x, corner.y + height + 44}, "no displacement", {.size = 8.5, .ink = text_ink});
    }
}

}  // namespace tvmath
