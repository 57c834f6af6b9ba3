#pragma once

#include <string>
#include <vector>

#include "fit_result.h"
#include "fit_view.h"
#include "plot/canvas.h"
#include "plot/plot_axis.h"

inline namespace tvmath {

// Colours that differ for colour-blind eyes and in grey.
constexpr color above_ink = {0.80, 0.20, 0.12}, below_ink = {0.10, 0.36, 0.72};
constexpr color feature_ink = {0.10, 0.12, 0.16}, text_ink = {0.13, 0.14, 0.17},
                faint_ink = {0.45, 0.47, 0.51};
constexpr color grid_ink = {0.91, 0.92, 0.93}, frame_ink = {0.70, 0.72, 0.75};
constexpr color zone_ink = {0.96, 0.93, 0.80}, zone_edge_ink = {0.72, 0.62, 0.30};
constexpr color boundary_ink = {0.55, 0.42, 0.05};

/// A rectangle of the page in which something is drawn to scale; y of the page grows downward.
struct plot_panel {
    spot corner;  ///< upper left
    double width = 0, height = 0;
    spot low, high;  ///< of the drawing, at the lower left and upper right corner

    spot at(spot p) const {
        return {corner.x + (p.x - low.x) / (high.x - low.x) * width,
                corner.y + (high.y - p.y) / (high.y - low.y) * height};
    }
    double scale_x() const { return width / (high.x - low.x); }
    double scale_y() const { return height / (high.y - low.y); }
};

/// Frame, grid and ticks, with the names of both axes.
void draw_axes(canvas& c, plot_panel const& panel, plot_axis const& x, plot_axis const& y,
               std::string const& x_label, std::string const& y_label);

/// The panel that holds the extent with a margin; with `is_even` both axes have one scale.
plot_panel panel_for(view_extent const& extent, bool is_even, spot corner, double width, double height);

/// The same with ticks for places that count from `origin`, of an even panel in squares.
void draw_grid(canvas& c, plot_panel const& panel, bool is_even, spot origin, std::string const& x_label,
               std::string const& y_label);

/// Beyond that many points those are drawn that can be told apart.
constexpr std::size_t most_single = 1200;

/// A dot of a map: a point, or the mean of neighbouring points.
struct map_dot {
    spot at;  ///< in the view
    double residual = 0;
};

/// All that the parts of the page share.
struct fit_picture {
    fit_result const& result;
    fit_view const& view;
    /// How many times the residuals are drawn enlarged; 1 draws them true.
    double factor = 1;
    /// The residuals are no more than rounding of the coordinates, and are drawn as 0.
    bool is_rounding = false;
    double rounding = 0;  ///< of the coordinates
    // Of a map.
    std::vector<map_dot> dots = {};
    bool has_means = false;  ///< The dots are means of neighbouring points.
    double color_range = 0;  ///< The residual of the deepest colour.
};

fit_picture make_fit_picture(fit_result const& result, fit_view const& view);

/// The names of the files without their folders, which say nothing to a reader elsewhere.
std::string names_of(std::string const& files);
/// As much of the words as fits into that width.
std::string cut(canvas& c, std::string words, text_style const& style, double width);
/// "500", "10 000", "2e+12".
std::string factor_text(double factor);
/// Between blue for -1, light grey for 0 and red for 1.
color residual_color(double part);
/// "point 20  +0.0234".
std::string extreme_text(extreme_point const& e, fit_result const& result);
/// The decimals that show a residual.
int residual_decimals(fit_result const& result);

/// The points that a picture marks: the contacts of a zone, else both extremes.
std::vector<extreme_point> marked_points(fit_result const& result);
/// Whether such a point lies on the upper boundary of its zone; without one, not below the feature.
bool is_above(extreme_point const& e, fit_result const& result);
inline color ink_of(extreme_point const& e, fit_result const& result) {
    return is_above(e, result) ? above_ink : below_ink;
}
/// So many of them have room for a label.
constexpr std::size_t most_labels = 12;
canvas_path ring_at(spot center, double radius);

/// The feature with its points, in the main panel. Returns the page points for a unit across.
double draw_view(canvas& c, fit_picture const& picture, spot corner, double width, double height);
/// The residuals over the natural coordinate.
void draw_profile(canvas& c, fit_picture const& picture, spot corner, double width, double height);
/// The figures and the legend.
void draw_figures(canvas& c, fit_picture const& picture, spot corner, double width, double height,
                  double view_scale);

}  // namespace tvmath
