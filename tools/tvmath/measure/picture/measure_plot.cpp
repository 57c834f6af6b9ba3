#include <algorithm>
#include <cmath>

#include "fit/fit_plot.h"
#include "fit/fit_plot_parts.h"
#include "measure/picture/measure_overlay.h"
#include "measure/picture/measure_plot_parts.h"

inline namespace tvmath {
namespace {

// Places on the page, whose height depends on the image and the table.
constexpr double margin = 28, top = 64, legend_height = 30, bottom_margin = 24;
constexpr double width = fit_page_width - 2 * margin;
constexpr double tallest = 640;   // image
constexpr double room = 15;       // points for the longest residual
constexpr double least_room = 6;  // and pixels, for images that are large on the page

image_place place_of(measure_report const& report) {
    double const w = std::max(report.width, 1u), h = std::max(report.height, 1u);
    image_place place;
    place.scale = std::min(width / w, tallest / h);
    place.width = place.scale * w;
    place.height = place.scale * h;
    place.corner = {margin + (width - place.width) / 2, top};
    return place;
}

std::string details_of(measure_report const& report, measure_frame const& frame) {
    measure_job const& job = *report.job;
    std::string text = std::to_string(report.width) + " \u00d7 " + std::to_string(report.height) + " pixels";
    if (job.from_screen && !(frame.pixel_length() == 1.0 && job.unit == "px")) {
        text += " of " + short_text(frame.pixel_length(), 5);
        if (!job.unit.empty()) text += ' ' + job.unit;
    }
    if (!job.screen.is_trivial()) text += "  \u00b7  distortion corrected";
    if (job.flatness.order > 0) text += "  \u00b7  flatness corrected";
    return text;
}

void draw_title(canvas& c, measure_report const& report, measure_frame const& frame,
                measure_sheet const& sheet) {
    text_style const big = {.size = 17, .ink = text_ink, .bold = true}, name = {.size = 12, .ink = text_ink},
                     small = {.size = 9.5, .ink = faint_ink};
    text_style result = {.size = 15, .ink = ink_of(sheet.is_good), .bold = true, .across = 1};
    if (!sheet.has_limits && sheet.is_good) result.ink = text_ink;
    text_style const failing = {.size = 9.5, .ink = bad_ink, .across = 1};
    double const right = margin + width, result_width = c.text_width(sheet.summary, result);
    std::string const title = "Measured features";
    c.text({margin, 34}, title, big);
    double const used = margin + c.text_width(title, big) + 12;
    c.text({used, 34}, cut(c, names_of(report.image), name, right - result_width - 16 - used), name);
    c.text({right, 34}, sheet.summary, result);
    std::string const details = cut(c, details_of(report, frame), small, width);
    double const rest = width - c.text_width(details, small) - 16;
    c.text({margin, 51}, details, small);
    if (sheet.failing.size() > 0 && rest > 60)
        c.text({right, 51}, cut(c, sheet.failing, failing, rest), failing);
}

// One entry: a sample of the line or mark, and what it means.
class legend {
public:
    legend(canvas& c, double y) : c_(c), y_(y) {}

    void add_line(pen const& with, std::string const& words) {
        canvas_path path;
        path.move_to({x_, y_ - 3});
        path.line_to({x_ + 18, y_ - 3});
        c_.stroke(path, with);
        add_words(23, words);
    }
    void add_beads(color ink, std::string const& words) {
        canvas_path path;
        path.move_to({x_, y_ - 3});
        path.line_to({x_ + 18, y_ - 3});
        c_.stroke(path, {ink, 1.9});
        c_.dots({{x_ + 3, y_ - 3}, {x_ + 9, y_ - 3}, {x_ + 15, y_ - 3}}, 0.5, {1, 1, 1});
        add_words(23, words);
    }
    void add_cross(color ink, std::string const& words) {
        canvas_path path;
        for (double const side : {1.0, -1.0}) {
            path.move_to({x_, y_ - 3 - side * 2.6});
            path.line_to({x_ + 5.2, y_ - 3 + side * 2.6});
        }
        c_.stroke(path, {ink, 1.4});
        add_words(10, words);
    }

private:
    void add_words(double from, std::string const& words) {
        text_style const style = {.size = 8.5, .ink = text_ink};
        c_.text({x_ + from, y_}, words, style);
        x_ += from + c_.text_width(words, style) + 20;
    }

    canvas& c_;
    double x_ = margin, y_;
};

void draw_legend(canvas& c, measure_drawing const& drawing, measure_sheet const& sheet, double y) {
    bool has_good = false, has_bad = false, has_missing = false;
    for (drawn_feature const& f : drawing.features)
        (f.is_good() ? has_good : f.state == verdict::fail ? has_bad : has_missing) = true;
    legend l(c, y);
    if (has_good) l.add_line({good_ink, 1.8}, sheet.has_limits ? "passes" : "fitted feature");
    if (has_bad) l.add_line({bad_ink, 2}, "fails");
    if (has_missing) l.add_line({bad_ink, 1.5, 4}, "not measured");
    if (!shows_edges(drawing)) return;
    if (has_good) {
        l.add_beads(good_ink, "edge points");
    } else if (has_bad) {
        l.add_beads(bad_ink, "edge points");
    }
    if (drawing.has_dropped()) l.add_cross(dropped_ink, "dropped as outliers");
    if (drawing.factor > 0)
        l.add_line({whisker_ink, 0.8}, "residuals, drawn \u00d7 " + factor_text(drawing.factor));
}

// A round length of the results, at the right end of the line of the legend.
void draw_scale_bar(canvas& c, image_place const& place, double pixel_length, std::string const& unit,
                    double y) {
    double const length = round_125_below(0.15 * width / place.scale * pixel_length),
                 bar = length / pixel_length * place.scale;
    std::string const words = short_text(length) + (unit.empty() ? "" : " " + unit);
    text_style const style = {.size = 8.5, .ink = text_ink, .across = 1};
    double const right = margin + width - c.text_width(words, style) - 6, left = right - bar;
    canvas_path line;
    for (double const end : {left, right}) {
        line.move_to({end, y - 6});
        line.line_to({end, y});
    }
    line.move_to({left, y - 3});
    line.line_to({right, y - 3});
    c.stroke(line, {text_ink, 1.2});
    c.text({margin + width, y}, words, style);
}

void draw_frame(canvas& c, image_place const& place) {
    canvas_path frame;
    frame.move_to(place.corner);
    frame.line_to(place.corner + spot{place.width, 0});
    frame.line_to(place.corner + spot{place.width, place.height});
    frame.line_to(place.corner + spot{0, place.height});
    frame.close();
    c.stroke(frame, {frame_ink, 0.8});
}

}  // namespace

measure_page make_measure_page(measure_frame const& frame, measure_report const& report) {
    measure_page page;
    page.place = place_of(report);
    page.sheet = make_measure_sheet(report, frame.pixel_length());
    page.height = std::ceil(top + page.place.height + legend_height + height_of(page.sheet) + bottom_margin);
    return page;
}

void draw_measure_page(canvas& c, image const& scene, measure_frame const& frame,
                       measure_report const& report, measure_page const& page) {
    double const bottom = top + page.place.height, pixel = frame.pixel_length();
    std::string const& unit = report.job->unit;
    measure_drawing const drawing =
        make_measure_drawing(frame, report, std::max(room / page.place.scale, least_room));
    draw_title(c, report, frame, page.sheet);
    draw_measure_scene(c, scene, frame, report, drawing, page.place);
    draw_frame(c, page.place);
    draw_legend(c, drawing, page.sheet, bottom + 16);
    draw_scale_bar(c, page.place, pixel, unit, bottom + 16);
    draw_measure_sheet(c, page.sheet, unit, {margin, bottom + legend_height}, width);
}

std::string measure_plot(image const& scene, measure_frame const& frame, measure_report const& report,
                         std::string const& suffix) {
    measure_page const page = make_measure_page(frame, report);
    auto const c = make_canvas(suffix, fit_page_width, page.height);
    if (!c) return {};
    draw_measure_page(*c, scene, frame, report, page);
    return c->finish();
}

}  // namespace tvmath
