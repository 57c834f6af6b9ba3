#include <algorithm>
#include <cmath>

#include "measure/edges/edge_stations.h"
#include "measure/edges/edge_window.h"
#include "measure/edges/feature_extent.h"
#include "measure/edges/measure_checks.h"
#include "measure/edges/measure_result.h"
#include "measure/edges/robust_fit.h"

inline namespace tvmath {
namespace {

constexpr double fine_reach = 4;  // what an edge may move
constexpr int most_rounds = 8;
constexpr double settled_move = 0.05;  // pixels; the next one is a small part of it
constexpr double fine_climb = 2;       // see `edge_window`
constexpr double least_outlier = 0.1;  // pixels; below it no point is one

std::string count_text(std::size_t found, std::size_t stations) {
    return std::to_string(found) + " of " + std::to_string(stations) + (stations == 1 ? " place" : " places");
}

std::vector<point> places_of(std::vector<found_edge> const& edges) {
    std::vector<point> places;
    for (found_edge const& e : edges) places.push_back(e.place);
    return places;
}

// The curvature of an edge of which nothing else is known; none where the window could not follow.
double bend_of(found_edge const& edge, double reach) {
    return std::fabs(edge.bend) * 2 * reach < 1 ? edge.bend : 0.0;
}

// The work on one tool.
class tool_run {
public:
    tool_run(image const& scene, measure_frame const& frame, measure_tool const& tool)
        : scene_(scene), frame_(frame), tool_(tool) {
        result_.tool = &tool;
    }

    measured_tool run() {
        if (find_coarsely() && find_finely()) fit();
        return std::move(result_);
    }

private:
    bool fail(std::string const& reason) {
        result_.reason = reason;
        return false;
    }

    bool is_enough(std::size_t found) {
        if (found >= tool_.kind->least_points) return true;
        return fail("an edge was found at " + count_text(found, result_.stations) + "; " +
                    tool_.kind->named() + " needs " + std::to_string(tool_.kind->least_points));
    }

    // Edges across the nominal outline.
    bool find_coarsely() {
        std::vector<edge_window> const windows = edge_stations(tool_, scene_);
        result_.stations = windows.size();
        if (windows.empty()) return fail("the window that would tell its direction leaves the image");
        for (edge_window const& w : windows) {
            found_edge e;
            if (!find_edge(scene_, w, tool_.edges, e)) continue;
            edges_.push_back(e);
            windows_.push_back(w);
        }
        return is_enough(edges_.size());
    }

    // Each edge once more, in a window that lies across it and about it. Where the window must be narrow it
    // draws the edge to its middle: then that is repeated until the edge stays.
    bool find_finely() {
        std::vector<bool> settled(edges_.size(), false);
        for (int round = 0; round < most_rounds; ++round) {
            if (std::find(settled.begin(), settled.end(), false) == settled.end()) break;
            if (!find_again(settled)) return false;
        }
        return true;
    }

    // Looks again for the edges that have not settled. Those that are not found any more are left out.
    bool find_again(std::vector<bool>& settled) {
        fitted_feature rough;
        std::vector<bool> kept;
        std::vector<double> residuals;
        std::string reason;
        if (!fit_without_outliers(*tool_.kind, places_of(edges_), tool_.edges.outliers, least_outlier, rough,
                                  kept, residuals, reason))
            return fail(reason);
        std::size_t count = 0;
        for (std::size_t i = 0; i < edges_.size(); ++i) {
            found_edge e = edges_[i];
            if (!settled[i] && !find_edge(scene_, fine_window(*rough.record, i), tool_.edges, e)) continue;
            bool const stays = settled[i] || distance2d(e.place, edges_[i].place) <= settled_move;
            edges_[count] = e;
            windows_[count] = windows_[i];
            settled[count++] = stays;
        }
        edges_.resize(count);
        windows_.resize(count);
        settled.resize(count);
        return is_enough(count);
    }

    edge_window fine_window(Geometry_Description const& feature, std::size_t i) const {
        edge_window w = aligned_window(feature, edges_[i].place, windows_[i]);
        w.inward = w.outward = std::min({w.inward, w.outward, fine_reach});
        if (tool_.kind->record == Point_Description::type_value) w.bend = bend_of(edges_[i], fine_reach);
        w.climb = fine_climb * std::min(1.0, w.width / 16);
        return w;
    }

    void fit() {
        std::vector<point> places;
        for (found_edge const& e : edges_) places.push_back(frame_.to_result(e.place));
        fitted_feature fitted;
        std::vector<bool> kept;
        std::vector<double> residuals;
        if (!fit_without_outliers(*tool_.kind, places, tool_.edges.outliers,
                                  least_outlier * frame_.pixel_length(), fitted, kept, residuals,
                                  result_.reason))
            return;
        std::vector<point> chosen;
        for (std::size_t i = 0; i < places.size(); ++i) {
            if (kept[i]) chosen.push_back(places[i]);
        }
        fit_conditions known;
        if (tool_.nominal) {
            known.given = option_nominal;
            known.nominal = {tool_.nominal};
            known.words = {"nominal " + tool_.nominal_words};
        }
        fit_result final;
        bool is_usage = false;
        if (!fit_feature(*tool_.kind, chosen, {chosen.size()}, known, final, result_.reason, is_usage))
            return;
        set_extent(frame_, tool_, final);
        for (std::size_t i = 0; i < places.size(); ++i)
            result_.edges.push_back({edges_[i].place, places[i], residuals[i], edges_[i].contrast, kept[i]});
        result_.checks = check_limits(tool_, final);
        result_.fit = std::move(final);
    }

    image const& scene_;
    measure_frame const& frame_;
    measure_tool const& tool_;
    measured_tool result_;
    std::vector<edge_window> windows_;
    std::vector<found_edge> edges_;
};

}  // namespace

std::size_t measured_tool::dropped() const {
    return static_cast<std::size_t>(
        std::count_if(edges.begin(), edges.end(), [](edge_mark const& e) { return !e.kept; }));
}

double measured_tool::farthest_dropped() const {
    double farthest = 0;
    for (edge_mark const& e : edges) {
        if (!e.kept) farthest = std::max(farthest, std::fabs(e.residual));
    }
    return farthest;
}

bool measured_tool::passed() const {
    return fit &&
           std::all_of(checks.begin(), checks.end(), [](tolerance_check const& c) { return c.passed; });
}

measured_tool measure(image const& scene, measure_frame const& frame, measure_tool const& tool) {
    return tool_run(scene, frame, tool).run();
}

}  // namespace tvmath
