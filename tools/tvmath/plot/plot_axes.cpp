#include <algorithm>

#include "fit/fit_plot_parts.h"

inline namespace tvmath {

void draw_axes(canvas& c, plot_panel const& panel, plot_axis const& x, plot_axis const& y,
               std::string const& x_label, std::string const& y_label) {
    double const left = panel.corner.x, top = panel.corner.y, right = left + panel.width,
                 bottom = top + panel.height;
    canvas_path grid;
    for (plot_axis::tick const& t : x.ticks) {
        double const at = panel.at({t.at, panel.low.y}).x;
        grid.move_to({at, top});
        grid.line_to({at, bottom});
        c.text({at, bottom + 12}, t.text, {.size = 8, .ink = faint_ink, .across = 0.5});
    }
    double widest = 0;
    for (plot_axis::tick const& t : y.ticks) {
        double const at = panel.at({panel.low.x, t.at}).y;
        grid.move_to({left, at});
        grid.line_to({right, at});
        text_style const style = {.size = 8, .ink = faint_ink, .across = 1, .up = 0.5};
        c.text({left - 5, at}, t.text, style);
        widest = std::max(widest, c.text_width(t.text, style));
    }
    c.stroke(grid, {grid_ink, 0.6});
    canvas_path frame;
    frame.move_to({left, top});
    frame.line_to({right, top});
    frame.line_to({right, bottom});
    frame.line_to({left, bottom});
    frame.close();
    c.stroke(frame, {frame_ink, 0.8});
    c.text({(left + right) / 2, bottom + 25}, x_label + x.remark,
           {.size = 8.5, .ink = text_ink, .across = 0.5});
    c.text({left - 11 - widest, (top + bottom) / 2}, y_label + y.remark,
           {.size = 8.5, .ink = text_ink, .across = 0.5, .vertical = true});
}

plot_panel panel_for(view_extent const& e, bool is_even, spot corner, double width, double height) {
    double const margin = 26, room_x = width - 2 * margin, room_y = height - 2 * margin;
    double const size = std::max(e.width(), e.height());
    // All in one place: there is no scale but the unit.
    double const least = size > 0 ? 1e-9 * size : 1;
    double const w = std::max(e.width(), least), h = std::max(e.height(), least);
    double scale_x = room_x / w, scale_y = room_y / h;
    if (is_even) scale_x = scale_y = std::min(scale_x, scale_y);
    spot const middle = 0.5 * (e.low + e.high), half = {width / scale_x / 2, height / scale_y / 2};
    return {corner, width, height, middle - half, middle + half};
}

void draw_grid(canvas& c, plot_panel const& panel, bool is_even, spot origin, std::string const& x_label,
               std::string const& y_label) {
    // One step for both axes where they have one scale, so that the grid is square.
    double step_x = round_above((panel.high.x - panel.low.x) / 11),
           step_y = round_above((panel.high.y - panel.low.y) / 8);
    if (is_even) step_x = step_y = std::max(step_x, step_y);
    auto const axis = [](std::string const& label, double from, double low, double high, double step) {
        return label.ends_with("degrees") ? make_angle_axis(low, high) : make_axis(from, low, high, step);
    };
    draw_axes(c, panel, axis(x_label, origin.x, panel.low.x, panel.high.x, step_x),
              axis(y_label, origin.y, panel.low.y, panel.high.y, step_y), x_label, y_label);
}

}  // namespace tvmath
