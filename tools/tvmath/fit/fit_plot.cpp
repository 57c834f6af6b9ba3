#include "fit_plot.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <limits>
#include <map>

#include "fit_plot_parts.h"

inline namespace tvmath {
namespace {

// Places on the page.
constexpr double left = 82, right = 814, top = 74, view_width = 478, view_height = 330;
constexpr double profile_top = 448, profile_height = 104, profile_width = 650;
constexpr double figures_left = 590;

std::string title_of(fit_result const& result) {
    std::string title = result.kind->name;
    if (title == "o-ring") return "O-ring";
    std::replace(title.begin(), title.end(), '-', ' ');
    title[0] = static_cast<char>(title[0] - 'a' + 'A');
    return title;
}

void draw_title(canvas& c, fit_result const& result) {
    text_style const big = {.size = 17, .ink = text_ink, .bold = true},
                     small = {.size = 9.5, .ink = faint_ink};
    std::string const title = title_of(result);
    c.text({28, 34}, title, big);
    c.text(
        {28 + c.text_width(title, big) + 12, 34},
        cut(c, names_of(result.file), {.size = 12, .ink = text_ink}, right - 28 - c.text_width(title, big)),
        {.size = 12, .ink = text_ink});
    std::string words = result.method + (result.forgets_z() ? ", fitted in XY" : "");
    for (std::string const& condition : result.conditions) words += "  \u00b7  " + condition;
    c.text({28, 51}, cut(c, words, small, right - 28), small);
}

// The dots of a map. Of many points the mean in each cell: single points would hide each other, and the form
// with them.
void add_dots(fit_picture& picture) {
    fit_view const& view = picture.view;
    std::vector<double> const& residuals = picture.result.residuals;
    picture.has_means = view.points.size() > most_single;
    view_extent extent;
    for (view_point const& p : view.points) extent.include(p.foot);
    double cell_x = extent.width() / 130, cell_y = extent.height() / 90;
    if (view.is_even) cell_x = cell_y = std::max(cell_x, cell_y);
    struct sum {
        spot place;
        double residual = 0, count = 0;
    };
    std::map<std::pair<long, long>, sum> cells;
    for (std::size_t i = 0; i < view.points.size(); ++i) {
        spot const at = view.points[i].foot;
        double const residual = picture.is_rounding ? 0 : residuals[i];
        if (!picture.has_means) {
            picture.dots.push_back({at, residual});
            continue;
        }
        auto const number = [](double x, double cell) {
            return cell > 0 ? std::lround(std::floor(x / cell)) : 0;
        };
        sum& s = cells[{number(at.x - extent.low.x, cell_x), number(at.y - extent.low.y, cell_y)}];
        s.place = s.place + (at - extent.low);
        s.residual += residual;
        s.count += 1;
    }
    for (auto const& [key, s] : cells)
        picture.dots.push_back({extent.low + (1 / s.count) * s.place, s.residual / s.count});
    for (map_dot const& dot : picture.dots)
        picture.color_range = std::max(picture.color_range, std::fabs(dot.residual));
}

}  // namespace

fit_picture make_fit_picture(fit_result const& result, fit_view const& view) {
    fit_picture picture{.result = result, .view = view};
    double const largest = result.profile_error / 2;
    picture.rounding = rounding_of(result.points);
    picture.is_rounding = largest <= picture.rounding;
    if (!picture.is_rounding && view.room > largest) picture.factor = round_below(view.room / largest);
    if (view.style == view_style::map) add_dots(picture);
    return picture;
}

std::string names_of(std::string const& files) {
    std::string names;
    for (std::size_t from = 0; from <= files.size();) {
        std::size_t const to = std::min(files.find(" + ", from), files.size());
        names += (from > 0 ? " + " : "") +
                 std::filesystem::path(files.substr(from, to - from)).filename().string();
        from = to + 3;
    }
    return names;
}

std::string cut(canvas& c, std::string words, text_style const& style, double width) {
    if (c.text_width(words, style) <= width) return words;
    while (words.size() > 1 && c.text_width(words + " \u2026", style) > width) {
        // All bytes of a character, of which the first one alone is no continuation.
        while (words.size() > 1 && (words.back() & 0xC0) == 0x80) words.pop_back();
        words.pop_back();
    }
    return words + " \u2026";
}

std::string factor_text(double factor) {
    if (factor < 10 || factor > 1e9) return short_text(factor);
    std::string text = decimal_text(factor, 0);
    for (std::size_t i = text.size(); i > 3; i -= 3) {
        if (text.size() > 4) text.insert(i - 3, " ");
    }
    return text;
}

color residual_color(double part) {
    color const middle = {0.90, 0.90, 0.89}, &end = part < 0 ? below_ink : above_ink;
    double const t = std::sqrt(std::min(std::fabs(part), 1.0));  // small ones differ from 0 at a glance
    return {middle.red + t * (end.red - middle.red), middle.green + t * (end.green - middle.green),
            middle.blue + t * (end.blue - middle.blue)};
}

int residual_decimals(fit_result const& result) {
    if (!(result.form_error > 0)) return 6;
    return std::clamp(3 - static_cast<int>(std::floor(std::log10(result.form_error))), 0, 14);
}

std::string extreme_text(extreme_point const& e, fit_result const& result) {
    std::string const size = decimal_text(e.residual, residual_decimals(result));
    return "point " + std::to_string(e.index + 1) + "  " + (e.residual > 0 ? "+" : "") + size;
}

std::vector<extreme_point> marked_points(fit_result const& result) {
    std::vector<extreme_point> marked;
    for (contact_point const& contact : result.contacts) marked.push_back(contact.at);
    if (!marked.empty()) return marked;
    marked.push_back(result.highest);
    if (result.lowest.index != result.highest.index) marked.push_back(result.lowest);
    return marked;
}

bool is_above(extreme_point const& e, fit_result const& result) {
    double const middle = (result.highest.residual + result.lowest.residual) / 2;
    return result.is_zone() ? e.residual > middle : e.residual >= 0;
}

void draw_fit(canvas& c, fit_result const& result) {
    fit_view const view = view_of(result);
    fit_picture const picture = make_fit_picture(result, view);
    draw_title(c, result);
    double const scale = draw_view(c, picture, {left, top}, view_width, view_height);
    draw_figures(c, picture, {figures_left, top}, right - figures_left, view_height + 24, scale);
    draw_profile(c, picture, {left, profile_top}, profile_width, profile_height);
}

std::string fit_plot(fit_result const& result, std::string const& suffix) {
    auto const c = make_canvas(suffix, fit_page_width, fit_page_height);
    if (!c) return {};
    draw_fit(*c, result);
    return c->finish();
}

}  // namespace tvmath
