#include "record_text.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <string_view>

#include "files/point_file.h"
#include "record_names.h"
#include "tvmath/persistence.h"

inline namespace tvmath {
namespace {

using numbers = std::vector<double>;

char closing(char c) {
    return c == '(' ? ')' : c == '[' ? ']' : c == '{' ? '}' : '\0';
}

// Words between blanks and brackets, all of which must be numbers, but for the one word of the splines. The
// brackets must match.
bool read_words(std::string_view text, numbers& values, std::string& reason) {
    std::string open;  // the brackets that are still to come
    for (std::size_t i = 0; i < text.size();) {
        if (text[i] == ' ') {
            ++i;
        } else if (char const close = closing(text[i])) {
            open += close;
            ++i;
        } else if (text[i] == ')' || text[i] == ']' || text[i] == '}') {
            if (open.empty() || open.back() != text[i]) {
                reason = "bracket '" + std::string(1, text[i]) + "' that was not opened, at byte " +
                         std::to_string(i + 1);
                return false;
            }
            open.pop_back();
            ++i;
        } else {
            std::size_t const end = std::min(text.find_first_of(" ()[]{}", i), text.size());
            std::string_view const word = text.substr(i, end - i);
            double value = 0;
            if (is_file_number(word, value)) {
                values.push_back(value);
            } else if (word != "Bez") {
                reason = quoted(word) + " is not a finite number, at byte " + std::to_string(i + 1);
                return false;
            }
            i = end;
        }
    }
    if (!open.empty()) reason = "bracket that is not closed: the text breaks off";
    return open.empty();
}

// Whether a record holds the numbers of its text. Zeros are not compared: writers leave offsets of 0 out, and
// the readers give 0 for a number too small for a double.
bool hold_the_same(numbers const& read, numbers const& written, double tolerance) {
    auto const is_zero = [](double x) { return std::fabs(x) < 1e-300; };
    auto w = written.begin();
    for (double const x : read) {
        if (is_zero(x)) continue;
        while (w != written.end() && is_zero(*w)) ++w;
        if (w == written.end() || !(std::fabs(x - *w) <= tolerance * std::fabs(x))) return false;
        ++w;
    }
    return std::all_of(w, written.end(), is_zero);
}

// A spline in the older form, the text of a nurb, does not hold the numbers of its text.
bool is_older_spline(unsigned long long type, wide_string const& text) {
    bool const is_spline =
        type == OpenSpline_Description::type_value || type == ClosedSpline_Description::type_value;
    return is_spline && wide_find(text.c_str(), u"Bez") == wide_npos;
}

bool is_letter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

// Takes the word for the kind off the text. False for a word that is none, or another than the one wanted.
bool take_kind(std::string& text, unsigned long long& type, std::string& reason) {
    std::size_t const end = std::min(text.find_first_of(" ([{"), text.size());
    std::string const word = text.substr(0, end);
    if (word.empty() || !is_letter(word.front()) || word == "Bez") return true;
    unsigned long long const said = record_type(word);
    if (said == 0) {
        reason = quoted(word) + " is no kind of record";
        return false;
    }
    if (type != 0 && type != said) {
        reason = "holds " + with_article(word) + ", not " + with_article(record_name(type));
        return false;
    }
    type = said;
    text.erase(0, end);
    return true;
}

// What is inside the brackets around the whole of a text, if there are any.
wide_string inside(wide_string const& text, bool is_list) {
    Persistence::tokens const items(text.c_str());
    if (items.size() != 1) return text;
    wide_string const part = items.token(0, text.c_str());
    // The list `(1 2)` is one point without brackets around the list.
    bool const is_one_point = is_list && !part.empty() && part.front() != '(' && part.front() != '{';
    return is_one_point ? text : part;
}

bool read_list(wide_string const& text, numbers const& read, std::vector<point>& points,
               std::string& reason) {
    if (!Persistence::from_ascii(text.c_str(), points) || points.empty()) {
        reason = "holds no points";
        return false;
    }
    numbers written;
    for (std::size_t i = 0; i < points.size(); ++i) {
        point& p = points[i];
        if (p.is_trivial() || p.dimension() != points.front().dimension()) {
            reason = "item " + std::to_string(i + 1) +
                     (p.is_trivial() ? " is no point" : " has another dimension than the first point");
            return false;
        }
        written.insert(written.end(), {p.x(), p.y(), p.is_3d() ? p.z() : 0.0});
    }
    // The library reads numbers in double throughout, which leaves the last bits open.
    if (hold_the_same(read, written, 1e-13)) return true;
    reason = "is no list of points of 2 or 3 numbers each";
    return false;
}

void lift(transform& t) {
    if (!t.is_trivial()) t.promote3d();
}

template <class... kinds>
void lift_geometry_of(Geometry_Description& record) {
    auto const lift_one = [](auto* known) {
        if (known) lift(known->geometry);
    };
    (lift_one(dynamic_cast<kinds*>(&record)), ...);
}

// Raises the shape of a flat record into space; what is null stays so.
void raise(Geometry_Description& record) {
    lift_geometry_of<Segment_Description, Circle_Description, Ellipse_Description, Rectangle_Description,
                     Gap_Description, Slot_Description, Transform_Description, Composite_Description>(record);
    if (auto* const dot = dynamic_cast<Point_Description*>(&record)) {
        if (!dot->position.is_trivial()) dot->position.promote3d();
    }
    if (auto* const arc = dynamic_cast<Arc_Description*>(&record)) lift(arc->circle);
    if (auto* const angle = dynamic_cast<Angle_Description*>(&record)) lift(angle->arc);
    // Without a placement the outlines stand at the origin.
    if (auto* const oring = dynamic_cast<ORing_Description*>(&record)) oring->placement.promote3d();
}

}  // namespace

bool is_file_number(std::string_view word, double& value) {
    if (word.size() > 1 && word[0] == '+' && word[1] != '-') word.remove_prefix(1);
    auto const read = std::from_chars(word.data(), word.data() + word.size(), value);
    return read.ec == std::errc() && read.ptr == word.data() + word.size() && std::isfinite(value);
}

bool read_record_text(std::string text, unsigned long long type,
                      std::shared_ptr<Geometry_Description>& record, std::string& reason) {
    for (char& c : text) {
        if (c == '\n' || c == '\r' || c == '\t') c = ' ';
    }
    text.erase(0, std::min(text.find_first_not_of(' '), text.size()));
    numbers read;
    if (!take_kind(text, type, reason) || !read_words(text, read, reason)) return false;
    auto const fresh = new_record(type == 0 ? PointCloud_Description::type_value : type);
    std::vector<point>* const points = points_in(*fresh);
    wide_string const wide = inside(to_wide(text), points != nullptr);
    if (points) {
        if (!read_list(wide, read, *points, reason)) return false;
    } else {
        numbers written;
        std::string const again = Persistence::to_description(wide.c_str(), *fresh)
                                      ? to_utf8(Persistence::to_ascii(*fresh))
                                      : std::string();
        // 8 digits are within half a unit of the last one.
        bool const is_good =
            !again.empty() && (is_older_spline(type, wide) ||
                               (read_words(again, written, reason) && hold_the_same(read, written, 1e-7)));
        if (!is_good) {
            reason = "is not the text of " + with_article(record_name(type));
            return false;
        }
    }
    record = fresh;
    return true;
}

bool record_text(Geometry_Description const& record, int precision, bool bare, std::string& text,
                 std::string& reason) {
    if (auto const* const points = points_in(record)) {
        text = to_utf8(Persistence::to_ascii(*points, precision)) + '\n';
        return true;
    }
    std::unique_ptr<Geometry_Description> const raised(record.create_copy());
    raise(*raised);
    std::string const name = record_name(record.type()), form = to_utf8(Persistence::to_ascii(*raised));
    if (form.empty() || form == "()") {
        reason = with_article(name) + (form.empty() ? " has no text form" : " without geometry has no text");
        return false;
    }
    if (form.find('#') != std::string::npos) {
        reason = "numbers of this " + name + " are not finite";
        return false;
    }
    text = (bare ? "" : name + ' ') + form + '\n';
    return true;
}

}  // namespace tvmath
