#include <algorithm>
#include <cmath>

#include "fit_plot_parts.h"
#include "fit_report.h"
#include "tvmath/scalar.h"

inline namespace tvmath {
namespace {

constexpr double most_line_height = 12.2;

// The figures, from the top of their column downward.
class figure_column {
public:
    figure_column(canvas& c, fit_picture const& picture, spot corner, double width)
        : c_(c),
          picture_(picture),
          result_(picture.result),
          left_(corner.x),
          right_(corner.x + width),
          y_(corner.y + 9) {}

    /// Draws closer lines where there are many.
    void fit_into(double height) {
        std::size_t lines = 11;  // of the form, and between
        lines += rows_of(result_.figures, false, nullptr_text).size() + (result_.nominal ? 1 : 0);
        line_height_ = std::min(most_line_height, height / static_cast<double>(lines));
        size_ *= line_height_ / most_line_height;
    }

    void draw_form() {
        std::string label = form_label(result_);
        label[0] = static_cast<char>(label[0] - 'a' + 'A');
        c_.text({left_, y_}, label, {.size = 10.5, .ink = text_ink, .bold = true});
        c_.text({right_, y_},
                picture_.is_rounding ? short_text(result_.form_error, 2) : residual(result_.form_error),
                {.size = 10.5, .ink = text_ink, .bold = true, .across = 1});
        y_ += 4;
        next();
        if (result_.tolerance) {
            bool const kept = result_.is_in_tolerance();
            c_.text({left_, y_}, kept ? "within its tolerance of" : "above its tolerance of",
                    {.size = size_, .ink = kept ? color{0.05, 0.45, 0.20} : above_ink, .bold = true});
            value(short_text(*result_.tolerance));
        }
        if (result_.has_standard_names && !result_.is_zone()) {
            std::string const symbol = result_.kind->form.symbol;
            row("peak " + symbol + "p", residual(result_.highest.residual));
            row("valley " + symbol + "v", residual(-result_.lowest.residual));
            row("root mean square " + symbol + "q", residual(result_.rms));
        } else {
            row("highest residual", residual(result_.highest.residual));
            row("lowest residual", residual(result_.lowest.residual));
            row("root mean square", residual(result_.rms));
        }
        if (result_.standard_deviation) row("standard deviation", residual(*result_.standard_deviation));
        row("profile error", residual(result_.profile_error));
        row("points", std::to_string(result_.count));
        if (result_.degrees_of_freedom)
            row("degrees of freedom", std::to_string(*result_.degrees_of_freedom));
        rule();
    }

    void draw_parameters() {
        std::vector<figure> const none;
        std::vector<figure> const& differences = result_.nominal ? result_.nominal->deviations : none;
        if (!differences.empty()) {
            c_.text({right_, y_}, "less nominal", {.size = 7.5, .ink = faint_ink, .across = 1});
            next();
        }
        for (figure const& f : result_.figures) {
            auto const d = std::find_if(differences.begin(), differences.end(),
                                        [&f](figure const& other) { return other.label == f.label; });
            std::vector<report_row> const rows = rows_of({f}, false, nullptr_text),
                                          deviation = d == differences.end()
                                                          ? std::vector<report_row>()
                                                          : rows_of({*d}, false, nullptr_text);
            for (std::size_t i = 0; i < rows.size(); ++i) {
                std::string const text = parameter(f, i);
                if (differences.empty()) {
                    row(label_of(rows[i].label), text);
                    continue;
                }
                c_.text({left_, y_}, label_of(rows[i].label), {.size = size_, .ink = faint_ink});
                c_.text({right_ - 58, y_}, text, {.size = size_, .ink = text_ink, .across = 1});
                if (i < deviation.size())
                    value(difference(*d, i));
                else
                    next();
            }
        }
        rule();
    }

private:
    static std::string nullptr_text(double) { return {}; }

    static std::string label_of(std::string label) {
        std::size_t const unit = label.rfind(" deg");
        if (unit != std::string::npos && unit + 4 == label.size()) label.resize(unit);
        return label;
    }

    void next() { y_ += line_height_; }
    void value(std::string const& text) {
        c_.text({right_, y_}, text, {.size = size_, .ink = text_ink, .across = 1});
        next();
    }
    void row(std::string const& label, std::string const& text) {
        c_.text({left_, y_}, label, {.size = size_, .ink = faint_ink});
        value(text);
    }
    void rule() {
        canvas_path line;
        line.move_to({left_, y_ - 6});
        line.line_to({right_, y_ - 6});
        c_.stroke(line, {frame_ink, 0.6});
        y_ += 6;
    }

    std::string residual(double r) const {
        if (picture_.is_rounding) return short_text(r);
        bool const is_zero = std::fabs(r) <= picture_.rounding;  // as of a contact
        return decimal_text(is_zero ? 0 : r, residual_decimals(result_));
    }
    // As many decimals as the residuals have.
    std::string parameter(figure const& f, std::size_t i) const {
        double const x = f.values[i];
        if (f.kind == figure_kind::count) return fixed_text(x, 0);
        if (is_angle(f)) return fixed_text(x * (180 / pi), 5) + "\u00b0";
        if (f.kind == figure_kind::direction || f.kind == figure_kind::axis || f.kind == figure_kind::number)
            return fixed_text(x, 7);
        if (picture_.is_rounding) return short_text(std::fabs(x) <= picture_.rounding ? 0 : x, 9);
        return f.label == "area" ? short_text(x, 9) : fixed_text(x, residual_decimals(result_));
    }
    std::string difference(figure const& d, std::size_t i) const {
        std::string const text = parameter(d, i);
        bool const is_above = d.values[i] > 0 && text.find_first_of("123456789") != std::string::npos;
        return is_above ? "+" + text : text;
    }
    canvas& c_;
    fit_picture const& picture_;
    fit_result const& result_;
    double left_, right_, y_;
    double line_height_ = most_line_height, size_ = 8.5;
};

// What colours and lengths mean, from the bottom of the column upward.
class legend {
public:
    legend(canvas& c, fit_picture const& picture, spot corner, double width)
        : c_(c), picture_(picture), left_(corner.x), right_(corner.x + width), y_(corner.y) {}

    void draw_whiskers(double view_scale) {
        fit_view const& view = picture_.view;
        std::string const times = picture_.factor == 1
                                      ? "residuals drawn true to scale"
                                      : "residuals drawn \u00d7 " + factor_text(picture_.factor);
        // A bar of a round length, to read the residuals by.
        double const per_unit = view_scale * picture_.factor;
        double const length =
            round_below(std::min(0.45 * (right_ - left_) / per_unit, 1.2 * picture_.result.profile_error));
        double const drawn = length * per_unit;
        canvas_path bar;
        bar.move_to({left_, y_ - 6});
        bar.line_to({left_, y_});
        bar.move_to({left_, y_ - 3});
        bar.line_to({left_ + drawn, y_ - 3});
        bar.move_to({left_ + drawn, y_ - 6});
        bar.line_to({left_ + drawn, y_});
        c_.stroke(bar, {text_ink, 1});
        c_.text({left_ + drawn + 6, y_}, "a residual of " + short_text(length), {.size = 8, .ink = text_ink});
        up();
        add_contacts();
        if (!view.outlines.empty()) entry(zone_ink, "zone of the form error");
        if (!view.below.empty()) entry(below_ink, "\u2212  " + view.below);
        entry(above_ink, view.below.empty() ? view.above : "+  " + view.above);
        c_.text({left_, y_}, times, {.size = 10, .ink = text_ink, .bold = true});
    }

    void draw_colors() {
        double const largest = picture_.color_range, width = right_ - left_;
        add_contacts();
        constexpr int steps = 24;
        c_.text({left_, y_}, number(-largest), {.size = 8, .ink = text_ink});
        c_.text({left_ + width / 2, y_}, "0", {.size = 8, .ink = text_ink, .across = 0.5});
        c_.text({right_, y_}, "+" + number(largest), {.size = 8, .ink = text_ink, .across = 1});
        y_ -= 11;
        for (int k = 0; k <= steps; ++k) {
            swatch({left_ + width * k / (steps + 1), y_}, width / (steps + 1) + 0.3, 9,
                   residual_color((k - steps / 2) / (steps / 2.0)));
        }
        y_ -= 15;
        c_.text({left_, y_}, "\u2212  " + picture_.view.below, {.size = 8, .ink = below_ink});
        c_.text({right_, y_}, "+  " + picture_.view.above, {.size = 8, .ink = above_ink, .across = 1});
        up();
        c_.text({left_, y_}, picture_.has_means ? "mean residuals as colours" : "residuals as colours",
                {.size = 10, .ink = text_ink, .bold = true});
    }

    void draw_none() {
        c_.text({left_, y_}, "no residual above rounding", {.size = 10, .ink = text_ink, .bold = true});
    }

private:
    std::string number(double x) const { return decimal_text(x, residual_decimals(picture_.result)); }
    void up() { y_ -= 13.5; }
    void swatch(spot foot, double width, double height, color const& ink) {
        canvas_path box;
        box.move_to(foot);
        box.line_to({foot.x + width, foot.y});
        box.line_to({foot.x + width, foot.y - height});
        box.line_to({foot.x, foot.y - height});
        box.close();
        c_.fill(box, ink);
    }
    void add_contacts() {
        if (!picture_.result.is_zone()) return;
        c_.stroke(ring_at({left_ + 7, y_ - 3}, 4.5), {text_ink, 1.3});
        c_.text({left_ + 20, y_}, "contact points", {.size = 8.5, .ink = text_ink});
        up();
    }
    void entry(color const& ink, std::string const& words) {
        swatch({left_, y_ + 0.5}, 14, 8, ink);
        c_.text({left_ + 20, y_}, words, {.size = 8.5, .ink = text_ink});
        up();
    }

    canvas& c_;
    fit_picture const& picture_;
    double left_, right_, y_;
};

}  // namespace

void draw_figures(canvas& c, fit_picture const& picture, spot corner, double width, double height,
                  double view_scale) {
    figure_column column(c, picture, corner, width);
    column.fit_into(height - (picture.result.is_zone() ? 98 : 84));
    column.draw_form();
    column.draw_parameters();
    legend what(c, picture, {corner.x, corner.y + height}, width);
    if (picture.is_rounding) {
        what.draw_none();
    } else if (picture.view.style == view_style::map) {
        what.draw_colors();
    } else {
        what.draw_whiskers(view_scale);
    }
}

}  // namespace tvmath
