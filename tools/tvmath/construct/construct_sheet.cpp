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

std::vector<sample> samples() {
    return {{"nearest", {"point 0 0", "point 3 2"}}, {"intersect", {"line 0 0 10 0", "circle 4 5 1"}}};
}

constexpr double cell_width = 190, cell_height = 170, title_height = 20;
constexpr int columns = 8;

void draw_cell(canvas& c, sample const& s, spot corner) {
    construct_request request;
    request.what = s.what;
    request.features = s.features;
    request.form = s.form;
    request.radius = s.radius;
    construct_result result;
    std::string reason;
    if (construct(request, result, reason) != exit_status::done) {
        c.text(corner + spot{8, 14}, reason, {.size = 7, .ink = above_ink});
        return;
    }
    std::string title = std::string(s.what) + ": ";
    for (std::size_t i = 0; i < result.features.size(); ++i)
        title += (i > 0 ? ", " : "") + std::string(kind_name(result.features[i].kind));
    c.text(corner + spot{8, 14}, title, {.size = 8.5, .ink = text_ink, .bold = true});
    construct_scene const scene = scene_of(result, {});
    draw_scene(c, scene,
               panel_for(scene.extent, true, corner + spot{0, title_height}, cell_width,
                         cell_height - title_height));
}

}  // namespace

std::string construct_sheet(std::string const& suffix) {
    auto const all = samples();
    int const count = static_cast<int>(all.size()), rows = (count + columns - 1) / columns;
    auto const c = make_canvas(suffix, cell_width * columns, cell_height * rows);
    if (!c) return {};
    for (int i = 0; i < count; ++i)
        draw_cell(*c, all[static_cast<std::size_t>(i)],
                  {cell_width * (i % columns), cell_height * (i / columns)});
    return c->finish();
}

}  // namespace tvmath
