#include <algorithm>
#include <cmath>

#include "fit/fit_plot_parts.h"
#include "measure/picture/measure_plot_parts.h"

inline namespace tvmath {
namespace {

constexpr unsigned int most_pixels = 1600;  // across; more would make large files that show no more
constexpr std::size_t most_edges = 20000;   // that are drawn
constexpr std::size_t most_cased = 1000;    // features with a pale rim: It makes large files larger.
constexpr std::size_t most_names = 40;      // of tools; of more those that fail have one
constexpr std::size_t most_failing_names = 24;
constexpr double palest = 0.97, darkest = 0.32;  // of the photograph
constexpr double obstacle_step = 4;              // points between the places that names keep clear of
constexpr double least_whisker = 0.8;            // points; the outline covers shorter ones
constexpr double large_scale = 3;                // points for a pixel
constexpr color casing = {1, 1, 1, 0.75};

// A pale copy, on which lines stand out, of pixels that are the means of squares of them. In every second
// grey only, which no eye sees: the files of noisy images are smaller.
grey_picture pale_copy(image const& scene) {
    unsigned int const rows = matrix::rows(scene), cols = matrix::cols(scene);
    unsigned int const side = (std::max(rows, cols) + most_pixels - 1) / most_pixels;
    grey_picture picture;
    picture.width = (cols + side - 1) / side;
    picture.height = (rows + side - 1) / side;
    picture.grey.reserve(std::size_t{picture.width} * picture.height);
    std::vector<double> sums(picture.width), counts(picture.width);
    for (unsigned int top = 0; top < rows; top += side) {
        std::fill(sums.begin(), sums.end(), 0);
        std::fill(counts.begin(), counts.end(), 0);
        for (unsigned int y = top; y < std::min(top + side, rows); ++y) {
            double const* const v = scene[y].begin();
            for (unsigned int x = 0; x < cols; ++x) {
                double const grey = v[x] > 0 ? std::min(v[x], 1.0) : 0;  // NaN is black
                sums[x / side] += grey;
                counts[x / side] += 1;
            }
        }
        for (unsigned int x = 0; x < picture.width; ++x) {
            double const grey = darkest + (palest - darkest) * sums[x] / counts[x];
            picture.grey.push_back(static_cast<unsigned char>(2 * std::lround(127 * grey)));
        }
    }
    return picture;
}

class scene_drawer {
public:
    scene_drawer(canvas& c, image_place const& place, measure_drawing const& drawing)
        : c_(c), place_(place), drawing_(drawing), tags_(c, place) {}

    void draw_features() {
        if (shows_edges(drawing_) && drawing_.factor > 0) draw_residuals();
        draw_outlines();
        if (shows_edges(drawing_)) draw_edges();
    }

    void draw_axes(measure_frame const& frame, double arm) {
        spot const zero = at(frame.to_image(point(true, 0, 0)));
        spot const end = place_.corner + spot{place_.width, place_.height};
        if (!(zero.x > place_.corner.x && zero.x < end.x && zero.y > place_.corner.y && zero.y < end.y))
            return;
        double const length = arm / place_.scale * frame.pixel_length();
        spot const tips[] = {at(frame.to_image(point(true, length, 0))),
                             at(frame.to_image(point(true, 0, length)))};
        canvas_path lines, heads;
        std::vector<spot> letters;
        for (int i = 0; i < 2; ++i) {
            spot const way = tips[i] - zero;
            double const size = std::hypot(way.x, way.y);
            if (!(size > 1)) return;
            spot const along = (1 / size) * way, across = {-along.y, along.x}, neck = tips[i] - 6.0 * along;
            lines.move_to(zero - 5.0 * along);
            lines.line_to(neck);
            heads.move_to(tips[i]);
            heads.line_to(neck + 2.2 * across);
            heads.line_to(neck - 2.2 * across);
            heads.close();
            for (double t = 0; t < size + 8; t += obstacle_step) tags_.avoid(zero + t * along);
            letters.push_back(tips[i] + 7.0 * along);
        }
        c_.stroke(lines, {casing, 3.2});
        c_.stroke(heads, {casing, 2.4});
        c_.stroke(lines, {axis_ink, 1.1});
        c_.fill(heads, axis_ink);
        for (spot const& letter : letters) tags_.block(letter, 11, 11);
        c_.dots(letters, 5.5, casing);
        for (int i = 0; i < 2; ++i)
            c_.text(letters[static_cast<std::size_t>(i)] + spot{0, -0.5}, i == 0 ? "x" : "y",
                    {.size = 9, .ink = axis_ink, .bold = true, .across = 0.5, .up = 0.4});
    }

    // Those that fail first: for them there is room in any case.
    void draw_names() {
        bool const only_failing = drawing_.features.size() > most_names;
        for (drawn_feature const& f : drawing_.features) avoid(f);
        std::size_t failing = 0;
        for (drawn_feature const& f : drawing_.features) {
            if (!f.is_good() && failing++ < most_failing_names) name(f, only_failing);
        }
        if (only_failing) return;
        for (drawn_feature const& f : drawing_.features) {
            if (f.is_good()) name(f, false);
        }
    }

private:
    spot at(spot p) const { return place_.at(p); }
    spot at(point const& p) const { return place_.at({p.x(), p.y()}); }

    std::vector<outline> on_page(drawn_feature const& f) const {
        std::vector<outline> outlines = f.outlines;
        for (outline& o : outlines) {
            for (spot& p : o.at) p = at(p);
        }
        return outlines;
    }

    void draw_residuals() {
        canvas_path whiskers;
        for (drawn_feature const& f : drawing_.features) {
            for (drawn_edge const& e : f.edges) {
                spot const foot = at(e.foot), tip = at(drawing_.tip(e));
                if (!e.kept || std::hypot(tip.x - foot.x, tip.y - foot.y) < least_whisker) continue;
                whiskers.move_to(foot);
                whiskers.line_to(tip);
            }
        }
        if (drawing_.features.size() <= most_names) c_.stroke(whiskers, {{1, 1, 1, 0.5}, 2});
        c_.stroke(whiskers, {whisker_ink, 0.8});
    }

    void draw_outlines() {
        canvas_path all, good, bad, missing, marks[2];
        for (drawn_feature const& f : drawing_.features) {
            canvas_path& own = f.is_good() ? good : f.state == verdict::fail ? bad : missing;
            for (outline const& o : f.outlines) {
                for (canvas_path* const path : {&all, &own}) {
                    path->interrupt();
                    for (spot const& p : o.at) path->line_to(at(p));
                    if (o.closed) path->close();
                }
            }
            double const arm = f.outlines.empty() ? 5 : 3;
            for (spot const& mark : f.marks) {
                canvas_path& path = marks[f.is_good() ? 0 : 1];
                spot const p = at(mark);
                path.move_to(p - spot{arm, 0});
                path.line_to(p + spot{arm, 0});
                path.move_to(p - spot{0, arm});
                path.line_to(p + spot{0, arm});
            }
        }
        if (drawing_.features.size() <= most_cased) c_.stroke(all, {casing, 3.4});
        for (canvas_path const& path : marks) c_.stroke(path, {casing, 2.8});
        c_.stroke(good, {good_ink, 1.8});
        c_.stroke(bad, {bad_ink, 2.0});
        c_.stroke(missing, {bad_ink, 1.5, 4});
        c_.stroke(marks[0], {good_ink, 1.1});
        c_.stroke(marks[1], {bad_ink, 1.1});
    }

    void draw_edges() {
        std::vector<spot> kept;
        canvas_path dropped;
        for (drawn_feature const& f : drawing_.features) {
            for (drawn_edge const& e : f.edges) {
                spot const p = at(e.at);
                if (e.kept) {
                    kept.push_back(p);
                    continue;
                }
                for (double const side : {1.0, -1.0}) {
                    dropped.move_to(p - spot{2.6, side * 2.6});
                    dropped.line_to(p + spot{2.6, side * 2.6});
                }
            }
        }
        // Where pixels are large the points are seen to lie beside the line, so they need a rim of their own.
        bool const is_large = place_.scale > large_scale;
        if (is_large) c_.dots(kept, 2, feature_ink);
        c_.dots(kept, is_large ? 1.1 : 0.45, {1, 1, 1});
        c_.stroke(dropped, {casing, 3});
        c_.stroke(dropped, {dropped_ink, 1.4});
    }

    void avoid(drawn_feature const& f) {
        for (outline const& o : f.outlines) {
            for_each_edge(o, [&](spot start, spot end) {
                spot const from = at(start), way = at(end) - from;
                double const size = std::hypot(way.x, way.y);
                int const steps = std::max(1, static_cast<int>(std::min(size / obstacle_step, 1000.0)));
                for (int k = 0; k < steps; ++k) tags_.avoid(from + (1.0 * k / steps) * way);
            });
        }
        for (spot const& p : f.marks) tags_.avoid(at(p));
        for (drawn_edge const& e : f.edges) tags_.avoid(at(e.kept ? drawing_.tip(e) : e.at));
    }

    void name(drawn_feature const& f, bool only_beside) {
        name_tag tag;
        tag.words = cut(c_, f.tool->tool->name, {.size = 8.5, .bold = true}, 140);
        tag.ink = ink_of(f.is_good());
        tag.is_filled = !f.is_good();
        tag.outlines = on_page(f);
        for (spot const& p : f.marks) tag.marks.push_back(at(p));
        tags_.put(tag, only_beside);
    }

    canvas& c_;
    image_place const& place_;
    measure_drawing const& drawing_;
    tag_placer tags_;
};

}  // namespace

bool shows_edges(measure_drawing const& drawing) {
    std::size_t count = 0;
    for (drawn_feature const& f : drawing.features) count += f.edges.size();
    return count <= most_edges;
}

void draw_measure_scene(canvas& c, image const& scene, measure_frame const& frame,
                        measure_report const& report, measure_drawing const& drawing,
                        image_place const& place) {
    c.photograph(pale_copy(scene), place.corner, place.width, place.height);
    c.begin_clip(place.corner, place.width, place.height);
    scene_drawer drawer(c, place, drawing);
    drawer.draw_features();
    if (report.job->from_screen) drawer.draw_axes(frame, 42);
    drawer.draw_names();
    c.end_clip();
}

}  // namespace tvmath
