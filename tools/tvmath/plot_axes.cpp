#include <algorithm>

#include "fit_plot_parts.h"

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

}  // namespace tvmath
