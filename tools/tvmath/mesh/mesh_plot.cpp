#include "mesh_plot.h"

#include <algorithm>
#include <cmath>

#include "fit/fit_plot.h"
#include "fit/fit_plot_parts.h"
#include "plot/plot_labels.h"

inline namespace tvmath {
namespace {

constexpr double left = 82, top = 74, width = 732, height = 474;
constexpr std::size_t most_edges = 100000;  // more of them would be a grey area
constexpr std::size_t most_numbered = 60;

std::string count_text(std::size_t n) {
    return factor_text(static_cast<double>(n));
}

class mesh_drawer {
public:
    mesh_drawer(canvas& c, mesh_result const& mesh) : c_(c), mesh_(mesh) {
        origin_ = {mesh.points.front().x(), mesh.points.front().y()};
        view_extent extent;
        for (std::size_t i = 0; i < mesh.points.size(); ++i) extent.include(local(i));
        panel_ = panel_for(extent, true, {left, top}, width, height);
    }

    void draw() {
        draw_title();
        draw_grid(c_, panel_, true, origin_, "x", "y");
        c_.begin_clip(panel_.corner, panel_.width, panel_.height);
        std::size_t const n = mesh_.points.size();
        fill_hull();
        c_.stroke(lines(shown_edges()), {edge_ink, n > 20000 ? 0.25 : n > 1000 ? 0.45 : 0.7});
        c_.stroke(lines(mesh_.hull), {feature_ink, 1.4});
        draw_points();
        if (n <= most_numbered) draw_numbers();
        c_.end_clip();
    }

private:
    static constexpr color edge_ink = {0.25, 0.45, 0.68}, area_ink = {0.94, 0.96, 0.99};
    using edge = std::array<std::size_t, 2>;

    spot local(std::size_t i) const {
        return {mesh_.points[i].x() - origin_.x, mesh_.points[i].y() - origin_.y};
    }
    spot at(std::size_t i) const { return panel_.at(local(i)); }

    void draw_title() {
        text_style const big = {.size = 17, .ink = text_ink, .bold = true};
        std::string const title = "Delaunay triangulation";
        double const room = left + width - 28;
        c_.text({28, 34}, title, big);
        text_style const name = {.size = 12, .ink = text_ink};
        double const used = c_.text_width(title, big) + 12;
        c_.text({28 + used, 34}, cut(c_, names_of(mesh_.file), name, room - used), name);
        std::string words = count_text(mesh_.points.size()) + " points";
        if (mesh_.repeated > 0) words += " (" + count_text(mesh_.repeated) + " repeated)";
        words += "  \u00b7  " + count_text(mesh_.edges.size()) + " edges  \u00b7  " +
                 count_text(mesh_.triangles.size()) + " triangles  \u00b7  hull of " +
                 count_text(mesh_.hull.size()) + " points, area " + short_text(mesh_.area, 9) +
                 ", perimeter " + short_text(mesh_.perimeter, 9);
        if (mesh_.edges.size() > most_edges)
            words += "  \u00b7  the " + count_text(most_edges) + " longest edges are drawn";
        text_style const small = {.size = 9.5, .ink = faint_ink};
        c_.text({28, 51}, cut(c_, words, small, room), small);
    }

    // Of too many the longest, which can be told apart.
    std::vector<edge> shown_edges() const {
        std::vector<edge> edges = mesh_.edges;
        if (edges.size() <= most_edges) return edges;
        auto const length = [this](edge const& e) {
            return distance2d(mesh_.points[e[0]], mesh_.points[e[1]]);
        };
        auto const end = edges.begin() + most_edges;
        std::nth_element(edges.begin(), end, edges.end(),
                         [&](edge const& a, edge const& b) { return length(a) > length(b); });
        edges.erase(end, edges.end());
        return edges;
    }

    canvas_path lines(std::vector<edge> const& edges) const {
        canvas_path path;
        for (edge const& e : edges) {
            path.move_to(at(e[0]));
            path.line_to(at(e[1]));
        }
        return path;
    }

    void fill_hull() {
        canvas_path path;
        for (edge const& e : mesh_.hull) path.line_to(at(e[0]));
        path.close();
        c_.fill(path, area_ink);
    }

    void draw_points() {
        std::size_t const n = mesh_.points.size();
        if (n > 20000) return;
        std::vector<spot> places;
        for (std::size_t i = 0; i < n; ++i) places.push_back(at(i));
        c_.dots(places, n <= 200 ? 2.2 : n <= 2000 ? 1.2 : 0.6, feature_ink);
    }

    void draw_numbers() {
        label_placer labels(c_, panel_);
        spot const middle = panel_.corner + 0.5 * spot{panel_.width, panel_.height};
        for (std::size_t i = 0; i < mesh_.points.size(); ++i) labels.keep_clear(at(i), 3);
        for (std::size_t i = 0; i < mesh_.points.size(); ++i)
            labels.place(at(i), at(i) - middle, std::to_string(i + 1),
                         {.size = 8, .ink = text_ink, .halo = true});
    }

    canvas& c_;
    mesh_result const& mesh_;
    spot origin_;
    plot_panel panel_;
};

}  // namespace

std::string mesh_plot(mesh_result const& mesh, std::string const& suffix) {
    auto const c = make_canvas(suffix, fit_page_width, fit_page_height);
    if (!c) return {};
    mesh_drawer(*c, mesh).draw();
    return c->finish();
}

}  // namespace tvmath
