#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <unordered_map>

#include "fit_plot_parts.h"
#include "plot/plot_labels.h"
#include "tvmath/scalar.h"

inline namespace tvmath {
namespace {

constexpr std::size_t most_avoided = 400;  // labels keep clear of so many points
constexpr std::size_t least_dense = 24;    // from that many on the profile is drawn as a line
constexpr double least_edge = 0.2;         // of outlines, in points of the page
constexpr double cell = 2.4;               // of thinning, in points of the page

// Of all points in one cell of the page those with the greatest and the least residual stay, so no extreme
// is lost. Lists of few points stay whole.
std::vector<std::size_t> visible_points(std::vector<spot> const& at, std::vector<double> const& residuals) {
    std::vector<std::size_t> seen;
    if (at.size() <= most_single) {
        for (std::size_t i = 0; i < at.size(); ++i) seen.push_back(i);
        return seen;
    }
    std::unordered_map<std::int64_t, std::array<std::size_t, 2>> cells;
    for (std::size_t i = 0; i < at.size(); ++i) {
        auto const column = static_cast<std::int64_t>(std::floor(at[i].x / cell)),
                   row = static_cast<std::int64_t>(std::floor(at[i].y / cell));
        auto const [held, fresh] = cells.try_emplace(row * 100000 + column, std::array{i, i});
        if (fresh) continue;
        if (residuals[i] < residuals[held->second[0]]) held->second[0] = i;
        if (residuals[i] > residuals[held->second[1]]) held->second[1] = i;
    }
    for (auto const& [key, ends] : cells) {
        seen.push_back(ends[0]);
        if (ends[1] != ends[0]) seen.push_back(ends[1]);
    }
    std::sort(seen.begin(), seen.end());  // the same picture from every run
    return seen;
}

canvas_path polygon(plot_panel const& panel, outline const& o, double offset, canvas_path path = {}) {
    path.interrupt();
    spot last;
    for (std::size_t i = 0; i < o.at.size(); ++i) {
        spot const p = panel.at(o.at[i] + offset * o.out[i]);
        // A path of a million vertices has no more than the eye can tell apart.
        bool const is_seen = std::hypot(p.x - last.x, p.y - last.y) > least_edge;
        if (i > 0 && i + 1 < o.at.size() && !is_seen) continue;
        path.line_to(p);
        last = p;
    }
    if (o.closed && !o.at.empty()) path.close();
    return path;
}

class view_drawer {
public:
    view_drawer(canvas& c, fit_picture const& picture, plot_panel const& panel)
        : c_(c),
          picture_(picture),
          view_(picture.view),
          residuals_(picture.result.residuals),
          panel_(panel) {}

    void draw() {
        c_.begin_clip(panel_.corner, panel_.width, panel_.height);
        if (has_zone()) draw_zone();
        if (view_.style == view_style::whiskers) draw_guides({faint_ink, 0.7, 4});
        bool const is_map = view_.style == view_style::map;
        if (is_map) {
            draw_outlines({frame_ink, 0.8});
            draw_colored_points();
            draw_guides({feature_ink, 0.8, 4});
        } else {
            draw_whiskers();
            if (has_zone() && picture_.result.is_zone()) draw_boundaries();
            draw_outlines({feature_ink, 1.2});
            draw_points();
        }
        draw_marks();
        draw_extremes();
        c_.end_clip();
    }

private:
    double drawn(std::size_t i) const { return picture_.is_rounding ? 0 : picture_.factor * residuals_[i]; }
    spot foot(std::size_t i) const { return panel_.at(view_.points[i].foot); }
    spot tip(std::size_t i) const { return panel_.at(view_.points[i].foot + drawn(i) * view_.points[i].out); }
    bool has_zone() const { return view_.style == view_style::whiskers && !picture_.is_rounding; }

    void draw_outlines(pen const& with) {
        for (outline const& o : view_.outlines) c_.stroke(polygon(panel_, o, 0), with);
    }

    void draw_guides(pen const& with) {
        for (outline const& o : view_.guides) c_.stroke(polygon(panel_, o, 0), with);
    }

    // Between the parallels through the extreme points, enlarged as the residuals are. As a broad line along
    // their middle, which covers itself where a path turns sharply, and is round beyond corners as the
    // distances are.
    void draw_zone() {
        double const high = picture_.factor * picture_.result.highest.residual,
                     low = picture_.factor * picture_.result.lowest.residual;
        double const width = (high - low) * panel_.scale_x();
        canvas_path band;
        for (outline const& o : view_.outlines) band = polygon(panel_, o, (high + low) / 2, band);
        c_.stroke(band, {zone_edge_ink, width + 1});
        c_.stroke(band, {zone_ink, width});
    }

    void draw_whiskers() {
        if (picture_.is_rounding) return;
        std::vector<spot> feet;
        for (std::size_t i = 0; i < view_.points.size(); ++i) feet.push_back(foot(i));
        seen_ = visible_points(feet, residuals_);
        canvas_path above, below;
        for (std::size_t const i : seen_) {
            canvas_path& path = residuals_[i] < 0 ? below : above;
            path.move_to(feet[i]);
            path.line_to(tip(i));
        }
        double const width = seen_.size() > 400 ? 0.5 : seen_.size() > 120 ? 0.8 : 1.2;
        c_.stroke(above, {above_ink, width});
        c_.stroke(below, {below_ink, width});
        // A straight line between points that are far apart would not be what was measured.
        bool const is_dense = view_.points.size() >= least_dense && view_.points.size() <= most_single;
        if (view_.is_sequence && !view_.outlines.empty() && is_dense) draw_profile();
    }

    // From whisker to whisker, in the order along the feature: the profile as a roundness chart shows it.
    void draw_profile() {
        std::vector<std::size_t> order = seen_;
        std::stable_sort(order.begin(), order.end(), [this](std::size_t a, std::size_t b) {
            return view_.points[a].along < view_.points[b].along;
        });
        canvas_path path;
        for (std::size_t const i : order) path.line_to(tip(i));
        if (view_.outlines.front().closed && order.size() > 2) path.close();
        c_.stroke(path, {faint_ink, 0.6});
    }

    // Few points: at their places, and coloured where the whiskers end. Many: at their places only.
    void draw_points() {
        std::vector<spot> places, above, below;
        if (seen_.empty()) {
            std::vector<spot> feet;
            for (std::size_t i = 0; i < view_.points.size(); ++i) feet.push_back(foot(i));
            seen_ = visible_points(feet, residuals_);
        }
        for (std::size_t const i : seen_) {
            view_point const& p = view_.points[i];
            places.push_back(panel_.at(p.foot + (picture_.is_rounding ? 0 : residuals_[i]) * p.out));
            (residuals_[i] < 0 ? below : above).push_back(tip(i));
        }
        bool const few = seen_.size() <= 400;
        if (few && !picture_.is_rounding) {
            double const radius = seen_.size() <= 120 ? 2.0 : 1.3;
            c_.dots(above, radius, above_ink);
            c_.dots(below, radius, below_ink);
        }
        if (picture_.factor != 1 || picture_.is_rounding)
            c_.dots(places, few ? (seen_.size() <= 120 ? 1.8 : 1.2) : 0.7, feature_ink);
    }

    void draw_colored_points() {
        std::vector<map_dot> dots = picture_.dots;
        // Large residuals last, so that they lie on top.
        std::stable_sort(dots.begin(), dots.end(), [](map_dot const& a, map_dot const& b) {
            return std::fabs(a.residual) < std::fabs(b.residual);
        });
        double const radius = dots.size() <= 150 ? 4 : dots.size() <= 1500 ? 2.6 : 1.8;
        // Colours in steps, each one path: a short file for many points.
        constexpr int steps = 12;
        for (int s = 0; s <= steps; ++s) {
            std::vector<spot> positive, negative;
            for (map_dot const& dot : dots) {
                double const part = picture_.color_range > 0 ? dot.residual / picture_.color_range : 0;
                if (static_cast<int>(std::lround(std::fabs(part) * steps)) != s) continue;
                (part < 0 ? negative : positive).push_back(panel_.at(dot.at));
            }
            double const part = static_cast<double>(s) / steps;
            for (auto const& [places, sign] : {std::pair{&positive, 1.0}, std::pair{&negative, -1.0}}) {
                if (radius > 2) c_.dots(*places, radius + 0.5, {0.35, 0.36, 0.4});
                c_.dots(*places, radius, residual_color(sign * part));
            }
        }
    }

    void draw_marks() {
        canvas_path path;
        for (spot const& mark : view_.marks) {
            spot const at = panel_.at(mark);
            path.move_to({at.x - 5, at.y});
            path.line_to({at.x + 5, at.y});
            path.move_to({at.x, at.y - 5});
            path.line_to({at.x, at.y + 5});
        }
        c_.stroke(path, {faint_ink, 0.8});
    }

    // Where the contacts of a zone lie, as far out as these are drawn.
    void draw_boundaries() {
        for (double const d : {picture_.result.highest.residual, picture_.result.lowest.residual}) {
            for (outline const& o : view_.outlines)
                c_.stroke(polygon(panel_, o, picture_.factor * d), {boundary_ink, 1.1});
        }
    }

    void draw_extremes() {
        if (picture_.is_rounding) return;
        std::vector<extreme_point> const marked = marked_points(picture_.result);
        label_placer labels(c_, panel_);
        for (extreme_point const& e : marked) labels.keep_clear(tip(e.index), 6);
        if (view_.points.size() <= most_avoided) {
            for (std::size_t i = 0; i < view_.points.size(); ++i) labels.keep_clear(tip(i), 3);
        }
        for (extreme_point const& e : marked) {
            c_.stroke(ring_at(tip(e.index), 4.5), {{1, 1, 1}, 3.2});
            c_.stroke(ring_at(tip(e.index), 4.5), {ink_of(e, picture_.result), 1.3});
        }
        // All contacts of one boundary have one residual, which the figures tell.
        bool const is_zone = picture_.result.is_zone();
        for (std::size_t i = 0; i < std::min(marked.size(), most_labels); ++i) {
            extreme_point const& e = marked[i];
            spot const out = view_.points[e.index].out, way = is_above(e, picture_.result) ? out : -1.0 * out;
            labels.place(tip(e.index), {way.x, -way.y},
                         is_zone ? "point " + std::to_string(e.index + 1) : extreme_text(e, picture_.result),
                         {.size = 8.5, .ink = ink_of(e, picture_.result), .bold = true, .halo = true});
        }
    }

    canvas& c_;
    fit_picture const& picture_;
    fit_view const& view_;
    std::vector<double> const& residuals_;
    plot_panel const& panel_;
    std::vector<std::size_t> seen_;
};

view_extent extent_of(fit_picture const& picture) {
    fit_view const& view = picture.view;
    view_extent extent;
    double const enlarged = picture.is_rounding || view.style == view_style::map ? 0 : picture.factor;
    for (outline const& o : view.outlines) {
        for (double const d : {picture.result.highest.residual, picture.result.lowest.residual}) {
            for (std::size_t i = 0; i < o.at.size(); ++i) extent.include(o.at[i] + enlarged * d * o.out[i]);
        }
    }
    for (outline const& o : view.guides) extent.include(o);
    for (std::size_t i = 0; i < view.points.size(); ++i) {
        view_point const& p = view.points[i];
        extent.include(p.foot + enlarged * picture.result.residuals[i] * p.out);
    }
    return extent;
}

}  // namespace

canvas_path ring_at(spot center, double radius) {
    canvas_path path;
    for (int i = 0; i < 32; ++i) {
        double const a = 2 * pi * i / 32;
        path.line_to({center.x + radius * std::cos(a), center.y + radius * std::sin(a)});
    }
    path.close();
    return path;
}

double draw_view(canvas& c, fit_picture const& picture, spot corner, double width, double height) {
    fit_view const& view = picture.view;
    plot_panel const panel = panel_for(extent_of(picture), view.is_even, corner, width, height);
    draw_grid(c, panel, view.is_even, view.origin, view.x_label, view.y_label);
    view_drawer(c, picture, panel).draw();
    return panel.scale_x();
}

}  // namespace tvmath
