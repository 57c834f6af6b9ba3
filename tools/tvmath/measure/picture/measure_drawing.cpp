#include "measure/picture/measure_drawing.h"

#include <algorithm>
#include <cmath>

#include "fit/fit_view.h"
#include "plot/plot_axis.h"
#include "tvmath/scalar.h"

inline namespace tvmath {
namespace {

constexpr double least_residual = 1e-6;  // pixels; below is what rounding leaves
constexpr double leeway = 0.04;          // pixels by which a polyline may leave the outline
constexpr double longest_step = 8;       // pixels; the distortion bends even straight lines
constexpr int most_steps = 4000;         // along one edge
constexpr double of_room = 1.5;          // residuals may be longer here than on the page of one feature

double length(spot a) {
    return std::hypot(a.x, a.y);
}

// The distance of p from the line through a and b.
double distance_from(spot p, spot a, spot b) {
    spot const d = b - a, w = p - a;
    double const l = length(d);
    return l > 0 ? std::fabs(d.x * w.y - d.y * w.x) / l : length(w);
}

// The places without those that the form can do without. The two ends, which may be one place, stay.
// Source: D. H. Douglas, T. K. Peucker, Algorithms for the reduction of the number of points required to
// represent a digitized line or its caricature, Cartographica 10 (1973) 112-122.
std::vector<spot> thinned(std::vector<spot> const& places, double tolerance) {
    if (places.size() < 3) return places;
    std::vector<char> kept(places.size(), 0);
    kept.front() = kept.back() = 1;
    std::vector<std::pair<std::size_t, std::size_t>> open = {{0, places.size() - 1}};
    while (!open.empty()) {
        auto const [from, to] = open.back();
        open.pop_back();
        std::size_t farthest = from;
        double largest = tolerance;
        for (std::size_t i = from + 1; i < to; ++i) {
            double const d = distance_from(places[i], places[from], places[to]);
            if (d > largest) {
                largest = d;
                farthest = i;
            }
        }
        if (farthest == from) continue;
        kept[farthest] = 1;
        open.push_back({from, farthest});
        open.push_back({farthest, to});
    }
    std::vector<spot> few;
    for (std::size_t i = 0; i < places.size(); ++i) {
        if (kept[i]) few.push_back(places[i]);
    }
    return few;
}

// Carries places of the results into the image. A place far outside would be carried by a polynomial that
// nothing holds there, so it is no place.
class image_map {
public:
    image_map(measure_frame const& frame, measure_report const& report)
        : frame_(frame),
          pixel_(frame.pixel_length()),
          reach_(2.0 * std::max(report.width, report.height)),
          middle_{report.width / 2.0, report.height / 2.0} {}

    double pixel() const { return pixel_; }
    double height = 0;  // z of the places, where there is one
    bool is_solid = false;

    spot operator()(spot p) const {
        point const at = frame_.to_image(is_solid ? point(true, p.x, p.y, height) : point(true, p.x, p.y));
        return {at.x(), at.y()};
    }
    bool is_near(spot p) const { return length(p - middle_) < reach_; }  // false for NaN

    // The outline as lines in the image, several where it leaves the surroundings of the image.
    void add(outline const& o, spot origin, std::vector<outline>& to) const {
        std::vector<std::vector<spot>> pieces(1);
        auto const take = [&](spot p) {
            if (is_near(p)) {
                pieces.back().push_back(p);
            } else if (!pieces.back().empty()) {
                pieces.emplace_back();
            }
        };
        if (o.at.empty()) return;
        std::vector<spot> corners = o.at;
        if (o.closed) corners.push_back(corners.front());
        corners = thinned(corners, leeway * pixel_);  // carrying a place takes time
        take((*this)(origin + corners[0]));
        for (std::size_t i = 0; i + 1 < corners.size(); ++i) {
            spot const from = origin + corners[i], d = corners[i + 1] - corners[i];
            double const wanted = std::ceil(length(d) / (longest_step * pixel_));
            int const steps = static_cast<int>(std::clamp(wanted, 1.0, 1.0 * most_steps));
            for (int k = 1; k <= steps; ++k) take((*this)(from + (1.0 * k / steps) * d));
        }
        bool const is_whole = o.closed && pieces.size() == 1;
        for (std::vector<spot> const& piece : pieces) {
            if (piece.size() > 1) to.push_back(make_outline(thinned(piece, leeway), is_whole));
        }
    }

private:
    measure_frame const& frame_;
    double pixel_, reach_;
    spot middle_;
};

std::vector<point> places_of(measured_tool const& t) {
    std::vector<point> places;
    for (edge_mark const& e : t.edges) {
        if (e.kept) places.push_back(e.place);
    }
    return places;
}

// The view of a point: itself.
fit_view view_of_point(point const& at, std::size_t count) {
    fit_view view;
    view.origin = {at.x(), at.y()};
    view.marks.push_back({});
    view.points.assign(count, view_point{});
    return view;
}

fit_view view_of_record(Geometry_Description const& record, std::vector<point> const& places) {
    if (record.type() == Point_Description::type_value)
        return view_of_point(static_cast<Point_Description const&>(record).position, places.size());
    fit_view view;
    point const origin = places.empty() ? point(true, 0, 0) : places.front();
    planar_view_of(record, places, origin, view);
    return view;
}

// The way from the foot to the point. The frame carries the normal, not the two places: its way back is good
// to drawing accuracy only, which the enlargement would show.
spot away_of(image_map const& map, fit_view const& view, view_point const& p, point const& place) {
    spot const foot = view.origin + p.foot, d = spot{place.x(), place.y()} - foot;
    double const residual = d.x * p.out.x + d.y * p.out.y, step = map.pixel();
    spot const ahead = map(foot + step * p.out), behind = map(foot - step * p.out);
    return (residual / (2 * step)) * (ahead - behind);
}

void add_edges(image_map const& map, fit_view const& view, measured_tool const& t, drawn_feature& f) {
    std::size_t i = 0;
    for (edge_mark const& e : t.edges) {
        drawn_edge drawn;
        drawn.at = drawn.foot = {e.seen.x(), e.seen.y()};
        drawn.kept = e.kept;
        if (e.kept && i < view.points.size()) {
            view_point const& p = view.points[i++];
            spot const foot = map(view.origin + p.foot), away = away_of(map, view, p, e.place);
            if (map.is_near(foot) && std::isfinite(away.x) && std::isfinite(away.y)) {
                drawn.foot = foot;
                drawn.away = away;
            }
        }
        f.edges.push_back(drawn);
    }
}

// A tool that found nothing is drawn where it looked.
void add_nominal(measured_tool const& t, drawn_feature& f) {
    if (!t.tool->place) return;
    fit_view const view = view_of_record(*t.tool->place, {});
    for (outline o : view.outlines) {
        if (o.closed) o.at.push_back(o.at.front());
        for (spot& p : o.at) p = view.origin + p;
        f.outlines.push_back(make_outline(thinned(o.at, leeway), o.closed));
    }
    for (spot const& p : view.marks) f.marks.push_back(view.origin + p);
}

drawn_feature draw_tool(image_map map, measured_tool const& t, double room, double& most_factor,
                        double& largest) {
    drawn_feature f;
    f.tool = &t;
    f.state = verdict_of(t);
    if (!t.fit) {
        add_nominal(t, f);
        add_edges(map, {}, t, f);
        return f;
    }
    std::vector<point> const places = places_of(t);
    if (!places.empty() && places.front().is_3d()) {
        map.is_solid = true;
        map.height = places.front().z();
    }
    fit_view const view = view_of_record(*t.fit->feature, places);
    for (outline const& o : view.outlines) map.add(o, view.origin, f.outlines);
    for (spot const& p : view.marks) {
        spot const at = map(view.origin + p);
        if (map.is_near(at)) f.marks.push_back(at);
    }
    add_edges(map, view, t, f);
    double longest = 0;
    for (drawn_edge const& e : f.edges) longest = std::max(longest, length(e.away));
    if (longest > least_residual) {
        double const own_room = view.room > 0 ? of_room * view.room / map.pixel() : room;
        most_factor = std::min(most_factor, std::min(room, own_room) / longest);
        largest = std::max(largest, longest);
    }
    return f;
}

}  // namespace

double round_125_below(double x) {
    return 1 / round_above(1 / x);
}

bool measure_drawing::has_dropped() const {
    return std::any_of(features.begin(), features.end(),
                       [](drawn_feature const& f) { return f.tool->dropped() > 0; });
}

measure_drawing make_measure_drawing(measure_frame const& frame, measure_report const& report, double room) {
    measure_drawing drawing;
    image_map const map(frame, report);
    double most_factor = infinity, largest = 0;
    for (measured_tool const& t : report.tools)
        drawing.features.push_back(draw_tool(map, t, room, most_factor, largest));
    if (largest > 0) drawing.factor = std::max(1.0, round_125_below(most_factor));
    drawing.longest = drawing.factor * largest;
    return drawing;
}

}  // namespace tvmath
