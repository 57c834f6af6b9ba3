#include "construct/construct_scene.h"

#include <algorithm>
#include <cmath>

#include "plot/drawing.h"
#include "tvmath/nearest_point.h"
#include "tvmath/scalar.h"

inline namespace tvmath {
namespace {

constexpr std::size_t most_dots = 5000;  // of a list; more would fall on each other

// A feature or an answer on its way into the scene.
struct seen_record {
    scene_part part;
    std::shared_ptr<Geometry_Description> record;
    std::vector<stroke> strokes;
    bool is_endless = false;  // a line that goes on beyond its ends
};

bool is_body(feature_kind kind) {
    return kind == feature_kind::plane || kind == feature_kind::sphere || kind == feature_kind::cylinder ||
           kind == feature_kind::cone;
}

// From the side and from above, so that a vertical axis is upright on the page.
transform oblique() {
    return transform::rotation(-pi / 6, 0, 0) * transform::rotation(0, 0, -pi / 3);
}

// The arcs of the angles between two lines lie on each other; each gets a radius of its own.
void set_apart(Geometry_Description& record, std::size_t place) {
    auto* const angle = dynamic_cast<Angle_Description*>(&record);
    if (!angle) return;
    double const size = 0.5 + 0.18 * static_cast<double>(place);
    point const vertex = angle->arc.basis(0);
    transform about;
    if (vertex.is_3d()) {
        about.translate(-vertex.x(), -vertex.y(), -vertex.z()).dilate(size, size, size);
    } else {
        about.translate(-vertex.x(), -vertex.y()).dilate(size);
    }
    angle->apply_transform(about.translate(vertex));
}

seen_record see(Geometry_Description const& record, transform const& view, std::size_t place) {
    seen_record seen;
    seen.record.reset(record.create_copy());
    set_apart(*seen.record, place);
    if (!view.is_trivial()) seen.record->apply_transform(view);
    drawing d;
    if (draw_record(*seen.record, {}, d)) seen.strokes = d.strokes;
    return seen;
}

std::vector<seen_record> see_all(construct_result const& result, transform const& view) {
    std::vector<seen_record> all;
    for (std::size_t i = 0; i < result.features.size(); ++i) {
        all.push_back(see(*result.features[i].record, view, 0));
        all.back().part.label = std::string(1, static_cast<char>('A' + i));
        all.back().is_endless = result.features[i].kind == feature_kind::line;
    }
    operation const what = result.row->what;
    bool const goes_on = what == operation::bisect || what == operation::intersect;
    for (std::size_t i = 0; i < result.answers.size(); ++i) {
        Geometry_Description const& record = *result.answers[i].record;
        all.push_back(see(record, view, i));
        all.back().part.role = i == result.chosen ? scene_role::chosen : scene_role::answer;
        if (result.answers.size() > 1) all.back().part.label = std::to_string(i + 1);
        all.back().is_endless = goes_on && record.type() == Segment_Description::type_value;
    }
    // The chosen one lies on top.
    std::stable_partition(all.begin(), all.end(),
                          [](seen_record const& s) { return s.part.role != scene_role::chosen; });
    return all;
}

bool is_drawable(point const& p) {
    return !p.is_trivial() && std::isfinite(p.x()) && std::isfinite(p.y());
}

bool is_plane(seen_record const& seen) {
    return seen.record->type() == Plane_Description::type_value;
}

// The vertices of what is not a plane.
std::vector<point> places_of(std::vector<seen_record> const& all) {
    std::vector<point> places;
    for (seen_record const& seen : all) {
        if (is_plane(seen)) continue;
        for (stroke const& s : seen.strokes) {
            if (s.role != stroke_role::outline && s.role != stroke_role::mark) continue;
            std::copy_if(s.path.begin(), s.path.end(), std::back_inserter(places), is_drawable);
        }
    }
    return places;
}

// Bodies hide things from a view along Z, and so do features at different heights; not by the noise of
// measured points.
bool has_depth(construct_result const& result) {
    for (construct_feature const& f : result.features) {
        if (is_body(f.kind)) return true;
    }
    view_extent across, heights;
    for (point const& p : places_of(see_all(result, {}))) {
        across.include({p.x(), p.y()});
        heights.include({0, p.is_3d() ? p.z() : 0.0});
    }
    return heights.height() > 0.05 * std::max(across.width(), across.height());
}

// A plane has no border: a square about the foot of the other features, as large as they are, stands for it.
void frame_planes(std::vector<seen_record>& all) {
    std::vector<point> const places = places_of(all);
    point middle(true, 0, 0, 0), low = middle, high = middle;
    if (!places.empty()) middle = low = high = places.front();
    for (point p : places) {
        p.promote3d();
        low = point(true, std::min(low.x(), p.x()), std::min(low.y(), p.y()), 0);
        high = point(true, std::max(high.x(), p.x()), std::max(high.y(), p.y()), 0);
        middle += (1.0 / static_cast<double>(places.size())) * (p - places.front());
    }
    double const size = 0.6 * std::max({high.x() - low.x(), high.y() - low.y()});
    for (seen_record& seen : all) {
        if (!is_plane(seen)) continue;
        plane const& s = static_cast<Plane_Description const&>(*seen.record).geometry;
        point const foot = point_nearest3d_on(middle, s);
        double const half = size > 0 ? size : 1;
        point const u = half * s.direction(1), v = half * s.direction(2);
        curve square(4);
        point* const corner = square.lazycopy_begin();
        corner[0] = foot - u - v;
        corner[1] = foot + u - v;
        corner[2] = foot + u + v;
        corner[3] = foot - u + v;
        seen.strokes = {{stroke_role::outline, square, true}};
    }
}

void add_dots(scene_part& part, std::vector<spot> const& dots) {
    std::size_t const step = dots.size() / most_dots + 1;
    for (std::size_t i = 0; i < dots.size(); i += step) part.dots.push_back(dots[i]);
}

std::vector<spot> spots_of(curve const& path, spot origin) {
    std::vector<spot> places;
    for (point const& p : path) {
        if (is_drawable(p)) places.push_back(spot{p.x(), p.y()} - origin);
    }
    return places;
}

scene_part part_of(seen_record const& seen, spot origin) {
    scene_part part = seen.part;
    part.is_surface = is_plane(seen);
    auto const type = seen.record->type();
    bool const is_dots = type == Point_Description::type_value || type == PointCloud_Description::type_value;
    std::vector<spot> dots;
    for (stroke const& s : seen.strokes) {
        std::vector<spot> const places = spots_of(s.path, origin);
        if (places.empty()) continue;
        if (s.role == stroke_role::outline) part.strokes.push_back({places, s.closed});
        if (s.role == stroke_role::mark && is_dots) dots.push_back(places.front());
    }
    add_dots(part, dots);
    // The constructions take all of its circle.
    if (auto const* const arc = dynamic_cast<Arc_Description const*>(seen.record.get()))
        part.hidden.push_back({spots_of(arc->circle.render_ellipse(90), origin), true});
    if (type == Segment_Description::type_value && !part.strokes.empty()) {
        std::vector<spot> const& ends = part.strokes.front().at;
        if (seen.is_endless) {
            part.along = ends.back() - ends.front();
        } else {
            part.dots = {ends.front(), ends.back()};
        }
    }
    return part;
}

}  // namespace

construct_scene scene_of(construct_result const& result, std::optional<transform> const& view) {
    transform const turn = view ? *view : has_depth(result) ? oblique() : transform();
    construct_scene scene;
    scene.is_tilted = !turn.is_trivial() && !turn.is_identity();
    std::vector<seen_record> all = see_all(result, scene.is_tilted ? turn : transform());
    frame_planes(all);
    std::vector<point> const places = places_of(all);
    if (!places.empty()) scene.origin = {places.front().x(), places.front().y()};
    for (seen_record const& seen : all) {
        scene.parts.push_back(part_of(seen, scene.origin));
        for (auto const* const strokes : {&scene.parts.back().strokes, &scene.parts.back().hidden}) {
            for (scene_part::stroke const& s : *strokes) {
                for (spot const& p : s.at) scene.extent.include(p);
            }
        }
        for (spot const& p : scene.parts.back().dots) scene.extent.include(p);
    }
    return scene;
}

}  // namespace tvmath
