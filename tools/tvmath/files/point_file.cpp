#include "point_file.h"

#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <string_view>
#include <system_error>

inline namespace tvmath {
namespace {

constexpr std::size_t chunk_size = std::size_t{1} << 20;
// Far beyond any line of numbers: what is longer is no point list, and would only fill the memory.
constexpr std::size_t longest_line = std::size_t{1} << 16;
// 4 GB of points. An endless pipe ends here and not when the machine has no memory left.
constexpr std::size_t most_points = 100'000'000;

enum class line_state { line, end, too_long, failed };

// Cuts a stream into lines. A line stays valid until the next one is taken.
class line_reader {
public:
    explicit line_reader(std::istream& in) : in_(in), buffer_(longest_line + chunk_size) {}

    line_state next(std::string_view& line) {
        for (std::size_t searched = 0;;) {
            char const* const begin = buffer_.data() + begin_;
            std::size_t const held = end_ - begin_;
            // No search of an empty range: `searched` may stand at the end of what is held.
            void const* const found =
                held > searched ? std::memchr(begin + searched, '\n', held - searched) : nullptr;
            std::size_t const length =
                found ? static_cast<std::size_t>(static_cast<char const*>(found) - begin) : held;
            if (length > longest_line) return line_state::too_long;
            if (found || (at_end_ && held > 0)) {
                line = std::string_view(begin, length);
                begin_ += found ? length + 1 : length;
                if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
                return line_state::line;
            }
            if (at_end_) return line_state::end;
            searched = held;
            if (!refill()) return line_state::failed;
        }
    }

private:
    // Only called with at most `longest_line` bytes held, so a whole chunk fits behind them.
    bool refill() {
        std::size_t const held = end_ - begin_;
        std::memmove(buffer_.data(), buffer_.data() + begin_, held);
        in_.read(buffer_.data() + held, static_cast<std::streamsize>(chunk_size));
        begin_ = 0;
        end_ = held + static_cast<std::size_t>(in_.gcount());
        at_end_ = !in_;
        return !in_.bad();
    }

    std::istream& in_;
    std::vector<char> buffer_;
    std::size_t begin_ = 0, end_ = 0;
    bool at_end_ = false;
};

bool is_blank(char c) {
    return c == ' ' || c == '\t';
}

std::string_view trimmed(std::string_view text) {
    while (!text.empty() && is_blank(text.front())) text.remove_prefix(1);
    while (!text.empty() && is_blank(text.back())) text.remove_suffix(1);
    return text;
}

// A field without the blanks and the pair of quotes around it.
std::string_view bare(std::string_view field) {
    field = trimmed(field);
    if (field.size() < 2 || field.front() != '"' || field.back() != '"') return field;
    return trimmed(field.substr(1, field.size() - 2));
}

// Position of the first of `wanted` outside double quotes, or the size of the text.
std::size_t find_unquoted(std::string_view text, std::string_view wanted, std::size_t from = 0) {
    bool in_quotes = false;
    for (std::size_t i = from; i < text.size(); ++i) {
        if (text[i] == '"') in_quotes = !in_quotes;
        if (!in_quotes && wanted.find(text[i]) != std::string_view::npos) return i;
    }
    return text.size();
}

bool equal_without_case(std::string_view text, std::string_view lower) {
    if (text.size() != lower.size()) return false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        char const c = text[i];
        if ((c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c) != lower[i]) return false;
    }
    return true;
}

bool is_not_finite_word(std::string_view word) {
    if (!word.empty() && (word.front() == '+' || word.front() == '-')) word.remove_prefix(1);
    return equal_without_case(word, "nan") || equal_without_case(word, "inf") ||
           equal_without_case(word, "infinity");
}

// True for whatever was meant as a number: also for "1.5mm" and "nan", so that a first line with typing
// errors is not taken for a header and lost.
bool begins_as_number(std::string_view word) {
    if (is_not_finite_word(word)) return true;
    if (!word.empty() && (word.front() == '+' || word.front() == '-')) word.remove_prefix(1);
    if (!word.empty() && (word.front() == '.' || word.front() == ',')) word.remove_prefix(1);
    return !word.empty() && word.front() >= '0' && word.front() <= '9';
}

// Reads the lines of one input, after the first of which separator, decimal mark and column count are
// settled.
class point_parser {
public:
    explicit point_parser(bool decimal_comma)
        : decimal_comma_(decimal_comma), mark_(decimal_comma ? ',' : '\0') {}

    /// Takes one line; false when it is not understood, for which `reason` then says why.
    bool take(std::string_view line, std::size_t number, std::vector<point>& points, std::string& reason) {
        if (line.find('\0') != std::string_view::npos) {
            reason = "zero byte: this is not a text file (text in UTF-16 has to be saved as UTF-8)";
            return false;
        }
        line = trimmed(line.substr(0, find_unquoted(line, "#")));
        if (line.empty()) return true;
        bool const first = separator_ == '\0';
        if (first) settle_separator(line);
        split(line);
        if (first && is_header()) return true;
        double values[3];
        if (!fits_columns(number, reason)) return false;
        for (std::size_t i = 0; i < fields_.size(); ++i) {
            if (!read_number(i, values[i], reason)) return false;
        }
        points.push_back(columns_ == 2 ? point(true, values[0], values[1])
                                       : point(true, values[0], values[1], values[2]));
        return true;
    }

private:
    void settle_separator(std::string_view line) {
        auto const has = [line](char const* c) { return find_unquoted(line, c) < line.size(); };
        separator_ = has(";") ? ';' : !decimal_comma_ && has(",") ? ',' : ' ';
        // Only where no comma separates can it be a decimal mark; between semicolons the first mark decides.
        if (!decimal_comma_ && separator_ != ';') mark_ = '.';
    }

    void split(std::string_view line) {
        fields_.clear();
        std::string_view const separators = separator_ == ';' ? ";" : separator_ == ',' ? "," : " \t";
        for (std::size_t from = 0;;) {
            std::size_t const to = find_unquoted(line, separators, from);
            fields_.push_back(bare(line.substr(from, to - from)));
            if (to == line.size()) return;
            from = to + 1;
            // Runs of blanks count as one; the line itself was trimmed, so it does not end in one.
            while (separator_ == ' ' && is_blank(line[from])) ++from;
        }
    }

    bool is_header() const {
        bool has_name = false;
        for (std::string_view const field : fields_) {
            if (begins_as_number(field)) return false;
            has_name = has_name || !field.empty();
        }
        return has_name;
    }

    std::string separator_name() const {
        return separator_ == ' ' ? "blanks" : separator_ == ',' ? "commas" : "semicolons";
    }

    bool fits_columns(std::size_t number, std::string& reason) {
        std::size_t const n = fields_.size();
        std::string const count = std::to_string(n) + (n == 1 ? " column" : " columns");
        if (columns_ == 0 && n != 2 && n != 3) {
            reason = count + ", separated by " + separator_name() + "; a point has 2 or 3";
            return false;
        }
        if (columns_ == 0) {
            columns_ = n;
            columns_line_ = number;
        }
        if (n == columns_) return true;
        reason = count + ", separated by " + separator_name() + ", but line " +
                 std::to_string(columns_line_) + " has " + std::to_string(columns_);
        return false;
    }

    bool read_number(std::size_t index, double& value, std::string& reason) {
        std::string_view const field = fields_[index];
        if (field.empty()) {
            reason = "column " + std::to_string(index + 1) + " is empty";
            return false;
        }
        if (is_not_finite_word(field)) {
            reason = quoted(field) + " is not a finite number";
            return false;
        }
        std::size_t const mark = field.find_first_of(".,");
        if (mark != std::string_view::npos && begins_as_number(field)) {
            if (mark_ == '\0') mark_ = field[mark];
            if (field[mark] != mark_) {
                reason =
                    quoted(field) + (mark_ == ',' ? ": the decimal mark is a comma here"
                                                  : ": the decimal mark is a point here" + comma_hint(field));
                return false;
            }
        }
        std::string_view digits = field;
        if (mark != std::string_view::npos && mark_ == ',') {
            with_point_.assign(field);
            with_point_[mark] = '.';
            digits = with_point_;
        }
        // from_chars refuses a plus sign, and would accept the minus sign of "+-1".
        if (digits.size() > 1 && digits[0] == '+' && digits[1] != '-') digits.remove_prefix(1);
        auto const read = std::from_chars(digits.data(), digits.data() + digits.size(), value);
        if (read.ec == std::errc::result_out_of_range) {
            reason = quoted(field) + " is out of the range of numbers";
        } else if (read.ec != std::errc() || read.ptr != digits.data() + digits.size() ||
                   !std::isfinite(value)) {
            reason = quoted(field) + " is not a number" + comma_hint(field);
        } else {
            return true;
        }
        return false;
    }

    // "1,5 2,5" falls apart at its commas, or leaves a comma in a field between blanks.
    std::string comma_hint(std::string_view field) const {
        bool const likely =
            (separator_ == ',' && field.find_first_of(" \t") != std::string_view::npos) ||
            (separator_ == ' ' && !decimal_comma_ && field.find(',') != std::string_view::npos);
        return likely ? " (if commas are decimal marks, give --decimal ,)" : "";
    }

    bool const decimal_comma_;
    char mark_;              // '.' or ','; 0 until the first mark is seen
    char separator_ = '\0';  // ';', ',' or ' '; 0 before the first line
    std::size_t columns_ = 0, columns_line_ = 0;
    std::vector<std::string_view> fields_;
    std::string with_point_;
};

bool begins_with(std::string_view line, std::string_view prefix) {
    return line.substr(0, prefix.size()) == prefix;
}

}  // namespace

