#include "calibrate/corrector_file.h"

#include <algorithm>
#include <string_view>
#include <vector>

#include "files/file_input.h"
#include "files/point_file.h"
#include "record/record_text.h"
#include "tvmath/corrector_text.h"
#include "tvmath/wide_string.h"

inline namespace tvmath {
namespace {

// Of the highest order that a fit tries a text has a third of it.
constexpr std::size_t largest_file = std::size_t{1} << 20;
constexpr int all_digits = 17;

char const* const names[] = {"screen", "flatness", "telecentricity"};

// An item of a corrector's text: one number, or a list of them.
struct item {
    bool is_list = false;
    std::vector<double> values;
};

// The items between the brackets around the text.
class item_reader {
public:
    explicit item_reader(std::string_view text) : text_(text) {}

    bool read(std::vector<item>& items, std::string& reason) {
        int depth = 0;
        for (skip(); at_ < text_.size(); skip()) {
            if (depth == 0 && (is_done_ || text_[at_] != '(')) return fail("no brackets around it", reason);
            if (text_[at_] == '(') {
                if (++depth > 2) return fail("more brackets than a corrector has", reason);
                if (depth == 2) items.push_back({true, {}});
                ++at_;
            } else if (text_[at_] == ')') {
                is_done_ = --depth == 0;
                ++at_;
            } else {
                double value = 0;
                if (!take_number(value, reason)) return false;
                if (depth == 1) items.emplace_back();
                items.back().values.push_back(value);
            }
        }
        return is_done_ || fail("the text breaks off", reason);
    }

private:
    void skip() { at_ = std::min(text_.find_first_not_of(' ', at_), text_.size()); }

    bool take_number(double& value, std::string& reason) {
        std::size_t const end = std::min(text_.find_first_of(" ()", at_), text_.size());
        std::string_view const word = text_.substr(at_, end - at_);
        at_ = end;
        return is_file_number(word, value) || fail(quoted(word) + " is not a finite number", reason);
    }

    static bool fail(std::string const& why, std::string& reason) {
        reason = "is no text of a corrector: " + why;
        return false;
    }

    std::string_view text_;
    std::size_t at_ = 0;
    bool is_done_ = false;
};

// The kind whose text has such items; false when there is none.
bool kind_of_shape(std::vector<item> const& items, corrector_kind& kind) {
    std::string shape;
    for (item const& i : items) shape += i.is_list ? 'L' : 'n';
    for (auto const& [known, its] :
         {std::pair{"nLLnn", corrector_kind::screen}, std::pair{"nLnnn", corrector_kind::flatness},
          std::pair{"nnnnnnn", corrector_kind::telecentricity}}) {
        if (shape != known) continue;
        kind = its;
        return true;
    }
    return false;
}

// Takes the word for the kind off the text, if there is one.
bool take_kind(std::string& text, corrector_kind& kind, bool& is_said, std::string& reason) {
    std::size_t const start = std::min(text.find_first_not_of(' '), text.size()),
                      end = std::min(text.find_first_of(" (", start), text.size());
    std::string const word = text.substr(start, end - start);
    is_said = find_corrector_kind(word, kind);
    text.erase(0, end);
    if (is_said || word.empty()) return true;
    reason = "is no text of a corrector: it begins with " + quoted(word);
    return false;
}

any_corrector read_items(corrector_kind kind, std::string const& text) {
    std::size_t const first = text.find('(') + 1, last = text.rfind(')');
    wide_string const inside = to_wide(std::string_view(text).substr(first, last - first));
    switch (kind) {
        case corrector_kind::screen:
            return Persistence::to_screen_corrector(inside.c_str(), {});
        case corrector_kind::flatness:
            return Persistence::to_flatness_corrector(inside.c_str(), {});
        default:
            return Persistence::to_telecentricity_corrector(inside.c_str(), {});
    }
}

// The two numbers that follow the coefficients.
bool has_sizes(std::vector<item> const& items, corrector_kind kind) {
    if (kind == corrector_kind::telecentricity) return true;
    std::size_t const width = kind == corrector_kind::screen ? 3 : 2;
    return items[width].values[0] > 0 && items[width + 1].values[0] > 0;
}

}  // namespace

char const* corrector_name(corrector_kind kind) {
    return names[static_cast<std::size_t>(kind)];
}

bool find_corrector_kind(std::string const& word, corrector_kind& kind) {
    auto const found = std::find(std::begin(names), std::end(names), word);
    if (found == std::end(names)) return false;
    kind = static_cast<corrector_kind>(found - std::begin(names));
    return true;
}

std::string corrector_text(any_corrector const& corrector) {
    wide_string const text =
        std::visit([](auto const& c) { return Persistence::to_ascii(c, all_digits); }, corrector);
    return std::string(corrector_name(kind_of(corrector))) + ' ' + to_utf8(text) + '\n';
}

std::string corrector_mismatch(std::string const& name, corrector_kind kind, corrector_kind wanted) {
    return shown_name(name) + ": holds a " + corrector_name(kind) + " corrector where a " +
           corrector_name(wanted) + " corrector is wanted";
}

bool read_corrector_text(std::string text, any_corrector& corrector, std::string& reason) {
    for (char& c : text) {
        if (c == '\n' || c == '\r' || c == '\t') c = ' ';
    }
    corrector_kind said = corrector_kind::screen, kind = said;
    bool is_said = false;
    std::vector<item> items;
    if (!take_kind(text, said, is_said, reason) || !item_reader(text).read(items, reason)) return false;
    if (items.empty()) {
        reason = "holds a corrector that does nothing";
        return false;
    }
    bool const is_known = kind_of_shape(items, kind);
    if (!is_known || (is_said && kind != said) || !has_sizes(items, kind)) {
        std::string const what = is_said ? corrector_name(said) : is_known ? corrector_name(kind) : "";
        reason = "is not the text of a " + what + (what.empty() ? "corrector" : " corrector");
        return false;
    }
    any_corrector const read = read_items(kind, text);
    if (std::visit([](auto const& c) { return c.is_trivial(); }, read)) {
        reason = std::string("has coefficients of a ") + corrector_name(kind) +
                 " corrector, but not as many as an order asks for";
        return false;
    }
    corrector = read;
    return true;
}

exit_status read_corrector_file(std::string const& name, any_corrector& corrector, std::string& reason) {
    std::string bytes, why;
    if (read_all(name, largest_file, "is larger than 1 MiB; this is no corrector", bytes, why)) {
        if (bytes.starts_with("\xEF\xBB\xBF")) bytes.erase(0, 3);
        if (read_corrector_text(std::move(bytes), corrector, why)) return exit_status::done;
    }
    reason = shown_name(name) + ": " + why;
    return exit_status::unreadable_input;
}

}  // namespace tvmath
