#include "measure/report/measure_layout.h"

#include <algorithm>
#include <string_view>

inline namespace tvmath {
namespace {

// Both limits are under one title.
constexpr std::string_view titles[measure_columns] = {"measured", "nominal", "deviation", "", "tolerance"};

std::size_t whole_of(std::string const& number) {
    return std::min(number.find('.'), number.size());
}

// Adds the text from that column of the line on, or two blanks behind what is there already.
void put(std::string& line, std::size_t at, std::string_view text) {
    std::size_t const used = width_of(line);
    line.append(at > used ? at - used : line.empty() ? 0 : 2, ' ');
    line += text;
}

}  // namespace

void measure_layout::include(std::vector<measure_row> const& rows) {
    for (measure_row const& r : rows) {
        label_ = std::max(label_, r.label.size());
        for (std::size_t c = 0; c < measure_columns; ++c) {
            std::size_t const whole = whole_of(r.cells[c]);
            whole_[c] = std::max(whole_[c], whole);
            fraction_[c] = std::max(fraction_[c], r.cells[c].size() - whole);
        }
    }
}

void measure_layout::settle() {
    std::size_t end = 2 + label_;
    for (std::size_t c = 0; c < measure_columns; ++c) {
        std::size_t width = whole_[c] + fraction_[c];
        if (width > 0) {
            std::size_t const lower = whole_[column_lower] + fraction_[column_lower];
            bool const is_pair = c == column_upper && lower > 0;
            std::size_t const room = is_pair ? lower + 1 : 0;
            width = std::max(width + room, titles[c].size()) - room;
            end += (is_pair ? 1 : 2) + width;
        }
        end_[c] = end;
    }
    verdict_at_ = end + 2;
}

std::string measure_layout::titles_of(std::vector<measure_row> const& rows) const {
    std::string line;
    for (std::size_t c = 0; c < measure_columns; ++c) {
        bool const is_filled =
            std::any_of(rows.begin(), rows.end(), [c](measure_row const& r) { return !r.cells[c].empty(); });
        if (is_filled && !titles[c].empty()) put(line, end_[c] - titles[c].size(), titles[c]);
    }
    return line.ends_with(titles[column_measured]) ? std::string() : line;
}

std::string measure_layout::line_of(measure_row const& row) const {
    std::string line = "  " + row.label;
    for (std::size_t c = 0; c < measure_columns; ++c) {
        std::string const& number = row.cells[c];
        if (!number.empty()) put(line, end_[c] - fraction_[c] - whole_of(number), number);
    }
    if (!row.verdict.empty()) put(line, verdict_at_, row.verdict);
    return line;
}

std::string measure_layout::line_of(std::string const& name, std::string const& verdict) const {
    std::string line = name;
    if (!verdict.empty()) put(line, verdict_at_, verdict);
    return line;
}

std::size_t width_of(std::string const& text) {
    return static_cast<std::size_t>(
        std::count_if(text.begin(), text.end(), [](char c) { return (c & 0xC0) != 0x80; }));
}

}  // namespace tvmath
