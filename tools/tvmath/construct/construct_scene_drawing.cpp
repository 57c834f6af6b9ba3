#include <algorithm>
#include <array>
#include <cmath>

#include "construct/construct_scene.h"
#include "plot/plot_labels.h"

inline namespace tvmath {
namespace {

class scene_drawer {
public:
    scene_drawer(canvas& c, construct_scene const& scene, plot_panel const& panel)
        : c_(c), scene_(scene), panel_(panel), labels_(c, panel) {}

    void draw() {
        c_.begin_clip(panel_.corner, panel_.width, panel_.height);
        for (std::size_t i = 0; i < scene_.parts.size(); ++i) take_places(scene_.parts[i], i);
        for (scene_part const& part : scene_.parts) draw_extension(part);
        for (scene_part const& part : scene_.parts) draw_strokes(part);
        for (scene_part const& part : scene_.parts) draw_dots(part);
        for (place const& p : places_) labels_.keep_clear(p.at, 2);
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

    // A place of the page that a part covers.
    struct place {
        spot at;
        std::size_t part;
    };

    // Far enough from the border for a label.
    bool is_inside(spot p) const {
        constexpr double margin = 14;
        spot const in = p - panel_.corner;
        return in.x > margin && in.x < panel_.width - margin && in.y > margin &&
               in.y < panel_.height - margin;
    }

    // Of long lines as many as the labels need to keep clear of them.
    void take_line(spot a, spot b, std::size_t part) {
        constexpr double step = 5;
        double const length = std::hypot(b.x - a.x, b.y - a.y);
        auto const n = static_cast<std::size_t>(std::min(length / step, 1000.0)) + 1;
        for (std::size_t i = 0; i < n; ++i) {
            spot const p = a + (static_cast<double>(i) / static_cast<double>(n)) * (b - a);
            bool const is_new = places_.empty() || places_.back().part != part ||
                                std::hypot(p.x - places_.back().at.x, p.y - places_.back().at.y) > step / 2;
            if (is_new && is_inside(p) && places_.size() < most_places) places_.push_back({p, part});
        }
    }

    void take_places(scene_part const& part, std::size_t number) {
        for (scene_part::stroke const& s : part.strokes) {
            for (std::size_t i = 0; i + 1 < s.at.size() + (s.closed ? 1 : 0); ++i)
                take_line(panel_.at(s.at[i]), panel_.at(s.at[(i + 1) % s.at.size()]), number);
        }
        for (std::size_t i = 0; i < std::min<std::size_t>(part.dots.size(), 200); ++i)
            places_.push_back({panel_.at(part.dots[i]), number});
        if (auto const ends = extension(part)) take_line((*ends)[0], (*ends)[1], number);
    }

    // The ends of an infinite line beyond the panel, on the page.
    std::optional<std::array<spot, 2>> extension(scene_part const& part) const {
        double const length = part.along ? std::hypot(part.along->x, part.along->y) : 0;
        if (!(length > 0)) return {};
        spot const middle = 0.5 * (part.strokes.front().at.front() + part.strokes.front().at.back());
        spot const away = middle - 0.5 * (panel_.low + panel_.high);
        double const reach = std::hypot(panel_.high.x - panel_.low.x, panel_.high.y - panel_.low.y) +
                             std::hypot(away.x, away.y);
        spot const way = (reach / length) * *part.along;
        return std::array{panel_.at(middle - way), panel_.at(middle + way)};
    }

    void draw_extension(scene_part const& part) {
        auto const ends = extension(part);
        if (!ends) return;
        canvas_path path;
        path.move_to((*ends)[0]);
        path.line_to((*ends)[1]);
        c_.stroke(path, {ink_of(part.role), 0.5, 3});
    }

    canvas_path path_of(std::vector<scene_part::stroke> const& strokes) const {
        canvas_path path;
        for (scene_part::stroke const& s : strokes) {
            path.interrupt();
            for (spot const& p : s.at) path.line_to(panel_.at(p));
            if (s.closed) path.close();
        }
        return path;
    }

    void draw_strokes(scene_part const& part) {
        if (!part.hidden.empty()) c_.stroke(path_of(part.hidden), {ink_of(part.role), 0.5, 3});
        if (part.strokes.empty()) return;
        canvas_path const path = path_of(part.strokes);
        if (part.is_surface) c_.fill(path, {0.25, 0.45, 0.68, 0.10});
        c_.stroke(path, {ink_of(part.role), width_of(part.role)});
    }

    void draw_dots(scene_part const& part) {
        if (part.dots.empty()) return;
        std::vector<spot> dots;
        for (spot const& p : part.dots) dots.push_back(panel_.at(p));
        double const size = part.role == scene_role::feature ? 1.7 : 2.4;
        c_.dots(dots, dots.size() > 500 ? 0.8 : size, ink_of(part.role));
    }

    // The place of a part that is farthest from the others and from their labels.
    void draw_label(scene_part const& part, std::size_t number) {
        if (part.label.empty()) return;
        double best = -1;
        std::size_t chosen = 0;
        for (std::size_t i = 0; i < places_.size(); ++i) {
            if (places_[i].part != number) continue;
            double room = 60;  // farther is no better
            for (place const& other : places_) {
                if (other.part == number) continue;
                room = std::min(room, std::hypot(other.at.x - places_[i].at.x, other.at.y - places_[i].at.y));
            }
            if (room > best) {
                best = room;
                chosen = i;
            }
        }
        if (best < 0) return;
        spot const at = places_[chosen].at, middle = panel_.corner + 0.5 * spot{panel_.width, panel_.height};
        labels_.place(
            at, at - middle, part.label,
            {.size = 9, .ink = ink_of(part.role), .bold = part.role == scene_role::chosen, .halo = true});
        places_.push_back({at, scene_.parts.size()});
    }

    static constexpr std::size_t most_places = 3000;
    std::vector<place> places_;
    canvas& c_;
    construct_scene const& scene_;
    plot_panel const& panel_;
    label_placer labels_;
};

}  // namespace

void draw_scene(canvas& c, construct_scene const& scene, plot_panel const& panel) {
    scene_drawer(c, scene, panel).draw();
}

}  // namespace tvmath
