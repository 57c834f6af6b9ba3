#include "construct/construct_sheet.h"

#include "construct/construct_scene.h"

inline namespace tvmath {
namespace {

struct sample {
    char const* what;
    std::vector<std::string> features;
    char const* form = "";
    char const* radius = "";
};

char const* const cloud = "point-cloud 0 0 1 0.4 0.6 1.2 1.5 1.1 0.2 0.9";
char const* const other_cloud = "point-cloud 3 1 3.6 0.2 2.6 2 4 1.4 3.4 2.2";
char const* const level_cloud = "point-cloud 0 0 1 0.4 0.6 1.2 1.5 1.1 3 1 3.6 0.2";
char const* const wave = "open-spline 0 0 1 3 3 -3 5 1";
char const* const loop = "closed-spline 0 0 2 3 4 3 6 0 5 -3 1 -3 0 0";
char const* const nurbs = "nurb 4 7 0 0 0 0 1 2 4 5 5 5 5 0 0 1 1 3 1 3 3 2 4 0 1 5 -2 1 7 0 1 8 3 1";
char const* const oval = "ellipse 2.4 1.2 30deg 0 0";
char const* const slope = "line 0 3.4 5 2";
char const* const tilted = "plane 1 1 0 0.5 0.2 1";

struct section {
    char const* title;
    std::vector<sample> samples;
};

std::vector<section> const sections = {
    {"Distances",
     {
         {"nearest", {"point 0 0", "point 3 2"}},
         {"nearest", {"point 1 3", "line 0 0 4 1"}},
         {"nearest", {"point 1 0 2.5", "line -1 0 0 3 2 1"}},
         {"nearest", {"point 1 1 2", tilted}},
         {"nearest", {"point 3 2", "rectangle 4 2 20deg 0 0"}},
         {"nearest", {"point 2 2.6", oval}},
         {"nearest", {"point 2 2", wave}},
         {"nearest", {"point 5 2.5", nurbs}},
         {"nearest", {slope, wave}},
         {"nearest", {slope, "ellipse 2 1 30deg 2 0"}},
         {"nearest", {oval, "ellipse 1.5 1 -30deg 5 1"}},
         {"nearest", {wave, "closed-spline 6 1 7 3 9 3 9 1 9 -1 6 -1 6 1"}},
         {"nearest", {cloud, other_cloud}},
         {"nearest", {"point 2.2 0", cloud}},
         {"nearest", {cloud, "line 0 3 3 1.5"}},
         {"nearest", {level_cloud, "plane 1 1 2 0.3 0.2 1"}},
         {"nearest", {other_cloud, wave}},
         {"farthest", {"point 2 2.6", oval}},
         {"farthest", {"point 2 2", wave}},
         {"farthest", {slope, wave}},
         {"farthest", {slope, "ellipse 2 1 30deg 2 0"}},
         {"farthest", {oval, "ellipse 1.5 1 -30deg 5 1"}},
         {"farthest", {cloud, other_cloud}},
         {"farthest", {"point 2.2 0", cloud}},
         {"farthest", {cloud, "line 0 3 3 1.5"}},
         {"farthest", {level_cloud, "plane 1 1 2 0.3 0.2 1"}},
         {"farthest", {other_cloud, wave}},
     }},
    {"Intersections",
     {
         {"intersect", {"line 0 0 2 1", "line 4 0 3 3"}},
         {"intersect", {"line 0 0 0 4 0 0", "line 1 -2 2 3 2 2"}},
         {"intersect", {"line 0 1 2 2 0.5 -1", tilted}},
         {"intersect", {tilted, "plane 1 1 0 -0.5 0.4 0.7"}},
         {"intersect", {"line -3 -2 -1 3 1 1.5", "sphere 2"}},
         {"intersect", {"line -2 -2 1 2 1.6 3", "cylinder 1 4 0 0 2 0 0 1"}},
         {"intersect", {"line -3 -1 1 3 0.5 1.4", "cone 0 0 0 0 0 3 2 0.7"}},
         {"intersect", {"line -3 -1 3 1.5", oval}},
         {"intersect", {"line 0 -0.2 5 0.4", wave}},
         {"intersect", {"ellipse 3 1 20deg 0 0", "ellipse 2.6 1.4 100deg 0.3 0"}},
         {"intersect", {"ellipse 1.4 1 0 2.5 0.4", wave}},
         {"intersect", {"open-spline -1 1 2 7 4 -7 7 -1", loop}},
         {"intersect", {tilted, "sphere 2"}},
         {"intersect", {tilted, "cylinder 1 4 0 0 0.5 0 0 1"}},
         {"intersect", {tilted, "cylinder 1 4 0 0 0.5 0 0 1"}, "circle"},
         {"intersect", {"plane 0 0 1.2 0.3 0.2 1", "cone 0 0 0 0 0 3 2 0.7"}},
         {"intersect", {"plane 0 0 1.2 0.3 0.2 1", "cone 0 0 0 0 0 3 2 0.7"}, "circle"},
         {"intersect", {"cylinder 1.2 4 0 0 1.5 0 0 1", "cone 0 0 0 0 0 3 2 0.7"}},
     }},
    {"Tangents, bisectors and angles",
     {
         {"tangent", {"point 4 2", oval}},
         {"tangent", {oval, "ellipse 1.5 0.8 -30deg 5 1"}},
         {"tangent", {"circle 1.5 0 0", "arc 1 0 200deg 4 1"}},
         {"tangent", {"ellipse 3 1 20deg 0 0", "ellipse 3 1 110deg 0.3 0"}},
         {"tangent", {"point 1 3", "line 0 0 4 1"}},
         {"tangent", {"line 0 0 6 0", "line 0 -1 5 4"}, "", "1"},
         {"tangent", {"line 0 0 5 0", "line 0 2 5 2"}, "", "1"},
         {"tangent", {"circle 2 0 0", "circle 1.5 2.6 0"}, "", "0.8"},
         {"tangent", {oval, "ellipse 2 1.2 -40deg 3.4 0.2"}, "", "0.8"},
         {"tangent", {"line 0 0 6 0", "line 0 -1 5 4", "point 4 1"}},
         {"tangent", {"line 0 0 5 0", "line 0 2 5 2", "point 2 0.5"}},
         {"tangent", {"line 0 0 5 0", "line 0 2 5 2", "line 2 -1 3 4"}},
         {"tangent", {"line 0 0 5 0", "line 5 0 2 3", "line 2 3 0 0"}},

         {"bisect", {"line 1 0 6 0", "line 1 -1 5 3"}},
         {"bisect", {"line 0 0 5 0.5", "line 0 2 5 2.5"}},
         {"bisect", {"point 1 3", "line 0 0 4 1"}},
         {"bisect", {"point 0 0", "point 3 2"}},
         {"angle", {"line 1 0 6 0", "line 1 -1 5 3"}},
     }}};

constexpr double cell_width = 180, cell_height = 172, title_height = 32, head = 32, section_height = 30;
constexpr int columns = 9;

std::string title_of(construct_result const& result) {
    std::string title = operation_name(result.row->what);
    for (std::size_t i = 0; i < result.features.size(); ++i)
        title += (i == 0 ? "  " : ", ") + std::string(kind_name(result.features[i].kind));
    return title;
}

std::string remark_of(construct_result const& result, sample const& s) {
    std::size_t const n = result.answers.size();
    std::string words = form_words(result);
    if (*s.radius) words = std::string("radius ") + s.radius;
    return words + (words.empty() ? "" : "  \u00b7  ") +
           (n == 1 ? std::string("one answer") : std::to_string(n) + " answers");
}

void draw_frame(canvas& c, spot corner) {
    canvas_path frame;
    frame.move_to(corner);
    frame.line_to(corner + spot{cell_width, 0});
    frame.line_to(corner + spot{cell_width, cell_height});
    frame.line_to(corner + spot{0, cell_height});
    frame.close();
    c.stroke(frame, {grid_ink, 0.8});
}

bool draw_cell(canvas& c, sample const& s, spot corner) {
    draw_frame(c, corner);
    construct_request request;
    request.what = s.what;
    request.features = s.features;
    request.form = s.form;
    request.radius = s.radius;
    construct_result result;
    std::string reason;
    if (construct(request, result, reason) != exit_status::done) return false;
    c.text(corner + spot{8, 14}, title_of(result), {.size = 8.5, .ink = text_ink, .bold = true});
    c.text(corner + spot{8, 25}, remark_of(result, s), {.size = 7.5, .ink = faint_ink});
    construct_scene const scene = scene_of(result, {});
    draw_scene(c, scene,
               panel_for(scene.extent, true, corner + spot{0, title_height}, cell_width,
                         cell_height - title_height));
    return true;
}

int rows_of(section const& part) {
    return (static_cast<int>(part.samples.size()) + columns - 1) / columns;
}

bool draw_section(canvas& c, section const& part, double top) {
    c.text({8, top + 20}, part.title, {.size = 12, .ink = text_ink, .bold = true});
    for (std::size_t i = 0; i < part.samples.size(); ++i) {
        int const place = static_cast<int>(i), row = place / columns, column = place % columns;
        spot const corner = {cell_width * column, top + section_height + cell_height * row};
        if (!draw_cell(c, part.samples[i], corner)) return false;
    }
    return true;
}

}  // namespace

std::string construct_sheet(std::string const& suffix) {
    double height = head;
    for (section const& part : sections) height += section_height + cell_height * rows_of(part);
    auto const c = make_canvas(suffix, cell_width * columns, height);
    if (!c) return {};
    text_style const big = {.size = 15, .ink = text_ink, .bold = true};
    c->text({8, 22}, "Constructions", big);
    c->text({22 + c->text_width("Constructions", big), 22},
            "features dark, answers blue, the chosen answer red; lines go on beyond their ends, dashed",
            {.size = 10, .ink = faint_ink});
    double top = head;
    for (section const& part : sections) {
        if (!draw_section(*c, part, top)) return {};
        top += section_height + cell_height * rows_of(part);
    }
    return c->finish();
}

}  // namespace tvmath
