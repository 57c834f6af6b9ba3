#include "construct/construct_scene.h"

#include <algorithm>
#include <cmath>

#include "drawing.h"
#include "plot_labels.h"
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

scene_part part_of(seen_record const& seen, spot origin) {
    scene_part part = seen.part;
    part.is_surface = is_plane(seen);
    auto const type = seen.record->type();
    bool const is_dots = type == Point_Description::type_value || type == PointCloud_Description::type_value;
    std::vector<spot> dots;
    for (stroke const& s : seen.strokes) {
        std::vector<spot> places;
        for (point const& p : s.path) {
            if (is_drawable(p)) places.push_back(spot{p.x(), p.y()} - origin);
        }
        if (places.empty()) continue;
        if (s.role == stroke_role::outline) part.strokes.push_back({places, s.closed});
        if (s.role == stroke_role::mark && is_dots) dots.push_back(places.front());
    }
    add_dots(part, dots);
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

class scene_drawer {
public:
    scene_drawer(canvas& c, construct_scene const& scene, plot_panel const& panel)
        : c_(c), scene_(scene), panel_(panel), labels_(c, panel) {}

    void draw() {
        c_.begin_clip(panel_.corner, panel_.width, panel_.height);
        for (scene_part const& part : scene_.parts) draw_extension(part);
        for (scene_part const& part : scene_.parts) draw_part(part);
        for (scene_part const& part : scene_.parts) {
            for (std::size_t i = 0; i < std::min<std::size_t>(part.dots.size(), 40); ++i)
                labels_.keep_clear(panel_.at(part.dots[i]), 3);
        }
        for (std::size_t i = 0; i < scene_.parts.size(); ++i) draw_label(scene_.parts[i], i);
        c_.end_clip();
    }

private:
    static color ink_of(scene_role role) {
        return role == scene_role::feature ? feature_ink : role == scene_role::answer ? below_ink : above_ink;
    }
    static double width_of(scene_role role) {
        return role == scene_role::feature ? 1.1 : role == scene_role::answer ? 1.2 : 2.0;
    }

    void draw_extension(scene_part const& part) {
        if (!part.along) return;
        double const length = std::hypot(part.along->x, part.along->y);
        if (!(length > 0)) return;
        spot const middle = 0.5 * (part.strokes.front().at.front() + part.strokes.front().at.back());
        spot const away = middle - 0.5 * (panel_.low + panel_.high);
        double const reach = std::hypot(panel_.high.x - panel_.low.x, panel_.high.y - panel_.low.y) +
                             std::hypot(away.x, away.y);
        canvas_path path;
        path.move_to(panel_.at(middle - (reach / length) * *part.along));
        path.line_to(panel_.at(middle + (reach / length) * *part.along));
        c_.stroke(path, {ink_of(part.role), 0.5, 3});
    }

    void draw_part(scene_part const& part) {
        canvas_path path;
        for (scene_part::stroke const& s : part.strokes) {
            path.interrupt();
            for (spot const& p : s.at) path.line_to(panel_.at(p));
            if (s.closed) path.close();
        }
        if (part.is_surface) c_.fill(path, {0.25, 0.45, 0.68, 0.10});
        if (!path.is_empty()) c_.stroke(path, {ink_of(part.role), width_of(part.role)});
        std::vector<spot> dots;
        for (spot const& p : part.dots) dots.push_back(panel_.at(p));
        double const size = part.role == scene_role::feature ? 1.7 : 2.4;
        if (!dots.empty()) c_.dots(dots, dots.size() > 500 ? 0.8 : size, ink_of(part.role));
    }

    // Where a label has its place beside a part: different ones for parts that may lie on each other.
    void draw_label(scene_part const& part, std::size_t place) {
        if (part.label.empty() || (part.dots.empty() && part.strokes.empty())) return;
        spot at, way;
        if (part.strokes.empty()) {
            at = panel_.at(part.dots.front());
        } else {
            scene_part::stroke const& s = part.strokes.front();
            std::size_t const n = s.at.size();
            double const share = std::fmod(0.12 + 0.19 * static_cast<double>(place), 1.0);
            if (n == 2) {
                double const t = part.role == scene_role::feature ? 0.15 : 0.5;
                at = panel_.at((1 - t) * s.at[0] + t * s.at[1]);
                spot const along = panel_.at(s.at[1]) - panel_.at(s.at[0]);
                way = {along.y, -along.x};
            } else {
                std::size_t const i =
                    s.closed ? static_cast<std::size_t>(share * static_cast<double>(n)) : n / 2;
                spot middle;
                for (spot const& p : s.at) middle = middle + (1.0 / static_cast<double>(n)) * p;
                at = panel_.at(s.at[i]);
                way = at - panel_.at(middle);
            }
        }
        labels_.place(
            at, way, part.label,
            {.size = 9, .ink = ink_of(part.role), .bold = part.role == scene_role::chosen, .halo = true});
    }

    canvas& c_;
    construct_scene const& scene_;
    plot_panel const& panel_;
    label_placer labels_;
};

}  // namespace

construct_scene scene_of(construct_result const& result, std::optional<transform> const& view) {
    bool const has_bodies = std::any_of(result.features.begin(), result.features.end(),
                                        [](construct_feature const& f) { return is_body(f.kind); });
    transform turn;
    if (view) {
        turn = *view;
    } else if (has_bodies) {
        turn = oblique();
    }
    construct_scene scene;
    scene.is_tilted = !turn.is_trivial() && !turn.is_identity();
    std::vector<seen_record> all = see_all(result, scene.is_tilted ? turn : transform());
    frame_planes(all);
    std::vector<point> const places = places_of(all);
    if (!places.empty()) scene.origin = {places.front().x(), places.front().y()};
    for (seen_record const& seen : all) {
        scene.parts.push_back(part_of(seen, scene.origin));
        for (scene_part::stroke const& s : scene.parts.back().strokes) {
            for (spot const& p : s.at) scene.extent.include(p);
        }
        for (spot const& p : scene.parts.back().dots) scene.extent.include(p);
    }
    return scene;
}

void draw_scene(canvas& c, construct_scene const& scene, plot_panel const& panel) {
    scene_drawer(c, scene, panel).draw();
}

}  // namespace tvmath
