#include <algorithm>
#include <cmath>
#include <numeric>

#include "fit_plot_parts.h"
#include "fit_report.h"
#include "plot/plot_labels.h"

inline namespace tvmath {
namespace {

constexpr std::size_t most_dots = 2000;

struct range {
    double low, high;
};

range along_range(fit_view const& view) {
    auto const [low, high] =
        std::minmax_element(view.points.begin(), view.points.end(),
                            [](view_point const& a, view_point const& b) { return a.along < b.along; });
    double const span = high->along - low->along;
    if (view.along_is_angle && span > 180) {
        // A full turn, from wherever it is counted.
        double const start = low->along < 0 ? -180 : 0;
        return {start - 4, start + 364};
    }
    double const margin = span > 0 ? 0.02 * span : 0.5;
    return {low->along - margin, high->along + margin};
}

canvas_path level(plot_panel const& panel, double y) {
    canvas_path path;
    path.move_to(panel.at({panel.low.x, y}));
    path.line_to(panel.at({panel.high.x, y}));
    return path;
}

class profile_drawer {
public:
    profile_drawer(canvas& c, fit_picture const& picture, plot_panel const& panel)
        : c_(c), view_(picture.view), result_(picture.result), panel_(panel) {}

    void draw() {
        c_.begin_clip(panel_.corner, panel_.width, panel_.height);
        draw_zone();
        c_.stroke(level(panel_, 0), {feature_ink, 0.8});
        if (view_.points.size() <= most_dots) {
            draw_each();
        } else {
            draw_columns();
        }
        draw_extremes();
        c_.end_clip();
    }

private:
    spot at(std::size_t i) const { return panel_.at({view_.points[i].along, result_.residuals[i]}); }

    void draw_zone() {
        canvas_path band;
        spot const a = panel_.at({panel_.low.x, result_.highest.residual}),
                   b = panel_.at({panel_.high.x, result_.lowest.residual});
        band.move_to(a);
        band.line_to({b.x, a.y});
        band.line_to(b);
        band.line_to({a.x, b.y});
        band.close();
        c_.fill(band, zone_ink);
        c_.stroke(level(panel_, result_.highest.residual), {zone_edge_ink, 0.6});
        c_.stroke(level(panel_, result_.lowest.residual), {zone_edge_ink, 0.6});
    }

    void draw_each() {
        std::vector<std::size_t> order(view_.points.size());
        std::iota(order.begin(), order.end(), std::size_t{0});
        std::stable_sort(order.begin(), order.end(), [this](std::size_t a, std::size_t b) {
            return view_.points[a].along < view_.points[b].along;
        });
        canvas_path line, above, below;
        std::vector<spot> above_dots, below_dots;
        bool const few = order.size() <= 400;
        for (std::size_t const i : order) {
            line.line_to(at(i));
            bool const is_below = result_.residuals[i] < 0;
            (is_below ? below : above).move_to(panel_.at({view_.points[i].along, 0}));
            (is_below ? below : above).line_to(at(i));
            (is_below ? below_dots : above_dots).push_back(at(i));
        }
        if (view_.is_sequence) {
            c_.stroke(line, {faint_ink, 0.6});
        } else if (few) {
            c_.stroke(above, {{above_ink.red, above_ink.green, above_ink.blue, 0.35}, 0.6});
            c_.stroke(below, {{below_ink.red, below_ink.green, below_ink.blue, 0.35}, 0.6});
        }
        c_.dots(above_dots, few ? 1.7 : 1.0, above_ink);
        c_.dots(below_dots, few ? 1.7 : 1.0, below_ink);
    }

    // Of many points a bar from the least to the greatest in each column, cut where it changes its sign.
    void draw_columns() {
        auto const columns = static_cast<std::size_t>(panel_.width);
        std::vector<range> bars(columns, {1, -1});
        for (std::size_t i = 0; i < view_.points.size(); ++i) {
            double const part = (view_.points[i].along - panel_.low.x) / (panel_.high.x - panel_.low.x);
            auto const k = static_cast<std::size_t>(
                std::clamp(part * panel_.width, 0.0, static_cast<double>(columns - 1)));
            double const r = result_.residuals[i];
            bars[k] = bars[k].low > bars[k].high ? range{r, r}
                                                 : range{std::min(bars[k].low, r), std::max(bars[k].high, r)};
        }
        canvas_path above, below;
        for (std::size_t k = 0; k < columns; ++k) {
            if (bars[k].low > bars[k].high) continue;
            double const x = panel_.corner.x + static_cast<double>(k) + 0.5;
            auto const bar = [&](canvas_path& path, double from, double to) {
                // At least a hair, so that a column with one point is seen.
                double const y = panel_.at({0, from}).y, end = std::max(panel_.at({0, to}).y, y + 0.8);
                path.move_to({x, y});
                path.line_to({x, end});
            };
            if (bars[k].high > 0) bar(above, bars[k].high, std::max(bars[k].low, 0.0));
            if (bars[k].low < 0) bar(below, std::min(bars[k].high, 0.0), bars[k].low);
        }
        c_.stroke(above, {above_ink, 1});
        c_.stroke(below, {below_ink, 1});
    }

    void draw_extremes() {
        label_placer labels(c_, panel_);
        std::vector<extreme_point> const marked = marked_points(result_);
        for (extreme_point const& e : marked) labels.keep_clear(at(e.index), 4);
        for (std::size_t i = 0; i < marked.size(); ++i) {
            extreme_point const& e = marked[i];
            bool const is_high = 2 * e.residual > result_.highest.residual + result_.lowest.residual;
            color const ink = ink_of(e, result_);
            c_.dots({at(e.index)}, 2.6, ink);
            if (i >= most_labels) continue;
            labels.place(at(e.index), {0, is_high ? -1.0 : 1.0}, "point " + std::to_string(e.index + 1),
                         {.size = 8, .ink = ink, .bold = true, .halo = true});
        }
    }

    canvas& c_;
    fit_view const& view_;
    fit_result const& result_;
    plot_panel const& panel_;
};

// The form error as a dimension beside the panel.
void draw_dimension(canvas& c, fit_result const& result, plot_panel const& panel) {
    double const x = panel.corner.x + panel.width + 12, top = panel.at({0, result.highest.residual}).y,
                 bottom = panel.at({0, result.lowest.residual}).y;
    canvas_path line;
    for (double const y : {top, bottom}) {
        line.move_to({panel.corner.x + panel.width + 2, y});
        line.line_to({x + 4, y});
    }
    line.move_to({x, top});
    line.line_to({x, bottom});
    if (bottom - top > 14) {
        for (double const up : {1.0, -1.0}) {
            double const y = up > 0 ? top : bottom;
            line.move_to({x - 2.5, y + up * 6});
            line.line_to({x, y});
            line.line_to({x + 2.5, y + up * 6});
        }
    }
    c.stroke(line, {text_ink, 0.8});
    std::string const name =
        result.has_standard_names ? std::string(result.kind->form.symbol) + 't' : "form error";
    double const y = (top + bottom) / 2;
    c.text({x + 8, y - 3}, name, {.size = 8.5, .ink = text_ink});
    c.text({x + 8, y + 9}, decimal_text(result.form_error, residual_decimals(result)),
           {.size = 9.5, .ink = text_ink, .bold = true});
}

}  // namespace

void draw_profile(canvas& c, fit_picture const& picture, spot corner, double width, double height) {
    fit_result const& result = picture.result;
    range const along = along_range(picture.view);
    double low = std::min(result.lowest.residual, 0.0), high = std::max(result.highest.residual, 0.0);
    if (picture.is_rounding) {
        low = -1;
        high = 1;
    }
    double const margin = 0.32 * (high - low);  // room for the labels of the extremes
    plot_panel const panel = {corner, width, height, {along.low, low - margin}, {along.high, high + margin}};
    plot_axis const x = picture.view.along_is_angle
                            ? make_angle_axis(along.low, along.high)
                            : make_axis(0, along.low, along.high, round_above((along.high - along.low) / 12));
    plot_axis const y = picture.is_rounding ? plot_axis{}
                                            : make_axis(0, panel.low.y, panel.high.y,
                                                        round_above((panel.high.y - panel.low.y) / 6));
    draw_axes(c, panel, x, y, picture.view.along_label, "residual");
    if (!picture.is_rounding) {
        profile_drawer(c, picture, panel).draw();
        draw_dimension(c, result, panel);
        return;
    }
    canvas_path zero = level(panel, 0);
    c.stroke(zero, {feature_ink, 1});
    c.text({corner.x + width / 2, corner.y + height / 2 - 8},
           "all residuals are 0 to the rounding of the coordinates (greatest " +
               short_text(result.profile_error / 2) + ")",
           {.size = 9, .ink = text_ink, .across = 0.5});
}

}  // namespace tvmath
