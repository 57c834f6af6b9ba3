#include <algorithm>
#include <array>
#include <cmath>

#include "fit/fit_plot_parts.h"
#include "measure/picture/measure_plot_parts.h"

inline namespace tvmath {
namespace {

constexpr double row_height = 14.5, head_height = 20, rest_height = 17;
constexpr double gauge_width = 92, least_gap = 6, most_gap = 30, widest_name = 150, widest_what = 104;
constexpr double block_gap = 32, widest_divided_name = 96;
constexpr std::size_t most_undivided = 6;
constexpr text_style head_style = {.size = 8, .ink = faint_ink}, cell_style = {.size = 8.5, .ink = text_ink},
                     bold_style = {.size = 8.5, .ink = text_ink, .bold = true};

// How a column stands.
enum class side { left, point, right };

using row_text = std::string sheet_row::*;
constexpr row_text no_text = nullptr;  // that of the gauge

struct column {
    std::string head;
    side stands = side::point;
    row_text text = no_text;
    double whole = 0, part = 0;  // widths before the decimal point and from it on
    double left = 0;

    double width() const { return whole + part; }
};

// Where the text is laid upon the others: its decimal point, and its end where it has none or two.
std::size_t anchor_of(column const& col, std::string const& text) {
    if (col.stands != side::point) return col.stands == side::left ? 0 : text.size();
    std::size_t const dot = text.find('.');
    bool const is_pair = text.find(", ") != std::string::npos;
    return dot == std::string::npos || is_pair ? text.size() : dot;
}

std::size_t rows_of_block(measure_sheet const& sheet) {
    return sheet.is_divided() ? (sheet.rows.size() + 1) / 2 : sheet.rows.size();
}

class table_drawer {
public:
    table_drawer(canvas& c, measure_sheet const& sheet, std::string const& unit, spot corner, double width)
        : c_(c), sheet_(sheet), corner_(corner), width_(width) {
        if (sheet.is_divided()) width_ = (width - block_gap) / 2;
        std::string const in = unit.empty() ? "" : ", " + unit;
        for (column const& col :
             {column{"feature", side::left, &sheet_row::name}, column{"", side::left, &sheet_row::what},
              column{"measured" + in, side::point, &sheet_row::measured},
              column{"center x, y", side::right, &sheet_row::place},
              column{"nominal", side::point, &sheet_row::nominal},
              column{"deviation", side::point, &sheet_row::deviation},
              column{"tolerance", side::left, &sheet_row::tolerance}, column{"", side::left, no_text},
              column{"form error", side::point, &sheet_row::form},
              column{"", side::right, &sheet_row::verdict}}) {
            if (is_used(col)) columns_.push_back(col);
        }
        lay_out();
    }

    void draw() {
        std::size_t const n = sheet_.rows.size(), of_block = rows_of_block(sheet_);
        double const bottom = corner_.y + head_height + row_height * static_cast<double>(of_block);
        c_.text({corner_.x, bottom + 12}, sheet_.rest, {.size = 8.5, .ink = faint_ink});
        for (std::size_t first = 0; first < n; first += of_block) {
            draw_block(first, std::min(first + of_block, n));
            line(bottom, frame_ink);
            corner_.x += width_ + block_gap;
            for (column& col : columns_) col.left += width_ + block_gap;
        }
    }

private:
    void draw_block(std::size_t first, std::size_t end) {
        for (column const& col : columns_) draw_head(col);
        double y = corner_.y + head_height;
        line(y - 3, frame_ink);
        for (std::size_t i = first; i < end; ++i, y += row_height) {
            sheet_row const& row = sheet_.rows[i];
            if (i > first && !row.name.empty()) line(y, grid_ink);
            for (column const& col : columns_) draw_cell(col, row, y);
            if (!row.reason.empty()) draw_reason(row, y);
        }
    }

    bool is_used(column const& col) const {
        return std::any_of(sheet_.rows.begin(), sheet_.rows.end(), [&col](sheet_row const& row) {
            return col.text ? !(row.*col.text).empty() : row.has_gauge;
        });
    }

    text_style style_of(column const& col, sheet_row const& row) const {
        text_style style = cell_style;
        if (col.text == &sheet_row::name || col.text == &sheet_row::verdict) style = bold_style;
        if (col.text == &sheet_row::verdict) style.ink = row.verdict_ink;
        if (col.text == &sheet_row::deviation) style.ink = row.ink;
        if (col.text == &sheet_row::form && row.is_form_bad) style.ink = bad_ink;
        if (col.text == &sheet_row::nominal || col.text == &sheet_row::tolerance) style.ink = faint_ink;
        return style;
    }

    std::string text_of(column const& col, sheet_row const& row) const {
        std::string const& text = row.*col.text;
        double const widest = sheet_.is_divided() ? widest_divided_name : widest_name;
        if (col.text == &sheet_row::name) return cut(c_, text, bold_style, widest);
        if (col.text == &sheet_row::what) return cut(c_, text, cell_style, widest_what);
        return text;
    }

    void measure(column& col) const {
        if (!col.text) {
            col.part = gauge_width;
            return;
        }
        for (sheet_row const& row : sheet_.rows) {
            std::string const text = text_of(col, row);
            text_style const style = style_of(col, row);
            std::size_t const anchor = anchor_of(col, text);
            double const whole = c_.text_width(text.substr(0, anchor), style);
            // A pair of numbers ends where the others do.
            bool const ends = col.stands == side::point && anchor == text.size();
            col.whole = std::max(col.whole, ends ? 0 : whole);
            col.part = std::max(col.part, c_.text_width(text.substr(anchor), style));
        }
        for (sheet_row const& row : sheet_.rows)
            col.whole = std::max(col.whole, c_.text_width(text_of(col, row), style_of(col, row)) - col.part);
        col.whole = std::max(col.whole, c_.text_width(col.head, head_style) - col.part);
    }

    double gap() const {
        double used = 0;
        for (column const& col : columns_) used += col.width();
        return (width_ - used) / static_cast<double>(std::max<std::size_t>(columns_.size(), 2) - 1);
    }

    void lay_out() {
        for (column& col : columns_) measure(col);
        // Very long numbers leave no room for all columns.
        for (auto const text : {no_text, &sheet_row::place, &sheet_row::nominal, &sheet_row::tolerance}) {
            if (gap() < least_gap)
                std::erase_if(columns_, [text](column const& col) { return col.text == text; });
        }
        double const between = std::clamp(gap(), least_gap, most_gap);
        double x = corner_.x;
        for (column& col : columns_) {
            col.left = x;
            x += col.width() + between;
        }
        // The verdicts stand at the border.
        if (!columns_.empty() && columns_.back().stands == side::right)
            columns_.back().left = corner_.x + width_ - columns_.back().width();
    }

    void draw_head(column const& col) {
        text_style style = head_style;
        style.across = col.stands == side::left ? 0 : 1;
        c_.text({col.left + style.across * col.width(), corner_.y + 9}, col.head, style);
    }

    void draw_cell(column const& col, sheet_row const& row, double top) {
        double const foot = top + 10.5;
        if (!col.text) {
            if (row.has_gauge) draw_gauge(row, {col.left, top + row_height / 2});
            return;
        }
        std::string const text = text_of(col, row);
        text_style style = style_of(col, row);
        std::size_t const anchor = anchor_of(col, text);
        bool const at_end = col.stands != side::left && anchor == text.size();
        double const left = at_end ? col.left + col.width() - c_.text_width(text, style)
                            : col.stands == side::point
                                ? col.left + col.whole - c_.text_width(text.substr(0, anchor), style)
                                : col.left;
        c_.text({left, foot}, text, style);
    }

    // In place of the numbers.
    void draw_reason(sheet_row const& row, double top) {
        text_style const style = {.size = 8.5, .ink = faint_ink};
        double const from = columns_.size() > 1 ? columns_[1].left : corner_.x + widest_name;
        double const to = corner_.x + width_ - c_.text_width(row.verdict, bold_style) - 10;
        c_.text({from, top + 10.5}, cut(c_, row.reason, style, to - from), style);
    }

    // The limits as a bar with a line at 0, and the value upon it, held at the ends.
    void draw_gauge(sheet_row const& row, spot from) {
        bool const one_sided = row.lower == 0.0;
        double const span = row.upper - row.lower, low = row.lower - (one_sided ? 0.06 : 0.35) * span,
                     high = row.upper + (one_sided ? 0.64 : 0.35) * span;
        auto const at = [&](double v) {
            return from.x + gauge_width * std::clamp((v - low) / (high - low), 0.0, 1.0);
        };
        bar(at(low), at(high), from.y, 1.0, grid_ink);
        bar(at(row.lower), at(row.upper), from.y, 3.0, {good_ink.red, good_ink.green, good_ink.blue, 0.22});
        canvas_path marks;
        for (double const v : {row.lower, row.upper}) mark(marks, at(v), from.y, 4);
        c_.stroke(marks, {{good_ink.red, good_ink.green, good_ink.blue, 0.8}, 0.8});
        if (low < 0 && high > 0 && !one_sided) {
            canvas_path zero;
            mark(zero, at(0), from.y, 3);
            c_.stroke(zero, {faint_ink, 0.6});
        }
        double const x = at(row.value);
        if (row.value >= low && row.value <= high) {
            c_.dots({{x, from.y}}, 2.7, {1, 1, 1});
            c_.dots({{x, from.y}}, 2.1, row.ink);
            return;
        }
        double const way = row.value < low ? -1 : 1;
        canvas_path arrow;
        arrow.move_to({x, from.y});
        arrow.line_to({x - way * 5.5, from.y - 3});
        arrow.line_to({x - way * 5.5, from.y + 3});
        arrow.close();
        c_.fill(arrow, row.ink);
    }

    void bar(double left, double right, double y, double half, color ink) {
        canvas_path path;
        path.move_to({left, y - half});
        path.line_to({right, y - half});
        path.line_to({right, y + half});
        path.line_to({left, y + half});
        path.close();
        c_.fill(path, ink);
    }

    static void mark(canvas_path& path, double x, double y, double half) {
        path.move_to({x, y - half});
        path.line_to({x, y + half});
    }

    void line(double y, color ink) {
        canvas_path path;
        path.move_to({corner_.x, y});
        path.line_to({corner_.x + width_, y});
        c_.stroke(path, {ink, 0.6});
    }

    canvas& c_;
    measure_sheet const& sheet_;
    spot corner_;
    double width_;
    std::vector<column> columns_;
};

}  // namespace

bool measure_sheet::is_divided() const {
    return rows.size() > most_undivided && std::none_of(rows.begin(), rows.end(), [](sheet_row const& row) {
               return !row.nominal.empty() || row.has_gauge || !row.verdict.empty();
           });
}

double height_of(measure_sheet const& sheet) {
    return head_height + row_height * static_cast<double>(rows_of_block(sheet)) +
           (sheet.rest.empty() ? 0 : rest_height);
}

void draw_measure_sheet(canvas& c, measure_sheet const& sheet, std::string const& unit, spot corner,
                        double width) {
    table_drawer(c, sheet, unit, corner, width).draw();
}

}  // namespace tvmath