bool read_points(std::istream& in, bool decimal_comma, std::vector<point>& points, read_error& error) {
    auto const fail = [&error](std::size_t line, std::string reason) {
        error = {line, std::move(reason)};
        return false;
    };
    line_reader reader(in);
    point_parser parser(decimal_comma);
    std::vector<point> fresh;
    std::string reason;
    for (std::size_t number = 1;; ++number) {
        std::string_view line;
        line_state const state = reader.next(line);
        if (state == line_state::end) break;
        if (state == line_state::failed) return fail(0, "cannot be read");
        if (state == line_state::too_long)
            return fail(number, "line longer than 65536 bytes; this is no list of points");
        if (number == 1 && (begins_with(line, "\xFF\xFE") || begins_with(line, "\xFE\xFF"))) {
            return fail(1, "text in UTF-16; save it as UTF-8");
        }
        if (number == 1 && begins_with(line, "\xEF\xBB\xBF")) line.remove_prefix(3);
        if (!parser.take(line, number, fresh, reason)) return fail(number, reason);
        if (fresh.size() > most_points) return fail(number, "more than 100000000 points");
    }
    if (fresh.empty()) return fail(0, "holds no points");
    points.swap(fresh);
    return true;
}

bool open_input(std::string const& name, std::ifstream& file, read_error& error) {
    std::error_code ignored;
    // Opening a folder succeeds on some systems, and only reading fails.
    if (std::filesystem::is_directory(name, ignored)) {
        error = {0, "is a folder, not a file"};
        return false;
    }
    errno = 0;
    file.open(name, std::ios::binary);
    if (!file) {
        int const cause = errno;
        error = {0, "cannot be opened" + (cause ? ": " + std::generic_category().message(cause) : "")};
        return false;
    }
    return true;
}

bool read_point_file(std::string const& name, bool decimal_comma, std::vector<point>& points,
                     read_error& error) {
    if (name == "-") return read_points(std::cin, decimal_comma, points, error);
    std::ifstream file;
    if (!open_input(name, file, error)) return false;
    return read_points(file, decimal_comma, points, error);
}

std::string quoted(std::string_view field) {
    constexpr std::size_t longest = 40;
    std::string text = "'";
    for (char const c : field.substr(0, longest)) text += c >= ' ' && c <= '~' ? c : '?';
    return text + (field.size() > longest ? "...'" : "'");
}

std::string one_line(std::string text) {
    for (char& c : text) {
        if ((c >= '\0' && c < ' ') || c == '\x7F') c = '?';
    }
    return text;
}

std::string shown_name(std::string const& name) {
    return name == "-" ? "<stdin>" : one_line(name);
}

std::string error_text(std::string const& name, read_error const& error) {
    std::string text = shown_name(name);
    if (error.line != 0) text.append(1, ':').append(std::to_string(error.line));
    return text.append(": ").append(error.reason);
}

}  // namespace tvmath
