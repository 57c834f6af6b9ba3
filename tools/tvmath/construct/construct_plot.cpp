#include "construct/construct_plot.h"

#include "construct/construct_scene.h"
#include "fit/fit_plot.h"
#include "fit/fit_report.h"

inline namespace tvmath {
namespace {

constexpr double left = 82, top = 74, width = 500, height = 474, figures_left = 606, right = 814;

std::string capital(std::string words) {
    words[0] = static_cast<char>(words[0] - 'a' + 'A');
    return words;
}

std::string number_of(double x) {
    return short_text(x, 9);
}

void draw_title(canvas& c, construct_result const& result, construct_scene const& scene) {
    std::string kinds;
    for (construct_feature const& f : result.features)
        kinds += (kinds.empty() ? "" : ", ") + std::string(kind_name(f.kind));
    text_style const big = {.size = 17, .ink = text_ink, .bold = true}, name = {.size = 12, .ink = text_ink},
                     small = {.size = 9.5, .ink = faint_ink};
    std::string const title = capital(operation_name(result.row->what));
    double const used = 28 + c.text_width(title, big) + 12;
    c.text({28, 34}, title, big);
    c.text({used, 34}, cut(c, kinds, name, right - used), name);
    std::size_t const n = result.answers.size();
    std::string words =
        n == 1 ? "one answer"
               : std::to_string(n) + " answers, number " + std::to_string(result.chosen + 1) + " is chosen";
    if (std::string const form = form_words(result); !form.empty()) words = form + "  \u00b7  " + words;
    if (scene.is_tilted) words += "  \u00b7  seen obliquely";
    c.text({28, 51}, words, small);
}

// The features by their letters, and the figures of as many answers as there is room for, the chosen one
// first.
void draw_figures(canvas& c, construct_result const& result) {
    text_style const words = {.size = 9, .ink = text_ink},
                     letter = {.size = 9, .ink = feature_ink, .bold = true};
    constexpr double step = 13, bottom = top + height;
    double y = top + 8;
    for (std::size_t i = 0; i < result.features.size(); ++i, y += step) {
        c.text({figures_left, y}, std::string(1, static_cast<char>('A' + i)), letter);
        c.text({figures_left + 14, y}, cut(c, result.features[i].words, words, right - figures_left - 14),
               words);
    }
    std::vector<std::size_t> order = {result.chosen};
    for (std::size_t i = 0; i < result.answers.size(); ++i) {
        if (i != result.chosen) order.push_back(i);
    }
    for (std::size_t const i : order) {
        auto const rows = rows_of(result.answers[i].figures, false, number_of);
        if (y + step * static_cast<double>(rows.size() + 2) > bottom) break;
        y += step;
        std::string const name = order.size() > 1 ? "Answer " + std::to_string(i + 1) : "Answer";
        c.text({figures_left, y}, name,
               {.size = 9, .ink = i == result.chosen ? above_ink : below_ink, .bold = true});
        for (report_row const& row : rows) {
            y += step;
            c.text({figures_left, y}, row.label, words);
            c.text({figures_left + 100, y}, row.number, words);
        }
        y += step;
    }
}

void draw_frame(canvas& c, plot_panel const& panel) {
    draw_axes(c, panel, {}, {}, "", "");
}

}  // namespace

std::string construct_plot(construct_result const& result, std::optional<transform> const& view,
                           std::string const& suffix) {
    auto const c = make_canvas(suffix, fit_page_width, fit_page_height);
    if (!c) return {};
    construct_scene const scene = scene_of(result, view);
    plot_panel const panel = panel_for(scene.extent, true, {left, top}, width, height);
    draw_title(*c, result, scene);
    if (scene.is_tilted) {
        draw_frame(*c, panel);
    } else {
        draw_grid(*c, panel, true, scene.origin, "x", "y");
    }
    draw_scene(*c, scene, panel);
    draw_figures(*c, result);
    return c->finish();
}

}  // namespace tvmath
